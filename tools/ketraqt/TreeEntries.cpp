// Sample descriptions: the table, the typed descriptions in it, and the entries that are atoms of their own.
#include "Tree.h"

#include <qt/QTAtoms.h>

namespace Ketra::Tool {

namespace {

/// Its typed description is a child of the item; so is nothing else, as extensions stay raw bytes.
Json descriptionJson(const QT::STSDData& entry) {
    Node node;
    node.fields["data_reference_index"] = entry.getDataReferenceIndex();
    node.fields["data_size"] = entry.getDataSize();
    if (QT::QTAtom* typed = entry.getExtraData()) {
        Json told = atomJson(*typed);
        node.fields.update(told["fields"]);
        node.children = std::move(told["children"]);
    } else {
        node.fields["data"] = hexText(entry.getData(), entry.getDataSize());
    }
    return itemJson(codeText(entry.getDataFormat()), entry.getSize(), std::move(node));
}

void describeStsd(const QT::STSD& atom, Node& node) {
    constexpr std::size_t kShown = 16;
    addVersion(atom, node);
    node.fields["entries"] = atom.getNumberOfEntries();
    const auto entries = atom.getSampleDescriptionTable();
    for (std::size_t i = 0; i < std::min(entries.size(), kShown); ++i) {
        node.children.push_back(descriptionJson(*entries[i]));
    }
}

void describeVideo(const QT::STSDVideo& atom, Node& node) {
    node.fields = {{"version", atom.getVersion()},
                   {"revision", atom.getRevisionLevel()},
                   {"vendor", codeText(atom.getVendor())},
                   {"temporal_quality", atom.getTemporalQuality()},
                   {"spatial_quality", atom.getSpatialQuality()},
                   {"width", atom.getWidth()},
                   {"height", atom.getHeight()},
                   {"horizontal_resolution", atom.getHorizontalResolution()},
                   {"vertical_resolution", atom.getVerticalResolution()},
                   {"frame_count", atom.getFrameCount()},
                   {"compressor_name", markedText(atom.getCompressorName(), atom.getCompressorNameLength())},
                   {"depth", atom.getDepth()},
                   {"color_table_id", atom.getColorTableID()}};
}

void describeAudio(const QT::STSDAudio& atom, Node& node) {
    node.fields = {{"version", atom.getVersion()},
                   {"revision", atom.getRevisionLevel()},
                   {"vendor", codeText(atom.getVendor())},
                   {"channels", atom.getChannels()},
                   {"sample_size", atom.getSampleSize()},
                   {"compression_id", static_cast<short>(atom.getCompressionID())},
                   {"packet_size", atom.getPacketSize()},
                   {"sample_rate", atom.getSampleRate()},
                   {"samples_per_packet", atom.getSamplesPerPacket()},
                   {"bytes_per_packet", atom.getBytesPerPacket()},
                   {"bytes_per_frame", atom.getBytesPerFrame()},
                   {"bytes_per_sample", atom.getBytesPerSample()},
                   {"format_specific_flags", atom.getFormatSpecificFlags()}};
}

void describeText(const QT::STSDText& atom, Node& node) {
    node.fields = {{"display_flags", atom.getDisplayFlags()},
                   {"text_justification", atom.getTextJustification()},
                   {"background_color", colorJson(atom.getBackgroundColorR(), atom.getBackgroundColorG(),
                                                  atom.getBackgroundColorB())},
                   {"text_box",
                    {{"top", atom.getDefaultTextBoxTop()},
                     {"left", atom.getDefaultTextBoxLeft()},
                     {"bottom", atom.getDefaultTextBoxBottom()},
                     {"right", atom.getDefaultTextBoxRight()}}},
                   {"font_number", atom.getFontNumber()},
                   {"font_face", atom.getFontFace()},
                   {"foreground_color", colorJson(atom.getForegroundColorR(), atom.getForegroundColorG(),
                                                  atom.getForegroundColorB())},
                   {"text_name", markedText(atom.getTextName(), atom.getTextNameLength())}};
}

void describeTimeCode(const QT::STSDTimeCode& atom, Node& node) {
    unsigned int length = 0;
    unsigned char* source = nullptr;
    atom.getSourceReference(length, source);
    node.fields = {{"flags", atom.getFlags()},
                   {"timescale", atom.getTimeScale()},
                   {"frame_duration", atom.getFrameDuration()},
                   {"number_of_frames", atom.getNumberOfFrames()},
                   {"source", markedText(source, length)}};
}

void describeHint(const QT::STSDHint& atom, Node& node) {
    node.fields["hint_track_version"] = atom.getHintTrackVersion();
    node.fields["last_compatible_version"] = atom.getLastCompatibleVersion();
    node.fields["max_packet_size"] = atom.getMaxPacketSize();
}

void addConfiguration(QT::QTAtom* configuration, Node& node) {
    if (configuration) node.children.push_back(atomJson(*configuration));
}

void addVisual(const QT::VisualEntry& atom, Node& node) {
    node.fields["data_reference_index"] = atom.getDataReferenceIndex();
    node.fields["max_width"] = atom.getMaxWidth();
    node.fields["max_height"] = atom.getMaxHeight();
}

void addAudible(const QT::AudioEntry& atom, Node& node) {
    node.fields["data_reference_index"] = atom.getDataReferenceIndex();
    node.fields["channels"] = atom.getChannelCount();
    node.fields["sample_size"] = atom.getSampleSize();
    node.fields["timescale"] = atom.getTimeScale();
}

void describeMp4v(const QT::MP4V& atom, Node& node) {
    addVisual(atom, node);
    addConfiguration(atom.getESDS(), node);
}

void describeS263(const QT::S263& atom, Node& node) {
    addVisual(atom, node);
    addConfiguration(atom.getD263(), node);
}

void describeMp4a(const QT::MP4A& atom, Node& node) {
    addAudible(atom, node);
    addConfiguration(atom.getESDS(), node);
}

void describeSamr(const QT::SAMR& atom, Node& node) {
    addAudible(atom, node);
    addConfiguration(atom.getDamr(), node);
}

void describeMp4s(const QT::MP4S& atom, Node& node) { addConfiguration(atom.getESDS(), node); }

void describeDamr(const QT::DAMR& atom, Node& node) {
    node.fields["vendor"] = codeText(atom.getVendor());
    node.fields["decoder_version"] = atom.getDecoderVersion();
    node.fields["mode_set"] = atom.getModeSet();
    node.fields["mode_change_period"] = atom.getModeChangePeriod();
    node.fields["frames_per_sample"] = atom.getFramesPerSample();
}

void describeD263(const QT::D263& atom, Node& node) {
    node.fields["vendor"] = codeText(atom.getVendor());
    node.fields["decoder_version"] = atom.getDecoderVersion();
    node.fields["level"] = atom.getH263Level();
    node.fields["profile"] = atom.getH263Profile();
}

void describeGama(const QT::GAMA& atom, Node& node) { node.fields["gamma"] = atom.getGamma(); }

} // namespace

const Describers& entryDescribers() {
    static const Describers table = {
        on<QT::STSD>(describeStsd),
        on<QT::STSDVideo>(describeVideo),
        on<QT::STSDAudio>(describeAudio),
        on<QT::STSDText>(describeText),
        on<QT::STSDTimeCode>(describeTimeCode),
        on<QT::STSDHint>(describeHint),
        on<QT::MP4V>(describeMp4v),
        on<QT::MP4A>(describeMp4a),
        on<QT::MP4S>(describeMp4s),
        on<QT::SAMR>(describeSamr),
        on<QT::S263>(describeS263),
        on<QT::DAMR>(describeDamr),
        on<QT::D263>(describeD263),
        on<QT::GAMA>(describeGama),
    };
    return table;
}

} // namespace Ketra::Tool
