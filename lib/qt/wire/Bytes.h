// Big-endian numbers at a byte address, and the plain codecs built on them.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace Ketra::QT::wire {

inline std::uint16_t load16(const unsigned char* p) { return static_cast<std::uint16_t>((p[0] << 8) | p[1]); }

inline std::uint32_t load32(const unsigned char* p) {
    return (static_cast<std::uint32_t>(p[0]) << 24) | (static_cast<std::uint32_t>(p[1]) << 16) |
           (static_cast<std::uint32_t>(p[2]) << 8) | static_cast<std::uint32_t>(p[3]);
}

inline std::uint64_t load64(const unsigned char* p) {
    return (static_cast<std::uint64_t>(load32(p)) << 32) | load32(p + 4);
}

inline void store16(unsigned char* p, std::uint64_t v) {
    p[0] = static_cast<unsigned char>(v >> 8);
    p[1] = static_cast<unsigned char>(v);
}

inline void store32(unsigned char* p, std::uint64_t v) {
    p[0] = static_cast<unsigned char>(v >> 24);
    p[1] = static_cast<unsigned char>(v >> 16);
    p[2] = static_cast<unsigned char>(v >> 8);
    p[3] = static_cast<unsigned char>(v);
}

inline void store64(unsigned char* p, std::uint64_t v) {
    store32(p, v >> 32);
    store32(p + 4, v);
}

/// A codec says how wide a field is in the file and how its value is read and written there.
struct U8 {
    static constexpr unsigned int width = 1;
    static std::uint8_t read(const unsigned char* p) { return *p; }
    static void write(unsigned char* p, std::uint64_t v) { *p = static_cast<unsigned char>(v); }
};

struct U16 {
    static constexpr unsigned int width = 2;
    static std::uint16_t read(const unsigned char* p) { return load16(p); }
    static void write(unsigned char* p, std::uint64_t v) { store16(p, v); }
};

struct U24 {
    static constexpr unsigned int width = 3;
    static std::uint32_t read(const unsigned char* p) {
        return (static_cast<std::uint32_t>(p[0]) << 16) | load16(p + 1);
    }
    static void write(unsigned char* p, std::uint64_t v) {
        p[0] = static_cast<unsigned char>(v >> 16);
        store16(p + 1, v);
    }
};

struct U32 {
    static constexpr unsigned int width = 4;
    static std::uint32_t read(const unsigned char* p) { return load32(p); }
    static void write(unsigned char* p, std::uint64_t v) { store32(p, v); }
};

struct U64 {
    static constexpr unsigned int width = 8;
    static std::uint64_t read(const unsigned char* p) { return load64(p); }
    static void write(unsigned char* p, std::uint64_t v) { store64(p, v); }
};

/// An IEEE 754 double.
struct F64 {
    static constexpr unsigned int width = 8;
    static double read(const unsigned char* p) { return std::bit_cast<double>(load64(p)); }
    static void write(unsigned char* p, double v) { store64(p, std::bit_cast<std::uint64_t>(v)); }
};

} // namespace Ketra::QT::wire
