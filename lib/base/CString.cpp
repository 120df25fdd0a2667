#include <base/CString.h>

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace Ketra {
namespace {

unsigned int lengthOf(const char* text) {
    const std::size_t length = text ? std::strlen(text) : 0;
    if (length > UINT_MAX) throw std::length_error("Ketra::CString");
    return static_cast<unsigned int>(length);
}

bool isEqual(const CString& string, const char* text) {
    const std::size_t length = text ? std::strlen(text) : 0;
    return length == string.getSize() && (length == 0 || std::memcmp(string.getData(), text, length) == 0);
}

// Moves the letters of one case, first to last, to the other one.
CString withLettersMoved(const CString& string, char first, char last, int distance) {
    CString moved(string);
    unsigned char* bytes = moved.getData();
    for (unsigned int i = 0; i < moved.getSize(); ++i)
        if (bytes[i] >= first && bytes[i] <= last) bytes[i] = static_cast<unsigned char>(bytes[i] + distance);
    return moved;
}

} // namespace

CString::CString() = default;
CString::CString(const char* text) : CBuffer(text, lengthOf(text)) {}
CString::CString(const char* text, unsigned int length) : CBuffer(text, length) {}
CString::CString(const CString&) = default;
CString::CString(CString&&) noexcept = default;
CString& CString::operator=(const CString&) = default;
CString& CString::operator=(CString&&) noexcept = default;
CString::~CString() = default;

CString CString::createWithFormat(const char* format, ...) {
    if (!format) return {};
    va_list measured;
    va_start(measured, format);
    va_list printed;
    va_copy(printed, measured);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    CString text;
    if (length > 0) {
        // vsnprintf ends with a zero of its own, which has no room in the string.
        try {
            std::vector<char> room(static_cast<std::size_t>(length) + 1);
            const int written = std::vsnprintf(room.data(), room.size(), format, printed);
            if (written == length) text.set(room.data(), static_cast<unsigned int>(length));
        } catch (...) {
            va_end(printed);
            throw;
        }
    }
    va_end(printed);
    return text;
}

const char* CString::c_str() const { return reinterpret_cast<const char*>(getData()); }
unsigned int CString::getLength() const { return getSize(); }

CString CString::getSubString(unsigned int start, unsigned int length) const {
    if (start >= getSize()) return {};
    return CString(c_str() + start, std::min(length, getSize() - start));
}

int CString::reverseFind(char c) const {
    for (unsigned int i = getSize(); i > 0; --i)
        if (c_str()[i - 1] == c && i - 1 <= INT_MAX) return static_cast<int>(i - 1);
    return -1;
}

CString CString::getLowerCaseString() const { return withLettersMoved(*this, 'A', 'Z', 'a' - 'A'); }
CString CString::getUpperCaseString() const { return withLettersMoved(*this, 'a', 'z', 'A' - 'a'); }

CString& CString::operator+=(const CString& other) {
    append(other);
    return *this;
}

bool CString::operator==(const CString& other) const { return CBuffer::operator==(other); }
bool CString::operator==(const char* text) const { return isEqual(*this, text); }
bool CString::operator!=(const CString& other) const { return !(*this == other); }
bool CString::operator!=(const char* text) const { return !(*this == text); }

} // namespace Ketra
