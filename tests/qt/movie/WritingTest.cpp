#include "qt/movie/MovieTree.h"
#include "support/AtomFile.h"

#include <base/CException.h>

#include <gtest/gtest.h>
#include <limits>

namespace test {
namespace {

using namespace Ketra::QT;

/// One sample of one byte that lasts a second.
void addSecond(QTTrack& track, double time) {
    auto* block = static_cast<unsigned char*>(std::malloc(1));
    *block = 0x5A;
    QTFrame frame(1, block, time, 1.0, true, 1, time + 1, time, false);
    EXPECT_EQ(track.addSyncSample(&frame), 0);
}

QTTrack* beginVideo(const MoviePtr& movie, QTMovieConstructionFlags flavour) {
    QTTrack* track = movie->beginTrack(fourCC("vide"), flavour);
    track->setDataFormat(fourCC("mp4v"));
    track->setAtomMediaTimeScale(1000);
    return track;
}

TEST(BeginMovie, QuickTimeHasOnlyItsHeader) {
    const MoviePtr movie = begin(kMOV);
    EXPECT_EQ(childTypes(movie->getRoot()), "moov");
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhd");
    EXPECT_EQ(movie->getTimeScale(), 600U);
    EXPECT_EQ(movie->getStartTime(), -1.0);
    EXPECT_EQ(movie->getEndTime(), 0.0);
    EXPECT_EQ(movie->getBitRate(), 0U);
    EXPECT_EQ(movie->get3gpVersion(), 6);
    EXPECT_EQ(movie->getMovieType(), kMOV);
    EXPECT_EQ(movie->getStream(), nullptr);
    EXPECT_EQ(movie->getUtils(), nullptr);
    EXPECT_EQ(movie->getBytesRead(), 0U);
    EXPECT_FALSE(movie->isEnded());

    const Bytes header = take(movie->serializeRoot());
    ASSERT_EQ(header.size(), 140U);
    EXPECT_EQ(Bytes(header.begin(), header.begin() + 16), hex("00000074 'moov' 0000006C 'mvhd'"));
    EXPECT_EQ(Bytes(header.begin() + 28, header.begin() + 36), hex("00000258 00000000")); // scale, duration
    EXPECT_EQ(Bytes(header.begin() + 116, header.end()),
              hex("00000010 'free' 0000000000000000 00000008 'wide'"));
}

TEST(BeginMovie, EveryFlavourHasItsSkeleton) {
    struct Skeleton {
        QTMovieConstructionFlags flavour;
        bool hinted;
        bool ftypForMov;
        const char* root;
        const char* moov;
    };
    for (const Skeleton& want : {Skeleton{kMOV, false, false, "moov", "mvhd"},
                                 {kMOV, true, false, "moov", "mvhdudta"},
                                 {kMOV, false, true, "ftypmoov", "mvhd"},
                                 {kMOV, true, true, "ftypmoov", "mvhdudta"},
                                 {kMP4, false, false, "ftypmoov", "iodsmvhd"},
                                 {kMP4, true, false, "ftypmoov", "iodsmvhdudta"},
                                 {kM4A, false, false, "ftypmoov", "mvhd"},
                                 {kM4V, true, false, "ftypmoov", "mvhdudta"},
                                 {k3GP, false, false, "ftypmoov", "mvhd"},
                                 {k3G2, false, false, "ftypmoov", "mvhd"},
                                 {kAMC, false, false, "ftypmoov", "mvhd"},
                                 {kPSP, true, true, "ftypmoov", "mvhdudta"}}) {
        const MoviePtr movie = begin(want.flavour, want.hinted, want.ftypForMov);
        SCOPED_TRACE(code(want.flavour));
        EXPECT_EQ(childTypes(movie->getRoot()), want.root);
        EXPECT_EQ(childTypes(moovOf(movie)), want.moov);
        const auto* udta = childOf<UDTA>(moovOf(movie), fourCC("udta"));
        EXPECT_EQ(udta != nullptr, want.hinted);
        EXPECT_EQ(childOf<HNTI>(udta, fourCC("hnti")) != nullptr, want.hinted);
        EXPECT_EQ(movie->getTimeScale(), 600U);
        EXPECT_FALSE(movie->getHasHintTracks());
    }
}

TEST(BeginMovie, AnMP4HasAnObjectDescriptor) {
    const MoviePtr movie = begin(kMP4);
    ASSERT_TRUE(movie->getInitialObjectDescriptor());
    EXPECT_EQ(moovOf(movie)->getSize(), 140U); // 8, "iods" 24, "mvhd" 108
    EXPECT_EQ(take(movie->serializeRoot()).size(), 180U);
    EXPECT_EQ(movie->prepareForWriting(), 0);
    movie->updateAtomSizes();
    EXPECT_EQ(take(movie->serializeRoot()).size(), 192U);
    const InitialObjectDescriptor& levels = *movie->getInitialObjectDescriptor();
    EXPECT_EQ(levels.getURLFlag(), 0);
    EXPECT_EQ(levels.getIncludeInlineProfileLevelFlag(), 0);
    EXPECT_EQ(levels.getODProfileLevelIndication(), 0xFE);
    EXPECT_EQ(levels.getSceneProfileLevelIndication(), 1);
    EXPECT_EQ(levels.getAudioProfileLevelIndication(), 1);
    EXPECT_EQ(levels.getVisualProfileLevelIndication(), 3);
    EXPECT_EQ(levels.getGraphicsProfileLevelIndication(), 1);
}

TEST(BeginTrack, NumbersTheTracksAndAddsTheirTrees) {
    const MoviePtr movie = begin(kMOV, true);
    QTTrack* video = movie->beginTrack(fourCC("vide"), kMOV);
    QTTrack* audio = movie->beginTrack(fourCC("audi"), kMOV);
    ASSERT_TRUE(video && audio);
    EXPECT_EQ(video->getID(), 1U);
    EXPECT_EQ(audio->getID(), 2U);
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhdudtatraktrak");
    EXPECT_EQ(video->getTrak(), moovOf(movie)->getChildren()[2]);
    EXPECT_EQ(video->getMovieTimeScale(), 600U);
    EXPECT_EQ(video->getMovieType(), kMOV);
    EXPECT_EQ(movie->getNumberOfTracks(), 2U);
    EXPECT_EQ(movie->getTrackID(2), audio);
    EXPECT_FALSE(movie->getHasHintTracks());
    movie->beginTrack(fourCC("vihi"), kMOV);
    EXPECT_TRUE(movie->getHasHintTracks());
    const MoviePtr other = begin(k3GP);
    other->beginTrack(fourCC("auhi"), k3GP);
    EXPECT_TRUE(other->getHasHintTracks());
}

TEST(BeginTrack, FailsWithoutItsAtomsAndForAnUnknownMedium) {
    const MoviePtr movie = begin(kMOV);
    try {
        movie->beginTrack(fourCC("abcd"), kMOV);
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(), "Unknown media type: abcd");
    }
    EXPECT_EQ(movie->getNumberOfTracks(), 0U);
    const std::unique_ptr<QTAtom> header(moovOf(movie)->getAtomOfType(fourCC("mvhd")));
    moovOf(movie)->removeAtomOfType(fourCC("mvhd"));
    try {
        movie->beginTrack(fourCC("vide"), kMOV);
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(), "MOOV-atom doesn't have a headeratom. Aborting!");
        EXPECT_EQ(e.getFunction(), "Ketra::QT::QTMovie::getNewTrackID");
        EXPECT_EQ(e.getFile(), "lib/qt/QTMovie");
    }
    const std::unique_ptr<QTAtom> moov(moovOf(movie));
    movie->getRoot()->removeAtomOfType(fourCC("moov"));
    try {
        movie->beginTrack(fourCC("vide"), kMOV);
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(), "No moov atom exists. Aborting!");
    }
    EXPECT_THROW(movie->serializeRoot(), Ketra::CException);
}

