#include "support/Bytes.h"

#include <qt/QTFrame.h>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

namespace test {
namespace {

using Ketra::QT::QTFrame;

unsigned char* block(const Bytes& bytes) {
    auto* data = static_cast<unsigned char*>(std::malloc(bytes.size()));
    std::memcpy(data, bytes.data(), bytes.size());
    return data;
}

Bytes bytesOf(const QTFrame& frame) {
    return frame.getData() ? Bytes(frame.getData(), frame.getData() + frame.getDataLength()) : Bytes();
}

TEST(Frame, IsEmptyAtFirst) {
    const QTFrame frame;
    EXPECT_EQ(frame.getDataLength(), 0U);
    EXPECT_EQ(frame.getData(), nullptr);
    EXPECT_EQ(frame.getTime(), 0.0);
    EXPECT_EQ(frame.getDecodeTime(), 0.0);
    EXPECT_EQ(frame.getDuration(), 0.0);
    EXPECT_EQ(frame.getEndTime(), 0.0);
    EXPECT_EQ(frame.getSamplesInFrame(), 0U);
    EXPECT_FALSE(frame.getIsKeyFrame());
    EXPECT_FALSE(frame.getContainsEncodedAlpha());
}

TEST(Frame, HoldsWhatItIsGiven) {
    const QTFrame frame(3, block(hex("010203")), 1.5, 0.25, true, 7, 1.75, 1.25, true);
    EXPECT_EQ(bytesOf(frame), hex("010203"));
    EXPECT_EQ(frame.getTime(), 1.5);
    EXPECT_EQ(frame.getDuration(), 0.25);
    EXPECT_TRUE(frame.getIsKeyFrame());
    EXPECT_EQ(frame.getSamplesInFrame(), 7U);
    EXPECT_EQ(frame.getEndTime(), 1.75);
    EXPECT_EQ(frame.getDecodeTime(), 1.25);
    EXPECT_TRUE(frame.getContainsEncodedAlpha());
}

TEST(Frame, WithoutALengthKeepsNoBlock) {
    unsigned char here[1] = {9};
    const QTFrame frame(0, here, 0, 0, false, 0, 0, 0, false);
    EXPECT_EQ(frame.getData(), nullptr); // neither kept nor released
    EXPECT_EQ(here[0], 9);
}

TEST(Frame, HasASetterForAllButItsEnd) {
    QTFrame frame;
    EXPECT_EQ(frame.setDataLength(5), 0);
    EXPECT_EQ(frame.setTime(1), 0);
    EXPECT_EQ(frame.setDecodeTime(2), 0);
    EXPECT_EQ(frame.setDuration(3), 0);
    EXPECT_EQ(frame.setIsKeyFrame(true), 0);
    EXPECT_EQ(frame.setSamplesInFrame(4), 0);
    EXPECT_EQ(frame.setContainsEncodedAlpha(true), 0);
    EXPECT_EQ(frame.getDataLength(), 5U);
    EXPECT_EQ(frame.getData(), nullptr);
    EXPECT_EQ(frame.getTime(), 1.0);
    EXPECT_EQ(frame.getDecodeTime(), 2.0);
    EXPECT_EQ(frame.getDuration(), 3.0);
    EXPECT_TRUE(frame.getIsKeyFrame());
    EXPECT_EQ(frame.getSamplesInFrame(), 4U);
    EXPECT_TRUE(frame.getContainsEncodedAlpha());
    frame.print();
}

TEST(Frame, AdoptsABlock) {
    QTFrame frame;
    EXPECT_EQ(frame.setData(2, block(hex("0102"))), 0);
    EXPECT_EQ(bytesOf(frame), hex("0102"));
    EXPECT_EQ(frame.setData(3, block(hex("030405"))), 0);
    EXPECT_EQ(bytesOf(frame), hex("030405"));
    unsigned char here[1] = {9};
    EXPECT_EQ(frame.setData(0, here), -1);
    EXPECT_EQ(frame.setData(4, nullptr), -1);
    EXPECT_EQ(frame.setData(nullptr), -1);
    EXPECT_EQ(bytesOf(frame), hex("030405"));
    EXPECT_EQ(frame.setData(block(hex("AABBCC"))), 0);
    EXPECT_EQ(bytesOf(frame), hex("AABBCC")); // the length stays
}

TEST(Frame, TakesItsOwnBlockAgain) {
    QTFrame frame;
    frame.setData(2, block(hex("0102")));
    EXPECT_EQ(frame.setData(1, frame.getData()), 0);
    EXPECT_EQ(bytesOf(frame), hex("01"));
    EXPECT_EQ(frame.setData(frame.getData()), 0);
    EXPECT_EQ(bytesOf(frame), hex("01"));
}

TEST(Frame, CopiesDuplicateTheBytes) {
    auto original = std::make_unique<QTFrame>(2, block(hex("0102")), 1.0, 2.0, true, 3, 4.0, 5.0, true);
    const QTFrame copy(*original);
    QTFrame assigned;
    assigned.setData(1, block(hex("FF")));
    assigned = *original;
    assigned = *&assigned;
    EXPECT_NE(copy.getData(), original->getData());
    original.reset();
    for (const QTFrame* frame : {&copy, static_cast<const QTFrame*>(&assigned)}) {
        EXPECT_EQ(bytesOf(*frame), hex("0102"));
        EXPECT_EQ(frame->getTime(), 1.0);
        EXPECT_EQ(frame->getDuration(), 2.0);
        EXPECT_TRUE(frame->getIsKeyFrame());
        EXPECT_EQ(frame->getSamplesInFrame(), 3U);
        EXPECT_EQ(frame->getEndTime(), 4.0);
        EXPECT_EQ(frame->getDecodeTime(), 5.0);
        EXPECT_TRUE(frame->getContainsEncodedAlpha());
    }
}

TEST(Frame, CopiesNoMoreThanIsThere) {
    QTFrame original;
    original.setData(2, block(hex("0102")));
    original.setDataLength(4); // more than the block
    const QTFrame copy(original);
    EXPECT_EQ(bytesOf(copy), hex("01020000"));
    QTFrame empty;
    empty.setDataLength(9);
    EXPECT_EQ(QTFrame(empty).getData(), nullptr);
}

} // namespace
} // namespace test
