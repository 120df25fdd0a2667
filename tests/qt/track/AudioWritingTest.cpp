// Preparing a sound track for writing.
#include "qt/track/DescriptionBytes.h"
#include "qt/track/WritingTree.h"

#include <base/CException.h>
#include <qt/QTTrack/QTAudioTrack.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

struct Tree : WritingTree<QTAudioTrack> {
    explicit Tree(QTMovieConstructionFlags flavour) : WritingTree(fourCC("audi"), flavour, new SMHD) {}

    void prepare(const char (&format)[5], unsigned int channels, unsigned short bits, double rate) {
        track.setDataFormat(fourCC(format));
        track.setChannels(channels);
        track.setBitsPerSample(bits);
        track.setSampleRate(rate);
        EXPECT_EQ(track.prepareForWriting(), 0);
    }
    Bytes body() const { return take(entry().getExtraData()->serialize()); }
};

constexpr char kRate[] = "AC440000"; // 44100

TEST(AudioWriting, HeadersOfAQuickTimeMovie) {
    Tree tree(kMOV);
    tree.mdhd->setTimeScale(0);
    tree.track.setDuration(2);
    tree.prepare("sowt", 2, 16, 44100);
    EXPECT_EQ(tree.mdhd->getTimeScale(), 44100U);
    EXPECT_EQ(tree.mdhd->getDuration(), 88200U);
    EXPECT_EQ(tree.mdhd->getLanguage(), 0);
    EXPECT_EQ(tree.handler->getComponentType(), fourCC("mhlr"));
    EXPECT_EQ(tree.handler->getComponentSubType(), fourCC("soun"));
    EXPECT_EQ(tree.handler->getComponentManufacturer(), fourCC("appl"));
    EXPECT_TRUE(tree.handler->getIsPascalString());
    EXPECT_EQ(tree.handlerName(), std::string("Apple Sound Media Handler\0", 26));
}

TEST(AudioWriting, HeadersOfA3GPPFile) {
    Tree tree(kAMC);
    tree.prepare("mp4a", 2, 16, 44100);
    EXPECT_EQ(tree.mdhd->getTimeScale(), 600U) << "what is set stays";
    EXPECT_EQ(tree.handler->getComponentType(), 0U);
    EXPECT_EQ(tree.handler->getComponentManufacturer(), 0U);
    EXPECT_FALSE(tree.handler->getIsPascalString());
    EXPECT_EQ(tree.handlerName(), std::string("Ketra Sound Media Handler\0", 26));
}

TEST(AudioWriting, PlainPCM) {
    const struct {
        const char (&format)[5];
        unsigned short bits;
        const char* written;
        const char* size;
    } kRows[] = {{"raw ", 8, "raw ", "0008"}, {"raw ", 16, "raw ", "0010"}, {"pc8U", 8, "raw ", "0008"},
                 {"pc8S", 8, "sowt", "0008"}, {"sowt", 16, "sowt", "0010"}, {"twos", 16, "twos", "0010"},
                 {"twos", 8, "twos", "0008"}, {"p16s", 16, "sowt", "0010"}, {"p16S", 16, "twos", "0010"}};
    for (const auto& row : kRows) {
        Tree tree(kMOV);
        tree.prepare(row.format, 2, row.bits, 44100);
        EXPECT_EQ(show(u32(tree.entry().getDataFormat())),
                  show(hex((std::string("'") + row.written + "'").c_str())));
        EXPECT_EQ(tree.body(),
                  hex("0000 0000 00000000 0002") + hex(row.size) + hex("0000 0000") + hex(kRate));
        EXPECT_EQ(tree.extensions(), hex("00000018 'chan' 00000000 00650002 00000000 00000000"));
    }
}

