// Whole movies for tests, built byte by byte from the tables that a test wants.
#pragma once

#include "support/Bytes.h"

#include <base/CMemoryStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTMovie.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

Bytes u16(std::uint64_t v);
Bytes u32(std::uint64_t v);
Bytes u64(std::uint64_t v);
Bytes text(const std::string& s);
/// A full atom with version and flags 0 around a payload.
Bytes fullAtom(const char (&type)[5], const Bytes& payload);

struct Edit {
    std::uint32_t duration; // movie time scale
    std::uint32_t mediaTime;
};

/// One track. Its sample i (from 0) of n bytes holds the bytes i, i+1, i+2, ... modulo 256.
struct TrackSpec {
    using Runs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

    unsigned int id = 1;
    std::string handler = "vide";
    std::string format = "jpeg";
    std::uint32_t scale = 1000;
    std::uint32_t duration = 0;        ///< 0: the sum of stts
    Runs stts{};                       ///< count, duration
    Runs ctts{};                       ///< count, offset
    std::vector<std::uint32_t> sync{}; ///< empty and hasSync false: no table
    bool hasSync = false;
    std::vector<std::uint32_t> partialSync{};
    std::vector<std::uint32_t> sizes{};        ///< a table; or
    std::uint32_t constantSize = 0;            ///< one size for
    std::uint32_t constantCount = 0;           ///< so many samples, of
    std::uint32_t bytesPerSample = 0;          ///< so many bytes really (0: the constant size)
    std::vector<std::uint32_t> chunks{};       ///< samples in each chunk
    std::vector<std::uint32_t> descriptions{}; ///< description of each chunk (default 1)
    std::vector<Edit> edits{};
    std::vector<Bytes> entries{}; ///< whole sample entries; empty: a plain one of the format
    bool wide = false;            ///< 64-bit chunk offsets

    std::uint32_t sampleCount() const;
    std::uint32_t sizeOf(std::uint32_t i) const; ///< stored sample i, bytes
};

/// A video sample entry of 86 bytes, and a sound entry of version 0.
Bytes videoEntry(const std::string& format, std::uint16_t width, std::uint16_t height,
                 const Bytes& extensions = {});
Bytes soundEntry(const std::string& format, std::uint16_t channels, std::uint16_t bits, std::uint32_t rate,
                 const Bytes& extensions = {});
Bytes soundEntryV1(const std::string& format, std::uint16_t channels, std::uint16_t bits, std::uint32_t rate,
                   std::uint32_t samplesPerPacket, std::uint32_t bytesPerPacket, std::uint32_t bytesPerFrame,
                   const Bytes& extensions = {});

/// "ftyp", "mdat" with the chunks of all tracks, "moov".
Bytes movieBytes(const std::vector<TrackSpec>& tracks, std::uint32_t movieScale = 600);
/// The same movie's "moov" alone, with chunk offsets from `mediaStart` on.
Bytes moovBytes(const std::vector<TrackSpec>& tracks, std::uint32_t movieScale, std::uint64_t mediaStart);

/// Bytes of stored samples first .. first + count - 1 (from 0) as the movie holds them.
Bytes sampleBytes(const TrackSpec& track, std::uint32_t first, std::uint32_t count = 1);

/// An open movie over bytes in memory.
class MovieFile {
public:
    explicit MovieFile(const Bytes& bytes);
    explicit MovieFile(const TrackSpec& track, std::uint32_t movieScale = 600);

    Ketra::QT::QTMovie* operator->() const { return movie_.get(); }
    Ketra::QT::QTMovie* get() const { return movie_.get(); }
    explicit operator bool() const { return movie_ != nullptr; }
    Ketra::QT::QTTrack* track(std::size_t index = 0) const;
    Ketra::QT::QTStream& stream() { return stream_; }

private:
    Ketra::Ferro::RStream source_;
    Ketra::QT::QTCMStream stream_;
    std::unique_ptr<Ketra::QT::QTMovie> movie_;
};

} // namespace test
