// Writing in no order at all: nothing comes of it that can be told beforehand, but nothing may break.
#include "hostile/Harness.h"
#include "writing/WriteHarness.h"

#include <base/CMemoryStream.h>
#include <base/Ferro.h>
#include <qt/QTCMStream.h>
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>
#include <qt/QTUtils.h>

#include <cstdlib>
#include <memory>

using namespace Ketra;
using namespace Ketra::QT;
using hostile::attempt;

namespace writing {

namespace {

constexpr std::size_t kTracks = 8;
constexpr std::size_t kSteps = 4000;
constexpr std::size_t kSamples = 2000;
constexpr std::size_t kMediaBytes = 1 << 20;
constexpr std::size_t kHeaders = 4;         // that are made in between
constexpr std::size_t kPreparations = 16;   // each adds to the movie
constexpr std::size_t kFrames = 4096;       // of a track that are read back
constexpr std::size_t kReadBytes = 1 << 24; // of a track, in these frames

class AnyWriter {
public:
    explicit AnyWriter(Script& script)
        : script_(script), flavour_(chooseFlavour(script)),
          movie_(QTMovie::beginMovie(flavour_, script.flag(), script.flag())) {}

    void run() {
        beginTrack();
        for (std::size_t i = 0; i < kSteps && !script_.isDone(); ++i) {
            takeStep();
        }
        Bytes header;
        attempt([&] { movie_->updateAtomSizes(); });
        attempt([&] { header = take(movie_->serializeRoot()); });
        Bytes file = header;
        append(file, mediaData(media_));
        readBack(file);
        file = mediaData(media_);
        append(file, header);
        readBack(file);
    }

private:
    using Step = void (AnyWriter::*)();
    void takeStep();

    QTTrack* track();
    void beginTrack();
    void setMovie() { setAnything(*movie_, script_); }
    void setTrack() {
        if (QTTrack* chosen = track()) setAnything(*chosen, script_);
    }
    void beginChunk();
    void addSamples();
    void addOddSample();
    void useChunk();
    void saveChunk();
    void endTrack() { movie_->endTrack(script_.u8()); }
    void endMovie() { movie_->endMovie(); }
    void prepareMovie() {
        if (preparations_++ < kPreparations) movie_->prepareForWriting();
    }
    void prepareTrack() {
        QTTrack* chosen = track();
        if (chosen && preparations_++ < kPreparations) chosen->prepareForWriting();
    }
    void shiftOffsets() { movie_->addToAtomStcoOffsets(script_.flag() ? script_.u8() : script_.u64()); }
    void updateSizes() {
        if (headers_++ < kHeaders) movie_->updateAtomSizes();
    }
    void serialize() {
        if (headers_++ < kHeaders) take(movie_->serializeRoot());
    }
    void readTrack();
    std::unique_ptr<QTFrame> frame();
    void add(QTTrack& track, QTFrame* frame);
    void readBack(const Bytes& file) const;

