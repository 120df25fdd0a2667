#include "qt/atoms/AtomRow.h"

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
#include <qt/QTAtoms/track/EDTS.h>
#include <qt/QTAtoms/track/ELST.h>

namespace test {
namespace {

using namespace Ketra::QT;

const RowList kRows({
    row<STTS>({.name = "STTS",
               .file = hex({"00000020 'stts'",     // size, type
                            "01 000002",           // version, flags
                            "00000002",            // entries
                            "00000003 00000064",   // 3 samples of 100
                            "00000001 00000032"}), // 1 of 50
               .written = hex({"00000020 'stts'",
                               "01 020000", // flags read from the back, written from the front
                               "00000002", "00000003 00000064", "00000001 00000032"}),
               .blankSize = 16,
               .countAt = 12},
              [](STTS& a) {
                  EXPECT_EQ(a.getVersion(), 1U);
                  EXPECT_EQ(a.getFlags(), 0x020000U);
                  EXPECT_EQ(a.getNumberOfEntries(), 2U);
                  EXPECT_EQ(a.getSumOfEntries(), 4U);
                  EXPECT_EQ(a.getSumOfDurations(), 350U);
                  ASSERT_TRUE(a.getTimeToSampleData(1));
                  EXPECT_EQ(a.getTimeToSampleData(1)->getSampleCount(), 1U);
                  EXPECT_EQ(a.getTimeToSampleData(1)->getDuration(), 50U);
                  EXPECT_EQ(a.getTimeToSampleData(2), nullptr);
              }),
    row<STSZ>({.name = "STSZ",
               .file = hex({"00000020 'stsz'",              // size, type
                            "00 000000",                    // version, flags
                            "00000000",                     // no constant size
                            "00000003",                     // samples
                            "0000000A 00000014 0000001E"}), // 10, 20, 30 bytes
               .blankSize = 20,
               .countAt = 16},
              [](STSZ& a) {
                  EXPECT_EQ(a.getSampleSize(), 0U);
                  EXPECT_EQ(a.getNumberOfEntries(), 3U);
                  EXPECT_EQ(a.getCalculatedSize(), 60U);
                  EXPECT_EQ(a.getSampleSizeData(2)->getSize(), 30U);
                  EXPECT_EQ(a.getSampleSizeData(9)->getSize(), 30U); // past the end: the last
              }),
    row<CTTS>({.name = "CTTS",
               .file = hex({"00000020 'ctts'",     // size, type
                            "00 000000",           // version, flags
                            "00000002",            // entries
                            "00000002 00000005",   // 2 samples shown 5 later
                            "00000001 FFFFFFFF"}), // 1 shown 1 earlier
               .blankSize = 16,
               .countAt = 12},
              [](CTTS& a) {
                  EXPECT_EQ(a.getNumberOfEntries(), 2U);
                  EXPECT_EQ(a.getNextDecodeOffset(), 5);
                  EXPECT_EQ(a.getNextDecodeOffset(), 5);
                  EXPECT_EQ(a.getNextDecodeOffset(), -1);
                  EXPECT_EQ(a.getNextDecodeOffset(), -1);
                  EXPECT_EQ(a.resetDecodeOffset(), 0);
                  EXPECT_EQ(a.getNextDecodeOffset(), 5);
                  a.resetDecodeOffset();
                  EXPECT_EQ(a.getCompositionTimeData(1)->getSampleCount(), 1U);
                  EXPECT_EQ(a.getCompositionTimeData(1)->getSampleOffset(), -1);
                  EXPECT_EQ(a.getCompositionTimeData(2), nullptr);
              }),
    row<CSLG>({.name = "CSLG",
               .file = hex({"00000020 'cslg'", // size, type
                            "00 000001",       // version, flags
                            "00000003",        // shift
                            "FFFFFFFD",        // least delta
                            "00000005",        // greatest delta
                            "00000007",        // display start
                            "0000000B"}),      // display end
               .written = hex({"00000020 'cslg'", "00 010000", "00000003", "FFFFFFFD", "00000005", "00000007",
                               "0000000B"}),
               .blankSize = 32},
              [](CSLG& a) {
                  EXPECT_EQ(a.getFlags(), 0x010000U);
                  EXPECT_EQ(a.getShift(), 3U);
                  EXPECT_EQ(a.getLeastDelta(), 0xFFFFFFFDU);
                  EXPECT_EQ(a.getGreatestDelta(), 5U);
                  EXPECT_EQ(a.getDisplayStartTime(), 7U);
                  EXPECT_EQ(a.getDisplayEndTime(), 11U);
              }),
    row<STSS>({.name = "STSS",
               .file = hex({"00000018 'stss'",     // size, type
                            "00 000000",           // version, flags
                            "00000002",            // entries
                            "00000001 0000001F"}), // samples 1 and 31
               .blankSize = 16,
               .countAt = 12},
              [](STSS& a) {
                  EXPECT_EQ(a.getNumberOfEntries(), 2U);
                  EXPECT_EQ(a.getSyncSampleData(1)->getNumber(), 31U);
                  EXPECT_EQ(a.getSyncSampleData(2), nullptr);
              }),
    row<STPS>({.name = "STPS",
               .file = hex({"00000014 'stps'", // size, type
                            "01 000000",       // version, flags
                            "00000001",        // entries
                            "80000002"}),      // sample number
               .blankSize = 16,
               .countAt = 12},
              [](STPS& a) {
                  EXPECT_EQ(a.getVersion(), 1U);
                  EXPECT_EQ(a.getSyncSampleData(0)->getNumber(), 0x80000002U);
                  EXPECT_EQ(a.getCurrentSyncSampleData(), a.getSyncSampleData(0));
              }),
    row<SDTP>({.name = "SDTP",
               .file = hex({"0000000E 'sdtp'", // size, type
                            "00 000002",       // version, flags
                            "20 08"}),         // flags of two samples, not loaded
               .writesNothing = true,
               .sizeAfterUpdate = 0,
               .blankSize = 12},
              [](SDTP& a) {
                  EXPECT_EQ(a.getFlags(), 0x020000U);
                  EXPECT_TRUE(a.getSampleDepTable().empty());
                  EXPECT_EQ(a.getSampleDepData(0), nullptr);
              }),
    row<STDP>({.name = "STDP",
               .file = hex({"0000000C 'stdp'",                               // size, type
                            "00 000000"}),                                   // version, flags
               .written = hex({"00000010 'stdp'", "00 000000", "00000000"}), // padding
               .sizeAfterUpdate = 16,
               .blankSize = 16},
              [](STDP& a) {
                  EXPECT_EQ(a.getNumberOfEntries(), 0U);
                  EXPECT_TRUE(a.getDegradationPriorityTable().empty());
              }),
    row<STSH>({.name = "STSH",
               .file = hex({"00000018 'stsh'",                              // size, type
                            "00 000000", "00000001", "00000002 00000001"}), // not kept
               .written = hex({"00000018 'stsh'", "00000000 00000000 00000000 00000000"}),
               .blankSize = 8},
              [](STSH& a) { EXPECT_EQ(a.getSize(), 24U); }),
    row<STSC>({.name = "STSC",
               .file = hex({"00000034 'stsc'",              // size, type
                            "00 000000",                    // version, flags
                            "00000003",                     // runs
                            "00000001 00000004 00000001",   // chunks 1 and 2: 4 samples
                            "00000003 00000002 00000001",   // chunk 3: 2 samples
                            "00000004 00000002 00000002"}), // chunk 4: another description
               .blankSize = 16,
               .countAt = 12},
              [](STSC& a) {
                  EXPECT_EQ(a.getNumberOfEntries(), 4U);
                  const STSCData* second = a.getSampleToChunkData(1);
                  EXPECT_EQ(second->getFirstChunk(), 2U);
                  EXPECT_EQ(second->getSamplesPerChunk(), 4U);
                  EXPECT_EQ(second->getSampleDescriptionID(), 1U);
                  EXPECT_EQ(second->getTotalSampleCount(), 4U);
                  const STSCData* last = a.getSampleToChunkData(3);
                  EXPECT_EQ(last->getFirstChunk(), 4U);
                  EXPECT_EQ(last->getSampleDescriptionID(), 2U);
                  EXPECT_EQ(last->getTotalSampleCount(), 10U);
                  EXPECT_EQ(a.getSampleToChunkData(4), nullptr);
              }),
    row<STCO>({.name = "STCO",
               .file = hex({"00000018 'stco'",     // size, type
                            "00 000000",           // version, flags
                            "00000002",            // entries
                            "00000030 FFFFFFFF"}), // offsets
               .blankSize = 16,
               .countAt = 12},
              [](STCO& a) {
                  EXPECT_FALSE(a.is64Bit());
                  EXPECT_EQ(a.getNumberOfEntries(), 2U);
                  EXPECT_EQ(a.getChunkOffsetData(1)->getOffset(), 0xFFFFFFFFU);
                  EXPECT_EQ(a.getChunkOffsetData(2), nullptr);
              }),
    row<STCO>({.name = "STCO64",
               .file = hex({"00000020 'co64'",   // size, type
                            "00 000000",         // version, flags
                            "00000002",          // entries
                            "00000000 00000030", // offsets
                            "00000001 00000000"}),
               .blankSize = 16,
               .countAt = 12},
              [](STCO& a) {
                  EXPECT_TRUE(a.is64Bit());
                  EXPECT_EQ(a.getType(), fourCC("stco"));
                  EXPECT_EQ(a.getChunkOffsetData(0)->getOffset(), 0x30U);
                  EXPECT_EQ(a.getChunkOffsetData(1)->getOffset(), 0x100000000U);
              }),
    row<ELST>({.name = "ELST",
               .file = hex({"00000028 'elst'",              // size, type
                            "00 000000",                    // version, flags
                            "00000002",                     // entries
                            "00000258 FFFFFFFF 00010000",   // empty edit of 600
                            "000004B0 00000064 FFFE0000"}), // 1200 from media time 100, rate -2
               .blankSize = 16,
               .countAt = 12},
              [](ELST& a) {
                  EXPECT_EQ(a.getNumberOfEntries(), 2U);
                  EXPECT_EQ(a.getEditListData(0)->getDuration(), 600U);
                  EXPECT_EQ(a.getEditListData(0)->getMediaTime(), -1);
                  EXPECT_EQ(a.getEditListData(0)->getMediaRate(), 1.0F);
                  EXPECT_EQ(a.getEditListData(1)->getDuration(), 1200U);
                  EXPECT_EQ(a.getEditListData(1)->getMediaTime(), 100);
                  EXPECT_EQ(a.getEditListData(1)->getMediaRate(), -2.0F);
                  EXPECT_EQ(a.getEditListData(2), nullptr);
              }),
    row<EDTS>({.name = "EDTS",
               .file = hex({"00000018 'edts'",                     // size, type
                            "00000010 'elst' 00000000 00000000"}), // no edits
               .blankSize = 8},
              [](EDTS& a) {
                  EXPECT_TRUE(a.isContainer());
                  ASSERT_EQ(a.getChildren().size(), 1U);
                  EXPECT_TRUE(dynamic_cast<ELST*>(a.getChildren()[0]));
              }),
    row<STBL>({.name = "STBL",
               .file = hex({"00000034 'stbl'",                   // size, type
                            "00000010 'stts' 00000000 00000000", // no durations
                            "00000010 'stss' 00000000 00000000", // no sync samples: dropped
                            "0000000C 'sdtp' 01020304"}),        // kept as it is
               .written = hex({"00000024 'stbl'", "00000010 'stts' 00000000 00000000",
                               "0000000C 'sdtp' 01020304"}),
               .sizeAfterUpdate = 36,
               .blankSize = 8},
              [](STBL& a) {
                  EXPECT_TRUE(a.isContainer());
                  EXPECT_EQ(a.getChildren().size(), 2U);
                  EXPECT_EQ(a.getAtomOfType(fourCC("stss")), nullptr);
              }),
});

} // namespace
} // namespace test
