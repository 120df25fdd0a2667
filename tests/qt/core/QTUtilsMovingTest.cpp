// Skipping, seeking, and the block in memory that is served before the stream.
#include "support/AtomFile.h"
#include "support/FakeStream.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;
using HeaderPtr = std::unique_ptr<QTAtom>;

/// A file of `stream` with `block` in front of it, of which `consumed` bytes are read.
class BlockFile : public AtomFile {
public:
    BlockFile(const Bytes& block, const Bytes& stream, std::size_t consumed) : AtomFile(stream) {
        Bytes copy = block;
        EXPECT_EQ(utils().setAlternateData(copy.size(), copy.data()), 0);
        Bytes read(consumed + 1);
        EXPECT_EQ(utils().readData(read.data(), static_cast<unsigned int>(consumed)), consumed);
    }
    /// The next bytes, however many there are.
    Bytes next(std::size_t count) {
        Bytes out(count + 1);
        out.resize(utils().readData(out.data(), static_cast<unsigned int>(count)));
        return out;
    }
};

TEST(ReaderSkipping, LandsOnTheEndOfTheAtom) {
    AtomFile file(atom("abcd", repeat(1, 10)) + repeat(2, 3));
    const HeaderPtr header = file.header();
    EXPECT_EQ(file.utils().skipData(header.get()), 0);
    EXPECT_EQ(file.position(), 18);
    file.utils().skipData(9, 0);
    EXPECT_EQ(file.utils().skipData(header.get()), -1); // from elsewhere it lands elsewhere
    EXPECT_EQ(file.position(), 19);
    EXPECT_EQ(file.utils().skipData(nullptr), -1);
}

TEST(ReaderSkipping, PassesTheEndOfTheStream) {
    AtomFile file(hex("00000064 'abcd' 0102"));
    EXPECT_EQ(file.utils().skipData(file.header().get()), 0);
    EXPECT_EQ(file.position(), 100);
}

TEST(ReaderSkipping, GoesBackForASizeBelowItsHeader) {
    AtomFile file(hex("00000000 00000000 00"));
    EXPECT_EQ(file.utils().skipData(file.header().get()), 0);
    EXPECT_EQ(file.position(), 0);
}

TEST(ReaderSkipping, MovesInSteps) {
    FakeStream stream(std::int64_t{1} << 40);
    QTUtils utils(&stream, nullptr);
    const QTAtom large(0x180000000U, 1, 0, 16, &utils, false); // 6 GiB
    stream.at = 16;
    EXPECT_EQ(utils.skipData(const_cast<QTAtom*>(&large)), 0);
    EXPECT_EQ(stream.at, 0x180000000);
    EXPECT_EQ(stream.seeks, 3U); // two of 2147483647 and the rest
}

TEST(ReaderSkipping, DoesNotBelieveAnEndlessSize) {
    FakeStream stream(1000);
    QTUtils utils(&stream, nullptr);
    stream.at = 16;
    for (const std::uint64_t size : {~std::uint64_t{0}, ~std::uint64_t{0} >> 1, std::uint64_t{1} << 62}) {
        QTAtom endless(size, 1, 0, 16, &utils, false);
        EXPECT_EQ(utils.skipData(&endless), -1);
        EXPECT_EQ(stream.at, 16);
    }
    EXPECT_EQ(stream.seeks, 0U);
}

TEST(ReaderSkipping, AcceptsTheStreamsEndForAnAtomThatRunsThere) {
    AtomFile file(hex("00000000 'mdat' 010203"));
    EXPECT_EQ(file.utils().skipData(file.header().get()), 0); // past the end, where the size says
    EXPECT_EQ(file.position(), 19);

    FakeStream stream(100); // all zeros: headers of size 0
    stream.clamps = true;
    stream.fill = 0;
    QTUtils utils(&stream, nullptr);
    QTAtom stated(std::uint64_t{200}, fourCC("mdat"), 0, 8, &utils, false);
    stream.at = 8;
    EXPECT_EQ(utils.skipData(&stated), -1); // any other atom must end where it says
    EXPECT_EQ(stream.at, 100);
}

/// A stream over bytes that does not seek past its end.
class ClampingFile : public Ketra::Ferro::CMemoryStream {
public:
    using CMemoryStream::CMemoryStream;
    std::int64_t seek(std::int64_t offset, unsigned char relative) override {
        const std::int64_t here = CMemoryStream::seek(offset, relative);
        return here > size() ? CMemoryStream::seek(size(), 0) : here;
    }
};

