#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms.h>

namespace test {
namespace {

using namespace Ketra::QT;

const RowList kRows({
    row<NSAV>({.name = "NSAV", .file = hex("0000000C 'nsav' 00000001"), .blankSize = 12},
              [](NSAV& a) { EXPECT_EQ(a.getAllowTranscoding(), 1U); }),
    row<TSEL>(
        {.name = "TSEL",
         .file = hex({"00000018 'tsel'",
                      "00 000000", // version, flags
                      "00000002",  // switch group
                      "'bitr'",    // attributes
                      "'lang'"}),
         .blankSize = 16},
        [](TSEL& a) {
            EXPECT_EQ(a.getVersion(), 0U);
            EXPECT_EQ(a.getFlags(), 0U);
            EXPECT_EQ(a.getSwitchGroup(), 2U);
            EXPECT_EQ(a.getAttributeList(), (std::vector<unsigned int>{fourCC("bitr"), fourCC("lang")}));
        }),
    row<HNTI>({.name = "HNTI",
               .file = hex({"0000001D 'hnti'",
                            "0000000D 'sdp ' 6D3D2E0D0A", //
                            "00000008 'more'"}),
               .blankSize = 8},
              [](HNTI& a) {
                  ASSERT_EQ(a.getDataAtoms().size(), 2U);
                  EXPECT_EQ(a.getDataAtom(0)->getType(), fourCC("sdp "));
                  EXPECT_EQ(a.getDataAtom(0)->getSize(), 13U);
                  EXPECT_EQ(a.getDataAtom(0)->getData()[4], 0x0A);
                  EXPECT_EQ(a.getDataAtom(1)->getType(), fourCC("more"));
                  EXPECT_EQ(a.getDataAtom(2), nullptr);
              }),
    row<HINF>({.name = "HINF",
               .file = hex({"00000033 'hinf'",
                            "00000010 'trpy' 0000000000000460", //
                            "0000000C 'npck' 0000000A",         //
                            "0000000F 'payt' 00000060 02'AB'"}),
               .blankSize = 8},
              [](HINF& a) {
                  ASSERT_EQ(a.getDataAtoms().size(), 3U);
                  EXPECT_EQ(a.getDataAtom(0)->getType(), fourCC("trpy"));
                  EXPECT_EQ(a.getDataAtom(2)->getSize(), 15U);
                  EXPECT_EQ(a.getHintDescription(), nullptr);
              }),
});

} // namespace
} // namespace test
