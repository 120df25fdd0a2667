#include <qt/QTAtoms/file/UUIDA.h>
#include <qt/wire/Access.h>

#include <cstring>

namespace Ketra::QT {

UUIDA::UUIDA() : QTAtom(8, fourCC("uuid")) {}

UUIDA::UUIDA(unsigned int length, unsigned char* data) : QTAtom(8, fourCC("uuid")) {
    size_ = std::uint64_t{8} + length;
    wire::MallocPtr copy = wire::allocate(length);
    if (!copy) return;
    if (data && length) std::memcpy(copy.get(), data, length);
    wire::Access::keepPayload(*this, std::move(copy), length);
}

UUIDA::UUIDA(QTAtom* header) : QTAtom(header) {}

UUIDA::~UUIDA() = default;

QTFrame* UUIDA::serialize() { return QTAtom::serialize(); }

} // namespace Ketra::QT
