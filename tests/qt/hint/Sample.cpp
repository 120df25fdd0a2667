#include "support/Bytes.h"

#include <qt/QTRTPPacket.h>
#include <qt/QTSample.h>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

namespace test {
namespace {

using Ketra::QT::QTFrame;
using Ketra::QT::QTRTPPacket;
using Ketra::QT::QTSample;

unsigned char* block(const Bytes& bytes) {
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.empty() ? 1 : bytes.size()));
    if (!bytes.empty()) std::memcpy(copy, bytes.data(), bytes.size());
    return copy;
}

/// A packet with a payload of `size` bytes of `value`.
QTRTPPacket* packet(unsigned short size, unsigned char value = 0xAB) {
    auto* made = new QTRTPPacket;
    made->setData(size, block(repeat(value, size)));
    return made;
}

TEST(RTPPacket, HasItsDefaults) {
    const QTRTPPacket p;
    EXPECT_EQ(p.getRelativeTransmissionTime(), 0);
    EXPECT_EQ(p.getPayloadType(), 96);
    EXPECT_EQ(p.getEntryCount(), 1);
    EXPECT_EQ(p.getDataSource(), 2);
    EXPECT_EQ(p.getTrackReference(), 0xFF);
    EXPECT_EQ(p.getSize(), 0);
    EXPECT_EQ(p.getData(), nullptr);
    EXPECT_EQ(p.getFlags(), 0);
    EXPECT_EQ(p.getTLVSize(), 0U);
    EXPECT_EQ(p.getPlayTime(), 0.0);
    EXPECT_EQ(p.getDuration(), 0.0);
    EXPECT_EQ(p.getBytesPerCompressionBlock(), 0);
    EXPECT_EQ(p.getSamplesPerCompressionBlock(), 0);
}

TEST(RTPPacket, TakesAllFieldsAtOnce) {
    const QTRTPPacket p(-3, 1.5, 0.25, 1, 1, 1, 97, 7, 4, 2, 3, 4, 2, block({1, 2}), 5, 6, 8, 9, 3,
                        block({7, 8, 9}));
    EXPECT_EQ(p.getRelativeTransmissionTime(), -3);
    EXPECT_EQ(p.getPlayTime(), 1.5);
    EXPECT_EQ(p.getDuration(), 0.25);
    EXPECT_EQ(p.getPadding(), 1);
    EXPECT_EQ(p.getExtension(), 1);
    EXPECT_EQ(p.getMarker(), 1);
    EXPECT_EQ(p.getPayloadType(), 97);
    EXPECT_EQ(p.getRTPSequenceNumber(), 7);
    EXPECT_EQ(p.getFlags(), 4);
    EXPECT_EQ(p.getEntryCount(), 2);
    EXPECT_EQ(p.getDataSource(), 3);
    EXPECT_EQ(p.getTrackReference(), 4);
    EXPECT_EQ(p.getSize(), 2);
    EXPECT_EQ(p.getData()[1], 2);
    EXPECT_EQ(p.getSampleNumber(), 5U);
    EXPECT_EQ(p.getOffset(), 6U);
    EXPECT_EQ(p.getBytesPerCompressionBlock(), 8);
    EXPECT_EQ(p.getSamplesPerCompressionBlock(), 9);
    EXPECT_EQ(p.getTLVSize(), 3U);
    EXPECT_EQ(p.getTLVData()[2], 9);
}

TEST(RTPPacket, RefusesNoData) {
    QTRTPPacket p;
    unsigned char byte = 0;
    EXPECT_EQ(p.setData(0, &byte), -1); // not taken
    EXPECT_EQ(p.setData(4, nullptr), -1);
    EXPECT_EQ(p.setData(nullptr), -1);
    EXPECT_EQ(p.getSize(), 0);
    EXPECT_EQ(p.setData(2, block({1, 2})), 0);
    EXPECT_EQ(p.setData(2, block({3, 4})), 0); // the first block is released
    EXPECT_EQ(p.setData(block({5, 6})), 0);
    EXPECT_EQ(p.getSize(), 2);
    EXPECT_EQ(p.getData()[0], 5);
    EXPECT_EQ(p.setData(2, p.getData()), 0); // the block already held
    EXPECT_EQ(p.getData()[0], 5);
    EXPECT_EQ(p.setTLVData(1, block({1})), 0);
    EXPECT_EQ(p.setTLVData(2, block({1, 2})), 0);
    EXPECT_EQ(p.setTLVData(9, p.getTLVData()), 0);
    EXPECT_EQ(p.getTLVSize(), 2U);
}