TEST(ReaderSkipping, AcceptsAClampingStreamForAnAtomThatRunsToTheEnd) {
    struct Case {
        const char* bytes;
        int result;
    };
    for (const Case& c : {Case{"00000000 'mdat' 010203", 0}, {"00000013 'mdat' 010203", -1}}) {
        const Bytes bytes = hex(c.bytes);
        Ketra::Ferro::RStream source(new ClampingFile(bytes.data(), static_cast<std::int64_t>(bytes.size())));
        QTCMStream stream(&source);
        QTUtils utils(&stream, nullptr);
        QTAtom media(utils.getNextAtom(0)); // the mark is taken over with the header
        EXPECT_EQ(media.getSize(), 19U);
        EXPECT_EQ(media.parse(), c.result) << c.bytes;
    }
}

TEST(ReaderSeeking, GoesToTheStream) {
    AtomFile file(repeat(0, 50));
    EXPECT_EQ(file.utils().skipData(20, 0), 20);
    EXPECT_EQ(file.utils().skipData(5, 1), 25);
    EXPECT_EQ(file.utils().skipData(-10, 1), 15);
    EXPECT_EQ(file.utils().rewind(4), 11);
    EXPECT_EQ(file.position(), 11);
}

TEST(ReaderBlock, IsServedBeforeTheStream) {
    BlockFile file(hex("00010203040506070809"), hex("A0A1A2A3A4A5"), 4);
    EXPECT_EQ(file.utils().getBytesRead(), 4U);
    EXPECT_EQ(file.next(10), hex("040506070809 A0A1A2A3"));
    EXPECT_EQ(file.utils().getBytesRead(), 14U);
    EXPECT_EQ(file.next(10), hex("A4A5"));
}

TEST(ReaderBlock, LeavesTheStreamWhereItStood) {
    AtomFile file(hex("A0A1A2A3"));
    file.utils().skipData(2, 0);
    Bytes block = hex("0102");
    file.utils().setAlternateData(2, block.data());
    block = hex("FFFF"); // it was copied
    unsigned char bytes[2];
    EXPECT_EQ(file.utils().readData(bytes, 2), 2U);
    EXPECT_EQ(Bytes(bytes, bytes + 2), hex("0102"));
    EXPECT_EQ(file.position(), 2);
    EXPECT_EQ(file.utils().readData(bytes, 2), 2U);
    EXPECT_EQ(Bytes(bytes, bytes + 2), hex("A2A3"));
}

TEST(ReaderBlock, MustHoldSomething) {
    AtomFile file({});
    unsigned char byte = 1;
    EXPECT_EQ(file.utils().setAlternateData(0, &byte), -1);
    EXPECT_EQ(file.utils().setAlternateData(1, nullptr), -1);
}

TEST(ReaderBlock, IsReplacedByTheNext) {
    BlockFile file(hex("0102"), hex("A0"), 1);
    Bytes other = hex("111213");
    EXPECT_EQ(file.utils().setAlternateData(3, other.data()), 0);
    EXPECT_EQ(file.next(9), hex("111213A0"));
}

TEST(ReaderBlock, HoldsHeaders) {
    const Bytes block = hex({"0000000C 'abcd' 01020304", "00000008 'efgh'"});
    BlockFile file(block, repeat(0xAA, 40), 0);
    const HeaderPtr first = file.header();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->getOffset(), 0U);
    EXPECT_EQ(file.utils().skipData(first.get()), 0);
    const HeaderPtr second = file.header();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->getOffset(), 12U);
    EXPECT_EQ(second->getType(), fourCC("efgh"));
    EXPECT_EQ(file.position(), 0);
}

TEST(ReaderBlock, IsAddressedByPosition) {
    const Bytes block = hex({"0000000C 'abcd' 01020304", "00000008 'efgh'"});
    BlockFile file(block, repeat(0xAA, 16) + hex("00000008 'tail'") + repeat(0xBB, 8), 3);
    HeaderPtr header(file.utils().getNextAtom(12));
    ASSERT_TRUE(header);
    EXPECT_EQ(header->getType(), fourCC("efgh"));
    EXPECT_EQ(header->getOffset(), 12U);
    EXPECT_EQ(file.position(), 0);

    BlockFile beyond(block, repeat(0xAA, 21) + hex("00000008 'tail'") + repeat(0xBB, 8), 3);
    header.reset(beyond.utils().getNextAtom(21)); // longer than the block: it is dropped
    ASSERT_TRUE(header);
    EXPECT_EQ(header->getType(), fourCC("tail"));
    EXPECT_EQ(header->getOffset(), 21U);
    EXPECT_EQ(beyond.position(), 29);
}

