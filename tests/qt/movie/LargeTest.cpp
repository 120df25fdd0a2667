// Movies that are large: by their offsets, beyond what 32 bits can tell, and by the number of their samples.
#include "qt/movie/MovieTree.h"
#include "support/AtomFile.h"

#include <qt/QTChunk.h>
#include <qt/QTStream.h>

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <utility>

namespace test {
namespace {

using namespace Ketra::QT;

constexpr std::uint64_t kBeyond = 0x100000000; // the first offset that needs 64 bits

/// What a byte between header and end of the file is, so that nobody need store it.
unsigned char patternAt(std::uint64_t offset) { return static_cast<unsigned char>(offset * 31 >> 3); }

/// A file that holds pieces at places of their own and the pattern everywhere else.
class SparseStream : public QTStream {
public:
    struct Piece {
        std::uint64_t place;
        Bytes bytes;
    };
    SparseStream(std::vector<Piece> pieces, std::uint64_t length)
        : pieces_(std::move(pieces)), length_(length) {}

    std::int64_t read(unsigned char* buffer, std::int64_t length) override {
        const std::uint64_t left = at_ < length_ ? length_ - at_ : 0;
        const std::uint64_t count = std::min(left, static_cast<std::uint64_t>(length));
        for (std::uint64_t i = 0; i < count; ++i, ++at_) {
            buffer[i] = byteAt(at_);
        }
        return static_cast<std::int64_t>(count);
    }
    std::int64_t write(unsigned char*, std::int64_t) override { return -1; }
    std::int64_t lseek(std::int64_t offset, unsigned char relative) override {
        const std::int64_t to = relative ? static_cast<std::int64_t>(at_) + offset : offset;
        if (to < 0) return -1;
        at_ = static_cast<std::uint64_t>(to);
        return to;
    }
    int open() override { return 0; }
    int close() override { return 0; }
    std::int64_t size() override { return static_cast<std::int64_t>(length_); }

private:
    unsigned char byteAt(std::uint64_t offset) const {
        for (const Piece& piece : pieces_) {
            const std::uint64_t within = offset - piece.place;
            if (offset >= piece.place && within < piece.bytes.size()) {
                return piece.bytes[static_cast<std::size_t>(within)];
            }
        }
        return patternAt(offset);
    }

