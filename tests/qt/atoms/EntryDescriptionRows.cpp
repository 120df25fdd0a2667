#include "qt/atoms/AtomRow.h"

#include <qt/QTAtoms/entries/STSD.h>
#include <qt/QTAtoms/entries/STSDTimeCode.h>

namespace test {
namespace {

using namespace Ketra::QT;

const RowList kRows({
    row<STSD>({.name = "STSD",
               .file = hex({"00000038 'stsd'",          // size, type
                            "00 000000",                // version, flags
                            "00000002",                 // entries
                            "00000014 'abcd'",          // size, data format
                            "000000000000 0001",        // reserved, data reference index
                            "01020304",                 // body
                            "00000014 'efgh'",          //
                            "FFFFFFFFFFFF 0002",        //
                            "05060708"}),               //
               .written = hex({"00000030 'stsd'",       // raw bodies are not written
                               "00 000000", "00000002", //
                               "00000010 'abcd' 000000000000 0001",
                               "00000010 'efgh' 0F0F0F0F0F0F 0002"}), // reserved bytes keep four bits each
               .sizeAfterUpdate = 48,
               .blankSize = 16,
               .countAt = 12},
              [](STSD& a) {
                  EXPECT_EQ(a.getNumberOfEntries(), 2U);
                  ASSERT_EQ(a.getSampleDescriptionTable().size(), 2U);
                  const STSDData* entry = a.getSampleDescriptionData(0);
                  EXPECT_EQ(entry->getDataFormat(), fourCC("abcd"));
                  EXPECT_EQ(entry->getDataSize(), 4U);
                  EXPECT_EQ(entry->getData()[3], 4);
                  EXPECT_EQ(entry->getDataReferenceIndex(), 1);
                  EXPECT_EQ(entry->getReserved(), 0U);
                  EXPECT_EQ(entry->getExtraData(), nullptr);
                  EXPECT_EQ(a.getSampleDescriptionData(1)->getType(), fourCC("efgh"));
                  EXPECT_EQ(a.getSampleDescriptionData(1)->getReserved(), ~std::uint64_t{0});
                  EXPECT_EQ(a.getSampleDescriptionData(2), nullptr);
              }),
    row<STSDTimeCode>({.name = "STSDTimeCode",
                       .file = hex({"00000028 'tmcd'", // an atom around the body
                                    "00000000",        // reserved
                                    "00000001",        // flags: drop frame
                                    "00007530",        // time scale 30000
                                    "000003E9",        // frame duration 1001
                                    "1E",              // 30 frames
                                    "00",              // reserved
                                    "0000000E 'name'", // source reference
                                    "0002 0000 'r1'"}),
                       .written = hex({"00000000 00000001 00007530 000003E9 1E 00", // the body alone
                                       "0000000E 'name' 0002 0000 'r1'"}),
                       .sizeAfterUpdate = 32,
                       .blankSize = 20},
                      [](STSDTimeCode& a) {
                          EXPECT_EQ(a.getReserved(), 0U);
                          EXPECT_EQ(a.getFlags(), 1U);
                          EXPECT_EQ(a.getTimeScale(), 30000U);
                          EXPECT_EQ(a.getFrameDuration(), 1001U);
                          EXPECT_EQ(a.getNumberOfFrames(), 30U);
                          unsigned int length = 0;
                          unsigned char* bytes = nullptr;
                          EXPECT_EQ(a.getSourceReference(length, bytes), 0);
                          ASSERT_EQ(length, 2U);
                          EXPECT_EQ(bytes[1], '1');
                      }),
});

} // namespace
} // namespace test
