// Writes a QuickTime movie from raw bytes: pictures, sound, chapter titles and a start timecode. The media
// comes first, the header behind it.
//
//     write_movie movie.mov
#include <base/CFileStream.h>
#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace Ketra;
using QT::fourCC;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned int kWidth = 64;
constexpr unsigned int kHeight = 48;
constexpr unsigned int kFramesPerSecond = 25;
constexpr unsigned int kFrames = 50;
constexpr unsigned int kSampleRate = 48000;
constexpr double kSeconds = static_cast<double>(kFrames) / kFramesPerSecond;

void put32(Bytes& bytes, unsigned int value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<unsigned char>(value >> shift));
    }
}

//! [sample]
/// A frame owns a block from malloc.
std::unique_ptr<QT::QTFrame> makeFrame(const Bytes& bytes, double time, double duration,
                                       unsigned int samples) {
    auto* block = static_cast<unsigned char*>(std::malloc(bytes.size()));
    if (!block) throw std::bad_alloc();
    std::memcpy(block, bytes.data(), bytes.size());
    return std::make_unique<QT::QTFrame>(static_cast<unsigned int>(bytes.size()), block, time, duration, true,
                                         samples, time + duration, time, false);
}
//! [sample]

/// The file: what is written goes behind what was written before.
class File {
public:
    explicit File(const char* path) : stream_(path, Ferro::CFileStream::kCreate) {}

    std::uint64_t position() const { return position_; }
    void write(const unsigned char* bytes, std::size_t count) {
        const auto length = static_cast<std::int64_t>(count);
        if (count && stream_.write(bytes, length) != length)
            throw std::runtime_error("the movie cannot be written");
        position_ += count;
    }
    void patch(std::int64_t place, const Bytes& bytes) {
        stream_.seek(place, 0);
        write(bytes.data(), bytes.size());
    }

private:
    Ferro::CFileStream stream_;
    std::uint64_t position_ = 0;
};

//! [chunk]
/// The samples that were gathered go into the file as one chunk, whose place the track notes.
void saveChunk(QT::QTTrack& track, File& file) {
    const std::unique_ptr<QT::QTFrame> chunk(track.saveChunk(file.position()));
    file.write(chunk->getData(), chunk->getDataLength());
}

void add(QT::QTTrack& track, const Bytes& bytes, double time, double duration, unsigned int samples,
         File& file) {
    track.addSample(makeFrame(bytes, time, duration, samples).get());
    if (track.getChunkFull()) saveChunk(track, file);
}
//! [chunk]

//! [begin]
QT::QTTrack& beginTrack(QT::QTMovie& movie, unsigned int type, unsigned int ticksPerSecond) {
    QT::QTTrack& track = *movie.beginTrack(type, QT::kMOV);
    track.setAtomMediaTimeScale(ticksPerSecond);
    track.setChunkFullTime(0.5); // seconds
    track.beginChunk();
    return track;
}
//! [begin]

Bytes picture(unsigned int number) { // three bytes a pixel
    Bytes pixels;
    for (unsigned int y = 0; y < kHeight; ++y) {
        for (unsigned int x = 0; x < kWidth; ++x) {
            pixels.push_back(static_cast<unsigned char>(x * 4 + number * 5));
            pixels.push_back(static_cast<unsigned char>(y * 5));
            pixels.push_back(static_cast<unsigned char>(number * 5));
        }
    }
    return pixels;
}

Bytes tone(unsigned int number) { // one picture's time of 16-bit samples, least significant byte first
    Bytes samples;
    for (unsigned int i = 0; i < kSampleRate / kFramesPerSecond; ++i) {
        const double t =
            static_cast<double>(number) / kFramesPerSecond + static_cast<double>(i) / kSampleRate;
        const int value = static_cast<int>(8000 * std::sin(2 * 3.14159265358979 * 440 * t));
        samples.push_back(static_cast<unsigned char>(value & 0xFF));
        samples.push_back(static_cast<unsigned char>(value >> 8 & 0xFF));
    }
    return samples;
}

Bytes title(const std::string& text) { // a 16-bit length and the text
    Bytes bytes = {static_cast<unsigned char>(text.size() >> 8), static_cast<unsigned char>(text.size())};
    for (const char c : text) {
        bytes.push_back(static_cast<unsigned char>(c));
    }
    return bytes;
}

