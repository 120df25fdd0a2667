// Extension atoms behind the fixed part of a sample description, as bytes.
#pragma once

#include "remux/RawAtom.h"

#include <cstdint>

namespace Ketra::Tool {

void putNumber(Bytes& bytes, std::uint64_t value, unsigned int width); ///< big-endian
std::uint64_t numberIn(const Bytes& bytes, std::size_t at, unsigned int width);

unsigned int typeOf(const Bytes& atom);

/// The atoms from an offset on, as far as they are whole; a type of zero ends them.
std::vector<Bytes> extensionsOf(const Bytes& body, std::size_t from);
bool findExtension(const Bytes& body, std::size_t from, unsigned int type);

/// The same for sound, with the children of "wave" in its place.
std::vector<Bytes> flatExtensionsOf(const Bytes& body, std::size_t from);
/// Bytes of the fixed part of a sound description by its version.
std::size_t soundBodySize(const Bytes& body);

/// Atoms that a track that is written makes itself where its format needs them.
bool isBuiltExtension(unsigned int type);

/// A container with its child of that type replaced; empty when it has none.
Bytes withChild(const Bytes& container, const Bytes& child);

} // namespace Ketra::Tool
