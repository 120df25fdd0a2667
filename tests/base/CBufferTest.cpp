#include <base/CBuffer.h>
#include <base/CString.h>

#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <utility>

using Ketra::CBuffer;
using Ketra::CString;

namespace {

CBuffer buffer(const std::string& bytes) { return {bytes.data(), static_cast<unsigned int>(bytes.size())}; }

std::string bytes(const CBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.getData()), buffer.getSize()};
}

TEST(CBuffer, StartsEmptyZeroFilledOrAsACopy) {
    EXPECT_EQ(CBuffer().getSize(), 0u);
    EXPECT_NE(CBuffer().getData(), nullptr);
    EXPECT_EQ(bytes(CBuffer(3)), std::string(3, '\0'));
    EXPECT_EQ(bytes(CBuffer("abc", 2)), "ab");
    EXPECT_EQ(CBuffer(nullptr, 5).getSize(), 0u);
    EXPECT_EQ(CBuffer(nullptr, 0).getSize(), 0u);
}

TEST(CBuffer, KeepsZeroBytes) { EXPECT_EQ(bytes(CBuffer("a\0b", 3)), std::string("a\0b", 3)); }

TEST(CBuffer, CopiesAreIndependent) {
    CBuffer first = buffer("abc");
    CBuffer second(first);
    second.getData()[0] = 'x';
    EXPECT_EQ(bytes(first), "abc");
    first = second;
    EXPECT_EQ(bytes(first), "xbc");
    const CBuffer& same = first;
    first = same;
    EXPECT_EQ(bytes(first), "xbc");
}

TEST(CBuffer, MovingLeavesTheOtherEmpty) {
    CBuffer first = buffer("abc");
    CBuffer second(std::move(first));
    EXPECT_EQ(first.getSize(), 0u);
    EXPECT_EQ(bytes(second), "abc");
    first = std::move(second);
    EXPECT_EQ(bytes(first), "abc");
    EXPECT_EQ(second.getSize(), 0u);
    CBuffer& same = first;
    first = std::move(same);
    EXPECT_EQ(bytes(first), "abc");
}

TEST(CBuffer, SetsAndAppends) {
    CBuffer b;
    EXPECT_EQ(b.set("hello", 5), 0);
    EXPECT_EQ(b.append(" you", 4), 0);
    EXPECT_EQ(b.append(buffer("!")), 0);
    EXPECT_EQ(bytes(b), "hello you!");
    EXPECT_EQ(b.append(nullptr, 0), 0);
    EXPECT_EQ(b.append(nullptr, 1), -1);
    EXPECT_EQ(b.set(nullptr, 1), -1);
    EXPECT_EQ(bytes(b), "hello you!");
    EXPECT_EQ(b.set(nullptr, 0), 0);
    EXPECT_EQ(b.getSize(), 0u);
}

TEST(CBuffer, TakesBlocksOfItsOwn) {
    CBuffer b = buffer("abcdef");
    EXPECT_EQ(b.append(b), 0);
    EXPECT_EQ(bytes(b), "abcdefabcdef");
    EXPECT_EQ(b.append(b.getData() + 2, 10), 0);
    EXPECT_EQ(bytes(b), "abcdefabcdefcdefabcdef");
    EXPECT_EQ(b.set(b.getData() + 3, 4), 0);
    EXPECT_EQ(bytes(b), "defa");
    for (int i = 0; i < 12; ++i)
        ASSERT_EQ(b.append(b), 0);
    ASSERT_EQ(b.getSize(), 4u << 12);
    EXPECT_EQ(bytes(b).substr(16380), "defa");
}

TEST(CBuffer, RefusesSizesAbove32Bits) {
    CBuffer b = buffer("ab");
    EXPECT_EQ(b.append("x", UINT_MAX - 1), -1); // 2 + 4294967294 = 2^32; nothing of the block is touched
    EXPECT_EQ(b.append("x", UINT_MAX), -1);
    EXPECT_EQ(bytes(b), "ab");
}

TEST(CBuffer, ResizesWithZeros) {
    CBuffer b = buffer("abc");
    EXPECT_EQ(b.resize(5), 0);
    EXPECT_EQ(bytes(b), std::string("abc\0\0", 5));
    EXPECT_EQ(b.resize(1), 0);
    EXPECT_EQ(b.resize(3), 0);
    EXPECT_EQ(bytes(b), std::string("a\0\0", 3));
    EXPECT_EQ(b.zero(), 0);
    EXPECT_EQ(bytes(b), std::string(3, '\0'));
    EXPECT_EQ(b.resize(0), 0);
    EXPECT_EQ(b.zero(), 0);
    EXPECT_EQ(b.getSize(), 0u);
}

