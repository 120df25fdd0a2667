// MPEG-4 descriptors and the atoms that carry them.
#include "Tree.h"

#include <qt/QTAtoms.h>
#include <qt/QTTrack.h>

#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

Json descriptorJson(QT::MP4ObjectData& descriptor);

void addDescriptors(const std::vector<QT::MP4ObjectData*>& descriptors, Node& node) {
    for (QT::MP4ObjectData* descriptor : descriptors) {
        node.children.push_back(descriptorJson(*descriptor));
    }
}

template <class Descriptor>
void addUrl(const Descriptor& descriptor, Node& node) {
    if (descriptor.getURLFlag())
        node.fields["url"] = markedText(descriptor.getURL(), descriptor.getURLLength());
}

void describe(const QT::ESDescriptor& stream, Node& node) {
    node.fields["es_id"] = stream.getES_ID();
    node.fields["priority"] = stream.getStreamPriority();
    if (stream.getStreamDependenceFlag()) node.fields["depends_on_es_id"] = stream.getDependsOnES_ID();
    if (stream.getOCRStreamFlag()) node.fields["ocr_es_id"] = stream.getOCR_ES_ID();
    addUrl(stream, node);
}

void describe(const QT::DecoderConfigDescriptor& config, Node& node) {
    node.fields["object_type"] = config.getObjectTypeIndication();
    node.fields["stream_type"] = config.getStreamType();
    node.fields["up_stream"] = config.getUpStream();
    node.fields["buffer_size"] = config.getBufferSizeDB();
    node.fields["max_bit_rate"] = config.getMaxBitRate();
    node.fields["avg_bit_rate"] = config.getAvgBitRate();
}

void describe(const QT::DecoderSpecificInfo& info, Node& node) {
    node.fields["data"] = hexText(info.getDecoderSpecificInfo(), info.getDecoderSpecificInfoSize());
}

void describe(const QT::SLConfigDescriptor& layer, Node& node) {
    node.fields["predefined"] = layer.getPredefined();
}

void describe(const QT::InitialObjectDescriptor& object, Node& node) {
    node.fields["id"] = object.getID();
    node.fields["inline_profiles"] = object.getIncludeInlineProfileLevelFlag();
    node.fields["od_profile"] = object.getODProfileLevelIndication();
    node.fields["scene_profile"] = object.getSceneProfileLevelIndication();
    node.fields["audio_profile"] = object.getAudioProfileLevelIndication();
    node.fields["visual_profile"] = object.getVisualProfileLevelIndication();
    node.fields["graphics_profile"] = object.getGraphicsProfileLevelIndication();
    addUrl(object, node);
}

void describe(const QT::ObjectDescriptor& object, Node& node) {
    node.fields["id"] = object.getID();
    addUrl(object, node);
}

void describe(const QT::ESIDInc& inclusion, Node& node) { node.fields["track_id"] = inclusion.getTrackID(); }

void describe(const QT::ESIDRef& reference, Node& node) { node.fields["es_id_index"] = reference.getESID(); }

template <class Descriptor>
bool describeAs(const QT::MP4ObjectData& data, Node& node) {
    const auto* known = dynamic_cast<const Descriptor*>(&data);
    if (known) describe(*known, node);
    return known != nullptr;
}

Json descriptorJson(QT::MP4ObjectData& data) {
    using Function = bool (*)(const QT::MP4ObjectData&, Node&);
    static constexpr Function kKinds[] = {
        describeAs<QT::ESDescriptor>,
        describeAs<QT::DecoderConfigDescriptor>,
        describeAs<QT::DecoderSpecificInfo>,
        describeAs<QT::SLConfigDescriptor>,
        describeAs<QT::ObjectDescriptor>,
        describeAs<QT::InitialObjectDescriptor>,
        describeAs<QT::ESIDInc>,
        describeAs<QT::ESIDRef>,
    };
    Node node;
    for (const Function kind : kKinds) {
        if (kind(data, node)) break;
    }
    addDescriptors(data.getDescriptors(), node);
    return itemJson(fmt::format("tag {}", data.getTag()), data.getSize(), std::move(node));
}

template <class Atom>
void describeCarrier(const Atom& atom, Node& node) {
    addVersion(atom, node);
    addDescriptors(atom.getDescriptors(), node);
}

void describeMpod(const QT::MPOD& atom, Node& node) {
    addTable(atom.getTrackRefCount(), node, [&atom](unsigned int i) -> Json {
        if (!atom.getTrackRefs()) return nullptr;
        auto* cursor = reinterpret_cast<unsigned char*>(atom.getTrackRefs() + i); // as in the file
        return QT::QTTrack::getUInt32(&cursor);
    });
}

} // namespace

const Describers& systemsDescribers() {
    static const Describers table = {
        on<QT::ESDS>(describeCarrier<QT::ESDS>),
        on<QT::IODS>(describeCarrier<QT::IODS>),
        on<QT::MPOD>(describeMpod),
    };
    return table;
}

} // namespace Ketra::Tool
