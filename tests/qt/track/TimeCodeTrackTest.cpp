#include "support/TrackTree.h"

#include <base/CException.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

const Bytes kHeader = atom("gmhd", atom("tmcd", {}));
const Bytes kFields = hex({"00000009", // reserved
                           "00000003", // drop frame, 24 hours
                           "00000019", // time scale
                           "00000001", // frame duration
                           "1E 00"});  // frames, reserved

std::string sourceReference(const QTTimeCodeTrack& track) {
    unsigned int length = 99;
    unsigned char* bytes = nullptr;
    EXPECT_EQ(track.getSourceReference(length, bytes), 0);
    if (!length) {
        EXPECT_EQ(bytes, nullptr);
        return "";
    }
    EXPECT_EQ(bytes[length], 0) << "ends in a zero byte";
    return std::string(reinterpret_cast<char*>(bytes), length);
}

TEST(TimeCodeTrack, HasItsDefaults) {
    QTTimeCodeTrack track;
    EXPECT_EQ(track.getType(), fourCC("tmcd"));
    EXPECT_EQ(track.getMediaType(), fourCC("time"));
    EXPECT_EQ(track.getMovieType(), kMOV);
    EXPECT_EQ(track.getTimeCodeWidth(), 100U);
    EXPECT_EQ(track.getTimeCodeHeight(), 50U);
    EXPECT_EQ(track.getTimeScale(), 0U);
    EXPECT_EQ(track.getFrameDuration(), 100U);
    EXPECT_EQ(track.getNumberOfFrames(), 25U);
    EXPECT_EQ(track.getTextFont(), 0U);
    EXPECT_EQ(track.getTextFace(), 0U);
    EXPECT_EQ(track.getTextSize(), 12U);
    EXPECT_EQ(track.get24HourMaxFlag(), 1U);
    EXPECT_FALSE(track.getTimeCodeTrackVisible());
    unsigned short r = 1;
    unsigned short g = 1;
    unsigned short b = 1;
    track.getTextColor(r, g, b);
    EXPECT_EQ(r, 0U);
    EXPECT_EQ(g, 0xFFFFU);
    EXPECT_EQ(b, 0U);
    EXPECT_EQ(sourceReference(track), "");
}

TEST(TimeCodeTrack, TogglesAFlagThatIsCleared) {
    QTTimeCodeTrack track;
    track.setDropFrameFlag(0); // 2 -> 3
    EXPECT_EQ(track.getDropFrameFlag(), 1U);
    EXPECT_EQ(track.get24HourMaxFlag(), 1U);
    track.setDropFrameFlag(0); // 3 -> 2
    EXPECT_EQ(track.getDropFrameFlag(), 0U);
    track.set24HourMaxFlag(0);
    EXPECT_EQ(track.get24HourMaxFlag(), 0U);
    track.setNegativeTimesOKFlag(9);
    track.setNegativeTimesOKFlag(1);
    EXPECT_EQ(track.getNegativeTimesOKFlag(), 1U);
    track.setCounterFlag(0);
    EXPECT_EQ(track.getCounterFlag(), 1U);
}

TEST(TimeCodeTrack, ReadsItsDescription) {
    const ParsedTree tree(
        trackBytes(kHeader, sampleEntry("tmcd", kFields + hex("0000000F 'name' 0003 0000 'R42'"))));
    QTTimeCodeTrack track(tree.trak());
    EXPECT_EQ(track.getMediaType(), fourCC("time"));
    EXPECT_EQ(track.getID(), 7U);
    EXPECT_EQ(track.getDropFrameFlag(), 1U);
    EXPECT_EQ(track.get24HourMaxFlag(), 1U);
    EXPECT_EQ(track.getCounterFlag(), 0U);
    EXPECT_EQ(track.getTimeScale(), 25U);
    EXPECT_EQ(track.getFrameDuration(), 1U);
    EXPECT_EQ(track.getNumberOfFrames(), 30U);
    EXPECT_EQ(sourceReference(track), "R42");
}

