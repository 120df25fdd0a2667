// The file level: reading it, looking for a lost header, writing the header part.
#include "qt/movie/MovieTree.h"
#include "support/AtomFile.h"

#include <base/CException.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

Bytes movie() { return atom("moov", atom("mvhd", repeat(0, 100))); }

/// A root over the file, as a movie makes it.
struct Read {
    explicit Read(const Bytes& bytes)
        : file(bytes), root(new QTAtom(bytes.size(), fourCC("root"), 0, 8, &file.utils(), true)) {
        result = root.parse();
    }
    QTAtom* child(std::size_t i) const { return root.getChildren().at(i); }

    AtomFile file;
    ROOT root;
    int result;
};

template <class Atom>
bool is(const QTAtom* atom) {
    return typeid(*atom) == typeid(Atom);
}

TEST(FileLevel, KnowsItsAtoms) {
    const Read read(
        join({hex("00000010 'ftyp' 'qt  ' 00000000"), movie(), atom("mdat", repeat(1, 5)), atom("free", {}),
              atom("skip", repeat(0, 3)), atom("wide", {}), atom("uuid", repeat(0, 16)),
              atom("pnot", repeat(0, 12)), atom("udta", atom("name", {})), atom("abcd", repeat(0, 9)),
              atom("mvhd", repeat(0, 100))}));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(childTypes(&read.root), "ftypmoovmdatfreeskipwideuuidpnotudtaabcdmvhd");
    EXPECT_TRUE(is<FTYP>(read.child(0)));
    EXPECT_TRUE(is<MOOV>(read.child(1)));
    EXPECT_TRUE(is<MDAT>(read.child(2)));
    EXPECT_TRUE(is<FREE>(read.child(3)));
    EXPECT_TRUE(is<SKIP>(read.child(4)));
    EXPECT_TRUE(is<WIDE>(read.child(5)));
    EXPECT_TRUE(is<UUIDA>(read.child(6)));
    EXPECT_TRUE(is<PNOT>(read.child(7)));
    EXPECT_TRUE(is<UDTA>(read.child(8)));
    EXPECT_TRUE(is<QTAtom>(read.child(9)));
    EXPECT_TRUE(is<QTAtom>(read.child(10))); // a movie header belongs into the movie
    EXPECT_EQ(read.child(1)->getOffset(), 16U);
    EXPECT_TRUE(read.child(1)->isContainer());
}

TEST(FileLevel, OnlyTheFirstMovieCounts) {
    Read read(movie() + atom("moov", repeat(0xFF, 30)));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(childTypes(&read.root), "moovfree");
    EXPECT_TRUE(is<MOOV>(read.child(0)));
    EXPECT_TRUE(is<FREE>(read.child(1)));
    EXPECT_EQ(read.child(1)->getSize(), 38U);
    // What is written is the movie, not its placeholder.
    EXPECT_EQ(take(read.root.serialize()).size(), movie().size() + 24);
}

TEST(FileLevel, MediaDataWithoutASizeIsTheLast) {
    const Read read(movie() + hex("00000000 'mdat'") + repeat(7, 20));
    EXPECT_EQ(read.result, 0);
    ASSERT_EQ(childTypes(&read.root), "moovmdat");
    EXPECT_EQ(read.child(1)->getSize(), 36U); // eight more than there are
}

TEST(FileLevel, EndsAtAHeaderThatStatesNothing) {
    const Bytes lost = hex("6C000000 'voom'") + repeat(0, 100); // would be found, were it looked for
    for (const char* bad : {"00000000 00000000", "00000000 00 'abc'", "00000002 'abcd'", "00000007 'abcd'",
                            "00000001 'abcd' 000000000000000F"}) {
        const Read read(atom("free", {}) + hex(bad) + lost);
        EXPECT_EQ(read.result, 0) << bad;
        EXPECT_EQ(childTypes(&read.root), "free") << bad;
    }
}

TEST(FileLevel, EndsWhereTheFileEnds) {
    const Read read(movie() + hex("000000"));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(childTypes(&read.root), "moov");
    const Read empty({});
    EXPECT_EQ(empty.result, 0);
    EXPECT_TRUE(empty.root.getChildren().empty());
}

