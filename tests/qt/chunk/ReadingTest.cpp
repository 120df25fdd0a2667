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

/// Sizes 10, 20, 30 in one chunk and 40 in another, 1/10 s each.
TrackSpec fourSamples() {
    TrackSpec t;
    t.scale = 100;
    t.stts = {{4, 10}};
    t.sizes = {10, 20, 30, 40};
    t.chunks = {3, 1};
    return t;
}

TEST(Reading, WalksChunkByChunk) {
    const TrackSpec spec = fourSamples();
    const MovieFile movie(spec);
    ASSERT_TRUE(movie);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_TRUE(chunk);
    const std::uint64_t media = 20 + 8; // "ftyp" of 20 bytes and the header of "mdat"
    EXPECT_EQ(chunk->initWithSample(1), 0);
    EXPECT_EQ(chunk->getSampleOffset(), media); // the first sample of a chunk lies at its offset
    EXPECT_EQ(chunk->getChunkNumber(), 1U);
    EXPECT_EQ(chunk->getSampleSize(), 10U);
    const std::uint64_t offsets[] = {media, media + 10, media + 30, media + 60};
    for (unsigned int i = 0; i < 4; ++i) {
        EXPECT_EQ(chunk->getCurrentSampleNumber(), i + 1);
        EXPECT_EQ(chunk->getSampleOffset(), offsets[i]);
        EXPECT_EQ(chunk->getChunkNumber(), i < 3 ? 1U : 2U);
        EXPECT_DOUBLE_EQ(chunk->getCurrentTime(), i * 10 / 100.0);
        const FramePtr frame = next(chunk);
        ASSERT_TRUE(frame);
        EXPECT_EQ(bytesOf(frame), sampleBytes(spec, i));
        EXPECT_EQ(frame->getTime(), i * 10 / 100.0);
        EXPECT_EQ(frame->getDecodeTime(), i * 10 / 100.0);
        EXPECT_EQ(frame->getDuration(), 0.1);
        EXPECT_DOUBLE_EQ(frame->getEndTime(), (i + 1) * 10 / 100.0);
        EXPECT_EQ(frame->getSamplesInFrame(), 1U);
        EXPECT_TRUE(frame->getIsKeyFrame());
    }
    EXPECT_FALSE(next(chunk)); // the end
    EXPECT_FALSE(next(chunk));
    EXPECT_EQ(chunk->initWithSample(3), 0); // and from anywhere again
    EXPECT_EQ(chunk->getSampleOffset(), media + 30);
    EXPECT_EQ(bytesOf(next(chunk)), sampleBytes(spec, 2));
}

TEST(Reading, PeeksWithoutMoving) {
    TrackSpec spec = fourSamples();
    spec.ctts = {{2, 5}, {2, 7}};
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    EXPECT_FALSE(FramePtr(chunk->getFrame())); // not positioned yet
    EXPECT_FALSE(next(chunk));
    ASSERT_EQ(chunk->initWithSample(2), 0);
    const FramePtr first(chunk->getFrame());
    const FramePtr second(chunk->getPreviewFrame());
    const FramePtr third = next(chunk);
    for (const FramePtr* frame : {&first, &second, &third}) {
        ASSERT_TRUE(*frame);
        EXPECT_EQ(bytesOf(*frame), sampleBytes(spec, 1));
        EXPECT_EQ((*frame)->getTime(), 0.1 + 5 / 100.0);
    }
    EXPECT_EQ(next(chunk)->getTime(), 0.2 + 7 / 100.0);
}

TEST(Reading, AddsCompositionOffsets) {
    TrackSpec spec = fourSamples();
    spec.scale = 1000;
    spec.stts = {{4, 40}};
    spec.ctts = {{2, 5}, {1, 7}};
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(1), 0);
    const double offsets[] = {0.005, 0.005, 0.007, 0.007}; // the last one repeats
    for (int i = 0; i < 4; ++i) {
        const FramePtr frame = next(chunk);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->getDecodeTime(), i * 40 / 1000.0);
        EXPECT_EQ(frame->getTime(), i * 40 / 1000.0 + offsets[i]);
    }
}

