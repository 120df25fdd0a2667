// The sample description table: what it reads, what new ones hold, how it is written.
#include "support/AtomFile.h"

#include <base/CException.h>
#include <qt/QTAtoms/entries/STSD.h>
#include <qt/QTAtoms/entries/STSDAudio.h>
#include <qt/QTAtoms/entries/STSDHint.h>
#include <qt/QTAtoms/entries/STSDText.h>
#include <qt/QTAtoms/entries/STSDTimeCode.h>
#include <qt/QTAtoms/entries/STSDVideo.h>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

unsigned char* block(const Bytes& bytes) {
    auto* data = static_cast<unsigned char*>(std::malloc(bytes.size()));
    std::memcpy(data, bytes.data(), bytes.size());
    return data;
}

QTFrame* frame(const Bytes& bytes) {
    return new QTFrame(static_cast<unsigned int>(bytes.size()), bytes.empty() ? nullptr : block(bytes), 0, 0,
                       false, 1, 0, 0, false);
}

Bytes entry(const char (&format)[5], const Bytes& body) {
    return atom(format, hex("000000000000 0001") + body);
}

Bytes table(const char* count, const Bytes& entries) {
    return atom("stsd", hex("00000000") + hex(count) + entries);
}

TEST(EntryTable, EndsQuietlyWhereItsBytesEnd) {
    AtomFile file(table("00000003", join({entry("abcd", {1}), entry("efgh", {2, 3})})));
    int result = -1;
    const auto stsd = file.parse<STSD>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(stsd->getNumberOfEntries(), 3U);
    EXPECT_EQ(stsd->getSampleDescriptionTable().size(), 2U);
    EXPECT_THROW(take(stsd->serialize()), Ketra::CException);
}

TEST(EntryTable, EmptyTableHasNoEntries) {
    AtomFile file(table("00000000", entry("abcd", {1})));
    int result = -1;
    const auto stsd = file.parse<STSD>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(stsd->getSampleDescriptionTable().empty());
}

TEST(EntryTable, EntryShorterThanItsHeaderEndsTheTable) {
    for (const char* size : {"00000000", "0000000F"}) {
        AtomFile file(table("00000003", entry("abcd", {1}) + hex(size) + hex("'efgh' 000000000000 0001")));
        int result = -1;
        const auto stsd = file.parse<STSD>(&result);
        EXPECT_EQ(result, 0);
        EXPECT_EQ(stsd->getSampleDescriptionTable().size(), 1U);
    }
}

TEST(EntryTable, EntryLongerThanTheTableIsCut) {
    AtomFile file(table("00000002", hex("7FFFFFFF 'abcd' 000000000000 0001 0102")) + repeat(0xAA, 40));
    const auto stsd = file.parse<STSD>();
    ASSERT_EQ(stsd->getSampleDescriptionTable().size(), 1U);
    EXPECT_EQ(stsd->getSampleDescriptionData(0)->getSize(), 2U);
    EXPECT_EQ(stsd->getSampleDescriptionData(0)->getData()[1], 2);
}

TEST(EntryTable, EntryOfSixteenBytesHasNoBody) {
    AtomFile file(table("00000001", entry("sdsm", {})));
    const auto stsd = file.parse<STSD>();
    ASSERT_EQ(stsd->getSampleDescriptionTable().size(), 1U);
    EXPECT_EQ(stsd->getSampleDescriptionData(0)->getSize(), 0U);
    EXPECT_EQ(stsd->getSampleDescriptionData(0)->getData(), nullptr);
}

TEST(EntryTable, SizeAsReadIsTheBodyAndBecomesTheEntry) {
    AtomFile file(table("00000001", entry("abcd", {1, 2, 3})));
    const auto stsd = file.parse<STSD>();
    STSDData* data = stsd->getSampleDescriptionData(0);
    EXPECT_EQ(data->getSize(), 3U);
    EXPECT_EQ(data->updateSize(), 16U);
    EXPECT_EQ(data->getSize(), 16U);
    EXPECT_EQ(data->getDataSize(), 3U); // the bytes are still there
}

template <class Description>
void expectNew(const char (&mediaType)[5], unsigned int entrySize) {
    STSD stsd(fourCC(mediaType));
    EXPECT_EQ(stsd.getSize(), 16U + entrySize) << mediaType;
    EXPECT_EQ(stsd.getNumberOfEntries(), 1U);
    STSDData* data = stsd.getSampleDescriptionData(0);
    ASSERT_TRUE(data);
    EXPECT_EQ(data->getSize(), entrySize);
    EXPECT_EQ(data->getDataFormat(), 0U);
    EXPECT_EQ(data->getDataReferenceIndex(), 1);
    EXPECT_EQ(Bytes(data->getData(), data->getData() + data->getDataSize()), repeat(0, entrySize));
    EXPECT_TRUE(dynamic_cast<Description*>(data->getExtraData()));
    EXPECT_EQ(data->updateSize(), entrySize);
    EXPECT_EQ(stsd.updateSize(), 16U + entrySize);
    EXPECT_EQ(take(stsd.serialize()).size(), 16U + entrySize);
}

