// Track references, switch groups, enabling.
#include <qt/QTAtoms.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/wire/Access.h>

#include <memory>

namespace Ketra::QT {

namespace {

constexpr unsigned int kEnabled = 1;

template <class Child>
void adopt(QTAtom& parent, std::unique_ptr<Child> child) {
    if (parent.addChild(child.get()) == 0) static_cast<void>(child.release());
}

/// Calls `change` on the track selection of every user-data atom, which get one where they have none; a track
/// without user data gets that, too.
template <class Change>
int changeSelections(QTAtom* trak, Change change) {
    if (!trak) return -1;
    std::vector<UDTA*> places;
    for (QTAtom* child : trak->getChildren()) {
        if (auto* udta = child->getType() == fourCC("udta") ? dynamic_cast<UDTA*>(child) : nullptr) {
            places.push_back(udta);
        }
    }
    if (places.empty()) {
        auto udta = std::make_unique<UDTA>();
        places.push_back(udta.get());
        adopt(*trak, std::move(udta));
    }
    for (UDTA* udta : places) {
        TSEL* selection = wire::child<TSEL>(udta, fourCC("tsel"));
        if (!selection) {
            auto fresh = std::make_unique<TSEL>();
            selection = fresh.get();
            adopt(*udta, std::move(fresh));
        }
        change(*selection);
    }
    return 0;
}

} // namespace

int QTTrack::addTrackReference(unsigned int type, unsigned int trackID) {
    if (!trak_) return -1;
    auto references = std::make_unique<TREF>();
    if (type == fourCC("tmcd")) adopt(*references, std::make_unique<TMCD>(trackID));
    if (type == fourCC("chap")) adopt(*references, std::make_unique<CHAP>(trackID));
    adopt(*trak_, std::move(references));
    return 0;
}

int QTTrack::setHintTrackReference(unsigned int trackID) {
    const QTAtom* references = wire::child<QTAtom>(trak_, fourCC("tref"));
    HINT* hint = wire::child<HINT>(references, fourCC("hint"));
    return hint ? hint->setTrackID(trackID) : -1;
}

int QTTrack::setSwitchGroup(unsigned int group) {
    switchGroup_ = static_cast<unsigned short>(group);
    return changeSelections(trak_, [group](TSEL& selection) { selection.setSwitchGroup(group); });
}

int QTTrack::addSwitchAttribute(unsigned int attribute) {
    return changeSelections(trak_, [attribute](TSEL& selection) { selection.addAttribute(attribute); });
}

int QTTrack::enableTrack() {
    return atoms_.tkhd ? atoms_.tkhd->setFlags(atoms_.tkhd->getFlags() & kEnabled) : -1;
}

int QTTrack::disableTrack() {
    return atoms_.tkhd ? atoms_.tkhd->setFlags(atoms_.tkhd->getFlags() ^ kEnabled) : -1;
}

} // namespace Ketra::QT
