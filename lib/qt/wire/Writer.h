// The writing and the measuring visitor of a layout.
#pragma once

#include <qt/wire/Access.h>
#include <qt/wire/Oddities.h>

#include <cstdint>
#include <cstring>

namespace Ketra::QT::wire {

/// Writes fields front to back into a block that is long enough, or only counts them when it is given none:
/// measuring is writing without a block, so the two cannot disagree.
class Writer {
public:
    static constexpr bool kReads = false;

    explicit Writer(unsigned char* block = nullptr) : block_(block) {}

    std::uint64_t written() const { return at_; }

    template <class Codec, class T>
    void as(const T& value) {
        if (block_) Codec::write(block_ + at_, value);
        at_ += Codec::width;
    }
    template <class T>
    void u8(const T& value) {
        as<U8>(static_cast<std::uint64_t>(value));
    }
    template <class T>
    void u16(const T& value) {
        as<U16>(static_cast<std::uint64_t>(value));
    }
    template <class T>
    void u32(const T& value) {
        as<U32>(static_cast<std::uint64_t>(value));
    }
    template <class T>
    void u64(const T& value) {
        as<U64>(static_cast<std::uint64_t>(value));
    }
    void flags(unsigned int value) { as<odd::Flags>(value); }

    template <class Atom>
    void versionAndFlags(const Atom& atom) {
        Access::versionAndFlags(atom, *this);
    }
    void skip(std::uint64_t count) {
        if (block_) std::memset(block_ + at_, 0, static_cast<std::size_t>(count));
        at_ += count;
    }
    void bytes(const unsigned char* from, std::uint64_t count) {
        if (block_ && count) std::memcpy(block_ + at_, from, static_cast<std::size_t>(count));
        at_ += count;
    }
    void rest(const Block& block) { bytes(block.data(), block.size()); }
    void raw(const Block& block, std::uint64_t) { rest(block); }

    template <class Table>
    void counted(const Table& table) {
        u32(table.declared);
        entries(table, table.held());
    }
    template <class Table>
    void entries(const Table& table, std::uint64_t) {
        at_ += table.write(block_ ? block_ + at_ : nullptr);
    }

private:
    unsigned char* block_;
    std::uint64_t at_ = 0;
};

} // namespace Ketra::QT::wire
