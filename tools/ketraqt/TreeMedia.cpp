// Atoms of the media and its information.
#include "Tree.h"
#include "UserText.h"

#include <qt/QTAtoms.h>

namespace Ketra::Tool {

namespace {

void describeMdhd(const QT::MDHD& atom, Node& node) {
    addVersion(atom, node);
    node.fields.update({{"creation_time", atom.getCreationTime()},
                        {"modification_time", atom.getModificationTime()},
                        {"timescale", atom.getTimeScale()},
                        {"duration", atom.getDuration()},
                        {"language", languageText(atom.getLanguage())},
                        {"quality", atom.getQuality()}});
}

void describeHdlr(const QT::HDLR& atom, Node& node) {
    addVersion(atom, node);
    node.fields.update({{"component_type", codeText(atom.getComponentType())},
                        {"component_subtype", codeText(atom.getComponentSubType())},
                        {"component_manufacturer", codeText(atom.getComponentManufacturer())},
                        {"component_flags", atom.getComponentFlags()},
                        {"component_flags_mask", atom.getComponentFlagsMask()},
                        {"name", handlerName(atom)}});
}

void describeVmhd(const QT::VMHD& atom, Node& node) {
    addVersion(atom, node);
    node.fields["graphics_mode"] = atom.getGraphicsMode();
    node.fields["op_color"] = atom.getOpColor();
}

void describeSmhd(const QT::SMHD& atom, Node& node) {
    addVersion(atom, node);
    node.fields["balance"] = atom.getBalance();
}

void describeHmhd(const QT::HMHD& atom, Node& node) {
    addVersion(atom, node);
    node.fields.update({{"max_pdu_size", atom.getMaxPDUSize()},
                        {"avg_pdu_size", atom.getAvgPDUSize()},
                        {"max_bit_rate", atom.getMaxBitRate()},
                        {"avg_bit_rate", atom.getAvgBitRate()},
                        {"sliding_avg_bit_rate", atom.getSlidingAvgBitRate()}});
}

void describeNmhd(const QT::NMHD& atom, Node& node) { addVersion(atom, node); }

void describeGmin(const QT::GMIN& atom, Node& node) {
    addVersion(atom, node);
    node.fields["graphics_mode"] = atom.getGraphicsMode();
    node.fields["op_color"] = atom.getOpColor();
    node.fields["balance"] = atom.getBalance();
}

void describeTcmi(const QT::TCMI& atom, Node& node) {
    unsigned short r = 0;
    unsigned short g = 0;
    unsigned short b = 0;
    unsigned int length = 0;
    unsigned char* name = nullptr;
    node.fields["text_font"] = atom.getTextFont();
    node.fields["text_face"] = atom.getTextFace();
    node.fields["text_size"] = atom.getTextSize();
    atom.getTextColor(r, g, b);
    node.fields["text_color"] = colorJson(r, g, b);
    atom.getBackgroundColor(r, g, b);
    node.fields["background_color"] = colorJson(r, g, b);
    atom.getFontName(length, name);
    node.fields["font_name"] = markedText(name, length);
}

void describeDref(const QT::DREF& atom, Node& node) {
    constexpr std::size_t kShown = 16;
    addVersion(atom, node);
    node.fields["entries"] = atom.getNumberOfEntries();
    const auto entries = atom.getDataReferenceTable();
    for (std::size_t i = 0; i < std::min(entries.size(), kShown); ++i) {
        node.children.push_back(atomJson(*entries[i]));
    }
}

void describeDrefEntry(const QT::DREFEntry& atom, Node& node) {
    addVersion(atom, node);
    node.fields["data_size"] = atom.getDataSize();
    if (atom.getDataSize()) node.fields["data"] = hexText(atom.getData(), atom.getDataSize());
}

void describeContainer(const QT::QTAtom&, Node&) {}

} // namespace

const Describers& mediaDescribers() {
    static const Describers table = {
        on<QT::MDHD>(describeMdhd),       on<QT::HDLR>(describeHdlr),
        on<QT::VMHD>(describeVmhd),       on<QT::SMHD>(describeSmhd),
        on<QT::HMHD>(describeHmhd),       on<QT::NMHD>(describeNmhd),
        on<QT::GMIN>(describeGmin),       on<QT::TCMI>(describeTcmi),
        on<QT::DREF>(describeDref),       on<QT::DREFEntry>(describeDrefEntry),
        on<QT::MDIA>(describeContainer),  on<QT::MINF>(describeContainer),
        on<QT::DINF>(describeContainer),  on<QT::GMHD>(describeContainer),
        on<QT::TEXTA>(describeContainer), // a matrix that is the same in all files
    };
    return table;
}

} // namespace Ketra::Tool
