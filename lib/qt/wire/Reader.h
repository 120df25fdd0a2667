// The reading visitor of a layout: bounded by what was delivered and sticky when it fails.
#pragma once

#include <qt/wire/Access.h>
#include <qt/wire/Oddities.h>
#include <qt/wire/Payload.h>

#include <algorithm>
#include <cstdint>

namespace Ketra::QT::wire {

/// Reads a payload front to back. Past the end every field is 0, a partly delivered number is completed with
/// zero bytes, and a table ends at the last whole entry.
class Reader {
public:
    static constexpr bool kReads = true;

    /// Owns the payload, so that a table can take the block over instead of copying it.
    explicit Reader(Payload payload)
        : payload_(std::move(payload)), data_(payload_.data.get()), end_(payload_.delivered) {}
    /// Reads bytes that somebody else owns.
    Reader(const unsigned char* data, std::uint64_t size) : data_(data), end_(size) {}

    bool failed() const { return failed_; }
    std::uint64_t left() const { return end_ - at_; }
    std::uint64_t position() const { return at_; }
    const unsigned char* cursor() const { return data_ + at_; }

    template <class Codec, class T>
    void as(T& value) {
        if (left() >= Codec::width) {
            value = static_cast<T>(Codec::read(cursor()));
            at_ += Codec::width;
            return;
        }
        unsigned char padded[Codec::width] = {};
        std::copy_n(cursor(), left(), padded);
        value = static_cast<T>(Codec::read(padded));
        at_ = end_;
        failed_ = true;
    }
    template <class T>
    void u8(T& value) {
        as<U8>(value);
    }
    template <class T>
    void u16(T& value) {
        as<U16>(value);
    }
    template <class T>
    void u32(T& value) {
        as<U32>(value);
    }
    template <class T>
    void u64(T& value) {
        as<U64>(value);
    }
    void flags(unsigned int& value) { as<odd::Flags>(value); }

    /// The one version byte and three flag bytes of a full atom.
    template <class Atom>
    void versionAndFlags(Atom& atom) {
        Access::versionAndFlags(atom, *this);
    }
    /// Bytes without a meaning of their own; written as zeros.
    void skip(std::uint64_t count) {
        failed_ = failed_ || count > left();
        at_ += std::min(count, left());
    }
    /// A field of fixed length that is copied unchanged, completed with zeros.
    void bytes(unsigned char* to, std::uint64_t count) {
        const std::uint64_t held = std::min(count, left());
        std::copy_n(cursor(), held, to);
        std::fill_n(to + held, count - held, static_cast<unsigned char>(0));
        skip(count);
    }
    /// Everything up to the end, kept raw.
    void rest(Block& block) { raw(block, left()); }
    /// A raw field whose length another field gave; cut to what is there.
    void raw(Block& block, std::uint64_t count) {
        const std::uint64_t held = std::min(count, left());
        if (held) {
            block.assign(cursor(), held);
        } else {
            block.clear();
        }
        skip(count);
    }

    /// A count field and that many entries. The iterator is reset only when the count is not 0.
    ///
    /// An entry is believed when it lies whole within the delivered bytes; the count field stays as it is, so
    /// a count that promises more shows as a mismatch when the atom is written again.
    template <class Table>
    void counted(Table& table) {
        u32(table.declared);
        if (table.declared == 0) return;
        entries(table, table.declared);
        table.cursor = 0;
    }
    /// Up to `count` entries without a count field of their own.
    template <class Table>
    void entries(Table& table, std::uint64_t count) {
        at_ += table.adoptPacked(payload_, data_, at_, count, end_);
    }

private:
    Payload payload_;
    const unsigned char* data_;
    std::uint64_t at_ = 0;
    std::uint64_t end_;
    bool failed_ = false;
};

} // namespace Ketra::QT::wire
