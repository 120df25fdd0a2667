#include "support/MovieBytes.h"

#include <qt/QTTrack.h>

#include <array>

namespace test {

namespace {

Bytes big(std::uint64_t v, int bytes) {
    Bytes out;
    for (int i = bytes - 1; i >= 0; --i) {
        out.push_back(static_cast<unsigned char>(v >> (8 * i)));
    }
    return out;
}

const Bytes& identity() {
    static const Bytes matrix =
        hex("00010000 00000000 00000000 00000000 00010000 00000000 00000000 00000000 40000000");
    return matrix;
}

Bytes runs(const TrackSpec::Runs& table) {
    Bytes out = u32(table.size());
    for (const auto& [count, value] : table) {
        out = std::move(out) + u32(count) + u32(value);
    }
    return out;
}

Bytes numbers(const std::vector<std::uint32_t>& table) {
    Bytes out = u32(table.size());
    for (const std::uint32_t n : table) {
        out = std::move(out) + u32(n);
    }
    return out;
}

Bytes sampleToChunk(const TrackSpec& track) {
    std::vector<std::array<std::uint32_t, 3>> entries;
    for (std::size_t i = 0; i < track.chunks.size(); ++i) {
        const std::uint32_t description = i < track.descriptions.size() ? track.descriptions[i] : 1;
        if (!entries.empty() && entries.back()[1] == track.chunks[i] && entries.back()[2] == description)
            continue;
        entries.push_back({static_cast<std::uint32_t>(i + 1), track.chunks[i], description});
    }
    Bytes out = u32(entries.size());
    for (const auto& entry : entries) {
        out = std::move(out) + u32(entry[0]) + u32(entry[1]) + u32(entry[2]);
    }
    return out;
}

Bytes sampleTables(const TrackSpec& track, std::uint64_t& position) {
    Bytes entries = u32(track.entries.empty() ? 1 : track.entries.size());
    if (track.entries.empty()) {
        entries = std::move(entries) + (track.handler == "soun" ? soundEntry(track.format, 1, 16, track.scale)
                                                                : videoEntry(track.format, 32, 24));
    }
    for (const Bytes& entry : track.entries) {
        entries = std::move(entries) + entry;
    }
    Bytes out = fullAtom("stsd", entries) + fullAtom("stts", runs(track.stts));
    if (!track.ctts.empty()) out = std::move(out) + fullAtom("ctts", runs(track.ctts));
    if (track.hasSync || !track.sync.empty()) out = std::move(out) + fullAtom("stss", numbers(track.sync));
    if (!track.partialSync.empty()) out = std::move(out) + fullAtom("stps", numbers(track.partialSync));
    out = std::move(out) + fullAtom("stsc", sampleToChunk(track));
    if (track.constantSize) {
        out = std::move(out) + fullAtom("stsz", u32(track.constantSize) + u32(track.constantCount));
    } else {
        out = std::move(out) + fullAtom("stsz", u32(0) + numbers(track.sizes));
    }
    Bytes offsets = u32(track.chunks.size());
    std::uint32_t sample = 0;
    for (const std::uint32_t count : track.chunks) {
        offsets = std::move(offsets) + (track.wide ? u64(position) : u32(position));
        for (std::uint32_t k = 0; k < count; ++k) {
            position += track.sizeOf(sample++);
        }
    }
    return std::move(out) + (track.wide ? fullAtom("co64", offsets) : fullAtom("stco", offsets));
}

Bytes trackBytes(const TrackSpec& track, std::uint32_t movieScale, std::uint64_t& position) {
    std::uint64_t duration = track.duration;
    if (!duration) {
        for (const auto& [count, value] : track.stts) {
            duration += static_cast<std::uint64_t>(count) * value;
        }
    }
    const bool sound = track.handler == "soun";
    const std::uint64_t movieDuration = track.scale ? duration * movieScale / track.scale : 0;
    const Bytes header =
        fullAtom("tkhd", u32(0) + u32(0) + u32(track.id) + u32(0) + u32(movieDuration) + u64(0) + u16(0) +
                             u16(0) + u16(sound ? 0x0100 : 0) + u16(0) + identity() +
                             u32(sound ? 0 : 32U << 16) + u32(sound ? 0 : 24U << 16));
    Bytes edits;
    if (!track.edits.empty()) {
        Bytes list = u32(track.edits.size());
        for (const Edit& edit : track.edits) {
            list = std::move(list) + u32(edit.duration) + u32(edit.mediaTime) + u32(0x10000);
        }
        edits = atom("edts", fullAtom("elst", list));
    }
    const Bytes mediaHeader =
        fullAtom("mdhd", u32(0) + u32(0) + u32(track.scale) + u32(duration) + u16(0) + u16(0));
    const Bytes handler =
        fullAtom("hdlr", u32(0) + text(track.handler) + u32(0) + u32(0) + u32(0) + Bytes{0});
    const Bytes kind = sound ? fullAtom("smhd", u32(0)) : fullAtom("vmhd", u64(0));
    const Bytes source = atom("dinf", fullAtom("dref", u32(1) + hex("0000000C 'url ' 00000001")));
    const Bytes tables = atom("stbl", sampleTables(track, position));
    return atom("trak",
                header + edits + atom("mdia", mediaHeader + handler + atom("minf", kind + source + tables)));
}

} // namespace

Bytes u16(std::uint64_t v) { return big(v, 2); }
Bytes u32(std::uint64_t v) { return big(v, 4); }
Bytes u64(std::uint64_t v) { return big(v, 8); }
Bytes text(const std::string& s) { return Bytes(s.begin(), s.end()); }
Bytes fullAtom(const char (&type)[5], const Bytes& payload) { return atom(type, u32(0) + payload); }

std::uint32_t TrackSpec::sampleCount() const {
    return constantSize ? constantCount : static_cast<std::uint32_t>(sizes.size());
}

std::uint32_t TrackSpec::sizeOf(std::uint32_t i) const {
    if (constantSize) return bytesPerSample ? bytesPerSample : constantSize;
    return i < sizes.size() ? sizes[i] : 0;
}

Bytes videoEntry(const std::string& format, std::uint16_t width, std::uint16_t height,
                 const Bytes& extensions) {
    const Bytes body = text(format) + repeat(0, 6) + u16(1) + repeat(0, 16) + u16(width) + u16(height) +
                       u32(0x480000) + u32(0x480000) + u32(0) + u16(1) + repeat(0, 32) + u16(24) +
                       u16(0xFFFF) + extensions;
    return u32(body.size() + 4) + body;
}

namespace {

Bytes soundBody(const std::string& format, unsigned int version, std::uint16_t channels, std::uint16_t bits,
                std::uint32_t rate) {
    return text(format) + repeat(0, 6) + u16(1) + u16(version) + u16(0) + u32(0) + u16(channels) + u16(bits) +
           u16(0) + u16(0) + u32(static_cast<std::uint64_t>(rate) << 16);
}

} // namespace

Bytes soundEntry(const std::string& format, std::uint16_t channels, std::uint16_t bits, std::uint32_t rate,
                 const Bytes& extensions) {
    const Bytes body = soundBody(format, 0, channels, bits, rate) + extensions;
    return u32(body.size() + 4) + body;
}

Bytes soundEntryV1(const std::string& format, std::uint16_t channels, std::uint16_t bits, std::uint32_t rate,
                   std::uint32_t samplesPerPacket, std::uint32_t bytesPerPacket, std::uint32_t bytesPerFrame,
                   const Bytes& extensions) {
    const Bytes body = soundBody(format, 1, channels, bits, rate) + u32(samplesPerPacket) +
                       u32(bytesPerPacket) + u32(bytesPerFrame) + u32(2) + extensions;
    return u32(body.size() + 4) + body;
}

Bytes sampleBytes(const TrackSpec& track, std::uint32_t first, std::uint32_t count) {
    Bytes out;
    for (std::uint32_t i = first; i < first + count; ++i) {
        for (std::uint32_t k = 0; k < track.sizeOf(i); ++k) {
            out.push_back(static_cast<unsigned char>(i + k));
        }
    }
    return out;
}

Bytes moovBytes(const std::vector<TrackSpec>& tracks, std::uint32_t movieScale, std::uint64_t mediaStart) {
    std::uint64_t longest = 0;
    Bytes traks;
    for (const TrackSpec& track : tracks) {
        std::uint64_t duration = 0;
        for (const auto& [count, value] : track.stts) {
            duration += static_cast<std::uint64_t>(count) * value;
        }
        if (track.scale) longest = std::max(longest, duration * movieScale / track.scale);
        traks = std::move(traks) + trackBytes(track, movieScale, mediaStart);
    }
    const Bytes header =
        fullAtom("mvhd", u32(0) + u32(0) + u32(movieScale) + u32(longest) + u32(0x10000) + u16(0x100) +
                             repeat(0, 10) + identity() + repeat(0, 24) + u32(tracks.size() + 1));
    return atom("moov", header + traks);
}

Bytes movieBytes(const std::vector<TrackSpec>& tracks, std::uint32_t movieScale) {
    const Bytes brand = atom("ftyp", text("qt  ") + u32(0) + text("qt  "));
    Bytes media;
    for (const TrackSpec& track : tracks) {
        std::uint32_t sample = 0;
        for (const std::uint32_t count : track.chunks) {
            media = std::move(media) + sampleBytes(track, sample, count);
            sample += count;
        }
    }
    const std::uint64_t start = brand.size() + 8;
    return brand + atom("mdat", media) + moovBytes(tracks, movieScale, start);
}

MovieFile::MovieFile(const Bytes& bytes)
    : source_(new Ketra::Ferro::CMemoryStream(bytes.data(), static_cast<std::int64_t>(bytes.size()))),
      stream_(&source_), movie_(Ketra::QT::QTMovie::createNewQTMovieFromStream(&stream_, Ketra::QT::kMOV)) {}

MovieFile::MovieFile(const TrackSpec& track, std::uint32_t movieScale)
    : MovieFile(movieBytes({track}, movieScale)) {}

Ketra::QT::QTTrack* MovieFile::track(std::size_t index) const { return movie_->getTracks().at(index); }

} // namespace test
