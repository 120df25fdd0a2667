// Reading atom headers and payloads.
#include "support/AtomFile.h"
#include "support/FakeStream.h"

#include <base/CException.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;
using HeaderPtr = std::unique_ptr<QTAtom>;

Bytes number(std::uint64_t v) {
    Bytes out;
    for (int shift = 56; shift >= 0; shift -= 8) {
        out.push_back(static_cast<unsigned char>(v >> shift));
    }
    return out;
}

TEST(ReaderHeaders, ArePlainOrLarge) {
    AtomFile file(hex({"00000010 'abcd' 0000000000000000", "00000001 'mdat' 0000000200000000"}));
    const HeaderPtr plain = file.header();
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->getSize(), 16U);
    EXPECT_EQ(plain->getType(), fourCC("abcd"));
    EXPECT_EQ(plain->getOffset(), 0U);
    EXPECT_EQ(plain->getHeaderSize(), 8);
    EXPECT_EQ(plain->getUtils(), &file.utils());
    EXPECT_FALSE(plain->isContainer());
    EXPECT_EQ(file.position(), 8);
    const HeaderPtr large(file.utils().getNextAtom(16));
    ASSERT_TRUE(large);
    EXPECT_EQ(large->getSize(), 0x200000000U);
    EXPECT_EQ(large->getType(), fourCC("mdat"));
    EXPECT_EQ(large->getOffset(), 16U);
    EXPECT_EQ(large->getHeaderSize(), 16);
    EXPECT_EQ(file.position(), 32);
    EXPECT_EQ(file.utils().getBytesRead(), 24U);
    EXPECT_EQ(file.header(), nullptr);
}

TEST(ReaderHeaders, NeedAllTheirBytes) {
    for (const char* bytes :
         {"", "00", "00000010 'abc'", "00000001 'mdat'", "00000001 'mdat' 00000000000000"}) {
        AtomFile file(hex(bytes));
        EXPECT_EQ(file.header(), nullptr) << bytes;
    }
}

TEST(ReaderHeaders, WithoutASizeRunToTheEndAndBeyond) {
    const Bytes file = repeat(0xAA, 100) + hex("00000000 'mdat'") + repeat(0, 892);
    ASSERT_EQ(file.size(), 1000U);
    AtomFile reader(file);
    const HeaderPtr header(reader.utils().getNextAtom(100));
    ASSERT_TRUE(header);
    EXPECT_EQ(header->getSize(), 908U);
    EXPECT_EQ(header->getHeaderSize(), 8);
    EXPECT_EQ(header->getSize() - header->getHeaderSize(), 900U);
}

TEST(ReaderHeaders, WithoutASizeOrAFullTypeStayEmpty) {
    struct Case {
        const char* bytes;
        std::uint64_t size;
    };
    for (const Case& c : {Case{"00000000 00000000", 0},
                          {"00000000 00 'abc'", 0},
                          {"00000000 'abc' 00", 0},
                          {"00000000 'a' 0000 'd'", 16},
                          {"00000000 'abcd'", 16}}) {
        AtomFile file(hex(c.bytes));
        const HeaderPtr header = file.header();
        ASSERT_TRUE(header);
        EXPECT_EQ(header->getSize(), c.size) << c.bytes;
        EXPECT_EQ(header->getHeaderSize(), 8);
    }
}

TEST(ReaderHeaders, AreNotChecked) {
    for (const std::uint64_t size : {2U, 7U, 8U, 0xFFFFFFFFU}) {
        const Bytes wide = number(size);
        AtomFile file(Bytes(wide.begin() + 4, wide.end()) + hex("'abcd'"));
        const HeaderPtr header = file.header();
        ASSERT_TRUE(header);
        EXPECT_EQ(header->getSize(), size);
    }
    for (const std::uint64_t size : {std::uint64_t{0}, std::uint64_t{15}, ~std::uint64_t{0}}) {
        AtomFile file(hex("00000001 'abcd'") + number(size));
        const HeaderPtr header = file.header();
        ASSERT_TRUE(header);
        EXPECT_EQ(header->getSize(), size);
        EXPECT_EQ(header->getHeaderSize(), 16);
    }
}

TEST(ReaderBytes, AreCountedAndCut) {
    AtomFile file(hex("0102030405"));
    unsigned char bytes[8] = {};
    EXPECT_EQ(file.utils().readData(bytes, 3), 3U);
    EXPECT_EQ(Bytes(bytes, bytes + 3), hex("010203"));
    EXPECT_EQ(file.utils().readData(bytes, 8), 2U);
    EXPECT_EQ(Bytes(bytes, bytes + 2), hex("0405"));
    EXPECT_EQ(file.utils().readData(bytes, 8), 0U);
    EXPECT_EQ(file.utils().readData(bytes, 0), 0U);
    EXPECT_EQ(file.utils().getBytesRead(), 5U);
}

TEST(ReaderBytes, NeedABuffer) {
    AtomFile file(hex("01"));
    try {
        file.utils().readData(nullptr, 0);
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(), "Can't put data in empty buffer");
        EXPECT_EQ(e.getName(), "Ketra::CException");
        EXPECT_EQ(e.getFunction(), "Ketra::QT::QTUtils::readData");
        EXPECT_EQ(e.getFile(), "lib/qt/QTUtils");
        EXPECT_GT(e.getLine(), 0);
    }
}

