#include "support/TrackTree.h"

#include <base/CException.h>
#include <qt/QTRTPPacket.h>

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>

namespace test {
namespace {

using Ketra::CString;
using namespace Ketra::QT;

QTRTPPacket* packet(unsigned short size) {
    auto* made = new QTRTPPacket;
    made->setData(size, static_cast<unsigned char*>(std::calloc(size, 1)));
    return made;
}

/// A tree with user data, "hnti", "hinf" and the hint media header.
struct HintTree : WritingTree {
    HNTI* session = nullptr;
    HINF* statistics = nullptr;
    HMHD* hintHeader = nullptr;

    explicit HintTree(unsigned int mediaType) : WritingTree(mediaType) {
        addUserData();
        session = add<HNTI>(*userData);
        statistics = add<HINF>(*userData);
        hintHeader = add<HMHD>(*information);
    }
    /// The text of the n-th session description.
    std::string text(unsigned int n = 0) const {
        const QTDataAtom* atom = session->getDataAtom(n);
        if (!atom) return "none";
        EXPECT_EQ(atom->getType(), fourCC("sdp "));
        return std::string(reinterpret_cast<char*>(atom->getData()),
                           static_cast<std::size_t>(atom->getSize() - 8));
    }
    Bytes statisticsOf(unsigned int type) const {
        for (const QTDataAtom* atom : statistics->getDataAtoms()) {
            if (atom->getType() == type) return Bytes(atom->getData(), atom->getData() + atom->getSize() - 8);
        }
        return {};
    }
};

void describe(QTHintTrack& track, const char* encoding, unsigned int clockRate, unsigned int type) {
    track.setID(3);
    track.setTransport("RTP/AVP");
    track.setEncoding(encoding);
    track.setClockRate(clockRate);
    track.setPayloadType(type);
    track.setMaxBitRate(128000);
    track.setDuration(10);
}

TEST(HintTrack, HasItsDefaults) {
    QTHintTrack track;
    EXPECT_EQ(track.getType(), fourCC("hint"));
    EXPECT_EQ(track.getMediaType(), fourCC("hint"));
    EXPECT_EQ(track.getRTPPacketNumber(), 0U);
    EXPECT_EQ(track.getPayloadType(), 0U);
    EXPECT_EQ(track.getEncoding(), "");
    EXPECT_TRUE(track.getAttributes().empty());
    EXPECT_EQ(QTVideoHintTrack().getType(), fourCC("vihi"));
    EXPECT_EQ(QTVideoHintTrack().getDisplayFactor(), 1.0);
    EXPECT_EQ(QTVideoHintTrack().getMediaType(), fourCC("hint"));
    EXPECT_EQ(QTAudioHintTrack().getType(), fourCC("auhi"));
    EXPECT_EQ(QTAudioHintTrack().getSampleRate(), 0U);
}

TEST(HintTrack, NumbersItsPackets) {
    QTHintTrack track;
    EXPECT_EQ(track.getNextRTPPacketNumber(), 1U);
    EXPECT_EQ(track.getNextRTPPacketNumber(), 2U);
    track.setRTPPacketNumber(65535);
    EXPECT_EQ(track.getNextRTPPacketNumber(), 0U);
}

TEST(HintTrack, FinishesSamplesOneAfterTheOther) {
    QTHintTrack track;
    EXPECT_EQ(track.addRTPPacket(nullptr), -1);
    EXPECT_EQ(track.addRTPPacket(packet(10)), 0);
    Bytes sample = take(track.finishSample());
    ASSERT_EQ(sample.size(), 42U);
    EXPECT_EQ(sample[23], 1); // sample number
    track.addRTPPacket(packet(5));
    sample = take(track.finishSample());
    EXPECT_EQ(sample.size(), 37U);
    EXPECT_EQ(sample[23], 2);
    EXPECT_EQ(take(track.finishSample()), hex("00000000")); // nothing added
    track.addRTPPacket(packet(5));
    EXPECT_EQ(take(track.finishSample())[23], 4);
}

TEST(HintTrack, WritesIntoItsMediaHeader) {
    HintTree tree(fourCC("vihi"));
    QTVideoHintTrack track;
    EXPECT_EQ(track.setHintMaxBitrate(1), -1);
    EXPECT_EQ(track.setHintAvgBitrate(1), -1);
    EXPECT_EQ(track.setHintSlidingAvgBitrate(1), -1);
    EXPECT_EQ(track.setHintMaxPacketSize(1), -1);
    EXPECT_EQ(track.setHintAvgPacketSize(1), -1);
    tree.give(track, kMP4);
    EXPECT_EQ(track.setHintMaxBitrate(1), 0);
    EXPECT_EQ(track.setHintAvgBitrate(2), 0);
    EXPECT_EQ(track.setHintSlidingAvgBitrate(3), 0);
    EXPECT_EQ(track.setHintMaxPacketSize(4), 0);
    EXPECT_EQ(track.setHintAvgPacketSize(5), 0);
    EXPECT_EQ(tree.hintHeader->getMaxBitRate(), 1U);
    EXPECT_EQ(tree.hintHeader->getAvgBitRate(), 2U);
    EXPECT_EQ(tree.hintHeader->getSlidingAvgBitRate(), 3U);
    EXPECT_EQ(tree.hintHeader->getMaxPDUSize(), 4U);
    EXPECT_EQ(tree.hintHeader->getAvgPDUSize(), 5U);
}

TEST(HintTrack, DescribesVideo) {
    HintTree tree(fourCC("vihi"));
    QTVideoHintTrack track;
    tree.give(track, kMP4);
    describe(track, "MP4V-ES", 90000, 96);
    track.setWidth(176);
    track.setHeight(144);
    track.setDisplayFactor(2.0);
    EXPECT_EQ(track.prepareForWriting(), 0);
    EXPECT_EQ(track.getSDPBandwidth(), 125U);
    EXPECT_EQ(tree.header->getWidth(), 352.0F);
    EXPECT_EQ(tree.header->getHeight(), 288.0F);
    EXPECT_EQ(tree.text().size(), 127U);
    EXPECT_EQ(tree.text(), "m=video 0 RTP/AVP 96\r\nb=AS:125\r\na=rtpmap:96 MP4V-ES/90000\r\n"
                           "a=control:trackID=3\r\na=cliprect:0,0,144,176\r\na=range:npt=0-10.0000\r\n");
    track.prepareForWriting(); // once more, a second text
    EXPECT_EQ(tree.text(1), tree.text(0));
}

TEST(HintTrack, DescribesVideoOf3GPP) {
    HintTree tree(fourCC("vihi"));
    QTVideoHintTrack track;
    tree.give(track, k3GP);
    describe(track, "MP4V-ES", 90000, 96);
    track.setWidth(176);
    track.setHeight(144);
    track.setAttributes({"a=fmtp:96 config=000001B0", "a=mpeg4-esid:201"});
    track.prepareForWriting();
    EXPECT_EQ(tree.text(), "m=video 0 RTP/AVP 96\r\nb=AS:125\r\na=rtpmap:96 MP4V-ES/90000\r\n"
                           "a=control:trackID=3\r\na=cliprect:0,0,144,176\r\na=framesize:96 176-144\r\n"
                           "a=fmtp:96 config=000001B0\r\na=mpeg4-esid:201\r\n");
}

TEST(HintTrack, DescribesAudioOfAStaticType) {
    HintTree tree(fourCC("auhi"));
    QTAudioHintTrack track;
    tree.give(track, kMP4);
    describe(track, "MPA", 90000, 14);
    track.setID(4);
    track.prepareForWriting();
    const std::string head = "m=audio 0 RTP/AVP 14\r\nb=AS:125\r\na=control:trackID=4";
    EXPECT_EQ(head.size(), 51U);
    EXPECT_EQ(tree.text(), head + "\r\n");
    track.setAttributes({"a=first", "a=second"});
    EXPECT_EQ(track.addSdpFile(), 0);
    EXPECT_EQ(tree.text(1), head + "a=first\r\na=second\r\n"); // runs on
    track.setPayloadType(95);
    track.addSdpFile();
    EXPECT_EQ(tree.text(2).find("rtpmap"), std::string::npos);
}

TEST(HintTrack, DescribesAudioOfADynamicType) {
    HintTree tree(fourCC("auhi"));
    QTAudioHintTrack track;
    tree.give(track, kMP4);
    describe(track, "AMR", 8000, 97);
    track.setID(4);
    track.setParameter(1);
    track.setMaxBitRate(12800);
    track.setDuration(1.23456);
    track.prepareForWriting();
    const std::string head = "m=audio 0 RTP/AVP 97\r\nb=AS:12\r\na=rtpmap:97 AMR/8000/1\r\n"
                             "a=control:trackID=4\r\na=range:npt=0-1.2346\r\n";
    EXPECT_EQ(tree.text(), head + "\r\n"); // ends with an empty line
    track.setAttributes({"a=x"});
    track.setPayloadType(96);
    track.addSdpFile();
    EXPECT_NE(tree.text(1).find("a=range:npt=0-1.2346\r\na=x\r\n"), std::string::npos);
}

TEST(HintTrack, TakesTextsOfAnyLengthAndContent) {
    HintTree tree(fourCC("vihi"));
    QTVideoHintTrack track;
    tree.give(track, kMP4);
    const std::string longText(5000, 'x');
    describe(track, "%s%n%d", 1, 96);
    track.setTransport(longText.c_str());
    track.setAttributes({longText.c_str(), "%s"});
    EXPECT_EQ(track.addSdpFile(), 0);
    EXPECT_NE(tree.text().find(longText + " 96\r\n"), std::string::npos);
    EXPECT_NE(tree.text().find("a=rtpmap:96 %s%n%d/1\r\n"), std::string::npos);
    EXPECT_NE(tree.text().find(longText + "\r\n%s\r\n"), std::string::npos);
}

TEST(HintTrack, WritesDecimalPointsInEveryLocale) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8"}) {
        if (std::setlocale(LC_NUMERIC, name)) break;
    }
    HintTree tree(fourCC("vihi"));
    QTVideoHintTrack track;
    tree.give(track, kMP4);
    describe(track, "H264", 90000, 96);
    track.setDuration(0.5);
    track.addSdpFile();
    std::setlocale(LC_NUMERIC, before.c_str());
    EXPECT_NE(tree.text().find("npt=0-0.5000\r\n"), std::string::npos);
}

