#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms/movie/IODS.h>
#include <qt/QTAtoms/systems/ESDS.h>
#include <qt/QTAtoms/systems/ESIDInc.h>
#include <qt/QTAtoms/systems/MPOD.h>

#include <cstring>

namespace test {
namespace {

using namespace Ketra::QT;

const RowList kRows({
    row<ESDS>({.name = "ESDS",
               .file = hex({"00000014 'esds'",                   // size, type
                            "01 000002",                         // version, flags
                            "03 03 0001 00",                     // ES descriptor: ID 1
                            "060102"}),                          //
               .written = hex({"0000000C 'esds'", "00 000000"}), // reading skips: getInfo() reads
               .sizeAfterUpdate = 12,
               .blankSize = 12},
              [](ESDS& a) { EXPECT_TRUE(a.getDescriptors().empty()); }),
    row<IODS>({.name = "IODS",
               .file = hex({"00000021 'iods'",        // size, type
                            "00 000000",              // version, flags
                            "10 80808010",            // initial object descriptor, 16 bytes
                            "0047",                   // ID 1, no flags, reserved 7
                            "FE 01 01 03 01",         // profile levels
                            "0E 80808004 00000003"}), // reference to track 3
               .written = hex({"00000021 'iods'", "00 000000", "10 80808010", "004F", // reserved bits are set
                               "FE 01 01 03 01", "0E 80808004 00000003"}),
               .blankSize = 12},
              [](IODS& a) {
                  ASSERT_TRUE(a.getInitialObjectDescriptor());
                  const InitialObjectDescriptor& d = *a.getInitialObjectDescriptor();
                  EXPECT_EQ(d.getTag(), 0x10);
                  EXPECT_EQ(d.getSize(), 16U);
                  EXPECT_EQ(d.getID(), 1);
                  EXPECT_EQ(d.getURLFlag(), 0);
                  EXPECT_EQ(d.getReserved(), 7);
                  EXPECT_EQ(d.getODProfileLevelIndication(), 0xFE);
                  EXPECT_EQ(d.getSceneProfileLevelIndication(), 1);
                  EXPECT_EQ(d.getAudioProfileLevelIndication(), 1);
                  EXPECT_EQ(d.getVisualProfileLevelIndication(), 3);
                  EXPECT_EQ(d.getGraphicsProfileLevelIndication(), 1);
                  auto* reference = dynamic_cast<ESIDInc*>(d.getDescriptorTag(0x0E));
                  ASSERT_TRUE(reference);
                  EXPECT_EQ(reference->getTrackID(), 3U);
              }),
    row<MPOD>({.name = "MPOD",
               .file = hex({"00000012 'mpod'",           // size, type
                            "00000003 00000004 05 06"}), // track IDs and half a one
               .blankSize = 8},
              [](MPOD& a) {
                  EXPECT_EQ(a.getTrackRefCount(), 2U);
                  ASSERT_TRUE(a.getTrackRefs());
                  const unsigned char want[] = {0, 0, 0, 3};
                  EXPECT_EQ(std::memcmp(a.getTrackRefs(), want, 4), 0) << "file order";
              }),
});

} // namespace
} // namespace test
