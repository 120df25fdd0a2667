// The sample table container.
#include "qt/samples/TableFixture.h"

#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/entries/MP4V.h>
#include <qt/QTAtoms/samples/CSLG.h>
#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/QTAtoms/samples/SDTP.h>
#include <qt/QTAtoms/samples/STBL.h>
#include <qt/QTAtoms/samples/STCO.h>
#include <qt/QTAtoms/samples/STDP.h>
#include <qt/QTAtoms/samples/STPS.h>
#include <qt/QTAtoms/samples/STSC.h>
#include <qt/QTAtoms/samples/STSH.h>
#include <qt/QTAtoms/samples/STSS.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/wire/Access.h>

namespace test {
namespace {

using namespace Ketra::QT;

const Bytes kChunks =
    tableAtom("stsc", hex("00000002 00000001 00000004 00000001 00000003 00000002 00000001"));

std::unique_ptr<STBL> read(AtomFile& file) {
    int result = -1;
    auto stbl = file.parse<STBL>(&result);
    EXPECT_EQ(result, 0);
    return stbl;
}

void expectChunk(const STSC& stsc, unsigned int i, unsigned int first, unsigned int samples,
                 unsigned int total) {
    const STSCData* chunk = stsc.getSampleToChunkData(i);
    ASSERT_TRUE(chunk);
    EXPECT_EQ(chunk->getFirstChunk(), first) << i;
    EXPECT_EQ(chunk->getSamplesPerChunk(), samples) << i;
    EXPECT_EQ(chunk->getSampleDescriptionID(), 1U) << i;
    EXPECT_EQ(chunk->getTotalSampleCount(), total) << i;
}

TEST(SampleTable, LastRunGoesOnToTheLastChunk) {
    const Bytes offsets = tableAtom("stco", hex("00000005 00000001 00000002 00000003 00000004 00000005"));
    AtomFile file(atom("stbl", kChunks + offsets));
    const auto stbl = read(file);
    auto* stsc = wire::child<STSC>(stbl.get(), fourCC("stsc"));
    ASSERT_TRUE(stsc);
    EXPECT_TRUE(wire::Access::table(*stsc).packed());
    EXPECT_EQ(stsc->getNumberOfEntries(), 5U);
    EXPECT_EQ(stsc->getSize(), 40U + 24);
    const STSC copy(*stsc);
    expectChunk(copy, 0, 1, 4, 0);
    expectChunk(copy, 1, 2, 4, 4);
    expectChunk(copy, 2, 3, 2, 8);
    expectChunk(copy, 3, 3, 2, 10);
    expectChunk(copy, 4, 4, 2, 12);
    EXPECT_EQ(copy.getSampleToChunkData(5), nullptr);
    EXPECT_EQ(rewritten(*stsc), kChunks);
    EXPECT_EQ(rewritten(*stbl), atom("stbl", kChunks + offsets));
}

TEST(SampleTable, ChunksAreCountedByTheOffsetsHeld) {
    AtomFile file(atom("stbl", tableAtom("co64", hex("00000009") + repeat(0, 32)) + kChunks));
    const auto stbl = read(file);
    const auto* stco = wire::child<STCO>(stbl.get(), fourCC("stco"));
    ASSERT_TRUE(stco) << "held under the narrow type";
    EXPECT_TRUE(stco->is64Bit());
    EXPECT_EQ(stco->getNumberOfEntries(), 9U);
    EXPECT_EQ(wire::child<STSC>(stbl.get(), fourCC("stsc"))->getNumberOfEntries(), 4U);
}

TEST(SampleTable, NothingIsFilledWithoutRunsOrOffsets) {
    AtomFile empty(
        atom("stbl", tableAtom("stsc", hex("00000000")) + tableAtom("stco", hex("00000001 00000001"))));
    EXPECT_EQ(wire::child<STSC>(read(empty).get(), fourCC("stsc"))->getNumberOfEntries(), 0U);
    AtomFile alone(atom("stbl", kChunks));
    EXPECT_EQ(wire::child<STSC>(read(alone).get(), fourCC("stsc"))->getNumberOfEntries(), 3U);
    AtomFile fewer(atom("stbl", kChunks + tableAtom("stco", hex("00000001 00000001"))));
    EXPECT_EQ(wire::child<STSC>(read(fewer).get(), fourCC("stsc"))->getNumberOfEntries(), 3U);
}

TEST(SampleTable, EmptySyncTableIsDropped) {
    const Bytes empty = tableAtom("stss", hex("00000000"));
    const Bytes full = tableAtom("stss", hex("00000001 00000001"));
    const Bytes sizes = tableAtom("stsz", hex("00000001 00000001"));
    AtomFile one(atom("stbl", empty + sizes));
    EXPECT_EQ(rewritten(*read(one)), atom("stbl", sizes));
    AtomFile several(atom("stbl", join({empty, sizes, full, empty})));
    EXPECT_EQ(rewritten(*read(several)), atom("stbl", sizes)) << "the first one decides for all";
    AtomFile first(atom("stbl", join({full, sizes})));
    EXPECT_EQ(read(first)->getChildren().size(), 2U);
    AtomFile promised(atom("stbl", tableAtom("stss", hex("00000005"))));
    EXPECT_EQ(read(promised)->getChildren().size(), 1U) << "the count decides, not the table";
}

TEST(SampleTable, EveryTypeBecomesItsClass) {
    Bytes payload;
    for (const char* type : {"stsd", "stts", "ctts", "cslg", "stss", "stps", "stsh", "stdp", "stsc", "stsz",
                             "stco", "co64", "sdtp", "abcd"}) {
        payload = payload + hex("00000014") + Bytes(type, type + 4) + hex("00000000 00000001 00000001");
    }
    AtomFile file(atom("stbl", payload));
    const auto stbl = read(file);
    const std::vector<QTAtom*> children = stbl->getChildren();
    ASSERT_EQ(children.size(), 14U);
    EXPECT_TRUE(dynamic_cast<STTS*>(children[1]));
    EXPECT_TRUE(dynamic_cast<CTTS*>(children[2]));
    EXPECT_TRUE(dynamic_cast<CSLG*>(children[3]));
    EXPECT_TRUE(dynamic_cast<STSS*>(children[4]));
    EXPECT_TRUE(dynamic_cast<STPS*>(children[5]));
    EXPECT_TRUE(dynamic_cast<STSH*>(children[6]));
    EXPECT_TRUE(dynamic_cast<STDP*>(children[7]));
    EXPECT_TRUE(dynamic_cast<STSC*>(children[8]));
    EXPECT_TRUE(dynamic_cast<STSZ*>(children[9]));
    EXPECT_TRUE(dynamic_cast<STCO*>(children[10]));
    EXPECT_TRUE(dynamic_cast<STCO*>(children[11]));
    EXPECT_EQ(children[11]->getType(), fourCC("stco"));
    for (const std::size_t plain : {12U, 13U}) {
        QTAtom& kept = *children[plain];
        EXPECT_EQ(typeid(kept), typeid(QTAtom));
        EXPECT_EQ(take(kept.serialize()).size(), 20U) << "its bytes are kept";
    }
}

TEST(SampleTable, DependenciesOfAFileStayBytes) {
    const Bytes sdtp = tableAtom("sdtp", hex("20 08 FF"));
    AtomFile file(atom("stbl", sdtp));
    const auto stbl = read(file);
    EXPECT_EQ(wire::child<SDTP>(stbl.get(), fourCC("sdtp")), nullptr);
    EXPECT_EQ(rewritten(*stbl), atom("stbl", sdtp));
}

TEST(SampleTable, StraySampleEntriesAreAllVisual) {
    for (const char* type : {"mp4a", "mp4v", "mp4s"}) {
        AtomFile file(atom("stbl", hex("00000056") + Bytes(type, type + 4) + repeat(0, 78)));
        const auto stbl = read(file);
        ASSERT_EQ(stbl->getChildren().size(), 1U) << type;
        EXPECT_TRUE(dynamic_cast<MP4V*>(stbl->getChildren()[0])) << type;
    }
}

TEST(SampleTable, EndsWhereTheFileEnds) {
    const Bytes sizes = tableAtom("stsz", hex("00000001 00000001"));
    Bytes bytes = atom("stbl", sizes + kChunks);
    bytes.resize(8 + sizes.size() + 4);
    AtomFile file(bytes);
    EXPECT_EQ(read(file)->getChildren().size(), 1U);
}

TEST(SampleTable, ChildThatCannotBeReadEndsTheRead) {
    AtomFile file(atom("stbl", tableAtom("stsz", hex("00000001 00000001")) + hex("00000008 'stts'")));
    int result = 0;
    const auto stbl = file.parse<STBL>(&result);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(stbl->getChildren().size(), 1U);
}

TEST(SampleTable, CompositionOfZerosIsLeftOut) {
    const Bytes sizes = tableAtom("stsz", hex("00000001 00000001"));
    AtomFile file(atom("stbl", tableAtom("ctts", hex("00000001 00000001 00000000")) + sizes));
    EXPECT_EQ(rewritten(*read(file)), atom("stbl", sizes));
}

} // namespace
} // namespace test