TEST(Reading, TakesNegativeOffsets) {
    TrackSpec spec = fourSamples();
    spec.scale = 1000;
    spec.stts = {{4, 40}};
    spec.ctts = {{4, 0xFFFFFFFF}};
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(2), 0);
    EXPECT_EQ(next(chunk)->getTime(), 0.04 - 0.001);
}

TEST(Reading, KnowsEverySampleAsKeyWithoutASyncTable) {
    const MovieFile movie(fourSamples());
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(1), 0);
    const unsigned int following[] = {2, 3, 4, 0};
    for (unsigned int i = 0; i < 4; ++i) {
        EXPECT_TRUE(chunk->getIsKeyframe());
        EXPECT_EQ(chunk->getPreviousKeyframe(), i + 1);
        EXPECT_EQ(chunk->getNextKeyframe(), following[i]);
        EXPECT_TRUE(next(chunk)->getIsKeyFrame());
    }
}

/// Ten samples of 1/10 s, key frames 2, 5 and 9.
TrackSpec keyed() {
    TrackSpec t;
    t.scale = 10;
    t.stts = {{10, 1}};
    t.sizes.assign(10, 4);
    t.sizes[9] = 5;
    t.chunks = {10};
    t.sync = {2, 5, 9};
    return t;
}

TEST(Reading, FindsKeyFrames) {
    const MovieFile movie(keyed());
    QTChunk* chunk = movie.track()->getChunk();
    struct Row {
        unsigned int sample, previous, next;
        bool key;
    };
    // Before the first key frame both neighbours are sample 1, behind the last one there is none.
    for (const Row& row : {Row{1, 1, 1, false}, Row{2, 2, 5, true}, Row{3, 2, 5, false}, Row{5, 5, 9, true},
                           Row{8, 5, 9, false}, Row{9, 9, 0, true}, Row{10, 9, 0, false}}) {
        ASSERT_EQ(chunk->initWithSample(row.sample), 0);
        EXPECT_EQ(chunk->getPreviousKeyframe(), row.previous) << row.sample;
        EXPECT_EQ(chunk->getNextKeyframe(), row.next) << row.sample;
        EXPECT_EQ(chunk->getIsKeyframe(), row.key) << row.sample;
    }
}

TEST(Reading, MarksKeyFramesOnTheWay) {
    const MovieFile movie(keyed());
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(2), 0);
    const bool keys[] = {true, false, false, true, false, false, false, true, false};
    for (const bool key : keys) {
        const FramePtr frame = next(chunk);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->getIsKeyFrame(), key);
    }
    EXPECT_FALSE(next(chunk));
}

TEST(Reading, UsesPartialSyncSamplesAlone) {
    TrackSpec spec = keyed();
    spec.sync.clear();
    spec.partialSync = {1, 4, 8};
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    struct Row {
        unsigned int sample, previous;
    };
    // Two places before the first entry behind the sample, or before the end of the table.
    for (const Row& row : {Row{1, 1}, Row{3, 1}, Row{4, 1}, Row{5, 1}, Row{8, 4}, Row{10, 4}}) {
        ASSERT_EQ(chunk->initWithSample(row.sample), 0);
        EXPECT_EQ(chunk->getPreviousKeyframe(), row.previous) << row.sample;
        EXPECT_FALSE(chunk->getIsKeyframe());
    }
    EXPECT_EQ(movie.track()->initWithTime(0.9F), 0);
    EXPECT_EQ(chunk->getCurrentSampleNumber(), 4U);
}

TEST(Reading, PrefersPartialSyncFarFromTheOnlyKeyFrame) {
    TrackSpec spec;
    spec.scale = 10;
    spec.stts = {{150, 1}};
    spec.constantSize = 3;
    spec.constantCount = 150;
    spec.chunks = {150};
    spec.sync = {1};
    spec.partialSync = {1, 50, 90, 120, 140};
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(100), 0);
    EXPECT_EQ(chunk->getPreviousKeyframe(), 1U);
    ASSERT_EQ(chunk->initWithSample(101), 0);
    EXPECT_EQ(chunk->getPreviousKeyframe(), 50U); // 120 is the first behind it, two places before that is 50
    ASSERT_EQ(chunk->initWithSample(140), 0);
    EXPECT_EQ(chunk->getPreviousKeyframe(), 120U);
    ASSERT_EQ(chunk->initWithSample(141), 0);
    EXPECT_EQ(chunk->getPreviousKeyframe(), 1U); // the table has nothing at or behind it
}

