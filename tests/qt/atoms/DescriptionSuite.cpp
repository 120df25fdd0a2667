// One row per typed sample description: its fields in memory, the body that is written of them.
#include "support/Bytes.h"

#include <qt/QTAtoms.h>

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>

namespace test {
namespace {

using namespace Ketra::QT;

struct DescriptionRow {
    const char* name = "";
    Bytes blank{};   ///< body of a new one
    Bytes written{}; ///< body with the fields set
    std::function<std::unique_ptr<QTAtom>(bool set)> make{};
    std::function<std::unique_ptr<QTAtom>(const QTAtom&)> copy{};
};

template <class Description>
DescriptionRow row(DescriptionRow fields, std::function<void(Description&)> set) {
    fields.make = [set](bool filled) -> std::unique_ptr<QTAtom> {
        auto description = std::make_unique<Description>();
        if (filled) set(*description);
        return description;
    };
    fields.copy = [](const QTAtom& from) -> std::unique_ptr<QTAtom> {
        auto copy = std::make_unique<Description>(dynamic_cast<const Description&>(from));
        auto assigned = std::make_unique<Description>();
        *assigned = *copy;
        return assigned;
    };
    return fields;
}

void PrintTo(const DescriptionRow& row, std::ostream* os) { *os << row.name; }

class DescriptionSuite : public testing::TestWithParam<DescriptionRow> {};

TEST_P(DescriptionSuite, WritesItsBody) {
    for (const bool set : {false, true}) {
        const std::unique_ptr<QTAtom> description = GetParam().make(set);
        const Bytes& want = set ? GetParam().written : GetParam().blank;
        EXPECT_EQ(description->updateSize(), want.size());
        const Bytes first = take(description->serialize());
        EXPECT_EQ(first, want) << "got  " << show(first) << "\nwant " << show(want);
        EXPECT_EQ(take(description->serialize()), first) << "writing twice";
    }
}

TEST_P(DescriptionSuite, ReadsNothingByItself) {
    const std::unique_ptr<QTAtom> description = GetParam().make(true);
    EXPECT_EQ(description->parse(), 0);
    description->updateSize();
    EXPECT_EQ(take(description->serialize()), GetParam().written);
}

TEST_P(DescriptionSuite, CopiesAreAlike) {
    std::unique_ptr<QTAtom> description = GetParam().make(true);
    const std::unique_ptr<QTAtom> copy = GetParam().copy(*description);
    description.reset(); // nothing is shared
    copy->updateSize();
    EXPECT_EQ(take(copy->serialize()), GetParam().written);
}

Bytes name(const char* text) { return Bytes(text, text + std::char_traits<char>::length(text)); }

INSTANTIATE_TEST_SUITE_P(
    Descriptions, DescriptionSuite,
    testing::Values(
        row<STSDVideo>({.name = "STSDVideo",
                        .blank = repeat(0, 70),
                        .written = hex({"0001 0002", "'appl'", "00000003 00000004", // qualities
                                        "0280 01E0",                                // size
                                        "00480000 00487FFF",                        // 72, 72.5
                                        "00000000 0001",                            // data size, frame count
                                        "04 'Test'"}) +
                                   repeat(0, 27) + hex("0018 FFFF")}, // depth, colour table
                       [](STSDVideo& d) {
                           d.setVersion(1);
                           d.setRevisionLevel(2);
                           d.setVendor(fourCC("appl"));
                           d.setTemporalQuality(3);
                           d.setSpatialQuality(4);
                           d.setWidth(640);
                           d.setHeight(480);
                           d.setHorizontalResolution(72);
                           d.setVerticalResolution(72.5F);
                           d.setFrameCount(1);
                           Bytes text = name("Test");
                           d.setCompressorName(4, text.data());
                           d.setDepth(24);
                           d.setColorTableID(0xFFFF);
                       }),
        row<STSDAudio>({.name = "STSDAudio",
                        .blank = repeat(0, 36),
                        .written = hex({"0001 0002", "'appl'", "0002 0010 FFFE 0000", "AC440000",
                                        "00000400 00000001 00000002 00000003"})}, // packets
                       [](STSDAudio& d) {
                           d.setVersion(1);
                           d.setRevisionLevel(2);
                           d.setVendor(fourCC("appl"));
                           d.setChannels(2);
                           d.setSampleSize(16);
                           d.setCompressionID(0xFFFE);
                           d.setSampleRate(44100);
                           d.setSamplesPerPacket(1024);
                           d.setBytesPerPacket(1);
                           d.setBytesPerFrame(2);
                           d.setBytesPerSample(3);
                       }),
        row<STSDText>({.name = "STSDText",
                       .blank = hex({"00000000 00000001", "0000 0000 0000", "0000 0000 0000 0000"}) +
                                repeat(0, 8) + hex({"0000 0000 0000", "FFFF FFFF FFFF", "00"}),
                       .written = hex({"00000004 FFFFFFFF", "0001 0002 0003",
                                       "0004 0005 0006 0007",                   // t l b r
                                       "0000000000000008", "0009 000A", "0B0C", // font, face, reserved
                                       "000D 000E 000F", "05 'Serif'"})},
                      [](STSDText& d) {
                          d.setDisplayFlags(4);
                          d.setTextJustification(0xFFFFFFFF);
                          d.setBackgroundColorR(1);
                          d.setBackgroundColorG(2);
                          d.setBackgroundColorB(3);
                          d.setDefaultTextBoxTop(4);
                          d.setDefaultTextBoxLeft(5);
                          d.setDefaultTextBoxBottom(6);
                          d.setDefaultTextBoxRight(7);
                          d.setReserved(8);
                          d.setFontNumber(9);
                          d.setFontFace(10);
                          d.setReserved2(0x0B);
                          d.setReserved3(0x0C);
                          d.setForegroundColorR(13);
                          d.setForegroundColorG(14);
                          d.setForegroundColorB(15);
                          Bytes text = name("Serif");
                          d.setTextName(5, text.data());
                      }),
        row<STSDHint>(
            {.name = "STSDHint", .blank = hex("0001 0001 00000000"), .written = hex("0002 0003 000005DC")},
            [](STSDHint& d) {
                d.setHintTrackVersion(2);
                d.setLastCompatibleVersion(3);
                d.setMaxPacketSize(1500);
            })),
    [](const testing::TestParamInfo<DescriptionRow>& one) { return std::string(one.param.name); });

} // namespace
} // namespace test
