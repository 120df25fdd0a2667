#include "support/AtomFile.h"

#include <qt/QTAtoms.h>
#include <qt/QTTrack.h>

#include <cstdlib>
#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

unsigned char* block(const Bytes& bytes) {
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.size() + 1));
    std::copy(bytes.begin(), bytes.end(), copy);
    return copy;
}

TEST(Clip, ReadsOnlyItsFirstChild) {
    AtomFile file(atom("clip", atom("what", hex("0102")) + atom("crgn", repeat(0, 10))) +
                  hex("00000008 'next'"));
    int result = -1;
    const auto clip = file.parse<CLIP>(&result);
    EXPECT_EQ(result, 0);
    ASSERT_EQ(clip->getChildren().size(), 1U);
    EXPECT_EQ(clip->getChildren()[0]->getType(), fourCC("what"));
    EXPECT_EQ(dynamic_cast<CRGN*>(clip->getChildren()[0]), nullptr);
    EXPECT_EQ(take(clip->serialize()), atom("clip", atom("what", hex("0102"))));
}

TEST(Clip, StopsQuietlyWithoutAChild) {
    AtomFile file(hex("00000010 'clip'"));
    int result = -1;
    EXPECT_TRUE(file.parse<CLIP>(&result)->getChildren().empty());
    EXPECT_EQ(result, 0);
}

TEST(Aperture, DropsFractions) {
    AtomFile file(hex("00000014 'clef' 00000000 02808000 01E00000")); // 640.5 x 480
    const auto clef = file.parse<CLEF>();
    EXPECT_EQ(clef->getWidth(), 640U);
    clef->setWidth(720);
    clef->setHeight(576);
    EXPECT_EQ(take(clef->serialize()), hex("00000014 'clef' 00000000 02D00000 02400000"));
}

TEST(Aperture, IsFilledByANewVideoTrack) {
    const std::unique_ptr<QTTrack> track(QTTrack::createNewQTTrackFromType(1, fourCC("vide"), kMOV));
    const std::unique_ptr<QTAtom> trak(track->getTrak());
    auto& video = dynamic_cast<QTVideoTrack&>(*track);
    video.setWidth(720);
    video.setHeight(576);
    video.setDisplayAspectRatio(4, 3);
    video.set_clap_width(704);
    video.set_clap_height(576);
    video.prepareForWriting();
    EXPECT_EQ(take(trak->getAtomOfType(fourCC("tapt"))->serialize()),
              hex({"00000044 'tapt'",                            //
                   "00000014 'clef' 00000000 02EE0000 02400000", // 704 * 16 / 15 = 750
                   "00000014 'prof' 00000000 03000000 02400000", // 768 x 576
                   "00000014 'enof' 00000000 02D00000 02400000"}));
}

TEST(Gamma, ReadsItsBytesUnswapped) {
    const auto gamma = [](const char* field) {
        AtomFile file(hex("0000000C 'gama'") + hex(field));
        return file.parse<GAMA>()->getGamma();
    };
    EXPECT_EQ(gamma("00 02 33 33"), 512.0F); // 2.2
    EXPECT_EQ(gamma("00 01 CC CC"), 256.0F); // 1.8
    EXPECT_EQ(gamma("00 01 FF FF"), 65536.0F);
    EXPECT_EQ(gamma("34 12 00 00"), static_cast<float>(0x1234));
}

TEST(Gamma, IsWrittenInTrueOrderOnceSet) {
    GAMA gamma;
    EXPECT_EQ(gamma.getGamma(), 0.0F);
    EXPECT_EQ(take(gamma.serialize()), hex("0000000C 'gama' 00000000"));
    EXPECT_EQ(gamma.setGamma(2.2F), 0);
    EXPECT_EQ(gamma.getGamma(), 2.2F);
    EXPECT_EQ(take(gamma.serialize()), hex("0000000C 'gama' 00023333"));
}

TEST(Region, TakesItsDataOver) {
    CRGN region;
    region.setRegionSize(12);
    region.setRegionBoundaryBox(0x0000000000F00140);
    EXPECT_EQ(region.setClippingRegionData(2, block({1, 2})), 0);
    EXPECT_EQ(region.setClippingRegionData(2, region.getClippingRegionData()), 0);
    EXPECT_EQ(region.updateSize(), 20U);
    EXPECT_EQ(take(region.serialize()), hex("00000014 'crgn' 000C 0000000000F00140 0102"));
    EXPECT_EQ(region.setClippingRegionData(0, nullptr), 0);
    EXPECT_EQ(region.getClippingRegionDataSize(), 0U);
    EXPECT_EQ(region.updateSize(), 18U);
}

TEST(Matte, TakesItsDataOver) {
    KMAT matte;
    matte.setVersion(1);
    matte.setFlags(2);
    EXPECT_EQ(matte.setMatteData(3, block({1, 2, 3})), 0);
    EXPECT_EQ(matte.updateSize(), 15U);
    EXPECT_EQ(take(matte.serialize()), hex("0000000F 'kmat' 01 000002 010203"));
}

