// Reading and writing codec entries: fields, then an optional configuration atom.
#pragma once

#include <qt/wire/Body.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT::wire {

/// Reads the fields, which take `fixed` bytes. -1 when not one byte can be had.
template <class Entry>
int parseFields(Entry& entry, std::uint64_t fixed) {
    QTUtils* utils = entry.getUtils();
    if (!utils) return -1;
    const Payload payload = Access::fetch(*utils, std::min(fixed, Access::payloadLength(entry)));
    if (!payload) return -1;
    Reader in(payload.data.get(), payload.delivered);
    Access::layout(entry, in);
    return 0;
}

/// Fields and configuration in a frame as long as the atom. Entries that are only ever written inside a
/// sample description have no atom header: the fields begin the frame and its end is left empty.
template <class Entry>
QTFrame* writeFields(const Entry& entry, QTAtom* child, bool header) {
    const std::unique_ptr<QTFrame> inside(child ? child->serialize() : nullptr);
    const std::uint64_t childBytes = inside ? inside->getDataLength() : 0;
    const std::uint64_t used = (header ? kAtomHeader : 0) + bodyBytes(entry) + childBytes;
    const std::uint64_t length = std::max(entry.getSize(), used);
    if (length > std::numeric_limits<unsigned int>::max() || !crediblePadding(entry, length, used))
        return nullptr;
    MallocPtr block = allocate(length);
    if (!block) return nullptr;
    Writer out(block.get());
    if (header) {
        out.u32(length);
        out.u32(entry.getType());
    }
    Access::layout(entry, out);
    if (childBytes) out.bytes(inside->getData(), childBytes);
    return makeFrame(static_cast<unsigned int>(length), std::move(block));
}

} // namespace Ketra::QT::wire
