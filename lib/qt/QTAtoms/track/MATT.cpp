#include <qt/QTAtoms/track/KMAT.h>
#include <qt/QTAtoms/track/MATT.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("kmat"), wire::make<KMAT>},
};

} // namespace

MATT::MATT() : QTAtom(8, fourCC("matt")) { container_ = true; }

MATT::MATT(QTAtom* header) : QTAtom(header) { container_ = true; }

MATT::~MATT() = default;

int MATT::parse() { return wire::parseChildren(*this, kChildren, wire::Unlisted::kKeep, 1); }

QTFrame* MATT::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