TEST(HintTrack, NeedsAPlaceForItsText) {
    WritingTree tree(fourCC("vihi"));
    QTVideoHintTrack video;
    QTAudioHintTrack audio;
    QTHintTrack plain;
    EXPECT_EQ(video.addSdpFile(), -1); // no tree
    tree.give(video);
    tree.give(audio);
    tree.give(plain);
    EXPECT_EQ(video.addSdpFile(), -1); // no user data
    tree.addUserData();
    EXPECT_EQ(audio.addSdpFile(), -1); // no "hnti"
    EXPECT_EQ(plain.addSdpFile(), 0);  // has no text to place
    WritingTree::add<HNTI>(*tree.userData);
    EXPECT_EQ(plain.addSdpFile(), 0);
    EXPECT_EQ(audio.addSdpFile(), 0);
}

TEST(HintTrack, CountsItsStatistics) {
    HintTree tree(fourCC("vihi"));
    QTVideoHintTrack track;
    tree.give(track, kMP4);
    describe(track, "H264", 90000, 96);
    track.setTotalDataSize(1320);
    track.setRTPPacketNumber(10);
    track.setSampleCount(300);
    track.addRTPPacket(packet(120));
    track.addRTPPacket(packet(80));
    EXPECT_EQ(track.addHinfAtoms(fourCC("vide")), 0);
    std::string order;
    for (const QTDataAtom* atom : tree.statistics->getDataAtoms()) {
        const unsigned int type = atom->getType();
        for (const int shift : {24, 16, 8, 0}) {
            order += static_cast<char>(type >> shift);
        }
    }
    EXPECT_EQ(order, "trpytotlnumpnpcktpyltpaymaxrdmeddimmdreptmintmaxpmaxdmaxpayt");
    EXPECT_EQ(tree.statisticsOf(fourCC("trpy")), hex("00000000 00000460")); // 1000 + 12 * 10
    EXPECT_EQ(tree.statisticsOf(fourCC("totl")), hex("00000460"));
    EXPECT_EQ(tree.statisticsOf(fourCC("nump")), hex("00000000 0000000A"));
    EXPECT_EQ(tree.statisticsOf(fourCC("npck")), hex("0000000A"));
    EXPECT_EQ(tree.statisticsOf(fourCC("tpyl")), hex("00000000 000003E8"));
    EXPECT_EQ(tree.statisticsOf(fourCC("tpay")), hex("000003E8"));
    EXPECT_EQ(tree.statisticsOf(fourCC("maxr")), hex("000003E8 0001F400"));
    EXPECT_EQ(tree.statisticsOf(fourCC("dmed")), hex("00000000 00000000"));
    EXPECT_EQ(tree.statisticsOf(fourCC("dimm")), hex("00000000 000003E8"));
    EXPECT_EQ(tree.statisticsOf(fourCC("drep")), hex("00000000 00000000"));
    EXPECT_EQ(tree.statisticsOf(fourCC("tmin")), hex("F0000000"));
    EXPECT_EQ(tree.statisticsOf(fourCC("tmax")), hex("F0000000"));
    EXPECT_EQ(tree.statisticsOf(fourCC("pmax")), hex("00000078"));
    EXPECT_EQ(tree.statisticsOf(fourCC("dmax")), hex("00000021")); // 33 ms
    EXPECT_EQ(tree.statisticsOf(fourCC("payt")), hex("00000060 0A 'H264/90000'"));
    track.addHinfAtoms(fourCC("vide"));
    EXPECT_EQ(tree.statistics->getDataAtoms().size(), 30U); // a second set
}