TEST(TimeCodeTrack, ReadsASourceReferenceOnlyWhereOneIs) {
    const auto reference = [](const Bytes& behind) {
        const ParsedTree tree(trackBytes(kHeader, sampleEntry("tmcd", kFields + behind)));
        return sourceReference(QTTimeCodeTrack(tree.trak()));
    };
    EXPECT_EQ(reference(hex("0000000C 'name'")), "");                  // 26 bytes
    EXPECT_EQ(reference(hex("0000000C 'name' 0003 00")), "");          // 29 bytes
    EXPECT_EQ(reference(hex("0000000C 'name' 0003 0000")), "");        // no text
    EXPECT_EQ(reference(hex("0000000C 'name' FFFF 0000 'ab'")), "ab"); // less text than it says
    EXPECT_EQ(reference(hex("0000000C 'nome' 0002 0000 'ab'")), "");
    EXPECT_EQ(reference({}), "");
}

TEST(TimeCodeTrack, RefusesATableWithTheWrongCount) {
    const ParsedTree tree(trackBytes(kHeader, sampleEntry("tmcd", kFields), 2));
    try {
        const QTTimeCodeTrack track(tree.trak());
        FAIL() << "no exception";
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(),
                     "Not a correct number of descriptions in the descriptionsvector 1 should be 2");
        EXPECT_EQ(e.getFunction(), "Ketra::QT::QTTimeCodeTrack::parseStsd");
    }
    QTTimeCodeTrack track;
    EXPECT_EQ(track.parseStsd(nullptr), -1);
}

TEST(TimeCodeTrack, NeedsItsHeaders) {
    const ParsedTree tree(atom("trak", atom("mdia", {})));
    try {
        const QTTimeCodeTrack track(tree.trak());
        FAIL() << "no exception";
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(), "No tkhd-atom found in trak-atom");
        EXPECT_EQ(e.getFunction(), "QT::QTTimeCodeTrack::QTTimeCodeTrack");
    }
}

/// The timecode of a track whose first sample holds the bytes.
unsigned int timeCode(const char* sample, const char* timeScale) {
    const Bytes fields = hex("00000000 00000002") + hex(timeScale) + hex("00000001 19 00");
    const std::size_t length = trackBytes(kHeader, sampleEntry("tmcd", fields)).size();
    ParsedTree tree(
        trackBytes(kHeader, sampleEntry("tmcd", fields), 1, {}, static_cast<unsigned int>(length)) +
        hex(sample));
    QTTimeCodeTrack track(tree.trak());
    return track.getTimeCode(&tree.stream());
}

TEST(TimeCodeTrack, PacksItsFirstSample) {
    EXPECT_EQ(timeCode("00 00 0A 8C", "00000019"), 0xF9B3B300U); // 25
    EXPECT_EQ(timeCode("00 00 0A 8C", "000009C4"), 0x05040458U); // 2500
    EXPECT_EQ(timeCode("00 00 00 00", "00000019"), 0U);
    EXPECT_EQ(timeCode("18 00 00 00", "00000019"), 0x18U);
    EXPECT_EQ(timeCode("00 00 0A 8C", "00000000"), 0U); // no time scale
    EXPECT_EQ(timeCode("00 00 0A", "00000019"), 0U);    // cut off
}

TEST(TimeCodeTrack, ReadsItsFirstSampleOnce) {
    const Bytes fields = hex("00000000 00000002 00000019 00000001 19 00");
    ParsedTree tree(trackBytes(kHeader, sampleEntry("tmcd", fields), 1, {}, 4)); // 'trak' as a number
    QTTimeCodeTrack track(tree.trak());
    EXPECT_EQ(track.getTimeCode(nullptr), 0U);
    const unsigned int code = track.getTimeCode(&tree.stream());
    EXPECT_NE(code, 0U);
    EXPECT_EQ(track.getTimeCode(nullptr), code);
    QTTimeCodeTrack without;
    EXPECT_EQ(without.getTimeCode(&tree.stream()), 0U);
}