TEST(AudioWriting, PackedPCM) {
    const struct {
        const char (&format)[5];
        const char* written;
        const char* packets;
        const char* enda;
    } kRows[] = {{"in24", "'in24'", "00000001 00000003 00000006 00000002", "0000"},
                 {"p24s", "'in24'", "00000001 00000003 00000006 00000002", "0001"},
                 {"p24S", "'in24'", "00000001 00000003 00000006 00000002", "0000"},
                 {"p32s", "'in32'", "00000001 00000004 00000008 00000002", "0001"},
                 {"p32S", "'in32'", "00000001 00000004 00000008 00000002", "0000"},
                 {"f32l", "'fl32'", "00000001 00000004 00000008 00000002", "0001"},
                 {"f32b", "'fl32'", "00000001 00000004 00000008 00000002", "0000"},
                 {"f64l", "'fl64'", "00000001 00000008 00000010 00000002", "0001"},
                 {"f64b", "'fl64'", "00000001 00000008 00000010 00000002", "0000"}};
    for (const auto& row : kRows) {
        Tree tree(kMOV);
        tree.prepare(row.format, 2, 0, 44100);
        EXPECT_EQ(u32(tree.entry().getDataFormat()), hex(row.written));
        EXPECT_EQ(tree.body(), hex("0001 0000 00000000 0002 0010 0000 0000") + hex(kRate) + hex(row.packets));
        EXPECT_EQ(tree.extension("wave"), hex("00000026 'wave' 0000000C 'frma'") + hex(row.written) +
                                              hex("0000000A 'enda'") + hex(row.enda) +
                                              hex("00000008 00000000"));
    }
    Tree tree(kMOV);
    tree.track.setEndian(fourCC("lit "));
    tree.prepare("in32", 1, 32, 8000);
    EXPECT_EQ(tree.extension("wave").size(), 38U);
    EXPECT_EQ(tree.extension("wave")[29], 1); // as the track says
}

TEST(AudioWriting, LinearPCM) {
    Tree tree(kMOV);
    tree.track.setEndian(fourCC("lit "));
    tree.prepare("lpcm", 6, 24, 96000);
    EXPECT_EQ(tree.entry().getDataFormat(), fourCC("lpcm"));
    EXPECT_EQ(tree.body(),
              hex({"0002 0000 00000000 0003 0010 FFFE 0000 00010000", "00000048 40F7700000000000",
                   "00000006 7F000000 00000018 0000000C 00000012 00000001"}));
    EXPECT_EQ(tree.extension("wave"), Bytes());
    // What was written is read back.
    QTAudioTrack back;
    readDescription(back, "lpcm", tree.body());
    EXPECT_EQ(back.getSampleRate(), 96000.0);
    EXPECT_EQ(back.getChannels(), 6U);
    EXPECT_EQ(back.getSampleSize(), 24);
    EXPECT_EQ(back.getEndian(), fourCC("lit "));
}

TEST(AudioWriting, HighRatesNeedLinearPCM) {
    const struct {
        const char (&format)[5];
        const char* bitsAndFlags;
    } kRows[] = {{"sowt", "00000010 0000000C"}, {"twos", "00000010 0000000E"}, {"pc8U", "00000008 0000000A"},
                 {"f32l", "00000020 00000009"}, {"f64b", "00000040 0000000B"}, {"p24s", "00000018 0000000C"}};
    for (const auto& row : kRows) {
        Tree tree(kMOV);
        tree.prepare(row.format, 1, 16, 96000);
        EXPECT_EQ(tree.entry().getDataFormat(), fourCC("lpcm"));
        const Bytes body = tree.body();
        ASSERT_EQ(body.size(), 56U);
        EXPECT_EQ(Bytes(body.begin() + 40, body.begin() + 48), hex(row.bitsAndFlags)) << row.format;
    }
}

TEST(AudioWriting, PCMOutsideQuickTimeKeepsItsCode) {
    Tree tree(kMP4);
    tree.prepare("p24s", 2, 24, 48000);
    EXPECT_EQ(tree.entry().getDataFormat(), fourCC("in24"));
    EXPECT_EQ(tree.body(), hex("0000 0000 00000000 0002 0018 0000 0000 BB800000"));
    EXPECT_EQ(tree.extensions(), hex("0000000A 'enda' 0001")); // little-endian must be said
    Tree big(kMP4);
    big.prepare("p24S", 2, 24, 48000);
    EXPECT_EQ(big.extensions(), Bytes());
}