TEST(HintTrack, NamesTheChannelsOfAudio) {
    HintTree tree(fourCC("auhi"));
    QTAudioHintTrack track;
    tree.give(track, kMP4);
    describe(track, "AMR", 8000, 97);
    track.setParameter(1);
    track.addHinfAtoms(fourCC("audi"));
    EXPECT_EQ(tree.statisticsOf(fourCC("payt")), hex("00000061 0A 'AMR/8000/1'"));
    EXPECT_EQ(tree.statistics->getDataAtom(14)->getSize(), 23U);
}

TEST(HintTrack, CutsAPayloadTextToItsLengthByte) {
    HintTree tree(fourCC("auhi"));
    QTAudioHintTrack track;
    tree.give(track, kMP4);
    track.setEncoding(std::string(300, 'e').c_str());
    track.addHinfAtoms(fourCC("audi"));
    const Bytes field = tree.statisticsOf(fourCC("payt"));
    EXPECT_EQ(field.size(), 260U);
    EXPECT_EQ(field[4], 255);
}

TEST(HintTrack, WrapsStatisticsThatCannotBe) {
    HintTree tree(fourCC("vihi"));
    QTVideoHintTrack track;
    tree.give(track, kMP4);
    track.setTotalDataSize(10);
    track.setRTPPacketNumber(1); // 32 bytes of headers in 10
    track.setDuration(5);
    track.prepareForWriting();
    EXPECT_EQ(tree.statisticsOf(fourCC("tpyl")), hex("FFFFFFFF FFFFFFEA")); // -22
    EXPECT_EQ(tree.statisticsOf(fourCC("tpay")), hex("FFFFFFEA"));
    EXPECT_EQ(tree.statisticsOf(fourCC("dmax")), hex("00000000")); // no samples
    EXPECT_EQ(track.getHintAverageBitRate(), 0U);
}

