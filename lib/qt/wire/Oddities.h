// Every deliberate asymmetry of the wire format, as a named codec: whoever reads this file has seen them all.
//
// A codec has a width in bytes, read() from a file address and write() to one. Readers of files in the field
// depend on what is written here, and callers on what is read, so these rules are kept exactly.
#pragma once

#include <qt/wire/Bytes.h>
#include <qt/wire/Numbers.h>

#include <cmath>

namespace Ketra::QT::wire::odd {

/// The value as fixed point: the fraction is scaled by 2^bits - 1 (not 2^bits) and truncated toward zero,
/// the integer part is truncated and shifted. The caller takes the low bits.
inline std::uint64_t toFixed(double x, unsigned int fractionBits, double fractionScale) {
    const std::int64_t fraction = toInteger(std::fmod(x, 1.0) * fractionScale);
    const auto whole = static_cast<std::uint64_t>(toInteger(x)) << fractionBits;
    return static_cast<std::uint64_t>(fraction) + whole;
}

/// Flags of a full atom: three bytes read least significant first, written most significant first with each
/// byte cut to its low four bits. Flags read from a file come out reversed when they are written again.
struct Flags {
    static constexpr unsigned int width = 3;
    static unsigned int read(const unsigned char* p) {
        return p[0] | (static_cast<unsigned int>(p[1]) << 8) | (static_cast<unsigned int>(p[2]) << 16);
    }
    static void write(unsigned char* p, unsigned int v) {
        p[0] = static_cast<unsigned char>((v >> 16) & 0x0F);
        p[1] = static_cast<unsigned char>((v >> 8) & 0x0F);
        p[2] = static_cast<unsigned char>(v & 0x0F);
    }
};

/// Six reserved bytes: read as three words w0 w1 w2 of which w0 is not shifted and w1 is sign-extended,
/// written most significant first with each byte cut to its low four bits.
struct Reserved48 {
    static constexpr unsigned int width = 6;
    static std::uint64_t read(const unsigned char* p) {
        const auto middle = static_cast<std::int32_t>(static_cast<std::uint32_t>(load16(p + 2)) << 16);
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(middle)) | load16(p + 4) | load16(p);
    }
    static void write(unsigned char* p, std::uint64_t v) {
        for (unsigned int i = 0; i < 6; ++i) {
            p[i] = static_cast<unsigned char>((v >> (8 * (5 - i))) & 0x0F);
        }
    }
};

/// 8.8: read as the integer byte alone, except that a fraction byte of 0xFF reads as 256; written with a
/// fraction scale of 255.
struct Fixed8_8 {
    static constexpr unsigned int width = 2;
    static float read(const unsigned char* p) { return p[1] == 0xFF ? 256.0F : static_cast<float>(p[0]); }
    static void write(unsigned char* p, float v) { store16(p, toFixed(static_cast<double>(v), 8, 255.0)); }
};

/// 16.16: the integer half is read least significant byte first (1.0 reads as 256), except that a fraction of
/// 0xFFFF reads as 65536; written in true order with a fraction scale of 65535.
struct Fixed16_16 {
    static constexpr unsigned int width = 4;
    static float read(const unsigned char* p) {
        if (p[2] == 0xFF && p[3] == 0xFF) return 65536.0F;
        return static_cast<float>(p[0] + 256 * p[1]);
    }
    static void write(unsigned char* p, float v) { store32(p, toFixed(static_cast<double>(v), 16, 65535.0)); }
};

/// 2.30, the third column of a matrix: written with a fraction scale of 2^30 - 1. Never read as a number.
struct Fixed2_30 {
    static constexpr unsigned int width = 4;
    static void write(unsigned char* p, float v) {
        store32(p, toFixed(static_cast<double>(v), 30, 1073741823.0));
    }
};

/// A 16.16 dimension read as its integer part only; written with a fraction scale of 65535.
struct WholeFixed16_16 {
    static constexpr unsigned int width = 4;
    static float read(const unsigned char* p) { return static_cast<float>(load16(p)); }
    static void write(unsigned char* p, float v) { Fixed16_16::write(p, v); }
};

/// A 16.16 number read as its integer part, to which a fraction of 0xFFFF adds one; written with a fraction
/// scale of 65535. Resolutions and sample rates of sample descriptions.
struct RoundedFixed16_16 {
    static constexpr unsigned int width = 4;
    static unsigned int read(const unsigned char* p) {
        return load16(p) + static_cast<unsigned int>(load16(p + 2)) / 65535;
    }
    static void write(unsigned char* p, float v) { Fixed16_16::write(p, v); }
};

