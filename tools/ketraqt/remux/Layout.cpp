#include "remux/Layout.h"

#include "remux/Extensions.h"

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::uint64_t kShortHeader = 8;
constexpr std::uint64_t kLongHeader = 16;

/// The 64-bit form takes the place of "wide" and of the short form.
void putMediaHeader(Bytes& front, std::uint64_t mediaSize) {
    const std::uint64_t whole = mediaSize + kShortHeader;
    if (whole <= 0xFFFFFFFF) {
        putNumber(front, kShortHeader, 4);
        putNumber(front, fourCC("wide"), 4);
        putNumber(front, whole, 4);
        putNumber(front, fourCC("mdat"), 4);
    } else {
        putNumber(front, 1, 4);
        putNumber(front, fourCC("mdat"), 4);
        putNumber(front, mediaSize + kLongHeader, 8);
    }
}

} // namespace

Bytes frontOf(const Bytes& header, std::uint64_t mediaSize, bool fastStart) {
    Bytes front;
    for (const Bytes& atom : extensionsOf(header, 0)) {
        const unsigned int type = typeOf(atom);
        if (type == fourCC("wide") || (!fastStart && (type == fourCC("moov") || type == fourCC("free"))))
            continue;
        front.insert(front.end(), atom.begin(), atom.end());
    }
    putMediaHeader(front, mediaSize);
    return front;
}

Bytes backOf(const Bytes& header, bool fastStart) {
    if (fastStart) return {};
    for (Bytes& atom : extensionsOf(header, 0)) {
        if (typeOf(atom) == fourCC("moov")) return std::move(atom);
    }
    return {};
}

Layout planLayout(Plan& plan, bool fastStart) {
    MovieBuild build(plan);
    Layout layout;
    plan.source.leaveMediaOut(true);
    layout.mediaSize = build.addMedia(0, [](const QT::QTFrame&) {});
    plan.source.leaveMediaOut(false);
    build.finish();
    // Chunks that move beyond 4 GiB take wider offsets, and these a longer header.
    std::uint64_t start = 0;
    for (;;) {
        layout.front = frontOf(build.header(), layout.mediaSize, fastStart);
        if (layout.front.size() == start) break;
        build.moveChunks(layout.front.size() - start);
        start = layout.front.size();
    }
    layout.frontSize = start;
    return layout;
}

} // namespace Ketra::Tool