TEST(EntryTable, NewTablesDescribeTheirMedia) {
    expectNew<STSDVideo>("vide", 86);
    expectNew<STSDAudio>("audi", 52);
    expectNew<STSDText>("text", 59);
    expectNew<STSDTimeCode>("tmcd", 36);
    expectNew<STSDHint>("vihi", 24);
    expectNew<STSDHint>("auhi", 24);
}

TEST(EntryTable, NewSystemsTablesHaveNoTypedDescription) {
    for (const unsigned int type : {fourCC("sdsm"), fourCC("odsm"), fourCC("mp4s")}) {
        STSD stsd(type);
        EXPECT_EQ(stsd.getSize(), 32U);
        EXPECT_EQ(stsd.getSampleDescriptionData(0)->getSize(), 16U);
        EXPECT_EQ(stsd.getSampleDescriptionData(0)->getExtraData(), nullptr);
        EXPECT_EQ(take(stsd.serialize()), hex({"00000020 'stsd'", "00 000000", "00000001",
                                               "00000010 00000000", "000000000000 0001"}));
    }
}

TEST(EntryTable, UnknownMediaIsAnError) {
    try {
        STSD stsd(fourCC("abcd"));
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_TRUE(e.getMessage() == "Don't recognize media type abcd");
        EXPECT_TRUE(e.getFunction() == "Ketra::QT::STSD::STSD");
        EXPECT_TRUE(e.getFile() == "lib/qt/QTAtoms");
    }
}

TEST(EntryTable, WrongCountIsAnError) {
    STSD stsd(fourCC("vide"));
    stsd.setNumberOfEntries(2);
    try {
        take(stsd.serialize());
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_TRUE(e.getMessage() == "Wrong number of entries in STSD-table");
        EXPECT_TRUE(e.getFunction() == "Ketra::QT::STSD::serialize");
    }
}

TEST(EntryTable, ExtensionsFollowTheTypedDescription) {
    STSD stsd(fourCC("vihi"));
    QTFrame* kept = frame({9, 9});
    EXPECT_EQ(stsd.addExtension(0, kept), -1);
    EXPECT_EQ(stsd.addExtension(2, kept), -1);
    EXPECT_EQ(stsd.addExtension(1, nullptr), -1);
    delete kept; // not taken
    kept = frame({});
    EXPECT_EQ(stsd.addExtension(1, kept), -1);
    delete kept;
    EXPECT_EQ(stsd.getSize(), 40U);

    EXPECT_EQ(stsd.addExtension(1, frame(atom("tims", hex("0000 0258")))), 0);
    EXPECT_EQ(stsd.addExtension(1, frame(atom("abcd", {7}))), 0);
    EXPECT_EQ(stsd.getSize(), 40U + 12 + 9);
    STSDData* data = stsd.getSampleDescriptionData(0);
    EXPECT_EQ(data->getSize(), 24U + 21);
    EXPECT_EQ(data->getExtensionSize(), 21U);
    EXPECT_EQ(data->getExtensions().size(), 2U);
    data->setDataFormat(fourCC("rtp "));
    const Bytes want = hex({"0000003D 'stsd'", "00 000000", "00000001",         // table
                            "0000002D 'rtp ' 000000000000 0001",                // entry
                            "0001 0001 00000000",                               // typed description
                            "0000000C 'tims' 00000258", "00000009 'abcd' 07"}); // extensions
    EXPECT_EQ(take(stsd.serialize()), want);
    EXPECT_EQ(stsd.updateSize(), want.size()) << "sizes are not counted twice";
}

TEST(EntryTable, WholeTableReplacesTheEntries) {
    STSD stsd(fourCC("vide"));
    unsigned char* refused = block({1});
    EXPECT_EQ(stsd.setSampleDescription(0, refused), -1);
    std::free(refused); // not taken
    EXPECT_EQ(stsd.setSampleDescription(3, nullptr), -1);
    EXPECT_EQ(stsd.getSampleDescriptionSize(), 0U);
    EXPECT_EQ(stsd.getSampleDescripionData(), nullptr);
    EXPECT_EQ(stsd.setSampleDescription(3, block({1, 2, 3})), 0);
    EXPECT_EQ(stsd.setSampleDescription(2, block({4, 5})), 0);
    EXPECT_EQ(stsd.getSampleDescriptionSize(), 2U);
    EXPECT_EQ(stsd.updateSize(), 18U);
    EXPECT_EQ(take(stsd.serialize()), hex({"00000012 'stsd'", "00 000000", "00000001", "0405"}));
    const STSD copy(stsd);
    EXPECT_NE(copy.getSampleDescripionData(), stsd.getSampleDescripionData());
}

