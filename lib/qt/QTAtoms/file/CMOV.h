// Compressed movie header.
#pragma once

#include <qt/QTAtom.h>

#include <memory>

namespace Ketra::QT {

/// "cmov": a "dcom" and a "cmvd" atom, read by position: payload byte 8 compression type, 12 size of "cmvd"
/// (the compressed bytes are 12 fewer), 20 uncompressed length, 24 a zlib stream of a whole "moov".
class KETRA_QT_API CMOV : public QTAtom {
public:
    CMOV();
    explicit CMOV(QTAtom* header);
    CMOV(const CMOV& other); ///< duplicates the bytes
    CMOV& operator=(const CMOV& other);
    ~CMOV() override;

    /// Inflates. Throws CException "Compression type not supported (%c%c%c%c)." (the characters from last to
    /// first) and "Error when decompressing data.".
    int parse() override;
    QTFrame* getUnCompressedHeaders() const { return headers_.get(); } ///< borrowed; null before parse()

private:
    std::unique_ptr<QTFrame> headers_;
};

} // namespace Ketra::QT
