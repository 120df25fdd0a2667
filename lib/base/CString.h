// A string on the byte buffer.
#pragma once

#include <base/CBuffer.h>
#include <base/Export.h>

namespace Ketra {

#if defined(__GNUC__)
#define KETRA_PRINTF_LIKE(text, first) __attribute__((__format__(__printf__, text, first)))
#else
#define KETRA_PRINTF_LIKE(text, first)
#endif

// Bytes of any coding with a zero behind them that does not count; zero bytes inside are kept. A null
// const char* stands for the empty string. Comparison is by bytes.
class KETRA_QT_API CString : public CBuffer {
public:
    CString();
    CString(const char* text);                      // copies up to the first zero
    CString(const char* text, unsigned int length); // copies, zero bytes included
    CString(const CString&);
    CString(CString&&) noexcept; // leaves the other empty
    CString& operator=(const CString&);
    CString& operator=(CString&&) noexcept;
    ~CString() override;

    // printf conversions, of any length; empty when they fail.
    static CString createWithFormat(const char* format, ...) KETRA_PRINTF_LIKE(1, 2);

    const char* c_str() const; // borrow, until the string changes; never null
    unsigned int getLength() const;
    CString getSubString(unsigned int start, unsigned int length) const; // clamped to the string
    int reverseFind(char c) const;                                       // index of the last one, or -1
    CString getLowerCaseString() const;                                  // ASCII letters only
    CString getUpperCaseString() const;

    CString& operator+=(const CString&); // appends
    bool operator==(const CString&) const;
    bool operator==(const char*) const;
    bool operator!=(const CString&) const;
    bool operator!=(const char*) const;
};

} // namespace Ketra
