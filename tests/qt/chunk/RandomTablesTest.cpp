// Every fast path against the plain walk, on random tables.
#include "qt/chunk/PlainWalk.h"
#include "support/MovieBytes.h"

#include <base/CException.h>
#include <qt/QTTrack.h>
#include <qt/QTUtils.h>

#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace test {
namespace {

using namespace Ketra::QT;
using FramePtr = std::unique_ptr<QTFrame>;

constexpr std::uint64_t kMediaStart = 28; // "ftyp" and the header of "mdat" in front of the media

class Dice {
public:
    explicit Dice(unsigned int seed) : engine_(seed) {}
    std::uint32_t operator()(std::uint32_t below) { return static_cast<std::uint32_t>(engine_() % below); }

private:
    std::mt19937 engine_;
};

/// Runs of random lengths over `count` samples; zero counts and equal neighbours included.
TrackSpec::Runs randomRuns(Dice& dice, std::uint32_t count, std::uint32_t longest, std::uint32_t values) {
    TrackSpec::Runs runs;
    for (std::uint32_t done = 0; done < count;) {
        const std::uint32_t length = std::min(dice(longest + 1), count - done);
        runs.emplace_back(length, dice(values));
        done += length;
    }
    return runs;
}

TrackSpec randomTrack(unsigned int seed) {
    Dice dice(seed);
    TrackSpec t;
    const std::uint32_t count = 1 + dice(700);
    t.scale = 1 + dice(100000);
    t.stts = randomRuns(dice, count, seed % 3 ? 5 : 200, 50);
    if (seed % 2) t.ctts = randomRuns(dice, count - dice(count), seed % 5 ? 3 : 100, 90);
    if (dice(4) == 0) t.ctts.emplace(t.ctts.begin(), 0, 7); // an empty first run is passed at once
    if (seed % 4 == 1) {
        t.hasSync = true;
        for (std::uint32_t n = 1; n <= count; n += 1 + dice(40)) {
            t.sync.push_back(n);
        }
    }
    if (seed % 3 == 0) {
        t.constantSize = 1 + dice(9);
        t.constantCount = count;
    } else {
        for (std::uint32_t i = 0; i < count; ++i) {
            t.sizes.push_back(1 + dice(12));
        }
    }
    const std::uint32_t largest = seed % 7 ? 1 + dice(20) : 600;
    for (std::uint32_t done = 0; done < count;) {
        const std::uint32_t length = std::min(dice(largest + 1), count - done);
        if (length == 0 && t.chunks.empty()) continue; // a first chunk without samples has a rule of its own
        t.chunks.push_back(length);
        done += length;
    }
    t.wide = seed % 2 == 0;
    return t;
}

class RandomTables : public testing::TestWithParam<unsigned int> {};

TEST_P(RandomTables, SeekingFindsWhatWalkingFinds) {
    const TrackSpec spec = randomTrack(GetParam());
    const MovieFile movie(spec);
    ASSERT_TRUE(movie);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_TRUE(chunk);
    Dice dice(GetParam() + 1000);
    for (int round = 0; round < 60; ++round) {
        const std::uint32_t n = round == 0 ? spec.sampleCount() : 1 + dice(spec.sampleCount());
        const PlainSample plain = plainWalk(spec, n, kMediaStart);
        ASSERT_TRUE(plain.found);
        ASSERT_EQ(chunk->initWithSample(n), 0) << n;
        EXPECT_EQ(chunk->getChunkNumber(), plain.chunk) << n;
        EXPECT_EQ(chunk->getSampleOffset(), plain.offset) << n;
        EXPECT_EQ(chunk->getSampleSize(), plain.size) << n;
        EXPECT_EQ(chunk->getIsKeyframe(), plain.key) << n;
        const double decode = static_cast<double>(plain.decodeTicks) / spec.scale;
        EXPECT_EQ(chunk->getCurrentTime(), decode) << n;
        EXPECT_EQ(chunk->findTime(n), decode) << n;
        const FramePtr frame(chunk->getNextFrame());
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->getDecodeTime(), decode);
        EXPECT_EQ(frame->getTime(), decode + plain.compositionOffset / static_cast<double>(spec.scale)) << n;
        EXPECT_EQ(frame->getDuration(), plain.duration / static_cast<double>(spec.scale)) << n;
        EXPECT_EQ(Bytes(frame->getData(), frame->getData() + frame->getDataLength()),
                  sampleBytes(spec, n - 1));
    }
}

