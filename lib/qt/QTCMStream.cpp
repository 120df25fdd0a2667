#include <qt/QTCMStream.h>

namespace Ketra::QT {

namespace {
// What the stream library is told whenever a stream is opened.
constexpr unsigned int kOpenMode = 2;
constexpr unsigned int kOpenTimeout = 1000;
} // namespace

QTCMStream::QTCMStream(Ferro::RStream* stream) : stream_(stream) {}

QTCMStream::~QTCMStream() = default;

std::int64_t QTCMStream::read(unsigned char* buffer, std::int64_t length) {
    return stream_->get()->read(buffer, length);
}

std::int64_t QTCMStream::write(unsigned char* buffer, std::int64_t length) {
    return stream_->get()->write(buffer, length);
}

std::int64_t QTCMStream::lseek(std::int64_t offset, unsigned char relative) {
    return stream_->get()->seek(offset, relative);
}

int QTCMStream::open() { return stream_->get()->open(kOpenMode, kOpenTimeout); }

int QTCMStream::close() { return stream_->get()->close(); }

std::int64_t QTCMStream::size() { return stream_->get()->size(); }

} // namespace Ketra::QT
