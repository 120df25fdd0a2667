#include <qt/QTUtils.h>
#include <qt/wire/Access.h>
#include <qt/wire/Container.h>

#include <typeinfo>

namespace Ketra::QT::wire {

namespace {

/// Keeps a plain atom's payload. An empty one counts as kept too, so that its header is written back.
int keepBytes(QTAtom& atom) {
    const std::uint64_t length = Access::payloadLength(atom);
    if (length == 0) {
        MallocPtr nothing = allocate(0);
        if (!nothing) return -1;
        Access::keepPayload(atom, std::move(nothing), 0);
        return 0;
    }
    Payload payload = Access::fetch(atom);
    if (!payload) return -1;
    const std::uint64_t held = Access::runsToEnd(atom) ? payload.delivered : payload.length;
    Access::keepPayload(atom, std::move(payload.data), held);
    return 0;
}

} // namespace

std::unique_ptr<QTAtom> ChildTable::create(std::unique_ptr<QTAtom> header) const {
    for (const ChildType* row = rows; row != rows + count; ++row) {
        if (row->type == header->getType()) return row->make(header.release());
    }
    return std::make_unique<QTAtom>(header.release());
}

void resumeAt(QTUtils& utils, std::uint64_t end) {
    if (Access::inAlternateData(utils)) return;
    const auto length = static_cast<std::uint64_t>(Access::streamSize(utils)); // 0: it does not tell
    if (end <= length || length == 0) utils.skipData(static_cast<std::int64_t>(end), 0);
}

int parseChild(QTAtom& child, bool keep) {
    QTUtils* utils = child.getUtils();
    const bool fromMemory = utils && Access::inAlternateData(*utils);
    const std::uint64_t end = child.getOffset() + child.getSize();
    const int result = keep && typeid(child) == typeid(QTAtom) ? keepBytes(child) : child.parse();
    if (result != 0 || !utils) return result;
    // A child that stopped short or ran over would desynchronise everything behind it.
    if (!fromMemory && !Access::inAlternateData(*utils) && !Access::runsToEnd(child) &&
        Access::position(*utils) != end) {
        resumeAt(*utils, end);
    }
    return 0;
}

int parseChildren(QTAtom& parent, const ChildTable& table, Unlisted unlisted, std::uint64_t mostChildren,
                  ChildHook* hook, std::uint64_t fieldBytes) {
    Access::setContainer(parent);
    QTUtils* utils = parent.getUtils();
    if (!utils) return -1;
    std::uint64_t consumed = parent.getHeaderSize() + fieldBytes;
    if (consumed >= parent.getSize()) return 0;
    const std::uint64_t end = parent.getOffset() + parent.getSize();
    while (mostChildren--) {
        std::unique_ptr<QTAtom> header(utils->getNextAtom(0));
        if (!header) return 0;
        const std::uint64_t size = header->getSize();
        if (size < header->getHeaderSize()) {
            resumeAt(*utils, end);
            return 0;
        }
        consumed = size > ~consumed ? ~std::uint64_t{0} : consumed + size;
        std::unique_ptr<QTAtom> child = table.create(std::move(header));
        if (const int result = parseChild(*child, unlisted == Unlisted::kKeep)) return result;
        if (!hook || !hook->take(*child, consumed)) {
            Access::children(parent).push_back(child.get());
            static_cast<void>(child.release());
        }
        if (consumed >= parent.getSize()) return 0;
    }
    return 0;
}

} // namespace Ketra::QT::wire
