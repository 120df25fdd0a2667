#include "support/Bytes.h"

#include <qt/QTDataAtom.h>
#include <qt/QTTypes.h>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

unsigned char* block(const Bytes& bytes) {
    auto* data = static_cast<unsigned char*>(std::malloc(bytes.size()));
    std::memcpy(data, bytes.data(), bytes.size());
    return data;
}

TEST(DataAtom, CopiesItsPayload) {
    unsigned char bytes[] = {1, 2, 3};
    QTDataAtom entry(11, fourCC("name"), bytes);
    bytes[0] = 99;
    EXPECT_EQ(entry.getSize(), 11U);
    EXPECT_EQ(entry.getType(), fourCC("name"));
    EXPECT_EQ(Bytes(entry.getData(), entry.getData() + 3), hex("010203"));
}

TEST(DataAtom, WritesItsHeaderLeastSignificantByteFirst) {
    unsigned char bytes[] = {1, 2, 3};
    QTDataAtom entry(11, fourCC("name"), bytes);
    const std::unique_ptr<QTFrame> frame(entry.serialize());
    ASSERT_TRUE(frame);
    EXPECT_EQ(Bytes(frame->getData(), frame->getData() + frame->getDataLength()),
              hex("0B000000 'eman' 010203"));
    EXPECT_EQ(frame->getSamplesInFrame(), 1U);
    EXPECT_FALSE(frame->getIsKeyFrame());
}

TEST(DataAtom, AdoptsData) {
    unsigned char bytes[] = {1};
    QTDataAtom entry(9, 1, bytes);
    EXPECT_EQ(entry.setData(block(hex("0A0B")), 10), 0);
    EXPECT_EQ(entry.getSize(), 10U);
    EXPECT_EQ(take(entry.serialize()), hex("0A000000 01000000 0A0B"));
    EXPECT_EQ(entry.setData(entry.getData(), 9), 0); // its own block
    EXPECT_EQ(take(entry.serialize()), hex("09000000 01000000 0A"));
    EXPECT_EQ(entry.setType(fourCC("abcd")), 0);
    EXPECT_EQ(entry.getType(), fourCC("abcd"));
    EXPECT_EQ(entry.setData(nullptr, 10), 0);
    EXPECT_EQ(take(entry.serialize()), hex("0A000000 'dcba' 0000"));
}

TEST(DataAtom, WritesNoMoreThanItHas) {
    unsigned char bytes[] = {1, 2};
    QTDataAtom entry(10, 1, bytes);
    EXPECT_EQ(entry.setSize(12), 0);
    EXPECT_EQ(entry.getSize(), 12U);
    EXPECT_EQ(take(entry.serialize()), hex("0C000000 01000000 01020000"));
    entry.setSize(9);
    EXPECT_EQ(take(entry.serialize()), hex("09000000 01000000 01"));
    entry.setSize(8);
    EXPECT_EQ(take(entry.serialize()), hex("08000000 01000000"));
    entry.setSize(7);
    EXPECT_EQ(entry.serialize(), nullptr);
    entry.setSize(0x100000009); // the low 32 bits count
    EXPECT_EQ(take(entry.serialize()), hex("09000000 01000000 01"));
}

TEST(DataAtom, OfAHeaderAloneHasNoPayload) {
    for (const std::uint64_t size : {0, 1, 7, 8}) {
        const QTDataAtom entry(size, 1, nullptr);
        EXPECT_EQ(entry.getData(), nullptr) << size;
        EXPECT_EQ(entry.getSize(), size);
    }
    QTDataAtom zeros(10, 1, nullptr);
    EXPECT_EQ(take(zeros.serialize()), hex("0A000000 01000000 0000"));
}

TEST(DataAtom, CopiesDuplicateTheBytes) {
    unsigned char bytes[] = {1, 2};
    auto original = std::make_unique<QTDataAtom>(10, 1, bytes);
    QTDataAtom copy(*original);
    QTDataAtom assigned(8, 2, nullptr);
    assigned = *original;
    assigned = *&assigned;
    original.reset();
    EXPECT_EQ(take(copy.serialize()), hex("0A000000 01000000 0102"));
    EXPECT_EQ(take(assigned.serialize()), hex("0A000000 01000000 0102"));
}

} // namespace
} // namespace test
