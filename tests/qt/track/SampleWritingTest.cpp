// Adding samples to a track: what comes into its tables, when a chunk is full, how fast the data comes.
#include "NewTrack.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

constexpr unsigned int kVideo = fourCC("vide");
constexpr unsigned int kAudio = fourCC("audi");
constexpr unsigned int kHint = fourCC("vihi");

/// A track with a time scale and its first chunk begun.
NewTrack begun(unsigned int scale, unsigned int type = kVideo) {
    NewTrack track(type);
    track->setAtomMediaTimeScale(scale);
    EXPECT_TRUE(track->beginChunk());
    return track;
}

int add(const NewTrack& track, double time, double duration, unsigned int length = 1) {
    return track->addSample(frameOf(length, 0, time, duration, time).get());
}

TEST(AddSample, FillsEveryTable) {
    const NewTrack track = begun(600);
    const double d = 1 / 30.0;
    EXPECT_EQ(track->addSyncSample(frameOf(3, 0xA, 0, d, 0).get()), 0);
    EXPECT_EQ(track->addSample(frameOf(2, 0xB, d, d, d).get()), 0);
    EXPECT_EQ(track->addPSample(frameOf(0, 0, 2 * d, d, 2 * d).get()), 0);
    EXPECT_EQ(track->addPartialSyncSample(frameOf(1, 0xD, 3 * d, d, 3 * d).get()), 0);
    EXPECT_EQ(track.durations(), (NewTrack::Pairs{{1, 20}, {1, 20}, {1, 20}, {1, 20}}));
    EXPECT_EQ(track.offsets(), (NewTrack::Pairs{{1, 0}, {1, 0}, {1, 0}, {1, 0}}));
    EXPECT_EQ(track.sizes(), (std::vector<unsigned int>{3, 2, 0, 1}));
    EXPECT_EQ(NewTrack::numbers(track.table<STSS>("stss").getSyncSampleTable()),
              (std::vector<unsigned int>{1}));
    // A sample that others depend on is marked by its dependencies alone.
    EXPECT_EQ(NewTrack::numbers(track.table<STPS>("stps").getSyncSampleTable()),
              (std::vector<unsigned int>{4}));
    EXPECT_EQ(NewTrack::numbers(track.table<SDTP>("sdtp").getSampleDepTable()),
              (std::vector<unsigned int>{0x60, 0x08, 0x40, 0x60}));
    EXPECT_EQ(track->getSampleCount(), 4U);
    EXPECT_EQ(track->getTotalDataSize(), 6U);
    EXPECT_EQ(track->getFirstPTS(), 0.0);

    EXPECT_EQ(take(track->saveChunk(1000)), hex("0A0A0A 0B0B 0D"));
    ASSERT_EQ(track.table<STCO>("stco").getChunkOffsetTable().size(), 1U);
    EXPECT_EQ(track.table<STCO>("stco").getChunkOffsetData(0)->getOffset(), 1000U);
    const STSCData* chunk = track.table<STSC>("stsc").getSampleToChunkData(0);
    ASSERT_TRUE(chunk);
    EXPECT_EQ(chunk->getFirstChunk(), 1U);
    EXPECT_EQ(chunk->getSamplesPerChunk(), 4U);
    EXPECT_EQ(chunk->getSampleDescriptionID(), 1U);
    EXPECT_EQ(track->getChunk()->getChunkNr(), 2U);

    EXPECT_EQ(track->addToAtomStcoOffsets(0x100000000), 0);
    EXPECT_EQ(track.table<STCO>("stco").getChunkOffsetData(0)->getOffset(), 0x1000003E8U);
}

TEST(AddSample, NeedsAFrameAndAChunk) {
    const NewTrack track(kVideo);
    EXPECT_EQ(add(track, 0, 1), -1);
    EXPECT_EQ(track->addSamplesToChunk({}), -1);
    EXPECT_EQ(track->saveChunk(0), nullptr);
    ASSERT_TRUE(track->beginChunk());
    EXPECT_EQ(track->addSample(nullptr), -1);
    EXPECT_EQ(track->checkMaxBitRate(nullptr), -1);
    const auto frame = frameOf(1, 0, 0, 1, 0);
    EXPECT_EQ(track->addSamplesToChunk({frame.get(), nullptr, frame.get()}), -1);
    EXPECT_EQ(track->getSampleCount(), 1U);
    EXPECT_EQ(track->addSampleCount(5), 0);
    EXPECT_EQ(track->getSampleCount(), 6U);
}

