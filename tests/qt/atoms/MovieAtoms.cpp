// What the rows of the movie-level atoms do not say.
#include "qt/movie/MovieTree.h"
#include "support/AtomFile.h"
#include "support/MovieBytes.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

TEST(MovieHeader, HasItsDefaults) {
    const unsigned int before = QTAtom::getNewCurrentTime();
    MVHD header;
    EXPECT_EQ(header.getSize(), 108U);
    EXPECT_GE(header.getCreationTime(), before);
    EXPECT_EQ(header.getCreationTime(), header.getModificationTime());
    header.setCreationTime(1);
    header.setModificationTime(2);
    EXPECT_EQ(take(header.serialize()),
              hex({"0000006C 'mvhd' 00000000", "00000001 00000002 00000000 00000000", "00010000 0100",
                   "00000000000000000000", "00010000 00000000 00000000", "00000000 00010000 00000000",
                   "00000000 00000000 40000000", "00000000 00000000 00000000 00000000 00000000 00000000",
                   "00000001"}));
}

TEST(MovieHeader, WritesWhatIsSet) {
    MVHD header;
    EXPECT_EQ(header.setVersion(0x102), 0); // one byte of it
    EXPECT_EQ(header.setFLags(0x123456), 0);
    EXPECT_EQ(header.setCreationTime(1), 0);
    EXPECT_EQ(header.setModificationTime(2), 0);
    EXPECT_EQ(header.setTimeScale(3), 0);
    EXPECT_EQ(header.setDuration(4), 0);
    EXPECT_EQ(header.setPreferredRate(1.5F), 0);
    EXPECT_EQ(header.setPreferredVolume(0.5F), 0);
    EXPECT_EQ(header.setPreviewTime(5), 0);
    EXPECT_EQ(header.setPreviewDuration(6), 0);
    EXPECT_EQ(header.setPosterTime(7), 0);
    EXPECT_EQ(header.setSelectionTime(8), 0);
    EXPECT_EQ(header.setSelectionDuration(9), 0);
    EXPECT_EQ(header.setCurrentTime(10), 0);
    EXPECT_EQ(header.setNextTrackID(11), 0);
    auto* reserved = static_cast<unsigned char*>(std::calloc(10, 1));
    reserved[9] = 0xEE;
    auto* matrix = static_cast<unsigned int*>(std::calloc(9, sizeof(unsigned int)));
    matrix[1] = 2;
    matrix[8] = 3;
    EXPECT_EQ(header.setReserved(reserved), 0);
    EXPECT_EQ(header.setReserved(reserved), 0); // its own again
    EXPECT_EQ(header.setMatrix(matrix), 0);
    EXPECT_EQ(header.setMatrix(header.getMatrix()), 0);
    EXPECT_EQ(header.setReserved(nullptr), -1);
    EXPECT_EQ(header.setMatrix(nullptr), -1);
    EXPECT_EQ(take(header.serialize()),
              hex({"0000006C 'mvhd' 02 020406", "00000001 00000002 00000003 00000004", "00017FFF 007F",
                   "000000000000000000EE", "00000000 00020000 00000000", "00000000 00000000 00000000",
                   "00000000 00000000 C0000000", "00000005 00000006 00000007 00000008 00000009 0000000A",
                   "0000000B"}));
}

TEST(MovieHeader, OfTheLongFormIsReadWithTheSameOffsets) {
    AtomFile file(hex({"00000078 'mvhd' 01000000", "00000000 00000001 00000000 00000002",
                       "00000258 00000000 00000708"}) +
                  repeat(0, 80));
    const auto header = file.parse<MVHD>();
    EXPECT_EQ(header->getVersion(), 1U);
    EXPECT_EQ(header->getCreationTime(), 0U);
    EXPECT_EQ(header->getModificationTime(), 1U);
    EXPECT_EQ(header->getTimeScale(), 0U);
    EXPECT_EQ(header->getDuration(), 2U);
    EXPECT_EQ(header->updateSize(), 120U);
    const Bytes bytes = take(header->serialize());
    ASSERT_EQ(bytes.size(), 120U); // its 108 bytes and zeros
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 8), hex("00000078 'mvhd'"));
    EXPECT_EQ(Bytes(bytes.end() - 12, bytes.end()), repeat(0, 12));
}

