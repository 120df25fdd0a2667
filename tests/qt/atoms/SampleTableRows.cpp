#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/samples/STTS.h>

namespace test {
namespace {

using namespace Ketra::QT;

const RowList kRows({
    row<STTS>({.name = "STTS",
               .file = hex({"00000020 'stts'",     // size, type
                            "01 000002",           // version, flags
                            "00000002",            // entries
                            "00000003 00000064",   // 3 samples of 100
                            "00000001 00000032"}), // 1 of 50
               .written = hex({"00000020 'stts'",
                               "01 020000", // flags read from the back, written from the front
                               "00000002", "00000003 00000064", "00000001 00000032"}),
               .blankSize = 16,
               .countAt = 12},
              [](STTS& a) {
                  EXPECT_EQ(a.getVersion(), 1U);
                  EXPECT_EQ(a.getFlags(), 0x020000U);
                  EXPECT_EQ(a.getNumberOfEntries(), 2U);
                  EXPECT_EQ(a.getSumOfEntries(), 4U);
                  EXPECT_EQ(a.getSumOfDurations(), 350U);
                  ASSERT_TRUE(a.getTimeToSampleData(1));
                  EXPECT_EQ(a.getTimeToSampleData(1)->getSampleCount(), 1U);
                  EXPECT_EQ(a.getTimeToSampleData(1)->getDuration(), 50U);
                  EXPECT_EQ(a.getTimeToSampleData(2), nullptr);
              }),
    row<STSZ>({.name = "STSZ",
               .file = hex({"00000020 'stsz'",              // size, type
                            "00 000000",                    // version, flags
                            "00000000",                     // no constant size
                            "00000003",                     // samples
                            "0000000A 00000014 0000001E"}), // 10, 20, 30 bytes
               .blankSize = 20,
               .countAt = 16},
              [](STSZ& a) {
                  EXPECT_EQ(a.getSampleSize(), 0U);
                  EXPECT_EQ(a.getNumberOfEntries(), 3U);
                  EXPECT_EQ(a.getCalculatedSize(), 60U);
                  EXPECT_EQ(a.getSampleSizeData(2)->getSize(), 30U);
                  EXPECT_EQ(a.getSampleSizeData(9)->getSize(), 30U); // past the end: the last
              }),
});

} // namespace
} // namespace test
