// Lookups in run-length tables against the plain walk that they replace.
#include "qt/samples/TableFixture.h"

#include <qt/QTAtoms/detail/RunIndex.h>
#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/QTAtoms/samples/STTS.h>
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
    AtomFile file(fullAtom(type, bytes));
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

/// What a walk from the first entry finds: the first entry that `reached` its goal.
template <class Reached>
std::optional<wire::RunPlace> walk(const Runs& runs, Reached reached) {
    std::uint64_t samples = 0;
    std::uint64_t ticks = 0;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::uint64_t more = std::uint64_t{runs[i].count} * runs[i].value;
        if (reached(samples + runs[i].count, ticks + more)) return wire::RunPlace{i, samples, ticks};
        samples += runs[i].count;
        ticks += more;
    }
    return std::nullopt;
}

void expectSame(const std::optional<wire::RunPlace>& got, const std::optional<wire::RunPlace>& want) {
    ASSERT_EQ(got.has_value(), want.has_value());
    if (!got) return;
    ASSERT_EQ(got->entry, want->entry);
    ASSERT_EQ(got->samplesBefore, want->samplesBefore);
    ASSERT_EQ(got->ticksBefore, want->ticksBefore);
}

TEST(RunIndex, LikeTheWalk) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        const Runs runs = randomRuns(random, round % 3 ? 700 : 5);
        const auto stts = tableOf<STTS>("stts", runs);
        const auto& table = wire::Access::table(*stts);
        std::uint64_t samples = 0;
        std::uint64_t ticks = 0;
        for (const wire::Run& run : runs) {
            samples += run.count;
            ticks += std::uint64_t{run.count} * run.value;
        }
        wire::RunIndex index;
        for (int pass = 0; pass < 2; ++pass) {
            for (std::uint64_t k = 0; k < samples + 3; ++k) {
                expectSame(index.locateSample(table, k),
                           walk(runs, [k](std::uint64_t s, std::uint64_t) { return s > k; }));
            }
            for (std::uint64_t x = 0; x < ticks + 3; ++x) {
                expectSame(index.locateTicks(table, x),
                           walk(runs, [x](std::uint64_t, std::uint64_t t) { return t >= x; }));
            }
            std::uint64_t through = 0;
            for (std::size_t i = 0; i < runs.size() + 3; ++i) {
                if (i < runs.size()) through += runs[i].count;
                ASSERT_EQ(index.samplesThrough(table, i), through);
            }
            ASSERT_EQ(index.samplesThrough(table, ~std::uint64_t{0}), samples);
            ASSERT_EQ(table.packed(), pass == 0);
            stts->getTimeToSampleTable(); // the second pass finds objects
        }
    }
}

TEST(RunIndex, EmptyTableHasNoPlaces) {
    const STTS stts;
    wire::RunIndex index;
    EXPECT_FALSE(index.locateSample(wire::Access::table(stts), 0));
    EXPECT_FALSE(index.locateTicks(wire::Access::table(stts), 0));
    EXPECT_EQ(index.samplesThrough(wire::Access::table(stts), 0), 0U);
}

TEST(RunIndex, SumsHave64Bits) {
    const auto stts = tableOf<STTS>("stts", Runs(100, {0xFFFFFFFF, 0xFFFFFFFF}));
    const auto& table = wire::Access::table(*stts);
    wire::RunIndex index;
    EXPECT_EQ(index.samplesThrough(table, 99), 100 * 0xFFFFFFFFULL);
    EXPECT_EQ(index.locateSample(table, 70 * 0xFFFFFFFFULL)->entry, 70U);
    EXPECT_EQ(index.locateTicks(table, 1)->entry, 0U);
    EXPECT_EQ(index.locateTicks(table, ~std::uint64_t{0})->entry, 1U) << "past 2^64 ticks the sum stays";
}

TEST(RunIndex, ChangedTableIsIndexedAnew) {
    const auto stts = tableOf<STTS>("stts", Runs(200, {1, 1}));
    auto& table = wire::Access::table(*stts);
    wire::RunIndex index;
    EXPECT_EQ(index.locateSample(table, 150)->entry, 150U);
    table.append(wire::Run{5, 1});
    EXPECT_EQ(index.locateSample(table, 204)->entry, 200U);
    wire::RunIndex copy = index;
    stts->updateSize(); // all merge into one entry
    EXPECT_EQ(index.locateSample(table, 204)->entry, 0U);
    EXPECT_EQ(copy.locateSample(table, 204)->entry, 0U);
    EXPECT_FALSE(copy.locateSample(table, 205));
}

TEST(RunIndex, ChangedRecordIsSeen) {
    const auto stts = tableOf<STTS>("stts", Runs(200, {1, 1}));
    const auto& table = wire::Access::table(*stts);
    wire::RunIndex index;
    EXPECT_EQ(index.locateSample(table, 150)->entry, 150U);
    stts->getTimeToSampleData(0)->setSampleCount(100);
    EXPECT_EQ(index.locateSample(table, 150)->entry, 51U);
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
