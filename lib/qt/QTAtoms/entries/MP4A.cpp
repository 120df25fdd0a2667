#include <qt/QTAtoms/entries/MP4A.h>
#include <qt/QTAtoms/systems/ESDS.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

MP4A::MP4A() : AudioEntry(fourCC("mp4a")) {}

MP4A::MP4A(QTAtom* header) : AudioEntry(header) {}

MP4A::~MP4A() = default;

int MP4A::parse() {
    if (parseFields() != 0) return -1;
    parseChild(fourCC("esds"), wire::make<ESDS>);
    return 0;
}

QTFrame* MP4A::serialize() { return writeAll(false); }

} // namespace Ketra::QT
