#include "support/AtomFile.h"

#include <qt/QTAtoms.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

TEST(TrackSelection, ListsAttributesToItsEnd) {
    const auto attributes = [](const Bytes& payload) {
        AtomFile file(atom("tsel", payload) + repeat(0xFF, 16));
        return file.parse<TSEL>()->getAttributeList().size();
    };
    EXPECT_EQ(attributes(repeat(0, 8)), 0U);
    EXPECT_EQ(attributes(repeat(0, 16)), 2U);
    EXPECT_EQ(attributes(repeat(0, 15)), 1U); // whole values only
}

TEST(TrackSelection, GrowsWithItsAttributes) {
    TSEL selection;
    selection.setSwitchGroup(3);
    selection.addAttribute(fourCC("lang"));
    EXPECT_EQ(selection.getSize(), 16U);
    EXPECT_EQ(take(selection.serialize()), hex("00000014 'tsel' 00000000 00000003 'lang'"));
    EXPECT_EQ(selection.getSize(), 20U);
}

template <class Atom>
class HintInformation : public testing::Test {};
using HintAtoms = testing::Types<HNTI, HINF>;
TYPED_TEST_SUITE(HintInformation, HintAtoms);

TYPED_TEST(HintInformation, AdoptsDataAtoms) {
    TypeParam info;
    unsigned char bytes[] = {1, 2, 3};
    auto added = std::make_unique<QTDataAtom>(11, fourCC("sdp "), bytes);
    EXPECT_EQ(info.addDataAtom(nullptr), -1);
    EXPECT_EQ(info.getSize(), 8U);
    QTDataAtom* data = added.release();
    EXPECT_EQ(info.addDataAtom(data), 0);
    EXPECT_EQ(info.getSize(), 19U);
    EXPECT_EQ(info.getDataAtom(0), data);
    EXPECT_EQ(info.getDataAtom(1), nullptr);
    EXPECT_EQ(info.getDataAtoms(), std::vector<QTDataAtom*>{data});
    const Bytes written = take(info.serialize());
    EXPECT_EQ(Bytes(written.begin() + 8, written.end()), hex("0000000B 'sdp ' 010203"));
}

TYPED_TEST(HintInformation, ReadsNothingFromAnEmptyAtom) {
    AtomFile file(hex("00000008 'hnti' 00000000"));
    int result = -1;
    const auto info = file.parse<TypeParam>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(info->getDataAtoms().empty());
    EXPECT_EQ(file.position(), 8);
}

TYPED_TEST(HintInformation, CutsAndEndsAtWhatCannotBe) {
    AtomFile longer(atom("hnti", hex("00000009 'good' 01 FFFFFFFF 'long' 0203")));
    auto info = longer.parse<TypeParam>();
    ASSERT_EQ(info->getDataAtoms().size(), 2U);
    EXPECT_EQ(info->getDataAtom(1)->getSize(), 10U);
    EXPECT_EQ(info->getDataAtom(1)->getData()[1], 3);

    AtomFile shorter(atom("hnti", hex("00000008 'good' 00000007 'bad ' 00000008 'lost'")) + hex("00"));
    info = shorter.parse<TypeParam>();
    EXPECT_EQ(info->getDataAtoms().size(), 1U);
    EXPECT_EQ(shorter.position(), 32);
}

TYPED_TEST(HintInformation, GrowsRatherThanOverruns) {
    TypeParam info;
    info.addDataAtom(new QTDataAtom(8, fourCC("free"), nullptr));
    info.getDataAtom(0)->setSize(40); // more than the size held counts
    EXPECT_EQ(take(info.serialize()).size(), 48U);
    info.getDataAtom(0)->setSize(3); // no atom is that short
    const Bytes bytes = take(info.serialize());
    EXPECT_EQ(Bytes(bytes.begin() + 8, bytes.end()), hex("00000008 'free'")); // the gap
}

TEST(HintStatistics, EndWithTheDescription) {
    HINF info;
    info.addDataAtom(new QTDataAtom(8, fourCC("nump"), nullptr));
    auto* bytes = static_cast<unsigned char*>(std::malloc(3));
    std::copy_n("xyz", 3, bytes);
    auto* description = new QTFrame(3, bytes, 0, 0, false, 1, 0, 0, false);
    EXPECT_EQ(info.setHintDescription(description), 0);
    EXPECT_EQ(info.setHintDescription(description), 0); // already held
    EXPECT_EQ(info.getHintDescription(), description);
    EXPECT_EQ(info.updateSize(), 19U);
    EXPECT_EQ(take(info.serialize()), hex("00000013 'hinf' 00000008 'nump' 'xyz'"));
    const HINF copy(info);
    EXPECT_EQ(copy.getHintDescription(), description);
    EXPECT_EQ(info.setHintDescription(nullptr), 0);
    EXPECT_EQ(info.updateSize(), 16U);
}

} // namespace
} // namespace test
