#include <base/CData.h>

#include <climits>
#include <gtest/gtest.h>
#include <string>

using Ketra::CBuffer;
using Ketra::CData;

namespace {

std::string bytes(const CBuffer& buffer) {
    return {reinterpret_cast<const char*>(buffer.getData()), buffer.getSize()};
}

std::string get(CData& data, unsigned int n) {
    std::string text(n, '?');
    return data.get(text.data(), n) == 0 ? text : "refused";
}

TEST(CData, GetsInOrder) {
    CData data("abcdef", 6);
    EXPECT_EQ(data.getPosition(), 0u);
    EXPECT_EQ(data.getRemaining(), 6u);
    EXPECT_EQ(get(data, 2), "ab");
    EXPECT_EQ(get(data, 3), "cde");
    EXPECT_EQ(data.getPosition(), 5u);
    EXPECT_EQ(data.getRemaining(), 1u);
}

TEST(CData, MovesNothingWhenTooFewRemain) {
    CData data("abcdef", 6);
    EXPECT_EQ(get(data, 4), "abcd");
    char kept[3] = {'x', 'y', 'z'};
    EXPECT_EQ(data.get(kept, 3), -1);
    EXPECT_EQ(std::string(kept, 3), "xyz");
    EXPECT_EQ(data.getPosition(), 4u);
    EXPECT_EQ(data.get(kept, UINT_MAX), -1);
    EXPECT_EQ(data.get(nullptr, 1), -1);
    EXPECT_EQ(data.get(nullptr, 0), 0);
    EXPECT_EQ(get(data, 2), "ef");
    EXPECT_EQ(data.get(kept, 0), 0);
    EXPECT_EQ(data.get(kept, 1), -1);
}

TEST(CData, PutsOverAndPastTheEnd) {
    CData data("abcdef", 6);
    EXPECT_EQ(data.setPosition(4), 0);
    EXPECT_EQ(data.put("XYZ", 3), 0);
    EXPECT_EQ(bytes(data), "abcdXYZ");
    EXPECT_EQ(data.getPosition(), 7u);
    EXPECT_EQ(data.setPosition(0), 0);
    EXPECT_EQ(data.put("12", 2), 0);
    EXPECT_EQ(bytes(data), "12cdXYZ");
    EXPECT_EQ(data.getRemaining(), 5u);
    CData fresh;
    EXPECT_EQ(fresh.put("ab", 2), 0);
    EXPECT_EQ(fresh.put("c", 1), 0);
    EXPECT_EQ(bytes(fresh), "abc");
}

TEST(CData, RefusesBadPuts) {
    CData data("abc", 3);
    EXPECT_EQ(data.put(nullptr, 1), -1);
    EXPECT_EQ(data.put(nullptr, 0), 0);
    data.setPosition(2);
    EXPECT_EQ(data.put("x", UINT_MAX - 1), -1);
    EXPECT_EQ(bytes(data), "abc");
    EXPECT_EQ(data.getPosition(), 2u);
}

TEST(CData, PutsItsOwnBytes) {
    CData data("abcdef", 6);
    data.setPosition(2);
    EXPECT_EQ(data.put(data.getData(), 6), 0);
    EXPECT_EQ(bytes(data), "ababcdef");
    data.setPosition(0);
    EXPECT_EQ(data.get(data.getData() + 1, 4), 0);
    EXPECT_EQ(bytes(data), "aababdef");
}

TEST(CData, KeepsTheCursorInside) {
    CData data("abcdef", 6);
    EXPECT_EQ(data.setPosition(7), -1);
    EXPECT_EQ(data.getPosition(), 0u);
    EXPECT_EQ(data.setPosition(6), 0);
    EXPECT_EQ(data.getRemaining(), 0u);
    data.resize(3);
    EXPECT_EQ(data.getPosition(), 3u);
    EXPECT_EQ(data.getRemaining(), 0u);
    EXPECT_EQ(data.put("d", 1), 0);
    EXPECT_EQ(bytes(data), "abcd");
    data.set("", 0);
    EXPECT_EQ(data.getPosition(), 0u);
    EXPECT_EQ(data.getRemaining(), 0u);
}

TEST(CData, CopiesTheCursor) {
    CData data("abcdef", 6);
    data.setPosition(3);
    CData copy(data);
    EXPECT_EQ(get(copy, 2), "de");
    EXPECT_EQ(data.getPosition(), 3u);
    data = copy;
    EXPECT_EQ(data.getPosition(), 5u);
    EXPECT_EQ(CData(static_cast<const CBuffer&>(data)).getPosition(), 0u);
}

} // namespace
