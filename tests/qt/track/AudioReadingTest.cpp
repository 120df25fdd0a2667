// Reading the sound sample descriptions.
#include "qt/track/DescriptionBytes.h"

#include <base/CException.h>
#include <qt/QTAtoms.h>
#include <qt/QTTrack/QTAudioTrack.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

/// The 20 bytes that every sound description has.
Bytes body(unsigned int version, unsigned int channels, unsigned int bits, unsigned int rate) {
    return u16(version) + hex("0002 'appl'") + u16(channels) + u16(bits) + hex("FFFE 0007") + u32(rate);
}

Bytes packets(unsigned int samples, unsigned int packet, unsigned int frame, unsigned int sample) {
    return u32(samples) + u32(packet) + u32(frame) + u32(sample);
}

Bytes esds(const char* objectType, const Bytes& info) {
    const Bytes specific = info.empty() ? Bytes() : Bytes{5, static_cast<unsigned char>(info.size())} + info;
    const auto configSize = static_cast<unsigned char>(13 + specific.size());
    const auto streamSize = static_cast<unsigned char>(3 + 2 + configSize);
    return atom("esds", hex("00000000 03") + Bytes{streamSize} + hex("0001 00 04") + Bytes{configSize} +
                            hex(objectType) + hex("15 000000 00000000 00000000") + specific);
}

std::unique_ptr<QTAudioTrack> audio(const char (&format)[5], const Bytes& bytes) {
    auto track = std::make_unique<QTAudioTrack>();
    readDescription(*track, format, bytes);
    return track;
}

constexpr unsigned int kRate = 44100U << 16;

TEST(AudioReading, VersionZero) {
    const auto table = readTable(1, entryBytes("sowt", body(0, 2, 16, kRate)));
    QTAudioTrack track;
    EXPECT_EQ(track.parseStsd(table.get()), 0);
    EXPECT_EQ(track.getVersion(), 0);
    EXPECT_EQ(track.getRevisionLevel(), 2);
    EXPECT_EQ(track.getVendor(), fourCC("appl"));
    EXPECT_EQ(track.getChannels(), 2U);
    EXPECT_EQ(track.getSampleSize(), 16);
    EXPECT_EQ(track.getCompressionID(), -2);
    EXPECT_EQ(track.getSampleRate(), 44100.0);
    EXPECT_EQ(track.getBytesPerSample(), 2U);
    EXPECT_EQ(track.getBytesPerPacket(), 2U);
    EXPECT_EQ(track.getSamplesPerPacket(), 1U);
    EXPECT_EQ(track.getBytesPerFrame(), 0U);
    EXPECT_EQ(track.getDataFormat(), fourCC("sowt"));
    EXPECT_EQ(track.getEndian(), 0U);
    EXPECT_TRUE(track.getStsdContainsExtensions()); // 36 bytes are more than 22
    auto* description = dynamic_cast<STSDAudio*>(table->getSampleDescriptionData(0)->getExtraData());
    ASSERT_TRUE(description);
    EXPECT_EQ(description->getChannels(), 2U);
    EXPECT_EQ(description->getPacketSize(), 7);
    EXPECT_EQ(description->getSamplesPerPacket(), 1U);
    EXPECT_EQ(description->getBytesPerPacket(), 2U);
    EXPECT_EQ(take(description->serialize()), body(0, 2, 16, kRate));
}

TEST(AudioReading, RateFractionOfAllOnesAddsOne) {
    EXPECT_EQ(audio("sowt", body(0, 2, 16, 0xAC44FFFF))->getSampleRate(), 44101.0);
    EXPECT_EQ(audio("sowt", body(0, 2, 16, 0xAC448000))->getSampleRate(), 44100.0);
}

