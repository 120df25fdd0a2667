#include <qt/QTAtoms/file/WIDE.h>
#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>

namespace Ketra::QT {

WIDE::WIDE() : QTAtom(8, fourCC("skip")) {}

WIDE::WIDE(QTAtom* header) : QTAtom(header) {}

WIDE::~WIDE() = default;

QTFrame* WIDE::serialize() {
    constexpr unsigned int kSize = 8;
    wire::MallocPtr block = wire::allocate(kSize);
    if (!block) return nullptr;
    wire::store32(block.get(), kSize);
    wire::store32(block.get() + 4, fourCC("wide"));
    return wire::makeFrame(kSize, std::move(block));
}

} // namespace Ketra::QT