TEST(EndMovie, WaitsForEveryTrack) {
    const MoviePtr movie = begin(kMOV);
    EXPECT_EQ(movie->endTrack(1), -1);
    QTTrack* first = beginVideo(movie, kMOV);
    beginVideo(movie, kMOV);
    EXPECT_EQ(movie->endMovie(), -1);
    EXPECT_EQ(movie->endTrack(1), 0);
    EXPECT_TRUE(first->getIsClosed());
    EXPECT_EQ(movie->endMovie(), -1);
    EXPECT_FALSE(movie->isEnded());
    EXPECT_EQ(movie->endTrack(3), -1);
    EXPECT_EQ(movie->endTrack(2), 0);
    EXPECT_EQ(movie->endMovie(), 0);
    EXPECT_TRUE(movie->isEnded());
}

TEST(EndMovie, EndsAMovieWithoutTracks) {
    const MoviePtr movie = begin(kMP4);
    EXPECT_EQ(movie->endMovie(), 0);
    EXPECT_TRUE(movie->isEnded());
}

TEST(MovieDuration, ComesFromTheMovieOrItsStartAndEnd) {
    struct Case {
        double duration, start, end;
        unsigned int units;
    };
    for (const Case& c : {Case{0, 0.0, 10.0, 6000},
                          {0, -1.0, 0.0, 600},
                          {1.0009, -1.0, 0.0, 601},
                          {3.0, 0.0, 100.0, 1800},
                          {0, 1.0, 1.0008, 0},
                          {0, 1.0, 1.00084, 1}}) {
        const MoviePtr movie = begin(kMOV);
        movie->setDuration(c.duration);
        movie->setStartTime(c.start);
        movie->setEndTime(c.end);
        EXPECT_EQ(movie->prepareForWriting(), 0);
        EXPECT_EQ(movie->getAtomDuration(), c.units) << c.duration << ' ' << c.start << ' ' << c.end;
        EXPECT_EQ(movie->getDuration(), c.duration);
    }
}

