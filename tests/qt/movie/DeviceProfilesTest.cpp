#include "qt/movie/MovieTree.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

/// Each character as two bytes.
Bytes wide(const std::string& text) {
    Bytes out;
    for (const char c : text) {
        out.push_back(0);
        out.push_back(static_cast<unsigned char>(c));
    }
    return out;
}

Bytes extensionOf(const QTAtom* parent) {
    QTAtom* atom = parent->getAtomOfType(fourCC("uuid"));
    return atom ? take(atom->serialize()) : Bytes();
}

/// The metadata with a title whose sizes are given.
Bytes metadata(const char* atomSize, const char* recordSize, const char* titleSize,
               const std::string& title) {
    return hex({atomSize, "'uuid'", "'USMT' 21D24FCE BB88695C FAC9C740", recordSize, "'MTDT' 0004",
                "000C 0000000B 55C4 0000 021C", "002A 00000004 15C7 0001"}) +
           wide("Ketra QT Writer") + hex({"0000", titleSize, "00000001 15C7 0001"}) + wide(title) +
           hex("0032 00000003 55C4 0001") + wide("2026/01/01 00:00:00") + hex("0000");
}

TEST(HandheldMovie, HasMetadataWithItsTitle) {
    const MoviePtr movie = begin(kPSP);
    EXPECT_EQ(movie->addUserData(fourCC("mana"), 3, "Ab"), 0);
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhd"); // kept aside
    movie->prepareForWriting();
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhduuid");
    // 124 + 4 in the record, 10 + 4 in the title's entry
    EXPECT_EQ(extensionOf(moovOf(movie)), metadata("00000098", "00000080", "000E", "Ab"));
}

TEST(HandheldMovie, WithoutATitleHasAName) {
    const MoviePtr untitled = begin(kPSP);
    untitled->prepareForWriting();
    EXPECT_EQ(extensionOf(moovOf(untitled)), metadata("000000A2", "0000008A", "0018", "No name"));
    const MoviePtr empty = begin(kPSP);
    EXPECT_EQ(empty->addUserData(fourCC("mana"), 0, nullptr), 0);
    empty->prepareForWriting();
    EXPECT_EQ(extensionOf(moovOf(empty)), metadata("000000A2", "0000008A", "0018", "No name"));
}

TEST(HandheldMovie, TakesTheLastTitleAndCutsALongOne) {
    const MoviePtr movie = begin(kPSP);
    const std::string endless(70000, 'x');
    EXPECT_EQ(movie->addUserData(fourCC("mana"), 2, "a"), 0);
    EXPECT_EQ(movie->addUserData(fourCC("mana"), 70000, endless.c_str()), 0);
    movie->prepareForWriting();
    // The entry's size has 16 bits: 10 + 2 * 32762 = 65534.
    EXPECT_EQ(extensionOf(moovOf(movie)), metadata("00010088", "00010070", "FFFE", std::string(32762, 'x')));
}

TEST(HandheldMovie, OnlyItsTitleIsKeptAside) {
    const MoviePtr movie = begin(kPSP);
    EXPECT_EQ(movie->addUserData(fourCC("name"), 2, "a"), 0);
    EXPECT_TRUE(childOf<UDTA>(moovOf(movie), fourCC("udta")));
    const MoviePtr other = begin(kMP4);
    EXPECT_EQ(other->addUserData(fourCC("mana"), 2, "a"), 0);
    EXPECT_TRUE(childOf<UDTA>(moovOf(other), fourCC("udta")));
}

Bytes profile(std::initializer_list<const char*> sound, std::initializer_list<const char*> picture) {
    return hex({"00000094 'uuid'", "'PROF' 21D24FCE BB88695C FAC9C740", "00000000 00000003",
                "00000014 'FPRF' 00000000 00000000 00000000",
                "0000002C 'APRF' 00000000 00000002 'mp4a' 0000020F 00000000"}) +
           hex(sound) + hex("00000034 'VPRF' 00000000 00000001") + hex(picture) + hex("00010001");
}

