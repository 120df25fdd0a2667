#include <base/CMemoryStream.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

using Ketra::Ferro::CMemoryStream;

namespace {

constexpr std::int64_t kLast = INT64_MAX;

static_assert(!std::is_copy_constructible_v<CMemoryStream> && !std::is_copy_assignable_v<CMemoryStream>);

std::int64_t write(CMemoryStream& stream, const std::string& text) {
    return stream.write(reinterpret_cast<const unsigned char*>(text.data()),
                        static_cast<std::int64_t>(text.size()));
}

std::string read(CMemoryStream& stream, std::size_t length) {
    std::string text(length, '?');
    const std::int64_t got =
        stream.read(reinterpret_cast<unsigned char*>(text.data()), static_cast<std::int64_t>(length));
    text.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
    return text;
}

std::string contents(CMemoryStream& stream) {
    return stream.getData() ? std::string(reinterpret_cast<const char*>(stream.getData()),
                                          static_cast<std::size_t>(stream.size()))
                            : std::string();
}

TEST(CMemoryStream, StartsEmpty) {
    CMemoryStream stream;
    EXPECT_EQ(stream.size(), 0);
    EXPECT_EQ(stream.getData(), nullptr);
    EXPECT_EQ(read(stream, 4), "");
    EXPECT_EQ(stream.seek(0, 1), 0);
    EXPECT_EQ(stream.open(2, 1000), 0);
    EXPECT_EQ(stream.close(), 0);
}

TEST(CMemoryStream, CopiesItsBytes) {
    std::string source = "movie";
    CMemoryStream stream(source.data(), 5);
    source[0] = 'x';
    EXPECT_EQ(stream.size(), 5);
    EXPECT_EQ(contents(stream), "movie");
    EXPECT_EQ(stream.seek(0, 1), 0);
    EXPECT_EQ(read(stream, 3), "mov");
    EXPECT_EQ(read(stream, 9), "ie");
    EXPECT_EQ(read(stream, 9), "");
    EXPECT_EQ(stream.seek(0, 1), 5);
}

TEST(CMemoryStream, IsEmptyWithoutABlock) {
    EXPECT_EQ(CMemoryStream(nullptr, 5).size(), 0);
    EXPECT_EQ(CMemoryStream("abc", 0).size(), 0);
    EXPECT_EQ(CMemoryStream("abc", -1).size(), 0);
    EXPECT_EQ(CMemoryStream("abc", 0).getData(), nullptr);
}

TEST(CMemoryStream, SeeksFromTheStartAndFromThePosition) {
    CMemoryStream stream("0123456789", 10);
    EXPECT_EQ(stream.seek(4, 0), 4);
    EXPECT_EQ(stream.seek(3, 1), 7);
    EXPECT_EQ(stream.seek(-2, 1), 5);
    EXPECT_EQ(read(stream, 1), "5");
    EXPECT_EQ(stream.seek(-7, 1), -1);
    EXPECT_EQ(stream.seek(-1, 0), -1);
    EXPECT_EQ(stream.seek(INT64_MIN, 1), -1);
    EXPECT_EQ(stream.seek(INT64_MIN, 0), -1);
    EXPECT_EQ(stream.seek(0, 1), 6);
    EXPECT_EQ(stream.seek(100, 0), 100);
    EXPECT_EQ(read(stream, 1), "");
    EXPECT_EQ(stream.size(), 10);
    EXPECT_EQ(stream.seek(kLast, 0), kLast);
    EXPECT_EQ(read(stream, 1), "");
    EXPECT_EQ(stream.seek(1, 1), -1);
    EXPECT_EQ(stream.seek(0, 1), kLast);
    EXPECT_EQ(stream.seek(-kLast, 1), 0);
}

TEST(CMemoryStream, OverwritesAndGrows) {
    CMemoryStream stream("0123456789", 10);
    stream.seek(8, 0);
    EXPECT_EQ(write(stream, "abcd"), 4);
    EXPECT_EQ(contents(stream), "01234567abcd");
    EXPECT_EQ(stream.seek(0, 1), 12);
    stream.seek(0, 0);
    EXPECT_EQ(write(stream, "x"), 1);
    EXPECT_EQ(contents(stream), "x1234567abcd");
    EXPECT_EQ(stream.size(), 12);
}

TEST(CMemoryStream, FillsAGapWithZeros) {
    CMemoryStream stream;
    stream.seek(3, 0);
    EXPECT_EQ(stream.size(), 0);
    EXPECT_EQ(write(stream, ""), 0);
    EXPECT_EQ(stream.size(), 0);
    EXPECT_EQ(write(stream, "a"), 1);
    stream.seek(2, 1);
    EXPECT_EQ(write(stream, "b"), 1);
    EXPECT_EQ(contents(stream), std::string("\0\0\0a\0\0b", 7));
    stream.seek(1000000, 0);
    EXPECT_EQ(write(stream, "c"), 1);
    EXPECT_EQ(contents(stream), std::string("\0\0\0a\0\0b", 7) + std::string(999993, '\0') + "c");
}

TEST(CMemoryStream, TakesManySmallWrites) {
    CMemoryStream stream;
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        const std::string text(static_cast<std::size_t>(i % 7), static_cast<char>('a' + i % 26));
        ASSERT_EQ(write(stream, text), i % 7);
        expected += text;
    }
    EXPECT_EQ(contents(stream), expected);
}

TEST(CMemoryStream, WritesFromItself) {
    CMemoryStream stream("abcdef", 6);
    stream.seek(6, 0);
    EXPECT_EQ(stream.write(stream.getData(), 6), 6); // grows: the source is the old block
    EXPECT_EQ(contents(stream), "abcdefabcdef");
    stream.seek(2, 0);
    EXPECT_EQ(stream.write(stream.getData(), 6), 6); // overlaps
    EXPECT_EQ(contents(stream), "ababcdefcdef");
}

TEST(CMemoryStream, RefusesWhatMemoryCannotHold) {
    CMemoryStream stream("abc", 3);
    for (const std::int64_t far : {kLast, kLast - 1, std::int64_t{1} << 62, std::int64_t{1} << 48}) {
        EXPECT_EQ(stream.seek(far, 0), far);
        EXPECT_EQ(write(stream, "xy"), -1);
        EXPECT_EQ(stream.seek(0, 1), far);
    }
    EXPECT_EQ(contents(stream), "abc");
    stream.seek(0, 0);
    EXPECT_EQ(write(stream, "d"), 1);
    EXPECT_EQ(contents(stream), "dbc");
}

TEST(CMemoryStream, RefusesBadArguments) {
    CMemoryStream stream("abc", 3);
    unsigned char byte = 0;
    EXPECT_EQ(stream.read(&byte, -1), -1);
    EXPECT_EQ(stream.read(nullptr, 1), -1);
    EXPECT_EQ(stream.read(nullptr, 0), 0);
    EXPECT_EQ(stream.write(&byte, -1), -1);
    EXPECT_EQ(stream.write(nullptr, 1), -1);
    EXPECT_EQ(stream.write(nullptr, 0), 0);
    EXPECT_EQ(contents(stream), "abc");
    EXPECT_EQ(stream.seek(0, 1), 0);
}

TEST(CMemoryStream, OpenRewinds) {
    CMemoryStream stream("abc", 3);
    stream.seek(2, 0);
    EXPECT_EQ(stream.open(2, 1000), 0);
    EXPECT_EQ(read(stream, 3), "abc");
    EXPECT_EQ(stream.close(), 0);
    EXPECT_EQ(contents(stream), "abc");
}

} // namespace
