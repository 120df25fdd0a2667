#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms.h>

namespace test {
namespace {

using namespace Ketra::QT;

const Bytes kVisualFields = hex({"FFFFFFFFFFFF",                      // reserved
                                 "0002",                              // data reference index
                                 "0102030405060708 090A0B0C0D0E0F10", // reserved
                                 "00B0 0090",                         // 176 x 144
                                 "00480000 00490000",                 // resolutions
                                 "00000007",                          // reserved
                                 "0001",                              // frame count
                                 "04 'name' 00000000000000 0000000000000000 0000000000000000 00000000",
                                 "0018 FFFF"}); // depth, pre-defined
const Bytes kVisualWritten =
    hex("0F0F0F0F0F0F") + Bytes(kVisualFields.begin() + 6, kVisualFields.end()); // four bits a byte

const Bytes kAudioFields = hex({"000000000000",     // reserved
                                "0003",             // data reference index
                                "1112131415161718", // reserved
                                "0001 0008",        // channels, sample size
                                "00000009",         // reserved
                                "1F40 8000"});      // 8000.5 hertz

template <class Entry>
void expectVisual(const Entry& a) {
    EXPECT_EQ(a.getDataReferenceIndex(), 2);
    EXPECT_EQ(a.getMaxWidth(), 176);
    EXPECT_EQ(a.getMaxHeight(), 144);
}

template <class Entry>
void expectAudio(const Entry& a) {
    EXPECT_EQ(a.getDataReferenceIndex(), 3);
    EXPECT_EQ(a.getChannelCount(), 1);
    EXPECT_EQ(a.getSampleSize(), 8);
    EXPECT_EQ(a.getTimeScale(), 8000);
}

const RowList kRows({
    row<MP4V>({.name = "MP4V",
               .file = hex("00000066 'mp4v'") + kVisualFields + hex("00000010 'esds' 00000000 03800000"),
               .written = hex("00000062 'mp4v'") + kVisualWritten + hex("0000000C 'esds' 00000000"),
               .sizeAfterUpdate = 98,
               .blankSize = 86},
              [](MP4V& a) {
                  expectVisual(a);
                  ASSERT_TRUE(dynamic_cast<ESDS*>(a.getESDS()));
              }),
    row<S263>({.name = "S263",
               .file = hex("00000065 's263'") + kVisualFields + hex("0000000F 'd263' 'abcd' 01 0A 03"),
               .written = hex("00000065 's263'") + kVisualWritten + hex("0000000F 'd263' 'abcd' 01 0A 03"),
               .blankSize = 86},
              [](S263& a) {
                  expectVisual(a);
                  auto* config = dynamic_cast<D263*>(a.getD263());
                  ASSERT_TRUE(config);
                  EXPECT_EQ(config->getH263Level(), 10);
              }),
    row<MP4A>({.name = "MP4A",
               .file = hex("00000034 'mp4a'") + kAudioFields + hex("00000010 'esds' 00000000 03800000"),
               .written = kAudioFields + hex("0000000C 'esds' 00000000 0000000000000000"), // no header
               .sizeAfterUpdate = 48,
               .blankSize = 36},
              [](MP4A& a) {
                  expectAudio(a);
                  ASSERT_TRUE(dynamic_cast<ESDS*>(a.getESDS()));
              }),
    row<SAMR>({.name = "SAMR",
               .file = hex("00000035 'samr'") + kAudioFields + hex("00000011 'damr' 'abcd' 01 81FF 02 03"),
               .blankSize = 36},
              [](SAMR& a) {
                  expectAudio(a);
                  auto* config = dynamic_cast<DAMR*>(a.getDamr());
                  ASSERT_TRUE(config);
                  EXPECT_EQ(config->getFramesPerSample(), 3);
              }),
    row<MP4S>({.name = "MP4S",
               .file = hex("00000018 'mp4s' 00000010 'esds' 00000000 03800000"),
               .written = hex("0000000C 'esds' 00000000 0000000000000000"), // no header
               .sizeAfterUpdate = 20,
               .blankSize = 8},
              [](MP4S& a) { ASSERT_TRUE(dynamic_cast<ESDS*>(a.getESDS())); }),
    row<DAMR>({.name = "DAMR",
               .file = hex({"00000011 'damr'", // size, type
                            "'abcd'",          // vendor
                            "01",              // decoder version
                            "81FF",            // mode set
                            "02",              // mode change period
                            "03"}),            // frames per sample
               .blankSize = 17},
              [](DAMR& a) {
                  EXPECT_EQ(a.getVendor(), fourCC("abcd"));
                  EXPECT_EQ(a.getDecoderVersion(), 1);
                  EXPECT_EQ(a.getModeSet(), 0x81FF);
                  EXPECT_EQ(a.getModeChangePeriod(), 2);
                  EXPECT_EQ(a.getFramesPerSample(), 3);
              }),
    row<D263>({.name = "D263",
               .file = hex({"0000000F 'd263'", // size, type
                            "'abcd'",          // vendor
                            "01",              // decoder version
                            "0A",              // level
                            "03"}),            // profile
               .blankSize = 15},
              [](D263& a) {
                  EXPECT_EQ(a.getVendor(), fourCC("abcd"));
                  EXPECT_EQ(a.getDecoderVersion(), 1);
                  EXPECT_EQ(a.getH263Level(), 10);
                  EXPECT_EQ(a.getH263Profile(), 3);
              }),
});

TEST(CodecEntries, DefaultsAreWritten) {
    MP4V video;
    EXPECT_EQ(video.updateSize(), 86U);
    EXPECT_EQ(take(video.serialize()),
              hex({"00000056 'mp4v'", "000000000000 0001", "0000000000000000 0000000000000000", "0140 00F0",
                   "00480000 00480000", "00000000 0001"}) +
                  repeat(0, 32) + hex("0018 FFFF"));
    MP4A audio;
    EXPECT_EQ(audio.getChannelCount(), 2);
    EXPECT_EQ(audio.getSampleSize(), 16);
    EXPECT_EQ(audio.getTimeScale(), 0);
    EXPECT_EQ(take(audio.serialize()), hex({"000000000000 0001 0000000000000000", "0002 0010 00000000",
                                            "0000 0000", "0000000000000000"}));
}

TEST(CodecEntries, SettersChangeWhatIsWritten) {
    SAMR audio;
    audio.setDataReferenceIndex(2);
    audio.setTimeScale(8000);
    EXPECT_EQ(take(audio.serialize()), hex({"00000024 'samr'", "000000000000 0002 0000000000000000",
                                            "0002 0010 00000000", "1F40 0000"}));
    S263 video;
    video.setDataReferenceIndex(3);
    video.setMaxWidth(4);
    video.setMaxHeight(5);
    EXPECT_EQ(video.getDataReferenceIndex(), 3);
    const Bytes bytes = take(video.serialize());
    EXPECT_EQ(Bytes(bytes.begin() + 32, bytes.begin() + 36), hex("0004 0005"));
    DAMR damr;
    damr.setVendor(1);
    damr.setDecoderVersion(2);
    damr.setModeSet(3);
    damr.setModeChangePeriod(4);
    damr.setFramesPerSample(5);
    EXPECT_EQ(take(damr.serialize()), hex("00000011 'damr' 00000001 02 0003 04 05"));
    D263 d263;
    d263.setVendor(1);
    d263.setDecoderVersion(2);
    d263.setH263Level(3);
    d263.setH263Profile(4);
    EXPECT_EQ(take(d263.serialize()), hex("0000000F 'd263' 00000001 02 03 04"));
}

TEST(CodecEntries, AnotherAtomBehindThemIsLeftToTheReader) {
    AtomFile file(hex("00000024 'samr'") + kAudioFields + hex("0000000C 'abcd' 00000000"));
    const auto entry = file.parse<SAMR>();
    EXPECT_EQ(entry->getDamr(), nullptr);
    const auto next = file.header();
    ASSERT_TRUE(next);
    EXPECT_EQ(next->getType(), fourCC("abcd"));
    EXPECT_EQ(next->getOffset(), 36U);
    EXPECT_EQ(entry->updateSize(), 36U);
}

TEST(CodecEntries, SystemsEntryOfAFileHasNoConfiguration) {
    // The fields in front of the configuration are not known: they look like a header of no size.
    AtomFile file(hex("00000020 'mp4s' 000000000000 0001 00000010 'esds' 00000000 03800000"));
    int result = -1;
    const auto entry = file.parse<MP4S>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(entry->getESDS(), nullptr);
    EXPECT_EQ(file.position(), 8);
}

TEST(CodecEntries, InsideTheSampleTableAllAreVisual) {
    for (const char* type : {"'mp4a'", "'mp4v'", "'mp4s'"}) {
        AtomFile file(atom("stbl", hex("00000056") + hex(type) + kVisualFields));
        int result = -1;
        const auto stbl = file.parse<STBL>(&result);
        EXPECT_EQ(result, 0);
        ASSERT_EQ(stbl->getChildren().size(), 1U);
        auto* entry = dynamic_cast<MP4V*>(stbl->getChildren()[0]);
        ASSERT_TRUE(entry);
        expectVisual(*entry);
    }
}

TEST(CodecEntries, OwnTheirConfiguration) {
    MP4V entry;
    auto* first = new ESDS;
    EXPECT_EQ(entry.setESDS(first), 0);
    EXPECT_EQ(entry.setESDS(first), 0); // the one it holds
    EXPECT_EQ(entry.updateSize(), 98U);
    {
        MP4V copy(entry);
        EXPECT_EQ(copy.getESDS(), first);
        copy.setESDS(new ESDS);
        EXPECT_EQ(entry.getESDS(), first);
    }
    entry.setESDS(new ESDS);
    entry.setESDS(nullptr);
    EXPECT_EQ(entry.updateSize(), 86U);
}

TEST(CodecEntries, ConfigurationOfH263IsReadFromBytes) {
    Bytes bytes = hex("'abcd' 01 0A 03 FF");
    unsigned char* cursor = bytes.data();
    D263 config;
    EXPECT_EQ(config.getInfo(&cursor), 0);
    EXPECT_EQ(cursor - bytes.data(), 7);
    EXPECT_EQ(config.getH263Level(), 10);
    EXPECT_EQ(config.getH263Profile(), 3);
}

} // namespace
} // namespace test
