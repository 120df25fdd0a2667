// Writes a movie with a sound track and the hint track by which a server streams it: RTP packets of 16-bit
// sound, made when the movie is made. (`ketraqt hint` does this to movies that are there, for many codecs.)
//
//     hint_sound movie.mov
#include <base/CFileStream.h>
#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
#include <qt/QTRTPPacket.h>
#include <qt/QTTrack.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace Ketra;
using QT::fourCC;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned int kSampleRate = 8000;
constexpr unsigned int kPacketSamples = 160; // 20 ms
constexpr unsigned int kPackets = 100;
constexpr double kPacketSeconds = static_cast<double>(kPacketSamples) / kSampleRate;

/// Frames and packets own blocks from malloc.
unsigned char* mallocCopy(const Bytes& bytes) {
    auto* block = static_cast<unsigned char*>(std::malloc(bytes.size()));
    if (!block) throw std::bad_alloc();
    std::memcpy(block, bytes.data(), bytes.size());
    return block;
}

/// The next 20 ms of a sawtooth, most significant byte first: as the file holds it, and as RTP sends it.
Bytes nextSound(unsigned int number) {
    Bytes bytes;
    for (unsigned int i = 0; i < kPacketSamples; ++i) {
        bytes.push_back(static_cast<unsigned char>((number * kPacketSamples + i) % 32));
        bytes.push_back(0);
    }
    return bytes;
}

/// Chunks go behind one another, the first one behind the header of the media.
void saveChunk(QT::QTTrack& track, Bytes& media) {
    const std::unique_ptr<QT::QTFrame> chunk(track.saveChunk(media.size()));
    media.insert(media.end(), chunk->getData(), chunk->getData() + chunk->getDataLength());
}

QT::QTAudioTrack& beginSound(QT::QTMovie& movie) {
    auto& sound = dynamic_cast<QT::QTAudioTrack&>(*movie.beginTrack(fourCC("audi"), QT::kMOV));
    sound.setAtomMediaTimeScale(kSampleRate);
    sound.setDataFormat(fourCC("twos"));
    sound.setChannels(1);
    sound.setBitsPerSample(16);
    sound.setSampleRate(kSampleRate);
    sound.setChunkFullTime(0.5);
    sound.beginChunk();
    return sound;
}

//! [begin]
/// The encoding, clock and payload type go into the session description, too.
QT::QTAudioHintTrack& beginHints(QT::QTMovie& movie, const QT::QTTrack& sound) {
    auto& hints = dynamic_cast<QT::QTAudioHintTrack&>(*movie.beginTrack(fourCC("auhi"), QT::kMOV));
    hints.setHintTrackReference(sound.getID());
    hints.setAtomMediaTimeScale(kSampleRate);
    hints.setEncoding("L16");
    hints.setClockRate(kSampleRate);
    hints.setParameter(1); // channels
    hints.setTransport("RTP/AVP");
    hints.setPayloadType(96);
    hints.setSampleRate(kSampleRate);
    hints.setChunkFullTime(0.5);
    hints.beginChunk();
    return hints;
}
//! [begin]

//! [packet]
/// One hint sample of one packet. The packet's bytes become part of the sample.
void addPacket(QT::QTHintTrack& hints, const Bytes& payload, double time) {
    auto packet = std::make_unique<QT::QTRTPPacket>();
    packet->setPlayTime(time);
    packet->setDuration(kPacketSeconds);
    packet->setPayloadType(static_cast<unsigned short>(hints.getPayloadType()));
    packet->setRTPSequenceNumber(hints.getNextRTPPacketNumber());
    packet->setBytesPerCompressionBlock(1); // servers divide by both
    packet->setSamplesPerCompressionBlock(1);
    packet->setData(static_cast<unsigned short>(payload.size()), mallocCopy(payload));
    if (hints.addRTPPacket(packet.get()) == 0) static_cast<void>(packet.release()); // the track has it now

    const std::unique_ptr<QT::QTFrame> sample(hints.finishSample());
    sample->setDecodeTime(sample->getTime());
    hints.addHintSample(sample.get());
}
//! [packet]

void finish(QT::QTMovie& movie, QT::QTTrack& track, Bytes& media) {
    saveChunk(track, media);
    track.setDuration(kPackets * kPacketSeconds);
    movie.endTrack(track.getID());
}

void writeMovie(const char* path) {
    Bytes media = {0, 0, 0, 0, 'm', 'd', 'a', 't'};
    //! [movie]
    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::beginMovie(QT::kMOV, true, false)); // hinted
    QT::QTAudioTrack& sound = beginSound(*movie);
    QT::QTAudioHintTrack& hints = beginHints(*movie, sound);
    for (unsigned int i = 0; i < kPackets; ++i) {
        const Bytes bytes = nextSound(i);
        const double time = i * kPacketSeconds;
        QT::QTFrame frame(static_cast<unsigned int>(bytes.size()), mallocCopy(bytes), time, kPacketSeconds,
                          true, kPacketSamples, time + kPacketSeconds, time, false);
        sound.addSample(&frame);
        addPacket(hints, bytes, time);
        if (sound.getChunkFull()) saveChunk(sound, media);
        if (hints.getChunkFull()) saveChunk(hints, media);
    }
    finish(*movie, sound, media);
    finish(*movie, hints, media);
    movie->endMovie();
    movie->prepareForWriting(); // hint statistics and session description, too
    movie->updateAtomSizes();
    //! [movie]
    const std::unique_ptr<QT::QTFrame> header(movie->serializeRoot());
    unsigned char* size = media.data();
    QT::QTTrack::putUInt32(&size, static_cast<unsigned int>(media.size()));
    media.insert(media.end(), header->getData(), header->getData() + header->getDataLength());

    Ferro::CFileStream file(path, Ferro::CFileStream::kCreate);
    const auto length = static_cast<std::int64_t>(media.size());
    if (file.write(media.data(), length) != length) throw std::runtime_error("the movie cannot be written");
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "hint_sound MOVIE\n");
        return 2;
    }
    try {
        writeMovie(argv[1]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
