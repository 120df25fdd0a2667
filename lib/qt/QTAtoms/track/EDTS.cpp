#include <qt/QTAtoms/track/EDTS.h>
#include <qt/QTAtoms/track/ELST.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {

constexpr wire::ChildType kChildren[] = {
    {fourCC("elst"), wire::make<ELST>},
};

} // namespace

EDTS::EDTS() : QTAtom(8, fourCC("edts")) { container_ = true; }

EDTS::EDTS(QTAtom* header) : QTAtom(header) { container_ = true; }

EDTS::~EDTS() = default;

int EDTS::parse() { return wire::parseChildren(*this, kChildren); }

QTFrame* EDTS::serialize() { return serializeContainer(); }

} // namespace Ketra::QT