TEST_P(RandomTables, SteppingFindsWhatWalkingFinds) {
    const TrackSpec spec = randomTrack(GetParam());
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(1), 0);
    for (std::uint32_t n = 1; n <= spec.sampleCount(); ++n) {
        const PlainSample plain = plainWalk(spec, n, kMediaStart);
        ASSERT_EQ(chunk->getChunkNumber(), plain.chunk) << n;
        ASSERT_EQ(chunk->getSampleOffset(), plain.offset) << n;
        ASSERT_EQ(chunk->getCurrentSampleNumber(), n);
        const FramePtr frame(chunk->getNextFrame());
        ASSERT_TRUE(frame) << n;
        const double decode = static_cast<double>(plain.decodeTicks) / spec.scale;
        ASSERT_EQ(frame->getDecodeTime(), decode) << n;
        ASSERT_EQ(frame->getTime(), decode + plain.compositionOffset / static_cast<double>(spec.scale)) << n;
        ASSERT_EQ(frame->getDuration(), plain.duration / static_cast<double>(spec.scale)) << n;
        ASSERT_EQ(frame->getIsKeyFrame(), plain.key) << n;
        ASSERT_EQ(frame->getDataLength(), plain.size) << n;
    }
    EXPECT_FALSE(FramePtr(chunk->getNextFrame()));
}

TEST_P(RandomTables, TimesFindTheSampleThatCoversThem) {
    const TrackSpec spec = randomTrack(GetParam());
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    Dice dice(GetParam() + 2000);
    for (int round = 0; round < 40; ++round) {
        const std::uint32_t n = 1 + dice(spec.sampleCount());
        const PlainSample plain = plainWalk(spec, n, kMediaStart);
        if (plain.duration < 2) continue;
        // The middle of the sample, in double, cannot be anybody else's.
        const double t = (static_cast<double>(plain.decodeTicks) + plain.duration / 2.0) / spec.scale;
        unsigned int found = 0;
        ASSERT_GE(chunk->findClosestTime(t, &found), 0.0);
        EXPECT_EQ(found, n);
    }
}

TEST_P(RandomTables, ObjectsAnswerLikePackedTables) {
    const TrackSpec spec = randomTrack(GetParam());
    const MovieFile movie(spec);
    const MovieFile handedOut(spec);
    // Asking for records turns the tables into objects; nothing else may change.
    QTAtom* root = handedOut->getRoot();
    QTUtils* utils = handedOut->getUtils();
    ASSERT_TRUE(root);
    dynamic_cast<STTS&>(*utils->getAtomOfType(fourCC("stts"))).getTimeToSampleTable();
    dynamic_cast<STSC&>(*utils->getAtomOfType(fourCC("stsc"))).getSampleToChunkTable();
    dynamic_cast<STSZ&>(*utils->getAtomOfType(fourCC("stsz"))).getSampleSizeTable();
    dynamic_cast<STCO&>(*utils->getAtomOfType(fourCC("stco"))).getChunkOffsetTable();
    if (auto* ctts = dynamic_cast<CTTS*>(utils->getAtomOfType(fourCC("ctts"))))
        ctts->getCompositionTimeTable();
    if (auto* stss = dynamic_cast<STSS*>(utils->getAtomOfType(fourCC("stss")))) stss->getSyncSampleTable();
    QTChunk* packed = movie.track()->getChunk();
    QTChunk* objects = handedOut.track()->getChunk();
    Dice dice(GetParam() + 3000);
    for (int round = 0; round < 20; ++round) {
        const std::uint32_t n = 1 + dice(spec.sampleCount());
        ASSERT_EQ(packed->initWithSample(n), 0);
        ASSERT_EQ(objects->initWithSample(n), 0);
        EXPECT_EQ(packed->getSampleOffset(), objects->getSampleOffset());
        EXPECT_EQ(packed->getCurrentTime(), objects->getCurrentTime());
        EXPECT_EQ(packed->getPreviousKeyframe(), objects->getPreviousKeyframe());
        EXPECT_EQ(packed->getNextKeyframe(), objects->getNextKeyframe());
        const FramePtr a(packed->getNextFrame());
        const FramePtr b(objects->getNextFrame());
        EXPECT_EQ(a->getTime(), b->getTime());
        EXPECT_EQ(a->getIsKeyFrame(), b->getIsKeyFrame());
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomTables, testing::Range(1U, 41U));

} // namespace
} // namespace test