TEST(TimeCodeTrack, WritesItsDisplayAndDescription) {
    WritingTree tree(fourCC("tmcd"));
    auto* header = WritingTree::add<GMHD>(*tree.information);
    auto* display = WritingTree::add<TCMI>(*header);
    QTTimeCodeTrack track;
    tree.give(track);
    track.setTimeCodeSize(320, 24);
    track.setTimeScale(2500);
    track.setFrameDuration(100);
    track.setNumberOfFrames(25);
    unsigned char reel[] = {'R', '1'};
    EXPECT_EQ(track.setSourceReference(2, nullptr), -1);
    EXPECT_EQ(track.setSourceReference(2, reel), 0);
    unsigned char font[] = {'X'};
    EXPECT_EQ(track.setFontName(1, nullptr), -1);
    EXPECT_EQ(track.setFontName(1, font), 0);
    track.setAtomMediaTimeScale(2500);
    track.setDuration(2);
    EXPECT_EQ(track.prepareForWriting(), 0);

    EXPECT_EQ(tree.header->getWidth(), 320.0F);
    EXPECT_EQ(tree.header->getHeight(), 24.0F);
    EXPECT_EQ(tree.mediaHeader->getDuration(), 5000U);
    EXPECT_EQ(tree.handler->getComponentType(), fourCC("mhlr"));
    EXPECT_EQ(tree.handler->getComponentSubType(), fourCC("tmcd"));
    EXPECT_EQ(tree.handler->getComponentManufacturer(), fourCC("appl"));
    EXPECT_STREQ(reinterpret_cast<char*>(tree.handler->getComponentName()), "Timecode Media Handler");
    const Bytes content = hex({"00000018 'gmin' 00000000 0040 8000 8000 8000 0000 0000", //
                               "0000002F 'tmcd' 00000027 'tcmi' 00000000 0000 0000 000C 0000",
                               "0000 FFFF 0000 0000 0000 0000 06 'Geneva'"});
    EXPECT_EQ(content.size(), 71U);
    display->updateSize();
    EXPECT_EQ(take(display->serialize()), content);
    EXPECT_EQ(take(header->serialize()), atom("gmhd", content));
    EXPECT_EQ(tree.entryBytes(),
              hex({"00000030 'tmcd' 000000000000 0001", // 16 and 32 bytes
                   "00000000 00000002 000009C4 00000064 19 00", "0000000E 'name' 0002 0000 'R1'"}));
}

TEST(TimeCodeTrack, WritesItsOwnTimeScaleEvenIfNone) {
    WritingTree tree(fourCC("tmcd"));
    WritingTree::add<HMHD>(*tree.information); // no display information outside QuickTime
    QTTimeCodeTrack track;
    tree.give(track, kMP4);
    track.setTextColor(1, 2, 3);
    track.setBackgroundColor(4, 5, 6);
    EXPECT_EQ(track.prepareForWriting(), 0);
    EXPECT_EQ(tree.description<STSDTimeCode>().getTimeScale(), 0U);
    EXPECT_EQ(tree.description<STSDTimeCode>().getFlags(), 2U);
    QTTimeCodeTrack none;
    EXPECT_EQ(none.prepareForWriting(), 0);
}

TEST(TimeCodeTrack, CopiesItsTexts) {
    QTTimeCodeTrack track;
    unsigned char reel[] = {'R', '1'};
    track.setSourceReference(2, reel);
    track.setTimeCodeTrackVisible(true);
    QTTimeCodeTrack copy(track);
    track.setSourceReference(0, nullptr);
    EXPECT_EQ(sourceReference(copy), "R1");
    EXPECT_TRUE(copy.getTimeCodeTrackVisible());
    copy = track;
    EXPECT_EQ(sourceReference(copy), "");
}

TEST(TimeCodeTrack, IsMadeByTheFactories) {
    for (const QTMovieConstructionFlags flavour : {kMOV, kMP4}) {
        const std::unique_ptr<QTTrack> made(QTTrack::createNewQTTrackFromType(5, fourCC("tmcd"), flavour));
        const std::unique_ptr<QTAtom> trak(made->getTrak());
        EXPECT_EQ(made->getType(), fourCC("tmcd"));
        EXPECT_EQ(made->getMediaType(), fourCC("tmcd"));
        EXPECT_EQ(made->prepareForWriting(), 0);
        const QTAtom* minf = trak->getAtomOfType(fourCC("mdia"))->getAtomOfType(fourCC("minf"));
        QTAtom* header = minf->getAtomOfType(fourCC("gmhd"));
        ASSERT_EQ(header != nullptr, flavour == kMOV);
        if (header) {
            EXPECT_EQ(take(header->serialize()).size(), 79U); // 8 and 71
        }
    }
    const ParsedTree tree(trackBytes(kHeader, sampleEntry("tmcd", kFields)));
    const std::unique_ptr<QTTrack> read(QTTrack::createNewQTTrackFromTRAK(tree.trak()));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->getType(), fourCC("tmcd"));
    EXPECT_EQ(read->getMediaType(), fourCC("time"));
}

} // namespace
} // namespace test
