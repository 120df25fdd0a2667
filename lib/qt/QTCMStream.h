// The adapter from a Ferro stream to the library's stream interface.
#pragma once

#include <base/Ferro.h>
#include <qt/QTStream.h>

namespace Ketra::QT {

/// Forwards every operation. Borrows the stream object: it must outlive the adapter, which never closes it.
class KETRA_QT_API QTCMStream : public QTStream {
public:
    explicit QTCMStream(Ferro::RStream* stream); ///< borrows
    ~QTCMStream() override;
    QTCMStream(const QTCMStream&) = default;
    QTCMStream& operator=(const QTCMStream&) = default;

    std::int64_t read(unsigned char* buffer, std::int64_t length) override;
    std::int64_t write(unsigned char* buffer, std::int64_t length) override;
    std::int64_t lseek(std::int64_t offset, unsigned char relative) override;
    int open() override;          ///< with the mode 2 and 1000
    int close() override;         ///< forwarded
    std::int64_t size() override; ///< forwarded

private:
    Ferro::RStream* stream_;
};

} // namespace Ketra::QT
