#include "Packets.h"
#include "ToolError.h"
#include "hint/NalPacketizer.h"
#include "hint/VisualPacketizer.h"

namespace test {
namespace {

using namespace Ketra::Tool;

const StreamFormat kVideo{true, "X", 90000, 0, {}};

TEST(H264Packets, ASmallUnitIsAPacket) {
    NalPacketizer packets(kVideo, 10, NalKind::kH264, 4);
    packets.add(sampleOf(hex("00000003 67 AA BB 00000002 65 CC")));
    expectPayloads(packets.take(), {{hex("67 AA BB"), false}, {hex("65 CC"), true}});
    packets.finish();
    EXPECT_TRUE(packets.take().empty());
}

TEST(H264Packets, ALargeUnitComesInFragments) {
    NalPacketizer packets(kVideo, 5, NalKind::kH264, 2);
    // Type 5, importance 3: the fragments' own header is 7C (3 and 28), then first/last and the type.
    packets.add(sampleOf(hex("0008 65 01 02 03 04 05 06 07")));
    expectPayloads(packets.take(),
                   {{hex("7C 85 01 02 03"), false}, {hex("7C 05 04 05 06"), false}, {hex("7C 45 07"), true}});
}

TEST(H264Packets, AUnitThatJustFitsIsNotCut) {
    NalPacketizer packets(kVideo, 5, NalKind::kH264, 1);
    packets.add(sampleOf(hex("05 41 01 02 03 04")));
    packets.add(sampleOf(hex("06 41 01 02 03 04 05")));
    expectPayloads(
        packets.take(),
        {{hex("41 01 02 03 04"), true}, {hex("5C 81 01 02 03"), false}, {hex("5C 41 04 05"), true}});
}

TEST(H264Packets, KeepsTheTimesOfTheSample) {
    NalPacketizer packets(kVideo, 50, NalKind::kH264, 1);
    const Bytes bytes = hex("01 09");
    packets.add({{bytes.data(), bytes.size()}, 100, 250, 30, true});
    const auto groups = packets.take();
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(groups[0].decode, 100);
    EXPECT_EQ(groups[0].presentation, 250);
    EXPECT_EQ(groups[0].duration, 30);
    EXPECT_TRUE(groups[0].key);
}

TEST(H264Packets, SkipsEmptyUnitsAndRefusesCutOnes) {
    NalPacketizer packets(kVideo, 50, NalKind::kH264, 1);
    packets.add(sampleOf(hex("00 01 06 00")));
    expectPayloads(packets.take(), {{hex("06"), true}});
    packets.add(sampleOf(hex("00 00")));
    EXPECT_TRUE(packets.take().empty());
    EXPECT_THROW(packets.add(sampleOf(hex("03 06 07"))), ToolError);
    NalPacketizer wide(kVideo, 50, NalKind::kH264, 4);
    EXPECT_THROW(wide.add(sampleOf(hex("000000"))), ToolError);
}

TEST(H265Packets, FragmentsKeepLayerAndTemporalId) {
    NalPacketizer packets(kVideo, 6, NalKind::kH265, 1);
    // Type 19 is 26 in the first byte; 49 is 62. The second byte stays.
    packets.add(sampleOf(hex("03 26 01 AA 09 26 01 01 02 03 04 05 06 07")));
    expectPayloads(packets.take(), {{hex("26 01 AA"), false},
                                    {hex("62 01 93 01 02 03"), false},
                                    {hex("62 01 13 04 05 06"), false},
                                    {hex("62 01 53 07"), true}});
    packets.add(sampleOf(hex("01 26 03 27 41 55"))); // one byte is no unit; a layer's lowest bit stays
    expectPayloads(packets.take(), {{hex("27 41 55"), true}});
}

TEST(VisualPackets, CutWhereTheyMust) {
    VisualPacketizer packets(kVideo, 4);
    packets.add(sampleOf(hex("000001B6 11 22 33 44 55")));
    expectPayloads(packets.take(),
                   {{hex("000001B6"), false}, {hex("11 22 33 44"), false}, {hex("55"), true}});
    packets.add(sampleOf(hex("000001B6")));
    expectPayloads(packets.take(), {{hex("000001B6"), true}});
    packets.add(sampleOf({}));
    EXPECT_TRUE(packets.take().empty());
}

TEST(VisualPackets, CutInFrontOfAStartCode) {
    VisualPacketizer packets(kVideo, 8);
    packets.add(sampleOf(hex("000001B3 01 000001B6 11 22 33")));
    expectPayloads(packets.take(), {{hex("000001B3 01"), false}, {hex("000001B6 11 22 33"), true}});
}

} // namespace
} // namespace test