TEST(HintTrack, MakesItsStatisticsAtom) {
    WritingTree tree(fourCC("vihi"));
    QTVideoHintTrack track;
    EXPECT_EQ(track.addHinfAtoms(fourCC("vide")), -1); // no tree
    tree.give(track);
    EXPECT_EQ(track.addHinfAtoms(fourCC("vide")), 0);
    const QTAtom* userData = tree.trak->getAtomOfType(fourCC("udta"));
    ASSERT_NE(userData, nullptr);
    EXPECT_EQ(dynamic_cast<HINF&>(*userData->getAtomOfType(fourCC("hinf"))).getDataAtoms().size(), 15U);
}

TEST(HintTrack, PreparesVideo) {
    HintTree tree(fourCC("vihi"));
    QTVideoHintTrack track;
    tree.give(track, kMP4);
    track.setAtomMediaTimeScale(90000);
    track.setTotalDataSize(50000);
    track.setRTPPacketNumber(40);
    track.setDuration(10);
    track.setMaxBitRate(100000);
    track.addRTPPacket(packet(1400));
    track.setWidth(175);
    track.setHeight(1);
    track.setDisplayFactor(1.5);
    EXPECT_EQ(track.prepareForWriting(), 0);
    EXPECT_EQ(tree.header->getWidth(), 262.0F); // 262.5
    EXPECT_EQ(tree.header->getHeight(), 1.0F);
    EXPECT_EQ(tree.mediaHeader->getDuration(), 900000U);
    EXPECT_EQ(track.getHintAverageBitRate(), 38980U); // (48720 / 10 + 0.5) * 8
    EXPECT_EQ(track.getSDPBandwidth(), 97U);
    EXPECT_EQ(tree.header->getFlags(), 0U);
    EXPECT_EQ(tree.handler->getComponentType(), fourCC("mhlr"));
    EXPECT_EQ(tree.handler->getComponentSubType(), fourCC("hint"));
    EXPECT_STREQ(reinterpret_cast<char*>(tree.handler->getComponentName()), "Apple Hint Media Handler");
    EXPECT_EQ(tree.hintHeader->getMaxPDUSize(), 1400U);
    EXPECT_EQ(tree.hintHeader->getMaxBitRate(), 100000U);
    EXPECT_EQ(tree.hintHeader->getAvgBitRate(), 38980U);
    EXPECT_EQ(tree.hintHeader->getSlidingAvgBitRate(), 2338800U);
    const Bytes entry = hex({"00000024 'rtp' 20 000000000000 0001", // 16, 8 and 12 bytes
                             "0001 0001 00000578",                  // versions, largest packet
                             "0000000C 'tims' 00015F90"});          // 90000
    EXPECT_EQ(tree.entryBytes(), entry);
    track.prepareForWriting();
    EXPECT_EQ(tree.entryBytes(), entry) << "one time scale";
    EXPECT_EQ(tree.statistics->getDataAtoms().size(), 30U);
}