/// The rate of an edit, 16.16 with a fraction scale of 65535 on both sides: what is read is what was written.
struct Rate16_16 {
    static constexpr unsigned int width = 4;
    static float read(const unsigned char* p) {
        const auto whole = static_cast<std::int16_t>(load16(p));
        return static_cast<float>(whole) + static_cast<float>(load16(p + 2)) / 65535.0F;
    }
    static void write(unsigned char* p, float v) { Fixed16_16::write(p, v); }
};

/// The size of an MPEG-4 descriptor as it is written: always four bytes, of which the third only says whether
/// the size reaches 128, so that bits above bit 7 are lost. Read as any number of seven-bit groups.
struct DescriptorSize {
    static constexpr unsigned int width = 4;
    static void write(unsigned char* p, std::uint64_t size) {
        p[0] = 0x80;
        p[1] = 0x80;
        p[2] = size < 128 ? 0x80 : 0x81;
        p[3] = static_cast<unsigned char>(size & 0x7F);
    }
};

/// The name of a video compressor, 32 bytes: a length byte and the name. A length byte above 31 means that
/// the field is plain text, length byte included; a name of 32 bytes is written back that way.
struct CompressorName {
    static constexpr unsigned int width = 32;
    unsigned char text[33] = {}; // ends with a zero byte
    unsigned int length = 0;

    static CompressorName read(const unsigned char* p) {
        CompressorName name;
        const bool plain = p[0] > 31;
        name.assign(plain ? p : p + 1, plain ? width : p[0]);
        return name;
    }
    static void write(unsigned char* p, const CompressorName& name) {
        const bool plain = name.length >= width;
        std::memset(p, 0, width);
        if (!plain) *p++ = static_cast<unsigned char>(name.length);
        std::memcpy(p, name.text, name.length);
    }
    void assign(const unsigned char* bytes, unsigned int count) {
        length = count < width ? count : width;
        std::memset(text, 0, sizeof text);
        if (length) std::memcpy(text, bytes, length);
    }
};

/// Three colour words of which one value is held: written three times, read as red OR blue.
struct OneColor {
    static constexpr unsigned int width = 6;
    static unsigned short read(const unsigned char* p) {
        return static_cast<unsigned short>(load16(p) | load16(p + 4));
    }
    static void write(unsigned char* p, unsigned short v) {
        store16(p, v);
        store16(p + 2, v);
        store16(p + 4, v);
    }
};

/// A transformation matrix of nine words taken as unsigned integers: the third column is written as 2.30, all
/// else as 16.16. Matrix words copied from a file are file-order bytes, so writing them does not restore
/// them.
struct IntegerMatrix {
    static constexpr unsigned int width = 36;
    static void write(unsigned char* p, const unsigned int* words) {
        for (unsigned int i = 0; i < 9; ++i, p += 4) {
            const auto value = static_cast<float>(words[i]);
            if (i % 3 == 2) {
                Fixed2_30::write(p, value);
            } else {
                Fixed16_16::write(p, value);
            }
        }
    }
};

/// A dimension of which only whole pixels are held: the fraction is dropped on reading and written as 0.
struct WholePixels {
    static constexpr unsigned int width = 4;
    static unsigned int read(const unsigned char* p) { return load16(p); }
    static void write(unsigned char* p, unsigned int v) { store32(p, static_cast<std::uint64_t>(v) << 16); }
};

/// Gamma as 16.16: read without a byte swap, as the low half of the little-endian word (plus 65536 when the
/// high half is all ones), so that 2.2 reads as 512; written in true order with a fraction scale of 65535.
struct Gamma {
    static constexpr unsigned int width = 4;
    static float read(const unsigned char* p) {
        const std::uint32_t unswapped = p[0] | (static_cast<std::uint32_t>(p[1]) << 8) |
                                        (static_cast<std::uint32_t>(p[2]) << 16) |
                                        (static_cast<std::uint32_t>(p[3]) << 24);
        return static_cast<float>(((unswapped >> 16) / 65535 + 65535) & unswapped);
    }
    static void write(unsigned char* p, float v) { Fixed16_16::write(p, v); }
};

/// The matrix of text media information: the ones of its 16.16 diagonal stand a byte late (bytes 2 and 18
/// where 1 and 17 would be 1.0). Readers ignore this matrix.
struct TextMatrix {
    static constexpr unsigned int width = 36;
    static void write(unsigned char* p, unsigned int) {
        std::memset(p, 0, width);
        p[2] = 0x01;
        p[18] = 0x01;
        p[32] = 0x40;
    }
};

} // namespace Ketra::QT::wire::odd