/// One edit over the whole track, its start in ticks of the media.
void showAll(QT::QTTrack& track) {
    auto edit = std::make_unique<QT::ELSTData>(track.getAtomHeaderDuration(), 0, 1.0F);
    if (track.addAtomEditListEntry(edit.get()) == 0)
        static_cast<void>(edit.release()); // the track has it now
}

void writeMedia(QT::QTMovie& movie, File& file) {
    //! [chapters]
    // First: players that take the last mark of chapters they meet are to find the reference to this track.
    auto& chapters = dynamic_cast<QT::QTTextTrack&>(beginTrack(movie, fourCC("text"), 1000));
    chapters.isChapterTrack(true);
    //! [chapters]
    //! [tracks]
    auto& video = dynamic_cast<QT::QTVideoTrack&>(beginTrack(movie, fourCC("vide"), kFramesPerSecond * 100));
    video.setDataFormat(fourCC("raw "));
    video.setWidth(kWidth);
    video.setHeight(kHeight);
    auto& sound = dynamic_cast<QT::QTAudioTrack&>(beginTrack(movie, fourCC("audi"), kSampleRate));
    sound.setDataFormat(fourCC("sowt")); // before the first sample: they are counted by it
    sound.setChannels(1);
    sound.setBitsPerSample(16);
    sound.setSampleRate(kSampleRate);
    //! [tracks]
    //! [timecode]
    auto& timecode =
        dynamic_cast<QT::QTTimeCodeTrack&>(beginTrack(movie, fourCC("tmcd"), kFramesPerSecond * 100));
    timecode.setTimeScale(kFramesPerSecond * 100);
    timecode.setFrameDuration(100);
    timecode.setNumberOfFrames(kFramesPerSecond);
    //! [timecode]

    // Pictures and sound alternate in the file, as they are played.
    for (unsigned int i = 0; i < kFrames; ++i) {
        const double time = static_cast<double>(i) / kFramesPerSecond;
        add(video, picture(i), time, 1.0 / kFramesPerSecond, 1, file);
        add(sound, tone(i), time, 1.0 / kFramesPerSecond, kSampleRate / kFramesPerSecond, file);
    }
    //! [titles]
    add(chapters, title("The first second"), 0, 1, 1, file);
    add(chapters, title("The second one"), 1, kSeconds - 1, 1, file);
    //! [titles]
    //! [start]
    Bytes start;
    put32(start, 10 * 3600 * kFramesPerSecond); // 10:00:00:00, counted in frames
    add(timecode, start, 0, kSeconds, 1, file);
    //! [start]

    //! [references]
    video.addTrackReference(fourCC("chap"), chapters.getID());
    // Each call of addTrackReference() makes a list of its own; players look at the first.
    video.getTrak()->getAtomOfType(fourCC("tref"))->addChild(new QT::TMCD(timecode.getID()));
    //! [references]
    //! [end]
    for (QT::QTTrack* track : movie.getTracks()) {
        saveChunk(*track, file);
        movie.endTrack(track->getID());
        showAll(*track);
    }
    //! [end]
}

void writeMovie(const char* path) {
    File file(path);
    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::beginMovie(QT::kMOV, false, false));

    Bytes mediaHeader;
    put32(mediaHeader, 0); // the size, which is known at the end
    put32(mediaHeader, fourCC("mdat"));
    file.write(mediaHeader.data(), mediaHeader.size());
    writeMedia(*movie, file);
    const std::uint64_t mediaEnd = file.position();

    //! [finish]
    movie->endMovie();
    constexpr char kTitle[] = "Written from raw bytes";
    movie->addUserData(0xA96E616D, sizeof kTitle, kTitle); // the copyright sign and "nam"
    movie->prepareForWriting();
    movie->updateAtomSizes();
    const std::unique_ptr<QT::QTFrame> header(movie->serializeRoot());
    file.write(header->getData(), header->getDataLength());
    Bytes size;
    put32(size, static_cast<unsigned int>(mediaEnd));
    file.patch(0, size);
    //! [finish]
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "write_movie MOVIE\n");
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
