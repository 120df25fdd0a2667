// Sample-to-chunk, chunk offsets, sample sizes.
#include "qt/samples/TableFixture.h"

#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/samples/STCO.h>
#include <qt/QTAtoms/samples/STSC.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/wire/Access.h>

#include <random>

namespace test {
namespace {

using namespace Ketra::QT;

using Chunk = std::vector<unsigned int>; // first chunk, samples, description, total before

std::vector<Chunk> chunks(const STSC& stsc) {
    const auto& table = wire::Access::table(stsc);
    std::vector<Chunk> all;
    for (std::uint64_t i = 0; i < table.held(); ++i) {
        const wire::ChunkRun run = table.at(i);
        all.push_back({run.firstChunk, run.samplesPerChunk, run.descriptionID, run.totalBefore});
    }
    return all;
}

Bytes word(unsigned int value) {
    Bytes bytes(4);
    wire::store32(bytes.data(), value);
    return bytes;
}

Bytes stscFile(const std::vector<Chunk>& runs, const Bytes& behind = {}) {
    Bytes rest = word(static_cast<unsigned int>(runs.size()));
    for (const Chunk& run : runs) {
        rest = rest + word(run[0]) + word(run[1]) + word(run[2]);
    }
    return tableAtom("stsc", rest) + behind;
}

/// Room for the chunks that a table states: the stream's length bounds them.
Bytes room(std::size_t chunkCount) { return repeat(0, 4 * chunkCount); }

std::vector<Chunk> expanded(const std::vector<Chunk>& runs, std::size_t chunkCount = 1000) {
    AtomFile file(stscFile(runs, room(chunkCount)));
    const auto stsc = file.parse<STSC>();
    EXPECT_EQ(stsc->getNumberOfEntries(), chunks(*stsc).size());
    return chunks(*stsc);
}

TEST(SampleToChunk, RunsBecomeOneEntryAChunk) {
    EXPECT_EQ(expanded({{1, 4, 1}, {3, 2, 1}}),
              (std::vector<Chunk>{{1, 4, 1, 0}, {2, 4, 1, 4}, {3, 2, 1, 8}}));
    EXPECT_EQ(expanded({}), std::vector<Chunk>());
}

TEST(SampleToChunk, RunsThatStartLateBeginWithEmptyChunks) {
    EXPECT_EQ(expanded({{2, 5, 1}}), (std::vector<Chunk>{{2, 5, 1, 0}}));
    EXPECT_EQ(expanded({{4, 5, 1}}), (std::vector<Chunk>{{2, 0, 0, 0}, {3, 0, 0, 0}, {4, 5, 1, 0}}));
}

TEST(SampleToChunk, RunsThatDoNotRiseAddOneEntry) {
    EXPECT_EQ(expanded({{0, 5, 1}, {0, 3, 2}, {3, 1, 1}, {2, 1, 1}, {4, 7, 1}}),
              (std::vector<Chunk>{{0, 5, 1, 0},
                                  {0, 3, 2, 5},
                                  {1, 3, 2, 8},
                                  {2, 3, 2, 11},
                                  {3, 1, 1, 14},
                                  {2, 1, 1, 15},
                                  {3, 1, 1, 16},
                                  {4, 7, 1, 17}}));
}

TEST(SampleToChunk, TotalsWrapAt32Bits) {
    AtomFile file(stscFile({{1, 0x80000000, 1}, {4, 1, 1}}, room(10)));
    const auto stsc = file.parse<STSC>();
    EXPECT_EQ(chunks(*stsc), (std::vector<Chunk>{{1, 0x80000000, 1, 0},
                                                 {2, 0x80000000, 1, 0x80000000},
                                                 {3, 0x80000000, 1, 0},
                                                 {4, 1, 1, 0x80000000}}));
    EXPECT_TRUE(wire::Access::table(*stsc).store().wrapped());
    AtomFile even(stscFile({{1, 0x80000000, 1}, {2, 1, 1}, {5, 1, 1}}, room(10)));
    EXPECT_FALSE(wire::Access::table(*even.parse<STSC>()).store().wrapped());
}

TEST(SampleToChunk, SegmentsAreNotExpanded) {
    AtomFile file(stscFile({{1, 4, 1}, {500, 4, 1}, {600, 2, 1}, {601, 2, 1}}, room(1000)));
    const auto stsc = file.parse<STSC>();
    const auto& segments = wire::Access::table(*stsc).store().segments();
    ASSERT_EQ(segments.size(), 2U);
    EXPECT_EQ(segments[0].start, 0U);
    EXPECT_EQ(segments[1].start, 599U);
    EXPECT_EQ(segments[1].first.totalBefore, 599U * 4);
    EXPECT_EQ(stsc->getNumberOfEntries(), 601U);
    EXPECT_EQ(rewritten(*stsc), stscFile({{1, 4, 1}, {600, 2, 1}}));
}

TEST(SampleToChunk, AFewBytesStateNoMoreChunksThanTheFileHasRoomFor) {
    AtomFile file(stscFile({{0xFFFFFFFF, 1, 1}, {1, 1, 1}})); // 40 bytes
    int result = -1;
    const auto stsc = file.parse<STSC>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(stsc->getNumberOfEntries(), 11U);
    EXPECT_EQ(stsc->getSampleToChunkTable().size(), 11U);
    EXPECT_EQ(stsc->getSampleToChunkData(10)->getFirstChunk(), 12U);
    AtomFile exact(stscFile({{1, 4, 1}, {11, 2, 1}, {12, 3, 1}}, room(1))); // 56 bytes
    EXPECT_EQ(exact.parse<STSC>()->getNumberOfEntries(), 12U);
    AtomFile swept(stscFile({{1, 4, 1}, {0xFFFFFFFF, 4, 1}, {0, 1, 1}, {0xFFFFFFFF, 1, 1}}, {})); // 64 bytes
    EXPECT_EQ(swept.parse<STSC>()->getNumberOfEntries(), 17U);
}

TEST(SampleToChunk, OnlyWholeEntriesAreRead) {
    AtomFile file(tableAtom("stsc", hex("00000009 00000001 00000004 00000001 00000002 00000003 0000")));
    const auto stsc = file.parse<STSC>();
    EXPECT_EQ(stsc->getNumberOfEntries(), 1U);
    EXPECT_EQ(take(stsc->serialize()).size(), 28U);
}

TEST(SampleToChunk, WritingLeavesTheExpansion) {
    AtomFile file(stscFile({{1, 4, 1}, {3, 2, 1}}, room(10)));
    const auto stsc = file.parse<STSC>();
    EXPECT_EQ(stsc->updateSize(), 40U);
    EXPECT_EQ(take(stsc->serialize()), stscFile({{1, 4, 1}, {3, 2, 1}}));
    EXPECT_EQ(stsc->getNumberOfEntries(), 3U);
    EXPECT_EQ(stsc->getSampleToChunkTable().size(), 3U);
    EXPECT_EQ(take(stsc->serialize()), stscFile({{1, 4, 1}, {3, 2, 1}})) << "from records";
}

TEST(SampleToChunk, DescriptionsKeepRunsApart) {
    STSC stsc;
    EXPECT_EQ(take(stsc.serialize()), stscFile({}));
    EXPECT_EQ(stsc.addSampleToChunk(nullptr), -1);
    for (const Chunk& chunk : {Chunk{1, 4, 1}, Chunk{2, 4, 2}, Chunk{3, 4, 2}, Chunk{4, 4, 1}}) {
        EXPECT_EQ(stsc.addSampleToChunk(new STSCData(chunk[0], chunk[1], chunk[2], 0)), 0);
    }
    EXPECT_EQ(stsc.getSize(), 16U + 48);
    EXPECT_EQ(stsc.getNumberOfEntries(), 4U);
    EXPECT_EQ(take(stsc.serialize()), stscFile({{1, 4, 1}, {2, 4, 2}, {4, 4, 1}}));
    EXPECT_EQ(stsc.getSize(), 52U);
}

TEST(SampleToChunk, WrongCountFailsToBeWritten) {
    STSC stsc;
    stsc.addSampleToChunk(new STSCData(1, 4, 1, 0));
    stsc.addSampleToChunk(new STSCData(2, 5, 1, 4));
    stsc.setNumberOfEntries(1);
    EXPECT_EQ(stsc.updateSize(), 28U) << "entries beyond the count are not looked at";
    expectThrow(stsc, "Ketra::QT::STSC::serialize", "Wrong number of entries in STSC-table");
    stsc.setNumberOfEntries(0xFFFFFFFF);
    EXPECT_EQ(stsc.updateSize(), 40U);
    expectThrow(stsc, "Ketra::QT::STSC::serialize", "Wrong number of entries in STSC-table");
    AtomFile file(stscFile({{1, 4, 1}, {3, 2, 1}}, room(10)));
    const auto packed = file.parse<STSC>();
    packed->setNumberOfEntries(2);
    EXPECT_EQ(packed->updateSize(), 28U);
    expectThrow(*packed, "Ketra::QT::STSC::serialize", "Wrong number of entries in STSC-table");
}

TEST(SampleToChunk, TableIsReplacedAndIterated) {
    AtomFile file(stscFile({{1, 4, 1}, {3, 2, 1}}, room(10)));
    const auto stsc = file.parse<STSC>();
    EXPECT_EQ(stsc->setIterator(3), 0);
    EXPECT_EQ(stsc->getIterator(), 2U);
    EXPECT_EQ(stsc->getCurrentSampleToChunkData()->getSamplesPerChunk(), 2U);
    stsc->increaseIterator();
    EXPECT_EQ(stsc->getCurrentSampleToChunkData(), nullptr);
    stsc->resetTableIterator();
    EXPECT_EQ(stsc->getIterator(), 0U);
    EXPECT_EQ(stsc->setSampleToChunkTable({stsc->getSampleToChunkData(2)}), 0);
    EXPECT_EQ(stsc->getNumberOfEntries(), 1U);
    EXPECT_EQ(stsc->getSize(), 40U) << "the stored size stays";
    EXPECT_EQ(rewritten(*stsc), stscFile({{3, 2, 1}}));
}

TEST(SampleToChunk, LikeThePlainExpansion) {
    std::mt19937 random(20240611);
    const auto below = [&random](unsigned int n) { return static_cast<unsigned int>(random() % n); };
    for (int round = 0; round < 300; ++round) {
        std::vector<Chunk> runs;
        unsigned int first = 1;
        for (unsigned int n = below(12); n; --n) {
            runs.push_back({below(8) ? first : below(40), below(3), below(2) + 1});
            first += below(5);
        }
        std::vector<Chunk> plain;
        Chunk last{1, 0, 0, 0};
        unsigned int total = 0;
        const auto append = [&](unsigned int chunk, unsigned int samples, unsigned int description) {
            plain.push_back({chunk, samples, description, total});
            total += samples;
        };
        for (const Chunk& run : runs) {
            for (unsigned int c = last[0] + 1; c < run[0]; ++c) {
                append(c, last[1], last[2]);
            }
            append(run[0], run[1], run[2]);
            last = run;
        }
        AtomFile file(stscFile(runs, room(1000)));
        const auto stsc = file.parse<STSC>();
        ASSERT_EQ(chunks(*stsc), plain);
        const auto& segments = wire::Access::table(*stsc).store().segments();
        ASSERT_LE(segments.size(), 2 * runs.size());
        const Bytes packed = rewritten(*stsc);
        STSC objects(*stsc);
        objects.getSampleToChunkTable();
        ASSERT_FALSE(wire::Access::table(objects).packed());
        ASSERT_EQ(chunks(objects), plain);
        ASSERT_EQ(rewritten(objects), packed);
        wire::ChunkRuns pushed;
        for (const Chunk& c : plain) {
            pushed.push({c[0], c[1], c[2], c[3]});
        }
        ASSERT_EQ(pushed.segments().size(), segments.size());
        ASSERT_FALSE(pushed.wrapped());
    }
}

TEST(ChunkOffsets, WideTablesAreHeldAsNarrowOnes) {
    const Bytes bytes = tableAtom("co64", hex("00000002 00000000 00000010 00000001 00000000"));
    for (const int mode : {1, 64}) {
        AtomFile file(bytes);
        STCO stco(file.header().release(), mode);
        EXPECT_EQ(stco.parse(), 0);
        EXPECT_EQ(stco.getType(), fourCC("stco"));
        EXPECT_TRUE(stco.is64Bit());
        EXPECT_EQ(stco.updateSize(), 32U);
        EXPECT_EQ(take(stco.serialize()), bytes);
        EXPECT_EQ(stco.getChunkOffsetData(1)->getOffset(), 0x100000000U);
        EXPECT_EQ(take(stco.serialize()), bytes) << "from records";
        EXPECT_TRUE(STCO(stco).is64Bit());
    }
    AtomFile file(tableAtom("stco", hex("00000001 00000010")));
    STCO narrow(file.header().release(), 32);
    EXPECT_EQ(narrow.parse(), 0);
    EXPECT_FALSE(narrow.is64Bit());
}

TEST(ChunkOffsets, LargeOffsetMakesTheTableWide) {
    STCO stco;
    EXPECT_EQ(stco.addChunkOffset(nullptr), -1);
    EXPECT_EQ(stco.addChunkOffset(new STCOData(0xFFFFFFFF)), 0);
    EXPECT_FALSE(stco.is64Bit());
    EXPECT_EQ(stco.getSize(), 20U);
    EXPECT_EQ(stco.addChunkOffset(new STCOData(0x100000000)), 0);
    EXPECT_TRUE(stco.is64Bit());
    EXPECT_EQ(stco.getSize(), 24U) << "by four, whatever the width";
    const Bytes wide = tableAtom("co64", hex("00000002 00000000 FFFFFFFF 00000001 00000000"));
    EXPECT_EQ(take(stco.serialize()), wide) << "as long as the entries need";
    EXPECT_EQ(stco.updateSize(), 32U);
    EXPECT_EQ(take(stco.serialize()), wide);
    stco.setChunkOffsetTable({new STCOData(1)});
    EXPECT_TRUE(stco.is64Bit()) << "once wide, always wide";
    EXPECT_EQ(stco.getNumberOfEntries(), 1U);
    EXPECT_EQ(stco.getSize(), 32U) << "the stored size stays";
}

TEST(ChunkOffsets, MovingTheDataMovesEveryChunk) {
    AtomFile file(tableAtom("stco", hex("00000002 00000010 FFFFFFF0")));
    const auto stco = file.parse<STCO>();
    const STCO before(*stco);
    EXPECT_EQ(stco->addToOffsets(15), 0);
    EXPECT_TRUE(wire::Access::table(*stco).packed()) << "no object a chunk";
    EXPECT_FALSE(stco->is64Bit());
    EXPECT_EQ(rewritten(*stco), tableAtom("stco", hex("00000002 0000001F FFFFFFFF")));
    stco->addToOffsets(1);
    EXPECT_TRUE(wire::Access::table(*stco).packed());
    EXPECT_TRUE(stco->is64Bit());
    EXPECT_EQ(rewritten(*stco), tableAtom("co64", hex("00000002 00000000 00000020 00000001 00000000")));
    EXPECT_EQ(before.getChunkOffsetData(0)->getOffset(), 0x10U);

    STCO built;
    EXPECT_EQ(built.addToOffsets(1), 0) << "an empty table is left alone";
    EXPECT_FALSE(built.is64Bit());
    auto* data = new STCOData(5);
    built.addChunkOffset(data);
    built.addToOffsets(0x100000000);
    EXPECT_EQ(data->getOffset(), 0x100000005U) << "the record stays the same";
    EXPECT_TRUE(built.is64Bit());
}

TEST(ChunkOffsets, PackedAppendWidens) {
    AtomFile file(tableAtom("stco", hex("00000001 00000010")));
    const auto stco = file.parse<STCO>();
    auto& table = wire::Access::table(*stco);
    table.append(0x20);
    EXPECT_FALSE(stco->is64Bit());
    table.append(0x1200000034);
    EXPECT_TRUE(table.packed());
    EXPECT_TRUE(stco->is64Bit());
    EXPECT_EQ(rewritten(*stco),
              tableAtom("co64", hex("00000003 00000000 00000010 00000000 00000020 00000012 00000034")));
}

TEST(ChunkOffsets, WrongCountFailsToBeWritten) {
    AtomFile file(tableAtom("stco", hex("00000003 00000010 00000020 0000")));
    const auto stco = file.parse<STCO>();
    EXPECT_EQ(stco->getNumberOfEntries(), 3U);
    EXPECT_EQ(stco->getChunkOffsetTable().size(), 2U);
    EXPECT_EQ(stco->getChunkOffsetData(2), nullptr);
    EXPECT_EQ(stco->updateSize(), 28U);
    expectThrow(*stco, "Ketra::QT::STCO::serialize", "Wrong number of entries in STSC-table");
    AtomFile wide(tableAtom("co64", hex("00000002 00000000 00000010 00000020")));
    EXPECT_EQ(wide.parse<STCO>()->getChunkOffsetTable().size(), 1U);
}

TEST(ChunkOffsets, IteratorIsSetByPosition) {
    AtomFile file(tableAtom("stco", hex("00000002 00000010 00000020")));
    const auto stco = file.parse<STCO>();
    EXPECT_EQ(stco->setIterator(2), 0);
    EXPECT_EQ(stco->getCurrentChunkOffsetData()->getOffset(), 0x20U);
    stco->increaseIterator();
    EXPECT_EQ(stco->getCurrentChunkOffsetData(), nullptr);
    stco->resetTableIterator();
    EXPECT_EQ(stco->getCurrentChunkOffsetData()->getOffset(), 0x10U);
    EXPECT_EQ(stco->getCurrentChunkOffsetData()->setOffset(0x30), 0);
    EXPECT_EQ(rewritten(*stco), tableAtom("stco", hex("00000002 00000030 00000020")));
}

TEST(SampleSizes, EqualSizesBecomeTheConstant) {
    AtomFile file(tableAtom("stsz", hex("00000000 00000003 00000064 00000064 00000064")));
    const auto stsz = file.parse<STSZ>();
    EXPECT_EQ(take(stsz->serialize()), tableAtom("stsz", hex("00000064 00000003")));
    EXPECT_EQ(stsz->getSize(), 20U);
    EXPECT_EQ(stsz->updateSize(), 20U);
    EXPECT_EQ(stsz->getSampleSize(), 0U) << "what is held stays";
    EXPECT_EQ(stsz->getCalculatedSize(), 300U);
}

TEST(SampleSizes, ConstantAnswersEveryIndex) {
    AtomFile file(tableAtom("stsz", hex("00000200 0000000A")));
    const auto stsz = file.parse<STSZ>();
    EXPECT_TRUE(stsz->getSampleSizeTable().empty());
    EXPECT_EQ(stsz->getSampleSizeData(7)->getSize(), 512U);
    EXPECT_EQ(stsz->getSampleSizeTable().size(), 1U);
    EXPECT_EQ(stsz->getNumberOfEntries(), 10U);
    EXPECT_EQ(rewritten(*stsz), tableAtom("stsz", hex("00000200 0000000A")));

    AtomFile table(tableAtom("stsz", hex("00000000 00000003 00000001 00000002 00000003")));
    EXPECT_EQ(table.parse<STSZ>()->getSampleSizeData(7)->getSize(), 3U);
}

TEST(SampleSizes, TableBehindAConstantIsNotRead) {
    AtomFile file(tableAtom("stsz", hex("00000200 00000002 00000001 00000002")));
    EXPECT_TRUE(file.parse<STSZ>()->getSampleSizeTable().empty());
}

TEST(SampleSizes, CalculatedSizes) {
    STSZ stsz;
    EXPECT_EQ(stsz.setSampleSize(65536), 0);
    stsz.setNumberOfEntries(65537);
    EXPECT_EQ(stsz.getCalculatedSize(), 65536U) << "32 bits for the constant";
    stsz.setSampleSize(0);
    EXPECT_EQ(stsz.addSampleSize(nullptr), -1);
    stsz.addSampleSize(new STSZData(0xFFFFFFFF));
    stsz.addSampleSize(new STSZData(2));
    EXPECT_EQ(stsz.getCalculatedSize(), 0x100000001U) << "64 bits for the table";
    EXPECT_EQ(stsz.getSize(), 28U);
    EXPECT_EQ(stsz.getNumberOfEntries(), 65539U);
}

TEST(SampleSizes, WrongCountFailsToBeWritten) {
    AtomFile file(tableAtom("stsz", hex("00000000 00000003 00000001 00000002"))); // 28 bytes
    const auto stsz = file.parse<STSZ>();
    EXPECT_EQ(stsz->getSampleSizeTable().size(), 2U);
    EXPECT_EQ(stsz->updateSize(), 32U);
    expectThrow(*stsz, "Ketra::QT::STSZ::serialize",
                "Wrong number of entries in STSZ-table (NumOfEntries / actual count = 3 / 2)");
    stsz->setNumberOfEntries(0x7FFFFFFF);
    expectThrow(*stsz, "Ketra::QT::STSZ::serialize",
                "Wrong number of entries in STSZ-table (NumOfEntries / actual count = 2147483647 / 2)");
    stsz->getSampleSizeData(1)->setSize(1);
    EXPECT_EQ(rewritten(*stsz), tableAtom("stsz", hex("00000001 7FFFFFFF"))) << "no table, no count to check";
}

TEST(SampleSizes, EmptyTableWritesTheCount) {
    STSZ stsz;
    stsz.setNumberOfEntries(4);
    EXPECT_EQ(rewritten(stsz), tableAtom("stsz", hex("00000000 00000004")));
    EXPECT_EQ(stsz.setSize(99), 0);
    EXPECT_EQ(stsz.getSize(), 99U) << "the atom's size";
    EXPECT_EQ(take(stsz.serialize()).size(), 20U);
}

TEST(SampleSizes, TableIsReplaced) {
    STSZ stsz;
    stsz.addSampleSize(new STSZData(1));
    EXPECT_EQ(stsz.setSampleSizeTable({stsz.getSampleSizeData(0), new STSZData(2), new STSZData(3)}), 0);
    EXPECT_EQ(stsz.getNumberOfEntries(), 3U);
    EXPECT_EQ(stsz.getSize(), 24U) << "the stored size stays";
    EXPECT_EQ(rewritten(stsz), tableAtom("stsz", hex("00000000 00000003 00000001 00000002 00000003")));
    EXPECT_EQ(stsz.setIterator(3), 0);
    EXPECT_EQ(stsz.getCurrentSampleSizeData()->getSize(), 3U);
    stsz.increaseIterator();
    EXPECT_EQ(stsz.getCurrentSampleSizeData(), nullptr);
}

} // namespace
} // namespace test
