// Values that a track holds or passes on to its header atoms.
#include "NewTrack.h"

#include <base/CException.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

TEST(TrackFields, AreHeld) {
    const NewTrack track(fourCC("vide"));
    EXPECT_EQ(track->setMediaType(1), 0);
    EXPECT_EQ(track->getMediaType(), 1U);
    EXPECT_EQ(track->setStartTime(1.5) + track->setEndTime(2.5) + track->setStartOffset(3.5), 0);
    EXPECT_EQ(track->getStartTime() + track->getEndTime() + track->getStartOffset(), 7.5);
    EXPECT_EQ(track->setFrameDuration(0.04) + track->setFrameRate(25), 0);
    EXPECT_EQ(track->getFrameDuration(), 0.04);
    EXPECT_EQ(track->getFrameRate(), 25.0);
    EXPECT_EQ(track->setIsClosed(true) + track->setIsHintTrack(true) + track->setIsMediaTrack(false), 0);
    EXPECT_TRUE(track->getIsClosed());
    EXPECT_TRUE(track->getIsHintTrack());
    EXPECT_FALSE(track->getIsMediaTrack());
    EXPECT_EQ(track->setSampleCount(2) + track->setQueueNumber(3) + track->setBitRate(4), 0);
    EXPECT_EQ(track->getSampleCount(), 2U);
    EXPECT_EQ(track->getQueueNumber(), 3U);
    EXPECT_EQ(track->getBitRate(), 4U);
    EXPECT_EQ(track->setAvgBitRate(5) + track->setMaxBitRate(6) + track->setMaxBitRateTime(7), 0);
    EXPECT_EQ(track->getAvgBitRate(), 5U);
    EXPECT_EQ(track->getMaxBitRate(), 6U);
    EXPECT_EQ(track->getMaxBitRateTime(), 7.0);
    EXPECT_EQ(track->setMaxDuration(8) + track->setSamplesPerPacket(9), 0);
    EXPECT_EQ(track->getMaxDuration(), 8U);
    EXPECT_EQ(track->getSamplesPerPacket(), 9U);
    EXPECT_EQ(track->getMovieType(), kMOV);
    EXPECT_TRUE(track->getSTSDValid());
    EXPECT_EQ(track->addSdpFile(), 0);
}

TEST(TrackFields, ReachTheHeaders) {
    const NewTrack track(fourCC("vide"));
    EXPECT_EQ(track->setID(9), 0);
    EXPECT_EQ(track->setAlternateGroup(4), 0);
    EXPECT_EQ(track->getAlternateGroup(), 4);
    const auto& header = dynamic_cast<TKHD&>(*track.at({"tkhd"}));
    EXPECT_EQ(header.getTrackID(), 9U);
    EXPECT_EQ(header.getAlternateGroup(), 4U);
    EXPECT_EQ(track->setAtomHeaderFlags(3) + track->setAtomHeaderWidth(320) + track->setAtomHeaderHeight(240),
              0);
    EXPECT_EQ(track->getAtomHeaderFlags(), 3U);
    EXPECT_EQ(track->getAtomHeaderWidth(), 320.0F);
    EXPECT_EQ(track->getAtomHeaderHeight(), 240.0F);
    EXPECT_EQ(track->setAtomMediaDuration(0x100000000) + track->setAtomMediaTimeScale(600), 0);
    EXPECT_EQ(track->getAtomMediaDuration(), 0x100000000U);
    EXPECT_EQ(track->setAtomMediaLanguage(0x15C7), 0);
    EXPECT_EQ(track->getAtomMediaLanguage(), 0x15C7);
    EXPECT_EQ(track->setAtomVideoMediaGraphicsMode(0x24) + track->setAtomVideoMediaOpColors(0x1234), 0);
    EXPECT_EQ(track->getAtomVideoMediaGraphicsMode(), 0x24);
    EXPECT_EQ(track->getAtomVideoMediaOpColor(), 0x1234);
    EXPECT_EQ(track->setAtomMediaHandlerComponentType(1) + track->setAtomMediaHandlerComponentSubType(2) +
                  track->setAtomMediaHandlerManufacturer(3) + track->setAtomDataHandlerManufacturer(4) +
                  track->setAtomMediaHandlerComponentName("ab", 2, false),
              0);
    const auto& handler = dynamic_cast<HDLR&>(*track.at({"mdia", "hdlr"}));
    EXPECT_EQ(handler.getComponentType(), 1U);
    EXPECT_EQ(handler.getComponentSubType(), 2U);
    EXPECT_EQ(handler.getComponentManufacturer(), 3U);
    EXPECT_EQ(track->getAtomMediaHandlerNameSize(), 3U);
    EXPECT_EQ(dynamic_cast<HDLR&>(*track.at({"mdia", "minf", "hdlr"})).getComponentManufacturer(), 4U);
    auto run = std::make_unique<STTSData>(2U, 3U);
    EXPECT_EQ(track->addAtomTimeToSample(run.release()), 0);
    EXPECT_EQ(track->addAtomCodingTimeToSample(new CTTSData(2U, 5U)), 0);
    EXPECT_EQ(track.durations(), (NewTrack::Pairs{{2, 3}}));
    EXPECT_EQ(track.offsets(), (NewTrack::Pairs{{2, 5}}));
}

