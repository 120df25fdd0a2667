#include <qt/QTAtoms/track/CLIP.h>
#include <qt/QTAtoms/track/CRGN.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("crgn"), wire::make<CRGN>},
};

} // namespace

CLIP::CLIP() : QTAtom(8, fourCC("clip")) { container_ = true; }

CLIP::CLIP(QTAtom* header) : QTAtom(header) { container_ = true; }

CLIP::~CLIP() = default;

int CLIP::parse() { return wire::parseChildren(*this, kChildren, wire::Unlisted::kKeep, 1); }

QTFrame* CLIP::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
