// Movies whose header is compressed: in every shape they open as if it were not.
#include "qt/movie/MovieTree.h"
#include "support/AtomFile.h"
#include "support/MovieBytes.h"

#include <base/CException.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <zlib.h>

namespace test {
namespace {

using namespace Ketra::QT;

Bytes deflated(const Bytes& bytes) {
    uLongf length = compressBound(static_cast<uLong>(bytes.size()));
    Bytes out(length);
    EXPECT_EQ(compress(out.data(), &length, bytes.data(), static_cast<uLong>(bytes.size())), Z_OK);
    out.resize(length);
    return out;
}

/// What a compressed header says about itself.
struct Stated {
    const char* code = "zlib";
    std::int64_t extraCompressed = 0;   ///< added to the size of "cmvd"
    std::int64_t extraUncompressed = 0; ///< added to the length of the header
};

Stated compressedBy(std::int64_t extra) { return {"zlib", extra, 0}; }
Stated uncompressedBy(std::int64_t extra) { return {"zlib", 0, extra}; }

Bytes cmov(const Bytes& header, const Stated& stated = {}) {
    const Bytes data = deflated(header);
    const auto size =
        static_cast<std::uint64_t>(static_cast<std::int64_t>(data.size()) + 12 + stated.extraCompressed);
    const auto length =
        static_cast<std::uint64_t>(static_cast<std::int64_t>(header.size()) + stated.extraUncompressed);
    return atom("cmov", atom("dcom", text(stated.code)) + u32(size) + text("cmvd") + u32(length) + data);
}

TrackSpec threeSamples() {
    TrackSpec spec;
    spec.scale = 100;
    spec.stts = {{3, 10}};
    spec.sizes = {3, 4, 5};
    spec.chunks = {2, 1};
    return spec;
}

/// A file: type, media, then what stands in the place of the movie.
struct File {
    Bytes front;
    Bytes moov;