TEST(HintTrack, StatesThePacketSizeOfVideoItsOwnWay) {
    const auto size = [](std::uint64_t bytes, unsigned short packets) {
        HintTree tree(fourCC("vihi"));
        QTVideoHintTrack track;
        tree.give(track, kMP4);
        track.setTotalDataSize(bytes);
        track.setRTPPacketNumber(packets);
        track.prepareForWriting();
        return tree.hintHeader->getAvgPDUSize();
    };
    EXPECT_EQ(size(1320, 10), 35229U);
    EXPECT_EQ(size(100000, 64), 17098U);
    EXPECT_EQ(size(65536, 8), 8192U);
    EXPECT_EQ(size(1320, 0), 0U);
}

TEST(HintTrack, PreparesAudio) {
    HintTree tree(fourCC("auhi"));
    QTAudioHintTrack track;
    tree.give(track, kMP4);
    track.setSampleRate(8000);
    track.setDuration(2);
    track.setTotalDataSize(100000);
    track.setRTPPacketNumber(64);
    auto* bytes = static_cast<unsigned char*>(std::malloc(3));
    std::copy_n("abc", 3, bytes);
    track.setHintDescription(new QTFrame(3, bytes, 0, 0, false, 1, 0, 0, false));
    EXPECT_EQ(track.prepareForWriting(), 0);
    EXPECT_EQ(tree.mediaHeader->getTimeScale(), 8000U);
    EXPECT_EQ(tree.mediaHeader->getDuration(), 16000U);
    EXPECT_EQ(tree.hintHeader->getAvgPDUSize(), 1530U);
    EXPECT_EQ(tree.header->getFlags(), 0U);
    ASSERT_NE(tree.statistics->getHintDescription(), nullptr);
    EXPECT_NE(tree.statistics->getHintDescription(), track.getHintDescription()) << "a copy";
    tree.statistics->updateSize();
    const Bytes statistics = take(tree.statistics->serialize());
    EXPECT_EQ(Bytes(statistics.end() - 3, statistics.end()), hex("'abc'"));
    track.setRTPPacketNumber(0);
    track.prepareForWriting();
    EXPECT_EQ(tree.hintHeader->getAvgPDUSize(), 0U);
}

