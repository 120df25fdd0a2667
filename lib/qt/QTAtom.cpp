#include <qt/QTAtom.h>
#include <qt/QTUtils.h>
#include <qt/wire/Access.h>
#include <qt/wire/Block.h>
#include <qt/wire/Direct.h>
#include <qt/wire/Frames.h>
#include <qt/wire/Oddities.h>
#include <qt/wire/Padding.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <memory>

namespace Ketra::QT {

namespace {

constexpr std::uint64_t kPlainHeader = 8;
constexpr std::uint64_t kMaxFrame = std::numeric_limits<unsigned int>::max();

template <class Codec>
auto take(unsigned char** cursor) {
    const auto value = Codec::read(*cursor);
    *cursor += Codec::width;
    return value;
}

template <class Codec, class Value>
int put(unsigned char** cursor, Value value) {
    Codec::write(*cursor, value);
    *cursor += Codec::width;
    return 0;
}

unsigned char* copyRounded(unsigned char* dst, unsigned char** cursor, unsigned int n, unsigned int unit) {
    if (n) std::memcpy(dst, *cursor, n);
    *cursor += n / unit * unit;
    return dst;
}

} // namespace

QTAtom::QTAtom() = default;

QTAtom::QTAtom(unsigned int size, unsigned int type) : size_(size), type_(type) {}

QTAtom::QTAtom(std::uint64_t size, unsigned int type, std::uint64_t offset, unsigned char headerSize,
               QTUtils* utils, bool container)
    : size_(size), type_(type), container_(container), headerSize_(headerSize), utils_(utils),
      offset_(offset) {}

QTAtom::QTAtom(QTAtom* header) {
    if (!header) return;
    size_ = header->size_;
    type_ = header->type_;
    headerSize_ = header->headerSize_;
    utils_ = header->utils_;
    offset_ = header->offset_;
    toEnd_ = header->toEnd_;
    delete header;
}

QTAtom::QTAtom(const QTAtom& other)
    : size_(other.size_), type_(other.type_), container_(other.container_), headerSize_(other.headerSize_),
      children_(other.children_), utils_(other.utils_), offset_(other.offset_), reserved_(other.reserved_),
      borrowedChildren_(static_cast<unsigned int>(other.children_.size())), toEnd_(other.toEnd_) {
    if (!other.payload_) return;
    wire::MallocPtr copy = wire::allocateRaw(other.payloadLength_);
    if (!copy) return;
    std::memcpy(copy.get(), other.payload_, static_cast<std::size_t>(other.payloadLength_));
    payload_ = copy.release();
    payloadLength_ = other.payloadLength_;
}

QTAtom& QTAtom::operator=(const QTAtom& other) {
    if (this == &other) return *this;
    QTAtom copy(other);
    std::swap(size_, copy.size_);
    std::swap(type_, copy.type_);
    std::swap(payload_, copy.payload_);
    std::swap(payloadLength_, copy.payloadLength_);
    std::swap(container_, copy.container_);
    std::swap(headerSize_, copy.headerSize_);
    children_.swap(copy.children_);
    std::swap(borrowedChildren_, copy.borrowedChildren_);
    std::swap(utils_, copy.utils_);
    std::swap(offset_, copy.offset_);
    std::swap(toEnd_, copy.toEnd_);
    return *this;
}

QTAtom::~QTAtom() { release(); }

void QTAtom::release() {
    for (std::size_t i = borrowedChildren_; i < children_.size(); ++i) {
        delete children_[i];
    }
    children_.clear();
    std::free(payload_);
    payload_ = nullptr;
}

std::uint64_t QTAtom::updateSize() {
    if (!container_) return size_;
    std::uint64_t total = kPlainHeader;
    for (QTAtom* child : children_) {
        total += static_cast<unsigned int>(child->updateSize());
    }
    size_ = total;
    return size_;
}

int QTAtom::parse() { return utils_ ? utils_->skipData(this) : -1; }

QTFrame* QTAtom::serialize() {
    if (!payload_) return nullptr;
    const unsigned int header = headerSize_ == 16 ? 16 : 8;
    const std::uint64_t total = header + payloadLength_;
    if (total > kMaxFrame) return nullptr;
    wire::MallocPtr block = wire::allocateRaw(total);
    if (!block) return nullptr;
    wire::store32(block.get(), header == 16 ? 1 : total);
    wire::store32(block.get() + 4, type_);
    if (header == 16) wire::store64(block.get() + 8, total);
    std::memcpy(block.get() + header, payload_, static_cast<std::size_t>(payloadLength_));
    return wire::makeFrame(static_cast<unsigned int>(total), std::move(block));
}

QTFrame* QTAtom::serializeContainer() {
    return wire::frameOf([this](wire::Output& out) { return writeContainer(out); });
}

bool QTAtom::writeContainer(wire::Output& out) {
    const std::uint64_t counted = updateSize();
    const std::uint64_t begin = out.size();
    if (wire::crediblePadding(*this, counted, 0)) out.reserve(counted);
    if (!out.extend(kPlainHeader)) return false;
    for (QTAtom* child : children_) {
        wire::writeInto(*child, out);
    }
    return wire::finishContainer(*this, out, begin, counted);
}

QTAtom* QTAtom::getAtomOfType(unsigned int type) const {
    for (QTAtom* child : children_) {
        if (child->type_ == type) return child;
    }
    return nullptr;
}

int QTAtom::addChild(QTAtom* child) {
    if (!container_ || !child || child == this) return -1;
    children_.push_back(child);
    size_ += child->size_;
    return 0;
}

void QTAtom::removeAtomOfType(unsigned int type) {
    const auto found = std::find_if(children_.begin(), children_.end(),
                                    [type](const QTAtom* child) { return child->type_ == type; });
    if (found == children_.end()) return;
    if (static_cast<std::size_t>(found - children_.begin()) < borrowedChildren_) --borrowedChildren_;
    children_.erase(found);
}

unsigned int QTAtom::getNewCurrentTime() {
    constexpr std::int64_t kSecondsFrom1904To1970 = 2082844800;
    return static_cast<unsigned int>(static_cast<std::int64_t>(std::time(nullptr)) + kSecondsFrom1904To1970);
}

unsigned int QTAtom::getMP4ObjectSize(unsigned char** cursor, unsigned int* remaining) {
    unsigned int value = 0;
    for (;;) {
        const unsigned int byte = getUInt8(cursor);
        --*remaining;
        value = value * 128 + (byte & 0x7F);
        if (!(byte & 0x80)) return value;
    }
}

unsigned short QTAtom::BE16(unsigned short v) { return static_cast<unsigned short>((v >> 8) | (v << 8)); }

short QTAtom::BES16(short v) { return static_cast<short>(BE16(static_cast<unsigned short>(v))); }

unsigned int QTAtom::BE32(unsigned int v) {
    return (v >> 24) | ((v >> 8) & 0xFF00U) | ((v << 8) & 0xFF0000U) | (v << 24);
}

unsigned char QTAtom::getUInt8(unsigned char** cursor) { return take<wire::U8>(cursor); }
unsigned short QTAtom::getUInt16(unsigned char** cursor) { return take<wire::U16>(cursor); }
unsigned int QTAtom::getUInt24(unsigned char** cursor) { return take<wire::odd::Flags>(cursor); }
unsigned int QTAtom::getUInt32(unsigned char** cursor) { return take<wire::U32>(cursor); }
std::uint64_t QTAtom::getUInt48(unsigned char** cursor) { return take<wire::odd::Reserved48>(cursor); }
std::uint64_t QTAtom::getUInt64(unsigned char** cursor) { return take<wire::U64>(cursor); }
float QTAtom::getFixed16(unsigned char** cursor) { return take<wire::odd::Fixed8_8>(cursor); }
float QTAtom::getFixed32(unsigned char** cursor) { return take<wire::odd::Fixed16_16>(cursor); }

int QTAtom::putUInt8(unsigned char** cursor, unsigned char v) { return put<wire::U8>(cursor, v); }
int QTAtom::putUInt16(unsigned char** cursor, unsigned short v) { return put<wire::U16>(cursor, v); }
int QTAtom::putSInt16(unsigned char** cursor, short v) {
    return put<wire::U16>(cursor, static_cast<unsigned short>(v));
}
int QTAtom::putUInt24(unsigned char** cursor, unsigned int v) { return put<wire::odd::Flags>(cursor, v); }
int QTAtom::putUInt32(unsigned char** cursor, unsigned int v) { return put<wire::U32>(cursor, v); }
int QTAtom::putUInt48(unsigned char** cursor, std::uint64_t v) {
    return put<wire::odd::Reserved48>(cursor, v);
}
int QTAtom::putUInt64(unsigned char** cursor, std::uint64_t v) { return put<wire::U64>(cursor, v); }
int QTAtom::putFixed16(unsigned char** cursor, float v) { return put<wire::odd::Fixed8_8>(cursor, v); }
int QTAtom::putFixed32(unsigned char** cursor, float v) { return put<wire::odd::Fixed16_16>(cursor, v); }
int QTAtom::putFixed32Matrix(unsigned char** cursor, float v) { return put<wire::odd::Fixed2_30>(cursor, v); }
int QTAtom::putMatrix(unsigned char** cursor, unsigned int* m) {
    return put<wire::odd::IntegerMatrix>(cursor, m);
}

unsigned char* QTAtom::copyUInt8Data(unsigned char* dst, unsigned char** cursor, unsigned int n) {
    return copyRounded(dst, cursor, n, 1);
}

unsigned char* QTAtom::copyUInt16Data(unsigned char* dst, unsigned char** cursor, unsigned int n) {
    return copyRounded(dst, cursor, n, 2);
}

unsigned char* QTAtom::copyUInt32Data(unsigned char* dst, unsigned char** cursor, unsigned int n) {
    return copyRounded(dst, cursor, n, 4);
}

} // namespace Ketra::QT