TEST(Reading, SeeksToTheKeyFrameAtOrBeforeATime) {
    const MovieFile movie(keyed());
    QTTrack* track = movie.track();
    QTChunk* chunk = track->getChunk();
    ASSERT_EQ(chunk->initWithTime(0.75F), 0); // shows sample 8
    EXPECT_EQ(chunk->getCurrentSampleNumber(), 8U);
    EXPECT_EQ(chunk->getCurrentTime(), 0.7);
    EXPECT_EQ(chunk->getPreviousKeyframe(), 5U);
    ASSERT_EQ(track->initWithTime(0.75F), 0);
    EXPECT_EQ(chunk->getCurrentSampleNumber(), 5U);
    EXPECT_EQ(next(chunk)->getDecodeTime(), 0.4);
}

TEST(Reading, TakesTheFirstHundredthAsTheBeginning) {
    const MovieFile movie(keyed());
    QTChunk* chunk = movie.track()->getChunk();
    for (const float t : {0.005F, 0.01F, -3.0F, 0.0F}) {
        ASSERT_EQ(chunk->initWithTime(t), 0) << t;
        EXPECT_EQ(chunk->getCurrentSampleNumber(), 1U);
        EXPECT_EQ(chunk->getCurrentTime(), 0.0);
    }
}

TEST(Reading, RefusesTimesBeyondTheDuration) {
    TrackSpec spec;
    spec.scale = 100;
    spec.stts = {{3, 100}, {2, 50}};
    spec.sizes = {1, 2, 3, 4, 5};
    spec.chunks = {5};
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    EXPECT_EQ(chunk->initWithTime(4.01F), -1);
    EXPECT_FALSE(next(chunk));
    EXPECT_EQ(chunk->initWithTime(4.0F), 0); // the very end is nobody's time: from the beginning
    EXPECT_EQ(chunk->getCurrentSampleNumber(), 1U);
    unsigned int sample = 0;
    EXPECT_EQ(chunk->findClosestTime(3.2, &sample), 3.0);
    EXPECT_EQ(sample, 4U);
    EXPECT_EQ(chunk->findClosestTime(3.5, &sample), 3.5);
    EXPECT_EQ(sample, 5U);
    EXPECT_EQ(chunk->findClosestTime(3.0, &sample), 3.0);
    EXPECT_EQ(sample, 4U);
    EXPECT_EQ(chunk->findClosestTime(4.5, &sample), -1.0);
    EXPECT_EQ(chunk->rangeCheck(5), 0);
    EXPECT_EQ(chunk->rangeCheck(5U), 0);
    EXPECT_EQ(chunk->rangeCheck(6), -1);
    EXPECT_EQ(chunk->rangeCheck(0), -1);
    EXPECT_EQ(chunk->rangeCheck(-1), -1);
    EXPECT_EQ(chunk->rangeCheck(4.0), 0);
    EXPECT_EQ(chunk->rangeCheck(4.001), -1);
}

TEST(Reading, KeepsTimesExact) {
    TrackSpec spec;
    spec.scale = 600;
    spec.stts = {{301, 20}};
    spec.constantSize = 2;
    spec.constantCount = 301;
    spec.chunks = {301};
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    EXPECT_EQ(chunk->findTime(7), 0.2);
    EXPECT_EQ(chunk->findTime(301), 10.0);
    EXPECT_EQ(chunk->findTime(302), -1.0);
    EXPECT_EQ(chunk->findTime(0), -1.0);
    ASSERT_EQ(chunk->initWithSample(1), 0);
    for (unsigned int n = 1; n <= 301; ++n) {
        ASSERT_EQ(next(chunk)->getDecodeTime(), (n - 1) * 20 / 600.0);
    }
}