TEST(TrackFields, MayHaveNoHeaders) {
    QTVideoTrack track; // without a tree
    EXPECT_EQ(track.setID(1), 0);
    EXPECT_EQ(track.setAlternateGroup(1), 0);
    EXPECT_EQ(track.setAtomMediaHandlerComponentName("a", 1, false), -1);
    EXPECT_EQ(track.setAtomDataHandlerComponentName("a", 1, false), -1);
    EXPECT_EQ(track.setAtomMediaHandlerComponentType(1), -1);
    EXPECT_EQ(track.setAtomVideoMediaGraphicsMode(1), -1);
    EXPECT_EQ(track.getAtomMediaHandlerNameSize(), 0U);
    EXPECT_EQ(track.getAtomNumberOfEditListEntries(), 0U);
    EXPECT_EQ(track.getCurrentAtomSampleDescriptionData(), nullptr);
    EXPECT_EQ(track.getChunk(), nullptr);
    EXPECT_EQ(track.initWithSample(1), -1);
    EXPECT_EQ(track.initWithTime(0), -1);
    const std::unique_ptr<ELSTData> edit(new ELSTData(1, 2, 1));
    EXPECT_EQ(track.addAtomEditListEntry(edit.get()), -1);
    EXPECT_EQ(track.addToAtomStcoOffsets(1), -1);
}

TEST(TrackFrames, AreTakenOverAndJoined) {
    const NewTrack track(fourCC("vide"));
    EXPECT_EQ(track->setDecoderSpecificInfo(frameOf(2, 7, 0, 0, 0).release()), 0);
    EXPECT_EQ(track->setDecoderSpecificInfo(track->getDecoderSpecificInfo()), 0);
    EXPECT_EQ(track->getDecoderSpecificInfo()->getDataLength(), 2U);
    EXPECT_EQ(track->addHintDescription(nullptr), -1);
    EXPECT_EQ(track->addHintDescription(frameOf(2, 1, 0, 0, 0).release()), 0);
    EXPECT_EQ(track->addHintDescription(track->getHintDescription()), -1);
    EXPECT_EQ(track->addHintDescription(frameOf(1, 2, 0, 0, 0).release()), 0);
    EXPECT_EQ(track->addHintDescription(new QTFrame), 0);
    const QTFrame* joined = track->getHintDescription();
    ASSERT_EQ(joined->getDataLength(), 3U);
    EXPECT_EQ(Bytes(joined->getData(), joined->getData() + 3), hex("01 01 02"));
    EXPECT_EQ(track->setHintDescription(track->getHintDescription()), 0);
    EXPECT_EQ(track->setHintDescription(nullptr), 0);
    EXPECT_EQ(track->getHintDescription(), nullptr);
    unsigned char name[] = "abc";
    EXPECT_EQ(track->setCompressorName(3, nullptr), -1);
    EXPECT_EQ(track->setCompressorName(3, name), 0);
    EXPECT_EQ(track->getCompressorNameLength(), 3U);
    EXPECT_STREQ(reinterpret_cast<const char*>(track->getCompressorName()), "abc");
}

TEST(TrackMatrix, ThatIsSetIsWrittenAsIntegers) {
    TKHD header(1U);
    const unsigned int words[] = {0, 1, 0, 0xFFFFFFFF, 0, 0, 2, 3, 1};
    EXPECT_EQ(header.setMatrix(nullptr), -1);
    EXPECT_EQ(header.setMatrix(words), 0);
    const Bytes bytes = take(header.serialize());
    // 0xFFFFFFFF becomes 2^32 as a float, of which nothing is left in 16 bits
    EXPECT_EQ(
        Bytes(bytes.begin() + 48, bytes.begin() + 84),
        hex({"00000000 00010000 00000000", "00000000 00000000 00000000", "00020000 00030000 40000000"}));
}

TEST(DataReference, TakesItsDataOver) {
    DREFEntry entry(fourCC("alis"), 0U);
    auto* data = static_cast<unsigned char*>(std::malloc(2));
    data[0] = 1;
    data[1] = 2;
    EXPECT_EQ(entry.setData(2, nullptr), -1);
    EXPECT_EQ(entry.setData(2, data), 0);
    EXPECT_EQ(entry.setData(2, entry.getData()), 0); // its own again
    EXPECT_EQ(take(entry.serialize()), hex("0000000E 'alis' 00000000 0102"));
    EXPECT_EQ(entry.setData(0, nullptr), 0);
    EXPECT_EQ(entry.updateSize(), 12U);
    DREF table;
    EXPECT_EQ(table.addDataReference(nullptr), -1);
    table.setNumberOfEntries(1);
    EXPECT_THROW(take(table.serialize()), Ketra::CException);
}

} // namespace
} // namespace test