TEST(ReaderBytes, OfAStreamThatFailsAreNone) {
    FakeStream stream(100);
    stream.readResult = -1;
    QTUtils utils(&stream, nullptr);
    unsigned char bytes[4];
    EXPECT_EQ(utils.readData(bytes, 4), 0U);
    EXPECT_EQ(utils.getBytesRead(), 0U);
    EXPECT_EQ(utils.getNextAtom(0), nullptr);
}

TEST(ReaderBytes, OfNoStreamAreNone) {
    QTUtils utils(nullptr, nullptr);
    unsigned char bytes[4];
    EXPECT_EQ(utils.getNextAtom(0), nullptr);
    EXPECT_EQ(utils.getNextAtom(5), nullptr);
    EXPECT_EQ(utils.readData(bytes, 4), 0U);
    EXPECT_EQ(utils.skipData(3, 0), 0);
    EXPECT_EQ(utils.rewind(3), 0);
    QTAtom atom(std::uint64_t{20}, 1, 0, 8, &utils, false);
    EXPECT_EQ(utils.getData(&atom), nullptr);
    EXPECT_EQ(utils.skipData(&atom), -1);
    EXPECT_EQ(utils.getInstance(), &utils);
    EXPECT_EQ(utils.getStream(), nullptr);
}

/// The payload that getData() gives for an atom of the size at the start of the file.
struct Fetched {
    explicit Fetched(const Bytes& bytes) : file(bytes), header(file.header()) {
        if (header) data.reset(file.utils().getData(header.get()));
    }
    Bytes first(std::size_t count) const { return data ? Bytes(data.get(), data.get() + count) : Bytes(); }

    struct Free {
        void operator()(unsigned char* p) const { std::free(p); }
    };
    AtomFile file;
    HeaderPtr header;
    std::unique_ptr<unsigned char, Free> data;
};

TEST(ReaderPayload, IsWhatTheHeaderSays) {
    const Fetched got(hex("0000000C 'abcd' 01020304 99"));
    EXPECT_EQ(got.first(20), hex("01020304") + repeat(0, 16)); // zeros lie behind every payload
    const Fetched large(hex("00000001 'abcd' 0000000000000012 0102 99"));
    EXPECT_EQ(large.first(2), hex("0102"));
}

/// A stream that reads and seeks, and does not tell how long it is.
class UntoldStream : public FakeStream {
public:
    UntoldStream(std::int64_t length, std::int64_t told) : FakeStream(length), told_(told) {}
    std::int64_t size() override { return told_; }

private:
    std::int64_t told_;
};

TEST(ReaderPayload, OfAStreamThatDoesNotTellItsSizeIsWhole) {
    for (const std::int64_t told : {-1, 0}) {
        for (const std::uint64_t length : {9U, 65536U, 65537U, 1000000U}) {
            UntoldStream stream(1000000, told);
            stream.fill = 7;
            QTUtils utils(&stream, nullptr);
            QTAtom atom(length + 8, fourCC("abcd"), 0, 8, &utils, false);
            const std::unique_ptr<unsigned char, Fetched::Free> data(utils.getData(&atom));
            ASSERT_TRUE(data);
            EXPECT_EQ(Bytes(data.get(), data.get() + length), repeat(7, length));
            EXPECT_EQ(Bytes(data.get() + length, data.get() + length + 16), repeat(0, 16));
            EXPECT_EQ(stream.at, static_cast<std::int64_t>(length));
        }
    }
}

TEST(ReaderPayload, OfAStreamThatDoesNotTellItsSizeEndsWithIt) {
    UntoldStream stream(100000, -1);
    stream.fill = 7;
    QTUtils utils(&stream, nullptr);
    QTAtom atom(std::uint64_t{1} << 60, fourCC("abcd"), 0, 8, &utils, false);
    const std::unique_ptr<unsigned char, Fetched::Free> data(utils.getData(&atom));
    ASSERT_TRUE(data);
    EXPECT_EQ(Bytes(data.get(), data.get() + 100024), repeat(7, 100000) + repeat(0, 24));
    EXPECT_EQ(utils.getData(&atom), nullptr); // nothing is left
}

TEST(ReaderPayload, IsFilledUpWithZeros) {
    const Fetched got(hex("00000010 'abcd' 0102"));
    EXPECT_EQ(got.first(8), hex("0102000000000000"));
}

TEST(ReaderPayload, IsNullWhenThereIsNone) {
    EXPECT_FALSE(Fetched(hex("00000008 'abcd' 0102")).data);
    EXPECT_FALSE(Fetched(hex("00000002 'abcd' 0102")).data);
    EXPECT_FALSE(Fetched(hex("00000010 'abcd'")).data);
    AtomFile file({});
    EXPECT_EQ(file.utils().getData(nullptr), nullptr);
}

TEST(ReaderPayload, IsNotBelievedBeyondTheFile) {
    const Fetched got(hex("00000001 'abcd' 7FFFFFFFFFFFFFFF 0102030405")); // 8 EiB are not asked for
    EXPECT_EQ(got.first(13), hex("0102030405") + repeat(0, 8));
    const Fetched plain(hex("FFFFFFFF 'abcd' 01"));
    EXPECT_EQ(plain.first(9), hex("01") + repeat(0, 8));
}

TEST(ReaderPayload, MayEndEightBytesBeyondTheFile) {
    const Fetched got(hex("00000000 'mdat' 010203")); // size 19: payload 11
    EXPECT_EQ(got.header->getSize(), 19U);
    EXPECT_EQ(got.first(11), hex("010203") + repeat(0, 8));
}

} // namespace
} // namespace test
