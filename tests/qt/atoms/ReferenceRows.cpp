#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms.h>

namespace test {
namespace {

using namespace Ketra::QT;

/// All references of one track have one shape.
template <class Reference>
AtomRow reference(const char* name, const char* code) {
    return row<Reference>(
        {.name = name, .file = hex("0000000C") + hex(code) + hex("00000102"), .blankSize = 12},
        [](Reference& a) { EXPECT_EQ(a.getTrackID(), 0x102U); });
}

const RowList kRows({
    reference<TMCD>("TMCD", "'tmcd'"),
    reference<CHAP>("CHAP", "'chap'"),
    reference<SYNC>("SYNC", "'sync'"),
    reference<SCPT>("SCPT", "'scpt'"),
    reference<SSRC>("SSRC", "'ssrc'"),
    reference<HINT>("HINT", "'hint'"),
    reference<DPND>("DPND", "'dpnd'"),
    reference<IPIR>("IPIR", "'ipir'"),
    row<TREF>(
        {.name = "TREF",
         .file = hex({"00000084 'tref'", //
                      "0000000C 'tmcd' 00000001", "0000000C 'chap' 00000002", "0000000C 'sync' 00000003",
                      "0000000C 'scpt' 00000004", "0000000C 'ssrc' 00000005", "0000000C 'hint' 00000006",
                      "0000000C 'dpnd' 00000007", "0000000C 'ipir' 00000008",
                      "00000010 'mpod' 00000009 0000000A", "0000000C 'abcd' 0000000B"}),
         .written = hex({"00000084 'tref'", //
                         "0000000C 'tmcd' 00000001", "0000000C 'chap' 00000002", "0000000C 'sync' 00000003",
                         "0000000C 'scpt' 00000004", "0000000C 'ssrc' 00000005", "0000000C 'hint' 00000006",
                         "0000000C 'dpnd' 00000007", "0000000C 'ipir' 00000008",
                         "00000010 'mpod' 00000009 0000000A",
                         "0000000C 'free' 00000000"}), // the place of the unknown one
         .blankSize = 8},
        [](TREF& a) {
            const std::vector<QTAtom*> children = a.getChildren();
            ASSERT_EQ(children.size(), 10U);
            EXPECT_TRUE(dynamic_cast<TMCD*>(children[0]));
            EXPECT_TRUE(dynamic_cast<CHAP*>(children[1]));
            EXPECT_TRUE(dynamic_cast<SYNC*>(children[2]));
            EXPECT_TRUE(dynamic_cast<SCPT*>(children[3]));
            EXPECT_TRUE(dynamic_cast<SSRC*>(children[4]));
            EXPECT_TRUE(dynamic_cast<HINT*>(children[5]));
            EXPECT_TRUE(dynamic_cast<DPND*>(children[6]));
            EXPECT_TRUE(dynamic_cast<IPIR*>(children[7]));
            EXPECT_TRUE(dynamic_cast<MPOD*>(children[8]));
            EXPECT_EQ(dynamic_cast<TrackReference&>(*children[7]).getTrackID(), 8U);
            EXPECT_TRUE(a.isContainer());
        }),
});

} // namespace
} // namespace test