TEST(AudioWriting, ConstantSampleSizeOfPCM) {
    Tree tree(kMOV);
    tree.stts->addTimeToSample(new STTSData(1000, 1));
    tree.stts->addTimeToSample(new STTSData(24, 1));
    tree.stsz->addSampleSize(new STSZData(4000));
    tree.stsz->addSampleSize(new STSZData(96));
    tree.prepare("sowt", 2, 16, 44100);
    EXPECT_EQ(tree.stsz->getSampleSize(), 4U);
    EXPECT_EQ(tree.stsz->getNumberOfEntries(), 1024U);
    EXPECT_EQ(take(tree.stsz->serialize()), hex("00000014 'stsz' 00000000 00000004 00000400"));
    Tree aac(kMOV);
    aac.stts->addTimeToSample(new STTSData(1, 1024));
    aac.stsz->addSampleSize(new STSZData(4000));
    aac.prepare("mp4a", 2, 16, 44100);
    EXPECT_EQ(aac.stsz->getSampleSize(), 0U);
    EXPECT_EQ(aac.stsz->getNumberOfEntries(), 1U);
}

TEST(AudioWriting, FramesThatAreOneSampleEachKeepTheirSizes) {
    Tree tree(kMOV);
    tree.stts->addTimeToSample(new STTSData(2, 1));
    tree.stsz->addSampleSize(new STSZData(1024));
    tree.stsz->addSampleSize(new STSZData(96));
    tree.prepare("sowt", 2, 16, 44100);
    EXPECT_EQ(take(tree.stsz->serialize()),
              hex("0000001C 'stsz' 00000000 00000000 00000002 00000400 00000060"));
    Tree plain(kMOV); // one sample of both channels a frame
    plain.stts->addTimeToSample(new STTSData(2, 1));
    plain.stsz->addSampleSize(new STSZData(4));
    plain.stsz->addSampleSize(new STSZData(4));
    plain.prepare("sowt", 2, 16, 44100);
    EXPECT_EQ(plain.stsz->getSampleSize(), 4U);
}

TEST(AudioWriting, AACInQuickTime) {
    Tree tree(kMOV);
    tree.track.setDecoderSpecificInfo(frameOf({0x12, 0x10}));
    tree.prepare("mp4a", 2, 16, 44100);
    EXPECT_EQ(tree.body(), hex("0001 0000 00000000 0002 0010 FFFE 0000") + hex(kRate) +
                               hex("00000400 00000000 00000000 00000002"));
    const Bytes esds =
        hex({"00000033 'esds' 00000000", "03 80808022 0000 00", "04 80808014 40 15 000600 00000000 00000000",
             "05 80808002 1210", "06 80808001 02"});
    EXPECT_EQ(tree.extension("wave"), hex("0000005B 'wave' 0000000C 'frma' 'mp4a' 0000000C 'mp4a' 00000000") +
                                          esds + hex("00000008 00000000"));
    EXPECT_EQ(tree.extension("chan").size(), 24U);
    QTAudioTrack back;
    readDescription(back, "mp4a", tree.body() + tree.extensions());
    EXPECT_EQ(back.getSampleRate(), 44100.0);
    EXPECT_EQ(back.getChannels(), 2U);
    EXPECT_EQ(back.getSamplesPerPacket(), 1024U);
}

TEST(AudioWriting, AACElsewhere) {
    Tree tree(kMP4);
    tree.prepare("mp4a", 8, 16, 47000); // nearest rate: 48000
    EXPECT_EQ(tree.body(), hex("0000 0000 00000000 0008 0010 0000 0000 B7980000"));
    EXPECT_EQ(tree.extensions(), hex({"00000033 'esds' 00000000", "03 80808022 0000 00",
                                      "04 80808014 40 15 001800 00000000 00000000",
                                      "05 80808002 11B8", // built: low complexity, index 3, 7 for 8 channels
                                      "06 80808001 02"}));
}

