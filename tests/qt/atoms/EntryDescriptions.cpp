// The typed descriptions: the bytes behind an entry's header.
#include "support/AtomFile.h"

#include <qt/QTAtoms/entries/STSDAudio.h>
#include <qt/QTAtoms/entries/STSDHint.h>
#include <qt/QTAtoms/entries/STSDText.h>
#include <qt/QTAtoms/entries/STSDTimeCode.h>
#include <qt/QTAtoms/entries/STSDVideo.h>

#include <cstring>
#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

unsigned char* text(Bytes& bytes) { return bytes.data(); }

template <class Description>
Description adopted() {
    return Description(new QTAtom(8, fourCC("abcd")));
}

TEST(VideoDescription, WritesSeventyBytes) {
    STSDVideo video;
    EXPECT_EQ(video.getSize(), 70U);
    EXPECT_EQ(take(video.serialize()), repeat(0, 70));
    video.setVersion(1);
    video.setRevisionLevel(2);
    video.setVendor(fourCC("appl"));
    video.setTemporalQuality(3);
    video.setSpatialQuality(4);
    video.setWidth(720);
    video.setHeight(576);
    video.setHorizontalResolution(72);
    video.setVerticalResolution(72.5F);
    video.setFrameCount(1);
    Bytes name = hex("'H264'");
    video.setCompressorName(4, text(name));
    video.setDepth(24);
    video.setColorTableID(65535);
    EXPECT_EQ(take(video.serialize()), hex({"0001 0002 'appl'",  // version, revision, vendor
                                            "00000003 00000004", // qualities
                                            "02D0 0240",         // width, height
                                            "00480000 00487FFF", // 72, 72.5: trunc(0.5 x 65535) = 32767
                                            "00000000 0001",     // data size, frame count
                                            "04 'H264'"}) +      // compressor name
                                           repeat(0, 27) +
                                           hex("0018 FFFF")); // depth, colour table
    EXPECT_EQ(video.updateSize(), 70U);
    EXPECT_EQ(video.parse(), 0);
    EXPECT_EQ(adopted<STSDVideo>().updateSize(), 70U);
}

TEST(VideoDescription, NameOfThirtyTwoBytesFillsTheField) {
    STSDVideo video;
    Bytes name = repeat('n', 40);
    EXPECT_EQ(video.setCompressorName(40, text(name)), 0);
    EXPECT_EQ(video.getCompressorNameLength(), 32U);
    Bytes bytes = take(video.serialize());
    EXPECT_EQ(Bytes(bytes.begin() + 34, bytes.begin() + 66), repeat('n', 32));
    EXPECT_EQ(video.setCompressorName(31, text(name)), 0);
    bytes = take(video.serialize());
    EXPECT_EQ(Bytes(bytes.begin() + 34, bytes.begin() + 66), Bytes{31} + repeat('n', 31));
    EXPECT_EQ(video.setCompressorName(1, nullptr), -1);
    EXPECT_EQ(video.getCompressorNameLength(), 31U);
    EXPECT_EQ(video.setCompressorName(2, video.getCompressorName()), 0); // its own
    EXPECT_STREQ(reinterpret_cast<char*>(video.getCompressorName()), "nn");
    EXPECT_EQ(video.setCompressorName(0, nullptr), 0);
    EXPECT_EQ(video.getCompressorNameLength(), 0U);
}

STSDAudio audio(unsigned short version) {
    STSDAudio a;
    a.setVersion(version);
    a.setRevisionLevel(1);
    a.setVendor(fourCC("appl"));
    a.setChannels(2);
    a.setSampleSize(16);
    a.setCompressionID(0xFFFE);
    a.setPacketSize(5);
    a.setSampleRate(44100);
    a.setSamplesPerPacket(1024);
    a.setBytesPerPacket(6);
    a.setBytesPerFrame(7);
    a.setBytesPerSample(2);
    return a;
}

TEST(AudioDescription, VersionZeroLeavesTheRestOfANewOneEmpty) {
    STSDAudio a = audio(0);
    EXPECT_EQ(a.getSize(), 36U);
    const Bytes body = hex({"0000 0001 'appl'",    // version, revision, vendor
                            "0002 0010 FFFE 0005", // channels, sample size, compression ID, packet size
                            "AC440000"});          // 44100
    EXPECT_EQ(take(a.serialize()), body + repeat(0, 16));
    a.setSize(20);
    EXPECT_EQ(a.updateSize(), 20U);
    EXPECT_EQ(take(a.serialize()), body);
    EXPECT_EQ(a.parse(), 0);
}

TEST(AudioDescription, VersionOneAddsThePackets) {
    EXPECT_EQ(take(audio(1).serialize()),
              hex({"0001 0001 'appl'", "0002 0010 FFFE 0005", "AC440000",
                   "00000400 00000006 00000007 00000002"})); // per packet, packet, frame, sample
}