    std::vector<Piece> pieces_;
    std::uint64_t length_;
    std::uint64_t at_ = 0;
};

Bytes patternOf(std::uint64_t offset, std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = patternAt(offset + i);
    }
    return bytes;
}

QTTrack* beginVideo(const MoviePtr& movie, unsigned int timeScale) {
    QTTrack* track = movie->beginTrack(fourCC("vide"), kMP4);
    track->setDataFormat(fourCC("mp4v"));
    track->setAtomMediaTimeScale(timeScale);
    EXPECT_TRUE(track->beginChunk());
    return track;
}

int addSample(QTTrack& track, unsigned int size, double time, double duration, bool sync) {
    auto* block = static_cast<unsigned char*>(std::calloc(size, 1));
    QTFrame frame(size, block, time, duration, sync, 1, time + duration, time, false);
    return sync ? track.addSyncSample(&frame) : track.addSample(&frame);
}

Bytes finish(const MoviePtr& movie) {
    EXPECT_EQ(movie->endTrack(1), 0);
    EXPECT_EQ(movie->endMovie(), 0);
    EXPECT_EQ(movie->prepareForWriting(), 0);
    movie->updateAtomSizes();
    return take(movie->serializeRoot());
}

QTAtom* sampleTable(const QTTrack& track) {
    QTAtom* at = track.getTrak();
    for (const unsigned int type : {fourCC("mdia"), fourCC("minf"), fourCC("stbl")}) {
        at = at->getAtomOfType(type);
    }
    return at;
}

bool holds(const Bytes& header, const char* type) {
    const std::string text(type);
    return std::search(header.begin(), header.end(), text.begin(), text.end()) != header.end();
}

constexpr unsigned int kSize = 7; // of each sample
constexpr unsigned int kInChunk = 3;

/// One chunk of three samples of a second each at every offset.
void addChunks(QTTrack& track, const std::vector<std::uint64_t>& offsets) {
    double time = 0;
    for (const std::uint64_t offset : offsets) {
        for (unsigned int i = 0; i < kInChunk; ++i, ++time) {
            ASSERT_EQ(addSample(track, kSize, time, 1, true), 0);
        }
        ASSERT_EQ(take(track.saveChunk(offset)).size(), std::size_t{kInChunk} * kSize);
    }
}

void expectChunks(QTStream& stream, const std::vector<std::uint64_t>& offsets) {
    const MoviePtr movie(QTMovie::createNewQTMovieFromStream(&stream, kMP4));
    ASSERT_TRUE(movie);
    QTTrack* track = movie->getTrackID(1);
    ASSERT_TRUE(track);
    const auto* table = childOf<STCO>(sampleTable(*track), fourCC("stco"));
    ASSERT_TRUE(table);
    ASSERT_EQ(table->getNumberOfEntries(), offsets.size());
    ASSERT_EQ(track->initWithSample(1), 0);
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        EXPECT_EQ(table->getChunkOffsetData(static_cast<unsigned int>(i))->getOffset(), offsets[i]);
        for (unsigned int n = 0; n < kInChunk; ++n) {
            const std::uint64_t at = offsets[i] + std::uint64_t{n} * kSize;
            EXPECT_EQ(track->getChunk()->getSampleOffset(), at);
            EXPECT_EQ(take(track->getChunk()->getNextFrame()), patternOf(at, kSize)) << at;
        }
    }
    EXPECT_EQ(track->getChunk()->getNextFrame(), nullptr);
    const auto last = static_cast<unsigned int>(offsets.size() * kInChunk);
    ASSERT_EQ(track->initWithSample(last), 0);
    EXPECT_EQ(take(track->getChunk()->getNextFrame()),
              patternOf(offsets.back() + std::uint64_t{kInChunk - 1} * kSize, kSize));
}

TEST(LargeMovie, HasOffsetsOf64BitsBeyond4GiB) {
    // Not in order: one chunk lies near the begin of the file.
    const std::vector<std::uint64_t> offsets = {kBeyond - 1, 64, kBeyond, kBeyond + 5000, 9 * kBeyond};
    const MoviePtr movie = begin(kMP4);
    QTTrack* track = beginVideo(movie, 600);
    addChunks(*track, offsets);
    const Bytes header = finish(movie);
    EXPECT_TRUE(holds(header, "co64"));
    EXPECT_FALSE(holds(header, "stco"));
    const std::uint64_t end = 9 * kBeyond + 4096;
    SparseStream file({{0, hex("00000001 'mdat' 0000000900001000")}, {end, header}}, end + header.size());
    expectChunks(file, offsets);
}

TEST(LargeMovie, KeepsOffsetsOf32BitsUpToTheLastThatFits) {
    const std::vector<std::uint64_t> offsets = {64, kBeyond - 1};
    const MoviePtr movie = begin(kMP4);
    QTTrack* track = beginVideo(movie, 600);
    addChunks(*track, offsets);
    const Bytes header = finish(movie);
    EXPECT_TRUE(holds(header, "stco"));
    EXPECT_FALSE(holds(header, "co64"));
    const std::uint64_t end = kBeyond + 4096;
    SparseStream file({{0, hex("00000001 'mdat' 0000000100001000")}, {end, header}}, end + header.size());
    expectChunks(file, offsets);
}