TEST(Reading, TruncatesTheTimeInDouble) {
    TrackSpec spec;
    spec.scale = 90000;
    spec.stts = {{9100000, 1}};
    spec.constantSize = 1;
    spec.constantCount = 9100000;
    spec.bytesPerSample = 1;
    spec.chunks = {1};
    const MovieFile movie(spec);
    unsigned int sample = 0;
    movie.track()->getChunk()->findClosestTime(static_cast<double>(100.1F), &sample);
    EXPECT_EQ(sample, 9009000U); // tick 9008999, one sample a tick
}

TEST(Reading, ThrowsForSamplesThatAreNotThere) {
    const MovieFile movie(fourSamples());
    QTChunk* chunk = movie.track()->getChunk();
    for (const unsigned int n : {0U, 5U, 0xFFFFFFFFU}) {
        try {
            chunk->initWithSample(n);
            FAIL() << n;
        } catch (const Ketra::CException& e) {
            EXPECT_TRUE(e.getMessage() == Ketra::CString::createWithFormat("Couldn't init with sample nr. %d",
                                                                           static_cast<int>(n)));
            EXPECT_TRUE(e.getFunction() == "Ketra::QT::QTChunk::initWithSample");
            EXPECT_TRUE(e.getFile() == "lib/qt/QTChunk");
        }
        EXPECT_FALSE(next(chunk));
    }
    EXPECT_EQ(chunk->initWithSample(4), 0);
    EXPECT_TRUE(next(chunk));
}

TEST(Reading, KeepsToTheEditList) {
    TrackSpec spec = keyed();
    spec.sync.clear();
    spec.edits = {{300, 0}, {900, 3}}; // 2 s of movie time in all: longer than the media
    const MovieFile movie(spec, 600);
    QTChunk* chunk = movie.track()->getChunk();
    EXPECT_EQ(chunk->rangeCheck(2.0), 0);
    EXPECT_EQ(chunk->rangeCheck(2.001), -1);
}

TEST(Reading, SeeksInsideTheFirstEdit) {
    TrackSpec spec = keyed();
    spec.edits = {{360, 4}}; // 0.6 s from media time 0.4 s
    const MovieFile movie(spec, 600);
    QTTrack* track = movie.track();
    ASSERT_EQ(track->initWithTime(0.45F), 0); // media time 0.85: sample 9 is a key frame
    EXPECT_EQ(track->getChunk()->getCurrentSampleNumber(), 9U);
    ASSERT_EQ(track->initWithSample(1), 0); // the start of the edit: sample 5, itself a key frame
    EXPECT_EQ(track->getChunk()->getCurrentSampleNumber(), 5U);
    ASSERT_EQ(track->initWithSample(3), 0);
    EXPECT_EQ(track->getChunk()->getCurrentSampleNumber(), 3U);
    EXPECT_EQ(track->getChunk()->rangeCheck(1.0), 0); // 0.6 + 0.4
    EXPECT_EQ(track->getChunk()->rangeCheck(1.01), -1);
    EXPECT_EQ(track->initWithTime(0.7F), -1);
}

TEST(Reading, MeasuresAnEmptyFirstEdit) {
    TrackSpec spec = keyed();
    spec.sync.clear();
    spec.edits = {{60, 0xFFFFFFFF}, {660, 0}}; // (660 - 60) / 600 = 1 s behind an empty edit
    const MovieFile movie(spec, 600);
    QTTrack* track = movie.track();
    EXPECT_EQ(track->getChunk()->rangeCheck(1.0 + 4294967295.0 / 10), 0);
    EXPECT_EQ(track->getChunk()->rangeCheck(1.5 + 4294967295.0 / 10), -1);
    ASSERT_EQ(track->initWithSample(1), 0); // an empty edit moves nothing
    for (unsigned int i = 0; i < 10; ++i) {
        ASSERT_TRUE(next(track->getChunk())) << i;
    }
}

