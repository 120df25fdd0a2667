// A track over a parsed tree reaches its header atoms at once, in a movie or on its own.
#include "support/TrackTree.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

/// 320 x 240, 20 units of 10 a second.
template <class Track>
void expectAtoms(Track& track) {
    EXPECT_EQ(track.getAtomMediaTimeScale(), 10U);
    EXPECT_EQ(track.getAtomMediaDuration(), 20U);
    EXPECT_EQ(track.getAtomHeaderWidth(), 320.0F);
    EXPECT_EQ(track.setAtomHeaderFlags(15), 0);
    EXPECT_EQ(track.enableTrack(), 0);
    EXPECT_EQ(track.getAtomHeaderFlags(), 1U);
    EXPECT_EQ(track.disableTrack(), 0);
    EXPECT_EQ(track.getAtomHeaderFlags(), 0U);
    EXPECT_EQ(track.disableTrack(), 0);
    EXPECT_EQ(track.getAtomHeaderFlags(), 1U);
}

TEST(ReadTrackAtoms, AreReachedThroughTheTrackOfAnyClass) {
    const Bytes body = repeat(0, 24);
    for (const Bytes& header : {atom("vmhd", body), atom("smhd", body), atom("hmhd", body)}) {
        const ParsedTree tree(trackBytes(header, {}, 0));
        const std::unique_ptr<QTTrack> track(QTTrack::createNewQTTrackFromTRAK(tree.trak()));
        ASSERT_TRUE(track);
        expectAtoms(*track);
    }
}

TEST(ReadTrackAtoms, AreReachedThroughATrackThatWasConstructed) {
    const ParsedTree tree(trackBytes(atom("vmhd", repeat(0, 12)), {}, 0));
    QTVideoTrack video(tree.trak());
    expectAtoms(video);
    QTAudioTrack audio(tree.trak());
    EXPECT_EQ(audio.setAtomMediaTimeScale(48000), 0);
    EXPECT_EQ(video.getAtomMediaTimeScale(), 48000U);
    QTDescriptionTrack description(tree.trak());
    EXPECT_EQ(description.getAtomMediaTimeScale(), 48000U);
}

} // namespace
} // namespace test
