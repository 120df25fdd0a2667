// Atoms of a track beside its media.
#include "Tree.h"

#include <qt/QTAtoms.h>

namespace Ketra::Tool {

namespace {

void describeTkhd(const QT::TKHD& atom, Node& node) {
    constexpr int kMatrixWords = 9;
    addVersion(atom, node);
    Json matrix = Json::array();
    for (int i = 0; i < kMatrixWords; ++i) {
        matrix.push_back(atom.getMatrix()[i]);
    }
    node.fields.update({{"creation_time", atom.getCreationTime()},
                        {"modification_time", atom.getModificationTime()},
                        {"track_id", atom.getTrackID()},
                        {"duration", atom.getDuration()},
                        {"layer", atom.getLayer()},
                        {"alternate_group", atom.getAlternateGroup()},
                        {"volume", atom.getVolume()},
                        {"matrix", std::move(matrix)},
                        {"width", atom.getWidth()},
                        {"height", atom.getHeight()}});
}

void describeElst(const QT::ELST& atom, Node& node) {
    addVersion(atom, node);
    addTable(atom.getNumberOfEntries(), node, [&atom](unsigned int i) -> Json {
        const QT::ELSTData* edit = atom.getEditListData(i);
        if (!edit) return nullptr;
        return {{"duration", edit->getDuration()},
                {"media_time", edit->getMediaTime()},
                {"rate", edit->getMediaRate()}};
    });
}

void describeAperture(const QT::ApertureAtom& atom, Node& node) {
    addVersion(atom, node);
    node.fields["width"] = atom.getWidth();
    node.fields["height"] = atom.getHeight();
}

void describeCrgn(const QT::CRGN& atom, Node& node) {
    node.fields["region_size"] = atom.getRegionSize();
    node.fields["boundary_box"] = atom.getRegionBoundaryBox();
    node.fields["data"] = hexText(atom.getClippingRegionData(), atom.getClippingRegionDataSize());
}

void describeKmat(const QT::KMAT& atom, Node& node) {
    addVersion(atom, node);
    node.fields["data_size"] = atom.getMatteDataSize();
    node.fields["data"] = hexText(atom.getMatteData(), atom.getMatteDataSize());
}

void describeCtab(const QT::CTAB& atom, Node& node) {
    node.fields["seed"] = atom.getSeed();
    node.fields["flags"] = atom.getFlags();
    node.fields["table_size"] = atom.getTableSize();
    node.fields["data"] = hexText(atom.getColorTableData(), atom.getColorTableDataSize());
}

void describeLoad(const QT::LOAD& atom, Node& node) {
    node.fields["preload_start_time"] = atom.getPreloadStartTime();
    node.fields["preload_duration"] = atom.getPreloadDuration();
    node.fields["preload_flags"] = atom.getPreloadFlags();
    node.fields["default_hints"] = atom.getDefaultHints();
}

void describeIn(const QT::__IN& atom, Node& node) {
    node.fields["atom_id"] = atom.getAtomID();
    node.fields["child_count"] = atom.getChildCount();
}

void describeTy(const QT::__TY& atom, Node& node) { node.fields["input_type"] = atom.getInputType(); }

void describeObid(const QT::OBID& atom, Node& node) { node.fields["object_id"] = atom.getObjectID(); }

void describeReference(const QT::TrackReference& atom, Node& node) {
    node.fields["track_id"] = atom.getTrackID();
}

void describeContainer(const QT::QTAtom&, Node&) {}

} // namespace

const Describers& trackDescribers() {
    static const Describers table = {
        on<QT::TKHD>(describeTkhd),
        on<QT::ELST>(describeElst),
        on<QT::ApertureAtom>(describeAperture), // clef, prof, enof
        on<QT::CRGN>(describeCrgn),
        on<QT::KMAT>(describeKmat),
        on<QT::CTAB>(describeCtab),
        on<QT::LOAD>(describeLoad),
        on<QT::__IN>(describeIn),
        on<QT::__TY>(describeTy),
        on<QT::OBID>(describeObid),
        on<QT::TrackReference>(describeReference), // tmcd, chap, sync, scpt, ssrc, hint, dpnd, ipir
        on<QT::TRAK>(describeContainer),
        on<QT::EDTS>(describeContainer),
        on<QT::TREF>(describeContainer),
        on<QT::TAPT>(describeContainer),
        on<QT::CLIP>(describeContainer),
        on<QT::MATT>(describeContainer),
        on<QT::IMAP>(describeContainer),
    };
    return table;
}

} // namespace Ketra::Tool