TEST(ReaderBlock, GivesAPayloadThatLiesInBoth) {
    BlockFile file(hex("0000000C 'abcd' 0102"), hex("A0A1A2"), 0);
    const HeaderPtr header = file.header();
    unsigned char* data = file.utils().getData(header.get());
    ASSERT_TRUE(data);
    EXPECT_EQ(Bytes(data, data + 4), hex("0102A0A1"));
    std::free(data);
    EXPECT_EQ(file.position(), 2);
}

TEST(ReaderBlock, WithoutASizeRunsToTheStreamsEnd) {
    BlockFile inside(hex("00000000 'mdat'"), repeat(0, 100), 0);
    EXPECT_EQ(inside.header()->getSize(), 108U);
    BlockFile beyond(repeat(1, 20) + hex("00000000 'mdat'"), repeat(0, 10), 20);
    EXPECT_EQ(beyond.header()->getSize(), 8U); // its start lies behind the stream's end
}

TEST(ReaderBlock, IsUsedUpBySkippingExactly) {
    BlockFile file(hex("0000000C 'abcd' 01020304"), hex("A0A1"), 0);
    EXPECT_EQ(file.utils().skipData(file.header().get()), 0);
    EXPECT_EQ(file.position(), 0); // the stream was not touched
    EXPECT_EQ(file.next(1), hex("A0"));
}

TEST(ReaderBlock, EndsWithAnEmptyAtom) {
    BlockFile file(hex("00000008 'abcd'"), hex("A0A1"), 0);
    EXPECT_EQ(file.utils().skipData(file.header().get()), 0);
    EXPECT_EQ(file.position(), 0);
    EXPECT_EQ(file.next(1), hex("A0"));
}

TEST(ReaderBlock, IsLeftBehindByALongerSkip) {
    BlockFile file(hex("00000010 'abcd' 01020304"), repeat(0xA0, 20), 0);
    // The stream is moved by the whole distance, not by what the block lacks.
    EXPECT_EQ(file.utils().skipData(file.header().get()), -1);
    EXPECT_EQ(file.position(), 8);
}

TEST(ReaderBlock, IsMovedIn) {
    const Bytes block = hex("00010203040506070809");
    const Bytes stream = hex("A0A1A2A3A4A5A6A7A8A9AAABACADAEAF");
    struct Case {
        std::int64_t offset;
        unsigned char relative;
        std::int64_t result;
        const char* next;
    };
    // Four bytes are consumed, six remain; the stream stands at 0.
    for (const Case& c : {Case{3, 1, 7, "070809A0"},  // forward inside
                          {6, 1, 10, "A0A1A2A3"},     // exactly used up
                          {7, 1, 7, "A7A8A9AA"},      // beyond: the stream by the whole distance
                          {0, 1, 4, "04050607"},      //
                          {-3, 1, 1, "01020304"},     // back inside
                          {0, 0, 0, "00010203"},      // absolute inside
                          {9, 0, 9, "09A0A1A2"},      //
                          {10, 0, 10, "A0A1A2A3"},    // its end
                          {11, 0, 11, "ABACADAE"}}) { // beyond: in the stream
        BlockFile file(block, stream, 4);
        EXPECT_EQ(file.utils().skipData(c.offset, c.relative), c.result);
        EXPECT_EQ(file.next(4), hex(c.next)) << c.offset << ' ' << int{c.relative};
    }
}

TEST(ReaderBlock, IsLeftBackwards) {
    AtomFile file(hex("A0A1A2A3A4A5A6A7A8A9AAABACADAEAF"));
    file.utils().skipData(10, 0);
    Bytes block = hex("00010203040506070809");
    file.utils().setAlternateData(block.size(), block.data());
    unsigned char bytes[4];
    file.utils().readData(bytes, 4);
    // Back by as much as is consumed leaves it: first by that, then by the move.
    EXPECT_EQ(file.utils().rewind(4), 2);
    EXPECT_EQ(file.utils().readData(bytes, 4), 4U);
    EXPECT_EQ(Bytes(bytes, bytes + 4), hex("A2A3A4A5"));
}

TEST(ReaderBlock, CanBeRewoundInside) {
    BlockFile file(hex("00010203040506070809"), hex("A0"), 6);
    EXPECT_EQ(file.utils().rewind(4), 2);
    EXPECT_EQ(file.next(3), hex("020304"));
}

} // namespace
} // namespace test
