// The loop that reads the children of every container.
#include "support/AtomFile.h"

#include <qt/QTAtoms.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

Bytes movieHeader() { return atom("mvhd", repeat(0, 100)); }

std::string typesOf(const QTAtom& parent) {
    std::string types;
    for (const QTAtom* child : parent.getChildren()) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            types += static_cast<char>(child->getType() >> shift);
        }
    }
    return types;
}

/// A "moov" with the children, and "tail" behind it.
struct Read {
    explicit Read(const Bytes& children, const Bytes& behind = hex("00000008 'tail'"))
        : file(atom("moov", children) + behind) {
        movie = file.parse<MOOV>(&result);
    }
    AtomFile file;
    int result = 99;
    std::unique_ptr<MOOV> movie;
};

TEST(ContainerParsing, ReadsChildrenInOrder) {
    Read read(movieHeader() + atom("abcd", repeat(1, 4)) + atom("trak", {}) + atom("udta", {}));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(typesOf(*read.movie), "mvhdabcdtrakudta");
    const std::vector<QTAtom*> children = read.movie->getChildren();
    EXPECT_TRUE(dynamic_cast<MVHD*>(children[0]));
    EXPECT_TRUE(typeid(*children[1]) == typeid(QTAtom));
    EXPECT_EQ(children[1]->getSize(), 12U);
    EXPECT_EQ(children[1]->getOffset(), 116U);
    EXPECT_TRUE(dynamic_cast<TRAK*>(children[2]));
    EXPECT_TRUE(dynamic_cast<UDTA*>(children[3]));
    EXPECT_EQ(read.file.position(), 144);
}

TEST(ContainerParsing, DropsWhatItDoesNotKnowOnWriting) {
    Read read(atom("abcd", repeat(1, 4)) + atom("trak", {}));
    EXPECT_EQ(read.movie->updateSize(), 20U); // the unknown one still counts, the track has no samples
    EXPECT_EQ(take(read.movie->serialize()), hex("00000014 'moov' 0000000C 'free' 00000000"));
}

TEST(ContainerParsing, OfNothingIsEmpty) {
    Read read({});
    EXPECT_EQ(read.result, 0);
    EXPECT_TRUE(read.movie->getChildren().empty());
    EXPECT_TRUE(read.movie->isContainer());
    EXPECT_EQ(read.file.position(), 8);
    AtomFile small(hex("00000004 'moov' 00000008 'free'"));
    int result = 99;
    EXPECT_TRUE(small.parse<MOOV>(&result)->getChildren().empty());
    EXPECT_EQ(result, 0);
}

TEST(ContainerParsing, EndsQuietlyWhereTheFileEnds) {
    for (const char* bytes : {"00000064 'moov'", "00000064 'moov' 0000", "00000064 'moov' 00000008 'trak'",
                              "00000064 'moov' 00000008 'trak' 00000008 'udt'"}) {
        AtomFile file(hex(bytes));
        int result = 99;
        const auto movie = file.parse<MOOV>(&result);
        EXPECT_EQ(result, 0) << bytes;
        EXPECT_LE(movie->getChildren().size(), 1U);
    }
}

TEST(ContainerParsing, EndsAtAHeaderThatStatesLessThanItself) {
    for (const char* bad : {"00000000 00000000", "00000000 00 'abc'", "00000002 'abcd'", "00000007 'abcd'",
                            "00000001 'abcd' 0000000000000000", "00000001 'abcd' 000000000000000F"}) {
        Read read(movieHeader() + hex(bad) + atom("trak", {}));
        EXPECT_EQ(read.result, 0) << bad;
        EXPECT_EQ(typesOf(*read.movie), "mvhd") << bad;
        const std::unique_ptr<QTAtom> next = read.file.header(); // the file goes on behind the container
        ASSERT_TRUE(next) << bad;
        EXPECT_EQ(next->getType(), fourCC("tail")) << bad;
    }
}

TEST(ContainerParsing, ChildThatCannotBeReadEndsTheRead) {
    Read read(atom("trak", {}) + hex("00000008 'mvhd'") + atom("trak", {}));
    EXPECT_EQ(read.result, -1);
    EXPECT_EQ(typesOf(*read.movie), "trak"); // what came before stays
    Read endless(atom("trak", {}) + hex("00000001 'abcd' FFFFFFFFFFFFFFFF"));
    EXPECT_EQ(endless.result, -1);
    EXPECT_EQ(typesOf(*endless.movie), "trak");
}

TEST(ContainerParsing, GoesOnBehindAChildThatStopsShort) {
    // The clip reads one child and leaves the second.
    const Bytes region = atom("crgn", hex("000A 0000000000000000"));
    Read read(atom("clip", region + region) + movieHeader());
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(typesOf(*read.movie), "clipmvhd");
    // User data that ends in a zero entry.
    Read data(atom("udta", atom("abcd", {}) + repeat(0, 12)) + movieHeader());
    EXPECT_EQ(data.result, 0);
    EXPECT_EQ(typesOf(*data.movie), "udtamvhd");
}

TEST(ContainerParsing, TakesAChildBeyondItsEndAsItStands) {
    Read read(hex("00000018 'trak'"), atom("abcd", repeat(0, 8))); // 16 bytes longer than the movie
    EXPECT_EQ(read.result, 0);
    ASSERT_EQ(typesOf(*read.movie), "trak");
    EXPECT_EQ(typesOf(*read.movie->getChildren()[0]), "abcd");
}

TEST(ContainerParsing, NeedsAReader) {
    EXPECT_EQ(MOOV().parse(), -1);
    EXPECT_EQ(TRAK().parse(), -1);
    EXPECT_EQ(UDTA().parse(), -1);
    EXPECT_EQ(ROOT().parse(), -1);
}

TEST(ContainerParsing, CountsItsOwnChildrenInEveryLevel) {
    const Bytes elst = atom("elst", hex("00000000 00000000"));
    Read read(atom("trak", atom("edts", elst) + atom("mdia", atom("minf", atom("stbl", {})))));
    EXPECT_EQ(read.result, 0);
    const QTAtom* trak = read.movie->getChildren()[0];
    EXPECT_EQ(typesOf(*trak), "edtsmdia");
    EXPECT_TRUE(dynamic_cast<ELST*>(trak->getAtomOfType(fourCC("edts"))->getChildren()[0]));
    EXPECT_EQ(typesOf(*trak->getAtomOfType(fourCC("mdia"))), "minf");
}

} // namespace
} // namespace test
