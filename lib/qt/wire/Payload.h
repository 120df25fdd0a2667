// The bytes of a leaf atom as they came from the source.
#pragma once

#include <qt/wire/Block.h>

#include <cstdint>

namespace Ketra::QT::wire {

/// `length` is the payload's own length, cut to what the source could hold; only the first `delivered` bytes
/// came from it, the rest and 16 bytes of slack are zero. `data` is null when nothing came at all.
struct Payload {
    MallocPtr data;
    std::uint64_t length = 0;
    std::uint64_t delivered = 0;

    explicit operator bool() const { return data != nullptr; }
};

} // namespace Ketra::QT::wire