TEST(CBuffer, ComparesUnsignedBytesThenLengths) {
    EXPECT_EQ(buffer("abc").compare(buffer("abc")), 0);
    EXPECT_LT(buffer("abc").compare(buffer("abd")), 0);
    EXPECT_GT(buffer("b").compare(buffer("abc")), 0);
    EXPECT_LT(buffer("ab").compare(buffer("abc")), 0);
    EXPECT_GT(buffer("abc").compare(buffer("ab")), 0);
    EXPECT_GT(buffer("\x80").compare(buffer("\x7f")), 0);
    EXPECT_EQ(CBuffer().compare(CBuffer()), 0);
    EXPECT_LT(CBuffer().compare(CBuffer(1)), 0);
    EXPECT_TRUE(buffer("a") == buffer("a"));
    EXPECT_FALSE(buffer("a") == CBuffer("a\0", 2));
    EXPECT_TRUE(buffer("a") != buffer("b"));
    EXPECT_TRUE(buffer("a") < buffer("b"));
    EXPECT_FALSE(buffer("a") < buffer("a"));
}

TEST(CBuffer, WritesHex) {
    EXPECT_EQ(CBuffer().getHex(), "");
    EXPECT_EQ(CBuffer("\x00\x0f\xa5\xff", 4).getHex(), "000fa5ff");
}

TEST(CBuffer, ReadsHexOfEitherCase) {
    CBuffer b;
    EXPECT_EQ(b.setHex("000fA5Ff"), 0);
    EXPECT_EQ(bytes(b), std::string("\x00\x0f\xa5\xff", 4));
    for (const char* bad : {"0", "000", "0g", "g0", " 00", "0x00", "00 00", "-1", "/0", ":0", "@0", "`0"}) {
        EXPECT_EQ(b.setHex(bad), -1) << bad;
        EXPECT_EQ(b.getHex(), "000fa5ff") << bad;
    }
    EXPECT_EQ(b.setHex(CString("00\0\0", 4)), -1);
    EXPECT_EQ(b.setHex(""), 0);
    EXPECT_EQ(b.getSize(), 0u);
}

TEST(CBuffer, CodesBase64AsInTheKnownExamples) {
    const std::pair<const char*, const char*> examples[] = {{"", ""},
                                                            {"f", "Zg=="},
                                                            {"fo", "Zm8="},
                                                            {"foo", "Zm9v"},
                                                            {"foob", "Zm9vYg=="},
                                                            {"fooba", "Zm9vYmE="},
                                                            {"foobar", "Zm9vYmFy"}};
    for (const auto& [plain, coded] : examples) {
        EXPECT_EQ(buffer(plain).getBase64(), coded);
        CBuffer b = buffer("other");
        EXPECT_EQ(b.setBase64(coded), 0) << coded;
        EXPECT_EQ(bytes(b), plain);
    }
    EXPECT_EQ(CBuffer("\xfb\xff\xbf", 3).getBase64(), "+/+/");
    CBuffer b;
    EXPECT_EQ(b.setBase64("+/+/"), 0);
    EXPECT_EQ(bytes(b), "\xfb\xff\xbf");
    EXPECT_EQ(b.setBase64("AAA="), 0);
    EXPECT_EQ(bytes(b), std::string(2, '\0'));
}

TEST(CBuffer, RefusesBadBase64) {
    CBuffer b = buffer("kept");
    for (const char* bad : {"Z", "Zg", "Zg=", "Zg===", "=", "====", "Z===", "Zg=v", "Zg==Zg==", "Zm9v\n",
                            "Zm9 ", "Zm-_", "Zh==", "Zm9=", "Zm8=Zm9v"}) {
        EXPECT_EQ(b.setBase64(bad), -1) << bad;
        EXPECT_EQ(bytes(b), "kept") << bad;
    }
}

TEST(CBuffer, DecodesItsOwnBytes) {
    CString hex("6162");
    EXPECT_EQ(hex.setHex(hex), 0);
    EXPECT_EQ(hex, "ab");
    CString base64("Zm9v");
    EXPECT_EQ(base64.setBase64(base64), 0);
    EXPECT_EQ(base64, "foo");
}

TEST(CBuffer, CodesEveryByte) {
    CBuffer all(256);
    for (unsigned int i = 0; i < 256; ++i)
        all.getData()[i] = static_cast<unsigned char>(i);
    for (unsigned int size = 250; size <= 256; ++size) {
        const CBuffer part(all.getData(), size);
        CBuffer back;
        EXPECT_EQ(back.setHex(part.getHex()), 0);
        EXPECT_TRUE(back == part);
        EXPECT_EQ(back.setBase64(part.getBase64()), 0);
        EXPECT_TRUE(back == part);
    }
}

} // namespace
