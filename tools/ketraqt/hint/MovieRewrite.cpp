#include "MovieRewrite.h"

#include "../ToolError.h"
#include "PacketBytes.h"
#include "TrackBytes.h"

#include <algorithm>
#include <limits>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::uint64_t kLargestHeader = std::uint64_t{1} << 30;
constexpr std::size_t kBlock = std::size_t{1} << 20;

/// The movie header with a header of eight bytes.
ByteBlock readHeader(QT::QTStream& stream) {
    for (const FilePart& part : filePartsOf(stream)) {
        if (part.type == fourCC("moof")) {
            throw ToolError(kNotAllowed, "movies in fragments are not supported");
        }
    }
    for (const FilePart& part : filePartsOf(stream)) {
        if (part.type != fourCC("moov")) continue;
        if (part.size > kLargestHeader) throw ToolError(kNotAllowed, "the movie header is too large");
        ByteBlock payload(static_cast<std::size_t>(part.size - part.headerSize));
        readAt(stream, part.offset + part.headerSize, payload.data(), payload.size());
        ByteBlock rest;
        const ByteView view{payload.data(), payload.size()};
        const auto children = childrenOf(view, rest);
        if (!children.empty() && children.front().type == fourCC("cmov")) {
            throw ToolError(kNotAllowed, "compressed movie headers are not supported");
        }
        return makeAtom(fourCC("moov"), children, rest);
    }
    throw ToolError(kMalformed, "not a movie: there is no movie header");
}

} // namespace

MovieRewrite::MovieRewrite(QT::QTStream& stream) : stream_(stream), header_(readHeader(stream)) {
    for (const FilePart& place : filePartsOf(stream)) {
        parts_.push_back({place});
    }
    const FilePart first = moov();
    for (Part& part : parts_) {
        if (part.place.offset != first.offset) continue;
        part.fate = &part == &parts_.back() ? Fate::kDrop : Fate::kFree;
    }
}

const FilePart& MovieRewrite::moov() const {
    return std::find_if(parts_.begin(), parts_.end(),
                        [](const Part& part) { return part.place.type == fourCC("moov"); })
        ->place;
}

bool MovieRewrite::hasHints() const {
    const auto tracks = header_.tracks();
    return std::any_of(tracks.begin(), tracks.end(),
                       [](const ByteBlock* trak) { return isHintTrack(*trak); });
}

bool MovieRewrite::used(const FilePart& part, bool byHints) const {
    for (const ByteBlock* trak : header_.tracks()) {
        if (isHintTrack(*trak) != byHints) continue;
        for (const std::uint64_t offset : chunkOffsetsOf(*trak)) {
            if (part.holds(offset)) return true;
        }
    }
    return false;
}

void MovieRewrite::removeHints() {
    for (Part& part : parts_) {
        if (part.place.type == fourCC("mdat") && used(part.place, true) && !used(part.place, false)) {
            part.fate = Fate::kFree;
        }
    }
    // Nothing needs to stay in its place behind the last part that is kept.
    for (auto part = parts_.rbegin(); part != parts_.rend() && part->fate != Fate::kKeep; ++part) {
        part->fate = Fate::kDrop;
    }
    header_.removeHintTracks();
    header_.removeHintInformation();
}

void MovieRewrite::copyParts(AtomicFile& out) {
    for (const Part& part : parts_) {
        if (part.fate != Fate::kDrop) copyPart(out, part);
    }
}

void MovieRewrite::copyPart(AtomicFile& out, const Part& part) {
    const FilePart& place = part.place;
    ByteBlock block(kBlock);
    for (std::uint64_t at = place.offset; at < place.end();) {
        const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, place.end() - at));
        readAt(stream_, at, block.data(), count);
        if (at == place.offset) {
            if (part.fate == Fate::kFree) store32(block.data() + 4, fourCC("free"));
            if (place.toTheEnd) {
                // More follows now, so the size has to be told.
                if (place.size > std::numeric_limits<std::uint32_t>::max()) {
                    throw ToolError(kNotAllowed, "the last atom is too large to have a size of 32 bits");
                }
                store32(block.data(), static_cast<std::uint32_t>(place.size));
            }
        }
        out.write(block.data(), count);
        at += count;
    }
}

void MovieRewrite::writeHeader(AtomicFile& out) const {
    const ByteBlock bytes = header_.bytes();
    out.write(bytes.data(), bytes.size());
}

QT::QTMovieConstructionFlags MovieRewrite::flavour() {
    constexpr std::size_t kBrand = 4;
    unsigned char brand[kBrand] = {};
    for (const Part& part : parts_) {
        if (part.place.type != fourCC("ftyp") || part.place.size < part.place.headerSize + kBrand) continue;
        readAt(stream_, part.place.offset + part.place.headerSize, brand, kBrand);
        const unsigned int major = load32(brand);
        if (major == fourCC("qt  ")) return QT::kMOV;
        if (major >> 8 == fourCC("3g2a") >> 8) return QT::k3G2;
        if (major >> 16 == fourCC("3gp4") >> 16) return QT::k3GP;
        return QT::kMP4;
    }
    return QT::kMOV;
}

} // namespace Ketra::Tool
