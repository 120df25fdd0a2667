#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms.h>

namespace test {
namespace {

using namespace Ketra::QT;

template <class Aperture>
AtomRow aperture(const char* name, const char* code) {
    Bytes file = hex({"00000014"}) + hex(code) +
                 hex({"00 010203",  // version, flags
                      "02808000",   // 640.5
                      "01E0FFFF"}); // 480.99...
    Bytes written = hex({"00000014"}) + hex(code) +
                    hex({"00 030201", // flags come out reversed
                         "02800000", "01E00000"});
    return row<Aperture>({.name = name, .file = file, .written = written, .blankSize = 20}, [](Aperture& a) {
        EXPECT_EQ(a.getVersion(), 0U);
        EXPECT_EQ(a.getFlags(), 0x030201U);
        EXPECT_EQ(a.getWidth(), 640U);
        EXPECT_EQ(a.getHeight(), 480U);
    });
}

const RowList kRows({
    aperture<CLEF>("CLEF", "'clef'"),
    aperture<PROF>("PROF", "'prof'"),
    aperture<ENOF>("ENOF", "'enof'"),
    row<TAPT>({.name = "TAPT",
               .file = hex({"00000050 'tapt'",                            // size, type
                            "00000014 'clef' 00000000 02C00000 02400000", // 704 x 576
                            "00000014 'prof' 00000000 03000000 02400000", // 768 x 576
                            "00000014 'enof' 00000000 02D00000 02400000", // 720 x 576
                            "0000000C 'keep' 12345678"}),
               .blankSize = 8},
              [](TAPT& a) {
                  ASSERT_EQ(a.getChildren().size(), 4U);
                  EXPECT_EQ(dynamic_cast<CLEF&>(*a.getAtomOfType(fourCC("clef"))).getWidth(), 704U);
                  EXPECT_EQ(dynamic_cast<PROF&>(*a.getAtomOfType(fourCC("prof"))).getWidth(), 768U);
                  EXPECT_EQ(dynamic_cast<ENOF&>(*a.getAtomOfType(fourCC("enof"))).getWidth(), 720U);
                  EXPECT_TRUE(a.isContainer());
              }),
    row<CLIP>({.name = "CLIP",
               .file = hex({"0000001A 'clip'",
                            "00000012 'crgn' 000A 0000 0000 00F0 0140"}), // a rectangle of 320 x 240
               .blankSize = 8},
              [](CLIP& a) {
                  ASSERT_EQ(a.getChildren().size(), 1U);
                  const auto& region = dynamic_cast<CRGN&>(*a.getChildren()[0]);
                  EXPECT_EQ(region.getRegionSize(), 10U);
                  EXPECT_EQ(region.getClippingRegionData(), nullptr);
              }),
    row<CRGN>({.name = "CRGN",
               .file = hex({"00000016 'crgn'",
                            "000E",                // region size
                            "0001 0002 0003 0004", // top, left, bottom, right
                            "0A0B0C0D"}),          // region data
               .blankSize = 18},
              [](CRGN& a) {
                  EXPECT_EQ(a.getRegionSize(), 14U);
                  EXPECT_EQ(a.getRegionBoundaryBox(), 0x0001000200030004U);
                  ASSERT_EQ(a.getClippingRegionDataSize(), 4U);
                  EXPECT_EQ(a.getClippingRegionData()[3], 0x0D);
              }),
    row<MATT>({.name = "MATT",
               .file = hex({"00000018 'matt'", "00000010 'kmat' 00 000000 01020304"}),
               .blankSize = 8},
              [](MATT& a) {
                  ASSERT_EQ(a.getChildren().size(), 1U);
                  EXPECT_EQ(dynamic_cast<KMAT&>(*a.getChildren()[0]).getMatteDataSize(), 4U);
              }),
    row<KMAT>({.name = "KMAT",
               .file = hex({"0000000F 'kmat'",
                            "01 000100", // version, flags
                            "AABBCC"}),  // matte data
               .blankSize = 12},
              [](KMAT& a) {
                  EXPECT_EQ(a.getVersion(), 1U);
                  EXPECT_EQ(a.getFlags(), 0x000100U);
                  ASSERT_EQ(a.getMatteDataSize(), 3U);
                  EXPECT_EQ(a.getMatteData()[0], 0xAA);
              }),
    row<CTAB>({.name = "CTAB",
               .file = hex({"00000020 'ctab'",
                            "00000007",              // seed
                            "8000",                  // flags
                            "0001",                  // two colours
                            "0000 FFFF 0000 0000",   // red
                            "0001 0000 0000 FFFF"}), // blue
               .blankSize = 16},
              [](CTAB& a) {
                  EXPECT_EQ(a.getSeed(), 7U);
                  EXPECT_EQ(a.getFlags(), 0x8000U);
                  EXPECT_EQ(a.getTableSize(), 1U);
                  EXPECT_EQ(a.getColorTableDataSize(), 16U);
                  EXPECT_EQ(a.getColorTableData()[2], 0xFF);
              }),
    row<LOAD>({.name = "LOAD",
               .file = hex({"00000018 'load'",
                            "00000001",   // start time
                            "FFFFFFFF",   // duration: all of it
                            "00000002",   // flags
                            "00000104"}), // hints
               .blankSize = 24},
              [](LOAD& a) {
                  EXPECT_EQ(a.getPreloadStartTime(), 1U);
                  EXPECT_EQ(a.getPreloadDuration(), 0xFFFFFFFFU);
                  EXPECT_EQ(a.getPreloadFlags(), 2U);
                  EXPECT_EQ(a.getDefaultHints(), 0x104U);
              }),
    row<IMAP>({.name = "IMAP",
               .file = hex({"00000044 'imap'",
                            "00000020 '  in' 00000001 0000 0001 00000000", // one child
                            "0000000C '  ty' 00000001",
                            "0000001C 0000'in' 00000002 0000 0000 00000000", // with zeros: another type
                            "FFFFFFFF 00000000"}),
               .blankSize = 8},
              [](IMAP& a) {
                  ASSERT_EQ(a.getChildren().size(), 2U);
                  EXPECT_EQ(dynamic_cast<__IN&>(*a.getChildren()[0]).getAtomID(), 1U);
                  EXPECT_EQ(dynamic_cast<__IN*>(a.getChildren()[1]), nullptr);
              }),
    row<__IN>({.name = "__IN",
               .file = hex({"00000039 '  in'",
                            "00000005",                 // atom ID
                            "0006",                     // reserved
                            "0003",                     // child count
                            "00000007",                 // reserved
                            "0000000C '  ty' 00000002", //
                            "0000000C 'obid' 00000009", //
                            "0000000D 'what' 0102030405"}),
               .blankSize = 20},
              [](__IN& a) {
                  EXPECT_EQ(a.getAtomID(), 5U);
                  EXPECT_EQ(a.getReserved(), 6U);
                  EXPECT_EQ(a.getChildCount(), 3U);
                  EXPECT_EQ(a.getReserved2(), 7U);
                  ASSERT_EQ(a.getChildren().size(), 3U);
                  EXPECT_EQ(dynamic_cast<__TY&>(*a.getChildren()[0]).getInputType(), 2U);
                  EXPECT_EQ(dynamic_cast<OBID&>(*a.getChildren()[1]).getObjectID(), 9U);
                  EXPECT_EQ(a.getChildren()[2]->getType(), fourCC("what"));
              }),
    row<__TY>({.name = "__TY", .file = hex("0000000C '  ty' 00000003"), .blankSize = 12},
              [](__TY& a) { EXPECT_EQ(a.getInputType(), 3U); }),
    row<OBID>({.name = "OBID", .file = hex("0000000C 'obid' 00000004"), .blankSize = 12},
              [](OBID& a) { EXPECT_EQ(a.getObjectID(), 4U); }),
    row<GAMA>({.name = "GAMA", .file = hex("0000000C 'gama' 00023333"), .blankSize = 12}, // 2.2
              [](GAMA& a) { EXPECT_EQ(a.getGamma(), 512.0F); }),
    row<TCMI>({.name = "TCMI",
               .file = hex({"00000049 'gmhd'", "00000018 'gmin' 00 000000 0040 8000 8000 8000 0000 0000",
                            "00000029 'tmcd' 00000021 'tcmi' 00 000000",
                            "0001",                                                       // text font
                            "0002",                                                       // text face
                            "000E",                                                       // text size
                            "0000",                                                       //
                            "1111 2222 3333",                                             // text colour
                            "4444 5555 6666",                                             // background colour
                            "00"}),                                                       // font name
               .written = hex({"00000018 'gmin' 00 000000 0040 8000 8000 8000 0000 0000", // no header
                               "00000029 'tmcd' 00000021 'tcmi' 00 000000", "0001 0002 000E 0000",
                               "1111 2222 3333", "4444 5555 6666", "00"}),
               .sizeAfterUpdate = 65,
               .blankSize = 65},
              [](TCMI& a) {
                  EXPECT_EQ(a.getTextFont(), 1U);
                  EXPECT_EQ(a.getTextFace(), 2U);
                  EXPECT_EQ(a.getTextSize(), 14U);
                  unsigned short r = 0;
                  unsigned short g = 0;
                  unsigned short b = 0;
                  EXPECT_EQ(a.getTextColor(r, g, b), 0);
                  EXPECT_EQ(r, 0x1111);
                  EXPECT_EQ(g, 0x2222);
                  EXPECT_EQ(b, 0x3333);
                  EXPECT_EQ(a.getBackgroundColor(r, g, b), 0);
                  EXPECT_EQ(r, 0x4444);
                  EXPECT_EQ(g, 0x5555);
                  EXPECT_EQ(b, 0x6666);
                  EXPECT_EQ(a.getType(), fourCC("tcmi"));
              }),
    row<TEXTA>({.name = "TEXTA",
                .file = hex({"0000002C 'text'", // a true identity matrix
                             "00010000 00000000 00000000", "00000000 00010000 00000000",
                             "00000000 00000000 40000000"}),
                .written = hex({"0000002C 'text'", "00000100 00000000 00000000", // ones at 10 and 26
                                "00000000 00000100 00000000", "00000000 00000000 40000000"}),
                .blankSize = 44},
               [](TEXTA& a) { EXPECT_EQ(a.getType(), fourCC("text")); }),
});

} // namespace
} // namespace test