TEST(LargeMovie, WidensItsOffsetsWhenTheHeaderGoesInFront) {
    const MoviePtr movie = begin(kMP4);
    QTTrack* track = beginVideo(movie, 600);
    addChunks(*track, {0, kBeyond - 100}); // within the media
    const std::size_t narrow = finish(movie).size();
    // Two entries grow by four bytes each; the media, with a size of 64 bits, begins 16 bytes behind.
    const std::uint64_t shift = narrow + 8 + 16;
    EXPECT_EQ(movie->addToAtomStcoOffsets(shift), 0);
    movie->updateAtomSizes();
    const Bytes header = take(movie->serializeRoot());
    ASSERT_EQ(header.size(), narrow + 8);
    EXPECT_TRUE(holds(header, "co64"));
    // The media with its own header: 4 GiB and 16 bytes.
    SparseStream file({{0, header}, {header.size(), hex("00000001 'mdat' 0000000100000010")}},
                      header.size() + 16 + kBeyond);
    expectChunks(file, {shift, shift + kBeyond - 100});
}

/// The samples of the movie below: sample i, from 0, has 1 to 4 bytes that tell its number.
Bytes numbered(unsigned int i) {
    Bytes bytes(1 + i % 4);
    for (std::size_t k = 0; k < bytes.size(); ++k) {
        bytes[k] = static_cast<unsigned char>(i >> (8 * k));
    }
    return bytes;
}

TEST(LargeMovie, OfManySamplesIsReadToItsEnd) {
    constexpr unsigned int kSamples = 4000000;
    constexpr unsigned int kGroup = 50; // from key frame to key frame, and in a chunk
    const MoviePtr movie = begin(kMP4);
    QTTrack* track = beginVideo(movie, 90000);
    Bytes media;
    for (unsigned int i = 0; i < kSamples; ++i) {
        const Bytes bytes = numbered(i);
        auto* block = static_cast<unsigned char*>(std::malloc(bytes.size()));
        std::copy(bytes.begin(), bytes.end(), block);
        const double time = i / 25.0;
        QTFrame frame(static_cast<unsigned int>(bytes.size()), block, time, 1 / 25.0, i % kGroup == 0, 1,
                      time + 1 / 25.0, time, false);
        ASSERT_EQ(i % kGroup == 0 ? track->addSyncSample(&frame) : track->addSample(&frame), 0);
        if (i % kGroup != kGroup - 1) continue;
        const std::size_t offset = 8 + media.size();
        const Bytes chunk = take(track->saveChunk(offset));
        media.insert(media.end(), chunk.begin(), chunk.end());
    }
    ASSERT_EQ(media.size(), 10000000U); // a million times 1 + 2 + 3 + 4

    AtomFile file(atom("mdat", media) + finish(movie));
    const MoviePtr read(QTMovie::createNewQTMovieFromStream(&file.stream(), kMP4));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->getDuration(), 160000.0);
    QTTrack* back = read->getTrackID(1);
    ASSERT_TRUE(back);
    EXPECT_EQ(childOf<STSZ>(sampleTable(*back), fourCC("stsz"))->getNumberOfEntries(), kSamples);

    const auto expectNext = [&](unsigned int n) { // from 1
        const std::unique_ptr<QTFrame> frame(back->getChunk()->getNextFrame());
        ASSERT_TRUE(frame);
        EXPECT_EQ(Bytes(frame->getData(), frame->getData() + frame->getDataLength()), numbered(n - 1)) << n;
        EXPECT_EQ(frame->getTime(), (n - 1) / 25.0);
        EXPECT_EQ(frame->getIsKeyFrame(), n % kGroup == 1) << n;
    };
    for (const unsigned int n : {1U, 2U, 100001U, 65535U, 3999950U, 3999999U}) {
        ASSERT_EQ(back->initWithSample(n), 0) << n;
        expectNext(n);
        expectNext(n + 1);
    }
    EXPECT_EQ(back->getChunk()->getNextFrame(), nullptr); // that was the last one

    ASSERT_EQ(back->initWithTime(159999.0F), 0); // sample 3999976, whose key frame is 3999951
    for (unsigned int n = 3999951; n <= kSamples; ++n) {
        expectNext(n);
    }
    EXPECT_EQ(back->getChunk()->getNextFrame(), nullptr);
    EXPECT_EQ(back->initWithTime(160001.0F), -1);
}

} // namespace
} // namespace test
