// Sync samples, partial sync samples, dependencies, priorities, shadow sync, composition shift.
#include "qt/samples/TableFixture.h"

#include <qt/QTAtoms/samples/CSLG.h>
#include <qt/QTAtoms/samples/SDTP.h>
#include <qt/QTAtoms/samples/STDP.h>
#include <qt/QTAtoms/samples/STPS.h>
#include <qt/QTAtoms/samples/STSH.h>
#include <qt/QTAtoms/samples/STSS.h>

namespace test {
namespace {

using namespace Ketra::QT;

template <class Table>
class SyncTable : public testing::Test {
public:
    static const char* function() {
        return std::is_same_v<Table, STSS> ? "Ketra::QT::STSS::serialize" : "Ketra::QT::STPS::serialize";
    }
    static Bytes file(const Bytes& rest) {
        return std::is_same_v<Table, STSS> ? tableAtom("stss", rest) : tableAtom("stps", rest);
    }
};

using SyncTypes = testing::Types<STSS, STPS>;
TYPED_TEST_SUITE(SyncTable, SyncTypes);

TYPED_TEST(SyncTable, EmptyTableIsNotWritten) {
    TypeParam table;
    EXPECT_EQ(table.updateSize(), 0U);
    EXPECT_EQ(table.getSize(), 16U) << "not stored";
    EXPECT_EQ(take(table.serialize()), Bytes());
}

TYPED_TEST(SyncTable, AppendingGrowsCountAndSize) {
    TypeParam table;
    EXPECT_EQ(table.addSyncSample(nullptr), -1);
    EXPECT_EQ(table.addSyncSample(new STSSData(1)), 0);
    EXPECT_EQ(table.addSyncSample(new STSSData(31)), 0);
    EXPECT_EQ(table.getNumberOfEntries(), 2U);
    EXPECT_EQ(table.getSize(), 24U);
    EXPECT_EQ(table.updateSize(), 24U);
    EXPECT_EQ(take(table.serialize()), this->file(hex("00000002 00000001 0000001F")));
}

TYPED_TEST(SyncTable, IndexIsCheckedAgainstCountAndTable) {
    TypeParam table;
    table.addSyncSample(new STSSData(1));
    table.addSyncSample(new STSSData(5));
    EXPECT_EQ(table.setNumberOfEntries(1), 0);
    EXPECT_TRUE(table.getSyncSampleData(0));
    EXPECT_EQ(table.getSyncSampleData(1), nullptr);
    table.setNumberOfEntries(9);
    EXPECT_TRUE(table.getSyncSampleData(1));
    EXPECT_EQ(table.getSyncSampleData(2), nullptr);
    EXPECT_EQ(table.setIterator(2), 0);
    EXPECT_EQ(table.getCurrentSyncSampleData()->getNumber(), 5U);
    table.increaseIterator();
    EXPECT_EQ(table.getCurrentSyncSampleData(), nullptr);
    table.resetTableIterator();
    EXPECT_EQ(table.getCurrentSyncSampleData()->getNumber(), 1U);
}

TYPED_TEST(SyncTable, CountBeyondTheEntriesFailsToBeWritten) {
    AtomFile file(this->file(hex("00000005 00000001 00000002"))); // 24 bytes
    const auto table = file.template parse<TypeParam>();
    EXPECT_EQ(table->getNumberOfEntries(), 5U);
    EXPECT_EQ(table->getSyncSampleTable().size(), 2U);
    expectThrow(*table, this->function(), "Wrong number of entries in STSS-table");
    EXPECT_EQ(table->updateSize(), 16U + 20);
    table->setNumberOfEntries(2);
    EXPECT_EQ(take(table->serialize()), this->file(hex("00000002 00000001 00000002")));
}

TYPED_TEST(SyncTable, ReplacedTableKeepsTheStoredSize) {
    TypeParam table;
    table.addSyncSample(new STSSData(1));
    EXPECT_EQ(table.setSyncSampleTable({new STSSData(2), nullptr, new STSSData(3), new STSSData(4)}), 0);
    EXPECT_EQ(table.getNumberOfEntries(), 3U);
    EXPECT_EQ(table.getSize(), 20U);
    EXPECT_EQ(take(table.serialize()), this->file(hex("00000003 00000002 00000003 00000004")));
    table.setSyncSampleTable({new STSSData(9)});
    table.addSyncSample(new STSSData(10));
    table.setSyncSampleTable({table.getSyncSampleData(1)});
    EXPECT_EQ(table.getSize(), 24U);
    EXPECT_EQ(take(table.serialize()), this->file(hex("00000001 0000000A 00000000"))) << "the rest is zero";
}

TYPED_TEST(SyncTable, SpareBytesOfTheFileStay) {
    AtomFile file(this->file(hex("00000001 00000001 FFFFFFFF")));
    const auto table = file.template parse<TypeParam>();
    EXPECT_EQ(table->updateSize(), 20U);
    EXPECT_EQ(take(table->serialize()), this->file(hex("00000001 00000001 00000000")));
}

TEST(SampleDependencies, OneByteASampleAndNoCount) {
    SDTP sdtp;
    EXPECT_EQ(sdtp.addSampleDep(nullptr), -1);
    EXPECT_EQ(sdtp.addSampleDep(new STSSData(0x120)), 0);
    EXPECT_EQ(sdtp.addSampleDep(new STSSData(0x08)), 0);
    EXPECT_EQ(sdtp.getSize(), 14U);
    EXPECT_EQ(sdtp.updateSize(), 14U);
    EXPECT_EQ(take(sdtp.serialize()), tableAtom("sdtp", hex("20 08")));
    EXPECT_EQ(sdtp.getSampleDepData(0)->getNumber(), 0x120U) << "only writing cuts";
    EXPECT_EQ(sdtp.getSampleDepData(2), nullptr);
    EXPECT_EQ(sdtp.setIterator(2), 0);
    EXPECT_EQ(sdtp.getCurrentSampleDepData(), sdtp.getSampleDepData(1));
}

TEST(SampleDependencies, EmptyTableIsNotWritten) {
    SDTP sdtp;
    EXPECT_EQ(sdtp.getSize(), 12U);
    EXPECT_EQ(take(sdtp.serialize()), Bytes());
    EXPECT_EQ(sdtp.updateSize(), 0U);
    EXPECT_EQ(sdtp.getSize(), 0U);
    sdtp.addSampleDep(new STSSData(7)); // the stored size is now 1
    EXPECT_EQ(take(sdtp.serialize()), tableAtom("sdtp", {7}));
}

TEST(SampleDependencies, ReplacedTableSetsTheSize) {
    SDTP sdtp;
    EXPECT_EQ(sdtp.setSampleDepTable({new STSSData(1), new STSSData(2), new STSSData(3)}), 0);
    EXPECT_EQ(sdtp.getSize(), 15U);
    EXPECT_EQ(sdtp.getSampleDepTable().size(), 3U);
    sdtp.setSampleDepTable({});
    EXPECT_EQ(sdtp.getSize(), 0U);
}

TEST(Priorities, FourBytesOfPaddingFollow) {
    STDP stdp;
    EXPECT_EQ(stdp.addDegradationPriority(nullptr), -1);
    for (const int priority : {1, 2, 0xFFFF}) {
        EXPECT_EQ(stdp.addDegradationPriority(new STDPData(static_cast<unsigned short>(priority))), 0);
    }
    EXPECT_EQ(stdp.getNumberOfEntries(), 3U);
    EXPECT_EQ(stdp.getSize(), 22U);
    EXPECT_EQ(stdp.updateSize(), 22U);
    EXPECT_EQ(take(stdp.serialize()), hex("00000016 'stdp' 00000000 0001 0002 FFFF 00000000"));
    EXPECT_EQ(stdp.getDegradationPriorityData(2)->getPriority(), 0xFFFFU);
    EXPECT_EQ(stdp.getDegradationPriorityData(3), nullptr);
}

TEST(Priorities, WhatWasReadHasNoCount) {
    AtomFile file(tableAtom("stdp", hex("0001 0002 0003 0000 0000")));
    int result = -1;
    const auto stdp = file.parse<STDP>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(stdp->getNumberOfEntries(), 0U);
    EXPECT_EQ(stdp->getDegradationPriorityTable().size(), 5U) << "the padding reads as two more";
    EXPECT_EQ(stdp->getDegradationPriorityData(1)->getPriority(), 2U);
    EXPECT_EQ(stdp->getCurrentDegradationPriorityData()->getPriority(), 1U);
    expectThrow(*stdp, "Ketra::QT::STDP::serialize", "Wrong number of entries in STDP-table");
    stdp->setNumberOfEntries(5);
    EXPECT_EQ(stdp->updateSize(), 26U);
    EXPECT_EQ(take(stdp->serialize()).size(), 26U);
}

TEST(Priorities, HalfAPriorityIsNone) {
    AtomFile one(tableAtom("stdp", {1}));
    EXPECT_TRUE(one.parse<STDP>()->getDegradationPriorityTable().empty());
    AtomFile five(tableAtom("stdp", hex("0001 0002 03")));
    EXPECT_EQ(five.parse<STDP>()->getDegradationPriorityTable().size(), 2U);
}

TEST(Priorities, ReplacedTableSetsCountAndSize) {
    AtomFile file(tableAtom("stdp", hex("0001 0002")));
    const auto stdp = file.parse<STDP>();
    EXPECT_EQ(stdp->setDegradationPriorityTable(stdp->getDegradationPriorityTable()), 0);
    EXPECT_EQ(stdp->getNumberOfEntries(), 2U);
    EXPECT_EQ(stdp->getSize(), 20U);
    EXPECT_EQ(take(stdp->serialize()), hex("00000014 'stdp' 00000000 0001 0002 00000000"));
}

TEST(ShadowSync, OnlyTheHeaderIsWritten) {
    STSH stsh;
    EXPECT_EQ(stsh.getSize(), 8U);
    EXPECT_EQ(take(stsh.serialize()), hex("00000008 'stsh'"));
    AtomFile file(hex("00000010 'stsh' FFFFFFFF FFFFFFFF"));
    int result = -1;
    const auto read = file.parse<STSH>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(file.position(), 16);
    EXPECT_EQ(rewritten(*read), hex("00000010 'stsh' 00000000 00000000"));
}

TEST(CompositionShift, FieldsAreSetAndWritten) {
    CSLG cslg;
    EXPECT_EQ(cslg.setVersion(1), 0);
    EXPECT_EQ(cslg.setFlags(2), 0);
    EXPECT_EQ(cslg.setShift(3), 0);
    EXPECT_EQ(cslg.setLeastDelta(0xFFFFFFFC), 0);
    EXPECT_EQ(cslg.setGreatestDelta(5), 0);
    EXPECT_EQ(cslg.setDisplayStartTime(6), 0);
    EXPECT_EQ(cslg.setDisplayEndTime(7), 0);
    EXPECT_EQ(cslg.updateSize(), 32U);
    EXPECT_EQ(take(cslg.serialize()),
              hex("00000020 'cslg' 01 000002 00000003 FFFFFFFC 00000005 00000006 00000007"));
}

TEST(CompositionShift, MissingFieldsAreZero) {
    AtomFile file(hex("00000012 'cslg' 00 000000 00000003 FFFF"));
    int result = -1;
    const auto cslg = file.parse<CSLG>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(cslg->getShift(), 3U);
    EXPECT_EQ(cslg->getLeastDelta(), 0xFFFF0000U);
    EXPECT_EQ(cslg->getGreatestDelta(), 0U);
    EXPECT_EQ(cslg->getDisplayEndTime(), 0U);
    EXPECT_EQ(take(cslg->serialize()).size(), 32U) << "as long as the fields need";
}

} // namespace
} // namespace test
