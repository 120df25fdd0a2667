#include <base/os/Macintosh.h>

#include <algorithm>

#if defined(KETRAQT_HAS_ICONV)
#include <iconv.h>
#elif defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace Ketra::os {
namespace {

std::string plainAscii(const char* text, unsigned int length) {
    return {text,
            std::find_if(text, text + length, [](char c) { return static_cast<unsigned char>(c) > 0x7F; })};
}

} // namespace

#if defined(KETRAQT_HAS_ICONV)

// Systems know the character set by one of three names; where none is known, plain ASCII is what both share.
std::string toMacintosh(const char* text, unsigned int length) {
    std::string out(length, '\0');
    for (const char* name : {"MacRoman", "MACINTOSH", "MAC"}) {
        const iconv_t converter = iconv_open(name, "UTF-8");
        if (converter == reinterpret_cast<iconv_t>(-1)) continue;
        std::string in(text, length);
        char* from = in.data();
        std::size_t fromLeft = in.size();
        char* to = out.data();
        std::size_t toLeft = out.size();
        iconv(converter, &from, &fromLeft, &to, &toLeft);
        iconv_close(converter);
        out.resize(out.size() - toLeft);
        return out;
    }
    return plainAscii(text, length);
}

#elif defined(_WIN32)

namespace {

constexpr UINT kMacintosh = 10000;

/// The bytes of the UTF-8 character that begins so.
int lengthOf(unsigned char first) {
    if (first < 0xC0) return 1;
    if (first < 0xE0) return 2;
    return first < 0xF0 ? 3 : 4;
}

} // namespace

std::string toMacintosh(const char* text, unsigned int length) {
    std::string out;
    const char* const end = text + length;
    for (const char* at = text; at != end;) {
        const int bytes = lengthOf(static_cast<unsigned char>(*at));
        wchar_t wide[2];
        char narrow[4];
        BOOL replaced = FALSE;
        if (bytes > end - at) break;
        const int units = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, at, bytes, wide, 2);
        if (units == 0) break;
        const int made = WideCharToMultiByte(kMacintosh, WC_NO_BEST_FIT_CHARS, wide, units, narrow,
                                             sizeof narrow, nullptr, &replaced);
        if (made == 0 && out.empty()) return plainAscii(text, length); // a system without the code page
        if (made == 0 || replaced) break;
        out.append(narrow, static_cast<std::size_t>(made));
        at += bytes;
    }
    return out;
}

#else

std::string toMacintosh(const char* text, unsigned int length) { return plainAscii(text, length); }

#endif

} // namespace Ketra::os