TEST(HintTrack, WrapsItsSlidingAverage) {
    HintTree tree(fourCC("auhi"));
    QTAudioHintTrack track;
    tree.give(track, kMP4);
    track.setDuration(1);
    track.setTotalDataSize(10000000 - 1); // (9999999 + 0.5) * 8 = 79999996
    track.prepareForWriting();
    EXPECT_EQ(track.getHintAverageBitRate(), 79999996U);
    EXPECT_EQ(tree.hintHeader->getSlidingAvgBitRate(), 79999996U * 60U);
}

TEST(HintTrack, IsPreparedWithoutATree) {
    EXPECT_EQ(QTVideoHintTrack().prepareForWriting(), 0);
    EXPECT_EQ(QTAudioHintTrack().prepareForWriting(), 0);
    EXPECT_EQ(QTHintTrack().prepareForWriting(), 0);
}

const Bytes kHeader = atom("hmhd", repeat(0, 20));
const Bytes kEntry = sampleEntry("rtp ", hex("0001 0001 000005DC"));

TEST(HintTrack, IsReadWithItsStatistics) {
    const auto read = [](const Bytes& payload) {
        const ParsedTree tree(
            trackBytes(kHeader, kEntry, 1, atom("udta", atom("hinf", atom("payt", payload)))));
        return QTHintTrack(tree.trak());
    };
    const QTHintTrack track = read(hex("00000061 0A 'AMR/8000/1'"));
    EXPECT_EQ(track.getMediaType(), fourCC("hint"));
    EXPECT_EQ(track.getID(), 7U);
    EXPECT_EQ(track.getDuration(), 2.0);
    EXPECT_EQ(track.getDataFormat(), fourCC("rtp "));
    EXPECT_EQ(track.getPayloadType(), 97U);
    EXPECT_EQ(track.getEncoding(), "AMR");
    EXPECT_EQ(track.getClockRate(), 8000U);
    EXPECT_EQ(track.getParameter(), 1U);
    EXPECT_EQ(read(hex("00000060 0A 'H264/90000'")).getClockRate(), 90000U);
    EXPECT_EQ(read(hex("00000060 0A 'H264/90000'")).getParameter(), 0U);
    EXPECT_EQ(read(hex("00000060 FF 'H264/'")).getEncoding(), "H264");
    EXPECT_EQ(read(hex("00000060 FF 'H264/'")).getClockRate(), 0U);
    EXPECT_EQ(read(hex("00000060 04 'H264/90'")).getEncoding(), "H264");
    EXPECT_EQ(read(hex("0000")).getPayloadType(), 0U);
    EXPECT_EQ(read({}).getEncoding(), "");
}

TEST(HintTrack, IsReadWithAnyDescriptions) {
    const ParsedTree tree(trackBytes(kHeader, kEntry, 9));
    const QTVideoHintTrack video(tree.trak());
    EXPECT_EQ(video.getWidth(), 320U);
    EXPECT_EQ(video.getHeight(), 240U);
    QTAudioHintTrack audio(tree.trak());
    EXPECT_EQ(audio.getDataFormat(), fourCC("rtp "));
    EXPECT_EQ(audio.parseStsd(nullptr), 0);
    EXPECT_EQ(audio.getDataFormat(), fourCC("rtp "));
}

