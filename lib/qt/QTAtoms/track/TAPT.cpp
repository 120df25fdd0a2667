#include <qt/QTAtoms/track/Apertures.h>
#include <qt/QTAtoms/track/TAPT.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("clef"), wire::make<CLEF>},
    {fourCC("prof"), wire::make<PROF>},
    {fourCC("enof"), wire::make<ENOF>},
};

} // namespace

TAPT::TAPT() : QTAtom(8, fourCC("tapt")) { container_ = true; }

TAPT::TAPT(QTAtom* header) : QTAtom(header) { container_ = true; }

TAPT::~TAPT() = default;

int TAPT::parse() { return wire::parseChildren(*this, kChildren, wire::Unlisted::kKeep); }

QTFrame* TAPT::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