TEST(AddSample, KeepsTheDelayOfItsDisplay) {
    const NewTrack track = begun(600);
    track->addSample(frameOf(1, 0, 0.1, 0.05, 0.05).get());
    track->addSample(frameOf(1, 0, 0.05, 0.05, 0.1).get());
    EXPECT_EQ(track.offsets(), (NewTrack::Pairs{{1, 30}, {1, -30}}));
    const NewTrack sound = begun(600, kAudio); // has no such table to fill
    sound->addSample(frameOf(1, 0, 0.1, 0.05, 0.05).get());
    EXPECT_TRUE(sound.offsets().empty());
    EXPECT_TRUE(sound.table<SDTP>("sdtp").getSampleDepTable().empty());
}

TEST(AddSample, DividesAFrameOfSeveralSamples) {
    const NewTrack track = begun(600);
    track->addSample(frameOf(8, 0, 0.5, 0.2, 0.3, 4).get());
    EXPECT_EQ(track.durations(), (NewTrack::Pairs{{4, 30}}));
    EXPECT_EQ(track.offsets(), (NewTrack::Pairs{{4, 30}}));
    EXPECT_EQ(track.sizes(), (std::vector<unsigned int>{8}));
    EXPECT_EQ(track->getChunk()->getSampleCount(), 4U);
}

TEST(AddSample, CountsTheSamplesOfPlainAudio) {
    const NewTrack track = begun(44100, kAudio);
    auto& audio = dynamic_cast<QTAudioTrack&>(*track.track);
    audio.setChannels(2);
    audio.setBitsPerSample(16);
    audio.setDataFormat(fourCC("sowt"));
    const auto frame = frameOf(1001, 0, 0, 250 / 44100.0, 0);
    track->addSample(frame.get());
    EXPECT_EQ(frame->getSamplesInFrame(), 250U);
    EXPECT_EQ(track.durations(), (NewTrack::Pairs{{250, 1}}));
    audio.setDataFormat(fourCC("mp4a")); // its bytes do not tell
    const auto coded = frameOf(1001, 0, 1, 1024 / 44100.0, 1);
    track->addSample(coded.get());
    EXPECT_EQ(coded->getSamplesInFrame(), 1U);
    EXPECT_EQ(track.durations().back(), (std::pair<unsigned int, int>{1, 1024}));
}

TEST(AddSample, OfATransparentPictureDeepensTheDescription) {
    const NewTrack track = begun(600);
    track->addSample(frameOf(1, 0, 0, 0.1, 0, 0, true).get());
    auto* entry = track->getCurrentAtomSampleDescriptionData();
    EXPECT_EQ(dynamic_cast<STSDVideo&>(*entry->getExtraData()).getDepth(), 32);
}

TEST(NegativeTimes, BecomeZero) {
    const NewTrack track = begun(600);
    const auto early = frameOf(1, 0, -0.04, 0.1, -0.08);
    track->addSample(early.get());
    EXPECT_EQ(early->getTime(), 0.0);
    EXPECT_EQ(early->getDecodeTime(), 0.0);
    const auto decodedEarly = frameOf(1, 0, 0.2, 0.1, -0.1);
    track->addSample(decodedEarly.get());
    EXPECT_EQ(decodedEarly->getTime(), 0.2);
    EXPECT_EQ(decodedEarly->getDecodeTime(), -0.1);
    EXPECT_EQ(track->getFirstPTS(), 0.0);
    EXPECT_EQ(track->getFirstDTS(), -0.1);
}

/// The durations of so many frames of one length.
std::vector<int> roundedDurations(unsigned int scale, double seconds, unsigned int count) {
    const NewTrack track = begun(scale);
    for (unsigned int i = 0; i < count; ++i) {
        add(track, i * seconds, seconds);
    }
    std::vector<int> units;
    for (const auto& run : track.durations()) {
        units.push_back(run.second);
    }
    return units;
}

TEST(Rounding, IsPaidBackAfterAHundredthOfASecond) {
    std::vector<int> thirtieths(30, 33);
    thirtieths.push_back(43); // 31 thirds: ten whole units
    thirtieths.insert(thirtieths.end(), 29, 33);
    thirtieths.push_back(43);
    EXPECT_EQ(roundedDurations(1000, 1 / 30.0, 61), thirtieths);
    std::vector<int> twentyFourths(30, 42);
    twentyFourths.push_back(32);
    EXPECT_EQ(roundedDurations(1000, 1 / 24.0, 31), twentyFourths);
    EXPECT_EQ(roundedDurations(600, 1 / 30.0, 100), std::vector<int>(100, 20));
    EXPECT_EQ(roundedDurations(90000, 1001 / 30000.0, 100), std::vector<int>(100, 3003));
}

TEST(FullChunk, WithoutLimitsIsFullAtItsSecondSample) {
    const NewTrack track = begun(600);
    EXPECT_TRUE(track->addSampleOK());
    add(track, 0, 0.1);
    EXPECT_FALSE(track->getChunkFull());
    add(track, 0.1, 0.1);
    EXPECT_TRUE(track->getChunkFull());
    EXPECT_FALSE(track->addSampleOK());
    take(track->saveChunk(0));
    EXPECT_FALSE(track->getChunkFull());
    EXPECT_TRUE(track->addSampleOK());
}