TEST(HintTrack, WithoutAMediumPreparesNothing) {
    WritingTree tree(fourCC("vihi"));
    tree.addUserData();
    QTHintTrack plain;
    tree.give(plain, kPSP);
    plain.setDuration(2);
    plain.setTotalDataSize(1000);
    EXPECT_EQ(plain.prepareForWriting(), 0);
    EXPECT_EQ(plain.getAvgBitRate(), 0U);
    EXPECT_EQ(tree.header->getFlags(), 15U);
    EXPECT_EQ(tree.handler->getComponentType(), 0U);
    EXPECT_EQ(tree.trak->getChildren().size(), 3U); // no marker of handheld players
    EXPECT_TRUE(tree.userData->getChildren().empty());
}

TEST(HintTrack, NamesItselfWhenHeadersAreMissing) {
    const auto failure = [](const Bytes& bytes, auto read) -> std::string {
        const ParsedTree tree(bytes);
        try {
            read(tree.trak());
        } catch (const Ketra::CException& e) {
            return std::string(e.getFunction().c_str()) + ": " + e.what();
        }
        return "";
    };
    const Bytes none = atom("trak", atom("mdia", {}));
    EXPECT_EQ(failure(none, [](QTAtom* trak) { QTHintTrack track(trak); }),
              "QT::QTHintTrack::QTHintTrack: No track header found in track atom");
    EXPECT_EQ(failure(none, [](QTAtom* trak) { QTVideoHintTrack track(trak); }),
              "QT::QTVideoHintTrack::QTVideoHintTrack: No track header found in track atom");
    EXPECT_EQ(failure(none, [](QTAtom* trak) { QTAudioHintTrack track(trak); }),
              "QT::QTAudioHintTrack::QTAudioHintTrack: No track header found in track atom");
    EXPECT_EQ(
        failure(atom("trak", atom("tkhd", repeat(0, 84))), [](QTAtom* trak) { QTHintTrack track(trak); }),
        "QT::QTHintTrack::QTHintTrack: No mdia-atom found in trak-atom");
}

TEST(HintTrack, CopiesBeginASampleOfTheirOwn) {
    QTVideoHintTrack track;
    track.setEncoding("H264");
    track.setAttributes({"a=x"});
    take(track.finishSample());
    track.addRTPPacket(packet(10));
    QTVideoHintTrack copy(track);
    QTVideoHintTrack assigned;
    assigned = track;
    EXPECT_EQ(take(copy.finishSample()).size(), 4U);
    EXPECT_EQ(assigned.getEncoding(), "H264");
    EXPECT_EQ(assigned.getAttributes().size(), 1U);
    assigned.addRTPPacket(packet(1));
    EXPECT_EQ(take(assigned.finishSample())[23], 2);
    EXPECT_EQ(take(track.finishSample()).size(), 42U);
}

TEST(HintTrack, IsMadeByTheFactory) {
    for (const unsigned int type : {fourCC("vihi"), fourCC("auhi")}) {
        for (const QTMovieConstructionFlags flavour : {kMOV, k3GP}) {
            const std::unique_ptr<QTTrack> made(QTTrack::createNewQTTrackFromType(5, type, flavour));
            const std::unique_ptr<QTAtom> trak(made->getTrak());
            auto& track = dynamic_cast<QTHintTrack&>(*made);
            EXPECT_EQ(track.getType(), type);
            EXPECT_EQ(track.getMediaType(), fourCC("hint"));
            EXPECT_EQ(track.getPayloadType(), type == fourCC("vihi") ? 96U : 97U);
            EXPECT_EQ(track.setHintMaxBitrate(1), flavour == kMOV ? -1 : 0);
            EXPECT_EQ(track.prepareForWriting(), 0);
            const QTAtom* userData = trak->getAtomOfType(fourCC("udta"));
            EXPECT_EQ(dynamic_cast<HNTI&>(*userData->getAtomOfType(fourCC("hnti"))).getDataAtoms().size(),
                      1U);
            EXPECT_EQ(dynamic_cast<HINF&>(*userData->getAtomOfType(fourCC("hinf"))).getDataAtoms().size(),
                      15U);
        }
    }
}

} // namespace
} // namespace test
