#include "Packets.h"
#include "ToolError.h"
#include "hint/AacPacketizer.h"
#include "hint/AmrPacketizer.h"
#include "hint/PcmPacketizer.h"

namespace test {
namespace {

using namespace Ketra::Tool;

const StreamFormat kAudio{false, "X", 8000, 1, {}};

TEST(AacPackets, HoldSeveralFrames) {
    AacPacketizer packets(kAudio, 100);
    packets.add(sampleOf(hex("AA BB CC"), 0, 1024));
    packets.add(sampleOf(hex("DD EE"), 1024, 1024));
    EXPECT_TRUE(packets.take().empty());
    packets.finish();
    const auto groups = packets.take();
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(groups[0].decode, 0);
    EXPECT_EQ(groups[0].duration, 2048);
    // 32 bits of headers: sizes 3 and 2, each shifted over three bits of index.
    expectPayloads(groups, {{hex("0020 0018 0010 AA BB CC DD EE"), true}});
}

TEST(AacPackets, AreFullAtEightFramesOrAtTheirSize) {
    AacPacketizer packets(kAudio, 100);
    for (int i = 0; i < 9; ++i) {
        packets.add(sampleOf(hex("11"), 1024 * i, 1024));
    }
    expectPayloads(packets.take(),
                   {{hex("0080") + hex("0008 0008 0008 0008 0008 0008 0008 0008") + repeat(0x11, 8), true}});
    packets.finish();
    expectPayloads(packets.take(), {{hex("0010 0008 11"), true}});

    AacPacketizer small(kAudio, 10); // 2 + 2 + 3 fit twice only with 2 + 4 + 6 bytes
    small.add(sampleOf(hex("01 02 03"), 0, 1024));
    small.add(sampleOf(hex("04 05 06"), 1024, 1024));
    small.finish();
    expectPayloads(small.take(), {{hex("0010 0018 01 02 03"), true}, {hex("0010 0018 04 05 06"), true}});
}

TEST(AacPackets, BeginAnewBehindAGap) {
    AacPacketizer packets(kAudio, 100);
    packets.add(sampleOf(hex("11"), 0, 1024));
    packets.add(sampleOf(hex("22"), 4096, 1024));
    packets.finish();
    const auto groups = packets.take();
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[1].presentation, 4096);
}

TEST(AacPackets, CutALargeFrame) {
    AacPacketizer packets(kAudio, 8);
    packets.add(sampleOf(hex("11"), 0, 1024));
    packets.add(sampleOf(hex("01 02 03 04 05 06"), 1024, 1024)); // every fragment states all six bytes
    expectPayloads(
        packets.take(),
        {{hex("0010 0008 11"), true}, {hex("0010 0030 01 02 03 04"), false}, {hex("0010 0030 05 06"), true}});
    EXPECT_THROW(packets.add(sampleOf(repeat(0, 8192))), ToolError); // more than 13 bits of size
    packets.add(sampleOf({}));
    packets.finish();
    EXPECT_TRUE(packets.take().empty());
}

TEST(AmrPackets, HoldTheFramesOfASample) {
    AmrPacketizer packets(kAudio, 100, false);
    // Mode 0 has 12 bytes of speech, 8 (comfort noise) 5, 15 (nothing) none.
    packets.add(sampleOf(hex("04") + repeat(0xAA, 12) + hex("44") + repeat(0xBB, 5) + hex("7C"), 160, 480));
    const auto groups = packets.take();
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(groups[0].decode, 160);
    EXPECT_EQ(groups[0].duration, 480);
    expectPayloads(groups, {{hex("F0 84 C4 7C") + repeat(0xAA, 12) + repeat(0xBB, 5), true}});
}

TEST(AmrPackets, MarkTheBeginningOfSpeech) {
    AmrPacketizer packets(kAudio, 100, false);
    for (const Bytes& sample :
         {hex("04") + repeat(1, 12), hex("04") + repeat(2, 12), hex("7C"), hex("04") + repeat(3, 12)}) {
        packets.add(sampleOf(sample, 0, 160));
    }
    expectPayloads(packets.take(), {{hex("F0 04") + repeat(1, 12), true},
                                    {hex("F0 04") + repeat(2, 12), false},
                                    {hex("F0 7C"), false},
                                    {hex("F0 04") + repeat(3, 12), true}});
}

TEST(AmrPackets, CountComfortNoiseAsSilence) {
    AmrPacketizer packets(kAudio, 100, false);
    const Bytes speech = hex("04") + repeat(1, 12);
    const Bytes noise = hex("44") + repeat(2, 5);
    // The last sample but one begins with noise: its packet does not begin the speech, nor does what follows
    // it.
    for (const Bytes& sample : {speech, noise, hex("7C"), noise, speech, noise, noise + speech, speech}) {
        packets.add(sampleOf(sample, 0, 160));
    }
    const auto groups = packets.take();
    std::string markers;
    for (const auto& group : groups) {
        markers += group.payloads[0].marker ? '1' : '0';
    }
    EXPECT_EQ(markers, "10001000");
    AmrPacketizer wide(kAudio, 100, true);
    wide.add(sampleOf(hex("44") + repeat(1, 60), 0, 320)); // speech at 23.85 kbit/s
    EXPECT_TRUE(wide.take()[0].payloads[0].marker);
    AmrPacketizer wideNoise(kAudio, 100, true);
    wideNoise.add(sampleOf(hex("4C") + repeat(1, 5), 0, 320));
    EXPECT_FALSE(wideNoise.take()[0].payloads[0].marker);
}

TEST(AmrPackets, ShareTheTimeOfALargeSample) {
    AmrPacketizer packets(kAudio, 30, false); // 1 + 2 * 13 bytes fit, 1 + 3 * 13 do not
    packets.add(
        sampleOf(hex("04") + repeat(1, 12) + hex("04") + repeat(2, 12) + hex("04") + repeat(3, 12), 0, 480));
    const auto groups = packets.take();
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].payloads[0].bytes.size(), 27U);
    EXPECT_EQ(groups[0].duration, 320);
    EXPECT_EQ(groups[1].decode, 320);
    EXPECT_EQ(groups[1].duration, 160);
}

