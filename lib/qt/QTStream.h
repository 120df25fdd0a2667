// The byte stream that the library reads from; whoever opens a movie supplies one.
#pragma once

#include <qt/QTTypes.h>

#include <cstdint>

namespace Ketra::QT {

/// Positions and lengths are bytes. A stream is used by one thread at a time.
///
/// \snippet own_stream.cpp stream
class KETRA_QT_API QTStream {
public:
    virtual ~QTStream() {}
    /// The number of bytes read, fewer than asked for at the end; negative for an error.
    virtual std::int64_t read(unsigned char* buffer, std::int64_t length) = 0;
    /// The number of bytes written; negative for an error.
    virtual std::int64_t write(unsigned char* buffer, std::int64_t length) = 0;
    /// Moves to `offset` (`relative` 0) or by it (`relative` 1) and returns the new position, which may lie
    /// past the end; negative for an error.
    virtual std::int64_t lseek(std::int64_t offset, unsigned char relative) = 0;
    virtual int open() = 0;          ///< 0, or negative for an error; reading a movie never calls it
    virtual int close() = 0;         ///< likewise
    virtual std::int64_t size() = 0; ///< in bytes; negative when it is not known
};

} // namespace Ketra::QT
