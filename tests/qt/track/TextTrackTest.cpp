#include "support/TrackTree.h"

#include <base/CException.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

const Bytes kHeader = atom("gmhd", atom("text", repeat(0, 36)));

/// A text description as files have it, 44 bytes and the name.
Bytes textBody(const char* displayFlags, const char* name) {
    return hex(displayFlags) +
           hex({"00000002",            // justification
                "0001 0002 0003",      // background
                "000A 000B 000C 000D", // box: top, left, bottom, right
                "0102030405060708",    // reserved
                "0004 0005",           // font number, face
                "06 0007",             // reserved
                "1000 2000 3000"}) +   // foreground
           hex(name);
}

TEST(TextTrack, HasItsDefaults) {
    QTTextTrack track;
    EXPECT_EQ(track.getType(), fourCC("text"));
    EXPECT_EQ(track.getMediaType(), fourCC("text"));
    EXPECT_EQ(track.getMovieType(), kMOV);
    EXPECT_EQ(track.getDisplayFlags(), 0U);
    EXPECT_EQ(track.getTextJustification(), 1U);
    EXPECT_EQ(track.getBackgroundColorR(), 0U);
    EXPECT_EQ(track.getForegroundColorG(), 0xFFFFU);
    EXPECT_EQ(track.getReserved3(), 12U);
    EXPECT_EQ(track.getTextName(), nullptr);
    EXPECT_EQ(track.getTextNameLength(), 0U);
    EXPECT_FALSE(track.isChapterTrack());
}

TEST(TextTrack, ReadsItsDescription) {
    const ParsedTree tree(trackBytes(kHeader, sampleEntry("text", textBody("00000008", "03 'abc'"))));
    QTTextTrack track(tree.trak());
    EXPECT_EQ(track.getID(), 7U);
    EXPECT_EQ(track.getDuration(), 2.0);
    EXPECT_EQ(track.getWidth(), 320U);
    EXPECT_EQ(track.getHeight(), 240U);
    EXPECT_EQ(track.getDisplayFlags(), 8U);
    EXPECT_EQ(track.getTextJustification(), 2U);
    EXPECT_EQ(track.getBackgroundColorR(), 1U);
    EXPECT_EQ(track.getBackgroundColorG(), 2U);
    EXPECT_EQ(track.getBackgroundColorB(), 3U);
    EXPECT_EQ(track.getDefaultTextBoxTop(), 10U); // the four words in this order
    EXPECT_EQ(track.getDefaultTextBoxBottom(), 11U);
    EXPECT_EQ(track.getDefaultTextBoxLeft(), 12U);
    EXPECT_EQ(track.getDefaultTextBoxRight(), 13U);
    EXPECT_EQ(track.getReserved(), 0x0102030405060708U);
    EXPECT_EQ(track.getFontNumber(), 4U);
    EXPECT_EQ(track.getFontFace(), 5U);
    EXPECT_EQ(track.getReserved2(), 6U);
    EXPECT_EQ(track.getReserved3(), 7U);
    EXPECT_EQ(track.getForegroundColorR(), 0x1000U);
    EXPECT_EQ(track.getForegroundColorG(), 0x2000U);
    EXPECT_EQ(track.getForegroundColorB(), 0x3000U);
    ASSERT_EQ(track.getTextNameLength(), 3U);
    EXPECT_EQ(track.getTextName()[2], 'c');
    EXPECT_FALSE(track.isChapterTrack());
}

TEST(TextTrack, KeepsTheLastDescription) {
    const ParsedTree tree(trackBytes(kHeader,
                                     sampleEntry("text", textBody("00000001", "01 'a'")) +
                                         sampleEntry("text", textBody("00000002", "02 'bc'")),
                                     2));
    const QTTextTrack track(tree.trak());
    EXPECT_EQ(track.getDisplayFlags(), 2U);
    EXPECT_EQ(track.getTextNameLength(), 2U);
}

TEST(TextTrack, CutsANameThatIsNotThere) {
    const ParsedTree tree(trackBytes(kHeader, sampleEntry("text", textBody("00000001", "FF 'ab'"))));
    EXPECT_EQ(QTTextTrack(tree.trak()).getTextNameLength(), 2U);
}

TEST(TextTrack, ReadsADescriptionOfAnyLength) {
    const Bytes whole = textBody("00000001", "02 'ab'");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const ParsedTree tree(trackBytes(kHeader, sampleEntry("text", part)));
        const QTTextTrack track(tree.trak());
        EXPECT_EQ(track.getTextNameLength(), length == 45 ? 1U : 0U);
        if (length < 43) {
            EXPECT_LT(track.getForegroundColorB(), 0x3001U);
        }
    }
}

