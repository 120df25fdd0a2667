#include "hostile/Harness.h"

#include <qt/QTChunk.h>
#include <qt/QTTrack.h>

#include <cstdlib>
#include <limits>
#include <memory>

using namespace Ketra::QT;

namespace hostile {

namespace {

constexpr int kFrames = 64; // read in a row

void readFrames(QTTrack& track, int count) {
    for (int i = 0; i < count; ++i) {
        QTChunk* chunk = track.getChunk();
        QTFrame* frame = nullptr;
        if (!chunk || !attempt([&] { frame = chunk->getNextFrame(); }) || !frame) return;
        consume(frame);
    }
}

void askChunk(QTTrack& track, unsigned int sample) {
    QTChunk* chunk = track.getChunk();
    if (!chunk) return;
    attempt([&] { consume(chunk->getFrame()); });
    attempt([&] { consume(chunk->getPreviewFrame()); });
    attempt([&] { chunk->findTime(sample); });
    attempt([&] { chunk->findChunkNumber(sample); });
    attempt([&] { chunk->findSampleOffset(sample); });
    attempt([&] { chunk->findSampleSize(sample); });
    unsigned int found = 0;
    attempt([&] { chunk->findClosestTime(0.5, &found); });
    chunk->rangeCheck(sample);
    chunk->rangeCheck(0.5);
    chunk->getCurrentSampleNumber();
    chunk->getCurrentTime();
    chunk->getIsKeyframe();
    chunk->getNextKeyframe();
    chunk->getPreviousKeyframe();
    chunk->getChunkNumber();
    chunk->getSampleOffset();
    chunk->getSampleSize();
    chunk->getChunkSize();
    chunk->getChunkStartTime();
    const QTChunk copy = *chunk;
    copy.getSampleCount();
}

unsigned int storedSamples(QTTrack& track) {
    QTAtom* at = track.getTrak();
    for (const unsigned int type : {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsz")}) {
        if (at) at = at->getAtomOfType(type);
    }
    const auto* sizes = dynamic_cast<STSZ*>(at);
    return sizes ? sizes->getNumberOfEntries() : 0;
}

} // namespace

void readTrack(QTTrack& track, QTStream&) {
    const unsigned int count = storedSamples(track);
    readFrames(track, 3); // before any positioning
    for (const unsigned int n : {1u, 2u, count / 2, count, count + 1, 0u, 0xFFFFFFFFu}) {
        attempt([&] {
            track.initWithSample(n);
            readFrames(track, 3);
        });
        askChunk(track, n);
    }
    const auto seconds = static_cast<float>(track.getDuration());
    for (const float t : {0.0f, 0.005f, seconds / 3, seconds, seconds + 1, -1.0f, 1e30f,
                          std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        attempt([&] {
            track.initWithTime(t);
            readFrames(track, 2);
        });
    }
    attempt([&] { track.initWithSample(1); });
    readFrames(track, kFrames);
    if (QTChunk* chunk = track.getChunk()) {
        attempt([&] { chunk->reset(); });
        attempt([&] { chunk->setSampleDescriptionID(2); });
        readFrames(track, 2);
    }
}

namespace {

void askVideo(QTVideoTrack& track) {
    track.getDisplayAspectRatioW();
    track.getDisplayWidth();
    track.getSwitchSize();
    unsigned short primaries = 0, transfer = 0, matrix = 0;
    track.getColorDescription(primaries, transfer, matrix);
    for (QTFrame* frame :
         {track.getH264SeqParSet(), track.getH264PictParSet(), track.getH265DecoderSpecificInfo()}) {
        if (frame) consume(new QTFrame(*frame));
    }
    if (ESDS* esds = track.getESDS()) attempt([&] { consume(esds->serialize()); });
    QTVideoTrack copy(track);
    copy = track;
}

void askAudio(QTAudioTrack& track) {
    track.getSampleRate();
    track.getChannels();
    track.getEndian();
    if (ESDS* esds = track.getESDS()) attempt([&] { consume(esds->serialize()); });
    QTAudioTrack copy(track);
    copy = track;
}

} // namespace

void askTrack(QTTrack& track, QTStream& stream) {
    track.getType();
    track.getSwitchSize();
    track.getCurrentAtomSampleDescriptionData();
    track.getAtomHeaderDuration();
    track.getAtomMediaDuration();
    track.getAtomMediaLanguage();
    track.getAtomMediaHandlerNameSize();
    track.getAtomVideoMediaOpColor();
    track.getAtomNumberOfEditListEntries();
    if (QTFrame* info = track.getDecoderSpecificInfo()) consume(new QTFrame(*info));
    if (auto* video = dynamic_cast<QTVideoTrack*>(&track)) askVideo(*video);
    if (auto* audio = dynamic_cast<QTAudioTrack*>(&track)) askAudio(*audio);
    if (auto* text = dynamic_cast<QTTextTrack*>(&track)) {
        QTTextTrack copy(*text);
        copy = *text;
    }
    if (auto* code = dynamic_cast<QTTimeCodeTrack*>(&track)) {
        attempt([&] { code->getTimeCode(&stream); });
        unsigned int length = 0;
        unsigned char* bytes = nullptr;
        code->getSourceReference(length, bytes);
        QTTimeCodeTrack copy(*code);
        copy = *code;
    }
}

void editTrack(QTTrack& track) {
    attempt([&] { track.addTrackReference(fourCC("chap"), 2); });
    attempt([&] { track.setHintTrackReference(1); });
    attempt([&] { track.setSwitchGroup(3); });
    attempt([&] { track.addSwitchAttribute(fourCC("scal")); });
    attempt([&] { track.disableTrack(); });
    attempt([&] { track.setAtomHeaderWidth(320); });
    attempt([&] { track.setAtomMediaHandlerComponentName("Handler", 7, true); });
    attempt([&] {
        if (!track.beginChunk()) return;
        for (int i = 0; i < 3; ++i) {
            auto* data = static_cast<unsigned char*>(std::calloc(8, 1));
            QTFrame sample(8, data, i / 25.0, 1 / 25.0, i == 0, 1, (i + 1) / 25.0, i / 25.0, false);
            i == 0 ? track.addSyncSample(&sample) : track.addSample(&sample);
        }
        track.getChunkFull();
        consume(track.saveChunk(1000));
    });
    attempt([&] { track.endTrack(); });
}

} // namespace hostile
