// The cursor helpers of QTAtom: expected bytes are worked out by hand.
#include "support/Bytes.h"

#include <qt/QTAtom.h>

#include <cmath>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>

namespace test {
namespace {

using namespace Ketra::QT;

/// Bytes that a put helper writes; it must return 0 and advance by as many.
template <class Put>
Bytes written(std::size_t width, Put put) {
    Bytes block(width + 4, 0xEE);
    unsigned char* cursor = block.data();
    EXPECT_EQ(put(&cursor), 0);
    EXPECT_EQ(cursor, block.data() + width);
    for (std::size_t i = width; i < block.size(); ++i) {
        EXPECT_EQ(block[i], 0xEE) << "byte " << i << " is not its own";
    }
    block.resize(width);
    return block;
}

/// What a get helper reads; it must advance over all bytes.
template <class Get>
auto read(const char* text, Get get) {
    Bytes bytes = hex(text);
    unsigned char* cursor = bytes.data();
    const auto value = get(&cursor);
    EXPECT_EQ(cursor, bytes.data() + bytes.size());
    return value;
}

Bytes fixed16(float v) {
    return written(2, [v](unsigned char** c) { return QTAtom::putFixed16(c, v); });
}
Bytes fixed32(float v) {
    return written(4, [v](unsigned char** c) { return QTAtom::putFixed32(c, v); });
}
Bytes fixedMatrix(float v) {
    return written(4, [v](unsigned char** c) { return QTAtom::putFixed32Matrix(c, v); });
}

TEST(ByteHelpers, ReadBigEndianNumbers) {
    EXPECT_EQ(read("FE", QTAtom::getUInt8), 0xFE);
    EXPECT_EQ(read("1234", QTAtom::getUInt16), 0x1234);
    EXPECT_EQ(read("89ABCDEF", QTAtom::getUInt32), 0x89ABCDEFU);
    EXPECT_EQ(read("0123456789ABCDEF", QTAtom::getUInt64), 0x0123456789ABCDEFU);
}

TEST(ByteHelpers, ReadThreeBytesInReverse) {
    EXPECT_EQ(read("010203", QTAtom::getUInt24), 0x030201U);
    EXPECT_EQ(read("00000F", QTAtom::getUInt24), 0x0F0000U);
}

TEST(ByteHelpers, ReadSixBytesInTheirOwnWay) {
    EXPECT_EQ(read("0001 0002 0004", QTAtom::getUInt48), 0x20005U);
    EXPECT_EQ(read("0000 8000 0001", QTAtom::getUInt48), 0xFFFFFFFF80000001U);
    EXPECT_EQ(read("FFFF 0000 0000", QTAtom::getUInt48), 0xFFFFU);
    EXPECT_EQ(read("0000 7FFF FFFF", QTAtom::getUInt48), 0x7FFFFFFFU);
}

TEST(ByteHelpers, ReadFixedPointAsWholeNumbers) {
    EXPECT_EQ(read("0180", QTAtom::getFixed16), 1.0F);
    EXPECT_EQ(read("0100", QTAtom::getFixed16), 1.0F);
    EXPECT_EQ(read("7FFE", QTAtom::getFixed16), 127.0F);
    EXPECT_EQ(read("7FFF", QTAtom::getFixed16), 256.0F);
    EXPECT_EQ(read("00FF", QTAtom::getFixed16), 256.0F);
    EXPECT_EQ(read("FF00", QTAtom::getFixed16), 255.0F);
    EXPECT_EQ(read("00010000", QTAtom::getFixed32), 256.0F);
    EXPECT_EQ(read("00028000", QTAtom::getFixed32), 512.0F);
    EXPECT_EQ(read("01020000", QTAtom::getFixed32), 513.0F);
    EXPECT_EQ(read("0000FFFF", QTAtom::getFixed32), 65536.0F);
    EXPECT_EQ(read("0000FFFE", QTAtom::getFixed32), 0.0F);
}

TEST(ByteHelpers, WriteBigEndianNumbers) {
    EXPECT_EQ(written(1, [](unsigned char** c) { return QTAtom::putUInt8(c, 0xFE); }), hex("FE"));
    EXPECT_EQ(written(2, [](unsigned char** c) { return QTAtom::putUInt16(c, 0x1234); }), hex("1234"));
    EXPECT_EQ(written(2, [](unsigned char** c) { return QTAtom::putSInt16(c, -2); }), hex("FFFE"));
    EXPECT_EQ(written(4, [](unsigned char** c) { return QTAtom::putUInt32(c, 0x89ABCDEF); }),
              hex("89ABCDEF"));
    EXPECT_EQ(written(8, [](unsigned char** c) { return QTAtom::putUInt64(c, 0x0123456789ABCDEF); }),
              hex("0123456789ABCDEF"));
}

TEST(ByteHelpers, KeepTheLowHalfOfEachReservedByte) {
    EXPECT_EQ(written(3, [](unsigned char** c) { return QTAtom::putUInt24(c, 0x123456); }), hex("020406"));
    EXPECT_EQ(written(3, [](unsigned char** c) { return QTAtom::putUInt24(c, 0x010000); }), hex("010000"));
    EXPECT_EQ(written(3, [](unsigned char** c) { return QTAtom::putUInt24(c, 15); }), hex("00000F"));
    EXPECT_EQ(written(3, [](unsigned char** c) { return QTAtom::putUInt24(c, 0xFF000000); }), hex("000000"));
    EXPECT_EQ(written(6, [](unsigned char** c) { return QTAtom::putUInt48(c, 0x123456789ABC); }),
              hex("020406080A0C"));
}

TEST(ByteHelpers, Write8_8) {
    EXPECT_EQ(fixed16(1.5F), hex("017F")); // 0.5 x 255 = 127.5
    EXPECT_EQ(fixed16(1.0F), hex("0100"));
    EXPECT_EQ(fixed16(0.1F), hex("0019"));  // 25.5
    EXPECT_EQ(fixed16(-1.5F), hex("FE81")); // -256 - 127
    EXPECT_EQ(fixed16(-0.5F), hex("FF81"));
    EXPECT_EQ(fixed16(256.0F), hex("0000"));
}

TEST(ByteHelpers, Write16_16) {
    EXPECT_EQ(fixed32(1.5F), hex("00017FFF"));
    EXPECT_EQ(fixed32(1.0F), hex("00010000"));
    EXPECT_EQ(fixed32(0.1F), hex("00001999"));
    EXPECT_EQ(fixed32(29.97F), hex("001DF850"));
    EXPECT_EQ(fixed32(-1.5F), hex("FFFE8001"));
    EXPECT_EQ(fixed32(256.0F), hex("01000000"));
    EXPECT_EQ(fixed32(65536.0F), hex("00000000"));
}

TEST(ByteHelpers, Write2_30) {
    EXPECT_EQ(fixedMatrix(1.0F), hex("40000000"));
    EXPECT_EQ(fixedMatrix(0.1F), hex("06666667"));
    EXPECT_EQ(fixedMatrix(64.0F), hex("00000000"));
    EXPECT_EQ(fixedMatrix(-1.0F), hex("C0000000"));
}

TEST(ByteHelpers, WriteEveryFloatWithoutAHarm) {
    const float kInfinity = std::numeric_limits<float>::infinity();
    for (const float v : {std::nanf(""), kInfinity, -kInfinity, 3e38F, -3e38F}) {
        fixed16(v);
        fixed32(v);
        fixedMatrix(v);
    }
    EXPECT_EQ(fixed32(std::nanf("")), hex("00000000"));
}

TEST(ByteHelpers, WriteAMatrixOfIntegers) {
    unsigned int identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    EXPECT_EQ(
        written(36, [&](unsigned char** c) { return QTAtom::putMatrix(c, identity); }),
        hex({"00010000 00000000 00000000", "00000000 00010000 00000000", "00000000 00000000 40000000"}));
    unsigned int fromFile[9] = {256, 0, 0, 0, 256, 0, 0, 0, 64};
    EXPECT_EQ(
        written(36, [&](unsigned char** c) { return QTAtom::putMatrix(c, fromFile); }),
        hex({"01000000 00000000 00000000", "00000000 01000000 00000000", "00000000 00000000 00000000"}));
    unsigned int large[9] = {0xFFFFFFFF, 0, 0xFFFFFFFF, 0, 0, 0, 0, 0, 0}; // 2^32 as a float
    EXPECT_EQ(written(36, [&](unsigned char** c) { return QTAtom::putMatrix(c, large); }), repeat(0, 36));
}

TEST(ByteHelpers, CopyAndAdvanceByWholeUnits) {
    struct Case {
        unsigned char* (*copy)(unsigned char*, unsigned char**, unsigned int);
        unsigned int n;
        std::ptrdiff_t advance;
    };
    for (const Case& c : {Case{QTAtom::copyUInt8Data, 7, 7},
                          {QTAtom::copyUInt16Data, 7, 6},
                          {QTAtom::copyUInt16Data, 6, 6},
                          {QTAtom::copyUInt32Data, 7, 4},
                          {QTAtom::copyUInt32Data, 8, 8},
                          {QTAtom::copyUInt32Data, 0, 0}}) {
        Bytes from = hex("0102030405060708");
        Bytes to(8, 0xEE);
        unsigned char* cursor = from.data();
        EXPECT_EQ(c.copy(to.data(), &cursor, c.n), to.data());
        EXPECT_EQ(cursor - from.data(), c.advance);
        for (unsigned int i = 0; i < 8; ++i) {
            EXPECT_EQ(to[i], i < c.n ? from[i] : 0xEE);
        }
    }
}

TEST(ByteHelpers, ReverseBytes) {
    EXPECT_EQ(QTAtom::BE16(0x1234), 0x3412);
    EXPECT_EQ(QTAtom::BES16(0x0080), static_cast<short>(-32768));
    EXPECT_EQ(QTAtom::BE32(0x12345678), 0x78563412U);
}

TEST(ExpandableSize, IsReadSevenBitsAtATime) {
    struct Case {
        const char* bytes;
        unsigned int value, count;
    };
    for (const Case& c : {Case{"80808005", 5, 4},
                          {"8100", 128, 2},
                          {"FF7F", 16383, 2},
                          {"05", 5, 1},
                          {"7F", 127, 1},
                          {"80808080808001", 1, 7},
                          {"FFFFFFFFFF7F", 0xFFFFFFFF, 6}}) {
        Bytes bytes = hex(c.bytes);
        unsigned char* cursor = bytes.data();
        unsigned int remaining = 100;
        EXPECT_EQ(QTAtom::getMP4ObjectSize(&cursor, &remaining), c.value) << c.bytes;
        EXPECT_EQ(cursor, bytes.data() + c.count);
        EXPECT_EQ(remaining, 100 - c.count);
    }
    Bytes bytes = hex("8101");
    unsigned char* cursor = bytes.data();
    unsigned int remaining = 1; // not checked: it wraps
    EXPECT_EQ(QTAtom::getMP4ObjectSize(&cursor, &remaining), 129U);
    EXPECT_EQ(remaining, 0xFFFFFFFFU);
}

TEST(CurrentTime, CountsFrom1904) {
    constexpr std::int64_t kUnixEpoch = 2082844800;
    const auto before = static_cast<unsigned int>(std::time(nullptr) + kUnixEpoch);
    const unsigned int now = QTAtom::getNewCurrentTime();
    const auto after = static_cast<unsigned int>(std::time(nullptr) + kUnixEpoch);
    EXPECT_GE(now, before);
    EXPECT_LE(now, after);
}

} // namespace
} // namespace test
