#include <qt/QTAtoms/entries/D263.h>
#include <qt/QTAtoms/entries/S263.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

S263::S263() : VisualEntry(fourCC("s263")) {}

S263::S263(QTAtom* header) : VisualEntry(header) {}

S263::~S263() = default;

int S263::parse() {
    if (parseFields() != 0) return -1;
    parseChild(fourCC("d263"), wire::make<D263>);
    return 0;
}

} // namespace Ketra::QT
