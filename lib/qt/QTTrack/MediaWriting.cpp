#include <qt/QTAtoms/systems/DecoderConfigDescriptor.h>
#include <qt/QTAtoms/systems/DecoderSpecificInfo.h>
#include <qt/QTAtoms/systems/ESDS.h>
#include <qt/QTAtoms/systems/ESDescriptor.h>
#include <qt/QTAtoms/systems/SLConfigDescriptor.h>
#include <qt/QTTrack/detail/MediaWriting.h>
#include <qt/wire/Growth.h>

#include <algorithm>

namespace Ketra::QT::wire {

void writeMediaHandler(QTTrack& track, const MediaHandler& handler) {
    const bool threeGPP = isThreeGPP(track.getMovieType());
    track.setAtomMediaHandlerComponentType(threeGPP ? 0 : fourCC("mhlr"));
    track.setAtomMediaHandlerComponentSubType(handler.subType);
    if (threeGPP) track.setAtomMediaHandlerManufacturer(0);
    track.setAtomMediaHandlerComponentName(threeGPP ? handler.threeGPPName : handler.pascalName,
                                           handler.nameLength, !threeGPP);
}

void ExtensionList::begin(STSDData& entry) {
    if (entry_ == &entry) Access::removeExtensions(entry, mine_);
    entry_ = &entry;
    mine_.clear();
}

void ExtensionList::add(std::unique_ptr<QTFrame> atom) {
    if (!entry_ || !atom) return;
    wire::makeRoomForOne(mine_);
    if (entry_->addExtension(atom.get()) == 0) mine_.push_back(atom.release());
}

std::unique_ptr<QTFrame> makeESDS(const StreamConfiguration& stream) {
    auto config = std::make_unique<DecoderConfigDescriptor>();
    config->setObjectTypeIndication(stream.objectTypeIndication);
    config->setStreamType(stream.streamType);
    config->setBufferSizeDB(stream.bufferSize);
    config->setMaxBitRate(stream.maxBitRate);
    config->setAvgBitRate(stream.avgBitRate);
    if (stream.specificInfo && stream.specificInfoSize) {
        config->addDescriptor(new DecoderSpecificInfo(stream.specificInfoSize,
                                                      const_cast<unsigned char*>(stream.specificInfo)));
    }
    auto descriptor = std::make_unique<ESDescriptor>();
    descriptor->setStreamPriority(stream.streamPriority);
    descriptor->addDescriptor(config.release());
    descriptor->addDescriptor(new SLConfigDescriptor(static_cast<unsigned char>(2))); // for files
    ESDS esds;
    esds.addDescriptor(descriptor.release());
    return std::unique_ptr<QTFrame>(esds.serialize());
}

} // namespace Ketra::QT::wire
