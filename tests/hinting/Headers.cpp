#include "ToolError.h"
#include "hint/MovieHeader.h"
#include "hint/TrackBytes.h"
#include "support/Bytes.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::Tool;

Bytes movieHeader(unsigned char nextTrack) {
    return atom("mvhd", hex("00000000 00000000 00000000 00000258") + repeat(0, 80) + hex("000000") +
                            Bytes{nextTrack});
}

Bytes track(unsigned char id, const char* handler = "'vide'", const Bytes& tables = {}) {
    const Bytes hdlr = atom("hdlr", hex("00000000 'mhlr'") + hex(handler) + repeat(0, 13));
    return atom("trak", atom("tkhd", hex("00000000 00000000 00000000 000000") + Bytes{id} + repeat(0, 68)) +
                            atom("mdia", hdlr + atom("minf", atom("stbl", tables))));
}

TEST(MovieHeader, AddsTracksBehindTheOthers) {
    MovieHeader header(atom("moov", movieHeader(2) + track(1) + atom("udta", {})));
    EXPECT_EQ(header.timeScale(), 600U);
    EXPECT_EQ(header.nextTrackID(), 2U);
    header.addTrack(track(2, "'hint'"));
    EXPECT_EQ(show(header.bytes()),
              show(atom("moov", movieHeader(3) + track(1) + track(2, "'hint'") + atom("udta", {}))));
    header.removeHintTracks();
    EXPECT_EQ(show(header.bytes()), show(atom("moov", movieHeader(2) + track(1) + atom("udta", {}))));
}

TEST(MovieHeader, KeepsUserDataAroundItsOwn) {
    const Bytes before =
        atom("moov", movieHeader(2) + track(1) + atom("udta", atom("name", hex("41")) + hex("00000000")));
    MovieHeader header(before);
    header.setHintInformation(atom("hnti", hex("01")));
    EXPECT_EQ(show(header.bytes()),
              show(atom("moov", movieHeader(2) + track(1) +
                                    atom("udta", atom("name", hex("41")) + atom("hnti", hex("01")) +
                                                     hex("00000000")))));
    header.setHintInformation(atom("hnti", hex("02"))); // there is one only
    header.removeHintInformation();
    EXPECT_EQ(show(header.bytes()), show(before));
}

TEST(MovieHeader, MakesUserDataAndTakesItAway) {
    const Bytes before = atom("moov", movieHeader(2) + track(1));
    MovieHeader header(before);
    header.removeHintInformation(); // nothing to do
    header.setHintInformation(atom("hnti", {}));
    EXPECT_EQ(show(header.bytes()),
              show(atom("moov", movieHeader(2) + track(1) + atom("udta", atom("hnti", {})))));
    header.removeHintInformation();
    EXPECT_EQ(show(header.bytes()), show(before));
}

TEST(MovieHeader, RefusesWhatCannotBeChanged) {
    EXPECT_THROW(MovieHeader(atom("moov", track(1))), ToolError);
    EXPECT_THROW(MovieHeader(atom("moov", atom("mvhd", repeat(0, 99)))), ToolError);
    EXPECT_THROW(MovieHeader(atom("moov", atom("mvhd", hex("01000000") + repeat(0, 96)))), ToolError); // cut
}

TEST(TrackBytes, TellChunksAndKind) {
    const Bytes small = atom("stco", hex("00000000 00000002 00000030 00000040"));
    const Bytes large = atom("co64", hex("00000000 00000009 00000001 00000000")); // eight are not there
    EXPECT_EQ(chunkOffsetsOf(track(1, "'vide'", small)), (std::vector<std::uint64_t>{0x30, 0x40}));
    EXPECT_EQ(chunkOffsetsOf(track(1, "'vide'", large)), (std::vector<std::uint64_t>{0x100000000}));
    EXPECT_EQ(trackIDOf(track(7)), 7U);
    EXPECT_EQ(trackIDOf(atom("trak", {})), 0U);
    EXPECT_TRUE(isHintTrack(track(1, "'hint'")));
    EXPECT_FALSE(isHintTrack(track(1)));
    EXPECT_FALSE(isHintTrack(atom("trak", {})));
}

TEST(FileParts, LeaveWhatIsNoAtomAsItIs) {
    Bytes rest;
    const Bytes payload = atom("aaaa", hex("01")) + hex("00000004 'bad!'");
    const auto children = childrenOf({payload.data(), payload.size()}, rest);
    ASSERT_EQ(children.size(), 1U);
    EXPECT_EQ(show(rest), show(hex("00000004 'bad!'")));
    EXPECT_EQ(show(makeAtom(0x68686868, children, rest)), show(atom("hhhh", payload)));
}

} // namespace
} // namespace test
