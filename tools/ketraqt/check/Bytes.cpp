#include "check/Bytes.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace Ketra::Tool {

namespace {

constexpr std::uint64_t kRowBuffer = 32768;

} // namespace

Bytes::Bytes(QT::QTStream& stream)
    : stream_(&stream), size_(static_cast<std::uint64_t>(std::max<std::int64_t>(0, stream.size()))) {}

Bytes::Bytes(const unsigned char* memory, std::uint64_t size) : memory_(memory), size_(size) {}

std::size_t Bytes::read(std::uint64_t at, unsigned char* to, std::size_t count) {
    std::size_t got = 0;
    if (at < size_) {
        got = static_cast<std::size_t>(std::min<std::uint64_t>(count, size_ - at));
        if (memory_) {
            std::memcpy(to, memory_ + at, got);
        } else {
            stream_->lseek(static_cast<std::int64_t>(at), 0);
            const std::int64_t read = stream_->read(to, static_cast<std::int64_t>(got));
            got = static_cast<std::size_t>(std::clamp<std::int64_t>(read, 0, static_cast<std::int64_t>(got)));
        }
    }
    std::memset(to + got, 0, count - got);
    return got;
}

std::uint64_t Bytes::number(std::uint64_t at, unsigned int count) {
    if (at > std::numeric_limits<std::uint64_t>::max() - count) return 0;
    if (at < blockAt_ || at + count > blockAt_ + blockSize_) {
        read(at, block_.data(), block_.size());
        blockAt_ = at;
        blockSize_ = block_.size();
    }
    std::uint64_t value = 0;
    for (unsigned int i = 0; i < count; ++i) {
        value = value << 8 | block_[static_cast<std::size_t>(at - blockAt_) + i];
    }
    return value;
}

Rows::Rows(Bytes& bytes, std::uint64_t at, std::uint64_t count, unsigned int rowSize)
    : bytes_(&bytes), at_(at), left_(count), rowSize_(rowSize) {}

bool Rows::next() {
    if (left_ == 0) return false;
    --left_;
    if (started_) at_ += rowSize_;
    started_ = true;
    if (buffer_.empty() || at_ + rowSize_ > bufferAt_ + buffer_.size()) {
        const std::uint64_t wanted = std::min(left_ + 1, kRowBuffer / rowSize_) * rowSize_;
        buffer_.resize(static_cast<std::size_t>(wanted));
        bytes_->read(at_, buffer_.data(), buffer_.size());
        bufferAt_ = at_;
    }
    return true;
}

} // namespace Ketra::Tool
