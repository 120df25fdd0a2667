// The order in which a movie is meant to be written: everything must come back.
#include "writing/WriteHarness.h"

#include <base/CMemoryStream.h>
#include <base/Ferro.h>
#include <qt/QTCMStream.h>
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <algorithm>
#include <memory>

using namespace Ketra;
using namespace Ketra::QT;

namespace writing {

namespace {

constexpr std::size_t kTracks = 4;
constexpr std::size_t kSamples = 3000;
constexpr std::size_t kMediaBytes = 1 << 20;
constexpr double kUnit = 1 / 600.0; // of the movie's own time scale, so that no edit cuts a sample off
constexpr unsigned int kRate = 48000;

struct SoundFormat {
    unsigned int format;
    unsigned short bytes; // of one sample of one channel; 0: packets
};

constexpr SoundFormat kSoundFormats[] = {{fourCC("mp4a"), 0}, {fourCC("sowt"), 2}, {fourCC("twos"), 2},
                                         {fourCC("in24"), 3}, {fourCC("fl32"), 4}, {fourCC("alac"), 0},
                                         {fourCC(".mp3"), 0}, {fourCC("raw "), 1}, {fourCC("abcd"), 0}};

/// A track, and what was put into it.
struct Written {
    QTTrack* track = nullptr;
    unsigned int bytesPerTime = 0; // of plain audio
    bool takenForPlain = false;    // read like plain audio when all samples have one size
    double time = 0;
    std::vector<Bytes> samples;
    Bytes chunk;
    Bytes all;
};

class OrderlyWriter {
public:
    explicit OrderlyWriter(Script& script)
        : script_(script), flavour_(chooseFlavour(script)),
          movie_(QTMovie::beginMovie(flavour_, script.flag(), script.flag())) {}

    void run() {
        const std::size_t tracks = 1 + script_.below(kTracks);
        for (std::size_t i = 0; i < tracks; ++i) {
            begin();
        }
        addReferences();
        while (!script_.isDone() && samples_ < kSamples && media_.size() < kMediaBytes) {
            Written& written = tracks_[script_.below(tracks_.size())];
            const unsigned char step = script_.u8();
            step < 64 ? saveChunk(written) : addSample(written, step);
        }
        finish();
    }

private:
    void begin();
    void describe(QTVideoTrack& video);
    void describe(Written& written, QTAudioTrack& audio);
    void addReferences();
    void addSample(Written& written, unsigned char step);
    void saveChunk(Written& written);
    void finish();
    Bytes header();
    void readBack(const Bytes& file);
    static void compare(QTTrack& track, const Written& written);

