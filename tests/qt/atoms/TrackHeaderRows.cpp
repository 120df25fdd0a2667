#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms/track/TKHD.h>

namespace test {
namespace {

using namespace Ketra::QT;

const RowList kRows({
    row<TKHD>({.name = "TKHD",
               .file = hex({"0000005C 'tkhd'",   // size, type
                            "00 00000F",         // version, flags
                            "00000001 00000002", // created, modified
                            "00000007",          // track ID
                            "00000000",          // reserved
                            "00000E10",          // duration
                            "0000000000000000",  // reserved
                            "0003 0002",         // layer, alternate group
                            "01 80",             // volume 1.5
                            "0000",              // reserved
                            "00010000 00000000 00000000", "00000000 00010000 00000000",
                            "00000000 00000000 40000000", // identity
                            "02800000 01E08000"}),        // 640 x 480.5
               .written = hex({"0000005C 'tkhd'",
                               "00 0F0000", // flags come out reversed
                               "00000001 00000002", "00000007", "00000000", "00000E10", "0000000000000000",
                               "0003 0002",
                               "01 00", // the fraction of the volume is not read
                               "0000", "00010000 00000000 00000000", "00000000 00010000 00000000",
                               "00000000 00000000 40000000", // a matrix that was read is written unchanged
                               "02800000 01E00000"}),        // dimensions are read as whole pixels
               .blankSize = 92},
              [](TKHD& a) {
                  EXPECT_EQ(a.getVersion(), 0U);
                  EXPECT_EQ(a.getFlags(), 0x0F0000U);
                  EXPECT_EQ(a.getCreationTime(), 1U);
                  EXPECT_EQ(a.getModificationTime(), 2U);
                  EXPECT_EQ(a.getTrackID(), 7U);
                  EXPECT_EQ(a.getDuration(), 3600U);
                  EXPECT_EQ(a.getLayer(), 3U);
                  EXPECT_EQ(a.getAlternateGroup(), 2U);
                  EXPECT_EQ(a.getVolume(), 1.0F);
                  EXPECT_EQ(a.getWidth(), 640.0F);
                  EXPECT_EQ(a.getHeight(), 480.0F);
              }),
});

} // namespace
} // namespace test
