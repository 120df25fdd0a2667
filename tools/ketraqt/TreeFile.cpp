// Atoms of the file and of the movie.
#include "Tree.h"

#include <qt/QTAtoms.h>

namespace Ketra::Tool {

namespace {

void describeFtyp(const QT::FTYP& atom, Node& node) {
    Json brands = Json::array();
    for (const unsigned int brand : atom.getCompatibleBrands()) {
        brands.push_back(codeText(brand));
    }
    node.fields["major"] = codeText(atom.getMajorBrand());
    node.fields["minor"] = atom.getMinorVersion();
    node.fields["compatible"] = std::move(brands);
}

void describePnot(const QT::PNOT& atom, Node& node) {
    node.fields["modification_date"] = atom.getModificationDate();
    node.fields["version"] = atom.getVersionNumber();
    node.fields["atom_type"] = codeText(atom.getAtomType());
    node.fields["index"] = atom.getIndex();
}

void describeCmov(const QT::CMOV& atom, Node& node) {
    const QT::QTFrame* headers = atom.getUnCompressedHeaders();
    node.fields["uncompressed_size"] = headers ? headers->getDataLength() : 0;
}

void describeMvhd(const QT::MVHD& atom, Node& node) {
    constexpr int kMatrixWords = 9;
    Json matrix = Json::array();
    for (int i = 0; atom.getMatrix() && i < kMatrixWords; ++i) {
        matrix.push_back(atom.getMatrix()[i]);
    }
    node.fields = {{"version", atom.getVersion()},
                   {"flags", atom.getFLags()},
                   {"creation_time", atom.getCreationTime()},
                   {"modification_time", atom.getModificationTime()},
                   {"timescale", atom.getTimeScale()},
                   {"duration", atom.getDuration()},
                   {"preferred_rate", atom.getPreferredRate()},
                   {"preferred_volume", atom.getPreferredVolume()},
                   {"matrix", std::move(matrix)},
                   {"preview_time", atom.getPreviewTime()},
                   {"preview_duration", atom.getPreviewDuration()},
                   {"poster_time", atom.getPosterTime()},
                   {"selection_time", atom.getSelectionTime()},
                   {"selection_duration", atom.getSelectionDuration()},
                   {"current_time", atom.getCurrentTime()},
                   {"next_track_id", atom.getNextTrackID()}};
}

/// Free space, media data and what is kept closed say no more than their size.
void describeNothing(const QT::QTAtom&, Node&) {}

} // namespace

const Describers& fileDescribers() {
    static const Describers table = {
        on<QT::FTYP>(describeFtyp),    on<QT::PNOT>(describePnot),     on<QT::CMOV>(describeCmov),
        on<QT::MVHD>(describeMvhd),    on<QT::ROOT>(describeNothing),  on<QT::MOOV>(describeNothing),
        on<QT::MDAT>(describeNothing), on<QT::FREE>(describeNothing),  on<QT::SKIP>(describeNothing),
        on<QT::WIDE>(describeNothing), on<QT::UUIDA>(describeNothing),
    };
    return table;
}

} // namespace Ketra::Tool
