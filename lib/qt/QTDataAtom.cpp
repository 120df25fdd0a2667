#include <qt/QTDataAtom.h>
#include <qt/wire/Block.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace Ketra::QT {

namespace {

constexpr std::uint64_t kHeader = 8;

std::uint64_t payloadOf(std::uint64_t totalSize) { return totalSize > kHeader ? totalSize - kHeader : 0; }

void putLittleEndian32(unsigned char* to, unsigned int value) {
    for (int i = 0; i < 4; ++i) {
        to[i] = static_cast<unsigned char>(value >> (8 * i));
    }
}

} // namespace

QTDataAtom::QTDataAtom(std::uint64_t size, unsigned int type, unsigned char* data)
    : size_(size), type_(type) {
    const std::uint64_t length = payloadOf(size);
    wire::MallocPtr block = length ? wire::allocate(length) : nullptr;
    if (!block) return;
    if (data) std::memcpy(block.get(), data, static_cast<std::size_t>(length));
    data_ = block.release();
    blockLength_ = length;
}

QTDataAtom::QTDataAtom(const QTDataAtom& other) : size_(other.size_), type_(other.type_) {
    wire::MallocPtr block = other.data_ && other.blockLength_ ? wire::allocate(other.blockLength_) : nullptr;
    if (!block) return;
    std::memcpy(block.get(), other.data_, static_cast<std::size_t>(other.blockLength_));
    data_ = block.release();
    blockLength_ = other.blockLength_;
}

QTDataAtom& QTDataAtom::operator=(const QTDataAtom& other) {
    if (this == &other) return *this;
    QTDataAtom copy(other);
    size_ = copy.size_;
    type_ = copy.type_;
    std::swap(data_, copy.data_);
    blockLength_ = copy.blockLength_;
    return *this;
}

QTDataAtom::~QTDataAtom() { std::free(data_); }

int QTDataAtom::setSize(std::uint64_t size) {
    size_ = size;
    return 0;
}

int QTDataAtom::setType(unsigned int type) {
    type_ = type;
    return 0;
}

int QTDataAtom::setData(unsigned char* data, std::uint64_t totalSize) {
    if (data != data_) std::free(data_);
    data_ = data;
    size_ = totalSize;
    blockLength_ = data ? payloadOf(totalSize) : 0;
    return 0;
}

QTFrame* QTDataAtom::serialize() {
    const auto length = static_cast<unsigned int>(size_);
    if (size_ < kHeader || length < kHeader) return nullptr;
    wire::MallocPtr block = wire::allocate(length);
    if (!block) return nullptr;
    putLittleEndian32(block.get(), length);
    putLittleEndian32(block.get() + 4, type_);
    const std::uint64_t held = std::min<std::uint64_t>(blockLength_, length - kHeader);
    if (held) std::memcpy(block.get() + kHeader, data_, static_cast<std::size_t>(held));
    return wire::makeFrame(length, std::move(block));
}

} // namespace Ketra::QT