TEST(AudioWriting, MPEGAudio) {
    const struct {
        const char (&format)[5];
        double rate;
        unsigned char objectType;
    } kRows[] = {{"mp1a", 44100, 0x6B}, {"mp2a", 44100, 0x69}, {"mp3a", 44100, 0x6B},
                 {".mp3", 32000, 0x6B}, {".mp3", 24000, 0x69}, {"mp4a", 44100, 0x40}};
    for (const auto& row : kRows) {
        Tree tree(kMP4);
        tree.track.setDecoderSpecificInfo(frameOf({0x12, 0x10}));
        tree.prepare(row.format, 2, 16, row.rate);
        EXPECT_EQ(tree.entry().getDataFormat(), fourCC("mp4a"));
        const Bytes esds = tree.extension("esds");
        ASSERT_EQ(esds.size(), row.objectType == 0x40 ? 51U : 44U) << row.format;
        EXPECT_EQ(esds[25], row.objectType) << row.format;
    }
    Tree mov(kMOV);
    mov.prepare(".mp3", 2, 16, 44100);
    EXPECT_EQ(mov.entry().getDataFormat(), fourCC(".mp3"));
    EXPECT_EQ(mov.extension("wave"), hex("0000001C 'wave' 0000000C 'frma' '.mp3' 00000008 00000000"));
    EXPECT_EQ(mov.body(), hex("0001 0000 00000000 0002 0010 FFFE 0000") + hex(kRate) +
                              hex("00000480 00000000 00000000 00000002"));
}

TEST(AudioWriting, ALAC) {
    const Bytes config = hex("00001000 00 10 28 0A 0E 02 00FF 00000000 00000000 0000AC44");
    for (const Bytes& given :
         {config, hex("00000000") + config, atom("alac", hex("00000000") + config), Bytes{1}}) {
        Tree tree(kMP4);
        tree.track.setDecoderSpecificInfo(frameOf(given));
        tree.prepare("alac", 2, 16, 44100);
        EXPECT_EQ(tree.extensions(), hex("00000024 'alac' 00000000") + config);
    }
    Tree mov(kMOV);
    mov.prepare("alac", 2, 16, 44100);
    EXPECT_EQ(mov.extension("wave"), hex("00000040 'wave' 0000000C 'frma' 'alac' 00000024 'alac' 00000000") +
                                         config + hex("00000008 00000000"));
    const Bytes body = mov.body();
    EXPECT_EQ(Bytes(body.begin() + 20, body.end()), hex("00001000 00000000 00000000 00000002"));
}

TEST(AudioWriting, QDM2) {
    Tree tree(kMOV);
    tree.track.setDecoderSpecificInfo(frameOf(atom("QDCA", {1})));
    tree.track.setSamplesPerPacket(2048);
    tree.prepare("QDM2", 2, 16, 44100);
    EXPECT_EQ(tree.extension("wave"),
              hex("00000025 'wave' 0000000C 'frma' 'QDM2' 00000009 'QDCA' 01 00000008 00000000"));
    EXPECT_EQ(tree.description<STSDAudio>().getSamplesPerPacket(), 2048U);
    Tree none(kMP4);
    none.prepare("QDM2", 2, 16, 44100);
    EXPECT_EQ(none.extensions(), Bytes());
}

TEST(AudioWriting, AMR) {
    const struct {
        const char (&format)[5];
        const char* rate;
        const char* modes;
    } kRows[] = {{"samr", "1F400000", "81FF"},
                 {"amrn", "1F400000", "81FF"},
                 {"sawb", "3E800000", "83FF"},
                 {"amrw", "3E800000", "83FF"}};
    for (const auto& row : kRows) {
        Tree tree(k3GP);
        tree.prepare(row.format, 1, 8, 8000);
        const bool wide = row.rate[0] == '3';
        EXPECT_EQ(tree.entry().getDataFormat(), wide ? fourCC("sawb") : fourCC("samr"));
        EXPECT_EQ(tree.body(), hex("0000 0000 00000000 0002 0010 0000 0000") + hex(row.rate));
        EXPECT_EQ(tree.extensions(), hex("00000011 'damr' 'KETR' 00") + hex(row.modes) + hex("00 01"));
    }
    Tree mode(kMOV);
    mode.track.setAMRMode(0x80);
    mode.track.setSamplesPerPacket(10);
    mode.prepare("samr", 1, 8, 8000);
    EXPECT_EQ(mode.extensions(), hex("00000011 'damr' 'KETR' 00 0080 00 0A"));
}