TEST(UserData, HoldsEntries) {
    UDTA udta;
    unsigned char bytes[] = {1, 2};
    EXPECT_EQ(udta.addDataAtom(nullptr), -1);
    auto* first = new QTDataAtom(10, fourCC("aaaa"), bytes);
    EXPECT_EQ(udta.addDataAtom(first), 0);
    EXPECT_EQ(udta.addDataAtom(new QTDataAtom(9, fourCC("aaaa"), bytes)), 0);
    EXPECT_EQ(udta.getSize(), 27U);
    EXPECT_EQ(udta.getDataAtom(fourCC("aaaa")), first);
    EXPECT_EQ(udta.getDataAtom(fourCC("bbbb")), nullptr);
    EXPECT_EQ(udta.updateSize(), 27U);
    EXPECT_EQ(take(udta.serialize()), hex("0000001B 'udta' 0000000A 'aaaa' 0102 00000009 'aaaa' 01"));
}

/// User data with the content, and "tail" behind it.
struct Read {
    explicit Read(const Bytes& content) : file(atom("udta", content) + hex("00000008 'tail'")) {
        udta = file.parse<UDTA>(&result);
    }
    std::string entries() const {
        std::string types;
        for (const QTDataAtom* entry : udta->getDataAtoms()) {
            types += code(entry->getType()) + std::to_string(entry->getSize()) + ' ';
        }
        return types;
    }
    AtomFile file;
    int result = 99;
    std::unique_ptr<UDTA> udta;
};

TEST(UserData, IsReadEntryByEntry) {
    const Read read(atom("aaaa", hex("0102")) + atom("chap", hex("00000005")) + atom("bbbb", {}) +
                    atom("hinf", atom("npck", hex("00000001"))) + atom("hnti", {}) +
                    atom("tsel", repeat(0, 8)));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.entries(), "aaaa10 bbbb8 ");
    EXPECT_EQ(dataOf(read.udta->getDataAtom(fourCC("aaaa"))), hex("0102"));
    EXPECT_EQ(childTypes(read.udta.get()), "chaphinfhntitsel");
    EXPECT_EQ(childOf<CHAP>(read.udta.get(), fourCC("chap"))->getTrackID(), 5U);
    EXPECT_TRUE(childOf<HINF>(read.udta.get(), fourCC("hinf")));
    EXPECT_TRUE(childOf<HNTI>(read.udta.get(), fourCC("hnti")));
    EXPECT_TRUE(childOf<TSEL>(read.udta.get(), fourCC("tsel")));
}

TEST(UserData, MayEndInZeros) {
    for (std::size_t zeros = 0; zeros < 8; ++zeros) {
        Read read(atom("aaaa", hex("0102")) + repeat(0, zeros));
        EXPECT_EQ(read.result, 0);
        EXPECT_EQ(read.entries(), "aaaa10 ");
        EXPECT_EQ(read.file.position(), static_cast<std::int64_t>(18 + zeros));
    }
    Read longer(atom("aaaa", hex("0102")) + repeat(0, 12));
    EXPECT_EQ(longer.entries(), "aaaa10 ");
    EXPECT_EQ(longer.file.position(), 22); // behind the terminator of four bytes
}

TEST(UserData, EndsAtAnEntryThatStatesLessThanItself) {
    for (const char* bad : {"00000001 'aaaa' 0000000000000008", "00000002 'aaaa'", "00000007 'aaaa'"}) {
        Read read(hex(bad) + atom("bbbb", {}));
        EXPECT_EQ(read.result, 0);
        EXPECT_EQ(read.entries(), "") << bad;
        EXPECT_EQ(read.file.header()->getType(), fourCC("tail")) << bad;
    }
}

