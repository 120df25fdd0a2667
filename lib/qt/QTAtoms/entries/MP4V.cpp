#include <qt/QTAtoms/entries/MP4V.h>
#include <qt/QTAtoms/systems/ESDS.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

MP4V::MP4V() : VisualEntry(fourCC("mp4v")) {}

MP4V::MP4V(QTAtom* header) : VisualEntry(header) {}

MP4V::~MP4V() = default;

int MP4V::parse() {
    if (parseFields() != 0) return -1;
    parseChild(fourCC("esds"), wire::make<ESDS>);
    return 0;
}

} // namespace Ketra::QT
