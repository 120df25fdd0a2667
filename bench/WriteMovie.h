// A movie of one video track written the way a caller does it: samples into chunks, chunks into the file, the
// header behind them. Sizes, key frames and composition offsets are those that the peers' programs write.
#pragma once

#include "Measure.h"

#include <qt/QTFrame.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <vector>

namespace measure {

constexpr std::uint32_t kScale = 90000;
constexpr std::uint32_t kDelta = 2880;
constexpr std::uint32_t kGroup = 30; // pictures from key frame to key frame, and to a chunk

inline std::uint32_t mix(std::uint32_t x) {
    x ^= x >> 16;
    x *= 0x7FEB352DU;
    x ^= x >> 15;
    x *= 0x846CA68BU;
    return x ^ x >> 16;
}

/// Frames by which a picture is shown after it was decoded, in groups I P B B P B B ... P B.
inline std::uint32_t shownAfter(std::uint32_t i) {
    const std::uint32_t k = i % kGroup;
    if (k == 0) return 1;
    if (k == 28) return 2;
    return k != 29 && k % 3 == 1 ? 3 : 0;
}

/// All samples back to back, made before anything is timed.
class Payloads {
public:
    explicit Payloads(std::uint32_t count) {
        begins_.reserve(count + 1U);
        begins_.push_back(0);
        for (std::uint32_t i = 0; i < count; ++i) {
            begins_.push_back(begins_.back() + 16 + mix(i * 2 + 1) % 48);
        }
        bytes_.resize(begins_.back());
        for (std::size_t i = 0; i < bytes_.size(); ++i) {
            bytes_[i] = static_cast<unsigned char>(i * 7);
        }
    }
    const unsigned char* at(std::uint32_t i) const { return bytes_.data() + begins_[i]; }
    unsigned int size(std::uint32_t i) const {
        return static_cast<unsigned int>(begins_[i + 1U] - begins_[i]);
    }

private:
    std::vector<unsigned char> bytes_;
    std::vector<std::uint64_t> begins_;
};

class OutputFile {
public:
    explicit OutputFile(const char* path) : buffer_(256 << 10), file_(std::fopen(path, "wb")) {
        if (!file_) throw std::runtime_error("cannot write");
        std::setvbuf(file_, buffer_.data(), _IOFBF, buffer_.size());
    }
    ~OutputFile() { std::fclose(file_); }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(const void* bytes, std::size_t length) {
        if (std::fwrite(bytes, 1, length, file_) != length) throw std::runtime_error("cannot write");
        position_ += length;
    }
    void write(Ketra::QT::QTFrame* frame) {
        const std::unique_ptr<Ketra::QT::QTFrame> owned(frame);
        if (!owned) throw std::runtime_error("no bytes to write");
        write(owned->getData(), owned->getDataLength());
    }
    void rewind() { std::rewind(file_), position_ = 0; }
    std::uint64_t position() const { return position_; }

private:
    std::vector<char> buffer_;
    std::FILE* file_;
    std::uint64_t position_ = 0;
};

/// The times at which the last sample was in, for the cost of the end alone.
inline double writeMovie(const char* path, const Payloads& samples, std::uint32_t count) {
    using namespace Ketra::QT;
    OutputFile out(path);
    const std::unique_ptr<QTMovie> movie(QTMovie::beginMovie(kMP4, false, false));
    if (!movie) throw std::runtime_error("no movie");
    QTTrack* track = movie->beginTrack(fourCC("vide"), kMP4);
    auto* video = dynamic_cast<QTVideoTrack*>(track);
    if (!video) throw std::runtime_error("no video track");
    video->setDataFormat(fourCC("h264"));
    video->setWidth(640);
    video->setHeight(360);
    track->setAtomMediaTimeScale(kScale);
    track->setChunkFullTime((kGroup - 0.5) * kDelta / kScale);
    unsigned char mdat[16] = {0, 0, 0, 1, 'm', 'd', 'a', 't'};
    out.write(mdat, sizeof mdat);
    track->beginChunk();
    for (std::uint32_t i = 0; i < count; ++i) {
        const unsigned int size = samples.size(i);
        auto* data = static_cast<unsigned char*>(std::malloc(size));
        if (!data) throw std::bad_alloc();
        std::memcpy(data, samples.at(i), size);
        const double decode = static_cast<double>(i) * kDelta / kScale;
        const double shown = static_cast<double>(i + shownAfter(i)) * kDelta / kScale;
        constexpr double kLength = static_cast<double>(kDelta) / kScale;
        const bool key = i % kGroup == 0;
        QTFrame frame(size, data, shown, kLength, key, 1, shown + kLength, decode, false);
        if ((key ? track->addSyncSample(&frame) : track->addSample(&frame)) != 0)
            throw std::runtime_error("sample refused");
        if (i % kGroup == kGroup - 1) out.write(track->saveChunk(out.position()));
    }
    out.write(track->saveChunk(out.position()));
    const double closing = now();
    const std::uint64_t length = out.position();
    movie->endTrack(track->getID());
    movie->endMovie();
    if (movie->prepareForWriting() != 0) throw std::runtime_error("cannot prepare");
    movie->updateAtomSizes();
    out.write(movie->serializeRoot());
    out.rewind();
    for (int i = 0; i < 8; ++i) {
        mdat[8 + i] = static_cast<unsigned char>(length >> (56 - 8 * i));
    }
    out.write(mdat, sizeof mdat);
    return closing;
}

} // namespace measure
