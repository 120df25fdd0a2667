// MPEG-4 systems tracks.
#include "qt/track/WritingTree.h"

#include <base/CException.h>
#include <qt/QTTrack/QTDescriptionTrack.h>

#include <cstdlib>
#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

struct Tree : WritingTree<QTDescriptionTrack> {
    explicit Tree(const char (&mediaType)[5]) : WritingTree(fourCC(mediaType), kMP4, new NMHD) {}
};

unsigned int* references(std::initializer_list<unsigned int> ids) {
    auto* refs = static_cast<unsigned int*>(std::malloc(ids.size() * sizeof(unsigned int)));
    std::size_t i = 0;
    for (const unsigned int id : ids) {
        refs[i++] = QTAtom::BE32(id);
    }
    return refs;
}

TEST(DescriptionTrack, ObjectDescriptors) {
    Tree tree("odsm");
    EXPECT_EQ(tree.track.setMpodData(references({2, 3}), 2), 0);
    EXPECT_EQ(tree.track.prepareForWriting(), 0);
    EXPECT_EQ(tree.tkhd->getDuration(), 600U);
    EXPECT_EQ(tree.mdhd->getDuration(), 600U);
    ASSERT_EQ(tree.dref->getNumberOfEntries(), 1U);
    EXPECT_EQ(tree.dref->getDataReferenceEntry(0)->getType(), fourCC("url "));
    EXPECT_EQ(tree.dref->getDataReferenceEntry(0)->getFlags(), 1U);
    EXPECT_EQ(tree.entry().getDataFormat(), fourCC("mp4s"));
    EXPECT_EQ(tree.extensions(), hex({"0000002C 'esds' 00000000", "03 8080801B 0000 01",
                                      "04 8080800D 02 05 003A98 00000000 00000000", "06 80808001 02"}));
    EXPECT_EQ(take(tree.tref->serialize()), hex("00000018 'tref' 00000010 'mpod' 00000002 00000003"));
    // The array is the track's: preparing again gives the next atom another copy.
    EXPECT_EQ(tree.track.prepareForWriting(), 0);
    EXPECT_EQ(tree.tref->getChildren().size(), 2U);
    EXPECT_EQ(tree.dref->getNumberOfEntries(), 2U);
    EXPECT_EQ(tree.entry().getExtensions().size(), 1U);
}

TEST(DescriptionTrack, ObjectDescriptorsWithoutReferences) {
    Tree tree("odsm");
    EXPECT_EQ(tree.track.setMpodData(nullptr, 1), -1);
    EXPECT_EQ(tree.track.setMpodData(references({1}), 1), 0);
    EXPECT_EQ(tree.track.setMpodData(nullptr, 0), 0); // cleared
    EXPECT_EQ(tree.track.prepareForWriting(), 0);
    EXPECT_TRUE(tree.tref->getChildren().empty());
}

TEST(DescriptionTrack, SceneDescription) {
    Tree tree("sdsm");
    tree.track.setODSMTrackID(5);
    tree.track.setSDSMTrackID(6);
    EXPECT_EQ(tree.track.getSDSMTrackID(), 6U);
    EXPECT_EQ(tree.track.prepareForWriting(), 0);
    EXPECT_EQ(tree.extensions(),
              hex({"00000034 'esds' 00000000", "03 80808023 0000 01",
                   "04 80808015 02 0D 003A98 00000000 00000000", "05 80808003 000040", "06 80808001 02"}));
    EXPECT_EQ(take(tree.tref->serialize()), hex("00000014 'tref' 0000000C 'dpnd' 00000005"));
}

TEST(DescriptionTrack, AnythingElseIsAnError) {
    Tree tree("mp4s");
    try {
        tree.track.prepareForWriting();
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_TRUE(e.getMessage() == "Unknown description media type.");
        EXPECT_TRUE(e.getFunction() == "Ketra::QT::QTDescriptionTrack::prepareForWriting");
    }
}

TEST(DescriptionTrack, ReadsItsKindFromTheHandler) {
    Tree tree("sdsm");
    tree.handler->setComponentSubType(fourCC("sdsm"));
    tree.stsd->setNumberOfEntries(7); // not looked at
    QTDescriptionTrack track(tree.trak.get());
    EXPECT_EQ(track.getMediaType(), fourCC("sdsm"));
    EXPECT_EQ(track.getType(), fourCC("desc"));
    EXPECT_EQ(track.getID(), 1U);
    EXPECT_EQ(track.addSdpFile(), 0);
    EXPECT_EQ(track.parseStsd(nullptr), 0);
    track.setODSMTrackID(3);
    track.setMpodData(references({1}), 1);
    QTDescriptionTrack copy(track);
    EXPECT_EQ(copy.getODSMTrackID(), 3U);
    copy = track;
    EXPECT_EQ(copy.getODSMTrackID(), 3U);
}

TEST(DescriptionTrack, HeadersMustBeThere) {
    TRAK empty;
    try {
        QTDescriptionTrack track(&empty);
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_TRUE(e.getMessage() == "No track header found in track atom");
        EXPECT_TRUE(e.getFunction() == "QT::QTDescriptionTrack::QTDescriptionTrack");
    }
}

} // namespace
} // namespace test
