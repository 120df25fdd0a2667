#include "support/MovieBytes.h"

#include <base/CException.h>
#include <qt/QTTrack.h>

#include <gtest/gtest.h>
#include <memory>

namespace test {
namespace {

using namespace Ketra::QT;
using FramePtr = std::unique_ptr<QTFrame>;

FramePtr next(QTChunk* chunk) { return FramePtr(chunk->getNextFrame()); }
Bytes bytesOf(const FramePtr& frame) {
    return frame && frame->getData() ? Bytes(frame->getData(), frame->getData() + frame->getDataLength())
                                     : Bytes();
}

TrackSpec sound(const std::string& format) {
    TrackSpec t;
    t.handler = "soun";
    t.format = format;
    t.scale = 8000;
    return t;
}

TEST(AudioReading, TakesTheSizeOfAPacketFromTheTrack) {
    TrackSpec spec = sound("amrw");
    spec.entries = {soundEntryV1("amrw", 1, 16, 8000, 1, 7, 7)};
    spec.stts = {{10, 160}};
    spec.constantSize = 1;
    spec.constantCount = 10;
    spec.bytesPerSample = 7;
    spec.chunks = {10};
    const MovieFile movie(spec);
    ASSERT_TRUE(movie);
    auto* track = dynamic_cast<QTAudioTrack*>(movie.track());
    ASSERT_TRUE(track);
    QTChunk* chunk = track->getChunk();
    ASSERT_EQ(chunk->initWithSample(2), 0);
    EXPECT_EQ(chunk->findSampleSize(2), 7U);
    track->setBytesPerFrame(10);
    ASSERT_EQ(chunk->initWithSample(2), 0);
    EXPECT_EQ(chunk->findSampleSize(2), 10U);
}

TEST(AudioReading, HandsOutPcmChunkByChunk) {
    TrackSpec spec = sound("sowt");
    spec.entries = {soundEntry("sowt", 2, 16, 8000)};
    spec.stts = {{1000, 1}};
    spec.constantSize = 1; // what many writers say of 4 bytes
    spec.constantCount = 1000;
    spec.bytesPerSample = 4;
    spec.chunks = {400, 400, 200};
    const MovieFile movie(spec);
    ASSERT_TRUE(movie);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_TRUE(chunk);
    ASSERT_EQ(chunk->initWithSample(1), 0);
    const unsigned int starts[] = {0, 400, 800};
    const unsigned int counts[] = {400, 400, 200};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(chunk->getSampleOffset(), 28U + starts[i] * 4);
        const FramePtr frame = next(chunk);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->getSamplesInFrame(), counts[i]);
        EXPECT_EQ(frame->getTime(), starts[i] / 8000.0);
        EXPECT_EQ(frame->getDecodeTime(), starts[i] / 8000.0);
        EXPECT_EQ(frame->getDuration(), counts[i] / 8000.0);
        EXPECT_EQ(frame->getEndTime(), (starts[i] + counts[i]) / 8000.0);
        EXPECT_TRUE(frame->getIsKeyFrame());
        EXPECT_EQ(bytesOf(frame), sampleBytes(spec, starts[i], counts[i]));
    }
    EXPECT_FALSE(next(chunk));
    // From the middle of a chunk its rest comes.
    ASSERT_EQ(chunk->initWithSample(500), 0);
    EXPECT_EQ(chunk->getCurrentTime(), 499 / 8000.0);
    const FramePtr rest = next(chunk);
    EXPECT_EQ(rest->getSamplesInFrame(), 301U);
    EXPECT_EQ(bytesOf(rest), sampleBytes(spec, 499, 301));
    EXPECT_EQ(chunk->getCurrentSampleNumber(), 801U);
    EXPECT_EQ(chunk->getChunkNumber(), 3U);
}

TEST(AudioReading, StopsAtTheSampleCount) {
    TrackSpec spec = sound("twos");
    spec.entries = {soundEntry("twos", 1, 16, 8000)};
    spec.stts = {{90, 1}};
    spec.constantSize = 2;
    spec.constantCount = 90;
    spec.chunks = {60, 60}; // the second chunk promises more than the track has
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(1), 0);
    EXPECT_EQ(next(chunk)->getSamplesInFrame(), 60U);
    const FramePtr frame = next(chunk);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->getSamplesInFrame(), 30U);
    EXPECT_EQ(frame->getDataLength(), 60U);
    EXPECT_FALSE(next(chunk));
}