TEST(AudioDescription, VersionTwoHoldsConstantsInTheOldFields) {
    STSDAudio a = audio(2);
    a.setSampleRate(96000);
    a.setChannels(70000);
    a.setSize(56);
    EXPECT_EQ(take(a.serialize()), hex({"0002 0001 'appl'",    // version, revision, vendor
                                        "0003 0010 FFFE 0000", // constants
                                        "00010000",            //
                                        "00000048",            // 56 + 16
                                        "40F7700000000000",    // 96000.0
                                        "00011170",            // channels
                                        "7F000000",            // constant
                                        "00000000 00000000 00000000 00000000"}));
    a.setChannels(2);
    a.setBytesPerSample(3);
    a.setFormatSpecificFlags(static_cast<int>(0x80000F0C));
    a.setSize(36); // too small for this version
    const Bytes bytes = take(a.serialize());
    EXPECT_EQ(Bytes(bytes.begin() + 20, bytes.end()),
              hex({"00000048", "40F7700000000000", "00000002", "7F000000",
                   "00000018",    // bits per channel
                   "0000000C",    // low byte of the flags
                   "00000006",    // 2 channels of 3 bytes
                   "00000001"})); // one frame a packet
    a.setVersion(3);
    EXPECT_EQ(take(a.serialize()).size(), 56U);
    a.setSize(60);
    EXPECT_EQ(take(a.serialize()).size(), 60U);
    EXPECT_EQ(take(a.serialize())[23], 76);
}

TEST(AudioDescription, HighRatesKeepTheirLowBits) {
    STSDAudio a = audio(0);
    a.setSampleRate(96000); // 0x17700
    const Bytes bytes = take(a.serialize());
    EXPECT_EQ(Bytes(bytes.begin() + 16, bytes.begin() + 20), hex("77000000"));
    EXPECT_EQ(a.getSampleRate(), 96000.0F);
}

TEST(TextDescription, WritesFortyThreeBytesAndTheName) {
    STSDText a;
    EXPECT_EQ(a.getSize(), 43U);
    EXPECT_EQ(take(a.serialize()), hex({"00000000 00000001"}) + repeat(0, 28) + hex("FFFF FFFF FFFF 00"));
    a.setDisplayFlags(1);
    a.setTextJustification(2);
    a.setBackgroundColorR(3);
    a.setBackgroundColorG(4);
    a.setBackgroundColorB(5);
    a.setDefaultTextBoxTop(6);
    a.setDefaultTextBoxLeft(7);
    a.setDefaultTextBoxBottom(8);
    a.setDefaultTextBoxRight(9);
    a.setReserved(10);
    a.setFontNumber(11);
    a.setFontFace(12);
    a.setReserved2(0x101);
    a.setReserved3(0x1000C);
    a.setForegroundColorR(13);
    a.setForegroundColorG(14);
    a.setForegroundColorB(15);
    Bytes name = hex("'Geneva'");
    a.setTextName(6, text(name));
    EXPECT_EQ(take(a.serialize()), hex({"00000001 00000002",   // flags, justification
                                        "0003 0004 0005",      // background
                                        "0006 0007 0008 0009", // top, left, bottom, right
                                        "000000000000000A",    // reserved
                                        "000B 000C",           // font
                                        "010C",                // both reserved values
                                        "000D 000E 000F",      // foreground
                                        "06 'Geneva'"}));
    EXPECT_EQ(a.updateSize(), 49U);
    EXPECT_EQ(a.parse(), 0);
    EXPECT_EQ(a.setTextName(3, nullptr), -1);
    Bytes longName = repeat('x', 300);
    a.setTextName(300, text(longName));
    EXPECT_EQ(a.getTextNameLength(), 255U);
    EXPECT_EQ(take(a.serialize()).size(), 43U + 255);
    EXPECT_EQ(take(a.serialize())[42], 255);
    a.setTextName(0, nullptr);
    EXPECT_EQ(a.getTextName(), nullptr);
}

TEST(TimeCodeDescription, WritesTwentyBytesWithoutASource) {
    STSDTimeCode a;
    EXPECT_EQ(a.getSize(), 20U);
    a.setReserved(1);
    a.setFlags(2);
    EXPECT_EQ(take(a.serialize()), hex({"00000001 00000002", // reserved, flags
                                        "000009C4 00000064", // 2500, 100
                                        "19 000000"}));      // 25 frames
    Bytes source = hex("'reel'");
    a.setTimeScale(25);
    a.setFrameDuration(1);
    a.setNumberOfFrames(0x119);
    a.setSourceReference(4, text(source));
    EXPECT_EQ(take(a.serialize()),
              hex({"00000001 00000002 00000019 00000001 19 00", "00000010 'name'", "0004 0000 'reel'"}));
    EXPECT_EQ(a.updateSize(), 34U);
    EXPECT_EQ(a.setSourceReference(1, nullptr), -1);
    Bytes endless = repeat('x', 70000);
    a.setSourceReference(70000, text(endless));
    unsigned int length = 0;
    unsigned char* bytes = nullptr;
    a.getSourceReference(length, bytes);
    EXPECT_EQ(length, 65535U);
    a.setSourceReference(0, nullptr);
    a.getSourceReference(length, bytes);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(bytes, nullptr);
}

TEST(HintDescription, WritesEightBytes) {
    STSDHint a;
    EXPECT_EQ(a.getSize(), 8U);
    EXPECT_EQ(take(a.serialize()), hex("0001 0001 00000000"));
    a.setHintTrackVersion(2);
    a.setLastCompatibleVersion(3);
    a.setMaxPacketSize(1450);
    EXPECT_EQ(take(a.serialize()), hex("0002 0003 000005AA"));
    EXPECT_EQ(a.getHintTrackVersion(), 2);
    EXPECT_EQ(a.getLastCompatibleVersion(), 3);
    EXPECT_EQ(a.getMaxPacketSize(), 1450U);
    EXPECT_EQ(a.parse(), 0);
}

} // namespace
} // namespace test