    File() {
        const Bytes brand = atom("ftyp", text("qt  ") + u32(0) + text("qt  "));
        front = brand + atom("mdat", sampleBytes(threeSamples(), 0, 3));
        moov = moovBytes({threeSamples()}, 600, brand.size() + 8);
    }
    /// The movie with further children at its end.
    Bytes with(const Bytes& children) const {
        Bytes all = moov + children;
        const Bytes size = u32(all.size());
        std::copy(size.begin(), size.end(), all.begin());
        return all;
    }
    Bytes compressed(const Bytes& header, const Stated& stated = {}) const {
        return front + atom("moov", cmov(header, stated)) + hex("00000008 'free'");
    }
};

/// Opens and has the three samples.
void expectSamples(const MovieFile& movie) {
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->getTimeScale(), 600U);
    EXPECT_EQ(movie->getDuration(), 0.3);
    ASSERT_EQ(movie->getNumberOfTracks(), 1U);
    QTTrack* track = movie.track();
    ASSERT_EQ(track->initWithSample(1), 0);
    for (unsigned int i = 0; i < 3; ++i) {
        const std::unique_ptr<QTFrame> frame(track->getChunk()->getNextFrame());
        ASSERT_TRUE(frame);
        EXPECT_EQ(Bytes(frame->getData(), frame->getData() + frame->getDataLength()),
                  sampleBytes(threeSamples(), i));
    }
}

std::string childrenOfMovie(const MovieFile& movie) {
    return movie ? childTypes(movie->getRoot()->getAtomOfType(fourCC("moov"))) : "not open";
}

TEST(CompressedHeader, OpensLikeAPlainOne) {
    const File file;
    const MovieFile plain(file.front + file.moov + hex("00000008 'free'"));
    const MovieFile movie(file.compressed(file.moov));
    expectSamples(plain);
    expectSamples(movie);
    EXPECT_EQ(childTypes(movie->getRoot()), "ftypmdatmoovfree"); // the file goes on behind it
    EXPECT_EQ(childrenOfMovie(movie), "mvhdtrak");
    const QTAtom* moov = movie->getRoot()->getAtomOfType(fourCC("moov"));
    EXPECT_EQ(moov->getSize(), file.moov.size()); // what the inner header says
    movie->updateAtomSizes();
    plain->updateAtomSizes();
    EXPECT_EQ(take(movie->serializeRoot()), take(plain->serializeRoot()));
}

TEST(CompressedHeader, MayEndInAnything) {
    const File file;
    struct Case {
        Bytes last;
        const char* children;
    };
    for (const Case& c : {Case{atom("abcd", repeat(7, 11)), "mvhdtrakabcd"},
                          {atom("abcd", {}), "mvhdtrakabcd"},
                          {atom("udta", atom("name", repeat(1, 4))), "mvhdtrakudta"},
                          {atom("udta", atom("name", repeat(1, 4)) + repeat(0, 4)), "mvhdtrakudta"},
                          {atom("udta", {}), "mvhdtrakudta"},
                          {atom("trak", atom("abcd", {})), "mvhdtraktrak"}}) {
        SCOPED_TRACE(c.children);
        const MovieFile movie(file.compressed(file.with(c.last)));
        expectSamples(movie);
        EXPECT_EQ(childTypes(movie->getRoot()), "ftypmdatmoovfree");
        EXPECT_EQ(childrenOfMovie(movie), c.children);
    }
}

TEST(CompressedHeader, EndsWithItsBlock) {
    const File file;
    // Bytes behind the inner movie are no atoms of the file.
    const MovieFile behind(file.compressed(file.moov + atom("pnot", repeat(0, 12))));
    expectSamples(behind);
    EXPECT_EQ(childTypes(behind->getRoot()), "ftypmdatmoovfree");
    // A movie that says it is longer goes on in the file, and ends where that ends.
    Bytes tooLong = file.moov;
    tooLong[2] = static_cast<unsigned char>(tooLong[2] + 1);
    EXPECT_TRUE(MovieFile(file.compressed(tooLong)));
}

TEST(CompressedHeader, IsCutWhereItsLengthsAreTooLarge) {
    const File file;
    expectSamples(MovieFile(file.compressed(file.moov, uncompressedBy(1000))));
    expectSamples(MovieFile(file.compressed(file.moov, uncompressedBy(0x7FFF0000)))); // never allocated
    expectSamples(MovieFile(file.compressed(file.moov, compressedBy(1 << 20))));
}

TEST(CompressedHeader, IsRejectedWhereItsLengthsAreTooSmall) {
    const File file;
    const auto data = static_cast<std::int64_t>(deflated(file.moov).size());
    const auto length = static_cast<std::int64_t>(file.moov.size());
    for (const Stated& wrong : {uncompressedBy(-1), uncompressedBy(-length), compressedBy(-1),
                                compressedBy(-data), compressedBy(-data - 1), compressedBy(-data - 12)}) {
        try {
            const MovieFile movie(file.compressed(file.moov, wrong));
            ADD_FAILURE() << wrong.extraCompressed << ' ' << wrong.extraUncompressed;
        } catch (const Ketra::CException& e) {
            EXPECT_STREQ(e.what(), "Error when decompressing data.");
            EXPECT_EQ(e.getFunction(), "Ketra::QT::CMOV::parse");
            EXPECT_EQ(e.getFile(), "lib/qt/QTAtoms");
        }
    }
}

TEST(CompressedHeader, KnowsOneCompression) {
    const File file;
    for (const auto& [code, message] : {std::pair{"lzo ", "Compression type not supported ( ozl)."},
                                        {"Zlib", "Compression type not supported (bilZ)."}}) {
        try {
            const MovieFile movie(file.compressed(file.moov, {code, 0, 0}));
            ADD_FAILURE() << code;
        } catch (const Ketra::CException& e) {
            EXPECT_STREQ(e.what(), message);
        }
    }
}

TEST(CompressedHeader, OfDamagedDataIsAnError) {
    const File file;
    Bytes bytes = file.compressed(file.moov);
    bytes[bytes.size() - 10] ^= 0xFF; // the check sum
    EXPECT_THROW(MovieFile{bytes}, Ketra::CException);
    EXPECT_THROW(MovieFile(file.front + atom("moov", atom("cmov", repeat(0, 40)))), Ketra::CException);
    EXPECT_THROW(MovieFile(file.front + atom("moov", atom("cmov", text("dcomdcom")))), Ketra::CException);
    EXPECT_FALSE(MovieFile(file.front + atom("moov", atom("cmov", {})))); // nothing to read at all
}

TEST(CompressedHeader, IsNotReadAgainInsideItself) {
    const File file;
    // A child of the same kind is skipped like any unknown atom.
    const MovieFile nested(file.compressed(file.with(cmov(file.moov))));
    expectSamples(nested);
    EXPECT_EQ(childrenOfMovie(nested), "mvhdtrakcmov");
    EXPECT_FALSE(MovieFile(file.compressed(atom("moov", cmov(file.moov)))));
    // Even one that is no compressed header at all.
    expectSamples(MovieFile(file.compressed(file.with(atom("cmov", repeat(0xFF, 40))))));
    // What follows it in the outer movie is not read.
    const MovieFile twice(file.front + atom("moov", cmov(file.moov) + cmov(file.moov) + atom("udta", {})));
    expectSamples(twice);
    EXPECT_EQ(childrenOfMovie(twice), "mvhdtrak");
}

TEST(CompressedHeader, StandsBehindOtherChildren) {
    const File file;
    const MovieFile movie(file.front + atom("moov", atom("udta", {}) + cmov(file.moov)));
    expectSamples(movie);
    EXPECT_EQ(childrenOfMovie(movie), "udtamvhdtrak");
}

TEST(CompressedHeader, HoldsAtMostWhatItHolds) {
    const File file;
    for (const Bytes& inner :
         {Bytes{}, repeat(0, 4), repeat(0, 8), u32(4) + text("moov"), u32(8) + text("moov"),
          u32(0) + text("moov"), u32(1) + text("moov"), u32(1) + text("moov") + u64(8),
          u32(0xFFFFFFFF) + text("moov"), u32(16) + text("moov") + repeat(0, 8)}) {
        EXPECT_FALSE(MovieFile(file.compressed(inner))) << show(inner);
    }
    // The header in front of the children is what counts, not its type.
    Bytes other = file.moov;
    other[4] = 'x';
    expectSamples(MovieFile(file.compressed(other)));
}

TEST(CompressedHeader, MayHaveLargeHeaders) {
    const File file;
    const Bytes inner = cmov(file.moov);
    const Bytes payload(inner.begin() + 8, inner.end());
    const Bytes large = u32(1) + text("cmov") + u64(payload.size() + 16) + payload;
    expectSamples(MovieFile(file.front + atom("moov", large)));
    expectSamples(MovieFile(file.front + u32(1) + text("moov") + u64(large.size() + 16) + large));
}

TEST(CompressedHeader, SurvivesEveryTruncation) {
    const File file;
    const Bytes whole = file.compressed(file.moov);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        try {
            const MovieFile movie(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
            EXPECT_TRUE(!movie || length >= whole.size() - 8) << length;
        } catch (const Ketra::CException&) {
            EXPECT_GT(length, file.front.size() + 16); // some of the compressed header is there
        }
    }
}

TEST(CompressedHeader, SurvivesEveryByteChangedInside) {
    const File file;
    const Bytes header = file.with(atom("udta", atom("name", repeat(1, 4))));
    for (std::size_t at = 0; at < header.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x7F, 0xFF}) {
            Bytes changed = header;
            changed[at] = static_cast<unsigned char>(value);
            try {
                const MovieFile movie(file.compressed(changed));
                if (movie) movie->updateAtomSizes();
            } catch (const Ketra::CException&) {
                // sample descriptions that contradict themselves
            }
        }
    }
}

