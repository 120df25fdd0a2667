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

TEST(EditList, RatesReadAreWrittenBack) {
    using Rate = wire::odd::Rate16_16;
    for (const std::uint32_t whole : {0x0000U, 0x0001U, 0x0002U, 0x0063U, 0x00FFU}) {
        for (std::uint32_t fraction = 0; fraction < 0xFFFF; ++fraction) {
            const std::uint32_t bits = whole << 16 | fraction;
            for (const std::uint32_t word : {bits, 0 - bits}) {
                unsigned char bytes[4];
                wire::store32(bytes, word);
                Rate::write(bytes, Rate::read(bytes));
                ASSERT_EQ(wire::load32(bytes), word);
            }
        }
    }
    unsigned char extreme[] = {0x80, 0, 0, 0};
    EXPECT_EQ(Rate::read(extreme), -32768.0F);
    Rate::write(extreme, Rate::read(extreme));
    EXPECT_EQ(wire::load32(extreme), 0x80000000U);
    const unsigned char almostTwo[] = {0, 1, 0xFF, 0xFF};
    EXPECT_EQ(Rate::read(almostTwo), 2.0F);
}

TEST(EditList, AppendingGrowsCountAndSize) {
    ELST elst;
    EXPECT_EQ(elst.addEditListEntry(nullptr), -1);
    EXPECT_EQ(elst.getSize(), 16U);
    EXPECT_EQ(elst.addEditListEntry(new ELSTData(600, -1, 1.0F)), 0);
    EXPECT_EQ(elst.getSize(), 28U);
    EXPECT_EQ(elst.getNumberOfEntries(), 1U);
    EXPECT_EQ(take(elst.serialize()), fullAtom("elst", hex("00000001 00000258 FFFFFFFF 00010000")));
    ELSTData* edit = elst.getEditListData(0);
    EXPECT_EQ(edit->setDuration(1), 0);
    EXPECT_EQ(edit->setMediaTime(-2), 0);
    EXPECT_EQ(edit->setMediaRate(2.0F), 0);
    EXPECT_EQ(take(elst.serialize()), fullAtom("elst", hex("00000001 00000001 FFFFFFFE 00020000")));
}

TEST(EditList, OnlyWholeEntriesAreRead) {
    AtomFile file(fullAtom("elst", hex("00000003 00000001 00000002 00010000 00000001 00000002 0001")));
    const auto elst = file.parse<ELST>();
    EXPECT_EQ(elst->getNumberOfEntries(), 3U);
    EXPECT_EQ(elst->getEditListTable().size(), 1U);
    expectThrow(*elst, "Ketra::QT::ELST::serialize", "Wrong number of entries in ELST-table");
    elst->setNumberOfEntries(1);
    EXPECT_EQ(elst->updateSize(), 28U);
    EXPECT_EQ(take(elst->serialize()), fullAtom("elst", hex("00000001 00000001 00000002 00010000")));
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
    const Bytes list = fullAtom("elst", hex("00000001 00000001 00000002 00010000"));
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
