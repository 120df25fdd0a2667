// One call of the stream goes wrong, each in its turn, while a movie is opened, walked and written.
#include "hostile/Seeds.h"
#include "support/FaultyAt.h"
#include "support/MovieBytes.h"

#include <base/CException.h>
#include <qt/QTAtoms.h>
#include <qt/QTTrack.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;
using MoviePtr = std::unique_ptr<QTMovie>;

constexpr unsigned int kMostFrames = 200; // of one track of these movies

/// Reads every frame of the track; the bytes that they hold.
std::uint64_t walk(QTTrack& track) {
    std::uint64_t bytes = 0;
    if (track.initWithSample(1) != 0) return 0;
    QTChunk* chunk = track.getChunk();
    if (!chunk) return 0;
    for (unsigned int i = 0; i < kMostFrames; ++i) {
        const std::unique_ptr<QTFrame> frame(chunk->getNextFrame());
        if (!frame) break;
        bytes += frame->getDataLength();
        EXPECT_EQ(frame->getDataLength() == 0, frame->getData() == nullptr);
    }
    return bytes;
}

struct Outcome {
    bool threw = false;
    bool opened = false;
    std::size_t tracks = 0;
    std::uint64_t mediaBytes = 0;
    std::size_t headerBytes = 0;
};

/// Opens, walks and writes. Whatever else but a CException comes out of the library fails the test.
Outcome use(QTStream& stream) {
    Outcome outcome;
    try {
        const MoviePtr movie(QTMovie::createNewQTMovieFromStream(&stream, kMOV));
        if (!movie) return outcome;
        outcome.opened = true;
        outcome.tracks = movie->getTracks().size();
        for (QTTrack* track : movie->getTracks()) {
            try {
                outcome.mediaBytes += walk(*track);
                track->initWithTime(0.5F);
            } catch (const Ketra::CException&) {
                outcome.threw = true;
            }
        }
        movie->getTimeCode();
        movie->updateAtomSizes();
        outcome.headerBytes = take(movie->serializeRoot()).size();
    } catch (const Ketra::CException&) {
        outcome.threw = true;
    }
    return outcome;
}

class OneBadCall : public testing::TestWithParam<std::size_t> {
protected:
    static const std::vector<hostile::Seed>& seeds() {
        static const std::vector<hostile::Seed> all = hostile::allSeeds();
        return all;
    }
    const Bytes& bytes() const { return seeds()[GetParam()].bytes; }

public:
    static std::size_t count() { return seeds().size(); }
    static std::string name(const testing::TestParamInfo<std::size_t>& info) {
        return seeds()[info.param].name;
    }
};

TEST_P(OneBadCall, HasAClearOutcome) {
    FaultyAt sound(bytes());
    const Outcome whole = use(sound);
    for (const Trouble trouble : {Trouble::readFails, Trouble::readIsEmpty, Trouble::readIsShort,
                                  Trouble::readsFailOn, Trouble::seekFails, Trouble::seekIsIgnored}) {
        const bool reading = trouble <= Trouble::readsFailOn;
        const unsigned int calls = reading ? sound.reads : sound.seeks;
        for (unsigned int call = 0; call < calls; ++call) {
            SCOPED_TRACE(testing::Message() << "trouble " << int(trouble) << " at call " << call);
            FaultyAt faulty(bytes(), trouble, call);
            const Outcome got = use(faulty);
            EXPECT_TRUE(got.opened || got.tracks == 0);
            EXPECT_TRUE(!got.opened || got.tracks > 0) << "a movie without tracks is none";
            if (reading) {
                EXPECT_LE(got.tracks, whole.tracks);
            }
        }
    }
    FaultyAt again(bytes());
    const Outcome same = use(again);
    EXPECT_EQ(same.mediaBytes, whole.mediaBytes);
    EXPECT_EQ(same.headerBytes, whole.headerBytes);
}

INSTANTIATE_TEST_SUITE_P(Seeds, OneBadCall, testing::Range<std::size_t>(0, OneBadCall::count()),
                         OneBadCall::name);

/// Two samples of 10 and 20 bytes in one chunk.
Bytes twoSamples() {
    TrackSpec track;
    track.stts = {{2, 100}};
    track.sizes = {10, 20};
    track.chunks = {2};
    return movieBytes({track});
}

TEST(BadRead, OfTheFirstBytesLeavesNoMovie) {
    const Bytes bytes = twoSamples();
    for (const Trouble trouble : {Trouble::readsFailOn, Trouble::readIsEmpty, Trouble::readFails}) {
        FaultyAt stream(bytes, trouble, 1); // the first header; the read before it looks for a wide one
        EXPECT_EQ(MoviePtr(QTMovie::createNewQTMovieFromStream(&stream, kMOV)), nullptr);
    }
}

TEST(BadRead, OfASampleGivesWhatCame) {
    const Bytes bytes = twoSamples();
    FaultyAt sound(bytes);
    const MoviePtr whole(QTMovie::createNewQTMovieFromStream(&sound, kMOV));
    ASSERT_TRUE(whole);
    const unsigned int opening = sound.reads;
    struct Case {
        Trouble trouble;
        unsigned int first, second;
    };
    for (const Case& c : {Case{Trouble::readFails, 0, 20}, Case{Trouble::readIsEmpty, 0, 20},
                          Case{Trouble::readIsShort, 10, 20}, // the rest is asked for again
                          Case{Trouble::readsFailOn, 0, 0}}) {
        FaultyAt stream(bytes, c.trouble, opening);
        const MoviePtr movie(QTMovie::createNewQTMovieFromStream(&stream, kMOV));
        ASSERT_TRUE(movie);
        QTTrack* track = movie->getTracks().at(0);
        ASSERT_EQ(track->initWithSample(1), 0);
        const std::unique_ptr<QTFrame> first(track->getChunk()->getNextFrame());
        const std::unique_ptr<QTFrame> second(track->getChunk()->getNextFrame());
        ASSERT_TRUE(first && second);
        EXPECT_EQ(first->getDataLength(), c.first);
        EXPECT_EQ(second->getDataLength(), c.second);
        EXPECT_EQ(second->getTime(), 0.1); // times do not depend on the bytes
        EXPECT_EQ(track->getChunk()->getNextFrame(), nullptr);
    }
}

} // namespace
} // namespace test
