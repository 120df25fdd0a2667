// Small files that claim to be huge: what they say must not be what they cost.
#include "hostile/Writer.h"
#include "support/AtomFile.h"

#include <base/CException.h>
#include <qt/QTAtoms.h>

#include <gtest/gtest.h>
#include <memory>
#include <zlib.h>

using namespace Ketra::QT;
using hostile::Bytes;
using hostile::Writer;
using test::AtomFile;

namespace {

Bytes compressedMovie(const Bytes& plain, std::uint64_t stated) {
    uLongf length = compressBound(static_cast<uLong>(plain.size()));
    Bytes packed(length);
    EXPECT_EQ(compress2(packed.data(), &length, plain.data(), static_cast<uLong>(plain.size()), 9), Z_OK);
    packed.resize(length);
    Writer w;
    w.atom("moov", [&] {
        w.atom("cmov", [&] {
            w.atom("dcom", [&] { w.text("zlib"); });
            w.atom("cmvd", [&] { w.u32(stated).raw(packed); });
        });
    });
    return w.take();
}

/// "moov" of that many bytes: empty atoms of an unknown type.
Bytes moovOfEmptyAtoms(std::size_t count) {
    Writer w;
    w.u32(8 + 8 * count).text("moov");
    for (std::size_t i = 0; i < count; ++i) {
        w.u32(8).text("abcd");
    }
    return w.take();
}

} // namespace

TEST(HostileClaims, ALeafIsNotPaddedBeyondItsSource) {
    Writer w;
    w.u32(0xE0000000).text("crgn").zeros(10);
    AtomFile file(w.bytes());
    const auto region = file.parse<CRGN>();
    ASSERT_NE(region, nullptr);
    EXPECT_EQ(region->getSize(), 0xE0000000u);
    EXPECT_EQ(std::unique_ptr<QTFrame>(region->serialize()), nullptr);
}

TEST(HostileClaims, AContainerIsNotPaddedBeyondItsSource) {
    Writer w;
    w.u32(0xE0000008).text("edts").u32(0xE0000000).text("abcd");
    AtomFile file(w.bytes());
    auto edits = std::make_unique<EDTS>(file.header().release());
    edits->parse();
    EXPECT_EQ(std::unique_ptr<QTFrame>(edits->serialize()) == nullptr, edits->updateSize() > 0x10000);
}

TEST(HostileClaims, ASmallClaimIsWrittenAsItStands) {
    Writer w;
    w.u32(1000).text("crgn").zeros(10);
    AtomFile file(w.bytes());
    const auto region = file.parse<CRGN>();
    ASSERT_NE(region, nullptr);
    EXPECT_EQ(test::take(region->serialize()).size(), 1000u);
}

TEST(HostileClaims, ASizeSetInMemoryIsTheCallersOwn) {
    CRGN region(new QTAtom(1000000, fourCC("crgn")));
    EXPECT_EQ(test::take(region.serialize()).size(), 1000000u);
}

TEST(HostileClaims, AHeaderInflatesToEightMebibytesOrEightfold) {
    const std::size_t limit = std::size_t{8} << 20;
    for (const std::size_t size : {limit, limit + 8}) {
        Bytes plain = moovOfEmptyAtoms(0);
        plain.resize(size);
        const Bytes file = compressedMovie(plain, size);
        AtomFile source(Bytes(file.begin() + 8, file.end()));
        if (size <= limit) {
            const auto compressed = source.parse<CMOV>();
            ASSERT_NE(compressed->getUnCompressedHeaders(), nullptr);
            EXPECT_EQ(compressed->getUnCompressedHeaders()->getDataLength(), size);
        } else {
            EXPECT_THROW(source.parse<CMOV>(), Ketra::CException);
        }
    }
}

TEST(HostileClaims, AnInflatedHeaderHasAQuarterOfAMillionAtomsAtMost) {
    const Bytes plain = moovOfEmptyAtoms(300000);
    AtomFile source(compressedMovie(plain, plain.size()));
    const auto movie = source.parse<MOOV>();
    ASSERT_NE(movie, nullptr);
    EXPECT_EQ(movie->getChildren().size(), 262143u); // the "moov" inside counts as one
}

TEST(HostileClaims, ManyEmptyUserDataEntriesAreAllKept) {
    Writer w;
    w.atom("udta", [&] {
        for (int i = 0; i < 131072; ++i) {
            w.atom("abcd");
        }
    });
    AtomFile file(w.bytes());
    const auto data = file.parse<UDTA>();
    EXPECT_EQ(data->getDataAtoms().size(), 131072u);
}