TEST(FileLevel, ChildThatCannotBeReadEndsTheRead) {
    const Read read(atom("free", {}) + atom("pnot", {}) + movie());
    EXPECT_EQ(read.result, -1);
    EXPECT_EQ(childTypes(&read.root), "free");
}

TEST(FileLevel, SkipsLargeAtoms) {
    const Read read(hex("00000001 'mdat' 0000000000000014 01020304") + movie());
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(childTypes(&read.root), "mdatmoov");
    EXPECT_EQ(read.child(0)->getHeaderSize(), 16);
}

/// A movie header of 116 bytes whose own header stands least significant byte first.
Bytes reversedMovie() { return hex("74000000 'voom'") + atom("mvhd", repeat(0, 100)); }

TEST(LostHeader, IsFoundInASmallFile) {
    const Read read(atom("mdat", repeat(1, 50) + reversedMovie() + repeat(2, 30)));
    EXPECT_EQ(read.result, 0);
    ASSERT_EQ(childTypes(&read.root), "mdatmoov");
    const QTAtom* found = read.child(1);
    EXPECT_TRUE(is<MOOV>(found));
    EXPECT_EQ(found->getOffset(), 58U);
    EXPECT_EQ(found->getSize(), 116U);
    EXPECT_EQ(found->getHeaderSize(), 8);
    EXPECT_EQ(childTypes(found), "mvhd");
}

TEST(LostHeader, MustStandInTheOtherByteOrder) {
    const Read read(atom("mdat", repeat(1, 50) + movie()));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(childTypes(&read.root), "mdat");
}

TEST(LostHeader, IsLookedForInTheLastHundredThousandBytes) {
    const Bytes lost = reversedMovie();
    // At the very first byte of what is searched, and one byte in front of it.
    const Read found(atom("mdat", repeat(1, 50000) + lost + repeat(2, 100000 - lost.size())));
    EXPECT_EQ(childTypes(&found.root), "mdatmoov");
    EXPECT_EQ(found.child(1)->getOffset(), 50008U);
    const Read missed(atom("mdat", repeat(1, 50000) + lost + repeat(2, 100001 - lost.size())));
    EXPECT_EQ(childTypes(&missed.root), "mdat");
    // Its eight bytes may be the last ones.
    const Read last(atom("mdat", repeat(1, 120000) + hex("08000000 'voom'")));
    EXPECT_EQ(childTypes(&last.root), "mdatmoov");
    EXPECT_EQ(last.child(1)->getOffset(), 120008U);
    EXPECT_EQ(last.child(1)->getSize(), 8U);
}

TEST(LostHeader, TheFirstOneCounts) {
    const Read read(atom("mdat", reversedMovie() + hex("08000000 'voom'")));
    ASSERT_EQ(childTypes(&read.root), "mdatmoov");
    EXPECT_EQ(read.child(1)->getSize(), 116U);
}

TEST(LostHeader, MayBeBroken) {
    const Read read(atom("mdat", hex("FFFFFFFF 'voom' 00000008 'mvhd'"))); // its child cannot be read
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(childTypes(&read.root), "mdatmoov");
    EXPECT_EQ(childTypes(read.child(1)), "");
}

TEST(LostHeader, IsNotLookedForWhenThereIsOne) {
    const Read read(movie() + atom("mdat", reversedMovie()));
    EXPECT_EQ(childTypes(&read.root), "moovmdat");
}

// --- writing

std::unique_ptr<UUIDA> extension(unsigned int payload, unsigned char fill) {
    Bytes bytes = repeat(fill, payload);
    return std::make_unique<UUIDA>(payload, bytes.data());
}

