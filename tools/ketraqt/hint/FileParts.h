// A movie file as the atoms at its top, and its movie header as bytes that can be taken apart.
#pragma once

#include "Packetizer.h"

#include <qt/QTStream.h>

namespace Ketra::Tool {

/// An atom at the top of a file.
struct FilePart {
    std::uint64_t offset = 0;
    std::uint64_t size = 0; ///< header included
    unsigned int headerSize = 8;
    unsigned int type = 0;
    bool toTheEnd = false; ///< its size field says "to the end of the file"

    std::uint64_t end() const { return offset + size; }
    bool holds(std::uint64_t position) const { return position >= offset && position < end(); }
};

/// Throws ToolError when the atoms do not fill the file.
std::vector<FilePart> filePartsOf(QT::QTStream& stream);

/// Throws ToolError when the file does not have these bytes.
void readAt(QT::QTStream& stream, std::uint64_t offset, unsigned char* to, std::size_t count);

/// An atom among the bytes of another.
struct AtomBytes {
    unsigned int type = 0;
    ByteBlock bytes; ///< header included
};

/// The children of an atom whose payload is nothing else. What follows the last whole one is left in `rest`.
std::vector<AtomBytes> childrenOf(ByteView payload, ByteBlock& rest);

/// The payload of an atom with a header of eight bytes.
ByteView payloadOf(const ByteBlock& atom);

/// Header, children, rest.
ByteBlock makeAtom(unsigned int type, const std::vector<AtomBytes>& children, const ByteBlock& rest);

} // namespace Ketra::Tool