TEST(HandheldMovie, HasAProfileOfItsTracks) {
    const MoviePtr movie = begin(kPSP);
    auto* video = dynamic_cast<QTVideoTrack*>(movie->beginTrack(fourCC("vide"), kPSP));
    auto* audio = dynamic_cast<QTAudioTrack*>(movie->beginTrack(fourCC("audi"), kPSP));
    ASSERT_TRUE(video && audio);
    video->setDataFormat(fourCC("h264"));
    video->setWidth(480);
    video->setHeight(272);
    video->setFrameRate(29.97);
    video->setBitRate(768999);
    audio->setDataFormat(fourCC("mp4a"));
    audio->setSampleRate(48000);
    audio->setChannels(2);
    audio->setBitRate(128000);
    movie->prepareForWriting();
    EXPECT_EQ(childTypes(movie->getRoot()), "ftypmoovuuid");
    EXPECT_EQ(extensionOf(movie->getRoot()),
              profile({"00000080 00000080", "0000BB80", "00000002"},    // 128 kbit/s, 48000 Hz
                      {"'avc1' 014D0015 00000000", "00000300 00000300", // 768 kbit/s
                       "001DF850 001DF850", "01E0 0110"}));             // 29.97, 480 x 272
}

TEST(HandheldMovie, NamesItsPictureCodec) {
    struct Case {
        const char format[5];
        const char* code;
    };
    for (const Case& c : {Case{"mp4v", "'mp4v' 00000103"},
                          {"h264", "'avc1' 014D0015"},
                          {"avc1", "'avc1' 014D0015"},
                          {"xavc", "'avc1' 014D0015"},
                          {"h265", "'hvc1' 014D0015"},
                          {"hevc", "'hvc1' 014D0015"},
                          {"hvc1", "'hvc1' 014D0015"}}) {
        const MoviePtr movie = begin(kPSP);
        movie->beginTrack(fourCC("vide"), kPSP)->setDataFormat(fourCC(c.format));
        movie->prepareForWriting();
        const Bytes bytes = extensionOf(movie->getRoot());
        ASSERT_EQ(bytes.size(), 148U) << c.format;
        EXPECT_EQ(Bytes(bytes.begin() + 112, bytes.begin() + 120), hex(c.code)) << c.format;
    }
}

TEST(HandheldMovie, HasAProfileWithoutTracks) {
    const MoviePtr movie = begin(kPSP);
    movie->prepareForWriting();
    EXPECT_EQ(extensionOf(movie->getRoot()),
              profile({"00000000 00000000 00000000 00000000"},
                      {"'mp4v' 00000103 00000000", "00000000 00000000 00000000 00000000 0000 0000"}));
}

TEST(OtherMovies, HaveNoDeviceProfiles) {
    for (const QTMovieConstructionFlags flavour : {kMOV, kMP4, kM4A, kM4V, k3GP, k3G2, kAMC}) {
        const MoviePtr movie = begin(flavour);
        movie->prepareForWriting();
        EXPECT_FALSE(movie->getRoot()->getAtomOfType(fourCC("uuid")));
        EXPECT_FALSE(moovOf(movie)->getAtomOfType(fourCC("uuid")));
    }
}

TEST(Restrictions, ArePlaced) {
    struct Case {
        bool a, b, d;
        const char* flags;
    };
    for (const Case& c : {Case{false, false, false, "00000000 00000000"},
                          {true, false, false, "00000000 00000001"},
                          {false, true, false, "00000002 00000000"},
                          {false, false, true, "00000004 00000000"},
                          {true, true, true, "00000006 00000001"}}) {
        const MoviePtr movie = begin(kAMC);
        EXPECT_EQ(movie->addAMCRestrictions(c.a, c.b, 0x01020304, c.d, 0xFFEEDDCC), 0);
        EXPECT_EQ(extensionOf(movie->getRoot()), hex({"0000002C 'uuid'", "'cpgd' A88C11D4 81970090 27087703",
                                                      c.flags, "BE78BAE0", "01020304", "FFEEDDCC"}));
        movie->updateAtomSizes();
        EXPECT_EQ(take(movie->serializeRoot()).size(), 16U + 44 + 116 + 24);
    }
}

} // namespace
} // namespace test
