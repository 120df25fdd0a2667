#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms.h>

namespace test {
namespace {

using namespace Ketra::QT;

const RowList kRows({
    row<MDIA>({.name = "MDIA",
               .file = hex({"0000004D 'mdia'",
                            "0000001C 'mdhd' 00 000000 00000000 00000000 00000001 00000002",
                            "00000021 'hdlr' 00 000000 00000000 'text' 00000000 00000000 00000000 00",
                            "00000008 'minf'"}),
               .written = hex({"00000051 'mdia'",
                               // without its language and quality the header was four bytes short
                               "00000020 'mdhd' 00 000000 00000000 00000000 00000001 00000002 0000 0000",
                               "00000021 'hdlr' 00 000000 00000000 'text' 00000000 00000000 00000000 00",
                               "00000008 'minf'"}),
               .sizeAfterUpdate = 81,
               .blankSize = 8},
              [](MDIA& a) {
                  ASSERT_EQ(a.getChildren().size(), 3U);
                  EXPECT_EQ(dynamic_cast<MDHD&>(*a.getAtomOfType(fourCC("mdhd"))).getDuration(), 2U);
                  EXPECT_EQ(dynamic_cast<HDLR&>(*a.getAtomOfType(fourCC("hdlr"))).getComponentSubType(),
                            fourCC("text"));
                  EXPECT_TRUE(dynamic_cast<MINF*>(a.getAtomOfType(fourCC("minf"))));
                  EXPECT_TRUE(a.isContainer());
              }),
    row<MDHD>({.name = "MDHD",
               .file = hex({"00000020 'mdhd'",
                            "00 000000",         // version, flags
                            "C0000001 C0000002", // created, modified
                            "00015F90",          // time scale 90000
                            "FFFFFFFE",          // duration
                            "15C7 0003"}),       // language, quality
               .blankSize = 32},
              [](MDHD& a) {
                  EXPECT_EQ(a.getVersion(), 0U);
                  EXPECT_EQ(a.getFlags(), 0U);
                  EXPECT_EQ(a.getCreationTime(), 0xC0000001U);
                  EXPECT_EQ(a.getModificationTime(), 0xC0000002U);
                  EXPECT_EQ(a.getTimeScale(), 90000U);
                  EXPECT_EQ(a.getDuration(), 0xFFFFFFFEU);
                  EXPECT_EQ(a.getLanguage(), 0x15C7);
                  EXPECT_EQ(a.getQuality(), 3);
              }),
    row<MDHD>({.name = "MDHD64",
               .file = hex({"0000002C 'mdhd'",
                            "01 000000",         // version, flags
                            "00000001 00000002", // created
                            "00000003 00000004", // modified
                            "0000AC44",          // time scale 44100
                            "00000005 00000006", // duration
                            "55C4 0007"}),       // language, quality
               .blankSize = 32},
              [](MDHD& a) {
                  EXPECT_EQ(a.getVersion(), 1U);
                  EXPECT_EQ(a.getCreationTime(), 0x100000002U);
                  EXPECT_EQ(a.getModificationTime(), 0x300000004U);
                  EXPECT_EQ(a.getTimeScale(), 44100U);
                  EXPECT_EQ(a.getDuration(), 0x500000006U);
                  EXPECT_EQ(a.getLanguage(), 0x55C4);
                  EXPECT_EQ(a.getQuality(), 7);
              }),
    row<HDLR>({.name = "HDLR",
               .file = hex({"00000026 'hdlr'",
                            "00 010000",     // version, flags
                            "'mhlr' 'soun'", // component type and subtype
                            "'appl'",        // manufacturer
                            "00000004",      // component flags
                            "00000005",      // component flags mask
                            "05 'Sound'"}),  // name, its length byte a part of it
               .written = hex({"00000026 'hdlr'",
                               "00 000001", // flags come out reversed
                               "'mhlr' 'soun' 'appl' 00000004 00000005 05 'Sound'"}),
               .blankSize = 33},
              [](HDLR& a) {
                  EXPECT_EQ(a.getVersion(), 0U);
                  EXPECT_EQ(a.getFlags(), 1U);
                  EXPECT_EQ(a.getComponentType(), fourCC("mhlr"));
                  EXPECT_EQ(a.getComponentSubType(), fourCC("soun"));
                  EXPECT_EQ(a.getComponentManufacturer(), fourCC("appl"));
                  EXPECT_EQ(a.getComponentFlags(), 4U);
                  EXPECT_EQ(a.getComponentFlagsMask(), 5U);
                  ASSERT_EQ(a.getComponentNameSize(), 6U);
                  EXPECT_EQ(Bytes(a.getComponentName(), a.getComponentName() + 6), hex("05 'Sound'"));
                  EXPECT_FALSE(a.getIsPascalString());
              }),
    row<MINF>({.name = "MINF",
               .file = hex({"00000040 'minf'", "0000000C 'nmhd' 00 000000", "00000008 'dinf'",
                            "00000008 'stbl'", "00000010 'gmhd' 00000008 'abcd'",
                            "0000000C 'abcd' 01020304"}),
               .written = hex({"00000040 'minf'", "0000000C 'nmhd' 00 000000", "00000008 'dinf'",
                               "00000008 'stbl'", "00000010 'gmhd' 00000008 'free'",
                               "0000000C 'free' 00000000"}), // the places of the unknown atoms
               .blankSize = 8},
              [](MINF& a) {
                  ASSERT_EQ(a.getChildren().size(), 5U);
                  EXPECT_TRUE(dynamic_cast<NMHD*>(a.getChildren()[0]));
                  EXPECT_TRUE(dynamic_cast<DINF*>(a.getChildren()[1]));
                  EXPECT_TRUE(dynamic_cast<STBL*>(a.getChildren()[2]));
                  EXPECT_TRUE(dynamic_cast<GMHD*>(a.getChildren()[3]));
                  EXPECT_TRUE(a.isContainer());
              }),
    row<VMHD>({.name = "VMHD",
               .file = hex({"00000014 'vmhd'",
                            "00 000001",        // version, flags
                            "0040",             // graphics mode
                            "8001 1234 0700"}), // red, green, blue
               .written = hex({"00000014 'vmhd'",
                               "00 010000",             // flags come out reversed
                               "0040 8701 8701 8701"}), // red OR blue, three times
               .blankSize = 20},
              [](VMHD& a) {
                  EXPECT_EQ(a.getVersion(), 0U);
                  EXPECT_EQ(a.getFlags(), 0x010000U);
                  EXPECT_EQ(a.getGraphicsMode(), 0x40);
                  EXPECT_EQ(a.getOpColor(), 0x8701);
              }),
    row<SMHD>({.name = "SMHD",
               .file = hex({"00000010 'smhd'",
                            "00 000000",   // version, flags
                            "FF80 0002"}), // balance, reserved
               .blankSize = 16},
              [](SMHD& a) {
                  EXPECT_EQ(a.getVersion(), 0U);
                  EXPECT_EQ(a.getFlags(), 0U);
                  EXPECT_EQ(static_cast<unsigned short>(a.getBalance()), 0xFF80);
              }),
    row<HMHD>({.name = "HMHD",
               .file = hex({"0000001C 'hmhd'",
                            "00 000000",  // version, flags
                            "05DC 0400",  // largest and average packet
                            "0001F400",   // highest and average bit rate
                            "0000FA00",   //
                            "003A9800"}), // sliding average
               .blankSize = 28},
              [](HMHD& a) {
                  EXPECT_EQ(a.getMaxPDUSize(), 1500);
                  EXPECT_EQ(a.getAvgPDUSize(), 1024);
                  EXPECT_EQ(a.getMaxBitRate(), 128000U);
                  EXPECT_EQ(a.getAvgBitRate(), 64000U);
                  EXPECT_EQ(a.getSlidingAvgBitRate(), 3840000U);
              }),
    row<NMHD>({.name = "NMHD",
               .file = hex("0000000C 'nmhd' 02 0F0000"),
               .written = hex("0000000C 'nmhd' 02 00000F"),
               .blankSize = 12},
              [](NMHD& a) {
                  EXPECT_EQ(a.getVersion(), 2U);
                  EXPECT_EQ(a.getFlags(), 0xFU);
              }),
    row<GMHD>({.name = "GMHD",
               .file = hex({"0000002C 'gmhd'",
                            "00000018 'gmin' 00 000000 0040 8000 8000 8000 0000 0000", //
                            "0000000C 'text' 01020304"}),
               .written = hex({"0000002C 'gmhd'", "00000018 'gmin' 00 000000 0040 8000 8000 8000 0000 0000",
                               "0000000C 'free' 00000000"}), // known by its type alone
               .blankSize = 8},
              [](GMHD& a) {
                  ASSERT_EQ(a.getChildren().size(), 2U);
                  EXPECT_TRUE(dynamic_cast<GMIN*>(a.getChildren()[0]));
                  EXPECT_EQ(a.getChildren()[1]->getType(), fourCC("text"));
                  EXPECT_TRUE(a.isContainer());
              }),
    row<GMIN>({.name = "GMIN",
               .file = hex({"00000018 'gmin'",
                            "00 000000",      // version, flags
                            "0024",           // graphics mode
                            "0100 FFFF 0020", // red, green, blue
                            "0001 0002"}),    // balance, reserved
               .written = hex({"00000018 'gmin'", "00 000000", "0024", "0120 0120 0120", "0001 0002"}),
               .blankSize = 24},
              [](GMIN& a) {
                  EXPECT_EQ(a.getGraphicsMode(), 0x24);
                  EXPECT_EQ(a.getOpColor(), 0x120);
              }),
    row<DINF>({.name = "DINF",
               .file = hex({"00000024 'dinf'", "0000001C 'dref' 00 000000 00000001",
                            "0000000C 'url ' 00 000000"}),
               .blankSize = 8},
              [](DINF& a) {
                  ASSERT_EQ(a.getChildren().size(), 1U);
                  EXPECT_EQ(dynamic_cast<DREF&>(*a.getChildren()[0]).getNumberOfEntries(), 1U);
                  EXPECT_TRUE(a.isContainer());
              }),
    row<DREF>({.name = "DREF",
               .file = hex({"0000003E 'dref'",
                            "00 000000",                 // version, flags
                            "00000003",                  // entries
                            "0000000C 'url ' 00 000001", // in the same file
                            "00000012 'alis' 00 000000 010203040506", "00000010 'hndl' 00 000000 0708090A"}),
               .written = hex({"0000003A 'dref'", "00 000000", "00000003",
                               "0000000C 'url ' 00 010000", // flags come out reversed
                               "00000012 'alis' 00 000000 010203040506",
                               "0000000C 'hndl' 00 000000"}), // without data
               .sizeAfterUpdate = 58,
               .blankSize = 16,
               .countAt = 12},
              [](DREF& a) {
                  EXPECT_EQ(a.getNumberOfEntries(), 3U);
                  ASSERT_TRUE(a.getDataReferenceEntry(2));
                  EXPECT_EQ(a.getDataReferenceEntry(0)->getType(), fourCC("url "));
                  EXPECT_EQ(a.getDataReferenceEntry(0)->getFlags(), 0x010000U);
                  EXPECT_EQ(a.getDataReferenceEntry(0)->getData(), nullptr);
                  ASSERT_EQ(a.getDataReferenceEntry(1)->getDataSize(), 6U);
                  EXPECT_EQ(a.getDataReferenceEntry(1)->getData()[5], 6);
                  EXPECT_EQ(a.getDataReferenceEntry(2)->getDataSize(), 0U);
                  EXPECT_EQ(a.getDataReferenceEntry(3), nullptr);
              }),
    row<DREFEntry>({.name = "DREFEntry",
                    .file = hex({"00000010 'alis'",
                                 "00 000000", // version, flags
                                 "'path'"}),  // data
                    .blankSize = 12},
                   [](DREFEntry& a) {
                       EXPECT_EQ(a.getVersion(), 0U);
                       EXPECT_EQ(a.getFlags(), 0U);
                       ASSERT_EQ(a.getDataSize(), 4U);
                       EXPECT_EQ(a.getData()[0], 'p');
                       EXPECT_EQ(a.getStream(), nullptr);
                   }),
});

} // namespace
} // namespace test
