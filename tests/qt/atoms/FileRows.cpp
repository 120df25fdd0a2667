#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms.h>

namespace test {
namespace {

using namespace Ketra::QT;

const RowList kRows({
    row<FTYP>(
        {.name = "FTYP",
         .file = hex({"00000018 'ftyp'",
                      "'mp42' 00000001", // major brand, minor version
                      "'isom' 'mp41'"}), // compatible brands
         .blankSize = 16},
        [](FTYP& a) {
            EXPECT_EQ(a.getMajorBrand(), fourCC("mp42"));
            EXPECT_EQ(a.getMinorVersion(), 1U);
            EXPECT_EQ(a.getCompatibleBrands(), (std::vector<unsigned int>{fourCC("isom"), fourCC("mp41")}));
            EXPECT_EQ(a.getCompatibleBrand(1), fourCC("mp41"));
            EXPECT_EQ(a.getCompatibleBrand(2), 0U);
            EXPECT_TRUE(a.getSize() == 32 || a.getSize() == 24 || a.getHeaderSize() == 16);
        }),
    row<MDAT>({.name = "MDAT",
               .file = hex("00000010 'mdat' 0102030405060708"),
               .written = hex("00000010 'mdat'"), // the header alone
               .blankSize = 8},
              [](MDAT& a) { EXPECT_GE(a.getSize(), 16U); }),
    row<FREE>({.name = "FREE",
               .file = hex("00000018 'free' 0102030405060708 0102030405060708"),
               .written = hex("00000010 'free' 0000000000000000"),
               .blankSize = 16},
              [](FREE& a) { EXPECT_EQ(a.getType(), fourCC("free")); }),
    row<SKIP>({.name = "SKIP",
               .file = hex("00000010 'skip' 0102030405060708"),
               .written = hex("00000010 'skip' 0000000000000000"),
               .blankSize = 16},
              [](SKIP& a) { EXPECT_EQ(a.getType(), fourCC("skip")); }),
    row<WIDE>({.name = "WIDE", .file = hex("00000008 'wide'"), .blankSize = 8},
              [](WIDE& a) { EXPECT_EQ(a.getType(), fourCC("wide")); }),
    row<UUIDA>({.name = "UUIDA",
                .file = hex("0000001A 'uuid' 000102030405060708090A0B0C0D0E0F AABB"),
                .writesNothing = true, // what was skipped cannot be written
                .blankSize = 8},
               [](UUIDA& a) { EXPECT_EQ(a.getType(), fourCC("uuid")); }),
    row<PNOT>({.name = "PNOT",
               .file = hex({"00000014 'pnot'",
                            "B5D6C8A1",      // modification date
                            "0002",          // version number
                            "'PICT' 0001"}), // atom type, index
               .writesNothing = true,
               .blankSize = 0},
              [](PNOT& a) {
                  EXPECT_EQ(a.getModificationDate(), 0xB5D6C8A1U);
                  EXPECT_EQ(a.getVersionNumber(), 2U);
                  EXPECT_EQ(a.getAtomType(), fourCC("PICT"));
                  EXPECT_EQ(a.getIndex(), 1U);
              }),
});

} // namespace
} // namespace test