TEST(Sample, HoldsOnePacketWithItsPayload) {
    QTSample sample(1);
    QTRTPPacket* p = packet(100);
    p->setMarker(1);
    p->setRTPSequenceNumber(7);
    p->setPlayTime(2.5);
    p->setDuration(0.04);
    EXPECT_EQ(sample.addRTPPacket(p), 0);
    EXPECT_EQ(sample.getDataSize(), 100U);
    QTFrame* frame = sample.makeQTFrame();
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->getTime(), 2.5);
    EXPECT_EQ(frame->getDuration(), 0.04);
    EXPECT_EQ(take(frame), hex({"0001 0000",         // packets, reserved
                                "00000000",          // transmission time
                                "00E0",              // marker, type 96
                                "0007",              // sequence number
                                "0000",              // flags
                                "0001",              // entries
                                "02 FF 0064",        // sample data in this track, 100 bytes
                                "00000001 00000020", // sample 1, offset 32
                                "0000 0000"}) +
                               repeat(0xAB, 100));
}

TEST(Sample, TakesThePayloadBeforeItsSize) {
    QTSample sample(1);
    auto* p = new QTRTPPacket;
    EXPECT_EQ(p->setData(block({1, 2, 3, 4})), 0);
    EXPECT_EQ(p->setSize(4), 0);
    sample.addRTPPacket(p);
    const Bytes bytes = take(sample.makeQTFrame());
    EXPECT_EQ(Bytes(bytes.begin() + 32, bytes.end()), hex("01020304"));
    QTSample longer(1); // a block of a known size is not read beyond it
    p = packet(2, 0x11);
    p->setSize(4);
    longer.addRTPPacket(p);
    const Bytes filled = take(longer.makeQTFrame());
    EXPECT_EQ(Bytes(filled.begin() + 32, filled.end()), hex("11110000"));
}

TEST(Sample, PutsOffsetsBehindAllEntries) {
    QTSample sample(3);
    QTRTPPacket* first = packet(10, 0x11);
    first->setPlayTime(1);
    first->setDuration(0.5);
    QTRTPPacket* second = packet(20, 0x22);
    second->setPlayTime(9);
    second->setDuration(0.25);
    sample.addRTPPacket(first);
    sample.addRTPPacket(second);
    EXPECT_EQ(first->getOffset(), 0U);
    EXPECT_EQ(second->getOffset(), 10U);
    EXPECT_EQ(second->getSampleNumber(), 3U);
    EXPECT_EQ(sample.getPlayTime(), 1.0);
    EXPECT_EQ(sample.getDuration(), 0.75);
    const Bytes bytes = take(sample.makeQTFrame());
    ASSERT_EQ(bytes.size(), 90U);
    EXPECT_EQ(Bytes(bytes.begin() + 24, bytes.begin() + 28), hex("0000003C")); // 60
    EXPECT_EQ(Bytes(bytes.begin() + 52, bytes.begin() + 56), hex("00000046")); // 70
    EXPECT_EQ(Bytes(bytes.begin() + 60, bytes.end()), repeat(0x11, 10) + repeat(0x22, 20));
}

TEST(Sample, SetsTheHeaderBits) {
    const auto bits = [](unsigned char padding, unsigned char extension, unsigned char marker,
                         unsigned short type) {
        QTSample sample(1);
        QTRTPPacket* p = packet(1);
        p->setPadding(padding);
        p->setExtension(extension);
        p->setMarker(marker);
        p->setPayloadType(type);
        sample.addRTPPacket(p);
        const Bytes bytes = take(sample.makeQTFrame());
        return 256 * bytes[8] + bytes[9];
    };
    EXPECT_EQ(bits(0, 0, 1, 96), 0x00E0);
    EXPECT_EQ(bits(1, 0, 0, 96), 0x2060);
    EXPECT_EQ(bits(0, 1, 0, 96), 0x1060);
    EXPECT_EQ(bits(0, 0, 0, 128), 0x0080); // not cut to seven bits
    EXPECT_EQ(bits(0, 0, 1, 255), 0x00FF); // nor carried on
    EXPECT_EQ(bits(1, 2, 0, 96), 0x2060);
}

