// Lookups in run-length tables against the plain walk that they replace.
#include "qt/samples/TableFixture.h"

#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/QTChunk/detail/TimeIndex.h>
#include <qt/wire/Access.h>

#include <random>

namespace test {
namespace {

using namespace Ketra::QT;
using Runs = std::vector<wire::Run>;

/// A table atom of these runs, read from a file and so packed.
template <class Table>
std::unique_ptr<Table> tableOf(const char (&type)[5], const Runs& runs) {
    Bytes bytes(4 + 8 * runs.size());
    wire::store32(bytes.data(), runs.size());
    for (std::size_t i = 0; i < runs.size(); ++i) {
        wire::RunBytes::write(bytes.data() + 4 + 8 * i, runs[i]);
    }
    AtomFile file(tableAtom(type, bytes));
    return file.parse<Table>();
}

Runs randomRuns(std::mt19937& random, std::size_t most) {
    Runs runs(random() % (most + 1));
    for (wire::Run& run : runs) {
        run.count = static_cast<unsigned int>(random() % 5);
        run.value = static_cast<unsigned int>(random() % 4);
    }
    return runs;
}

using Found = std::optional<wire::TimePoint>;

/// What a walk from the first entry finds: the first entry that `reached` its goal. A frame of `group`
/// samples lasts `group` times the duration of the entry that its first sample lies in.
template <class Reached>
Found walk(const Runs& runs, std::uint32_t group, Reached reached) {
    wire::TimePoint at;
    for (const wire::Run& run : runs) {
        wire::TimePoint behind{at.entry + 1, at.samples + run.count, at.ticks};
        for (std::uint64_t k = at.samples; k < behind.samples; ++k) {
            if (k % group == 0) behind.ticks += std::uint64_t{run.value} * group;
        }
        if (reached(behind)) return at;
        at = behind;
    }
    return std::nullopt;
}

Found sampleIn(wire::TimeIndex& index, const wire::TimeIndex::Table& table, std::uint32_t group,
               std::uint64_t k) {
    wire::TimePoint found;
    return index.locateSample(table, group, k, found) ? Found(found) : std::nullopt;
}

Found ticksIn(wire::TimeIndex& index, const wire::TimeIndex::Table& table, std::uint64_t x) {
    wire::TimePoint found;
    return index.locateTicks(table, x, found) ? Found(found) : std::nullopt;
}

void expectSame(const Found& got, const Found& want) {
    ASSERT_EQ(got.has_value(), want.has_value());
    if (!got) return;
    ASSERT_EQ(got->entry, want->entry);
    ASSERT_EQ(got->samples, want->samples);
    ASSERT_EQ(got->ticks, want->ticks);
}

TEST(TimeIndex, LikeTheWalk) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        const Runs runs = randomRuns(random, round % 3 ? 300 : 5);
        const std::uint32_t group = round % 2 ? 1 : static_cast<std::uint32_t>(random() % 5 + 1);
        const auto stts = tableOf<STTS>("stts", runs);
        const auto& table = wire::Access::table(*stts);
        std::uint64_t samples = 0;
        std::uint64_t ticks = 0;
        for (const wire::Run& run : runs) {
            samples += run.count;
            ticks += std::uint64_t{run.count} * run.value;
        }
        wire::TimeIndex bySample;
        wire::TimeIndex byTime;
        for (int pass = 0; pass < 2; ++pass) {
            for (std::uint64_t k = 0; k < samples + 3; ++k) {
                expectSame(sampleIn(bySample, table, group, k),
                           walk(runs, group, [k](const wire::TimePoint& end) { return end.samples > k; }));
            }
            for (std::uint64_t x = 0; x < ticks + 3; ++x) {
                expectSame(ticksIn(byTime, table, x),
                           walk(runs, 1, [x](const wire::TimePoint& end) { return end.ticks >= x; }));
            }
            ASSERT_EQ(table.packed(), pass == 0);
            stts->getTimeToSampleTable(); // the second pass finds objects
        }
    }
}

TEST(TimeIndex, EmptyTableHasNoPlaces) {
    const STTS stts;
    wire::TimeIndex index;
    EXPECT_FALSE(sampleIn(index, wire::Access::table(stts), 1, 0));
    EXPECT_FALSE(ticksIn(index, wire::Access::table(stts), 0));
}

TEST(TimeIndex, SumsHave64Bits) {
    const auto stts = tableOf<STTS>("stts", Runs(100, {0xFFFFFFFF, 0xFFFFFFFF}));
    const auto& table = wire::Access::table(*stts);
    wire::TimeIndex index;
    EXPECT_EQ(sampleIn(index, table, 1, 70 * 0xFFFFFFFFULL)->entry, 70U);
    EXPECT_EQ(ticksIn(index, table, 1)->entry, 0U);
    EXPECT_EQ(ticksIn(index, table, ~std::uint64_t{0})->entry, 1U) << "past 2^64 ticks the sum stays";
}