TEST(AudioReading, VersionOneHasPackets) {
    const Bytes bytes = body(1, 2, 16, kRate) + packets(1024, 3, 4, 5);
    const auto table = readTable(1, entryBytes("mp4a", bytes));
    QTAudioTrack track;
    track.parseStsd(table.get());
    EXPECT_EQ(track.getSamplesPerPacket(), 1024U);
    EXPECT_EQ(track.getBytesPerPacket(), 3U);
    EXPECT_EQ(track.getBytesPerFrame(), 4U);
    EXPECT_EQ(track.getBytesPerSample(), 5U);
    EXPECT_EQ(take(table->getSampleDescriptionData(0)->getExtraData()->serialize()), bytes);
    EXPECT_EQ(audio("mp4a", body(1, 2, 24, kRate) + packets(1, 3, 6, 0))->getBytesPerSample(), 3U);
}

Bytes wide(unsigned int bits, unsigned int flags, unsigned int packet, unsigned int samples) {
    return body(2, 3, 16, 0x00010000) + u32(72) + hex("40F7700000000000") + u32(6) + hex("7F000000") +
           u32(bits) + u32(flags) + u32(packet) + u32(samples);
}

TEST(AudioReading, VersionTwoOfLinearPCM) {
    const auto table = readTable(1, entryBytes("lpcm", wide(24, 0x0C, 18, 1)));
    QTAudioTrack track;
    track.parseStsd(table.get());
    EXPECT_EQ(track.getSampleRate(), 96000.0);
    EXPECT_EQ(track.getChannels(), 6U);
    EXPECT_EQ(track.getSampleSize(), 24);
    EXPECT_EQ(track.getBytesPerSample(), 3U);
    EXPECT_EQ(track.getBytesPerPacket(), 18U);
    EXPECT_EQ(track.getSamplesPerPacket(), 1U);
    EXPECT_EQ(track.getEndian(), fourCC("lit "));
    EXPECT_EQ(audio("lpcm", wide(24, 0x0E, 18, 1))->getEndian(), fourCC("big "));
    Bytes written = take(table->getSampleDescriptionData(0)->getExtraData()->serialize());
    const Bytes read = wide(24, 0x0C, 18, 1);
    EXPECT_EQ(Bytes(written.begin() + 16, written.end()), Bytes(read.begin() + 16, read.end()));
}

TEST(AudioReading, VersionTwoOfAnythingElse) {
    const auto track = audio("abcd", wide(24, 2, 18, 7));
    EXPECT_EQ(track->getSampleSize(), 16);
    EXPECT_EQ(track->getBytesPerSample(), 2U);
    EXPECT_EQ(track->getBytesPerPacket(), 12U); // two bytes a channel
    EXPECT_EQ(track->getSamplesPerPacket(), 1U);
    EXPECT_EQ(track->getEndian(), 0U);
}

TEST(AudioReading, VersionThreeIsReadLikeZero) {
    const auto track = audio("abcd", body(3, 2, 8, kRate) + atom("enda", {0, 1}));
    EXPECT_EQ(track->getVersion(), 3);
    EXPECT_EQ(track->getBytesPerPacket(), 1U);
    EXPECT_EQ(track->getEndian(), fourCC("lit "));
}

TEST(AudioReading, TwentyFourBits) {
    const auto track = audio("in24", body(1, 2, 16, kRate) + packets(1, 3, 6, 2) +
                                         atom("wave", atom("frma", hex("'in24'")) + atom("enda", {0, 1}) +
                                                          hex("00000008 00000000")));
    EXPECT_EQ(track->getSampleSize(), 24);
    EXPECT_EQ(track->getBytesPerSample(), 3U);
    EXPECT_EQ(track->getEndian(), fourCC("lit "));
    EXPECT_EQ(audio("in24", body(0, 2, 16, kRate) + atom("enda", {0, 0}))->getEndian(), fourCC("big "));
    EXPECT_EQ(audio("in24", body(0, 2, 16, kRate) + atom("enda", {0, 2}))->getEndian(), fourCC("big "));
    EXPECT_EQ(audio("in24", body(0, 2, 16, kRate) + atom("enda", {0}))->getEndian(), 0U);
}

