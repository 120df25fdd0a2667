// Writes an MP4 file whose header comes first, so that playing can begin before all of it has arrived.
//
//     header_first movie.mp4
#include <base/CFileStream.h>
#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
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

//! [chunk]
void append(Bytes& media, QT::QTTrack& track) {
    // Chunks are noted by their place in the media, and moved when the length of the header is known.
    const std::unique_ptr<QT::QTFrame> chunk(track.saveChunk(media.size()));
    media.insert(media.end(), chunk->getData(), chunk->getData() + chunk->getDataLength());
}
//! [chunk]

/// Two seconds of a rising and falling tone curve, 16 bits a sample, most significant byte first.
Bytes writeSound(QT::QTMovie& movie) {
    auto& sound = dynamic_cast<QT::QTAudioTrack&>(*movie.beginTrack(fourCC("audi"), QT::kMP4));
    sound.setAtomMediaTimeScale(kSampleRate);
    sound.setDataFormat(fourCC("twos"));
    sound.setChannels(1);
    sound.setBitsPerSample(16);
    sound.setSampleRate(kSampleRate);
    sound.setChunkFullTime(0.4);
    sound.beginChunk();

    Bytes media;
    constexpr unsigned int kPieces = 20;
    constexpr unsigned int kSamples = kSampleRate / 10;
    for (unsigned int piece = 0; piece < kPieces; ++piece) {
        auto* block = static_cast<unsigned char*>(std::malloc(kSamples * 2));
        if (!block) throw std::bad_alloc();
        for (unsigned int i = 0; i < kSamples; ++i) {
            block[2 * i] = static_cast<unsigned char>(i % 64);
            block[2 * i + 1] = 0;
        }
        const double time = piece / 10.0;
        QT::QTFrame frame(kSamples * 2, block, time, 0.1, true, kSamples, time + 0.1, time, false);
        sound.addSample(&frame);
        if (sound.getChunkFull()) append(media, sound);
    }
    append(media, sound);
    movie.endTrack(sound.getID());
    sound.addAtomEditListEntry(new QT::ELSTData(sound.getAtomHeaderDuration(), 0, 1.0F));
    return media;
}

void put(Ferro::CFileStream& file, const unsigned char* bytes, std::size_t count) {
    const auto length = static_cast<std::int64_t>(count);
    if (file.write(bytes, length) != length) throw std::runtime_error("the movie cannot be written");
}

void writeMovie(const char* path) {
    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::beginMovie(QT::kMP4, false, false));
    const Bytes media = writeSound(*movie);
    //! [header]
    movie->endMovie();
    movie->prepareForWriting();
    movie->updateAtomSizes();

    // The header is serialized once for its length, and again with the chunks in their final places. (Media
    // beyond 4 GiB would take longer offsets: repeat this until the length stays.)
    constexpr std::size_t kMediaHeader = 8;
    const std::size_t length = std::unique_ptr<QT::QTFrame>(movie->serializeRoot())->getDataLength();
    movie->addToAtomStcoOffsets(length + kMediaHeader);
    movie->updateAtomSizes();
    const std::unique_ptr<QT::QTFrame> header(movie->serializeRoot());
    if (header->getDataLength() != length) throw std::runtime_error("the header has grown");

    Ferro::CFileStream file(path, Ferro::CFileStream::kCreate);
    put(file, header->getData(), length);
    unsigned char mediaHeader[kMediaHeader];
    unsigned char* cursor = mediaHeader;
    QT::QTTrack::putUInt32(&cursor, static_cast<unsigned int>(media.size() + kMediaHeader));
    QT::QTTrack::putUInt32(&cursor, fourCC("mdat"));
    put(file, mediaHeader, kMediaHeader);
    put(file, media.data(), media.size());
    //! [header]
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "header_first MOVIE\n");
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