TEST(AudioWriting, SpeechOf3GPP2) {
    Tree qcelp(k3G2);
    qcelp.prepare("sqcp", 1, 16, 8000);
    EXPECT_EQ(qcelp.extensions(), hex("0000000E 'dqcp' 'KETR' 00 01"));
    Tree evrc(k3G2);
    evrc.track.setSamplesPerPacket(3);
    evrc.prepare("sevc", 1, 16, 8000);
    EXPECT_EQ(evrc.extensions(), hex("0000000E 'devc' 'KETR' 00 03"));
}

TEST(AudioWriting, SpeechCodecsAreBoundToTheirFiles) {
    const struct {
        const char (&format)[5];
        QTMovieConstructionFlags flavour;
        const char* message; // null: allowed
    } kRows[] = {{"samr", kMP4, "AMR not allowed in MP4-files."},
                 {"sawb", kMP4, "AMR not allowed in MP4-files."},
                 {"amrn", kMP4, "AMR not allowed in MP4-files."},
                 {"amrw", kMP4, "AMR not allowed in MP4-files."},
                 {"samr", kM4A, nullptr},
                 {"samr", kMOV, nullptr},
                 {"sqcp", k3GP, "QCELP only allowed i 3GPP2-files"},
                 {"sqcp", kMOV, "QCELP only allowed i 3GPP2-files"},
                 {"sevc", k3GP, "*** ERROR ****: Incorrect setting, EVRC only allowed in 3gpp2"},
                 {"sevc", kMOV, "*** ERROR ****: Incorrect setting, EVRC only allowed in 3gpp2"}};
    for (const auto& row : kRows) {
        Tree tree(row.flavour);
        tree.track.setDataFormat(fourCC(row.format));
        try {
            tree.track.prepareForWriting();
            EXPECT_EQ(row.message, nullptr) << row.format;
        } catch (const Ketra::CException& e) {
            ASSERT_TRUE(row.message) << row.format;
            EXPECT_TRUE(e.getMessage() == row.message);
            EXPECT_TRUE(e.getFunction() == "Ketra::QT::QTAudioTrack::prepareForWriting");
        }
    }
}

TEST(AudioWriting, UnknownFormatsKeepTheirCode) {
    Tree tree(kMOV);
    tree.prepare("abcd", 2, 12, 44100);
    EXPECT_EQ(tree.entry().getDataFormat(), fourCC("abcd"));
    EXPECT_EQ(tree.body(), hex("0000 0000 00000000 0002 000C 0000 0000") + hex(kRate));
    EXPECT_EQ(tree.extensions(), Bytes());
}

TEST(AudioWriting, LayoutOfChannels) {
    const char* kTags[] = {"00640001", "00650002", "00710003", "00730004",
                           "00750005", "00790006", "007D0007", "007F0008"};
    for (unsigned int channels = 1; channels <= 8; ++channels) {
        Tree tree(kMOV);
        tree.prepare("twos", channels, 16, 44100);
        EXPECT_EQ(tree.extension("chan"),
                  hex("00000018 'chan' 00000000") + hex(kTags[channels - 1]) + hex("00000000 00000000"));
    }
    Tree many(kMOV);
    many.prepare("twos", 9, 16, 44100);
    EXPECT_EQ(many.extension("chan"), Bytes());
}

TEST(AudioWriting, PreparingTwiceDoesNotDoubleTheExtensions) {
    Tree tree(kMOV);
    tree.prepare("mp4a", 2, 16, 44100);
    const Bytes first = tree.extensions();
    tree.prepare("mp4a", 2, 16, 44100);
    EXPECT_EQ(tree.extensions(), first);
}

TEST(AudioWriting, RateBecomesTheTimeScaleWhileThatIsZero) {
    Tree tree(kMOV);
    tree.mdhd->setTimeScale(0);
    tree.track.setSampleRate(0.5);
    EXPECT_EQ(tree.mdhd->getTimeScale(), 0U);
    tree.track.setSampleRate(22050.7);
    EXPECT_EQ(tree.mdhd->getTimeScale(), 22050U);
    tree.track.setSampleRate(8000);
    EXPECT_EQ(tree.mdhd->getTimeScale(), 22050U);
}

TEST(AudioWriting, TrackWithoutATreeIsPrepared) {
    QTAudioTrack track;
    track.setDataFormat(fourCC("sowt"));
    EXPECT_EQ(track.prepareForWriting(), 0);
}

} // namespace
} // namespace test