TEST(TextTrack, RefusesATableWithTheWrongCount) {
    const ParsedTree tree(trackBytes(kHeader, sampleEntry("text", textBody("00000001", "00")), 3));
    try {
        const QTTextTrack track(tree.trak());
        FAIL() << "no exception";
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(),
                     "Not a correct number of descriptions in the descriptionsvector 1 should be 3");
        EXPECT_EQ(e.getFunction(), "Ketra::QT::QTTextTrack::parseStsd");
    }
}

TEST(TextTrack, NeedsItsHeaders) {
    const auto message = [](const Bytes& bytes) -> std::string {
        const ParsedTree tree(bytes);
        try {
            const QTTextTrack track(tree.trak());
        } catch (const Ketra::CException& e) {
            EXPECT_EQ(e.getFunction(), "QT::QTTextTrack::QTTextTrack");
            return e.what();
        }
        return "";
    };
    EXPECT_EQ(message(atom("trak", atom("mdia", {}))), "No tkhd-atom found in trak-atom");
    EXPECT_EQ(message(atom("trak", atom("tkhd", repeat(0, 84)))), "No mdia-atom found in trak-atom");
}

TEST(TextTrack, ReadsNothingFromAnotherAtom) {
    QTTextTrack track;
    QTAtom plain(8, fourCC("stsd"));
    STTS other;
    EXPECT_EQ(track.parseStsd(nullptr), -1);
    EXPECT_EQ(track.parseStsd(&plain), -1);
    EXPECT_EQ(track.parseStsd(&other), -1);
    STSD table;
    EXPECT_EQ(track.parseStsd(&table), 0);
    EXPECT_EQ(track.getReserved3(), 12U);
}

TEST(TextTrack, KnowsChaptersByTheirMark) {
    const Bytes entry = sampleEntry("text", textBody("00000001", "00"));
    const ParsedTree marked(trackBytes(kHeader, entry, 1, atom("udta", atom("chap", hex("63686170 00")))));
    EXPECT_TRUE(QTTextTrack(marked.trak()).isChapterTrack());
    const ParsedTree named(trackBytes(kHeader, entry, 1, atom("udta", atom("name", hex("'chap'")))));
    EXPECT_FALSE(QTTextTrack(named.trak()).isChapterTrack());
}

TEST(TextTrack, WritesItsDescription) {
    WritingTree tree(fourCC("text"));
    QTTextTrack track;
    tree.give(track);
    track.setWidth(640);
    track.setHeight(48);
    track.setAtomMediaTimeScale(600);
    track.setDuration(3.3333);
    EXPECT_EQ(track.prepareForWriting(), 0);
    EXPECT_EQ(tree.header->getWidth(), 640.0F);
    EXPECT_EQ(tree.header->getHeight(), 48.0F);
    EXPECT_EQ(tree.mediaHeader->getDuration(), 2000U); // 1999.98 and a half
    EXPECT_EQ(tree.handler->getComponentType(), fourCC("mhlr"));
    EXPECT_EQ(tree.handler->getComponentSubType(), fourCC("text"));
    EXPECT_EQ(tree.handler->getComponentManufacturer(), fourCC("ketr"));
    EXPECT_STREQ(reinterpret_cast<char*>(tree.handler->getComponentName()), "Apple Text Media Handler");
    EXPECT_EQ(tree.header->getFlags(), 15U);
    EXPECT_EQ(tree.entryBytes(), hex({"0000003B 'text' 000000000000 0001", // 16 and 43 bytes
                                      "00000000 00000001",                 // flags, justification
                                      "0000 0000 0000",                    // black
                                      "0000 0000 0000 0000",               // text box
                                      "0000000000000000",                  // reserved
                                      "0000 0000",                         // font
                                      "000C",                              // reserved
                                      "FFFF FFFF FFFF",                    // white
                                      "00"}));
}

TEST(TextTrack, CopiesEveryFieldIntoTheDescription) {
    WritingTree tree(fourCC("text"));
    QTTextTrack track;
    tree.give(track);
    track.setDisplayFlags(1);
    track.setTextJustification(2);
    track.setBackgroundColorR(3);
    track.setBackgroundColorG(4);
    track.setBackgroundColorB(5);
    track.setDefaultTextBoxTop(6);
    track.setDefaultTextBoxBottom(7);
    track.setDefaultTextBoxLeft(8);
    track.setDefaultTextBoxRight(9);
    track.setReserved(10);
    track.setFontNumber(11);
    track.setFontFace(12);
    track.setReserved2(13);
    track.setReserved3(14);
    track.setForegroundColorR(15);
    track.setForegroundColorG(16);
    track.setForegroundColorB(17);
    unsigned char name[] = {'x', 'y'};
    EXPECT_EQ(track.setTextName(2, nullptr), -1);
    EXPECT_EQ(track.setTextName(2, name), 0);
    track.prepareForWriting();
    EXPECT_EQ(tree.entryBytes(), hex({"0000003D 'text' 000000000000 0001", "00000001 00000002",
                                      "0003 0004 0005", "0006 0008 0007 0009", // top, left, bottom, right
                                      "000000000000000A", "000B 000C", "0D0E", // both reserved ones
                                      "000F 0010 0011", "02 'xy'"}));
}

