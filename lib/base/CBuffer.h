// A byte buffer that owns its bytes.
#pragma once

#include <base/Export.h>

#include <string>

// Buffers, strings and the exception.
namespace Ketra {

class CString; // needed whole only where the four coding calls are used: <base/CString.h>

// Sizes are in bytes. Calls that return int give 0, or -1 with the buffer unchanged: a null block with a size
// above 0, a size that unsigned int or memory cannot hold, text that is not the coding. A source block may
// lie inside the buffer itself. Constructors and codings throw std::bad_alloc when memory is short.
class KETRA_QT_API CBuffer {
public:
    CBuffer();
    explicit CBuffer(unsigned int size);          // zero bytes
    CBuffer(const void* data, unsigned int size); // copies; empty for a null block
    CBuffer(const CBuffer&);
    CBuffer(CBuffer&&) noexcept; // leaves the other empty
    CBuffer& operator=(const CBuffer&);
    CBuffer& operator=(CBuffer&&) noexcept;
    virtual ~CBuffer();

    unsigned int getSize() const;
    unsigned char* getData(); // borrow, until the size changes; never null
    const unsigned char* getData() const;

    int set(const void* data, unsigned int size);    // copies
    int append(const void* data, unsigned int size); // copies
    int append(const CBuffer&);                      // copies
    int resize(unsigned int size);                   // new bytes are zero
    int zero();                                      // fills with zeros

    int compare(const CBuffer&) const; // < 0, 0, > 0: unsigned bytes, the shorter first on a common beginning
    bool operator==(const CBuffer&) const;
    bool operator!=(const CBuffer&) const;
    bool operator<(const CBuffer&) const;

    CString getHex() const;        // two lower-case digits a byte; empty when the text would pass 32 bits
    int setHex(const CString&);    // either case, no other characters
    CString getBase64() const;     // padded, one line; empty when the text would pass 32 bits
    int setBase64(const CString&); // padded, no line breaks, unused bits zero

protected:
    int overwrite(unsigned int position, const void* data, unsigned int size); // position <= getSize(); grows

private:
    std::string bytes_; // keeps a zero behind the last byte, which CString hands out
};

} // namespace Ketra
