#include <qt/QTAtoms/track/IN.h>
#include <qt/QTAtoms/track/OBID.h>
#include <qt/QTAtoms/track/TY.h>
#include <qt/wire/Body.h>
#include <qt/wire/Container.h>
#include <qt/wire/Frames.h>
#include <qt/wire/Leaf.h>

#include <algorithm>

namespace Ketra::QT {

namespace {

constexpr std::uint64_t kFields = 12;

constexpr wire::ChildType kChildren[] = {
    {fourCC("  ty"), wire::make<__TY>},
    {fourCC("obid"), wire::make<OBID>},
};

} // namespace

__IN::__IN() : QTAtom(20, fourCC("  in")) { container_ = true; }

__IN::__IN(QTAtom* header) : QTAtom(header) { container_ = true; }

__IN::~__IN() = default;

template <class Self, class Io>
void __IN::layout(Self& a, Io& io) {
    io.u32(a.atomID_);
    io.u16(a.reserved16_);
    io.u16(a.childCount_);
    io.u32(a.reserved32_);
}

std::uint64_t __IN::updateSize() { return size_ = QTAtom::updateSize() + kFields; }

int __IN::parse() {
    if (!utils_) return -1;
    wire::Payload fields =
        wire::Access::fetch(*utils_, std::min(kFields, wire::Access::payloadLength(*this)));
    if (!fields) return -1;
    wire::Reader in(std::move(fields));
    layout(*this, in);
    return wire::parseChildren(*this, kChildren, wire::Unlisted::kKeep, childCount_, nullptr, kFields);
}

QTFrame* __IN::serialize() {
    const std::uint64_t counted = updateSize();
    wire::FrameList pieces;
    wire::MallocPtr fields = wire::allocate(kFields);
    if (!fields) return nullptr;
    wire::Writer out(fields.get());
    layout(*this, out);
    pieces.emplace_back(wire::makeFrame(static_cast<unsigned int>(kFields), std::move(fields)));
    for (QTAtom* child : children_) {
        if (QTFrame* frame = child->serialize()) pieces.emplace_back(frame);
    }
    return wire::joinFrames(*this, counted, pieces);
}

int __IN::addChild(QTAtom* child) {
    const int result = QTAtom::addChild(child);
    if (result == 0) ++childCount_;
    return result;
}

} // namespace Ketra::QT