TEST(MovieDuration, IsTheLongestTrackWhereNobodySetIt) {
    for (const bool told : {false, true}) {
        const MoviePtr movie = begin(kMOV);
        beginVideo(movie, kMOV)->setDuration(2.5);
        beginVideo(movie, kMOV)->setDuration(4.0);
        if (told) movie->setEndTime(1.0);
        movie->prepareForWriting();
        EXPECT_EQ(movie->getAtomDuration(), told ? 1200U : 2400U);
    }
}

TEST(MovieDuration, SurvivesImpossibleNumbers) {
    const MoviePtr movie = begin(kMOV);
    movie->setDuration(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(movie->prepareForWriting(), 0);
    EXPECT_EQ(movie->getAtomDuration(), 0U);
    movie->setDuration(std::numeric_limits<double>::infinity());
    EXPECT_EQ(movie->prepareForWriting(), 0);
}

TEST(PrepareForWriting, PreparesEachTrackOnce) {
    const MoviePtr movie = begin(kPSP);
    QTTrack* byCaller = beginVideo(movie, kPSP);
    QTTrack* byMovie = beginVideo(movie, kPSP);
    EXPECT_EQ(byCaller->prepareForWriting(), 0);
    EXPECT_EQ(movie->prepareForWriting(), 0);
    EXPECT_EQ(movie->prepareForWriting(), 0);
    const auto markers = [](QTTrack* track) {
        std::size_t count = 0;
        for (const QTAtom* child : track->getTrak()->getChildren()) {
            count += child->getType() == fourCC("uuid");
        }
        return count;
    };
    EXPECT_EQ(markers(byCaller), 1U);
    EXPECT_EQ(markers(byMovie), 1U);
    byMovie->prepareForWriting(); // a caller's own second call repeats its effects
    EXPECT_EQ(markers(byMovie), 2U);
}

TEST(MovieOffsets, AreShiftedInEveryTrack) {
    const MoviePtr movie = begin(kMOV);
    for (const std::uint64_t offset : {100U, 200U}) {
        QTTrack* track = beginVideo(movie, kMOV);
        ASSERT_TRUE(track->beginChunk());
        addSecond(*track, 0);
        EXPECT_EQ(take(track->saveChunk(offset)), hex("5A"));
    }
    EXPECT_EQ(movie->addToAtomStcoOffsets(1000), 0);
    std::uint64_t want = 1100;
    for (QTAtom* trak : moovOf(movie)->getChildren()) {
        if (trak->getType() != fourCC("trak")) continue;
        const QTAtom* stbl = trak;
        for (const unsigned int type : {fourCC("mdia"), fourCC("minf"), fourCC("stbl")}) {
            stbl = stbl->getAtomOfType(type);
        }
        auto* offsets = childOf<STCO>(stbl, fourCC("stco"));
        ASSERT_TRUE(offsets);
        EXPECT_EQ(offsets->getChunkOffsetData(0)->getOffset(), want);
        want += 100;
    }
    EXPECT_EQ(begin(kMOV)->addToAtomStcoOffsets(1), 0);
}

/// The whole way: written as a caller would, then opened.
TEST(WrittenMovie, ReadsBack) {
    for (const QTMovieConstructionFlags flavour : {kMOV, kMP4, kM4V, k3GP, k3G2, kAMC, kPSP}) {
        SCOPED_TRACE(code(flavour));
        const MoviePtr movie = begin(flavour);
        QTTrack* track = beginVideo(movie, flavour);
        QTTrack* silent = movie->beginTrack(fourCC("vide"), flavour); // without samples it is left out
        silent->setDataFormat(fourCC("mp4v"));
        ASSERT_TRUE(track->beginChunk());
        addSecond(*track, 0);
        addSecond(*track, 1);
        const Bytes media = take(track->saveChunk(0));
        ASSERT_EQ(media, hex("5A5A"));
        EXPECT_EQ(movie->endTrack(1), 0);
        EXPECT_EQ(movie->endTrack(2), 0);
        EXPECT_EQ(movie->endMovie(), 0);
        EXPECT_EQ(movie->prepareForWriting(), 0);
        EXPECT_EQ(movie->getAtomDuration(), 1200U);
        movie->updateAtomSizes();
        const std::size_t headerBytes = take(movie->serializeRoot()).size();
        movie->addToAtomStcoOffsets(headerBytes + 8);
        const Bytes header = take(movie->serializeRoot());
        ASSERT_EQ(header.size(), headerBytes);
        MDAT mdat;
        mdat.setSize(8 + media.size());

        AtomFile file(header + take(mdat.serialize()) + media);
        const MoviePtr read(QTMovie::createNewQTMovieFromStream(&file.stream(), kMOV));
        ASSERT_TRUE(read);
        ASSERT_EQ(read->getNumberOfTracks(), 1U);
        EXPECT_EQ(read->getDuration(), 2.0);
        QTTrack* back = read->getTracks()[0];
        EXPECT_EQ(back->getID(), 1U);
        ASSERT_EQ(back->initWithSample(1), 0);
        for (unsigned int i = 0; i < 2; ++i) {
            const std::unique_ptr<QTFrame> frame(back->getChunk()->getNextFrame());
            ASSERT_TRUE(frame);
            EXPECT_EQ(frame->getDataLength(), 1U);
            EXPECT_EQ(frame->getTime(), i);
            EXPECT_EQ(frame->getDuration(), 1.0);
            EXPECT_TRUE(frame->getIsKeyFrame());
        }
    }
}

} // namespace
} // namespace test
