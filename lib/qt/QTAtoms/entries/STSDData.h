// One sample description: how the samples that refer to it are coded.
#pragma once

#include <qt/QTAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// An entry of "stsd": 0 size, 4 data format, 8 reserved (48), 14 data reference index (16), 16 body.
///
/// Reading keeps the body as raw bytes. Writing does not use them: it writes the typed description and then
/// the extension atoms.
class KETRA_QT_API STSDData {
public:
    STSDData();
    /// A description with `size` raw bytes, which it adopts (malloc, may be null).
    STSDData(unsigned int size, unsigned int dataFormat, unsigned char* data,
             unsigned short dataReferenceIndex, std::uint64_t reserved);
    STSDData(const STSDData&) = delete;
    STSDData& operator=(const STSDData&) = delete;
    ~STSDData();

    /// As read: the length of the raw body. After updateSize(): the whole entry.
    unsigned int getSize() const { return size_; }
    int setSize(unsigned int size) { return size_ = size, 0; }
    unsigned int updateSize(); ///< 16 + typed description + extensions

    unsigned int getDataFormat() const { return dataFormat_; } ///< four-character code of the codec
    int setDataFormat(unsigned int format) { return dataFormat_ = format, 0; }
    unsigned int getType() const { return dataFormat_; }
    int setType(unsigned int type) { return dataFormat_ = type, 0; }

    unsigned char* getData() const;   ///< the raw body, borrowed; null when there is none
    unsigned int getDataSize() const; ///< bytes behind getData(), whatever getSize() says
    /// Adopts a malloc block as the raw body. -1, nothing changed, for null or no bytes.
    int setData(unsigned int size, unsigned char* data);

    unsigned short getDataReferenceIndex() const { return dataReferenceIndex_; } ///< into "dref", from 1
    int setDataReferenceIndex(unsigned short index) { return dataReferenceIndex_ = index, 0; }
    std::uint64_t getReserved() const { return reserved_; }
    int setReserved(std::uint64_t reserved) { return reserved_ = reserved, 0; }

    QTAtom* getExtraData() const { return extraData_.get(); } ///< the typed description, borrowed, or null
    int setExtraData(QTAtom* description);                    ///< adopts; null removes it

    /// Adopts a complete atom as bytes and grows by it. -1, nothing taken, for null or an empty frame.
    int addExtension(QTFrame* atom);
    std::vector<QTFrame*> getExtensions() const; ///< borrowed, in the order added
    unsigned int getExtensionSize() const;       ///< bytes of all extensions

private:
    friend struct wire::Access;

    unsigned int size_ = 0;
    unsigned int dataFormat_ = 0;
    unsigned char* data_ = nullptr;
    unsigned int dataSize_ = 0;
    unsigned short dataReferenceIndex_ = 1;
    std::uint64_t reserved_ = 0;
    std::unique_ptr<QTAtom> extraData_;
    std::vector<std::unique_ptr<QTFrame>> extensions_;
};

} // namespace Ketra::QT
