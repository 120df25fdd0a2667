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

constexpr std::uint64_t kMostBytes = std::numeric_limits<unsigned int>::max();

} // namespace

bool fillUp(const QTAtom& atom, Output& out, std::uint64_t begin, std::uint64_t atLeast) {
    const std::uint64_t used = out.size() - begin;
    const std::uint64_t length = std::max(atLeast, used);
    if (length > kMostBytes || !crediblePadding(atom, length, used) || !out.extend(length - used)) {
        out.rollBack(begin);
        return false;
    }
    if (length - used >= kHeader) {
        store32(out.at(begin + used), length - used);
        store32(out.at(begin + used + 4), fourCC("free"));
    }
    return true;
}

bool finishContainer(const QTAtom& atom, Output& out, std::uint64_t begin, std::uint64_t atLeast) {
    if (!fillUp(atom, out, begin, atLeast)) return false;
    store32(out.at(begin), out.size() - begin);
    store32(out.at(begin + 4), atom.getType());
    return true;
}

QTFrame* joinFrames(const QTAtom& atom, std::uint64_t atLeast, const FrameList& pieces) {
    return frameOf([&](Output& out) {
        if (!out.extend(kHeader)) return false;
        for (const auto& piece : pieces) {
            if (!out.append(piece->getData(), piece->getDataLength())) return false;
        }
        return finishContainer(atom, out, 0, atLeast);
    });
}

} // namespace Ketra::QT::wire
