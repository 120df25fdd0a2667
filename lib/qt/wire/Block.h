// Owned malloc blocks: what frames, payloads and raw fields are made of.
#pragma once

#include <qt/QTFrame.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace Ketra::QT::wire {

struct FreeDeleter {
    void operator()(unsigned char* p) const { std::free(p); }
};
using MallocPtr = std::unique_ptr<unsigned char, FreeDeleter>;

/// A zeroed block, or null when it cannot be had. Never a zero-length allocation.
inline MallocPtr allocate(std::uint64_t length) {
    if (length > std::numeric_limits<std::size_t>::max() / 2) return nullptr;
    return MallocPtr(
        static_cast<unsigned char*>(std::calloc(length ? static_cast<std::size_t>(length) : 1, 1)));
}

/// The same without the zeroing, for blocks that are filled at once.
inline MallocPtr allocateRaw(std::uint64_t length) {
    if (length > std::numeric_limits<std::size_t>::max() / 2) return nullptr;
    return MallocPtr(static_cast<unsigned char*>(std::malloc(length ? static_cast<std::size_t>(length) : 1)));
}

/// The frame that every serialize() returns: one sample, no times. Null when memory is out.
inline QTFrame* makeFrame(unsigned int length, MallocPtr block) {
    auto* frame = new (std::nothrow) QTFrame(length, block.get(), 0, 0, false, 1, 0, 0, false);
    if (frame && length) static_cast<void>(block.release());
    return frame;
}

/// A raw field of an atom: bytes and their count, copied with the atom.
class Block {
public:
    Block() = default;
    Block(const Block& other) { assign(other.data(), other.size()); }
    Block(Block&& other) noexcept { swap(other); }
    Block& operator=(Block other) noexcept {
        swap(other);
        return *this;
    }
    ~Block() = default;

    unsigned char* data() const { return bytes_.get(); }
    std::uint64_t size() const { return size_; }
    explicit operator bool() const { return bytes_ != nullptr; }

    /// Copies; a block that cannot be had leaves the field empty.
    void assign(const unsigned char* data, std::uint64_t size) {
        MallocPtr copy = data ? allocateRaw(size) : nullptr;
        if (copy && data && size) std::memcpy(copy.get(), data, static_cast<std::size_t>(size));
        size_ = copy ? size : 0;
        bytes_ = std::move(copy);
    }
    /// Adopts a malloc block; the block already held is a no-op.
    void adopt(unsigned char* data, std::uint64_t size) {
        if (data != bytes_.get()) bytes_.reset(data);
        size_ = data ? size : 0;
    }
    void adopt(MallocPtr data, std::uint64_t size) { adopt(data.release(), size); }
    unsigned char* release() {
        size_ = 0;
        return bytes_.release();
    }
    void clear() {
        bytes_.reset();
        size_ = 0;
    }
    void swap(Block& other) noexcept {
        bytes_.swap(other.bytes_);
        std::swap(size_, other.size_);
    }

private:
    MallocPtr bytes_;
    std::uint64_t size_ = 0;
};

} // namespace Ketra::QT::wire
