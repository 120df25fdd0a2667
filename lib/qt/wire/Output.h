// The block that a header is written into.
#pragma once

#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Ketra::QT::wire {

/// Atoms follow one another in one block, however deep they stand in the tree: a header of ten million
/// samples is not copied from level to level. Bytes that nobody writes are zero.
class Output {
public:
    std::uint64_t size() const { return size_; }
    unsigned char* at(std::uint64_t offset) const { return block_.get() + offset; }

    /// Makes room for the whole at once, where its length is known beforehand and there is the memory.
    void reserve(std::uint64_t length) {
        if (!block_) grow(length);
    }
    /// Adds zeros, to be written to by at(size() before); false, and nothing added, without memory.
    bool extend(std::uint64_t count) {
        if (count > kMost - size_) return false;
        if (count > room_ - size_ && !grow(std::max(size_ + count, room_ + room_ / 2))) return false;
        size_ += count;
        return true;
    }
    bool append(const unsigned char* bytes, std::uint64_t count) {
        const std::uint64_t begin = size_;
        if (!extend(count)) return false;
        if (bytes && count) std::memcpy(at(begin), bytes, static_cast<std::size_t>(count));
        return true;
    }
    /// Takes back what was added since.
    void rollBack(std::uint64_t size) {
        if (size_ > size) std::memset(at(size), 0, static_cast<std::size_t>(size_ - size));
        size_ = std::min(size_, size);
    }
    /// The caller's frame; null when nothing fits into one.
    QTFrame* release() {
        if (size_ > std::numeric_limits<unsigned int>::max()) return nullptr;
        return makeFrame(static_cast<unsigned int>(size_), std::move(block_));
    }

private:
    static constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();

    bool grow(std::uint64_t room) {
        if (!block_) {
            block_ = allocate(room);
            if (!block_) return false;
        } else {
            if (room > std::numeric_limits<std::size_t>::max() / 2) return false;
            auto* grown =
                static_cast<unsigned char*>(std::realloc(block_.get(), static_cast<std::size_t>(room)));
            if (!grown) return false;
            static_cast<void>(block_.release());
            block_.reset(grown);
            std::memset(grown + room_, 0, static_cast<std::size_t>(room - room_));
        }
        room_ = room;
        return true;
    }

    MallocPtr block_;
    std::uint64_t size_ = 0;
    std::uint64_t room_ = 0;
};

/// The frame of what `write(output)` writes; null when it says false.
template <class Write>
QTFrame* frameOf(Write write) {
    Output out;
    return write(out) ? out.release() : nullptr;
}

} // namespace Ketra::QT::wire