TEST(Sample, WritesTheExtraDataOfFlaggedPackets) {
    QTSample sample(1);
    for (int i = 0; i < 2; ++i) {
        QTRTPPacket* p = packet(1, 0x77);
        p->setRelativeTransmissionTime(-1);
        p->setFlags(4);
        p->setTLVData(4, block(hex("00000004")));
        sample.addRTPPacket(p);
    }
    const Bytes entry = hex("FFFFFFFF 0060 0000 0004 0001 00000004 02 FF 0001 00000001");
    EXPECT_EQ(take(sample.makeQTFrame()), hex("0002 0000") + entry + hex("00000044 00000000") + entry +
                                              hex("00000045 00000000") + hex("77 77"));
}

TEST(Sample, IsAsLongAsItsFirstPacketSays) {
    QTSample shorter(1); // the second packet's extra data has no room: the last payload is cut
    shorter.addRTPPacket(packet(2, 0x11));
    QTRTPPacket* p = packet(6, 0x22);
    p->setFlags(4);
    p->setTLVData(4, block({1, 2, 3, 4}));
    shorter.addRTPPacket(p);
    const Bytes bytes = take(shorter.makeQTFrame());
    ASSERT_EQ(bytes.size(), 68U);
    EXPECT_EQ(Bytes(bytes.begin() + 64, bytes.end()), hex("11 11 22 22"));

    QTSample longer(1); // extra data without the flag: its room stays empty
    QTRTPPacket* q = packet(2, 0x33);
    q->setTLVData(4, block({1, 2, 3, 4}));
    longer.addRTPPacket(q);
    const Bytes loose = take(longer.makeQTFrame());
    ASSERT_EQ(loose.size(), 38U);
    EXPECT_EQ(Bytes(loose.begin() + 24, loose.begin() + 28), hex("00000024"));
    EXPECT_EQ(Bytes(loose.begin() + 32, loose.end()), hex("33 33 0000 0000"));

    QTSample none(1); // the flag without extra data
    QTRTPPacket* r = packet(1, 0x44);
    r->setFlags(4);
    none.addRTPPacket(r);
    EXPECT_EQ(take(none.makeQTFrame()).size(), 33U);
}

TEST(Sample, CopiesNoMoreThanThePayloadHolds) {
    QTSample sample(1);
    QTRTPPacket* p = packet(2, 0x55);
    p->setSize(5);
    sample.addRTPPacket(p);
    QTRTPPacket* empty = new QTRTPPacket;
    empty->setSize(3);
    sample.addRTPPacket(empty);
    const Bytes bytes = take(sample.makeQTFrame());
    ASSERT_EQ(bytes.size(), 68U);
    EXPECT_EQ(Bytes(bytes.begin() + 60, bytes.end()), hex("55 55 00 00 00 00 00 00"));
}

TEST(Sample, IsFourBytesWithoutPackets) {
    QTSample sample(2);
    EXPECT_EQ(sample.addRTPPacket(nullptr), -1);
    QTFrame* frame = sample.makeQTFrame();
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->getTime(), 0.0);
    EXPECT_EQ(take(frame), hex("00000000"));
}

TEST(Sample, IsRefusedAboveFourGigabytes) {
    QTSample sample(1);
    QTRTPPacket* p = packet(1);
    p->setTLVData(0xFFFFFFFF, nullptr);
    sample.addRTPPacket(p);
    EXPECT_EQ(sample.makeQTFrame(), nullptr);
}

TEST(Sample, WritesBigEndianNumbers) {
    unsigned char bytes[11] = {};
    unsigned char* at = bytes;
    QTSample::putUInt8(&at, 0x01);
    QTSample::putUInt16(&at, 0x0203);
    QTSample::putUInt32(&at, 0x04050607);
    QTSample::putSInt32(&at, -2);
    EXPECT_EQ(at, bytes + 11);
    EXPECT_EQ(Bytes(bytes, bytes + 11), hex("01 0203 04050607 FFFFFFFE"));
}

} // namespace
} // namespace test
