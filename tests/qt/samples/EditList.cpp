// Edit lists.
#include "qt/samples/TableFixture.h"

#include <qt/QTAtoms/track/EDTS.h>
#include <qt/QTAtoms/track/ELST.h>
#include <qt/wire/Oddities.h>

namespace test {
namespace {

using namespace Ketra::QT;

Bytes rateBytes(float rate) {
    ELST elst;
    elst.addEditListEntry(new ELSTData(0, 0, rate));
    const Bytes bytes = take(elst.serialize());
    return Bytes(bytes.end() - 4, bytes.end());
}

TEST(EditList, RatesAreWrittenWithTheirFractionTruncated) {
    EXPECT_EQ(rateBytes(1.0F), hex("00010000"));
    EXPECT_EQ(rateBytes(0.25F), hex("00003FFF"));
    EXPECT_EQ(rateBytes(-1.5F), hex("FFFE8001"));
    EXPECT_EQ(rateBytes(0.0F), hex("00000000"));
}

TEST(EditList, RatesAreReadWithTheScaleTheyAreWrittenWith) {
    using Rate = wire::odd::Rate16_16;
    const auto read = [](const char* bytes) { return Rate::read(hex(bytes).data()); };
    EXPECT_EQ(read("00010000"), 1.0F);
    EXPECT_EQ(read("00003FFF"), 16383 / 65535.0F);
    EXPECT_EQ(read("FFFE8001"), -2.0F + 32769 / 65535.0F);
    EXPECT_EQ(read("80000000"), -32768.0F);
    EXPECT_EQ(read("0001FFFF"), 2.0F);
    for (std::uint32_t whole = 0; whole < 0x10000; ++whole) {
        unsigned char bytes[4];
        wire::store32(bytes, whole << 16);
        Rate::write(bytes, Rate::read(bytes));
        ASSERT_EQ(wire::load32(bytes), whole << 16);
    }
}

TEST(EditList, AppendingGrowsCountAndSize) {
    ELST elst;
    EXPECT_EQ(elst.addEditListEntry(nullptr), -1);
    EXPECT_EQ(elst.getSize(), 16U);
    EXPECT_EQ(elst.addEditListEntry(new ELSTData(600, -1, 1.0F)), 0);
    EXPECT_EQ(elst.getSize(), 28U);
    EXPECT_EQ(elst.getNumberOfEntries(), 1U);
    EXPECT_EQ(take(elst.serialize()), tableAtom("elst", hex("00000001 00000258 FFFFFFFF 00010000")));
    ELSTData* edit = elst.getEditListData(0);
    EXPECT_EQ(edit->setDuration(1), 0);
    EXPECT_EQ(edit->setMediaTime(-2), 0);
    EXPECT_EQ(edit->setMediaRate(2.0F), 0);
    EXPECT_EQ(take(elst.serialize()), tableAtom("elst", hex("00000001 00000001 FFFFFFFE 00020000")));
}

TEST(EditList, OnlyWholeEntriesAreRead) {
    AtomFile file(tableAtom("elst", hex("00000003 00000001 00000002 00010000 00000001 00000002 0001")));
    const auto elst = file.parse<ELST>();
    EXPECT_EQ(elst->getNumberOfEntries(), 3U);
    EXPECT_EQ(elst->getEditListTable().size(), 1U);
    expectThrow(*elst, "Ketra::QT::ELST::serialize", "Wrong number of entries in ELST-table");
    elst->setNumberOfEntries(1);
    EXPECT_EQ(elst->updateSize(), 28U);
    EXPECT_EQ(take(elst->serialize()), tableAtom("elst", hex("00000001 00000001 00000002 00010000")));
}

TEST(EditList, VersionOneIsReadLikeVersionZero) {
    AtomFile file(
        hex({"00000024 'elst' 01 000000 00000001", "00000000 00000258", "00000000 00000064", "00010000"}));
    const auto elst = file.parse<ELST>();
    ASSERT_EQ(elst->getEditListTable().size(), 1U);
    EXPECT_EQ(elst->getVersion(), 1U);
    EXPECT_EQ(elst->getEditListData(0)->getDuration(), 0U);
    EXPECT_EQ(elst->getEditListData(0)->getMediaTime(), 600);
    EXPECT_EQ(elst->getEditListData(0)->getMediaRate(), 0.0F);
}

TEST(EditList, TableIsReplaced) {
    ELST elst;
    elst.addEditListEntry(new ELSTData(1, 2, 1.0F));
    EXPECT_EQ(elst.setEditListTable({new ELSTData(3, 4, 1.0F), elst.getEditListData(0)}), 0);
    EXPECT_EQ(elst.getNumberOfEntries(), 2U);
    EXPECT_EQ(elst.getSize(), 40U);
    EXPECT_EQ(elst.setIterator(2), 0);
    EXPECT_EQ(elst.getCurrentEditListData()->getDuration(), 1U);
    elst.increaseIterator();
    EXPECT_EQ(elst.getCurrentEditListData(), nullptr);
    elst.resetTableIterator();
    EXPECT_EQ(elst.getCurrentEditListData()->getDuration(), 3U);
}

TEST(EditList, EditsContainerDropsWhatItDoesNotKnow) {
    const Bytes list = tableAtom("elst", hex("00000001 00000001 00000002 00010000"));
    AtomFile file(atom("edts", atom("abcd", {1, 2}) + list));
    int result = -1;
    const auto edts = file.parse<EDTS>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(edts->getChildren().size(), 2U);
    const std::unique_ptr<QTAtom> unknown(edts->getAtomOfType(fourCC("abcd")));
    edts->removeAtomOfType(fourCC("abcd"));
    EXPECT_EQ(rewritten(*edts), atom("edts", list));
}

} // namespace
} // namespace test