    Script& script_;
    QTMovieConstructionFlags flavour_;
    std::unique_ptr<QTMovie> movie_;
    std::vector<Written> tracks_;
    Bytes media_;
    std::size_t samples_ = 0;
    unsigned char next_ = 0; // tells each byte from its neighbours
};

void OrderlyWriter::begin() {
    // Systems tracks last 600 units, whatever is in them, so their samples need not come back.
    const unsigned int type = script_.pick({fourCC("vide"), fourCC("audi"), fourCC("text"), fourCC("tmcd")});
    Written written;
    written.track = movie_->beginTrack(type, flavour_);
    QTTrack& track = *written.track;
    track.setAtomMediaTimeScale(script_.pick({600U, 1000U, 30000U, kRate, 90000U}));
    if (auto* video = dynamic_cast<QTVideoTrack*>(&track)) describe(*video);
    if (auto* audio = dynamic_cast<QTAudioTrack*>(&track)) describe(written, *audio);
    if (auto* text = dynamic_cast<QTTextTrack*>(&track)) text->isChapterTrack(script_.flag());
    if (auto* code = dynamic_cast<QTTimeCodeTrack*>(&track)) {
        code->setTimeScale(2500);
        Bytes reel = script_.bytes(16);
        code->setSourceReference(static_cast<unsigned int>(reel.size()), reel.data());
    }
    track.setChunkFullTime(script_.u8() * kUnit);
    track.setChunkFullMaxSize(script_.u16());
    require(track.beginChunk() != nullptr, "no chunk in a new track");
    tracks_.push_back(std::move(written));
}

void OrderlyWriter::describe(QTVideoTrack& video) {
    video.setDataFormat(script_.pick({fourCC("mp4v"), fourCC("avc1"), fourCC("hvc1"), fourCC("h263"),
                                      fourCC("jpeg"), fourCC("apcn"), fourCC("SVQ3"), fourCC("mjp2")}));
    video.setWidth(script_.u16());
    video.setHeight(script_.u16());
    video.setFields(script_.u8() & 3);
    video.setDisplayAspectRatio(script_.u8(), script_.u8());
    const Bytes info = script_.bytes(64);
    const auto length = static_cast<unsigned int>(info.size());
    video.setDecoderSpecificInfo(new QTFrame(length, copyOf(info), 0, 0, false, 1, 0, 0, false));
}

void OrderlyWriter::describe(Written& written, QTAudioTrack& audio) {
    const SoundFormat& sound = script_.pick(kSoundFormats);
    const unsigned int channels = 1 + script_.below(8);
    audio.setAtomMediaTimeScale(kRate);
    audio.setSampleRate(kRate);
    audio.setDataFormat(sound.format);
    audio.setChannels(channels);
    audio.setBitsPerSample(static_cast<unsigned short>(sound.bytes ? 8 * sound.bytes : 16));
    if (sound.bytes) audio.setBytesPerSample(sound.bytes);
    written.bytesPerTime = sound.bytes * channels;
    written.takenForPlain = sound.format == fourCC(".mp3") || sound.format == fourCC("abcd");
}

void OrderlyWriter::addReferences() {
    for (const Written& to : tracks_) {
        const unsigned int type = to.track->getType() == fourCC("tmcd") ? fourCC("tmcd") : fourCC("chap");
        if (to.track->getType() == type || to.track->getType() == fourCC("text")) {
            tracks_.front().track->addTrackReference(type, to.track->getID());
        }
    }
}

void OrderlyWriter::addSample(Written& written, unsigned char step) {
    const unsigned int units = 1 + script_.below(40);
    const double duration = units * kUnit;
    const unsigned int times = written.bytesPerTime ? kRate / 600 * units : 0;
    // Nobody can be sent to a sample without bytes, so the first one has some.
    const std::size_t packet = (written.samples.empty() ? 1U : 0U) + std::size_t{script_.u8()} * (step & 7U);
    const std::size_t size = times ? std::size_t{times} * written.bytesPerTime : packet;
    if (samples_ >= kSamples || written.all.size() + size > kMediaBytes) return;
    Bytes bytes(size);
    for (unsigned char& byte : bytes) {
        byte = next_;
        next_ = static_cast<unsigned char>(next_ * 5 + 3);
    }
    // Plain audio may leave it to its bytes how many samples there are.
    const unsigned int count = written.bytesPerTime && (step & 8) ? 0 : std::max(1U, times);
    const bool video = written.track->getType() == fourCC("vide");
    const double shown = written.time + (video ? script_.below(4) * duration : 0);
    QTFrame frame(static_cast<unsigned int>(size), copyOf(bytes), shown, duration, (step & 16) != 0, count,
                  shown + duration, written.time, (step & 32) != 0);
    using Adding = int (QTTrack::*)(QTFrame*);
    static constexpr Adding kAddings[] = {&QTTrack::addSample, &QTTrack::addSyncSample,
                                          &QTTrack::addPartialSyncSample, &QTTrack::addPSample};
    require((written.track->*script_.pick(kAddings))(&frame) == 0, "a sample is refused");
    written.time += duration;
    append(written.chunk, bytes);
    append(written.all, bytes);
    written.samples.push_back(std::move(bytes));
    ++samples_;
}

void OrderlyWriter::saveChunk(Written& written) {
    const Bytes bytes = take(written.track->saveChunk(media_.size()));
    require(bytes == written.chunk, "a chunk is not its samples");
    append(media_, bytes);
    written.chunk.clear();
}

Bytes OrderlyWriter::header() {
    movie_->updateAtomSizes();
    return take(movie_->serializeRoot());
}

void OrderlyWriter::finish() {
    for (Written& written : tracks_) {
        saveChunk(written);
        require(movie_->endTrack(written.track->getID()) == 0, "a track does not end");
    }
    require(movie_->endMovie() == 0, "the movie does not end");
    require(movie_->prepareForWriting() == 0, "the movie is not prepared");
    const bool headerFirst = script_.flag();
    Bytes file = headerFirst ? header() : Bytes();
    require(movie_->addToAtomStcoOffsets(file.size() + 8) == 0, "offsets are not shifted");
    const Bytes last = header();
    if (headerFirst) {
        require(last.size() == file.size(), "shifted offsets change the size");
        file = last;
    }
    append(file, mediaData(media_));
    if (!headerFirst) append(file, last);
    readBack(file);
}

void OrderlyWriter::readBack(const Bytes& file) {
    Ferro::RStream source(new Ferro::CMemoryStream(file.data(), static_cast<std::int64_t>(file.size())));
    QTCMStream stream(&source);
    const std::unique_ptr<QTMovie> movie(QTMovie::createNewQTMovieFromStream(&stream, flavour_));
    for (const Written& written : tracks_) {
        if (written.samples.empty()) continue;
        require(movie != nullptr, "the movie does not open");
        QTTrack* track = movie->getTrackID(written.track->getID());
        require(track != nullptr, "a track is lost");
        compare(*track, written);
    }
}

void OrderlyWriter::compare(QTTrack& track, const Written& written) {
    const auto sameSize = [&](const Bytes& sample) { return sample.size() == written.samples[0].size(); };
    if (written.takenForPlain && std::all_of(written.samples.begin(), written.samples.end(), sameSize))
        return;
    QTChunk* chunk = track.getChunk();
    require(chunk != nullptr, "a track without a cursor");
    // The cursor's own, which knows nothing of edits.
    require(chunk->initWithSample(1) == 0, "no first sample");
    Bytes all;
    std::size_t frames = 0;
    while (QTFrame* frame = chunk->getNextFrame()) {
        const Bytes bytes = take(frame);
        if (!written.bytesPerTime) {
            require(frames < written.samples.size(), "there are more frames than samples");
            require(bytes == written.samples[frames], "a frame has other bytes");
        }
        append(all, bytes);
        ++frames;
    }
    if (!written.bytesPerTime) require(frames == written.samples.size(), "frames are lost");
    require(all == written.all, "the bytes are not the same");
}

} // namespace

void writeOrderly(Script& script) { OrderlyWriter(script).run(); }

} // namespace writing
