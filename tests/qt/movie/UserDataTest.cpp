#include "qt/movie/MovieTree.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

const UDTA* userDataOf(const MoviePtr& movie) { return childOf<UDTA>(moovOf(movie), fourCC("udta")); }

/// The payload of the entry that a text of so many bytes becomes.
Bytes entryOf(QTMovieConstructionFlags flavour, const std::string& text, std::size_t length) {
    const MoviePtr movie = begin(flavour);
    EXPECT_EQ(movie->addUserData(fourCC("name"), static_cast<unsigned int>(length), text.c_str()), 0);
    const UDTA* udta = userDataOf(movie);
    const QTDataAtom* entry = udta ? udta->getDataAtom(fourCC("name")) : nullptr;
    EXPECT_TRUE(entry);
    return dataOf(entry);
}

Bytes entryOf(QTMovieConstructionFlags flavour, const std::string& text) {
    return entryOf(flavour, text, text.size() + 1); // with its terminating zero byte
}

TEST(AddUserData, MakesItsPlaceOnce) {
    const MoviePtr movie = begin(kMOV);
    EXPECT_EQ(movie->addUserData(fourCC("name"), 6, "Hello"), 0);
    EXPECT_EQ(movie->addUserData(fourCC("cprt"), 2, "x"), 0);
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhdudta");
    ASSERT_EQ(userDataOf(movie)->getDataAtoms().size(), 2U);
    EXPECT_EQ(userDataOf(movie)->getDataAtoms()[0]->getSize(), 17U);
    EXPECT_EQ(userDataOf(movie)->getSize(), 8U + 17 + 13);
}

TEST(AddUserData, DropsTheTerminatingZeroOfAText) {
    EXPECT_EQ(entryOf(kMOV, "Hello"), hex("0005 0000 'Hello'"));
    EXPECT_EQ(entryOf(kMP4, "Hello"), hex("0005 0000 'Hello'"));
    EXPECT_EQ(entryOf(k3G2, "Hello"), hex("0005 0000 'Hello'")); // only one flavour has its own form
    EXPECT_EQ(entryOf(kMOV, "Hello", 5), hex("0004 0000 'Hell'"));
    EXPECT_EQ(entryOf(kMOV, ""), hex("0000 0000"));
}

TEST(AddUserData, KeepsTheTextOf3GPPUnchanged) {
    EXPECT_EQ(entryOf(k3GP, "Hello"), hex("00000000 15C7 'Hello' 00"));
    EXPECT_EQ(entryOf(k3GP, "\xC3\xA9"), hex("00000000 15C7 C3A9 00"));
    EXPECT_EQ(entryOf(k3GP, "", 0), hex("00000000 15C7"));
}

TEST(AddUserData, ConvertsToMacintoshText) {
    EXPECT_EQ(entryOf(kMOV, "\xC3\xA9\xC3\xBC"), hex("0002 0000 8E9F")); // e acute, u umlaut
    EXPECT_EQ(entryOf(kMOV, "\xC2\xA9 K"), hex("0003 0000 A9 ' K'"));    // copyright sign
}

TEST(AddUserData, UsesWhatCouldBeConverted) {
    EXPECT_EQ(entryOf(kMOV, "ab\xE3\x81\x82"),
              hex("0001 0000 'a'")); // a zero byte that never came is counted
    EXPECT_EQ(entryOf(kMOV, "\xE3\x81\x82"), hex("0000 0000"));
    EXPECT_EQ(entryOf(kMOV, "a\xFF"), hex("0000 0000"));
    EXPECT_EQ(entryOf(kMOV, "", 0), hex("0000 0000"));
}

TEST(AddUserData, NeedsItsText) {
    const MoviePtr movie = begin(kMOV);
    EXPECT_EQ(movie->addUserData(fourCC("name"), 3, nullptr), -1);
    EXPECT_FALSE(userDataOf(movie));
    const MoviePtr handheld = begin(kPSP);
    EXPECT_EQ(handheld->addUserData(fourCC("mana"), 3, nullptr), -1);
}

TEST(AddUserData, JoinsWhatIsThere) {
    const MoviePtr movie = begin(kMOV, true);
    EXPECT_EQ(movie->addUserData(fourCC("name"), 2, "a"), 0);
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhdudta");
    EXPECT_EQ(childTypes(userDataOf(movie)), "hnti");
    EXPECT_EQ(userDataOf(movie)->getDataAtoms().size(), 1U);
}

} // namespace
} // namespace test