TEST(AmrPackets, RefuseWhatIsNoFrame) {
    AmrPacketizer narrow(kAudio, 100, false);
    EXPECT_THROW(narrow.add(sampleOf(hex("04 01 02"))), ToolError); // cut off
    EXPECT_THROW(narrow.add(sampleOf(hex("64"))), ToolError);       // type 12
    AmrPacketizer wide(kAudio, 100, true);
    wide.add(sampleOf(hex("04") + repeat(9, 17), 0, 320));
    expectPayloads(wide.take(), {{hex("F0 04") + repeat(9, 17), true}});
    EXPECT_THROW(wide.add(sampleOf(hex("54"))), ToolError); // type 10
}

TEST(PcmPackets, HoldWholeSampleFramesMostSignificantByteFirst) {
    const StreamFormat stereo{false, "L16", 8000, 2, {}};
    PcmPacketizer packets(stereo, 11, true); // room for two frames of four bytes
    packets.add(sampleOf(hex("0100 0200 0300 0400 0500 0600"), 50, 3));
    const auto groups = packets.take();
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].duration, 2);
    EXPECT_EQ(groups[1].decode, 52);
    EXPECT_EQ(groups[1].presentation, 52);
    EXPECT_EQ(groups[1].duration, 1);
    expectPayloads(groups, {{hex("0001 0002 0003 0004"), false}, {hex("0005 0006"), false}});

    packets.add(sampleOf(hex("0100 0200 0300 0400 0500 0600"), 0, 30)); // timed by another rate than its own
    EXPECT_EQ(packets.take()[1].decode, 20);

    PcmPacketizer big(stereo, 100, false);
    big.add(sampleOf(hex("0001 0002 00"))); // what is no whole frame stays out
    expectPayloads(big.take(), {{hex("0001 0002"), false}});
    PcmPacketizer none(stereo, 3, false);
    EXPECT_THROW(none.add(sampleOf(hex("00010002"))), ToolError);
}

} // namespace
} // namespace test
