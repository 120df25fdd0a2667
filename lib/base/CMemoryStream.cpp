#include <base/CMemoryStream.h>
#include <base/os/StreamPosition.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace Ketra::Ferro {
namespace {

struct Free {
    void operator()(unsigned char* block) const { std::free(block); }
};
using Block = std::unique_ptr<unsigned char, Free>;

// Nothing larger fits into the address space of a process.
constexpr std::int64_t kLargestBlock = sizeof(void*) > 4 ? std::int64_t{1} << 47 : std::int64_t{0x7FFFFFFF};

// A zeroed block. A large one costs no memory before it is used, so a wide gap stays cheap.
Block allocate(std::int64_t size) {
    if (size > kLargestBlock) return nullptr;
    return Block(static_cast<unsigned char*>(std::calloc(static_cast<std::size_t>(size), 1)));
}

} // namespace

CMemoryStream::CMemoryStream() = default;

CMemoryStream::CMemoryStream(const void* data, std::int64_t size) {
    if (!data || size <= 0) return;
    if (write(static_cast<const unsigned char*>(data), size) != size) throw std::bad_alloc();
    position_ = 0;
}

CMemoryStream::~CMemoryStream() { std::free(bytes_); }

std::int64_t CMemoryStream::read(unsigned char* buffer, std::int64_t length) {
    if (length < 0 || (!buffer && length > 0)) return -1;
    if (length == 0 || position_ >= size_) return 0;
    const std::int64_t taken = std::min(length, size_ - position_);
    std::memcpy(buffer, bytes_ + position_, static_cast<std::size_t>(taken));
    position_ += taken;
    return taken;
}

std::int64_t CMemoryStream::write(const unsigned char* buffer, std::int64_t length) {
    if (length < 0 || (!buffer && length > 0) || !endsWithin64Bits(position_, length)) return -1;
    if (length == 0) return 0;
    const std::int64_t end = position_ + length;
    Block replaced; // lives until the copy is done: the source may lie in it
    if (end > capacity_) {
        std::int64_t capacity = std::max(end, std::min(capacity_ * 2, kLargestBlock));
        Block grown = allocate(capacity);
        if (!grown && capacity > end) grown = allocate(capacity = end);
        if (!grown) return -1;
        if (size_ > 0) std::memcpy(grown.get(), bytes_, static_cast<std::size_t>(size_));
        replaced.reset(bytes_);
        bytes_ = grown.release();
        capacity_ = capacity;
    }
    std::memmove(bytes_ + position_, buffer, static_cast<std::size_t>(length));
    position_ = end;
    size_ = std::max(size_, end);
    return length;
}

int CMemoryStream::open(unsigned int, unsigned int) {
    position_ = 0;
    return 0;
}

std::int64_t CMemoryStream::seek(std::int64_t offset, unsigned char relative) {
    const std::int64_t target = seekTarget(position_, offset, relative != 0);
    if (target >= 0) position_ = target;
    return target;
}

int CMemoryStream::close() { return 0; }
std::int64_t CMemoryStream::size() { return size_; }
const unsigned char* CMemoryStream::getData() const { return size_ > 0 ? bytes_ : nullptr; }

} // namespace Ketra::Ferro
