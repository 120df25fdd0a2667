#include "remux/RawAtom.h"

#include <qt/QTTrack.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace Ketra::Tool {

namespace {

constexpr std::size_t kHeader = 8;
constexpr std::uint64_t kLargest = 256ULL << 20;

unsigned int numberAt(const Bytes& bytes, std::size_t at) {
    auto* cursor = const_cast<unsigned char*>(bytes.data() + at);
    return QT::QTTrack::getUInt32(&cursor);
}

} // namespace

unsigned char* blockOf(const Bytes& bytes) {
    auto* block = static_cast<unsigned char*>(std::malloc(bytes.empty() ? 1 : bytes.size()));
    if (!block) throw std::bad_alloc();
    if (!bytes.empty()) std::memcpy(block, bytes.data(), bytes.size());
    return block;
}

std::unique_ptr<QT::QTFrame> frameOf(const unsigned char* bytes, std::size_t count) {
    if (count == 0) return std::make_unique<QT::QTFrame>();
    const Bytes copy(bytes, bytes + count);
    return std::make_unique<QT::QTFrame>(static_cast<unsigned int>(count), blockOf(copy), 0.0, 0.0, false, 1U,
                                         0.0, 0.0, false);
}

RawAtom::RawAtom(Bytes bytes)
    : QTAtom(static_cast<unsigned int>(bytes.size()), numberAt(bytes, 4)), bytes_(std::move(bytes)) {}

std::uint64_t RawAtom::updateSize() { return size_ = bytes_.size(); }

QT::QTFrame* RawAtom::serialize() { return frameOf(bytes_.data(), bytes_.size()).release(); }

Bytes bytesOf(QT::QTStream& stream, const QT::QTAtom& atom) {
    const std::uint64_t size = atom.getSize();
    const auto offset = static_cast<std::int64_t>(atom.getOffset());
    if (size < kHeader || size > kLargest || offset < 0 ||
        size > static_cast<std::uint64_t>(std::max<std::int64_t>(0, stream.size())) ||
        stream.lseek(offset, 0) != offset) {
        return {};
    }
    Bytes bytes(static_cast<std::size_t>(size));
    if (stream.read(bytes.data(), static_cast<std::int64_t>(size)) != static_cast<std::int64_t>(size))
        return {};
    return numberAt(bytes, 0) == size && numberAt(bytes, 4) == atom.getType() ? bytes : Bytes();
}

Bytes bytesOf(QT::QTAtom& atom) {
    const std::unique_ptr<QT::QTFrame> frame(atom.serialize());
    if (!frame || frame->getDataLength() < kHeader) return {};
    return Bytes(frame->getData(), frame->getData() + frame->getDataLength());
}

} // namespace Ketra::Tool
