// The pieces that every layout is read and written with.
#include "support/Bytes.h"

#include <qt/wire/Held.h>
#include <qt/wire/Reader.h>
#include <qt/wire/Writer.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace test {
namespace {

using namespace Ketra::QT::wire;

Bytes bytesOf(const Block& block) {
    return block.data() ? Bytes(block.data(), block.data() + block.size()) : Bytes();
}

TEST(LayoutReader, ReadsFieldsInOrder) {
    const Bytes bytes = hex("01 0203 04050607 08090A0B0C0D0E0F 10 11 12");
    Reader in(bytes.data(), bytes.size());
    unsigned int a = 0;
    unsigned short b = 0;
    std::uint32_t c = 0;
    std::uint64_t d = 0;
    unsigned int flags = 0;
    in.u8(a);
    in.u16(b);
    in.u32(c);
    in.u64(d);
    in.flags(flags);
    EXPECT_EQ(a, 1U);
    EXPECT_EQ(b, 0x0203);
    EXPECT_EQ(c, 0x04050607U);
    EXPECT_EQ(d, 0x08090A0B0C0D0E0FU);
    EXPECT_EQ(flags, 0x121110U);
    EXPECT_EQ(in.left(), 0U);
    EXPECT_EQ(in.position(), 18U);
    EXPECT_FALSE(in.failed());
}

TEST(LayoutReader, GivesZerosPastTheEnd) {
    const Bytes bytes = hex("0102");
    Reader in(bytes.data(), bytes.size());
    std::uint32_t cut = 7;
    std::uint32_t beyond = 7;
    in.u32(cut);
    EXPECT_EQ(cut, 0x01020000U); // completed with zero bytes
    EXPECT_TRUE(in.failed());
    in.u32(beyond);
    EXPECT_EQ(beyond, 0U);
    unsigned char field[3] = {9, 9, 9};
    in.bytes(field, 3);
    EXPECT_EQ(Bytes(field, field + 3), hex("000000"));
    Reader half(bytes.data(), bytes.size());
    half.bytes(field, 3);
    EXPECT_EQ(Bytes(field, field + 3), hex("010200"));
    EXPECT_TRUE(half.failed());
}

TEST(LayoutReader, KeepsRawFields) {
    const Bytes bytes = hex("0102030405");
    Reader in(bytes.data(), bytes.size());
    Block first;
    Block rest;
    in.raw(first, 2);
    EXPECT_EQ(bytesOf(first), hex("0102"));
    in.skip(1);
    in.rest(rest);
    EXPECT_EQ(bytesOf(rest), hex("0405"));
    EXPECT_FALSE(in.failed());
    in.raw(first, 5);
    EXPECT_FALSE(first);
    EXPECT_TRUE(in.failed());
    Reader short_(bytes.data(), 1);
    short_.skip(4);
    EXPECT_EQ(short_.left(), 0U);
    EXPECT_TRUE(short_.failed());
}

TEST(LayoutWriter, MeasuresWhatItWrites) {
    const auto layout = [](Writer& out) {
        const unsigned char raw[] = {0xAA, 0xBB};
        out.u8(0x101);
        out.u16(0x0203U);
        out.u32(0x04050607U);
        out.u64(std::uint64_t{0x08090A0B0C0D0E0F});
        out.flags(0x123456);
        out.skip(2);
        out.bytes(raw, 2);
    };
    Writer count;
    layout(count);
    ASSERT_EQ(count.written(), 22U);
    Bytes block(22, 0xEE);
    Writer out(block.data());
    layout(out);
    EXPECT_EQ(out.written(), 22U);
    EXPECT_EQ(block, hex("01 0203 04050607 08090A0B0C0D0E0F 020406 0000 AABB"));
}

TEST(RawBlock, CopiesAndAdopts) {
    const unsigned char bytes[] = {1, 2, 3};
    Block block;
    EXPECT_FALSE(block);
    block.assign(bytes, 3);
    Block copy(block);
    Block assigned;
    assigned = copy;
    block.clear();
    EXPECT_FALSE(block);
    EXPECT_EQ(bytesOf(copy), hex("010203"));
    EXPECT_EQ(bytesOf(assigned), hex("010203"));
    copy.adopt(copy.data(), 2); // its own
    EXPECT_EQ(bytesOf(copy), hex("0102"));
    unsigned char* released = copy.release();
    EXPECT_FALSE(copy);
    EXPECT_EQ(copy.size(), 0U);
    block.adopt(released, 2);
    EXPECT_EQ(bytesOf(block), hex("0102"));
    block.adopt(nullptr, 5);
    EXPECT_EQ(block.size(), 0U);
    block.assign(nullptr, 5);
    EXPECT_FALSE(block);
}

struct Item {
    explicit Item(int v) : value(v) { ++alive; }
    ~Item() { --alive; }
    int value;
    static inline int alive = 0;
};

TEST(HeldObjects, BelongToTheList) {
    Item::alive = 0;
    {
        HeldList<Item> list;
        EXPECT_FALSE(list.append(static_cast<Item*>(nullptr)));
        EXPECT_TRUE(list.append(new Item(1)));
        EXPECT_TRUE(list.append(std::make_unique<Item>(2)));
        EXPECT_EQ(list.held(), 2U);
        EXPECT_EQ(list.declared, 2U);
        EXPECT_TRUE(list.consistent());
        EXPECT_EQ(list.record(1)->value, 2);
        EXPECT_EQ(list.record(2), nullptr);
        list.setCursor(2);
        EXPECT_EQ(list.current()->value, 2);
        list.setCursor(0);
        EXPECT_EQ(list.current()->value, 1);
        EXPECT_EQ(Item::alive, 2);
    }
    EXPECT_EQ(Item::alive, 0);
}

TEST(HeldObjects, AreListedByACopy) {
    Item::alive = 0;
    auto list = std::make_unique<HeldList<Item>>();
    list->append(new Item(1));
    {
        HeldList<Item> copy(*list);
        copy.append(new Item(2)); // its own
        EXPECT_EQ(copy.held(), 2U);
        EXPECT_EQ(Item::alive, 2);
        HeldList<Item> assigned;
        assigned.append(new Item(3));
        assigned = copy;
        EXPECT_EQ(Item::alive, 2);
    }
    EXPECT_EQ(Item::alive, 1);
    list.reset();
    EXPECT_EQ(Item::alive, 0);
}

TEST(HeldObjects, AreReplaced) {
    Item::alive = 0;
    HeldList<Item> list;
    list.append(new Item(1));
    list.append(new Item(2));
    auto* kept = list.record(1);
    list.replace({nullptr, kept, new Item(3)});
    EXPECT_EQ(Item::alive, 2);
    EXPECT_EQ(list.record(0), kept);
    EXPECT_EQ(list.declared, 2U);
    list.set(kept); // it is the one held first
    EXPECT_EQ(list.held(), 2U);
    list.set(new Item(4));
    EXPECT_EQ(list.held(), 1U);
    EXPECT_EQ(Item::alive, 1);
    list.set(nullptr);
    EXPECT_EQ(Item::alive, 0);
}

TEST(SafeNumbers, ConvertEveryDouble) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(toInteger(1.9), 1);
    EXPECT_EQ(toInteger(-1.9), -1);
    EXPECT_EQ(toInteger(std::nan("")), 0);
    EXPECT_EQ(toInteger(kInfinity), std::int64_t{1} << 62);
    EXPECT_EQ(toInteger(-kInfinity), -(std::int64_t{1} << 62));
    EXPECT_EQ(toInteger(1e300), std::int64_t{1} << 62);
    EXPECT_EQ(toUnsigned32(-1.0), 0xFFFFFFFFU);
    EXPECT_EQ(toUnsigned32(4294967296.0), 0U);
    EXPECT_EQ(toSeconds(1800, 600), 3.0);
    EXPECT_EQ(toSeconds(1800, 0), 0.0);
}

} // namespace
} // namespace test
