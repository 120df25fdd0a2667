#include <qt/QTAtoms.h>
#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/EditRecords.h>
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTChunk.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/wire/Access.h>
#include <qt/wire/Block.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Throw.h>

#include <algorithm>
#include <cstring>

namespace Ketra::QT {

namespace {

constexpr unsigned int kLongestCompressorName = 32;
constexpr std::uint64_t kEmptyEdit = 0xFFFFFFFF;

std::unique_ptr<QTFrame> duplicate(const std::unique_ptr<QTFrame>& frame) {
    return frame ? std::make_unique<QTFrame>(*frame) : nullptr;
}

} // namespace

QTTrack::QTTrack(QTMovieConstructionFlags movieType) : movieType_(movieType) {}

QTTrack::QTTrack(const QTTrack& other) { copyState(other); }

QTTrack& QTTrack::operator=(const QTTrack& other) {
    if (this != &other) copyState(other);
    return *this;
}

QTTrack::~QTTrack() = default;

void QTTrack::copyState(const QTTrack& other) {
    movieType_ = other.movieType_;
    mediaType_ = other.mediaType_;
    id_ = other.id_;
    trak_ = other.trak_;
    readsSamples_ = other.readsSamples_;
    isClosed_ = other.isClosed_;
    startTime_ = other.startTime_;
    endTime_ = other.endTime_;
    startOffset_ = other.startOffset_;
    firstPTS_ = other.firstPTS_;
    firstDTS_ = other.firstDTS_;
    duration_ = other.duration_;
    frameDuration_ = other.frameDuration_;
    isMediaTrack_ = other.isMediaTrack_;
    isHintTrack_ = other.isHintTrack_;
    totalDataSize_ = other.totalDataSize_;
    queueNumber_ = other.queueNumber_;
    movieTimeScale_ = other.movieTimeScale_;
    avgBitRate_ = other.avgBitRate_;
    maxBitRate_ = other.maxBitRate_;
    maxBitRateTime_ = other.maxBitRateTime_;
    alternateGroup_ = other.alternateGroup_;
    switchGroup_ = other.switchGroup_;
    bitRate_ = other.bitRate_;
    maxDuration_ = other.maxDuration_;
    frameRate_ = other.frameRate_;
    stsdValid_ = other.stsdValid_;
    prepared_ = other.prepared_;
    dataFormat_ = other.dataFormat_;
    samplesPerPacket_ = other.samplesPerPacket_;
    decoderSpecificInfo_ = duplicate(other.decoderSpecificInfo_);
    hintDescription_ = duplicate(other.hintDescription_);
    compressorName_ = other.compressorName_;
    compressorNameLength_ = other.compressorNameLength_;
    atoms_ = other.atoms_;
    chunk_.reset(); // a cursor belongs to one track
    chunkNumber_ = other.chunkNumber_;
    sampleNumber_ = other.sampleNumber_;
    chunkFull_ = other.chunkFull_;
    stopped_ = other.stopped_;
    chunkFullTime_ = other.chunkFullTime_;
    chunkFullMaxSize_ = other.chunkFullMaxSize_;
    negativeShift_ = other.negativeShift_;
    durationRemainder_ = other.durationRemainder_;
    window_ = other.window_;
    windowBytes_ = other.windowBytes_;
}

unsigned int QTTrack::getType() { return 0; }

unsigned short QTTrack::getSwitchSize() { return 0; }

int QTTrack::addSdpFile() { return 0; }

void QTTrack::readTrak(QTAtom* trak, unsigned int mediaType, const char* function, const char* headerMissing,
                       const char* mdiaMissing) {
    trak_ = trak;
    readsSamples_ = true;
    const TKHD* header = wire::child<TKHD>(trak, fourCC("tkhd"));
    if (!header) QT_THROW(wire::area::kTrack, function, headerMissing);
    const QTAtom* media = wire::child<QTAtom>(trak, fourCC("mdia"));
    if (!media) QT_THROW(wire::area::kTrack, function, mdiaMissing);
    initAtoms(); // what the tree lacks stays out of reach
    mediaType_ = mediaType;
    id_ = header->getTrackID();
    const MDHD* mediaHeader = wire::child<MDHD>(media, fourCC("mdhd"));
    const unsigned int scale = mediaHeader ? mediaHeader->getTimeScale() : 0;
    duration_ = mediaHeader ? wire::toSeconds(static_cast<double>(mediaHeader->getDuration()), scale) : 0;
    const QTAtom* edits = wire::child<QTAtom>(trak, fourCC("edts"));
    if (const ELST* list = wire::child<ELST>(edits, fourCC("elst"))) {
        const auto& table = wire::Access::table(*list);
        if (table.cursor < table.held()) {
            const auto start = static_cast<unsigned int>(table.at(table.cursor).mediaTime);
            startTime_ = start == kEmptyEdit ? 0 : wire::toSeconds(start, scale);
        }
    }
    endTime_ = startTime_ + duration_;
}

namespace {

const QTAtom* sampleTableOf(const QTAtom* trak) {
    const QTAtom* mdia = wire::child<QTAtom>(trak, fourCC("mdia"));
    const QTAtom* minf = wire::child<QTAtom>(mdia, fourCC("minf"));
    return wire::child<QTAtom>(minf, fourCC("stbl"));
}

} // namespace

void QTTrack::readDescriptions(bool mustAgree) {
    STSD* table = wire::child<STSD>(sampleTableOf(trak_), fourCC("stsd"));
    if (!table) return;
    // Reading may rename a format, so the formats are compared as the file has them.
    bool agree = true;
    const std::vector<STSDData*> entries = table->getSampleDescriptionTable();
    for (const STSDData* entry : entries) {
        agree = agree && entry->getDataFormat() == entries.front()->getDataFormat();
    }
    parseStsd(table);
    if (mustAgree && !agree) stsdValid_ = false;
}

unsigned int QTTrack::storedSamples() const {
    const STSZ* sizes = wire::child<STSZ>(sampleTableOf(trak_), fourCC("stsz"));
    return sizes ? sizes->getNumberOfEntries() : 0;
}

std::uint64_t QTTrack::mediaUnits(double seconds) const {
    return static_cast<std::uint64_t>(wire::toInteger(getAtomMediaTimeScale() * seconds + 0.5));
}

int QTTrack::setID(unsigned int id) {
    id_ = id;
    if (atoms_.tkhd) atoms_.tkhd->setTrackID(id);
    return 0;
}

int QTTrack::setAlternateGroup(unsigned short group) {
    alternateGroup_ = group;
    if (atoms_.tkhd) atoms_.tkhd->setAlternateGroup(group);
    return 0;
}

int QTTrack::setDecoderSpecificInfo(QTFrame* frame) {
    if (frame != decoderSpecificInfo_.get()) decoderSpecificInfo_.reset(frame);
    return 0;
}

int QTTrack::setHintDescription(QTFrame* frame) {
    if (frame != hintDescription_.get()) hintDescription_.reset(frame);
    return 0;
}

int QTTrack::addHintDescription(QTFrame* frame) {
    if (!frame || frame == hintDescription_.get()) return -1;
    std::unique_ptr<QTFrame> added(frame);
    if (!hintDescription_) {
        hintDescription_ = std::move(added);
        return 0;
    }
    const std::uint64_t before = hintDescription_->getDataLength();
    const std::uint64_t total = before + added->getDataLength();
    if (total > std::numeric_limits<unsigned int>::max() || total == 0) return 0;
    wire::MallocPtr joined = wire::allocate(total);
    if (!joined) return 0;
    if (before) std::memcpy(joined.get(), hintDescription_->getData(), static_cast<std::size_t>(before));
    if (added->getData()) std::memcpy(joined.get() + before, added->getData(), added->getDataLength());
    hintDescription_->setData(static_cast<unsigned int>(total), joined.release());
    return 0;
}

unsigned char* QTTrack::getCompressorName() const {
    return compressorName_.empty() ? nullptr : const_cast<unsigned char*>(compressorName_.data());
}

int QTTrack::setCompressorName(unsigned int length, unsigned char* name) {
    if (!name) return -1;
    length = std::min(length, kLongestCompressorName);
    std::vector<unsigned char> text(name, name + length);
    text.push_back(0);
    compressorName_ = std::move(text);
    compressorNameLength_ = length;
    return 0;
}

STSDData* QTTrack::getCurrentAtomSampleDescriptionData() const {
    return atoms_.stsd ? atoms_.stsd->getCurrentSampleDescriptionData() : nullptr;
}

} // namespace Ketra::QT
