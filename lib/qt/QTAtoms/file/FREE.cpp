#include <qt/QTAtoms/file/FREE.h>
#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>

namespace Ketra::QT {

FREE::FREE() : QTAtom(16, fourCC("free")) {}

FREE::FREE(QTAtom* header) : QTAtom(header) {}

FREE::~FREE() = default;

QTFrame* FREE::serialize() {
    constexpr unsigned int kSize = 16;
    wire::MallocPtr block = wire::allocate(kSize);
    if (!block) return nullptr;
    wire::store32(block.get(), kSize);
    wire::store32(block.get() + 4, fourCC("free"));
    return wire::makeFrame(kSize, std::move(block));
}

} // namespace Ketra::QT