TEST(AudioReading, LastOfSeveralStands) {
    const auto table = readTable(
        2, join({entryBytes("sowt", body(0, 2, 16, kRate)), entryBytes("twos", body(0, 1, 8, 8000U << 16))}));
    QTAudioTrack track;
    track.parseStsd(table.get());
    EXPECT_EQ(track.getChannels(), 1U);
    EXPECT_EQ(track.getDataFormat(), fourCC("twos"));
    EXPECT_TRUE(dynamic_cast<STSDAudio*>(table->getSampleDescriptionData(0)->getExtraData()));
    EXPECT_TRUE(dynamic_cast<STSDAudio*>(table->getSampleDescriptionData(1)->getExtraData()));
}

TEST(AudioReading, WrongCountIsAnError) {
    const auto table = readTable(2, entryBytes("sowt", body(0, 2, 16, kRate)));
    QTAudioTrack track;
    try {
        track.parseStsd(table.get());
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_TRUE(e.getMessage() ==
                    "Not a correct number of descriptions in the descriptionsvector 1 should be 2");
        EXPECT_TRUE(e.getFunction() == "Ketra::QT::QTAudioTrack::parseStsd");
    }
    EXPECT_EQ(track.parseStsd(nullptr), -1);
}

TEST(AudioReading, MPEG4Configuration) {
    const struct {
        Bytes info;
        double rate;
        unsigned int channels;
    } kRows[] = {{{0x12, 0x10}, 44100, 2}, {{0x11, 0x90}, 48000, 2},
                 {{0x11, 0xB8}, 48000, 8}, {{0x16, 0x08}, 7350, 1},  // index 12
                 {{0x16, 0x88}, 22050, 1}, {{0x17, 0x88}, 22050, 1}, // 13 and 15 leave the rate
                 {{0x12, 0x00}, 44100, 6}, // no channel configuration leaves the channels
                 {{0x12}, 22050, 6}};
    for (const auto& row : kRows) {
        const auto track = audio("mp4a", body(0, 6, 16, 22050U << 16) + esds("40", row.info));
        EXPECT_EQ(track->getSampleRate(), row.rate) << show(row.info);
        EXPECT_EQ(track->getChannels(), row.channels) << show(row.info);
        ASSERT_TRUE(track->getDecoderSpecificInfo());
        EXPECT_EQ(track->getDecoderSpecificInfo()->getDataLength(), row.info.size());
        EXPECT_TRUE(track->getESDS());
    }
    const auto none = audio("mp4a", body(0, 6, 16, kRate) + esds("40", {}));
    EXPECT_EQ(none->getDecoderSpecificInfo(), nullptr);
    EXPECT_EQ(none->getChannels(), 6U);
}

TEST(AudioReading, ObjectTypesOfMPEGAudio) {
    const auto mpeg1 = audio("mp4a", body(0, 2, 16, kRate) + esds("6B", {0x11, 0x90}));
    EXPECT_EQ(mpeg1->getDataFormat(), fourCC("mp1a"));
    EXPECT_EQ(mpeg1->getDecoderSpecificInfo(), nullptr);
    EXPECT_EQ(mpeg1->getSampleRate(), 44100.0);
    EXPECT_EQ(audio("mp4a", body(0, 2, 16, kRate) + esds("69", {}))->getDataFormat(), fourCC("mp2a"));
}

TEST(AudioReading, QCELPInMPEG4) {
    const auto track = audio("mp4a", body(0, 2, 8, kRate) + esds("E1", hex("'QLCM' 00")));
    EXPECT_EQ(track->getDataFormat(), fourCC("sqcp"));
    EXPECT_EQ(track->getSampleSize(), 16);
    EXPECT_EQ(track->getChannels(), 1U);
    EXPECT_EQ(track->getSampleRate(), 8000.0);
    EXPECT_EQ(audio("mp4a", body(0, 2, 8, kRate) + esds("E1", hex("'QLC'")))->getDataFormat(),
              fourCC("mp4a"));
}

