#include "FileParts.h"

#include "../ToolError.h"
#include "PacketBytes.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>

namespace Ketra::Tool {

namespace {

constexpr unsigned int kHeader = 8;
constexpr unsigned int kLargeHeader = 16;
constexpr std::size_t kMostParts = 1 << 20;

std::uint64_t load64(const unsigned char* at) {
    return static_cast<std::uint64_t>(load32(at)) << 32 | load32(at + 4);
}

FilePart readPart(QT::QTStream& stream, std::uint64_t offset, std::uint64_t fileSize) {
    unsigned char header[kLargeHeader];
    readAt(stream, offset, header, kHeader);
    FilePart part{offset, load32(header), kHeader, load32(header + 4), false};
    if (part.size == 1) {
        readAt(stream, offset + kHeader, header + kHeader, kLargeHeader - kHeader);
        part.size = load64(header + kHeader);
        part.headerSize = kLargeHeader;
    } else if (part.size == 0) {
        part.size = fileSize - offset;
        part.toTheEnd = true;
    }
    if (part.size < part.headerSize || part.size > fileSize - offset) {
        throw ToolError(kMalformed, fmt::format("the atom at {} does not end in the file", offset));
    }
    return part;
}

} // namespace

std::vector<FilePart> filePartsOf(QT::QTStream& stream) {
    const auto fileSize = static_cast<std::uint64_t>(std::max<std::int64_t>(0, stream.size()));
    std::vector<FilePart> parts;
    for (std::uint64_t at = 0; fileSize - at >= kHeader; at = parts.back().end()) {
        if (parts.size() == kMostParts) throw ToolError(kMalformed, "the file has too many atoms");
        parts.push_back(readPart(stream, at, fileSize));
    }
    return parts;
}

void readAt(QT::QTStream& stream, std::uint64_t offset, unsigned char* to, std::size_t count) {
    const auto length = static_cast<std::int64_t>(count);
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) ||
        stream.lseek(static_cast<std::int64_t>(offset), 0) < 0 || stream.read(to, length) != length) {
        throw ToolError(kMalformed,
                        fmt::format("the file ends early: {} bytes at {} are missing", count, offset));
    }
}

std::vector<AtomBytes> childrenOf(ByteView payload, ByteBlock& rest) {
    std::vector<AtomBytes> children;
    std::size_t at = 0;
    while (payload.size - at >= kHeader) {
        const unsigned char* header = payload.data + at;
        const std::size_t size = load32(header);
        if (size < kHeader || size > payload.size - at) break;
        children.push_back({load32(header + 4), ByteBlock(header, header + size)});
        at += size;
    }
    rest.assign(payload.data + at, payload.data + payload.size);
    return children;
}

ByteView payloadOf(const ByteBlock& atom) {
    const std::size_t header = std::min<std::size_t>(kHeader, atom.size());
    return {atom.data() + header, atom.size() - header};
}

ByteBlock makeAtom(unsigned int type, const std::vector<AtomBytes>& children, const ByteBlock& rest) {
    std::uint64_t size = kHeader + rest.size();
    for (const AtomBytes& child : children) {
        size += child.bytes.size();
    }
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        throw ToolError(kNotAllowed, "the movie header would be too large");
    }
    ByteBlock atom(kHeader);
    atom.reserve(static_cast<std::size_t>(size));
    store32(atom.data(), static_cast<std::uint32_t>(size));
    store32(atom.data() + 4, type);
    for (const AtomBytes& child : children) {
        atom.insert(atom.end(), child.bytes.begin(), child.bytes.end());
    }
    atom.insert(atom.end(), rest.begin(), rest.end());
    return atom;
}

} // namespace Ketra::Tool
