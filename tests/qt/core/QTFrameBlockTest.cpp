#include "support/Bytes.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

namespace test {
namespace {

using Ketra::QT::QTFrame;

unsigned char* block(const Bytes& bytes) {
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.size()));
    std::memcpy(copy, bytes.data(), bytes.size());
    return copy;
}

Bytes bytesOf(const QTFrame& frame) {
    return frame.getData() ? Bytes(frame.getData(), frame.getData() + frame.getDataLength()) : Bytes();
}

TEST(FrameBlock, MayComeBeforeItsLength) {
    QTFrame frame;
    ASSERT_EQ(frame.setData(block(hex("010203"))), 0);
    EXPECT_EQ(frame.getDataLength(), 0U);
    ASSERT_EQ(frame.setDataLength(3), 0);
    EXPECT_EQ(bytesOf(QTFrame(frame)), hex("010203"));
    QTFrame assigned;
    assigned = frame;
    EXPECT_EQ(bytesOf(assigned), hex("010203"));
}

TEST(FrameBlock, ThatReplacesAShorterOneGivesAllItsBytes) {
    QTFrame frame(1, block(hex("01")), 0, 0, false, 1, 0, 0, false);
    frame.setData(block(hex("0A0B0C0D")));
    frame.setDataLength(4);
    EXPECT_EQ(bytesOf(QTFrame(frame)), hex("0A0B0C0D"));
    frame.setDataLength(6); // more than the block
    EXPECT_EQ(bytesOf(QTFrame(frame)), hex("0A0B0C0D0000"));
}

} // namespace
} // namespace test
