// Averages and bandwidths of prepared hint tracks, as servers have come to expect them.
#include <qt/QTAtoms.h>
#include <qt/QTTrack.h>

#include <gtest/gtest.h>
#include <memory>

namespace test {
namespace {

using namespace Ketra::QT;

struct Prepared {
    std::unique_ptr<QTTrack> made;
    std::unique_ptr<QTAtom> trak;

    Prepared(unsigned int type, std::uint64_t bytes, unsigned short packets, double seconds,
             unsigned int maxRate)
        : made(QTTrack::createNewQTTrackFromType(3, type, kMP4)), trak(made->getTrak()) {
        track().setTotalDataSize(bytes);
        track().setRTPPacketNumber(packets);
        track().setDuration(seconds);
        track().setMaxBitRate(maxRate);
        track().prepareForWriting();
    }
    QTHintTrack& track() const { return dynamic_cast<QTHintTrack&>(*made); }
    const HMHD& header() const {
        QTAtom* at = trak.get();
        for (const unsigned int type : {fourCC("mdia"), fourCC("minf"), fourCC("hmhd")}) {
            at = at->getAtomOfType(type);
        }
        return dynamic_cast<const HMHD&>(*at);
    }
};

TEST(HintAverages, OfBitRates) {
    const Prepared prepared(fourCC("vihi"), 50000, 40, 10, 128000);
    EXPECT_EQ(prepared.track().getHintAverageBitRate(), 38980U); // (48720 / 10 + 0.5) * 8
    EXPECT_EQ(prepared.header().getAvgBitRate(), 38980U);
    EXPECT_EQ(prepared.header().getSlidingAvgBitRate(), 2338800U);
    EXPECT_EQ(prepared.header().getMaxBitRate(), 128000U);
    // (9999999.5 + 0.5) * 8 = 80000000, sixty times of which have no room in 32 bits
    const Prepared fast(fourCC("auhi"), 19999999, 0, 2, 0);
    EXPECT_EQ(fast.track().getHintAverageBitRate(), 80000000U);
    EXPECT_EQ(fast.header().getSlidingAvgBitRate(), 505032704U);
}

TEST(HintAverages, OfPackets) {
    EXPECT_EQ(Prepared(fourCC("auhi"), 1320, 10, 1, 0).header().getAvgPDUSize(), 100U);
    EXPECT_EQ(Prepared(fourCC("auhi"), 100000, 64, 1, 0).header().getAvgPDUSize(), 1530U);
    EXPECT_EQ(Prepared(fourCC("vihi"), 1320, 10, 1, 0).header().getAvgPDUSize(), 35229U);
    EXPECT_EQ(Prepared(fourCC("vihi"), 100000, 64, 1, 0).header().getAvgPDUSize(), 17098U);
    EXPECT_EQ(Prepared(fourCC("vihi"), 65536, 8, 1, 0).header().getAvgPDUSize(), 8192U);
    for (const unsigned int type : {fourCC("vihi"), fourCC("auhi")}) {
        EXPECT_EQ(Prepared(type, 1320, 0, 1, 0).header().getAvgPDUSize(), 0U); // none to share among
        EXPECT_EQ(Prepared(type, 1320, 10, 0, 0).track().getHintAverageBitRate(), 0U);
    }
}

TEST(HintAverages, BandwidthCountsKilobitsOf1024) {
    const auto bandwidth = [](unsigned int rate) {
        return Prepared(fourCC("vihi"), 1, 1, 1, rate).track().getSDPBandwidth();
    };
    EXPECT_EQ(bandwidth(128000), 125U);
    EXPECT_EQ(bandwidth(100000), 97U);
    EXPECT_EQ(bandwidth(1024), 1U);
    EXPECT_EQ(bandwidth(1023), 0U);
}

} // namespace
} // namespace test
