// Media tracks over a parsed or built "trak".
#include "qt/track/DescriptionBytes.h"
#include "qt/track/WritingTree.h"

#include <base/CException.h>
#include <qt/QTTrack/QTAudioTrack.h>
#include <qt/QTTrack/QTVideoTrack.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

/// A "trak" whose sample description table holds these entries, read from bytes.
struct ReadTree {
    std::unique_ptr<QTAtom> trak;
    TKHD* tkhd = new TKHD(7U);
    MDHD* mdhd = new MDHD;
    STSZ* stsz = new STSZ;

    explicit ReadTree(unsigned int count, const Bytes& entries) {
        auto* stbl = adoptAll(new STBL, {stsz});
        if (count) stbl->addChild(readTable(count, entries).release());
        trak.reset(adoptAll(new TRAK, {tkhd, adoptAll(new MDIA, {mdhd, adoptAll(new MINF, {stbl})})}));
        mdhd->setTimeScale(600);
        mdhd->setDuration(1200);
        tkhd->setWidth(640);
        tkhd->setHeight(360);
        stsz->setNumberOfEntries(50);
    }
};

TEST(VideoConstruction, TakesTheHeadersAndTheDescription) {
    ReadTree tree(1, entryBytes("abcd", videoBody(720, 576)));
    QTVideoTrack track(tree.trak.get());
    EXPECT_EQ(track.getMediaType(), fourCC("vide"));
    EXPECT_EQ(track.getMovieType(), kMOV);
    EXPECT_EQ(track.getID(), 7U);
    EXPECT_EQ(track.getDuration(), 2.0);
    EXPECT_EQ(track.getFrameRate(), 25.0);
    EXPECT_EQ(track.getWidth(), 720U);
    EXPECT_EQ(track.getHeight(), 576U);
    EXPECT_EQ(track.getDisplayWidth(), 640U); // nothing in the description said another
    EXPECT_EQ(track.getDisplayHeight(), 360U);
    EXPECT_TRUE(track.getSTSDValid());
}

TEST(VideoConstruction, DisplaySizeOfTheDescriptionStands) {
    ReadTree tree(1, entryBytes("abcd", videoBody(720, 576) + atom("pasp", u32(16) + u32(15))));
    QTVideoTrack track(tree.trak.get());
    EXPECT_EQ(track.getDisplayWidth(), 768U);
    EXPECT_EQ(track.getDisplayHeight(), 576U);
}

TEST(VideoConstruction, WithoutADescriptionTheHeadersAlone) {
    ReadTree tree(0, {});
    tree.mdhd->setDuration(0);
    QTVideoTrack track(tree.trak.get());
    EXPECT_EQ(track.getWidth(), 640U);
    EXPECT_EQ(track.getHeight(), 360U);
    EXPECT_EQ(track.getFrameRate(), 0.0);
    EXPECT_EQ(track.getDataFormat(), 0U);
}

TEST(VideoConstruction, DescriptionsMustAgree) {
    ReadTree differ(2, join({entryBytes("abcd", videoBody(1, 1)), entryBytes("efgh", videoBody(1, 1))}));
    EXPECT_FALSE(QTVideoTrack(differ.trak.get()).getSTSDValid());
    ReadTree agree(2, join({entryBytes("abcd", videoBody(1, 1)), entryBytes("abcd", videoBody(1, 1))}));
    EXPECT_TRUE(QTVideoTrack(agree.trak.get()).getSTSDValid());
    // Reading renames the first entry; the formats of the file count.
    const Bytes smi = atom("SMI ", hex("'SEQH' 00000003 010203"));
    ReadTree renamed(2,
                     join({entryBytes("MPG4", videoBody(1, 1) + smi), entryBytes("MPG4", videoBody(1, 1))}));
    QTVideoTrack track(renamed.trak.get());
    EXPECT_TRUE(track.getSTSDValid());
    EXPECT_EQ(track.getDataFormat(), fourCC("mp4v"));
    ReadTree sound(2, join({entryBytes("sowt", repeat(0, 20)), entryBytes("twos", repeat(0, 20))}));
    EXPECT_FALSE(QTAudioTrack(sound.trak.get()).getSTSDValid());
}

TEST(VideoConstruction, WrongCountGoesThrough) {
    ReadTree tree(2, entryBytes("abcd", videoBody(1, 1)));
    EXPECT_THROW(QTVideoTrack(tree.trak.get()), Ketra::CException);
    EXPECT_THROW(QTAudioTrack(tree.trak.get()), Ketra::CException);
}

template <class Track>
void expectThrown(QTAtom& trak, const char* message, const char* function) {
    try {
        Track track(&trak);
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_TRUE(e.getMessage() == message) << e.what();
        EXPECT_TRUE(e.getFunction() == function);
        EXPECT_TRUE(e.getFile() == "lib/qt/QTTrack");
    }
}

TEST(VideoConstruction, HeadersMustBeThere) {
    TRAK empty;
    expectThrown<QTVideoTrack>(empty, "No track header found in track atom",
                               "QT::QTVideoTrack::QTVideoTrack");
    expectThrown<QTAudioTrack>(empty, "No tkhd-atom found in trak-atom", "QT::QTAudioTrack::QTAudioTrack");
    TRAK half;
    half.addChild(new TKHD(1U));
    expectThrown<QTVideoTrack>(half, "No mdia-atom found in trak-atom", "QT::QTVideoTrack::QTVideoTrack");
    expectThrown<QTAudioTrack>(half, "No mdia-atom found in trak-atom", "QT::QTAudioTrack::QTAudioTrack");
}

TEST(AudioConstruction, TakesTheHeadersAndTheDescription) {
    ReadTree tree(1, entryBytes("sowt", hex("0000 0000 00000000 0002 0010 0000 0000 AC440000")));
    QTAudioTrack track(tree.trak.get());
    EXPECT_EQ(track.getMediaType(), fourCC("audi"));
    EXPECT_EQ(track.getType(), fourCC("audi"));
    EXPECT_EQ(track.getID(), 7U);
    EXPECT_EQ(track.getDuration(), 2.0);
    EXPECT_EQ(track.getSampleRate(), 44100.0);
    EXPECT_EQ(tree.mdhd->getTimeScale(), 600U) << "reading changes no atom";
}

} // namespace
} // namespace test
