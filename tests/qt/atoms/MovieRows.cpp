#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms.h>

namespace test {
namespace {

using namespace Ketra::QT;

Bytes wordsOf(const unsigned int* words, std::size_t count) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(words);
    return Bytes(bytes, bytes + 4 * count);
}

const RowList kRows({
    row<MVHD>({.name = "MVHD",
               .file = hex({"0000006C 'mvhd'",
                            "00 000001",            // version, flags
                            "00000001 00000002",    // created, modified
                            "00000258 00000708",    // time scale, duration
                            "00010000 0100",        // rate 1.0, volume 1.0
                            "0102030405060708090A", // reserved
                            "00010000 00000000 00000000", "00000000 00010000 00000000",
                            "00000000 00000000 40000000", // identity
                            "00000003 00000004",          // preview time and duration
                            "00000005",                   // poster time
                            "00000006 00000007",          // selection time and duration
                            "00000008 00000009"}),        // current time, next track ID
               .written = hex({"0000006C 'mvhd'",
                               "00 010000", // flags come out reversed
                               "00000001 00000002", "00000258 00000708",
                               "01000000 0100", // a rate of 1.0 reads as 256
                               "0102030405060708090A",
                               // file bytes taken as integers: 256, and 64 as 2.30
                               "01000000 00000000 00000000", "00000000 01000000 00000000",
                               "00000000 00000000 00000000", "00000003 00000004", "00000005",
                               "00000006 00000007", "00000008 00000009"}),
               .blankSize = 108},
              [](MVHD& a) {
                  EXPECT_EQ(a.getVersion(), 0U);
                  EXPECT_EQ(a.getFLags(), 0x010000U);
                  EXPECT_EQ(a.getCreationTime(), 1U);
                  EXPECT_EQ(a.getModificationTime(), 2U);
                  EXPECT_EQ(a.getTimeScale(), 600U);
                  EXPECT_EQ(a.getDuration(), 1800U);
                  EXPECT_EQ(a.getPreferredRate(), 256.0F);
                  EXPECT_EQ(a.getPreferredVolume(), 1.0F);
                  EXPECT_EQ(Bytes(a.getReserved(), a.getReserved() + 10), hex("0102030405060708090A"));
                  EXPECT_EQ(wordsOf(a.getMatrix(), 9),
                            hex({"00010000 00000000 00000000", "00000000 00010000 00000000",
                                 "00000000 00000000 40000000"}));
                  EXPECT_EQ(a.getPreviewTime(), 3U);
                  EXPECT_EQ(a.getPreviewDuration(), 4U);
                  EXPECT_EQ(a.getPosterTime(), 5U);
                  EXPECT_EQ(a.getSelectionTime(), 6U);
                  EXPECT_EQ(a.getSelectionDuration(), 7U);
                  EXPECT_EQ(a.getCurrentTime(), 8U);
                  EXPECT_EQ(a.getNextTrackID(), 9U);
              }),
    row<UDTA>({.name = "UDTA",
               .file = hex({"0000002F 'udta'",
                            "0000000C 'nsav' 00000001", // a child
                            "0000000F 'name' 0003 0000 'abc'",
                            "00000008 'none'", //
                            "00000000"}),      // terminator
               .written = hex({"0000002B 'udta'", "0000000F 'name' 0003 0000 'abc'", "00000008 'none'",
                               "0000000C 'nsav' 00000001"}), // children stand behind the entries
               .sizeAfterUpdate = 43,
               .blankSize = 8},
              [](UDTA& a) {
                  ASSERT_EQ(a.getDataAtoms().size(), 2U);
                  EXPECT_EQ(a.getDataAtom(fourCC("name"))->getSize(), 15U);
                  EXPECT_EQ(a.getDataAtom(fourCC("none"))->getSize(), 8U);
                  EXPECT_EQ(a.getDataAtom(fourCC("nsav")), nullptr);
                  const auto* marker = dynamic_cast<NSAV*>(a.getAtomOfType(fourCC("nsav")));
                  ASSERT_TRUE(marker);
                  EXPECT_EQ(marker->getAllowTranscoding(), 1U);
              }),
    row<MOOV>({.name = "MOOV",
               .file = hex({"00000020 'moov'", "0000000C 'udta' 00000000", "0000000C 'abcd' 01020304"}),
               .written = hex({"0000001C 'moov'", "00000008 'udta'",
                               "0000000C 'free' 00000000"}), // the place of the unknown atom
               .sizeAfterUpdate = 28,
               .blankSize = 8},
              [](MOOV& a) {
                  EXPECT_TRUE(a.isContainer());
                  EXPECT_EQ(a.getChildren().size(), 2U);
              }),
    row<TRAK>({.name = "TRAK",
               .file = hex({"00000014 'trak'", "0000000C 'udta' 00000000"}),
               .writesNothing = true, // a track without samples is left out
               .sizeAfterUpdate = 0,
               .blankSize = 8},
              [](TRAK& a) {
                  EXPECT_TRUE(a.isContainer());
                  EXPECT_TRUE(a.getAtomOfType(fourCC("udta")));
              }),
});

} // namespace
} // namespace test
