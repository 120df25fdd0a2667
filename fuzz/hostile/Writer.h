// Big-endian bytes with nested atoms, written front to back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace hostile {

using Bytes = std::vector<unsigned char>;

class Writer {
public:
    Writer& u8(std::uint64_t v) { return number(v, 1); }
    Writer& u16(std::uint64_t v) { return number(v, 2); }
    Writer& u24(std::uint64_t v) { return number(v, 3); }
    Writer& u32(std::uint64_t v) { return number(v, 4); }
    Writer& u64(std::uint64_t v) { return number(v, 8); }
    Writer& zeros(std::size_t count) {
        bytes_.insert(bytes_.end(), count, 0);
        return *this;
    }
    Writer& text(std::string_view s) {
        for (const char c : s) {
            bytes_.push_back(static_cast<unsigned char>(c));
        }
        return *this;
    }
    Writer& pascal(std::string_view s) { return u8(s.size()).text(s); }
    Writer& raw(const Bytes& b) {
        for (const unsigned char byte : b) {
            bytes_.push_back(byte);
        }
        return *this;
    }

    /// An atom around whatever `body` writes.
    template <class Body>
    Writer& atom(std::string_view type, Body body) {
        const std::size_t start = bytes_.size();
        u32(0).text(type);
        body();
        patch(start, bytes_.size() - start);
        return *this;
    }
    Writer& atom(std::string_view type) {
        return atom(type, [] {});
    }
    /// The same with version and flags in front of the body.
    template <class Body>
    Writer& full(std::string_view type, std::uint64_t versionAndFlags, Body body) {
        return atom(type, [&] {
            u32(versionAndFlags);
            body();
        });
    }
    /// The same with a 64-bit size.
    template <class Body>
    Writer& wideAtom(std::string_view type, Body body) {
        const std::size_t start = bytes_.size();
        u32(1).text(type).u64(0);
        body();
        patch(start + 12, bytes_.size() - start);
        return *this;
    }

    void patch(std::size_t at, std::uint64_t v) {
        for (std::size_t i = 0; i < 4; ++i) {
            bytes_[at + i] = static_cast<unsigned char>(v >> (24 - 8 * i));
        }
    }
    std::size_t size() const { return bytes_.size(); }
    const Bytes& bytes() const { return bytes_; }
    Bytes take() { return std::move(bytes_); }

private:
    Writer& number(std::uint64_t v, int count) {
        while (count > 0) {
            bytes_.push_back(static_cast<unsigned char>(v >> (8 * --count)));
        }
        return *this;
    }

    Bytes bytes_;
};

} // namespace hostile
