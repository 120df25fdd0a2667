#include <base/CFileStream.h>
#include <base/os/FileHandle.h>
#include <base/os/StreamPosition.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace Ketra::Ferro {
namespace {

// A place read for the first time brings in little, which is enough for a header or a small sample there and
// costs no more than either. Reading on from it doubles that up to the whole window.
constexpr std::int64_t kFirstFill = 512;
constexpr std::int64_t kNear = 4096; // a step ahead of this many bytes still counts as reading on
constexpr std::int64_t kWindow = 64 * 1024;

os::Access toAccess(CFileStream::Mode mode) {
    switch (mode) {
    case CFileStream::kRead:
        return os::Access::kRead;
    case CFileStream::kReadWrite:
        return os::Access::kReadWrite;
    case CFileStream::kCreate:
        return os::Access::kCreate;
    }
    return os::Access::kRead;
}

} // namespace

CFileStream::CFileStream(const char* utf8Path, Mode mode)
    : path_(utf8Path ? utf8Path : ""), mode_(mode), window_(new unsigned char[kWindow]) {
    openFile();
}

CFileStream::~CFileStream() { CFileStream::close(); }

void CFileStream::openFile() {
    file_ = os::openFile(path_.c_str(), toAccess(mode_), size_);
    // From now on the file exists, and opening it again must not empty it.
    if (isOpen() && mode_ == kCreate) mode_ = kReadWrite;
}

bool CFileStream::isOpen() const { return file_ != os::kNoFile; }

int CFileStream::open(unsigned int, unsigned int) {
    position_ = 0;
    if (!isOpen()) openFile();
    return isOpen() ? 0 : -1;
}

int CFileStream::close() {
    if (!isOpen()) return -1;
    windowLength_ = 0;
    lastReadEnd_ = -1;
    return os::closeFile(std::exchange(file_, os::kNoFile));
}

std::int64_t CFileStream::size() { return isOpen() ? size_ : -1; }

std::int64_t CFileStream::seek(std::int64_t offset, unsigned char relative) {
    if (!isOpen()) return -1;
    const std::int64_t target = seekTarget(position_, offset, relative != 0);
    if (target >= 0) position_ = target;
    return target;
}

std::int64_t CFileStream::read(unsigned char* buffer, std::int64_t length) {
    if (!isOpen() || length < 0 || (!buffer && length > 0)) return -1;
    const std::int64_t held = takeFromWindow(buffer, length);
    if (held == length || position_ >= size_) return held;
    const std::int64_t fetched = readFile(buffer + held, std::min(length - held, size_ - position_));
    if (fetched < 0) return held > 0 ? held : -1;
    return held + fetched;
}

std::int64_t CFileStream::write(const unsigned char* buffer, std::int64_t length) {
    if (!isOpen() || mode_ == kRead || length < 0 || (!buffer && length > 0)) return -1;
    if (length == 0) return 0;
    if (!endsWithin64Bits(position_, length)) return -1;
    const std::int64_t written = os::writeAt(file_, buffer, length, position_);
    if (written < 0) return -1;
    const std::int64_t end = position_ + written;
    const std::int64_t first = std::max(position_, windowStart_);
    const std::int64_t last = std::min(end, windowStart_ + windowLength_);
    if (first < last)
        std::memcpy(window_.get() + (first - windowStart_), buffer + (first - position_),
                    static_cast<std::size_t>(last - first));
    position_ = end;
    size_ = std::max(size_, end);
    return written;
}

std::int64_t CFileStream::takeFromWindow(unsigned char* buffer, std::int64_t length) {
    if (position_ < windowStart_ || position_ >= windowStart_ + windowLength_) return 0;
    const std::int64_t start = position_ - windowStart_;
    const std::int64_t taken = std::min(length, windowLength_ - start);
    if (taken > 0) std::memcpy(buffer, window_.get() + start, static_cast<std::size_t>(taken));
    position_ += taken;
    return taken;
}

std::int64_t CFileStream::readFile(unsigned char* buffer, std::int64_t length) {
    const bool goesOn = lastReadEnd_ >= 0 && position_ >= lastReadEnd_ && position_ - lastReadEnd_ < kNear;
    fill_ = goesOn ? std::min(fill_ * 2, kWindow) : kFirstFill;
    if (length >= fill_) {
        const std::int64_t got = os::readAt(file_, buffer, length, position_);
        if (got > 0) lastReadEnd_ = position_ += got;
        return got;
    }
    windowLength_ = 0;
    const std::int64_t got = os::readAt(file_, window_.get(), std::min(fill_, size_ - position_), position_);
    if (got < 0) return -1;
    windowStart_ = position_;
    windowLength_ = got;
    lastReadEnd_ = position_ + got;
    return takeFromWindow(buffer, length);
}

} // namespace Ketra::Ferro