TEST(TextTrack, WritesChapters) {
    WritingTree tree(fourCC("text"));
    QTTextTrack track;
    tree.give(track);
    track.setWidth(320);
    track.setHeight(240);
    track.setForegroundColorR(9);
    track.isChapterTrack(true);
    track.prepareForWriting();
    const auto& text = tree.description<STSDText>();
    EXPECT_EQ(text.getDefaultTextBoxTop(), 0U);
    EXPECT_EQ(text.getDefaultTextBoxBottom(), 240U);
    EXPECT_EQ(text.getDefaultTextBoxLeft(), 0U);
    EXPECT_EQ(text.getDefaultTextBoxRight(), 320U);
    EXPECT_EQ(tree.entryBytes(),
              hex({"0000003B 'text' 000000000000 0001", "00000004 00000001", "FFFF FFFF FFFF",
                   "0000 0000 00F0 0140", "0000000000000000", "0000 0002", "0000", "0000 0000 0000", "00"}));
    EXPECT_EQ(tree.header->getFlags(), 14U); // disabled
    auto* userData = dynamic_cast<UDTA*>(tree.trak->getAtomOfType(fourCC("udta")));
    ASSERT_NE(userData, nullptr);
    const std::vector<QTDataAtom*> marks = userData->getDataAtoms();
    ASSERT_EQ(marks.size(), 3U);
    EXPECT_EQ(marks[0]->getType(), fourCC("name"));
    EXPECT_EQ(marks[0]->getSize(), 21U);
    EXPECT_EQ(Bytes(marks[0]->getData(), marks[0]->getData() + 13), hex("'Chapter' 20 'Track'"));
    for (const std::size_t i : {1U, 2U}) {
        EXPECT_EQ(marks[i]->getType(), i == 1 ? fourCC("chap") : fourCC("kgit"));
        EXPECT_EQ(marks[i]->getSize(), 13U);
        EXPECT_EQ(Bytes(marks[i]->getData(), marks[i]->getData() + 5), hex("'chap' 00"));
    }

    track.prepareForWriting();
    EXPECT_EQ(tree.header->getFlags(), 15U); // enabled again
    EXPECT_EQ(userData->getDataAtoms().size(), 6U);
    EXPECT_EQ(tree.trak->getAtomOfType(fourCC("udta")), userData);
}

TEST(TextTrack, IsPreparedWithoutATree) {
    QTTextTrack track;
    track.isChapterTrack(true);
    EXPECT_EQ(track.prepareForWriting(), 0);
}

TEST(TextTrack, CopiesItsName) {
    QTTextTrack track;
    unsigned char name[] = {'x'};
    track.setTextName(1, name);
    QTTextTrack copy(track);
    EXPECT_EQ(copy.getTextNameLength(), 1U);
    EXPECT_NE(copy.getTextName(), track.getTextName());
    EXPECT_EQ(track.setTextName(0, nullptr), 0);
    copy = track;
    EXPECT_EQ(copy.getTextName(), nullptr);
}

TEST(TextTrack, IsMadeByTheFactories) {
    const std::unique_ptr<QTTrack> made(QTTrack::createNewQTTrackFromType(5, fourCC("text"), kMOV));
    const std::unique_ptr<QTAtom> trak(made->getTrak());
    auto& chapters = dynamic_cast<QTTextTrack&>(*made);
    chapters.isChapterTrack(true);
    chapters.prepareForWriting();
    const std::unique_ptr<QTTrack> again(QTTrack::createNewQTTrackFromTRAK(trak.get()));
    EXPECT_TRUE(dynamic_cast<QTTextTrack&>(*again).isChapterTrack()); // by the mark written just now

    const ParsedTree tree(trackBytes(kHeader, sampleEntry("text", textBody("00000001", "00"))));
    const std::unique_ptr<QTTrack> read(QTTrack::createNewQTTrackFromTRAK(tree.trak()));
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->getType(), fourCC("text"));
}

} // namespace
} // namespace test
