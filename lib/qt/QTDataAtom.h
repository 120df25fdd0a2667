// One opaque leaf atom: a type and its bytes, as held in user data and hint information.
#pragma once

#include <qt/QTFrame.h>

#include <cstdint>

namespace Ketra::QT {

/// Size counts an 8-byte header, so the payload is size - 8 bytes. The payload is one owned malloc block.
class KETRA_QT_API QTDataAtom {
public:
    /// Copies size - 8 bytes from `data` (zeros when null).
    QTDataAtom(std::uint64_t size, unsigned int type, unsigned char* data);
    QTDataAtom(const QTDataAtom& other);            ///< duplicates the bytes
    QTDataAtom& operator=(const QTDataAtom& other); ///< duplicates the bytes
    ~QTDataAtom();

    std::uint64_t getSize() const { return size_; } ///< total, header included
    unsigned int getType() const { return type_; }
    unsigned char* getData() const { return data_; } ///< borrowed; size - 8 bytes

    int setSize(std::uint64_t size); ///< the count only; the block is not touched
    int setType(unsigned int type);
    int setData(unsigned char* data, std::uint64_t totalSize); ///< adopts a block of totalSize - 8 bytes

    /// Header and payload. The two header words are written least significant byte first, so a caller that
    /// wants a file-order header stores them swapped or writes it itself. The caller owns the frame.
    QTFrame* serialize();

private:
    std::uint64_t size_ = 0;
    unsigned int type_ = 0;
    unsigned char* data_ = nullptr;
    std::uint64_t blockLength_ = 0; // bytes really behind data_, whatever setSize says
};

} // namespace Ketra::QT