TEST(EntryTable, FlagsAreCutToFourBitsAByte) {
    STSD stsd;
    stsd.setVersion(1);
    stsd.setFlags(0x123456);
    EXPECT_EQ(take(stsd.serialize()), hex({"00000010 'stsd'", "01 020406", "00000000"}));
}

TEST(EntryTable, IteratorWalksTheEntries) {
    STSD stsd(fourCC("vihi"));
    auto* second = new STSDData;
    EXPECT_EQ(stsd.addSampleDescription(nullptr), -1);
    EXPECT_EQ(stsd.addSampleDescription(second), 0);
    EXPECT_EQ(stsd.getNumberOfEntries(), 2U);
    STSDData* first = stsd.getSampleDescriptionData(0);
    EXPECT_EQ(stsd.getCurrentSampleDescriptionData(), first);
    stsd.increaseIterator();
    EXPECT_EQ(stsd.getCurrentSampleDescriptionData(), second);
    stsd.increaseIterator();
    EXPECT_EQ(stsd.getCurrentSampleDescriptionData(), nullptr);
    stsd.resetTableIterator();
    EXPECT_EQ(stsd.getCurrentSampleDescriptionData(), first);
    stsd.setIterator(2); // counts from 1
    EXPECT_EQ(stsd.getCurrentSampleDescriptionData(), second);
    stsd.setIterator(0);
    EXPECT_EQ(stsd.getCurrentSampleDescriptionData(), first);
    EXPECT_EQ(stsd.setSampleDescriptionTable({second, nullptr}), 0); // the first one is deleted
    EXPECT_EQ(stsd.getNumberOfEntries(), 1U);
    EXPECT_EQ(stsd.getSampleDescriptionData(0), second);
}

TEST(EntryTable, CopyListsTheSameEntriesAndAddsItsOwn) {
    auto stsd = std::make_unique<STSD>(fourCC("vide"));
    STSD copy(*stsd);
    EXPECT_EQ(copy.getSampleDescriptionData(0), stsd->getSampleDescriptionData(0));
    copy.addSampleDescription(new STSDData);
    EXPECT_EQ(stsd->getNumberOfEntries(), 1U);
    EXPECT_EQ(copy.getNumberOfEntries(), 2U);
}

/// Counts its own deaths.
struct Mourned : QTAtom {
    explicit Mourned(int& deaths) : QTAtom(4, 0), deaths_(deaths) {}
    ~Mourned() override { ++deaths_; }
    int& deaths_;
};

TEST(EntryData, OwnsItsTypedDescription) {
    int deaths = 0;
    {
        STSDData data;
        EXPECT_EQ(data.getDataReferenceIndex(), 1);
        auto* description = new Mourned(deaths);
        data.setExtraData(description);
        data.setExtraData(description); // the one it holds
        EXPECT_EQ(deaths, 0);
        data.setExtraData(nullptr);
        EXPECT_EQ(deaths, 1);
        data.setExtraData(new Mourned(deaths));
        EXPECT_EQ(data.updateSize(), 20U);
    }
    EXPECT_EQ(deaths, 2);
}

TEST(EntryData, RefusesAnEmptyBody) {
    STSDData data(2, fourCC("abcd"), block({1, 2}), 3, 0);
    EXPECT_EQ(data.setData(0, nullptr), -1);
    EXPECT_EQ(data.setData(1, nullptr), -1);
    EXPECT_EQ(data.getSize(), 2U);
    EXPECT_EQ(data.setData(1, block({7})), 0);
    EXPECT_EQ(data.getData()[0], 7);
    EXPECT_EQ(data.getDataReferenceIndex(), 3);
    EXPECT_EQ(data.setDataReferenceIndex(4), 0);
    EXPECT_EQ(data.setReserved(5), 0);
    EXPECT_EQ(data.setType(6), 0);
    EXPECT_EQ(data.getDataFormat(), 6U);
    EXPECT_EQ(data.getReserved(), 5U);
    EXPECT_EQ(data.addExtension(nullptr), -1);
}

/// A description that needs more bytes than it says.
struct Boaster : QTAtom {
    Boaster() : QTAtom(2, 0) {}
    QTFrame* serialize() override { return frame({1, 2, 3, 4}); }
};

TEST(EntryData, TypedDescriptionGetsTheRoomItNeeds) {
    STSD stsd(fourCC("sdsm"));
    stsd.getSampleDescriptionData(0)->setExtraData(new Boaster);
    EXPECT_EQ(take(stsd.serialize()), hex({"00000024 'stsd'", "00 000000", "00000001", "00000014 00000000",
                                           "000000000000 0001", "01020304"}));
    stsd.getSampleDescriptionData(0)->setExtraData(new QTAtom(3, 0)); // says more than it writes
    EXPECT_EQ(take(stsd.serialize()), hex({"00000023 'stsd'", "00 000000", "00000001", "00000013 00000000",
                                           "000000000000 0001", "000000"}));
}

} // namespace
} // namespace test
