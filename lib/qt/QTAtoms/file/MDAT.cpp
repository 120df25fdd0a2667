#include <qt/QTAtoms/file/MDAT.h>
#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>

namespace Ketra::QT {

MDAT::MDAT() : QTAtom(8, fourCC("mdat")) {}

MDAT::MDAT(QTAtom* header) : QTAtom(header) {}

MDAT::~MDAT() = default;

QTFrame* MDAT::serialize() {
    constexpr std::uint64_t kLarge = 0xFFFFFFFF;
    const unsigned int length = size_ >= kLarge ? 16 : 8;
    wire::MallocPtr block = wire::allocate(length);
    if (!block) return nullptr;
    wire::store32(block.get(), length == 16 ? 1 : size_);
    wire::store32(block.get() + 4, fourCC("mdat"));
    if (length == 16) wire::store64(block.get() + 8, size_);
    return wire::makeFrame(length, std::move(block));
}

} // namespace Ketra::QT
