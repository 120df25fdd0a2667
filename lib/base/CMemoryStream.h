// A stream over a block of memory.
#pragma once

#include <base/Export.h>
#include <base/Ferro.h>

#include <cstdint>

namespace Ketra::Ferro {

// Readable and writable, at position 0 at first. A write past the end grows the block and fills a gap with
// zeros. Not copyable. The stream needs no open; open rewinds, close changes nothing.
class KETRA_QT_API CMemoryStream : public CStreamP {
public:
    CMemoryStream();
    CMemoryStream(const void* data, std::int64_t size); // copies; std::bad_alloc when memory is short
    CMemoryStream(const CMemoryStream&) = delete;
    CMemoryStream& operator=(const CMemoryStream&) = delete;
    ~CMemoryStream() override;

    std::int64_t read(unsigned char* buffer, std::int64_t length) override;
    std::int64_t write(const unsigned char* buffer,
                       std::int64_t length) override; // -1: memory cannot hold it
    int open(unsigned int mode, unsigned int timeout) override;
    std::int64_t seek(std::int64_t offset, unsigned char relative) override; // past the end too
    int close() override;
    std::int64_t size() override;

    const unsigned char* getData() const; // borrow, until the next write; size() bytes, null when empty

private:
    unsigned char* bytes_ = nullptr; // capacity_ bytes; those behind size_ are zero
    std::int64_t size_ = 0;
    std::int64_t capacity_ = 0;
    std::int64_t position_ = 0;
};

} // namespace Ketra::Ferro
