// The byte streams that the library reads and writes through.
#pragma once

#include <base/Export.h>
#include <base/Lumbra.h>

#include <cstdint>

// Byte streams.
namespace Ketra::Ferro {

// A stream as its user supplies it. Offsets and lengths are in bytes.
class KETRA_QT_API CStreamP {
public:
    virtual ~CStreamP();

    virtual std::int64_t read(unsigned char* buffer, std::int64_t length) = 0; // bytes read, 0 at the end, -1
    virtual std::int64_t write(const unsigned char* buffer, std::int64_t length) = 0; // bytes written, -1
    virtual int open(unsigned int mode, unsigned int timeout) = 0; // 0, -1; the library passes 2 and 1000
    virtual std::int64_t seek(std::int64_t offset,
                              unsigned char relative) = 0; // the new position, or -1;
                                                           // relative 0: from the start, 1: from the position
    virtual int close() = 0;                               // 0, -1
    virtual std::int64_t size() = 0;                       // -1 when unknown
};

// Reference-counted holder of a stream. Create it with new; the last release deletes the stream too.
class KETRA_QT_API RStream : public Lumbra::object_refcount {
public:
    explicit RStream(CStreamP* stream); // own
    RStream(const RStream&) = delete;
    RStream& operator=(const RStream&) = delete;
    ~RStream() override;

    CStreamP* get() const;        // borrow
    CStreamP* operator->() const; // likewise

private:
    CStreamP* stream_;
};

} // namespace Ketra::Ferro
