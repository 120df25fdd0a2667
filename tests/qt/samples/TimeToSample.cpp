// Time-to-sample and composition offsets.
#include "qt/samples/TableFixture.h"

#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/QTAtoms/samples/STTS.h>

namespace test {
namespace {

using namespace Ketra::QT;

void add(STTS& stts, unsigned int count, unsigned int duration) {
    EXPECT_EQ(stts.addTimeToSample(new STTSData(count, duration)), 0);
}

void add(CTTS& ctts, unsigned int count, unsigned int offset) {
    EXPECT_EQ(ctts.addCompositionTime(new CTTSData(count, offset)), 0);
}

TEST(TimeToSample, CountOfZeroIsAnEmptyTable) {
    AtomFile file(tableAtom("stts", hex("00000000 00000001 00000064")));
    const auto stts = file.parse<STTS>();
    EXPECT_EQ(stts->getNumberOfEntries(), 0U);
    EXPECT_TRUE(stts->getTimeToSampleTable().empty());
    EXPECT_EQ(stts->getCurrentTimeToSampleData(), nullptr);
    EXPECT_EQ(rewritten(*stts), hex("00000010 'stts' 00000000 00000000"));
}

TEST(TimeToSample, NeighboursOfEqualDurationMerge) {
    STTS stts;
    add(stts, 3, 100);
    add(stts, 2, 100);
    add(stts, 1, 50);
    EXPECT_EQ(stts.getSize(), 16U + 24);
    EXPECT_EQ(stts.getSumOfDurations(), 550U);
    EXPECT_EQ(stts.getSumOfEntries(), 6U);
    STTSData* first = stts.getTimeToSampleData(0);
    STTSData* last = stts.getTimeToSampleData(2);
    EXPECT_EQ(stts.updateSize(), 32U);
    EXPECT_EQ(stts.getSize(), 32U);
    EXPECT_EQ(stts.getNumberOfEntries(), 2U);
    EXPECT_EQ(stts.getTimeToSampleData(0), first) << "the record that others merge into stays";
    EXPECT_EQ(first->getSampleCount(), 5U);
    EXPECT_EQ(stts.getTimeToSampleData(1), last);
    EXPECT_EQ(stts.getSumOfDurations(), 550U);
    EXPECT_EQ(stts.getSumOfEntries(), 6U);
    EXPECT_EQ(take(stts.serialize()),
              hex("00000020 'stts' 00000000 00000002 00000005 00000064 00000001 00000032"));
}

TEST(TimeToSample, OnlyNeighboursMerge) {
    STTS stts;
    add(stts, 1, 10);
    add(stts, 1, 20);
    add(stts, 1, 10);
    EXPECT_EQ(stts.updateSize(), 40U);
    EXPECT_EQ(stts.getNumberOfEntries(), 3U);
}

TEST(TimeToSample, ParsedRunsMergeToo) {
    AtomFile file(tableAtom("stts", hex("00000004 00000001 0000000A 00000002 0000000A 00000001 0000000B "
                                        "00000001 0000000B")));
    const auto stts = file.parse<STTS>();
    EXPECT_EQ(rewritten(*stts), tableAtom("stts", hex("00000002 00000003 0000000A 00000002 0000000B")));
}

TEST(TimeToSample, SumsWrapAt32Bits) {
    STTS stts;
    add(stts, 65536, 65536);
    EXPECT_EQ(stts.getSumOfDurations(), 0U);
    add(stts, 0xFFFFFFFF, 1);
    EXPECT_EQ(stts.getSumOfDurations(), 0xFFFFFFFFU);
    EXPECT_EQ(stts.getSumOfEntries(), 65535U);
}

TEST(TimeToSample, SumsRunOverTheCountAndTheTable) {
    STTS stts;
    add(stts, 3, 10);
    add(stts, 4, 10);
    stts.setNumberOfEntries(1);
    EXPECT_EQ(stts.getSumOfEntries(), 3U);
    EXPECT_EQ(stts.getSumOfDurations(), 30U);
    stts.setNumberOfEntries(0xFFFFFFFF);
    EXPECT_EQ(stts.getSumOfEntries(), 7U);
    EXPECT_EQ(stts.getSumOfDurations(), 70U);
}

TEST(TimeToSample, IteratorIsSetByPosition) {
    STTS stts;
    add(stts, 3, 10);
    add(stts, 4, 20);
    EXPECT_EQ(stts.setIterator(2), 7U);
    EXPECT_EQ(stts.getCurrentIndex(), 1U);
    EXPECT_EQ(stts.getCurrentTimeToSampleData(), stts.getTimeToSampleData(1));
    EXPECT_EQ(stts.increaseIterator(), 0);
    EXPECT_EQ(stts.getCurrentIndex(), 2U);
    EXPECT_EQ(stts.getCurrentTimeToSampleData(), nullptr);
    EXPECT_EQ(stts.setIterator(9), 7U);
    EXPECT_EQ(stts.getCurrentIndex(), 8U);
    EXPECT_EQ(stts.resetTableIterator(), 0);
    EXPECT_EQ(stts.getCurrentIndex(), 0U);
    EXPECT_EQ(stts.setIterator(0), 0U);
    EXPECT_EQ(stts.getCurrentIndex(), 0U);
}

TEST(TimeToSample, CountBeyondTheEntriesFailsToBeWritten) {
    AtomFile file(tableAtom("stts", hex("00000009 00000001 0000000A 00000001 0000000B")));
    int result = -1;
    const auto stts = file.parse<STTS>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(stts->getNumberOfEntries(), 9U);
    EXPECT_EQ(stts->getTimeToSampleTable().size(), 2U);
    EXPECT_EQ(stts->getTimeToSampleData(2), nullptr);
    expectThrow(*stts, "Ketra::QT::STTS::serialize", "Wrong number of entries in STTS-table");
}

TEST(TimeToSample, UpdatingTheSizeRepairsTheCount) {
    AtomFile file(tableAtom("stts", hex("00000009 00000001 0000000A 00000001 0000000B")));
    const auto stts = file.parse<STTS>();
    EXPECT_EQ(stts->updateSize(), 32U);
    EXPECT_EQ(stts->getNumberOfEntries(), 2U);
    EXPECT_EQ(take(stts->serialize()).size(), 32U);
}

TEST(TimeToSample, EmptyTableKeepsItsCount) {
    STTS stts;
    stts.setNumberOfEntries(5);
    EXPECT_EQ(stts.updateSize(), 16U);
    EXPECT_EQ(stts.getNumberOfEntries(), 5U);
    expectThrow(stts, "Ketra::QT::STTS::serialize", "Wrong number of entries in STTS-table");
}

TEST(TimeToSample, BytesBehindTheEntriesAreNotEntries) {
    AtomFile file(tableAtom("stts", hex("00000001 00000001 0000000A 00000001 0000000B")));
    const auto stts = file.parse<STTS>();
    EXPECT_EQ(stts->getTimeToSampleTable().size(), 1U);
    EXPECT_EQ(rewritten(*stts), tableAtom("stts", hex("00000001 00000001 0000000A")));
}

TEST(TimeToSample, NullIsNotTaken) {
    STTS stts;
    EXPECT_EQ(stts.addTimeToSample(nullptr), -1);
    EXPECT_EQ(stts.getSize(), 16U);
    EXPECT_EQ(stts.getNumberOfEntries(), 0U);
    CTTS ctts;
    EXPECT_EQ(ctts.addCompositionTime(nullptr), -1);
    EXPECT_EQ(ctts.getSize(), 16U);
}

TEST(TimeToSample, TableIsReplaced) {
    STTS stts;
    add(stts, 1, 10);
    add(stts, 2, 20);
    std::vector<STTSData*> table = stts.getTimeToSampleTable();
    std::swap(table[0], table[1]);
    table.insert(table.begin(), nullptr);
    table.push_back(new STTSData(3, 30));
    STTSData* second = table[1];
    EXPECT_EQ(stts.setTimeToSampleTable(table), 0); // made of the table's own records
    EXPECT_EQ(stts.getNumberOfEntries(), 3U);
    EXPECT_EQ(stts.getSize(), 40U);
    EXPECT_EQ(stts.getTimeToSampleData(0), second);
    EXPECT_EQ(stts.getSumOfDurations(), 10U + 40 + 90);
    EXPECT_EQ(stts.setTimeToSampleTable({}), 0);
    EXPECT_EQ(stts.getSize(), 16U);
    EXPECT_EQ(stts.getNumberOfEntries(), 0U);
}

TEST(TimeToSample, CopiesHaveRecordsOfTheirOwn) {
    STTS stts;
    add(stts, 1, 10);
    stts.setIterator(1);
    const STTS copy(stts);
    stts.getTimeToSampleData(0)->setDuration(99);
    EXPECT_EQ(copy.getTimeToSampleData(0)->getDuration(), 10U);
    EXPECT_NE(copy.getTimeToSampleData(0), stts.getTimeToSampleData(0));
    EXPECT_EQ(copy.getCurrentIndex(), 0U);
}

TEST(TimeToSample, RecordsChangeTheTable) {
    AtomFile file(tableAtom("stts", hex("00000001 00000001 0000000A")));
    const auto stts = file.parse<STTS>();
    STTSData* data = stts->getTimeToSampleData(0);
    data->setSampleCount(7);
    data->setDuration(9);
    EXPECT_EQ(stts->getSumOfDurations(), 63U);
    EXPECT_EQ(rewritten(*stts), tableAtom("stts", hex("00000001 00000007 00000009")));
}

TEST(TimeToSample, FlagBytesAreReversedAndCut) {
    AtomFile file(hex("00000010 'stts' 00 000001 00000000"));
    const auto stts = file.parse<STTS>();
    EXPECT_EQ(stts->getFlags(), 0x010000U);
    EXPECT_EQ(rewritten(*stts), hex("00000010 'stts' 00 010000 00000000"));
    AtomFile wide(hex("00000010 'stts' 00 120000 00000000"));
    const auto cut = wide.parse<STTS>();
    EXPECT_EQ(cut->getFlags(), 0x12U);
    EXPECT_EQ(rewritten(*cut), hex("00000010 'stts' 00 000002 00000000"));
    cut->setVersion(0x101);
    EXPECT_EQ(cut->getVersion(), 0x101U);
    EXPECT_EQ(rewritten(*cut), hex("00000010 'stts' 01 000002 00000000"));
}

TEST(TimeToSample, NoPayloadIsAnError) {
    for (const Bytes& bytes : {hex("00000008 'stts'"), hex("00000020 'stts'")}) {
        AtomFile file(bytes);
        int result = 0;
        const auto stts = file.parse<STTS>(&result);
        EXPECT_EQ(result, -1);
        EXPECT_TRUE(stts->getTimeToSampleTable().empty());
    }
}

TEST(Composition, ZeroOffsetsAreNotWritten) {
    CTTS ctts;
    add(ctts, 1, 0);
    add(ctts, 4, 0);
    EXPECT_EQ(take(ctts.serialize()), Bytes());
    EXPECT_EQ(ctts.getSize(), 0U);
    EXPECT_EQ(ctts.updateSize(), 0U);
    EXPECT_EQ(ctts.getNumberOfEntries(), 1U);
    CTTS empty;
    EXPECT_EQ(empty.updateSize(), 0U);
    EXPECT_EQ(take(empty.serialize()), Bytes());
}

TEST(Composition, AppendingToATableOfNoSizeStillWritesAll) {
    CTTS ctts;
    ctts.updateSize(); // 0
    add(ctts, 2, 7);
    EXPECT_EQ(ctts.getSize(), 8U);
    EXPECT_EQ(take(ctts.serialize()), tableAtom("ctts", hex("00000001 00000002 00000007")));
}

TEST(Composition, NeighboursOfEqualOffsetMerge) {
    CTTS ctts;
    add(ctts, 1, 0);
    add(ctts, 1, 0);
    add(ctts, 1, 2);
    EXPECT_EQ(take(ctts.serialize()), tableAtom("ctts", hex("00000002 00000002 00000000 00000001 00000002")));
    EXPECT_EQ(ctts.compact(), 0);
    EXPECT_EQ(ctts.getNumberOfEntries(), 2U);
    CTTS empty;
    empty.setNumberOfEntries(3);
    EXPECT_EQ(empty.compact(), 0);
    EXPECT_EQ(empty.getNumberOfEntries(), 3U);
}

TEST(Composition, NegativeOffsetsSurvive) {
    const Bytes bytes = tableAtom("ctts", hex("00000001 00000001 FFFFFFFF"));
    AtomFile file(bytes);
    const auto ctts = file.parse<CTTS>();
    EXPECT_EQ(ctts->getCompositionTimeData(0)->getSampleOffset(), -1);
    EXPECT_EQ(rewritten(*ctts), bytes);
    ctts->getCompositionTimeData(0)->setSampleOffset(0x80000000);
    EXPECT_EQ(ctts->getCompositionTimeData(0)->getSampleOffset(), -2147483647 - 1);
}

TEST(Composition, CountBeyondTheEntriesFailsToBeWritten) {
    AtomFile file(tableAtom("ctts", hex("00000003 00000001 00000002")));
    const auto ctts = file.parse<CTTS>();
    EXPECT_EQ(ctts->getCompositionTimeTable().size(), 1U);
    expectThrow(*ctts, "Ketra::QT::CTTS::serialize", "Wrong number of entries in CTTS-table");
    AtomFile zeros(tableAtom("ctts", hex("00000003 00000001 00000000")));
    const auto nothing = zeros.parse<CTTS>();
    EXPECT_EQ(take(nothing->serialize()), Bytes()) << "a table that is not written cannot be wrong";
}

TEST(Composition, DecodeOffsetsComeOneASample) {
    CTTS ctts;
    EXPECT_EQ(ctts.getNextDecodeOffset(), 0) << "an empty table has no offsets";
    EXPECT_EQ(ctts.resetDecodeOffset(), 0);
    add(ctts, 2, 5);
    add(ctts, 1, 7);
    for (const int offset : {5, 5, 7, 7, 7, 7}) {
        EXPECT_EQ(ctts.getNextDecodeOffset(), offset);
    }
    ctts.resetDecodeOffset();
    EXPECT_EQ(ctts.getNextDecodeOffset(), 5);
    EXPECT_EQ(ctts.getCurrentCompositionTimeData(), ctts.getCompositionTimeData(0));
}

TEST(Composition, EntriesOfNoSamplesGiveTheirOffsetOnce) {
    CTTS ctts;
    add(ctts, 0, 1); // the cursor starts here and leaves at once
    add(ctts, 0, 2);
    add(ctts, 2, 3);
    add(ctts, 0, 4);
    for (const int offset : {2, 3, 3, 4, 4}) {
        EXPECT_EQ(ctts.getNextDecodeOffset(), offset);
    }
}

TEST(Composition, CursorBeyondTheTableGoesOnWithTheLastEntry) {
    CTTS ctts;
    add(ctts, 1, 5);
    add(ctts, 1, 5);
    add(ctts, 1, 5);
    ctts.setIterator(3);
    ctts.compact(); // leaves one entry of three samples
    EXPECT_EQ(ctts.getNextDecodeOffset(), 5);
    ctts.setIterator(0xFFFFFFFF);
    EXPECT_EQ(ctts.getNextDecodeOffset(), 5);
    EXPECT_EQ(ctts.increaseIterator(), 0);
    EXPECT_EQ(ctts.getNextDecodeOffset(), 5);
}

TEST(Composition, TableIsReplaced) {
    CTTS ctts;
    add(ctts, 1, 5);
    CTTSData* kept = ctts.getCompositionTimeData(0);
    EXPECT_EQ(ctts.setCompositionTimeTable({new CTTSData(2, 6), kept}), 0);
    EXPECT_EQ(ctts.getSize(), 32U);
    EXPECT_EQ(ctts.getNumberOfEntries(), 2U);
    EXPECT_EQ(ctts.getCompositionTimeData(1), kept);
    EXPECT_EQ(ctts.getCompositionTimeData(2), nullptr);
}

} // namespace
} // namespace test
