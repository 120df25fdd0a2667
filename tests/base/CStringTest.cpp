#include <base/CString.h>

#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>

using Ketra::CString;

namespace {

static_assert(std::is_convertible_v<const char*, CString>);

TEST(CString, EndsWithAHiddenZero) {
    EXPECT_STREQ(CString().c_str(), "");
    EXPECT_EQ(CString().getLength(), 0u);
    EXPECT_STREQ(CString(static_cast<const char*>(nullptr)).c_str(), "");
    EXPECT_EQ(CString(nullptr, 4).getLength(), 0u);
    EXPECT_STREQ(CString("moov").c_str(), "moov");
    EXPECT_EQ(CString("moov").getLength(), 4u);
    EXPECT_EQ(CString("moov").getSize(), 4u);
    EXPECT_STREQ(CString("moovie", 4).c_str(), "moov");
}

TEST(CString, KeepsTheZeroThroughEveryChange) {
    CString text("abc");
    text.resize(1);
    EXPECT_STREQ(text.c_str(), "a");
    text.append("xyz", 2);
    EXPECT_STREQ(text.c_str(), "axy");
    text.set("long enough to leave the short string storage", 45);
    EXPECT_STREQ(text.c_str(), "long enough to leave the short string storage");
    text.setHex("4142");
    EXPECT_STREQ(text.c_str(), "AB");
    text.resize(0);
    EXPECT_STREQ(text.c_str(), "");
}

TEST(CString, HoldsZeroBytes) {
    const CString text("a\0b", 3);
    EXPECT_EQ(text.getLength(), 3u);
    EXPECT_EQ(text.getData()[2], 'b');
    EXPECT_EQ(text.c_str()[3], '\0');
    EXPECT_FALSE(text == "a");
    EXPECT_TRUE(text == CString("a\0b", 3));
    EXPECT_EQ(text.reverseFind('\0'), 1);
}

TEST(CString, CopiesAndMoves) {
    CString first("first text, longer than any short string storage");
    CString second(first);
    EXPECT_EQ(second, first);
    CString third(std::move(first));
    EXPECT_STREQ(first.c_str(), "");
    EXPECT_EQ(third, second);
    first = std::move(third);
    EXPECT_STREQ(third.c_str(), "");
    EXPECT_EQ(first, second);
    third = first;
    EXPECT_EQ(third, first);
    const CString& same = third;
    third = same;
    EXPECT_EQ(third, first);
    third = "short";
    EXPECT_EQ(third, "short");
}

TEST(CString, Formats) {
    EXPECT_EQ(CString::createWithFormat("plain"), "plain");
    EXPECT_EQ(CString::createWithFormat("%s", ""), "");
    EXPECT_EQ(CString::createWithFormat("%d of %u", -3, 4000000000u), "-3 of 4000000000");
    EXPECT_EQ(CString::createWithFormat("(%c%c%c%c).", ' ', 'o', 'z', 'l'), "( ozl).");
    EXPECT_EQ(CString::createWithFormat("a%cb", 0), CString("a\0b", 3));
    EXPECT_EQ(CString::createWithFormat("%s", "100%s"), "100%s");
    EXPECT_EQ(CString::createWithFormat("%5.2f|%-4d|%04x", 1.005, 7, 255u), " 1.00|7   |00ff");
    const char* none = nullptr;
    EXPECT_EQ(CString::createWithFormat(none, 0), "");
}

TEST(CString, FormatsAnyLength) {
    for (const unsigned int length : {15u, 16u, 255u, 256u, 1023u, 1024u, 100000u}) {
        const std::string word(length, 'x');
        const CString text = CString::createWithFormat("%s!", word.c_str());
        EXPECT_EQ(text.getLength(), length + 1);
        EXPECT_EQ(text, (word + "!").c_str());
    }
}

TEST(CString, CutsPieces) {
    const CString text("quicktime");
    EXPECT_EQ(text.getSubString(0, 5), "quick");
    EXPECT_EQ(text.getSubString(5, 4), "time");
    EXPECT_EQ(text.getSubString(5, 100), "time");
    EXPECT_EQ(text.getSubString(5, 0xFFFFFFFF), "time");
    EXPECT_EQ(text.getSubString(8, 1), "e");
    EXPECT_EQ(text.getSubString(9, 1), "");
    EXPECT_EQ(text.getSubString(0xFFFFFFFF, 0xFFFFFFFF), "");
    EXPECT_EQ(text.getSubString(3, 0), "");
    EXPECT_EQ(CString().getSubString(0, 1), "");
}

TEST(CString, FindsTheLastOne) {
    EXPECT_EQ(CString("a/b/c.mov").reverseFind('/'), 3);
    EXPECT_EQ(CString("a/b/c.mov").reverseFind('a'), 0);
    EXPECT_EQ(CString("a/b/c.mov").reverseFind('v'), 8);
    EXPECT_EQ(CString("a/b/c.mov").reverseFind('x'), -1);
    EXPECT_EQ(CString("abc").reverseFind('\0'), -1); // the hidden zero does not count
    EXPECT_EQ(CString().reverseFind('a'), -1);
    EXPECT_EQ(CString("\xE5x").reverseFind('\xE5'), 0);
}

TEST(CString, ChangesTheCaseOfAsciiLetters) {
    EXPECT_EQ(CString("MiXed 09@[`{ \xC3\x85\xE5").getLowerCaseString(), "mixed 09@[`{ \xC3\x85\xE5");
    EXPECT_EQ(CString("MiXed 09@[`{ \xC3\x85\xE5").getUpperCaseString(), "MIXED 09@[`{ \xC3\x85\xE5");
    EXPECT_EQ(CString("azAZ").getUpperCaseString(), "AZAZ");
    EXPECT_EQ(CString("azAZ").getLowerCaseString(), "azaz");
    EXPECT_EQ(CString().getLowerCaseString(), "");
}

TEST(CString, Appends) {
    CString text("a");
    EXPECT_EQ(&(text += "bc"), &text);
    EXPECT_EQ(text, "abc");
    text += text;
    EXPECT_EQ(text, "abcabc");
    text += CString();
    EXPECT_EQ(text, "abcabc");
    CString empty;
    empty += empty;
    EXPECT_EQ(empty, "");
}

TEST(CString, Compares) {
    EXPECT_TRUE(CString("a") == CString("a"));
    EXPECT_TRUE(CString("a") != CString("b"));
    EXPECT_TRUE(CString("a") == "a");
    EXPECT_TRUE(CString("a") != "ab");
    EXPECT_FALSE(CString("ab") == "a");
    EXPECT_TRUE(CString() == static_cast<const char*>(nullptr));
    EXPECT_TRUE(CString("a") != static_cast<const char*>(nullptr));
    EXPECT_TRUE(CString("a") < CString("b"));
    EXPECT_TRUE(CString("a") < CString("aa"));
    EXPECT_FALSE(CString("\xE5") < CString("z"));
}

} // namespace