TEST(FullChunk, SpansMoreThanItsTime) {
    const NewTrack track = begun(600);
    track->setChunkFullTime(0.5);
    EXPECT_EQ(track->getChunkFullTime(), 0.5);
    for (const double time : {0.0, 0.2, 0.4}) {
        add(track, time, 0.1);
        EXPECT_FALSE(track->getChunkFull()) << time;
    }
    add(track, 0.5, 0.1); // exactly as long
    EXPECT_FALSE(track->getChunkFull());
    add(track, 0.6, 0.1);
    EXPECT_TRUE(track->getChunkFull());
}

TEST(FullChunk, HoldsMoreThanItsSize) {
    const NewTrack track = begun(600);
    track->setChunkFullTime(100);
    track->setChunkFullMaxSize(1000);
    for (unsigned int i = 0; i < 3; ++i) {
        add(track, i, 1, 500); // the third finds exactly 1000
        EXPECT_FALSE(track->getChunkFull()) << i;
    }
    add(track, 3, 1, 1);
    EXPECT_TRUE(track->getChunkFull());
}

TEST(FullChunk, IsSavedWithoutSamplesAsNothing) {
    const NewTrack track = begun(600);
    EXPECT_EQ(take(track->saveChunk(50)), Bytes());
    EXPECT_TRUE(track.table<STCO>("stco").getChunkOffsetTable().empty());
    EXPECT_TRUE(track.table<STSC>("stsc").getSampleToChunkTable().empty());
    EXPECT_EQ(track->getChunk()->getChunkNr(), 1U);
}

TEST(FullChunk, NumbersTheChunksThatBegin) {
    const NewTrack track(kHint);
    EXPECT_EQ(track->beginChunk()->getChunkNr(), 1U);
    EXPECT_EQ(track->beginChunk()->getChunkNr(), 2U);
    EXPECT_EQ(track->createChunk(), 0);
    EXPECT_EQ(track->getChunk()->getChunkNr(), 0U);
    EXPECT_EQ(track->getChunk()->getChunkStartTime(), -1.0);
    add(track, 0.25, 1);
    EXPECT_EQ(track->getChunk()->getChunkStartTime(), 0.25);
}

TEST(HighestBitRate, IsThatOfAboutASecond) {
    const NewTrack track = begun(600);
    for (unsigned int k = 0; k <= 10; ++k) {
        add(track, k * 0.1, 0.1, 1000);
        EXPECT_EQ(track->getMaxBitRate(), 0U) << k; // the first second settles
    }
    add(track, 11 * 0.1, 0.1, 1000);
    EXPECT_EQ(track->getMaxBitRate(), 79992U); // a span a little above one second
    for (unsigned int k = 12; k <= 14; ++k) {
        add(track, k * 0.1, 0.1, 1000);
    }
    EXPECT_EQ(track->getMaxBitRate(), 80000U);
    EXPECT_GT(track->getMaxBitRateTime(), 0.5);
    add(track, 1.5, 5, 100); // longer than the window
    EXPECT_EQ(track->getMaxBitRate(), 80000U);
}

TEST(RecordedBitRate, StandsLeastSignificantByteFirst) {
    const NewTrack track(kVideo);
    EXPECT_EQ(track->addDBABitrate(0x01020304), 0);
    EXPECT_EQ(track->addDBABitrate(1), 0);
    const auto* place = childOf<UDTA>(track.trak.get(), fourCC("udta"));
    ASSERT_TRUE(place);
    ASSERT_EQ(place->getDataAtoms().size(), 2U);
    EXPECT_EQ(place->getDataAtoms()[0]->getSize(), 40U);
    EXPECT_EQ(dataOf(place->getDataAtoms()[0]),
              hex({"'HMIncTrackInfo  '", "10000000", "'etrb'", "00000000", "04030201"}));
}

TEST(EndOfATrack, SettlesItsDurations) {
    const NewTrack track = begun(1000);
    track->setMovieTimeScale(600);
    add(track, 0, 1.5);
    EXPECT_FALSE(track->getIsClosed());
    EXPECT_EQ(track->endTrack(), 0);
    EXPECT_TRUE(track->getIsClosed());
    EXPECT_FALSE(track->addSampleOK());
    EXPECT_EQ(track->getDuration(), 1.5);
    EXPECT_EQ(track->getAtomHeaderDuration(), 900U);

    const NewTrack set = begun(1000);
    set->setMovieTimeScale(600);
    set->setDuration(2);
    set->setAtomHeaderDuration(7);
    set->endTrack();
    EXPECT_EQ(set->getDuration(), 2.0);
    EXPECT_EQ(set->getAtomHeaderDuration(), 7U);
}

} // namespace
} // namespace test