TEST(Reading, StopsWhereTheDurationEnds) {
    TrackSpec spec = keyed();
    spec.sync.clear();
    spec.edits = {{300, 0}}; // half a second: samples 1 to 6 start within it
    const MovieFile movie(spec, 600);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(1), 0);
    int frames = 0;
    while (next(chunk)) {
        ++frames;
    }
    EXPECT_EQ(frames, 6);
    EXPECT_EQ(chunk->initWithSample(6), 0);
    EXPECT_THROW(chunk->initWithSample(7), Ketra::CException);
    EXPECT_EQ(chunk->initWithSample(1), 0);
}

TEST(Reading, GivesWhatATruncatedFileHolds) {
    const TrackSpec spec = fourSamples();
    // The header in front, the last sample cut after 15 of its 40 bytes.
    const Bytes brand = atom("ftyp", text("qt  ") + u32(0) + text("qt  "));
    const std::uint64_t start = brand.size() + moovBytes({spec}, 600, 0).size() + 8;
    Bytes file = brand + moovBytes({spec}, 600, start) + atom("mdat", sampleBytes(spec, 0, 4));
    file.resize(file.size() - 25);
    const MovieFile movie(file);
    ASSERT_TRUE(movie);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(4), 0);
    const FramePtr frame = next(chunk);
    ASSERT_TRUE(frame);
    const Bytes whole = sampleBytes(spec, 3);
    EXPECT_EQ(bytesOf(frame), Bytes(whole.begin(), whole.begin() + 15));
}

TEST(Reading, RefusesSamplesLargerThanTheStream) {
    TrackSpec spec = fourSamples();
    spec.sizes = {10, 20, 30, 40};
    Bytes file = movieBytes({spec});
    // Blow the third size up to 2 GiB where it stands in the file.
    const Bytes sizes = hex("0000000A 00000014 0000001E 00000028");
    const auto at = std::search(file.begin(), file.end(), sizes.begin(), sizes.end());
    ASSERT_NE(at, file.end());
    at[8] = 0x80;
    const MovieFile movie(file);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(3), 0);
    try {
        next(chunk);
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_TRUE(e.getMessage() == "Unable to alloc data");
    }
}

TEST(Reading, FollowsDescriptionsOfOneFormatOnly) {
    TrackSpec spec = fourSamples();
    spec.chunks = {1, 1, 1, 1};
    spec.entries = {videoEntry("jpeg", 32, 24), videoEntry("jpeg", 64, 48)};
    spec.descriptions = {1, 2, 1, 3};
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(1), 0);
    EXPECT_EQ(chunk->setSampleDescriptionID(2), 0);
    EXPECT_EQ(chunk->setSampleDescriptionID(0), -1);
    EXPECT_EQ(chunk->setSampleDescriptionID(3), -1);
    ASSERT_EQ(chunk->initWithSample(1), 0);
    EXPECT_TRUE(next(chunk));
    EXPECT_TRUE(next(chunk));
    EXPECT_TRUE(next(chunk));
    EXPECT_FALSE(next(chunk)); // the description of the last chunk does not exist
    EXPECT_THROW(chunk->initWithSample(4), Ketra::CException);
}

TEST(Reading, NeedsSizesAndOffsets) {
    EXPECT_THROW(QTChunk(nullptr), Ketra::CException);
    const MovieFile movie(fourSamples());
    QTChunk chunk(movie.track());
    QTChunk copy(chunk);
    ASSERT_EQ(copy.initWithSample(2), 0);
    EXPECT_EQ(bytesOf(next(&copy)), sampleBytes(fourSamples(), 1));
    EXPECT_EQ(chunk.getCurrentSampleNumber(), 0U);
    EXPECT_EQ(chunk.getCurrentTime(), -1.0);
}

TEST(Reading, ReadsWideOffsets) {
    TrackSpec spec = fourSamples();
    spec.wide = true;
    const MovieFile movie(spec);
    QTChunk* chunk = movie.track()->getChunk();
    ASSERT_EQ(chunk->initWithSample(4), 0);
    EXPECT_EQ(bytesOf(next(chunk)), sampleBytes(spec, 3));
}

} // namespace
} // namespace test
