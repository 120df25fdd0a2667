#include "support/MovieBytes.h"

#include <base/CException.h>
#include <qt/QTTrack.h>

#include <gtest/gtest.h>
#include <memory>

namespace test {
namespace {

using namespace Ketra::QT;
using FramePtr = std::unique_ptr<QTFrame>;

/// Sizes 10, 20, 30 in one chunk and 40 in another, 1/10 s each.
TrackSpec fourSamples() {
    TrackSpec t;
    t.scale = 100;
    t.stts = {{4, 10}};
    t.sizes = {10, 20, 30, 40};
    t.chunks = {3, 1};
    return t;
}

void expectThirdSampleNext(QTChunk& chunk) {
    EXPECT_EQ(chunk.getCurrentSampleNumber(), 3U);
    EXPECT_EQ(chunk.getCurrentTime(), 0.2);
    EXPECT_EQ(chunk.getChunkNumber(), 1U);
    const FramePtr frame(chunk.getNextFrame());
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->getDataLength(), 30U);
    EXPECT_EQ(frame->getTime(), 0.2);
    const FramePtr behind(chunk.getNextFrame());
    ASSERT_TRUE(behind);
    EXPECT_EQ(behind->getTime(), 0.3);
}

TEST(Position, StaysWhenATimeIsBeyondTheDuration) {
    const MovieFile movie(fourSamples());
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(3), 0);
    EXPECT_EQ(chunk->initWithTime(0.5F), -1);
    expectThirdSampleNext(*chunk);
}

TEST(Position, StaysWhenASampleIsOutOfRange) {
    const MovieFile movie(fourSamples());
    QTChunk* chunk = movie.track()->getChunk();
    for (const unsigned int n : {0U, 5U}) {
        ASSERT_EQ(chunk->initWithSample(3), 0);
        EXPECT_THROW(chunk->initWithSample(n), Ketra::CException);
        expectThirdSampleNext(*chunk);
    }
}

TEST(Position, StaysWhileATimeIsLookedUp) {
    const MovieFile movie(fourSamples());
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(3), 0);
    unsigned int sample = 0;
    EXPECT_EQ(chunk->findClosestTime(0.1, &sample), 0.1); // the very end of sample 1 is where 2 begins
    EXPECT_EQ(sample, 2U);
    EXPECT_EQ(chunk->findClosestTime(0.05, nullptr), 0.0);
    expectThirdSampleNext(*chunk);
}

} // namespace
} // namespace test
