#include <qt/QTAtoms/entries/DAMR.h>
#include <qt/QTAtoms/entries/SAMR.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

SAMR::SAMR() : AudioEntry(fourCC("samr")) {}

SAMR::SAMR(QTAtom* header) : AudioEntry(header) {}

SAMR::~SAMR() = default;

int SAMR::parse() {
    if (parseFields() != 0) return -1;
    parseChild(fourCC("damr"), wire::make<DAMR>);
    return 0;
}

QTFrame* SAMR::serialize() { return writeAll(true); }

} // namespace Ketra::QT