TEST(HeaderPart, IsTypeMovieAndPadding) {
    ROOT root;
    auto ftyp = std::make_unique<FTYP>();
    ftyp->setCompatibleBrands({fourCC("qt  "), fourCC("mp42")});
    auto moov = std::make_unique<MOOV>();
    moov->addChild(extension(984, 0xAB).release());
    ASSERT_EQ(moov->getSize(), 1000U);
    root.addChild(ftyp.release());
    root.addChild(moov.release());
    const Bytes bytes = take(root.serialize());
    ASSERT_EQ(bytes.size(), 1048U);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 8), hex("00000018 'ftyp'"));
    EXPECT_EQ(Bytes(bytes.begin() + 24, bytes.begin() + 32), hex("000003E8 'moov'"));
    EXPECT_EQ(Bytes(bytes.begin() + 1024, bytes.end()),
              hex("00000010 'free' 0000000000000000 00000008 'wide'"));
}

TEST(HeaderPart, LeavesOutEverythingElse) {
    ROOT root;
    root.addChild(new MOOV);
    root.addChild(new MDAT);
    root.addChild(new PNOT(1, 2, 3, 4));
    root.addChild(new SKIP);
    root.addChild(new FREE);
    root.addChild(new WIDE);
    root.addChild(new QTAtom(8U, fourCC("abcd")));
    root.addChild(extension(1, 0x55).release());
    EXPECT_EQ(take(root.serialize()), hex({"00000009 'uuid' 55", "00000008 'moov'",
                                           "00000010 'free' 0000000000000000", "00000008 'wide'"}));
}

TEST(HeaderPart, HoldsTheLastOfEachAndPadsTheRest) {
    ROOT root;
    root.addChild(extension(4, 0x11).release());
    root.addChild(new FTYP);
    root.addChild(new FTYP);
    root.addChild(extension(1, 0x22).release());
    root.addChild(new MOOV);
    // 12 + 16 + 16 + 9 + 8 counted; the first extension and the first type leave 28 bytes.
    EXPECT_EQ(take(root.serialize()),
              hex({"00000010 'ftyp' 00000000 00000000", "00000009 'uuid' 22", "00000008 'moov'",
                   "00000010 'free' 0000000000000000", "00000008 'wide'", "0000001C 'free'"}) +
                  repeat(0, 20));
}

TEST(HeaderPart, GrowsWhenItsSizesAreOld) {
    ROOT root;
    auto* moov = new MOOV;
    root.addChild(moov);
    moov->addChild(extension(2, 0x11).release());
    EXPECT_EQ(take(root.serialize()), hex({"00000012 'moov' 0000000A 'uuid' 1111",
                                           "00000010 'free' 0000000000000000", "00000008 'wide'"}));
}

TEST(HeaderPart, PadsAnExtensionThatWasSkipped) {
    Read read(atom("uuid", repeat(9, 16)) + atom("moov", {}));
    EXPECT_EQ(take(read.root.serialize()), hex({"00000008 'moov'", "00000010 'free' 0000000000000000",
                                                "00000008 'wide'", "00000018 'free'"}) +
                                               repeat(0, 16));
}

TEST(HeaderPart, NeedsAMovie) {
    ROOT root;
    root.addChild(new FTYP);
    root.addChild(new QTAtom(8U, fourCC("moov"))); // the code alone is not enough
    try {
        root.serialize();
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(), "Can't serialize moovie, no MOOV-atom.");
        EXPECT_EQ(e.getFunction(), "Ketra::QT::ROOT::serialize");
        EXPECT_EQ(e.getFile(), "lib/qt/QTAtoms");
    }
}

TEST(FileType, IsWrittenUnderItsOwnCode) {
    FTYP brand(new QTAtom(16U, 0U));
    EXPECT_EQ(take(brand.serialize()), hex("00000010 'ftyp' 00000000 00000000"));
}

TEST(Root, IsAnEmptyContainerAtFirst) {
    ROOT root;
    EXPECT_EQ(root.getSize(), 0U);
    EXPECT_EQ(root.getType(), fourCC("root"));
    EXPECT_TRUE(root.isContainer());
    EXPECT_EQ(root.getHeaderSize(), 0);
    root.addChild(new MOOV);
    EXPECT_EQ(root.updateSize(), 16U);
    ROOT copy(root);
    EXPECT_EQ(copy.getChildren(), root.getChildren());
}

} // namespace
} // namespace test
