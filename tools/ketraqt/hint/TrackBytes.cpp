#include "TrackBytes.h"

#include "PacketBytes.h"

#include <qt/QTTypes.h>

#include <algorithm>
#include <initializer_list>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::size_t kFullHeader = 12; // with version and flags

/// The atom at the end of the path below `atom`; empty without one.
ByteBlock atomBelow(ByteBlock atom, std::initializer_list<unsigned int> path) {
    for (const unsigned int type : path) {
        ByteBlock rest;
        ByteBlock found;
        for (AtomBytes& child : childrenOf(payloadOf(atom), rest)) {
            if (child.type == type && found.empty()) found = std::move(child.bytes);
        }
        atom = std::move(found);
    }
    return atom;
}

} // namespace

unsigned int trackIDOf(const ByteBlock& trak) {
    const ByteBlock header = atomBelow(trak, {fourCC("tkhd")});
    const std::size_t at = header.size() > kFullHeader && header[8] == 1 ? 28 : 20;
    return header.size() >= at + 4 ? load32(header.data() + at) : 0;
}

bool isHintTrack(const ByteBlock& trak) {
    const ByteBlock handler = atomBelow(trak, {fourCC("mdia"), fourCC("hdlr")});
    constexpr std::size_t kSubType = kFullHeader + 4;
    return handler.size() >= kSubType + 4 && load32(handler.data() + kSubType) == fourCC("hint");
}

std::vector<std::uint64_t> chunkOffsetsOf(const ByteBlock& trak) {
    const ByteBlock tables = atomBelow(trak, {fourCC("mdia"), fourCC("minf"), fourCC("stbl")});
    std::vector<std::uint64_t> offsets;
    for (const auto& [type, width] : {std::pair{fourCC("stco"), 4U}, std::pair{fourCC("co64"), 8U}}) {
        const ByteBlock table = atomBelow(tables, {type});
        if (table.size() < kFullHeader + 4) continue;
        const std::size_t fits = (table.size() - kFullHeader - 4) / width;
        const std::size_t count = std::min<std::size_t>(load32(table.data() + kFullHeader), fits);
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned char* at = table.data() + kFullHeader + 4 + i * width;
            offsets.push_back(width == 4 ? load32(at)
                                         : static_cast<std::uint64_t>(load32(at)) << 32 | load32(at + 4));
        }
    }
    return offsets;
}

} // namespace Ketra::Tool
