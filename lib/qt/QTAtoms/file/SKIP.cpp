#include <qt/QTAtoms/file/SKIP.h>
#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>

namespace Ketra::QT {

SKIP::SKIP() : QTAtom(16, fourCC("skip")) {}

SKIP::SKIP(QTAtom* header) : QTAtom(header) {}

SKIP::~SKIP() = default;

QTFrame* SKIP::serialize() {
    constexpr unsigned int kSize = 16;
    wire::MallocPtr block = wire::allocate(kSize);
    if (!block) return nullptr;
    wire::store32(block.get(), kSize);
    wire::store32(block.get() + 4, fourCC("skip"));
    return wire::makeFrame(kSize, std::move(block));
}

} // namespace Ketra::QT