    Script& script_;
    QTMovieConstructionFlags flavour_;
    std::unique_ptr<QTMovie> movie_;
    Bytes media_;
    std::size_t samples_ = 0;
    std::size_t sampleBytes_ = 0;
    std::size_t preparations_ = 0;
    std::size_t headers_ = 0;
    std::size_t reads_ = 0;
};

void AnyWriter::takeStep() {
    static constexpr Step kAnySteps[] = {
        &AnyWriter::beginTrack,   &AnyWriter::setMovie,    &AnyWriter::setTrack,     &AnyWriter::setTrack,
        &AnyWriter::beginChunk,   &AnyWriter::addSamples,  &AnyWriter::addSamples,   &AnyWriter::addOddSample,
        &AnyWriter::addOddSample, &AnyWriter::useChunk,    &AnyWriter::saveChunk,    &AnyWriter::saveChunk,
        &AnyWriter::endTrack,     &AnyWriter::endMovie,    &AnyWriter::prepareMovie, &AnyWriter::prepareTrack,
        &AnyWriter::shiftOffsets, &AnyWriter::updateSizes, &AnyWriter::serialize,    &AnyWriter::readTrack,
    };
    const Step step = script_.pick(kAnySteps);
    attempt([&] { (this->*step)(); });
}

QTTrack* AnyWriter::track() {
    const std::vector<QTTrack*> tracks = movie_->getTracks();
    return tracks.empty() ? nullptr : tracks[script_.below(tracks.size())];
}

void AnyWriter::beginTrack() {
    const unsigned int type =
        script_.pick({fourCC("vide"), fourCC("audi"), fourCC("text"), fourCC("tmcd"), fourCC("vihi"),
                      fourCC("auhi"), fourCC("odsm"), fourCC("sdsm"), fourCC("soun"), 0U});
    const QTMovieConstructionFlags flavour = script_.flag() ? chooseFlavour(script_) : flavour_;
    if (movie_->getNumberOfTracks() >= kTracks) return;
    attempt([&] {
        QTTrack* begun = movie_->beginTrack(type, flavour);
        if (script_.flag()) return; // without a time scale and a chunk
        begun->setAtomMediaTimeScale(600);
        begun->beginChunk();
    });
}

void AnyWriter::beginChunk() {
    QTTrack* chosen = track();
    if (!chosen) return;
    if (script_.flag()) {
        chosen->beginChunk();
    } else {
        chosen->createChunk();
    }
}

/// At times without bytes, with a length all the same.
std::unique_ptr<QTFrame> AnyWriter::frame() {
    const bool large = script_.u8() == 255;
    const std::size_t size = large ? script_.u16() : script_.u8() & 63U;
    if (samples_ >= kSamples || sampleBytes_ + size > kMediaBytes) return nullptr;
    ++samples_;
    sampleBytes_ += size;
    unsigned char* data = script_.u8() < 16 ? nullptr : copyOf(Bytes(size, script_.u8()));
    const double time = script_.number();
    const double duration = script_.number();
    const unsigned int count = script_.u8() < 224 ? script_.below(4) : script_.u32();
    return std::make_unique<QTFrame>(static_cast<unsigned int>(size), data, time, duration, script_.flag(),
                                     count, script_.number(), script_.number(), script_.flag());
}

void AnyWriter::add(QTTrack& track, QTFrame* frame) {
    using Adding = int (QTTrack::*)(QTFrame*);
    static constexpr Adding kAddings[] = {&QTTrack::addSample, &QTTrack::addSyncSample,
                                          &QTTrack::addPartialSyncSample, &QTTrack::addPSample,
                                          &QTTrack::addHintSample};
    (track.*script_.pick(kAddings))(frame);
}

void AnyWriter::addSamples() {
    QTTrack* chosen = track();
    if (!chosen) return;
    for (unsigned int left = script_.below(16); left; --left) {
        if (samples_ >= kSamples || sampleBytes_ + 16 > kMediaBytes) return;
        ++samples_;
        sampleBytes_ += 16;
        const double time = static_cast<double>(samples_) / 25;
        QTFrame sample(16, copyOf(Bytes(16, script_.u8())), time, 1 / 25.0, false, 1, time, time, false);
        add(*chosen, &sample);
    }
}

void AnyWriter::addOddSample() {
    QTTrack* chosen = track();
    if (!chosen) return;
    const std::unique_ptr<QTFrame> sample = frame();
    add(*chosen, sample.get());
}

/// Past the track, straight to its cursor.
void AnyWriter::useChunk() {
    QTTrack* chosen = track();
    QTChunk* chunk = chosen ? chosen->getChunk() : nullptr;
    if (!chunk) return;
    const std::unique_ptr<QTFrame> sample = frame();
    switch (script_.below(8)) {
    case 0:
        chunk->addSample(sample.get());
        break;
    case 1:
        chunk->addSyncSample(sample.get(), script_.u32());
        break;
    case 2:
        chunk->addPartialSyncSample(sample.get(), script_.u32());
        break;
    case 3:
        chunk->addSampleDep(script_.u32());
        break;
    case 4:
        chunk->setChunkNr(script_.u32());
        break;
    case 5:
        chunk->beginChunk();
        break;
    case 6:
        chosen->addSamplesToChunk({sample.get(), nullptr});
        break;
    default:
        append(media_, take(chunk->closeChunk(script_.u64())));
    }
}

void AnyWriter::saveChunk() {
    QTTrack* chosen = track();
    if (!chosen) return;
    // Mostly where the bytes are going to be, behind the header of the media.
    const std::uint64_t offset = script_.u8() < 224 ? media_.size() + 8 : script_.u64();
    append(media_, take(chosen->saveChunk(offset)));
}

/// A track that is being written, read.
void AnyWriter::readTrack() {
    QTTrack* chosen = track();
    if (!chosen || reads_++ >= kHeaders) return;
    Ferro::RStream source(new Ferro::CMemoryStream(media_.data(), static_cast<std::int64_t>(media_.size())));
    QTCMStream stream(&source);
    hostile::askTrack(*chosen, stream);
    hostile::readTrack(*chosen, stream);
}

void AnyWriter::readBack(const Bytes& file) const {
    Ferro::RStream source(new Ferro::CMemoryStream(file.data(), static_cast<std::int64_t>(file.size())));
    QTCMStream stream(&source);
    std::unique_ptr<QTMovie> movie;
    attempt([&] { movie.reset(QTMovie::createNewQTMovieFromStream(&stream, flavour_)); });
    if (!movie) return;
    for (QTTrack* read : movie->getTracks()) {
        attempt([&] {
            if (read->initWithSample(1) != 0) return;
            std::size_t bytes = 0;
            for (std::size_t i = 0; i < kFrames && bytes < kReadBytes; ++i) {
                QTFrame* next = read->getChunk()->getNextFrame();
                if (!next) break;
                bytes += take(next).size();
            }
        });
        hostile::askTrack(*read, stream);
        hostile::readTrack(*read, stream);
    }
    hostile::visitAtoms(*movie->getUtils());
}

} // namespace

void writeInAnyOrder(Script& script) { AnyWriter(script).run(); }

} // namespace writing
