#include "serve/HintedTrack.h"
#include "support/Bytes.h"

#include <base/CMemoryStream.h>
#include <base/Ferro.h>
#include <qt/QTAtoms.h>
#include <qt/QTCMStream.h>
#include <qt/QTRTPPacket.h>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>

namespace test {
namespace {

using namespace Ketra::QT;

unsigned char* block(const Bytes& bytes) {
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.size()));
    std::memcpy(copy, bytes.data(), bytes.size());
    return copy;
}

struct Given {
    Bytes payload;
    unsigned char marker = 0;
    int sending = 0;
    int offset = 0;
};

/// A movie of one hint track whose samples are these packets, one second each.
Bytes hintedMovie(QTMovieConstructionFlags flavour, unsigned int type,
                  const std::vector<std::vector<Given>>& samples) {
    const std::unique_ptr<QTMovie> movie(QTMovie::beginMovie(flavour, true, false));
    auto& track = dynamic_cast<QTHintTrack&>(*movie->beginTrack(type, flavour));
    track.setAtomMediaTimeScale(1000);
    track.setClockRate(1000);
    track.setEncoding("X");
    track.setTransport("RTP/AVP");
    if (auto* audio = dynamic_cast<QTAudioHintTrack*>(&track)) audio->setSampleRate(1000);
    track.beginChunk();
    Bytes file(8, 0);
    double time = 0;
    for (const auto& sample : samples) {
        for (const Given& given : sample) {
            auto* packet = new QTRTPPacket;
            packet->setData(static_cast<unsigned short>(given.payload.size()), block(given.payload));
            packet->setMarker(given.marker);
            packet->setPayloadType(static_cast<unsigned short>(track.getPayloadType()));
            packet->setRelativeTransmissionTime(given.sending);
            packet->setRTPSequenceNumber(track.getNextRTPPacketNumber());
            packet->setPlayTime(time);
            packet->setDuration(&given == &sample.front() ? 1.0 : 0.0);
            if (given.offset) {
                packet->setFlags(4);
                packet->setTLVData(16, block(hex("00000010 0000000C 'rtpo' 000000") +
                                             Bytes{static_cast<unsigned char>(given.offset)}));
            }
            track.addRTPPacket(packet);
        }
        const std::unique_ptr<QTFrame> frame(track.finishSample());
        track.addHintSample(frame.get());
        time += 1;
    }
    file = file + take(track.saveChunk(file.size()));
    file[2] = static_cast<unsigned char>(file.size() >> 8);
    file[3] = static_cast<unsigned char>(file.size());
    std::memcpy(&file[4], "mdat", 4);
    movie->endTrack(track.getID());
    movie->endMovie();
    movie->prepareForWriting();
    movie->updateAtomSizes();
    return file + take(movie->serializeRoot());
}

struct ReadMovie {
    explicit ReadMovie(const Bytes& bytes)
        : holder(new Ketra::Ferro::CMemoryStream(bytes.data(), static_cast<std::int64_t>(bytes.size()))),
          movie(QTMovie::createNewQTMovieFromStream(&stream, kMP4)) {}

    Ketra::Ferro::RStream holder;
    QTCMStream stream{&holder};
    std::unique_ptr<QTMovie> movie;
};

TEST(ReadBack, FindsThePacketsThatWereAdded) {
    for (const QTMovieConstructionFlags flavour : {kMP4, kMOV, k3GP, k3G2}) {
        for (const unsigned int type : {fourCC("vihi"), fourCC("auhi")}) {
            ReadMovie read(hintedMovie(
                flavour, type,
                {{{hex("01 02 03"), 0, 0, 0}, {hex("04 05"), 1, 250, 0}}, {{repeat(0x77, 300), 1, 0, 40}}}));
            ASSERT_NE(read.movie, nullptr);
            ASSERT_EQ(read.movie->getNumberOfTracks(), 1U);
            QTTrack& track = *read.movie->getTracks().front();
            ASSERT_TRUE(serve::isHintTrack(track));
            const serve::HintedTrack hints = serve::readHints(*read.movie, track);
            EXPECT_EQ(hints.problems, std::vector<std::string>{"it belongs to no media track"});
            ASSERT_EQ(hints.packets.size(), 3U);
            EXPECT_EQ(hints.samples, 2U);
            EXPECT_EQ(hints.clockRate, 1000U);
            EXPECT_EQ(hints.largestPayload, 300U);
            // 4 + 2 * 28 + 5, and 4 + 28 + 16 + 300
            EXPECT_EQ(hints.sampleBytes, 65U + 348U);
            const Bytes number = type == fourCC("vihi") ? hex("60") : hex("61");
            EXPECT_EQ(show(hints.packets[0].bytes),
                      show(hex("80") + number + hex("0001 10000000 00000001 010203")));
            EXPECT_EQ(hints.packets[1].bytes[1], number[0] | 0x80);
            EXPECT_EQ(hints.packets[1].sendAt, 0.25);
            EXPECT_EQ(hints.packets[2].sendAt, 1.0);
            EXPECT_EQ(show(Bytes(hints.packets[2].bytes.begin() + 2, hints.packets[2].bytes.begin() + 12)),
                      show(hex("0003 10000410 00000001"))); // 1000 + 40
            EXPECT_EQ(hints.packets[2].bytes.size(), 312U);
            EXPECT_EQ(serve::checkStatistics(track, hints), std::vector<std::string>{});
        }
    }
}

TEST(ReadBack, SeesStatisticsThatDoNotAddUp) {
    ReadMovie read(hintedMovie(kMP4, fourCC("vihi"), {{{hex("01"), 1, 0, 0}}}));
    QTTrack& track = *read.movie->getTracks().front();
    serve::HintedTrack hints = serve::readHints(*read.movie, track);
    hints.largestPayload = 9;
    EXPECT_EQ(serve::checkStatistics(track, hints), std::vector<std::string>{"pmax is 1 instead of 9"});
    hints.packets.emplace_back();
    EXPECT_GT(serve::checkStatistics(track, hints).size(), 4U);
}

} // namespace
} // namespace test