TEST(CompressedAtom, KeepsItsBytes) {
    AtomFile file(cmov(hex("0102030405")));
    int result = 99;
    const auto compressed = file.parse<CMOV>(&result);
    EXPECT_EQ(result, 0);
    QTFrame* frame = compressed->getUnCompressedHeaders();
    ASSERT_TRUE(frame);
    EXPECT_EQ(Bytes(frame->getData(), frame->getData() + frame->getDataLength()), hex("0102030405"));
    EXPECT_EQ(frame->getSamplesInFrame(), 1U);
    EXPECT_EQ(frame->getTime(), 0.0);
    EXPECT_EQ(compressed->serialize(), nullptr);
    CMOV copy(*compressed);
    EXPECT_NE(copy.getUnCompressedHeaders(), frame);
    EXPECT_EQ(copy.getUnCompressedHeaders()->getDataLength(), 5U);
    CMOV assigned;
    EXPECT_EQ(assigned.getUnCompressedHeaders(), nullptr);
    assigned = copy;
    EXPECT_EQ(assigned.getUnCompressedHeaders()->getDataLength(), 5U);
    EXPECT_EQ(CMOV().parse(), -1);
    // The frame is as long as what came out, not as what was stated.
    AtomFile longer(cmov(hex("0102"), uncompressedBy(5)));
    EXPECT_EQ(longer.parse<CMOV>()->getUnCompressedHeaders()->getDataLength(), 2U);
}

} // namespace
} // namespace test
