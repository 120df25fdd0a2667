#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Frames.h>
#include <qt/wire/Padding.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace Ketra::QT::wire {

namespace {

constexpr std::uint64_t kHeader = 8;

QTFrame* join(const QTAtom& atom, std::uint64_t headerSize, std::uint64_t atLeast, const FrameList& pieces) {
    std::uint64_t used = headerSize;
    for (const auto& piece : pieces) {
        used += piece->getDataLength();
    }
    const std::uint64_t length = std::max(atLeast, used);
    if (length > std::numeric_limits<unsigned int>::max() || !crediblePadding(atom, length, used))
        return nullptr;
    MallocPtr block = allocate(length);
    if (!block) return nullptr;
    unsigned char* at = block.get();
    if (headerSize) {
        store32(at, length);
        store32(at + 4, atom.getType());
        at += headerSize;
    }
    for (const auto& piece : pieces) {
        if (piece->getData()) std::memcpy(at, piece->getData(), piece->getDataLength());
        at += piece->getDataLength();
    }
    if (length - used >= kHeader) {
        store32(at, length - used);
        store32(at + 4, fourCC("free"));
    }
    return makeFrame(static_cast<unsigned int>(length), std::move(block));
}

} // namespace

QTFrame* joinHeaderless(const QTAtom& atom, std::uint64_t atLeast, const FrameList& pieces) {
    return join(atom, 0, atLeast, pieces);
}

QTFrame* joinFrames(const QTAtom& atom, std::uint64_t atLeast, const FrameList& pieces) {
    return join(atom, kHeader, atLeast, pieces);
}

} // namespace Ketra::QT::wire
