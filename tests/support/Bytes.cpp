#include "support/Bytes.h"

#include <stdexcept>

namespace test {

namespace {

int digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

Bytes hex(const char* text) {
    Bytes out;
    int high = -1;
    for (const char* p = text; *p; ++p) {
        if (*p == '\'') {
            for (++p; *p && *p != '\''; ++p) {
                out.push_back(static_cast<unsigned char>(*p));
            }
            if (!*p) throw std::invalid_argument("quote without an end");
        } else if (const int d = digit(*p); d >= 0) {
            if (high < 0) {
                high = d;
            } else {
                out.push_back(static_cast<unsigned char>(high * 16 + d));
                high = -1;
            }
        }
    }
    if (high >= 0) throw std::invalid_argument("odd number of hexadecimal digits");
    return out;
}

Bytes hex(std::initializer_list<const char*> lines) {
    Bytes out;
    for (const char* line : lines) {
        out = std::move(out) + hex(line);
    }
    return out;
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Bytes atom(const char (&type)[5], const Bytes& payload) {
    const std::size_t size = payload.size() + 8;
    Bytes out;
    for (int shift = 24; shift >= 0; shift -= 8) {
        out.push_back(static_cast<unsigned char>(size >> shift));
    }
    out.insert(out.end(), type, type + 4);
    return std::move(out) + payload;
}

Bytes join(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts) {
        out = std::move(out) + part;
    }
    return out;
}

Bytes repeat(unsigned char value, std::size_t count) { return Bytes(count, value); }

Bytes take(Ketra::QT::QTFrame* frame) {
    const std::unique_ptr<Ketra::QT::QTFrame> owned(frame);
    if (!owned || !owned->getData()) return {};
    return Bytes(owned->getData(), owned->getData() + owned->getDataLength());
}

std::string show(const Bytes& bytes) {
    static const char kDigits[] = "0123456789abcdef";
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i && i % 4 == 0) out += ' ';
        out += kDigits[bytes[i] >> 4];
        out += kDigits[bytes[i] & 15];
    }
    return out;
}

} // namespace test
