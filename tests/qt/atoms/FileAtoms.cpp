// What the rows of the file-level atoms do not say.
#include "support/AtomFile.h"

#include <qt/QTAtoms.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

TEST(FileType, GrowsByABrandInEveryWay) {
    FTYP ftyp;
    EXPECT_EQ(ftyp.getType(), fourCC("ftyp"));
    EXPECT_EQ(ftyp.setMajorBrand(fourCC("qt  ")), 0);
    EXPECT_EQ(ftyp.setMinorVersion(7), 0);
    EXPECT_EQ(ftyp.addCompatibleBrand(fourCC("aaaa")), 0);
    EXPECT_EQ(ftyp.addCompatibleBrand(fourCC("aaaa")), 0); // twice is twice
    EXPECT_EQ(ftyp.getSize(), 24U);
    EXPECT_EQ(ftyp.setCompatibleBrands({1, 2, 3}), 0);
    EXPECT_EQ(ftyp.getSize(), 28U);
    EXPECT_EQ(ftyp.getCompatibleBrands(), (std::vector<unsigned int>{1, 2, 3}));
    EXPECT_EQ(take(ftyp.serialize()), hex("0000001C 'ftyp' 'qt  ' 00000007 00000001 00000002 00000003"));
}

TEST(FileType, CountsItsBrandsTwiceUntilItsSizeIsUpdated) {
    AtomFile file(hex("00000018 'ftyp' 'mp42' 00000001 'isom' 'mp41'"));
    const auto ftyp = file.parse<FTYP>();
    EXPECT_EQ(ftyp->getSize(), 32U);
    EXPECT_EQ(ftyp->updateSize(), 24U);
    EXPECT_EQ(ftyp->getSize(), 24U);
}

TEST(FileType, ReadsWholeBrandsOnly) {
    AtomFile file(hex("00000017 'ftyp' 'mp42' 00000001 'isom' 'mp4'"));
    EXPECT_EQ(file.parse<FTYP>()->getCompatibleBrands(), std::vector<unsigned int>{fourCC("isom")});
    AtomFile brandOnly(hex("0000000C 'ftyp' 'mp42'"));
    const auto ftyp = brandOnly.parse<FTYP>();
    EXPECT_EQ(ftyp->getMajorBrand(), fourCC("mp42"));
    EXPECT_EQ(ftyp->getMinorVersion(), 0U);
    EXPECT_TRUE(ftyp->getCompatibleBrands().empty());
    AtomFile empty(hex("00000008 'ftyp'"));
    int result = 0;
    empty.parse<FTYP>(&result);
    EXPECT_EQ(result, -1);
}

TEST(MediaData, HasALongHeaderFromFourGigabytesOn) {
    struct Case {
        std::uint64_t size;
        const char* bytes;
    };
    for (const Case& c : {Case{8, "00000008 'mdat'"},
                          {0xFFFFFFFE, "FFFFFFFE 'mdat'"},
                          {0xFFFFFFFF, "00000001 'mdat' 00000000FFFFFFFF"},
                          {0x100000000, "00000001 'mdat' 0000000100000000"}}) {
        MDAT mdat;
        EXPECT_EQ(mdat.setSize(c.size), 0);
        EXPECT_EQ(mdat.getSize(), c.size);
        EXPECT_EQ(take(mdat.serialize()), hex(c.bytes));
    }
}

TEST(Padding, IsWrittenInItsFixedForm) {
    EXPECT_EQ(take(FREE().serialize()), hex("00000010 'free' 0000000000000000"));
    EXPECT_EQ(take(SKIP().serialize()), hex("00000010 'skip' 0000000000000000"));
    EXPECT_EQ(take(WIDE().serialize()), hex("00000008 'wide'"));
    EXPECT_EQ(WIDE().getType(), fourCC("skip")); // in memory only
}

TEST(Extension, CopiesItsPayload) {
    unsigned char bytes[] = {1, 2, 3};
    UUIDA uuid(3, bytes);
    bytes[0] = 9;
    EXPECT_EQ(uuid.getSize(), 11U);
    EXPECT_EQ(uuid.updateSize(), 11U);
    EXPECT_EQ(take(uuid.serialize()), hex("0000000B 'uuid' 010203"));
    UUIDA zeros(2, nullptr);
    EXPECT_EQ(take(zeros.serialize()), hex("0000000A 'uuid' 0000"));
    UUIDA empty(0, bytes);
    EXPECT_EQ(take(empty.serialize()), hex("00000008 'uuid'"));
    EXPECT_EQ(UUIDA().serialize(), nullptr);
}

TEST(Preview, IsMadeInMemory) {
    PNOT pnot(1, 2, fourCC("PICT"), 3);
    EXPECT_EQ(pnot.getSize(), 0U);
    EXPECT_EQ(pnot.getType(), 0U);
    EXPECT_EQ(pnot.getModificationDate(), 1U);
    EXPECT_EQ(pnot.getVersionNumber(), 2U);
    EXPECT_EQ(pnot.getAtomType(), fourCC("PICT"));
    EXPECT_EQ(pnot.getIndex(), 3U);
    EXPECT_EQ(pnot.setModificationDate(4), 0);
    EXPECT_EQ(pnot.setVersionNumber(5), 0);
    EXPECT_EQ(pnot.setAtomType(6), 0);
    EXPECT_EQ(pnot.setIndex(7), 0);
    EXPECT_EQ(pnot.getModificationDate() + pnot.getVersionNumber() + pnot.getAtomType() + pnot.getIndex(),
              22U);
    EXPECT_EQ(pnot.serialize(), nullptr);
}

} // namespace
} // namespace test