TEST(UserData, KeepsTheBytesOfALargeEntry) {
    Read read(hex("00000001 'aaaa' 0000000000000013 010203") + atom("bbbb", {}));
    EXPECT_EQ(read.entries(), "aaaa11 bbbb8 "); // with a plain header it is eight bytes shorter
    EXPECT_EQ(dataOf(read.udta->getDataAtom(fourCC("aaaa"))), hex("010203"));
}

TEST(UserData, CannotBeLongerThanTheFile) {
    const Read read(hex("7FFFFFFF 'aaaa' 01"));
    EXPECT_EQ(read.result, 0);
    EXPECT_LE(read.udta->getDataAtom(fourCC("aaaa"))->getSize(), 33U);
}

TEST(UserData, ChildThatCannotBeReadIsKept) {
    const Read read(atom("nsav", {}) + atom("aaaa", {}));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(childTypes(read.udta.get()), "nsav");
    EXPECT_EQ(read.entries(), "aaaa8 ");
}

TEST(UserData, OfAChapterTrackSurvivesItsExtraByte) {
    const Bytes chapter = hex("0000000D 'chap' 00000005 00");
    Read read(chapter);
    EXPECT_EQ(take(read.udta->serialize()), hex("00000015 'udta'") + chapter);
}

TEST(UserData, CopyListsTheSameEntries) {
    auto original = std::make_unique<UDTA>();
    original->addDataAtom(new QTDataAtom(8, fourCC("aaaa"), nullptr));
    UDTA copy(*original);
    UDTA assigned;
    assigned.addDataAtom(new QTDataAtom(8, fourCC("zzzz"), nullptr));
    assigned = copy;
    EXPECT_EQ(assigned.getDataAtoms(), original->getDataAtoms());
    copy.addDataAtom(new QTDataAtom(8, fourCC("bbbb"), nullptr));
    EXPECT_EQ(original->getDataAtoms().size(), 1U);
    original.reset();
}

TEST(TrackAtom, IsWrittenOnlyWithSamples) {
    TrackSpec spec;
    spec.stts = {{1, 10}};
    spec.sizes = {4};
    spec.chunks = {1};
    const Bytes moov = moovBytes({spec}, 600, 0);
    AtomFile file(moov);
    const auto movie = file.parse<MOOV>();
    QTAtom* trak = movie->getAtomOfType(fourCC("trak"));
    ASSERT_TRUE(trak);
    // The raw body of a sample description (70 bytes) is not written, one size becomes the constant form.
    const std::uint64_t read = trak->getSize();
    EXPECT_EQ(trak->updateSize(), read - 70 - 4);
    std::unique_ptr<QTFrame> frame(trak->serialize());
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->getDataLength(), trak->getSize());

    QTAtom* stbl =
        trak->getAtomOfType(fourCC("mdia"))->getAtomOfType(fourCC("minf"))->getAtomOfType(fourCC("stbl"));
    auto* times = childOf<STTS>(stbl, fourCC("stts"));
    ASSERT_TRUE(times);
    times->setTimeToSampleTable({});
    times->setNumberOfEntries(0);
    EXPECT_EQ(trak->updateSize(), 0U);
    EXPECT_EQ(trak->getSize(), 0U);
    EXPECT_EQ(trak->serialize(), nullptr);
    EXPECT_EQ(movie->updateSize(), 116U); // the header alone
}

TEST(TrackAtom, WithoutALevelHasNoSamples) {
    for (const Bytes& content : {Bytes(), atom("mdia", {}), atom("mdia", atom("minf", {})),
                                 atom("mdia", atom("minf", atom("stbl", {})))}) {
        AtomFile file(atom("trak", content));
        const auto trak = file.parse<TRAK>();
        EXPECT_EQ(trak->updateSize(), 0U);
        EXPECT_EQ(trak->serialize(), nullptr);
    }
}

} // namespace
} // namespace test