TEST(AudioReading, InsideWave) {
    const auto track =
        audio("mp4a", body(1, 2, 16, kRate) + packets(1024, 0, 0, 2) +
                          atom("wave", atom("frma", hex("'mp4a'")) + atom("mp4a", u32(0)) +
                                           esds("40", {0x11, 0x90}) + hex("00000008 00000000")) +
                          atom("enda", {0, 1}));
    EXPECT_EQ(track->getSampleRate(), 48000.0);
    EXPECT_EQ(track->getEndian(), 0U); // the terminator ends the walk
    // Without a terminator what follows the wave is seen.
    const auto open = audio("abcd", body(0, 2, 16, kRate) + atom("wave", atom("frma", hex("'abcd'"))) +
                                        atom("enda", {0, 1}));
    EXPECT_EQ(open->getEndian(), fourCC("lit "));
    const auto nested =
        audio("abcd", body(0, 2, 16, kRate) + atom("wave", atom("wave", atom("enda", {0, 1}))));
    EXPECT_EQ(nested->getEndian(), fourCC("lit "));
}

TEST(AudioReading, SpeechCodecs) {
    const auto samr = audio("samr", body(0, 2, 16, kRate) + atom("damr", hex("'abcd' 01 81FF 00 0A")));
    EXPECT_EQ(samr->getSamplesPerPacket(), 10U);
    EXPECT_EQ(samr->getSampleSize(), 8);
    EXPECT_EQ(samr->getChannels(), 1U);
    EXPECT_EQ(samr->getSampleRate(), 8000.0);
    const auto sawb = audio("sawb", body(0, 2, 8, kRate) + atom("damr", hex("'abcd' 01 83FF 00 01")));
    EXPECT_EQ(sawb->getSampleSize(), 16);
    EXPECT_EQ(sawb->getSampleRate(), 16000.0);
    EXPECT_EQ(audio("samr", body(0, 2, 16, kRate) + atom("damr", hex("'abcd' 01")))->getChannels(), 2U);
    for (const Bytes& child : {atom("dqcp", {}), atom("sqcp", {1})}) {
        const auto track = audio("abcd", body(0, 2, 8, kRate) + child);
        EXPECT_EQ(track->getDataFormat(), fourCC("sqcp"));
        EXPECT_EQ(track->getSampleSize(), 16);
        EXPECT_EQ(track->getChannels(), 1U);
        EXPECT_EQ(track->getSampleRate(), 8000.0);
    }
    for (const Bytes& child : {atom("devc", {}), atom("sevc", {1})}) {
        EXPECT_EQ(audio("abcd", body(0, 2, 8, kRate) + child)->getDataFormat(), fourCC("sevc"));
    }
}

TEST(AudioReading, EveryTruncationAndByteIsRead) {
    const Bytes bytes = body(1, 2, 16, kRate) + packets(1024, 0, 0, 2) +
                        atom("wave", atom("frma", hex("'mp4a'")) + esds("40", {0x11, 0x90}) +
                                         atom("enda", {0, 1}) + atom("damr", hex("'abcd' 01 81FF 00 0A"))) +
                        atom("dqcp", {});
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        audio("mp4a", Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)));
    }
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x02, 0x7F, 0x80, 0xFF}) {
            Bytes changed = bytes;
            changed[at] = static_cast<unsigned char>(value);
            audio("mp4a", changed);
        }
    }
}

TEST(AudioTrack, Defaults) {
    QTAudioTrack track;
    EXPECT_EQ(track.getType(), fourCC("audi"));
    EXPECT_EQ(track.getSwitchSize(), 0);
    track.setBitsPerSample(16);
    EXPECT_EQ(track.getBytesPerSample(), 2U);
    track.setDataFormat(fourCC("in24"));
    EXPECT_EQ(track.getBytesPerSample(), 3U);
    track.setBytesPerSample(5);
    EXPECT_EQ(track.getBytesPerSample(), 5U);
    QTAudioTrack copy(track);
    EXPECT_EQ(copy.getBytesPerSample(), 5U);
    EXPECT_EQ(copy.getDataFormat(), fourCC("in24"));
}

} // namespace
} // namespace test