TEST(ColorTable, TakesItsDataOver) {
    CTAB table;
    table.setSeed(1);
    table.setFlags(0x8000);
    table.setTableSize(0);
    EXPECT_EQ(table.setColorTableData(8, block(repeat(9, 8))), 0);
    EXPECT_EQ(table.updateSize(), 24U);
    EXPECT_EQ(take(table.serialize()), hex("00000018 'ctab' 00000001 8000 0000") + repeat(9, 8));
}

TEST(Input, CountsTheChildrenItIsGiven) {
    __IN input;
    input.setAtomID(1);
    auto type = std::make_unique<__TY>();
    type->setInputType(5);
    EXPECT_EQ(input.addChild(nullptr), -1);
    EXPECT_EQ(input.addChild(&input), -1);
    EXPECT_EQ(input.getChildCount(), 0U);
    EXPECT_EQ(input.addChild(type.release()), 0);
    EXPECT_EQ(input.getChildCount(), 1U);
    EXPECT_EQ(input.getSize(), 32U);
    EXPECT_EQ(take(input.serialize()),
              hex("00000020 '  in' 00000001 0000 0001 00000000 0000000C '  ty' 00000005"));
}

TEST(Input, ReadsNoMoreChildrenThanItCounts) {
    AtomFile file(atom("  in", hex("00000001 0000 0001 00000000") + atom("obid", hex("00000002")) +
                                   atom("obid", hex("00000003"))));
    const auto input = file.parse<__IN>();
    ASSERT_EQ(input->getChildren().size(), 1U);
    EXPECT_EQ(dynamic_cast<OBID&>(*input->getChildren()[0]).getObjectID(), 2U);
}

TEST(Input, BelievesNoEndlessCount) {
    AtomFile file(atom("  in", hex("00000001 0000 FFFF 00000000") + atom("obid", hex("00000002"))) +
                  atom("obid", hex("00000003")));
    const auto input = file.parse<__IN>();
    EXPECT_EQ(input->getChildren().size(), 1U); // what follows belongs to somebody else
    EXPECT_EQ(input->getChildCount(), 0xFFFFU);
}

TEST(TimeCodeInformation, IsWrittenAsAWhole) {
    TCMI info;
    unsigned char name[] = {'G', 'e', 'n', 'e', 'v', 'a'};
    EXPECT_EQ(info.setFontName(6, name), 0);
    info.setTextColor(0, 0xFFFF, 0);
    EXPECT_EQ(info.updateSize(), 71U);
    const Bytes bytes = hex({"00000018 'gmin' 00000000 0040 8000 8000 8000 0000 0000", //
                             "0000002F 'tmcd' 00000027 'tcmi' 00000000 0000 0000 000C 0000",
                             "0000 FFFF 0000 0000 0000 0000 06 'Geneva'"});
    EXPECT_EQ(take(info.serialize()), bytes);
    AtomFile file(atom("gmhd", bytes));
    const auto read = file.parse<TCMI>();
    read->updateSize();
    EXPECT_EQ(take(read->serialize()), bytes);
}

TEST(TimeCodeInformation, ReadsFromEachOfItsHeaders) {
    const Bytes fields = hex("00000000 0000 0000 0018 0000 0000 0000 0000 0000 0000 0000 03 'abc'");
    for (const Bytes& bytes :
         {atom("tcmi", fields), atom("tmcd", atom("tcmi", fields)),
          atom("gmhd", atom("gmin", repeat(0, 16)) + atom("tmcd", atom("tcmi", fields)))}) {
        AtomFile file(bytes);
        const auto info = file.parse<TCMI>();
        EXPECT_EQ(info->getTextSize(), 24U);
        unsigned int length = 0;
        unsigned char* name = nullptr;
        info->getFontName(length, name);
        ASSERT_EQ(length, 3U);
        EXPECT_EQ(name[2], 'c');
    }
}

TEST(TimeCodeInformation, CutsItsFontName) {
    TCMI info;
    EXPECT_EQ(info.setFontName(3, nullptr), -1);
    Bytes name = repeat('x', 300);
    EXPECT_EQ(info.setFontName(300, name.data()), 0);
    EXPECT_EQ(info.updateSize(), 65U + 255U);
    EXPECT_EQ(info.setFontName(0, nullptr), 0);
    unsigned int length = 9;
    unsigned char* bytes = name.data();
    EXPECT_EQ(info.getFontName(length, bytes), 0);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(bytes, nullptr);
    AtomFile file(atom("tcmi", hex("00000000 0000 0000 000C 0000 0000 0000 0000 0000 0000 0000 FF 'ab'")));
    file.parse<TCMI>()->getFontName(length, bytes);
    EXPECT_EQ(length, 2U);
}

} // namespace
} // namespace test
