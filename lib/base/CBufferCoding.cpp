// The two text codings of a byte buffer.
#include <base/CBuffer.h>
#include <base/CString.h>

#include <cstdint>
#include <limits>
#include <string>

namespace Ketra {
namespace {

constexpr char kHexDigits[] = "0123456789abcdef";
constexpr char kBase64Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

CString toText(const std::string& text) {
    return CString(text.data(), static_cast<unsigned int>(text.size()));
}

bool fitsInText(std::uint64_t size) { return size <= std::numeric_limits<unsigned int>::max(); }

int hexValue(unsigned char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

int base64Value(unsigned char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+') return 62;
    if (c == '/') return 63;
    return -1;
}

} // namespace

CString CBuffer::getHex() const {
    if (!fitsInText(std::uint64_t{getSize()} * 2)) return {};
    std::string text;
    text.reserve(std::size_t{getSize()} * 2);
    for (const char byte : bytes_) {
        const auto value = static_cast<unsigned char>(byte);
        text += kHexDigits[value >> 4];
        text += kHexDigits[value & 15];
    }
    return toText(text);
}

int CBuffer::setHex(const CString& text) {
    const unsigned char* digits = text.getData();
    const unsigned int length = text.getSize();
    if (length % 2) return -1;
    std::string bytes;
    bytes.reserve(length / 2);
    for (unsigned int i = 0; i < length; i += 2) {
        const int high = hexValue(digits[i]);
        const int low = hexValue(digits[i + 1]);
        if (high < 0 || low < 0) return -1;
        bytes += static_cast<char>(high << 4 | low);
    }
    bytes_.swap(bytes);
    return 0;
}

CString CBuffer::getBase64() const {
    const std::uint64_t length = (std::uint64_t{getSize()} + 2) / 3 * 4;
    if (!fitsInText(length)) return {};
    std::string text;
    text.reserve(static_cast<std::size_t>(length));
    const unsigned char* bytes = getData();
    for (unsigned int left = getSize(); left > 0;) {
        const unsigned int taken = left < 3 ? left : 3;
        unsigned int group = 0; // up to three bytes, high ones first, in 24 bits
        for (unsigned int i = 0; i < 3; ++i)
            group = group << 8 | (i < taken ? bytes[i] : 0u);
        for (unsigned int i = 0; i < 4; ++i)
            text += i <= taken ? kBase64Digits[group >> (18 - 6 * i) & 63] : '=';
        bytes += taken;
        left -= taken;
    }
    return toText(text);
}

int CBuffer::setBase64(const CString& text) {
    const unsigned char* digits = text.getData();
    const unsigned int length = text.getSize();
    if (length % 4) return -1;
    std::string bytes;
    bytes.reserve(length / 4 * std::size_t{3});
    for (unsigned int start = 0; start < length; start += 4) {
        unsigned int used = 4; // digits of this group; only the last one may be padded, by one or two
        if (start + 4 == length && digits[start + 3] == '=') used = digits[start + 2] == '=' ? 2 : 3;
        unsigned int group = 0;
        for (unsigned int i = 0; i < 4; ++i) {
            const int value = i < used ? base64Value(digits[start + i]) : 0;
            if (value < 0) return -1;
            group = group << 6 | static_cast<unsigned int>(value);
        }
        if ((used == 2 && group & 0xFFFF) || (used == 3 && group & 0xFF)) return -1;
        for (unsigned int i = 0; i + 1 < used; ++i)
            bytes += static_cast<char>(group >> (16 - 8 * i) & 255);
    }
    bytes_.swap(bytes);
    return 0;
}

} // namespace Ketra
