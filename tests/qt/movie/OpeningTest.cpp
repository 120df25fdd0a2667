#include "qt/movie/MovieTree.h"
#include "support/AtomFile.h"
#include "support/FakeStream.h"
#include "support/MovieBytes.h"

#include <base/CException.h>

#include <algorithm>
#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

TrackSpec video(unsigned int id) {
    TrackSpec spec;
    spec.id = id;
    spec.scale = 600;
    spec.stts = {{3, 600}};
    spec.sizes = {1, 2, 3};
    spec.chunks = {3};
    return spec;
}

TrackSpec sound(unsigned int id) {
    TrackSpec spec = video(id);
    spec.handler = "soun";
    spec.format = "twos";
    return spec;
}

Bytes header(std::uint32_t scale, std::uint32_t duration) {
    return atom("mvhd", repeat(0, 12) + u32(scale) + u32(duration) + repeat(0, 80));
}

/// A movie of one track with further children at its end.
Bytes movieWith(const Bytes& children, std::uint32_t scale = 600) {
    Bytes moov = moovBytes({video(1)}, scale, 0) + children;
    const Bytes size = u32(moov.size());
    std::copy(size.begin(), size.end(), moov.begin());
    return moov;
}

TEST(OpenMovie, KnowsItsTimes) {
    const MovieFile movie(movieBytes({video(1)}));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->getDuration(), 3.0);
    EXPECT_EQ(movie->getAtomDuration(), 1800U);
    EXPECT_EQ(movie->getTimeScale(), 600U);
    EXPECT_EQ(movie->getAtomTimeScale(), 600U);
    EXPECT_EQ(movie->getStartTime(), 0.0);
    EXPECT_EQ(movie->getEndTime(), 0.0);
    EXPECT_EQ(movie->getBitRate(), 0U);
    EXPECT_EQ(movie->get3gpVersion(), 6);
    EXPECT_EQ(movie->getMovieType(), kMOV);
    EXPECT_FALSE(movie->isEnded());
    EXPECT_GT(movie->getBytesRead(), 500U);
    EXPECT_TRUE(movie->getUtils());
    EXPECT_TRUE(movie->getStream());
}

TEST(OpenMovie, FindsItsTracks) {
    const MovieFile movie(movieBytes({sound(5), video(3), video(5)}));
    ASSERT_TRUE(movie);
    ASSERT_EQ(movie->getNumberOfTracks(), 3U);
    const std::vector<QTTrack*> tracks = movie->getTracks();
    EXPECT_EQ(movie->getTrackID(5), tracks[0]);
    EXPECT_EQ(movie->getTrackID(3), tracks[1]);
    EXPECT_EQ(movie->getTrackID(7), nullptr);
    EXPECT_EQ(movie->getTrackOfType(fourCC("vide")), tracks[1]);
    EXPECT_EQ(movie->getTrackOfType(fourCC("audi")), tracks[0]); // its class
    EXPECT_EQ(movie->getTrackOfType(fourCC("soun")), tracks[0]); // its handler
    EXPECT_EQ(movie->getTrackOfType(fourCC("text")), nullptr);
    for (const QTTrack* track : tracks) {
        EXPECT_EQ(track->getMovieTimeScale(), 600U);
    }
}

TEST(OpenMovie, PassesOverTracksThatAreNone) {
    const MovieFile movie(movieWith(atom("trak", {}) + atom("trak", atom("tkhd", repeat(0, 84)))));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->getNumberOfTracks(), 1U);
}

TEST(OpenMovie, NeedsAHeaderAndATrack) {
    EXPECT_FALSE(MovieFile(Bytes{}));
    EXPECT_FALSE(MovieFile(text("This is not a movie at all.")));
    EXPECT_FALSE(MovieFile(atom("moov", header(600, 0)))); // no track
    Bytes headless = movieWith({});
    headless[12] = 'x';
    EXPECT_FALSE(MovieFile(headless));                  // no header
    EXPECT_FALSE(MovieFile(headless + header(600, 0))); // one that is elsewhere is none
    EXPECT_EQ(QTMovie::createNewQTMovieFromStream(nullptr, kMOV), nullptr);
    FakeStream unknown(-1);
    EXPECT_EQ(QTMovie::createNewQTMovieFromStream(&unknown, kMOV), nullptr);
    FakeStream broken(1000);
    broken.readResult = -1;
    EXPECT_EQ(QTMovie::createNewQTMovieFromStream(&broken, kMOV), nullptr);
}

TEST(OpenMovie, WithoutATimeScaleLastsNoTime) {
    const MovieFile movie(movieWith({}, 0));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->getDuration(), 0.0);
    EXPECT_EQ(movie->getTimeScale(), 0U);
}

TEST(OpenMovie, TakesTheLastOfTwoHeadersForItsDuration) {
    const MovieFile movie(movieWith(header(600, 6000)));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->getDuration(), 10.0);
    EXPECT_EQ(movie->getAtomDuration(), 1800U); // all else asks the first
}

