// Big-endian numbers anywhere in a file, or in a header that was inflated from one.
#pragma once

#include <qt/QTStream.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Ketra::Tool {

class Bytes {
public:
    explicit Bytes(QT::QTStream& stream);                   ///< borrowed
    Bytes(const unsigned char* memory, std::uint64_t size); ///< borrowed

    std::uint64_t size() const { return size_; }

    /// How many of the bytes there are; the others become zeros.
    std::size_t read(std::uint64_t at, unsigned char* to, std::size_t count);

    /// Zero behind the end. Small steps forward are cheap.
    unsigned int u8(std::uint64_t at) { return static_cast<unsigned int>(number(at, 1)); }
    unsigned int u16(std::uint64_t at) { return static_cast<unsigned int>(number(at, 2)); }
    unsigned int u32(std::uint64_t at) { return static_cast<unsigned int>(number(at, 4)); }
    std::uint64_t u64(std::uint64_t at) { return number(at, 8); }

private:
    std::uint64_t number(std::uint64_t at, unsigned int count);

    static constexpr std::size_t kBlock = 4096;

    QT::QTStream* stream_ = nullptr;
    const unsigned char* memory_ = nullptr;
    std::uint64_t size_;
    std::uint64_t blockAt_ = 0;
    std::size_t blockSize_ = 0;
    std::array<unsigned char, kBlock> block_;
};

/// The rows of a table, one after the other, each of some numbers of one width. Tables that are read side by
/// side do not disturb each other.
class Rows {
public:
    Rows() = default;
    Rows(Bytes& bytes, std::uint64_t at, std::uint64_t count, unsigned int rowSize);

    std::uint64_t left() const { return left_; }
    std::uint64_t at() const { return at_; } ///< where the current row starts
    bool next();                             ///< to the next row, the first at first; false behind the last

    unsigned int u8(unsigned int from) const { return row()[from]; }
    unsigned int u16(unsigned int from) const { return u8(from) << 8 | u8(from + 1); }
    unsigned int u32(unsigned int from) const { return u16(from) << 16 | u16(from + 2); }
    std::uint64_t u64(unsigned int from) const { return std::uint64_t{u32(from)} << 32 | u32(from + 4); }

private:
    const unsigned char* row() const { return buffer_.data() + (at_ - bufferAt_); }

    Bytes* bytes_ = nullptr;
    std::uint64_t at_ = 0;
    std::uint64_t left_ = 0; // behind the current one
    unsigned int rowSize_ = 0;
    bool started_ = false;
    std::uint64_t bufferAt_ = 0;
    std::vector<unsigned char> buffer_;
};

} // namespace Ketra::Tool
