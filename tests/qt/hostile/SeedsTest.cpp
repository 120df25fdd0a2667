// The seed movies as they are, over good streams and bad ones.
#include "SeedCases.h"

#include <base/CMemoryStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <algorithm>
#include <map>
#include <memory>

using namespace Ketra::QT;
using test::HostileSeeds;

namespace {

/// How many tracks a seed gives; it is all of those it has unless it says otherwise here.
std::size_t tracksOf(const std::string& name) {
    static const std::map<std::string, std::size_t> kMany = {
        {"video_old_codecs", 3}, {"audio_pcm_v0", 2},         {"audio_amr", 2},   {"audio_others", 8},
        {"text_chapters", 2},    {"systems_descriptors", 2},  {"hint_tracks", 2}, {"file_odd_levels", 2},
        {"file_empty_edit", 2},  {"file_compressed_twice", 0}}; // a compressed header inside one is not read
    const auto found = kMany.find(name);
    return found == kMany.end() ? 1 : found->second;
}

} // namespace

TEST_P(HostileSeeds, OpensWithAllItsTracks) {
    Ketra::Ferro::RStream source(
        new Ketra::Ferro::CMemoryStream(seed().bytes.data(), static_cast<std::int64_t>(seed().bytes.size())));
    QTCMStream stream(&source);
    const std::unique_ptr<QTMovie> movie(QTMovie::createNewQTMovieFromStream(&stream, kMOV));
    const std::size_t expected = tracksOf(seed().name);
    if (expected == 0) {
        EXPECT_EQ(movie, nullptr);
        return;
    }
    ASSERT_NE(movie, nullptr);
    EXPECT_EQ(movie->getNumberOfTracks(), expected);
}

TEST_P(HostileSeeds, SurvivesEveryFaultOfItsStream) {
    for (unsigned int fault = 0; fault < hostile::kFaults; ++fault) {
        for (const QTMovieConstructionFlags flavour : {kMOV, kMP4, k3GP, kPSP}) {
            for (const bool write : {false, true}) {
                const hostile::How how{static_cast<hostile::Fault>(fault), flavour, write, true};
                SCOPED_TRACE(hostile::nameOf(how.fault));
                test::exercise(seed().bytes, how);
            }
        }
    }
}

TEST_P(HostileSeeds, ShortReadsChangeNothing) {
    const bool plain = test::exercise(seed().bytes, {});
    EXPECT_EQ(test::exercise(seed().bytes, {hostile::Fault::shortReads, kMOV, false, true}), plain);
}

INSTANTIATE_TEST_SUITE_P(Seeds, HostileSeeds, testing::Range<std::size_t>(0, test::seeds().size()),
                         test::seedName);