TEST(OpenMovie, KnowsWhetherItBeginsWithALargeAtom) {
    const MovieFile plain(movieBytes({video(1)}));
    EXPECT_EQ(plain->getRoot()->getHeaderSize(), 8);
    const MovieFile large(u32(1) + text("mdat") + u64(20) + u32(0) + movieWith({}));
    ASSERT_TRUE(large);
    EXPECT_EQ(large->getRoot()->getHeaderSize(), 16);
}

TEST(OpenMovie, TellsWhatContradictsItself) {
    TrackSpec two = video(1);
    two.entries = {videoEntry("jpeg", 8, 8), videoEntry("jpeg", 8, 8)};
    Bytes bytes = movieBytes({two});
    const Bytes stsd = text("stsd") + u32(0) + u32(2);
    const auto at = std::search(bytes.begin(), bytes.end(), stsd.begin(), stsd.end());
    ASSERT_NE(at, bytes.end());
    *(at + 11) = 3; // more than there are
    EXPECT_THROW(MovieFile{bytes}, Ketra::CException);
}

TEST(OpenMovie, HasNothingThatIsNotThere) {
    const MovieFile movie(movieBytes({video(1)}));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->getInitialObjectDescriptor(), nullptr);
    EXPECT_EQ(movie->getTimeCode(), 0U);
    EXPECT_TRUE(movie->getAllowTranscoding());
}

TEST(OpenMovie, FindsItsObjectDescriptor) {
    const MovieFile movie(movieWith(atom("iods", hex("00000000 10 80808007 004F FFFFFFFFFF"))));
    ASSERT_TRUE(movie);
    ASSERT_TRUE(movie->getInitialObjectDescriptor());
    EXPECT_EQ(movie->getInitialObjectDescriptor()->getID(), 1);
}

TEST(OpenMovie, KnowsWhetherItMayBeTranscoded) {
    for (const unsigned char value : Bytes{0, 1}) {
        const Bytes marker = atom("nsav", {0, 0, 0, value});
        for (const Bytes& file : {movieWith(atom("udta", marker)), movieWith({}) + atom("udta", marker)}) {
            const MovieFile movie(file); // anywhere in the tree
            ASSERT_TRUE(movie);
            EXPECT_EQ(movie->getAllowTranscoding(), value == 0);
        }
        const MovieFile stray(movieWith({}) + marker); // the code alone is not enough
        EXPECT_TRUE(stray->getAllowTranscoding());
    }
}

TEST(TrackIDs, CountUpInTheHeader) {
    const MoviePtr movie = begin(kMOV);
    auto* mvhd = childOf<MVHD>(moovOf(movie), fourCC("mvhd"));
    mvhd->setNextTrackID(3);
    EXPECT_EQ(movie->getNewTrackID(), 3U);
    EXPECT_EQ(movie->getNewTrackID(), 4U);
    EXPECT_EQ(mvhd->getNextTrackID(), 5U);
}

TEST(MovieTree, TakesChildren) {
    const MoviePtr movie = begin(kMOV);
    EXPECT_EQ(movie->addMoovChild(nullptr), 0); // whatever became of it
    EXPECT_EQ(movie->addUuidAtom(nullptr), -1);
    EXPECT_EQ(movie->addTrack(nullptr), -1);
    EXPECT_EQ(movie->addMoovChild(new UDTA), 0);
    EXPECT_EQ(movie->addUuidAtom(new UUIDA(0, nullptr)), 0);
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhdudta");
    EXPECT_EQ(childTypes(movie->getRoot()), "moovuuid");
    EXPECT_EQ(movie->updateAtomSizes(), 8U + 124 + 8);
}

TEST(MovieTree, MayLackItsParts) {
    const MoviePtr movie = begin(kMP4);
    const std::unique_ptr<QTAtom> moov(moovOf(movie));
    movie->getRoot()->removeAtomOfType(fourCC("moov"));
    EXPECT_EQ(movie->initAtoms(), -1);
    EXPECT_EQ(movie->getTimeScale(), 0U);
    EXPECT_EQ(movie->setTimeScale(1), -1);
    EXPECT_EQ(movie->setAtomDuration(1), -1);
    EXPECT_EQ(movie->getInitialObjectDescriptor(), nullptr);
    EXPECT_EQ(movie->setFtypMajorBrand(1), 0); // its file type is still found
    EXPECT_EQ(movie->addUserData(fourCC("name"), 2, "a"), -1);
    EXPECT_EQ(movie->setAllowTranscoding(false), -1);
    EXPECT_EQ(movie->addBitRateToHint(), -1);
    QTDataAtom entry(8, 1, nullptr);
    EXPECT_EQ(movie->addInfoToHint(&entry), -1);
    QTAtom child;
    EXPECT_EQ(movie->addMoovChild(&child), -1);
    EXPECT_EQ(movie->prepareForWriting(), 0);
}

} // namespace
} // namespace test
