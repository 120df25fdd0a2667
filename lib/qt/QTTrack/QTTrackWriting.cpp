// Adding samples to a track and gathering them into chunks.
#include <base/CException.h>
#include <qt/QTAtoms.h>
#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/EditRecords.h>
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTChunk.h>
#include <qt/QTTrack/QTAudioTrack.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/QTTrack/detail/AudioFormats.h>
#include <qt/wire/Access.h>
#include <qt/wire/Block.h>
#include <qt/wire/Numbers.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>

namespace Ketra::QT {

using wire::Access;

namespace {

constexpr unsigned char kSyncDependency = 0x60;
constexpr unsigned char kReferenceDependency = 0x40;
constexpr unsigned char kDisposableDependency = 0x08;

/// Appends a packed run and grows the table's stored size, as the public append does.
template <class Atom>
void appendRun(Atom* atom, unsigned int count, unsigned int value) {
    if (!atom) return;
    Access::table(*atom).append(wire::Run{count, value});
    Access::setSize(*atom, atom->getSize() + wire::RunBytes::width);
}

} // namespace

int QTTrack::addSample(QTFrame* frame) { return _addSample(frame, false, false); }
int QTTrack::addHintSample(QTFrame* frame) { return _addSample(frame, false, false); }
int QTTrack::addSyncSample(QTFrame* frame) { return _addSample(frame, true, false); }
int QTTrack::addPSample(QTFrame* frame) { return _addSample(frame, false, true); }
int QTTrack::addPartialSyncSample(QTFrame* frame) { return _addSample(frame, true, true); }

int QTTrack::addSamplesToChunk(const std::vector<QTFrame*>& frames) {
    if (!chunk_) return -1;
    for (QTFrame* frame : frames) {
        if (addSample(frame) != 0) return -1;
    }
    return 0;
}

int QTTrack::addSampleCount(unsigned int n) {
    sampleNumber_ += n;
    return 0;
}

void QTTrack::noteTimes(QTFrame& frame) {
    // A negative time is stored as 0, and how far below it was is remembered.
    negativeShift_ = std::max(negativeShift_, -frame.getTime());
    negativeShift_ = std::max(negativeShift_, -frame.getDecodeTime());
    if (frame.getTime() < 0) {
        frame.setTime(0);
        frame.setDecodeTime(0);
    }
    firstPTS_ = std::min(firstPTS_, frame.getTime());
    firstDTS_ = std::min(firstDTS_, frame.getDecodeTime());
}

/// The frame's duration in media units. Rounding drifts up to a hundredth of a second before it is paid back
/// in whole units.
unsigned int QTTrack::durationUnits(double seconds, unsigned int count) {
    constexpr double kMostDrift = 0.01 + 1e-12; // the sum of many thirds must not reach the hundredth early
    const double scale = getAtomMediaTimeScale();
    const double exact = scale * seconds / count;
    if (!std::isfinite(exact)) return wire::toUnsigned32(exact);
    double units = std::floor(exact + 0.5);
    durationRemainder_ += exact - units;
    const double drift = std::fabs(durationRemainder_);
    if (drift > 1 && scale > 0 && drift / scale > kMostDrift) {
        const double whole = std::trunc(durationRemainder_);
        units += whole;
        durationRemainder_ -= whole;
    }
    return wire::toUnsigned32(units);
}

/// Chunks are closed by the span of their times or by their bytes. A limit of 0 bytes beside a limit of time
/// means no limit of bytes.
void QTTrack::testChunkFull(double time) {
    const double start = chunk_->hasFrames_ ? chunk_->firstTime_ : -1.0;
    if (start > -1 && time - start > chunkFullTime_) {
        chunkFull_ = true;
    } else if (chunkFullMaxSize_ != 0 || !(chunkFullTime_ > 0)) {
        if (chunk_->collected_.size() > chunkFullMaxSize_) chunkFull_ = true;
    }
}

int QTTrack::_addSample(QTFrame* frame, bool sync, bool partial) {
    if (!frame) return -1;
    noteTimes(*frame);
    if (!chunk_) return -1;
    checkMaxBitRate(frame);
    if (getType() == fourCC("audi") && frame->getSamplesInFrame() == 0)
        frame->setSamplesInFrame(samplesOf(*frame));
    const unsigned int count = std::max(1U, frame->getSamplesInFrame());
    ++sampleNumber_;
    appendRun(atoms_.stts, count, durationUnits(frame->getDuration(), count));
    const bool video = getType() == fourCC("vide");
    if (video) {
        const double delay = frame->getTime() - frame->getDecodeTime();
        const double units = getAtomMediaTimeScale() * delay / count;
        appendRun(atoms_.ctts, count, wire::toUnsigned32(delay < 0 ? units - 0.5 : units + 0.5));
    }
    totalDataSize_ += frame->getDataLength();
    testChunkFull(frame->getTime());
    if (video) {
        const unsigned char other = partial ? kReferenceDependency : kDisposableDependency;
        chunk_->addSampleDep(sync ? kSyncDependency : other);
        if (frame->getContainsEncodedAlpha()) {
            constexpr unsigned short kDepthWithAlpha = 32;
            STSDData* entry = getCurrentAtomSampleDescriptionData();
            if (auto* description = entry ? dynamic_cast<STSDVideo*>(entry->getExtraData()) : nullptr) {
                description->setDepth(kDepthWithAlpha);
            }
        }
    }
    if (!sync) return chunk_->addSample(frame);
    return partial ? chunk_->addPartialSyncSample(frame, sampleNumber_)
                   : chunk_->addSyncSample(frame, sampleNumber_);
}

/// What a frame without a sample count holds: in plain audio its bytes tell, anything else is one sample.
unsigned int QTTrack::samplesOf(const QTFrame& frame) {
    const auto* audio = dynamic_cast<const QTAudioTrack*>(this);
    if (!audio || (dataFormat_ != 0 && !wire::isPCM(wire::audioFormat(dataFormat_).coding))) return 1;
    const unsigned int bytes =
        audio->getBytesPerSample() ? audio->getBytesPerSample() : audio->getSampleSize() / 8U;
    if (bytes == 0 || audio->getChannels() == 0) return 1;
    return std::max(1U, frame.getDataLength() / bytes / audio->getChannels());
}

QTChunk* QTTrack::beginChunk() {
    chunk_.reset();
    try {
        chunk_ = std::make_unique<QTChunk>(this);
    } catch (const CException&) {
        return nullptr; // no tables to write to
    }
    chunk_->setChunkNr(++chunkNumber_);
    chunk_->beginChunk();
    return chunk_.get();
}

int QTTrack::createChunk() {
    chunk_.reset();
    try {
        chunk_ = std::make_unique<QTChunk>(this);
    } catch (const CException&) {
        return -1;
    }
    return 0;
}

QTFrame* QTTrack::saveChunk(std::uint64_t offset) {
    if (!chunk_) return nullptr;
    chunkFull_ = false;
    if (!chunk_->hasFrames_) return new QTFrame; // nothing was collected, and nothing is recorded
    std::unique_ptr<QTFrame> bytes(chunk_->closeChunk(offset));
    // Chunks are mostly alike: with this one's room and a little more the next one need not grow.
    if (bytes && beginChunk()) chunk_->collected_.expect(bytes->getDataLength() + bytes->getDataLength() / 8);
    return bytes.release();
}

/// A sliding window of about one second over what was added.
int QTTrack::checkMaxBitRate(QTFrame* frame) {
    constexpr double kWindow = 1.00001;
    constexpr double kEnough = 0.9;
    constexpr double kSettled = 1.0;
    if (!frame) return -1;
    window_.push_back({frame->getDataLength(), frame->getTime(), frame->getDuration()});
    windowBytes_ += frame->getDataLength();
    double span = window_.back().time - window_.front().time + frame->getDuration();
    while (span > kWindow && frame->getDuration() <= kWindow && window_.size() > 1) {
        windowBytes_ -= window_.front().length;
        window_.pop_front();
        span = window_.back().time - window_.front().time + window_.back().duration;
    }
    std::uint64_t rate = 0;
    if (span > kEnough && window_.back().time > kSettled) {
        rate = static_cast<std::uint64_t>(wire::toInteger(static_cast<double>(windowBytes_) / span));
    }
    const auto bits = static_cast<unsigned int>(std::min<std::uint64_t>(8 * rate, 0xFFFFFFFF));
    if (bits > maxBitRate_) {
        maxBitRate_ = bits;
        maxBitRateTime_ = window_.front().time + span / 2;
    }
    return 0;
}

int QTTrack::addDBABitrate(unsigned int bitRate) {
    // The type in ASCII, 16, "etrb", zero, the rate; the numbers least significant byte first.
    unsigned char record[32] = {'H', 'M', 'I', 'n', 'c', 'T', 'r', 'a', 'c', 'k', 'I',
                                'n', 'f', 'o', ' ', ' ', 16,  0,   0,   0,   'e', 't',
                                'r', 'b', 0,   0,   0,   0,   0,   0,   0,   0};
    if (!trak_) return -1;
    for (unsigned int i = 0; i < 4; ++i) {
        record[28 + i] = static_cast<unsigned char>(bitRate >> (8 * i));
    }
    UDTA* place = wire::child<UDTA>(trak_, fourCC("udta"));
    if (!place) {
        auto fresh = std::make_unique<UDTA>();
        if (trak_->addChild(fresh.get()) != 0) return -1;
        place = fresh.release();
        atoms_.udta = place;
    }
    auto entry = std::make_unique<QTDataAtom>(sizeof record + 8, fourCC("uuid"), record);
    if (place->addDataAtom(entry.get()) != 0) return -1;
    static_cast<void>(entry.release());
    return 0;
}

} // namespace Ketra::QT
