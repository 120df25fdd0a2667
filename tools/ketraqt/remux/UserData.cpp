#include "remux/UserData.h"

#include "Atoms.h"
#include "remux/RawAtom.h"

#include <qt/QTAtoms.h>

#include <algorithm>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

template <class List>
bool contains(const List& list, unsigned int type) {
    return std::find(list.begin(), list.end(), type) != list.end();
}

void addRaw(QT::QTAtom& to, Bytes bytes) {
    if (bytes.empty()) return;
    auto raw = std::make_unique<RawAtom>(std::move(bytes));
    if (to.addChild(raw.get()) == 0) static_cast<void>(raw.release());
}

QT::UDTA* requireUserData(QT::QTAtom& to) {
    if (auto* found = childOf<QT::UDTA>(&to, fourCC("udta"))) return found;
    auto fresh = std::make_unique<QT::UDTA>();
    return to.addChild(fresh.get()) == 0 ? fresh.release() : nullptr;
}

void carryEntries(const QT::UDTA& from, QT::QTAtom& owner, const std::vector<unsigned int>& without) {
    for (const QT::QTDataAtom* entry : from.getDataAtoms()) {
        if (contains(without, entry->getType())) continue;
        QT::UDTA* to = requireUserData(owner);
        auto copy = std::make_unique<QT::QTDataAtom>(*entry);
        if (to && to->addDataAtom(copy.get()) == 0) static_cast<void>(copy.release());
    }
    for (QT::QTAtom* child : from.getChildren()) {
        const unsigned int type = child->getType();
        if (type == fourCC("hnti") || type == fourCC("hinf") || contains(without, type)) continue;
        if (QT::UDTA* to = requireUserData(owner)) addRaw(*to, bytesOf(*child));
    }
}

} // namespace

void carryUserData(QT::QTStream& stream, const QT::QTAtom& from, QT::QTAtom& to,
                   const std::vector<unsigned int>& without) {
    bool carried = false;
    for (const QT::QTAtom* child : from.getChildren()) {
        if (const auto* entries = dynamic_cast<const QT::UDTA*>(child)) {
            if (!carried) carryEntries(*entries, to, without);
            carried = true;
        } else if (child->getType() == fourCC("meta") || child->getType() == fourCC("uuid")) {
            addRaw(to, bytesOf(stream, *child));
        }
    }
}

} // namespace Ketra::Tool