TEST(TimeIndex, ChangedTableIsIndexedAnew) {
    const auto stts = tableOf<STTS>("stts", Runs(200, {1, 1}));
    auto& table = wire::Access::table(*stts);
    wire::TimeIndex index;
    EXPECT_EQ(sampleIn(index, table, 1, 150)->entry, 150U);
    table.append(wire::Run{5, 1});
    EXPECT_EQ(sampleIn(index, table, 1, 204)->entry, 200U);
    wire::TimeIndex copy = index;
    stts->updateSize(); // all merge into one entry
    EXPECT_EQ(sampleIn(index, table, 1, 204)->entry, 0U);
    EXPECT_EQ(sampleIn(copy, table, 1, 204)->entry, 0U);
    EXPECT_FALSE(sampleIn(copy, table, 1, 205));
}

TEST(TimeIndex, ChangedRecordIsSeen) {
    const auto stts = tableOf<STTS>("stts", Runs(200, {1, 1}));
    const auto& table = wire::Access::table(*stts);
    wire::TimeIndex index;
    EXPECT_EQ(sampleIn(index, table, 1, 150)->entry, 150U);
    stts->getTimeToSampleData(0)->setSampleCount(100);
    EXPECT_EQ(sampleIn(index, table, 1, 150)->entry, 51U);
}

void expectSeeks(CTTS& ctts, std::uint64_t most) {
    CTTS plain(ctts);
    plain.resetDecodeOffset();
    const auto& seeked = wire::Access::table(ctts);
    const auto& walked = wire::Access::table(plain);
    for (std::uint64_t steps = 0; steps < most; ++steps) {
        wire::Access::seekDecodeOffset(ctts, steps);
        ASSERT_EQ(seeked.cursor, walked.cursor) << steps;
        const int next = wire::Access::peekDecodeOffset(ctts);
        ASSERT_EQ(wire::Access::peekDecodeOffset(ctts), next) << "nothing moves";
        ASSERT_EQ(plain.getNextDecodeOffset(), next) << steps;
        // The counters agree when what follows does.
        CTTS ahead(ctts);
        CTTS reference(plain);
        ASSERT_EQ(ahead.getNextDecodeOffset(), next);
        for (int i = 0; i < 6; ++i) {
            ASSERT_EQ(ahead.getNextDecodeOffset(), reference.getNextDecodeOffset()) << steps;
            ASSERT_EQ(wire::Access::table(ahead).cursor, wire::Access::table(reference).cursor) << steps;
        }
    }
}

TEST(DecodeIndex, LikeTheWalk) {
    std::mt19937 random(11);
    for (int round = 0; round < 24; ++round) {
        const Runs runs = randomRuns(random, round % 2 ? 300 : 4);
        const auto ctts = tableOf<CTTS>("ctts", runs);
        expectSeeks(*ctts, 3 * runs.size() + 12);
        ASSERT_TRUE(wire::Access::table(*ctts).packed());
        if (runs.size() > 20) continue;
        ctts->getCompositionTimeTable();
        expectSeeks(*ctts, 3 * runs.size() + 12);
    }
}

TEST(DecodeIndex, SpecialTables) {
    expectSeeks(*tableOf<CTTS>("ctts", {}), 4);
    expectSeeks(*tableOf<CTTS>("ctts", {{0, 9}}), 6);
    expectSeeks(*tableOf<CTTS>("ctts", {{3, 9}}), 12);
    expectSeeks(*tableOf<CTTS>("ctts", {{0, 1}, {0, 2}, {0, 3}}), 8);
    expectSeeks(*tableOf<CTTS>("ctts", Runs(200, {0, 2})), 210);
    Runs oneLong(300, {1, 2});
    oneLong[100] = {300, 3}; // in a block of its own kind
    oneLong[170] = {0, 4};
    oneLong[200] = {255, 5};
    expectSeeks(*tableOf<CTTS>("ctts", oneLong), 900);
}

TEST(DecodeIndex, SeeksFar) {
    Runs runs(1000, {0xFFFFFFFF, 1});
    runs.back() = {2, 77};
    const auto ctts = tableOf<CTTS>("ctts", runs);
    wire::Access::seekDecodeOffset(*ctts, 999 * 0xFFFFFFFFULL - 1);
    EXPECT_EQ(wire::Access::peekDecodeOffset(*ctts), 1);
    EXPECT_EQ(ctts->getNextDecodeOffset(), 1);
    EXPECT_EQ(ctts->getNextDecodeOffset(), 77);
    wire::Access::seekDecodeOffset(*ctts, ~std::uint64_t{0});
    EXPECT_EQ(wire::Access::table(*ctts).cursor, 999U);
    EXPECT_EQ(ctts->getNextDecodeOffset(), 77);
}

TEST(DecodeIndex, ChangedTableIsIndexedAnew) {
    const auto ctts = tableOf<CTTS>("ctts", Runs(200, {1, 4}));
    wire::Access::seekDecodeOffset(*ctts, 150);
    EXPECT_EQ(wire::Access::table(*ctts).cursor, 149U);
    ctts->compact();
    wire::Access::seekDecodeOffset(*ctts, 150);
    EXPECT_EQ(wire::Access::table(*ctts).cursor, 0U);
    *ctts = *tableOf<CTTS>("ctts", Runs(100, {1, 5}));
    wire::Access::seekDecodeOffset(*ctts, 50);
    EXPECT_EQ(wire::Access::table(*ctts).cursor, 49U);
    EXPECT_EQ(wire::Access::peekDecodeOffset(*ctts), 5);
}

} // namespace
} // namespace test