TEST(AudioReading, GroupsImaPackets) {
    TrackSpec spec = sound("ima4");
    spec.entries = {soundEntry("ima4", 2, 16, 8000)};
    spec.stts = {{64 * 10, 1}};
    spec.constantSize = 1;
    spec.constantCount = 64 * 10;
    spec.chunks = {64 * 6, 64 * 4};
    // The media: 68 bytes for 64 stored samples, so build the file by hand.
    const Bytes brand = atom("ftyp", text("qt  ") + u32(0) + text("qt  "));
    Bytes media;
    for (unsigned int i = 0; i < 68 * 10; ++i) {
        media.push_back(static_cast<unsigned char>(i * 7));
    }
    Bytes moov = moovBytes({spec}, 600, 0);
    const std::uint64_t start = brand.size() + moov.size() + 8;
    moov = moovBytes({spec}, 600, start);
    // The second offset counts 384 one-byte samples; the chunk really lies 6 packets behind the first.
    const Bytes wrong = u32(start + 384);
    const Bytes right = u32(start + 6 * 68);
    const auto at = std::search(moov.begin(), moov.end(), wrong.begin(), wrong.end());
    ASSERT_NE(at, moov.end());
    std::copy(right.begin(), right.end(), at);
    const MovieFile movie(brand + moov + atom("mdat", media));
    ASSERT_TRUE(movie);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_TRUE(chunk);
    ASSERT_EQ(chunk->initWithSample(1), 0);
    EXPECT_EQ(chunk->getSampleSize(), 68U); // 34 bytes a channel
    const FramePtr first = next(chunk);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->getSamplesInFrame(), 6U);
    EXPECT_EQ(bytesOf(first), Bytes(media.begin(), media.begin() + 6 * 68));
    EXPECT_EQ(first->getDuration(), 6 * 64 / 8000.0);
    const FramePtr second = next(chunk);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->getSamplesInFrame(), 4U);
    EXPECT_EQ(bytesOf(second), Bytes(media.begin() + 6 * 68, media.end()));
    EXPECT_EQ(second->getTime(), 6 * 64 / 8000.0);
    EXPECT_FALSE(next(chunk));
    ASSERT_EQ(chunk->initWithSample(8), 0); // the second packet of the second chunk
    EXPECT_EQ(chunk->getSampleOffset(), start + 7 * 68);
    EXPECT_EQ(chunk->getCurrentTime(), 7 * 64 / 8000.0);
    unsigned int sample = 0;
    EXPECT_GE(chunk->findClosestTime(0.03, &sample), 0.0);
    EXPECT_EQ(sample, 240U / 64 + 1); // tick 240 lies in the fourth packet
}

TEST(AudioReading, ReadsOneStoredSampleAFrameInCompressedFormats) {
    for (const char* format :
         {"mp4a", "alac", "sqcp", "sevc", "samr", "sawb", "vdva", "Opus", "ac-3", "fLaC"}) {
        TrackSpec spec = sound(format);
        spec.stts = {{5, 1024}};
        spec.sizes = {7, 9, 11, 13, 15};
        spec.chunks = {3, 2};
        const MovieFile movie(spec);
        ASSERT_TRUE(movie) << format;
        QTChunk* chunk = movie.track()->getChunk();
        ASSERT_EQ(chunk->initWithSample(1), 0) << format;
        for (unsigned int i = 0; i < 5; ++i) {
            const FramePtr frame = next(chunk);
            ASSERT_TRUE(frame) << format;
            EXPECT_EQ(bytesOf(frame), sampleBytes(spec, i)) << format;
            EXPECT_EQ(frame->getSamplesInFrame(), 1U) << format;
            EXPECT_EQ(frame->getDuration(), 1024 / 8000.0) << format;
            EXPECT_EQ(frame->getTime(), i * 1024 / 8000.0) << format;
        }
        EXPECT_FALSE(next(chunk)) << format;
    }
}

TEST(AudioReading, UsesThePacketsOfVersion1) {
    TrackSpec spec = sound("MAC6");
    spec.entries = {soundEntryV1("MAC6", 1, 8, 8000, 6, 2, 2)}; // 6 samples in 2 bytes
    spec.stts = {{60, 1}};
    spec.constantSize = 1;
    spec.constantCount = 60;
    spec.chunks = {60};
    Bytes media;
    for (unsigned int i = 0; i < 20; ++i) {
        media.push_back(static_cast<unsigned char>(i));
    }
    const Bytes brand = atom("ftyp", text("qt  ") + u32(0) + text("qt  "));
    const std::uint64_t start = brand.size() + moovBytes({spec}, 600, 0).size() + 8;
    const MovieFile movie(brand + moovBytes({spec}, 600, start) + atom("mdat", media));
    ASSERT_TRUE(movie);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(1), 0);
    EXPECT_EQ(chunk->getSampleSize(), 2U);
    const FramePtr frame = next(chunk);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->getSamplesInFrame(), 10U);
    EXPECT_EQ(bytesOf(frame), media);
    EXPECT_EQ(frame->getDuration(), 60 / 8000.0);
}

TEST(AudioReading, SurvivesDescriptionsWithoutNumbers) {
    TrackSpec spec = sound("sowt");
    spec.entries = {soundEntry("sowt", 0, 0, 8000)}; // no channels: a sample has no size
    spec.stts = {{10, 1}};
    spec.constantSize = 4;
    spec.constantCount = 10;
    spec.chunks = {10};
    const MovieFile movie(spec);
    ASSERT_TRUE(movie);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_TRUE(chunk);
    EXPECT_THROW(chunk->initWithSample(1), Ketra::CException);
    EXPECT_FALSE(next(chunk));
    EXPECT_EQ(movie.track()->initWithTime(0.0F), -1);
}

} // namespace
} // namespace test
