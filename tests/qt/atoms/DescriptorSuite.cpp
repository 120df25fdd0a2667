// One row per descriptor class: its payload in a file, what is read from it, what is written back.
#include "support/Bytes.h"

#include <qt/QTAtoms.h>

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <ostream>

namespace test {
namespace {

using namespace Ketra::QT;

struct DescriptorRow {
    const char* name = "";
    unsigned char tag = 0;
    Bytes payload{};                              ///< behind tag and size
    Bytes written{};                              ///< tag and size included
    std::function<void(MP4ObjectData&)> expect{}; ///< the fields after getInfo()
    std::optional<unsigned int> size{};           ///< after updateSize(); none: that of the payload
    std::function<std::unique_ptr<MP4ObjectData>(unsigned int, unsigned char)> make{};
};

template <class Descriptor>
DescriptorRow row(DescriptorRow fields, std::function<void(Descriptor&)> expect) {
    fields.expect = [expect](MP4ObjectData& d) { expect(dynamic_cast<Descriptor&>(d)); };
    fields.make = [](unsigned int size, unsigned char tag) -> std::unique_ptr<MP4ObjectData> {
        return std::make_unique<Descriptor>(size, tag);
    };
    return fields;
}

void PrintTo(const DescriptorRow& row, std::ostream* os) { *os << row.name; }

class DescriptorSuite : public testing::TestWithParam<DescriptorRow> {
protected:
    /// Reads a payload that ends where its bytes do; `consumed` gets how many were read.
    static std::unique_ptr<MP4ObjectData> read(const Bytes& payload, std::size_t* consumed = nullptr) {
        const std::unique_ptr<unsigned char[]> exact(new unsigned char[payload.size()]);
        std::copy(payload.begin(), payload.end(), exact.get());
        auto descriptor = GetParam().make(static_cast<unsigned int>(payload.size()), GetParam().tag);
        unsigned char* cursor = exact.get();
        EXPECT_EQ(descriptor->getInfo(&cursor), 0);
        const auto length = static_cast<std::size_t>(cursor - exact.get());
        EXPECT_LE(length, payload.size());
        if (consumed) *consumed = length;
        return descriptor;
    }
};

TEST_P(DescriptorSuite, ReadsItsFields) {
    std::size_t consumed = 0;
    const auto descriptor = read(GetParam().payload, &consumed);
    EXPECT_EQ(consumed, GetParam().payload.size());
    EXPECT_EQ(descriptor->getTag(), GetParam().tag);
    EXPECT_EQ(descriptor->getSize(), GetParam().payload.size());
    GetParam().expect(*descriptor);
}

TEST_P(DescriptorSuite, WritesItsBytes) {
    const auto descriptor = read(GetParam().payload);
    EXPECT_EQ(descriptor->updateSize(), GetParam().size.value_or(GetParam().payload.size()));
    const Bytes first = take(descriptor->serialize());
    EXPECT_EQ(first, GetParam().written) << "got  " << show(first) << "\nwant " << show(GetParam().written);
    EXPECT_EQ(take(descriptor->serialize()), first) << "writing twice";
    GetParam().expect(*descriptor);
}

TEST_P(DescriptorSuite, SurvivesEveryTruncationAndByte) {
    Bytes payload = GetParam().payload;
    for (std::size_t length = 0; length < payload.size(); ++length) {
        take(
            read(Bytes(payload.begin(), payload.begin() + static_cast<std::ptrdiff_t>(length)))->serialize());
    }
    for (unsigned char& byte : payload) {
        const unsigned char original = byte;
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            byte = static_cast<unsigned char>(value);
            take(read(payload)->serialize());
        }
        byte = original;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Descriptors, DescriptorSuite,
    testing::Values(
        row<MP4ObjectData>({.name = "MP4ObjectData",
                            .tag = 0x77,
                            .payload = hex("010203"),
                            .written = hex("77 80808003 000000")}, // what it is not known to hold
                           [](MP4ObjectData& d) { EXPECT_TRUE(d.getDescriptors().empty()); }),
        row<ESDescriptor>({.name = "ESDescriptor",
                           .tag = 3,
                           .payload = hex({"0102",       // ES ID
                                           "B4",         // depends, no URL, clock; priority 20
                                           "0304",       // depends on
                                           "0506",       // clock stream
                                           "06 01 02"}), // sync layer
                           .written = hex({"03 8080800D", "0102 B4 0304 0506", "06 80808001 02"}),
                           .size = 13},
                          [](ESDescriptor& d) {
                              EXPECT_EQ(d.getES_ID(), 0x102);
                              EXPECT_EQ(d.getStreamDependenceFlag(), 1);
                              EXPECT_EQ(d.getURLFlag(), 0);
                              EXPECT_EQ(d.getOCRStreamFlag(), 1);
                              EXPECT_EQ(d.getStreamPriority(), 20);
                              EXPECT_EQ(d.getDependsOnES_ID(), 0x304);
                              EXPECT_EQ(d.getOCR_ES_ID(), 0x506);
                              EXPECT_TRUE(dynamic_cast<SLConfigDescriptor*>(d.getDescriptorTag(6)));
                          }),
        row<DecoderConfigDescriptor>({.name = "DecoderConfigDescriptor",
                                      .tag = 4,
                                      .payload = hex({"40",           // object type
                                                      "16",           // stream type 5, upstream, reserved 0
                                                      "012345",       // buffer
                                                      "00020000",     // highest and average bit rate
                                                      "0001F400",     //
                                                      "05 02 1210"}), // codec configuration
                                      .written = hex({"04 80808014", "40 17", // the reserved bit is set
                                                      "012345 00020000 0001F400", "05 80808002 1210"}),
                                      .size = 20},
                                     [](DecoderConfigDescriptor& d) {
                                         EXPECT_EQ(d.getObjectTypeIndication(), 0x40);
                                         EXPECT_EQ(d.getStreamType(), 5);
                                         EXPECT_EQ(d.getUpStream(), 1);
                                         EXPECT_EQ(d.getReserved(), 0);
                                         EXPECT_EQ(d.getBufferSizeDB(), 0x12345U);
                                         EXPECT_EQ(d.getMaxBitRate(), 131072U);
                                         EXPECT_EQ(d.getAvgBitRate(), 128000U);
                                         EXPECT_TRUE(
                                             dynamic_cast<DecoderSpecificInfo*>(d.getDescriptorTag(5)));
                                     }),
        row<DecoderSpecificInfo>({.name = "DecoderSpecificInfo",
                                  .tag = 5,
                                  .payload = hex("0102030405"),
                                  .written = hex("05 80808005 0102030405")},
                                 [](DecoderSpecificInfo& d) {
                                     ASSERT_EQ(d.getDecoderSpecificInfoSize(), 5U);
                                     EXPECT_EQ(d.getDecoderSpecificInfo()[4], 5);
                                 }),
        row<SLConfigDescriptor>({.name = "SLConfigDescriptor",
                                 .tag = 6,
                                 .payload = hex("02 AABB"),
                                 .written = hex("06 80808003 02 0000")}, // the rest is not kept
                                [](SLConfigDescriptor& d) { EXPECT_EQ(d.getPredefined(), 2); }),
        row<ESIDInc>({.name = "ESIDInc",
                      .tag = 0x0E,
                      .payload = hex("00000102"),
                      .written = hex("0E 80808004 00000102")},
                     [](ESIDInc& d) { EXPECT_EQ(d.getTrackID(), 0x102U); }),
        row<ESIDRef>(
            {.name = "ESIDRef", .tag = 0x0F, .payload = hex("0102"), .written = hex("0F 80808002 0102")},
            [](ESIDRef& d) { EXPECT_EQ(d.getESID(), 0x102U); }),
        row<InitialObjectDescriptor>({.name = "InitialObjectDescriptor",
                                      .tag = 2,
                                      .payload = hex({"00D0",             // ID 3, no URL, inline profiles
                                                      "01 02 03 04 05",   // profile levels
                                                      "0E 04 00000007"}), // a track
                                      .written = hex({"10 80808010", "00DF 01 02 03 04 05",
                                                      "0E 80808004 00000007"}),
                                      .size = 16},
                                     [](InitialObjectDescriptor& d) {
                                         EXPECT_EQ(d.getID(), 3);
                                         EXPECT_EQ(d.getURLFlag(), 0);
                                         EXPECT_EQ(d.getIncludeInlineProfileLevelFlag(), 1);
                                         EXPECT_EQ(d.getReserved(), 0);
                                         EXPECT_EQ(d.getODProfileLevelIndication(), 1);
                                         EXPECT_EQ(d.getSceneProfileLevelIndication(), 2);
                                         EXPECT_EQ(d.getAudioProfileLevelIndication(), 3);
                                         EXPECT_EQ(d.getVisualProfileLevelIndication(), 4);
                                         EXPECT_EQ(d.getGraphicsProfileLevelIndication(), 5);
                                         EXPECT_TRUE(dynamic_cast<ESIDInc*>(d.getDescriptorTag(0x0E)));
                                     }),
        row<ObjectDescriptor>({.name = "ObjectDescriptor",
                               .tag = 0x11,
                               .payload = hex({"0141",         // ID 5, no URL, reserved 1
                                               "11 02 0009"}), // a reference
                               .written = hex({"11 80808009", "015F", "0F 80808002 0009"}),
                               .size = 9},
                              [](ObjectDescriptor& d) {
                                  EXPECT_EQ(d.getID(), 5);
                                  EXPECT_EQ(d.getURLFlag(), 0);
                                  ASSERT_EQ(d.getDescriptors().size(), 1U);
                                  EXPECT_EQ(d.getDescriptors()[0]->getTag(), 0x11);
                                  EXPECT_EQ(dynamic_cast<ESIDRef&>(*d.getDescriptors()[0]).getESID(), 9U);
                              })),
    [](const testing::TestParamInfo<DescriptorRow>& one) { return std::string(one.param.name); });

} // namespace
} // namespace test
