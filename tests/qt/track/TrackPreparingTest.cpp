// What every track settles when it is prepared, and what a caller changes in its headers.
#include "NewTrack.h"
#include "support/AtomFile.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

struct Edit {
    unsigned int duration;
    int mediaTime;
    float rate;
    bool operator==(const Edit&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Edit& e) {
    return os << e.duration << '/' << e.mediaTime << '/' << e.rate;
}

struct Times {
    double start, pts, dts, offset;
};

/// The edits of a track of 1200 units of 600 a second.
std::vector<Edit> editsOf(const Times& times) {
    const NewTrack track(fourCC("vide"));
    track->setMovieTimeScale(600);
    track->setDuration(2);
    track->setAtomHeaderDuration(1200);
    track->setStartTime(times.start);
    track->setFirstPTS(times.pts);
    track->setFirstDTS(times.dts);
    track->setStartOffset(times.offset);
    EXPECT_EQ(track->prepareForWriting(), 0);
    std::vector<Edit> edits;
    for (const ELSTData* edit : dynamic_cast<ELST&>(*track.at({"edts", "elst"})).getEditListTable()) {
        edits.push_back({edit->getDuration(), edit->getMediaTime(), edit->getMediaRate()});
    }
    return edits;
}

TEST(DefaultEdits, ShowTheWholeTrack) {
    EXPECT_EQ(editsOf({0, 0, 0, 0}), (std::vector<Edit>{{1200, 0, 1}}));
    EXPECT_EQ(editsOf({0, 0.1, 0, 0}), (std::vector<Edit>{{1200, 60, 1}})); // decoding comes first
    EXPECT_EQ(editsOf({0, 0.1, 0, 0.05}), (std::vector<Edit>{{30, -1, 1}, {1200, 30, 1}}));
    EXPECT_EQ(editsOf({2, 2, 2, 0}), (std::vector<Edit>{{1200, -1, 1}, {1200, 0, 1}})); // starts later
    EXPECT_EQ(editsOf({0, 0, 0, 5}), (std::vector<Edit>{{1200, 0, 1}}));
    constexpr double kUnset = std::numeric_limits<double>::max();
    EXPECT_EQ(editsOf({0, kUnset, kUnset, 0}), (std::vector<Edit>{{1200, 0, 1}})); // no samples
}

TEST(DefaultEdits, LeaveThoseOfTheCaller) {
    const NewTrack track(fourCC("vide"));
    EXPECT_EQ(track->addAtomEditListEntry(new ELSTData(5, 6, 1)), 0);
    EXPECT_EQ(track->addAtomEditListEntry(nullptr), -1);
    track->prepareForWriting();
    EXPECT_EQ(track->getAtomNumberOfEditListEntries(), 1U);
}

TEST(Preparing, PointsToItsOwnFile) {
    for (const QTMovieConstructionFlags flavour : {kMOV, kMP4}) {
        const NewTrack track(fourCC("vide"), flavour);
        track->prepareForWriting();
        const auto& references = dynamic_cast<DREF&>(*track.at({"mdia", "minf", "dinf", "dref"}));
        ASSERT_EQ(references.getNumberOfEntries(), 1U);
        EXPECT_EQ(references.getDataReferenceEntry(0)->getType(),
                  flavour == kMOV ? fourCC("alis") : fourCC("url "));
        EXPECT_EQ(references.getDataReferenceEntry(0)->getFlags(), 1U);
        track->prepareForWriting();
        EXPECT_EQ(track->getAtomNumberOfDataReferenceEntries(), 1U);
    }
}

TEST(Preparing, AddsHalfAByteToTheAverageBitRate) {
    const NewTrack track(fourCC("vide"));
    track->setTotalDataSize(1000);
    track->setDuration(3);
    track->prepareForWriting();
    EXPECT_EQ(track->getAvgBitRate(), 2670U); // (333.33 + 0.5) x 8
    track->setDuration(0);
    track->prepareForWriting();
    EXPECT_EQ(track->getAvgBitRate(), 0U);
}

TEST(Preparing, NamesTheDataHandlerOfQuickTime) {
    const NewTrack track(fourCC("vide"));
    track->prepareForWriting();
    auto& handler = dynamic_cast<HDLR&>(*track.at({"mdia", "minf", "hdlr"}));
    EXPECT_EQ(handler.getComponentType(), fourCC("dhlr"));
    EXPECT_EQ(handler.getComponentSubType(), fourCC("alis"));
    EXPECT_EQ(take(handler.serialize()),
              hex({"0000003A 'hdlr' 00000000 'dhlr' 'alis' 00000000 00000000 00000000",
                   "19 'Apple Alias Data Handler' 00"}));
    EXPECT_EQ(track->getAtomDataHandlerNameSize(), 25U);
}

TEST(Preparing, MarksTheTracksOfAHandheldMovie) {
    const NewTrack track(fourCC("vide"), kPSP);
    track->prepareForWriting();
    EXPECT_EQ(take(track.at({"uuid"})->serialize()),
              hex({"00000034 'uuid'", "55534d54 21d24fce bb88695c fac9c740",
                   "0000001c 4d544454 00010012 0000000a 55c40000 00000001 00000000"}));
}

TEST(HandlerName, IsCountedOrEndsInAZero) {
    HDLR handler(fourCC("vide"));
    EXPECT_EQ(handler.getSize(), 33U);
    EXPECT_EQ(handler.setComponentName("Apple Video Media Handler", 25, true), 0);
    EXPECT_EQ(handler.getSize(), 59U);
    EXPECT_TRUE(handler.getIsPascalString());
    EXPECT_EQ(take(handler.serialize()),
              hex({"0000003B 'hdlr' 00000000 00000000 'vide' 00000000 00000000 00000000",
                   "1A 'Apple Video Media Handler' 00"}));
    EXPECT_EQ(handler.setComponentName("abc", 3, false), 0);
    EXPECT_EQ(handler.getSize(), 36U); // 59 + 3 - 26
    EXPECT_EQ(take(handler.serialize()),
              hex("00000024 'hdlr' 00000000 00000000 'vide' 00000000 00000000 00000000 'abc' 00"));
    EXPECT_EQ(handler.setComponentName(nullptr, 3, false), -1);
    EXPECT_EQ(handler.setComponentName(nullptr, 0, false), 0);
    EXPECT_EQ(handler.getComponentNameSize(), 1U);
}

TEST(Enabling, KeepsOrTogglesOneBit) {
    const NewTrack track(fourCC("vide"));
    track->disableTrack();
    EXPECT_EQ(track->getAtomHeaderFlags(), 14U);
    track->disableTrack(); // a second time enables again
    EXPECT_EQ(track->getAtomHeaderFlags(), 15U);
    track->enableTrack(); // and keeps nothing else
    EXPECT_EQ(track->getAtomHeaderFlags(), 1U);
    track->disableTrack();
    track->enableTrack();
    EXPECT_EQ(track->getAtomHeaderFlags(), 0U);
}

TEST(References, GetAnAtomOfTheirOwnEachTime) {
    const NewTrack track(fourCC("vide"));
    EXPECT_EQ(track->setHintTrackReference(1), -1);
    EXPECT_EQ(track->addTrackReference(fourCC("sync"), 3), 0);
    EXPECT_EQ(track->addTrackReference(fourCC("sync"), 3), 0);
    EXPECT_EQ(track->addTrackReference(fourCC("tmcd"), 4), 0);
    EXPECT_EQ(track->addTrackReference(fourCC("chap"), 5), 0);
    const std::vector<QTAtom*> children = track.trak->getChildren();
    ASSERT_EQ(childTypes(track.trak.get()), "tkhdtaptedtsmdiatreftreftreftref");
    EXPECT_EQ(childTypes(children[4]), ""); // any other type is ignored
    EXPECT_EQ(childTypes(children[5]), "");
    EXPECT_EQ(childOf<TMCD>(children[6], fourCC("tmcd"))->getTrackID(), 4U);
    EXPECT_EQ(childOf<CHAP>(children[7], fourCC("chap"))->getTrackID(), 5U);
}

TEST(SwitchGroups, StandInAllUserData) {
    const NewTrack track(fourCC("vide"));
    EXPECT_EQ(track->setSwitchGroup(0x10002), 0);
    EXPECT_EQ(track->getSwitchGroup(), 2);
    const auto* first = childOf<UDTA>(track.trak.get(), fourCC("udta"));
    ASSERT_TRUE(first);
    auto* second = new UDTA;
    track.trak->addChild(second);
    EXPECT_EQ(track->addSwitchAttribute(fourCC("bitr")), 0);
    EXPECT_EQ(track->addSwitchAttribute(fourCC("lang")), 0);
    for (const QTAtom* place : {static_cast<const QTAtom*>(first), static_cast<const QTAtom*>(second)}) {
        ASSERT_EQ(childTypes(place), "tsel");
        const auto* selection = childOf<TSEL>(place, fourCC("tsel"));
        EXPECT_EQ(selection->getAttributeList(), (std::vector<unsigned int>{fourCC("bitr"), fourCC("lang")}));
        EXPECT_EQ(selection->getSwitchGroup(), place == first ? 0x10002U : 0U);
    }
}

TEST(TrackHeader, HasOneForm) {
    AtomFile file(hex("00000068 'tkhd' 01 000000") + repeat(0x11, 92));
    const auto header = file.parse<TKHD>();
    EXPECT_EQ(header->getVersion(), 1U);
    EXPECT_EQ(header->updateSize(), 92U);
    const Bytes bytes = take(header->serialize());
    EXPECT_EQ(bytes.size(), 92U);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 12), hex("0000005C 'tkhd' 01 000000"));
}

TEST(TrackHeader, ScalesTheFractionOfItsVolume) {
    TKHD header(1U);
    const auto volume = [&] {
        const Bytes bytes = take(header.serialize());
        return Bytes(bytes.begin() + 44, bytes.begin() + 46);
    };
    EXPECT_EQ(volume(), hex("0100"));
    header.setVolume(1.5F);
    EXPECT_EQ(volume(), hex("017F"));
    Bytes loud = take(header.serialize());
    loud[45] = 0xFF;
    AtomFile file(loud);
    EXPECT_EQ(file.parse<TKHD>()->getVolume(), 256.0F); // a fraction of all ones
}

TEST(TrackNumbers, ArePlainBigEndian) {
    unsigned char bytes[21] = {};
    unsigned char* cursor = bytes;
    EXPECT_EQ(QTTrack::putUInt8(&cursor, 0x12), 0);
    EXPECT_EQ(QTTrack::putUInt16(&cursor, 0x1234), 0);
    EXPECT_EQ(QTTrack::putUInt32(&cursor, 0x12345678), 0);
    EXPECT_EQ(QTTrack::putUInt48(&cursor, 0x123456789ABC), 0);
    EXPECT_EQ(QTTrack::putUInt64(&cursor, 0x123456789ABCDEF0), 0);
    EXPECT_EQ(cursor, bytes + 21);
    EXPECT_EQ(Bytes(bytes, bytes + 21), hex("12 1234 12345678 123456789ABC 123456789ABCDEF0"));
    cursor = bytes;
    EXPECT_EQ(QTTrack::getUInt8(&cursor), 0x12);
    EXPECT_EQ(QTTrack::getUInt16(&cursor), 0x1234);
    EXPECT_EQ(QTTrack::getUInt32(&cursor), 0x12345678U);
    EXPECT_EQ(QTTrack::getUInt48(&cursor), 0x123456789ABCU);
    EXPECT_EQ(QTTrack::getUInt64(&cursor), 0x123456789ABCDEF0U);
    EXPECT_EQ(QTTrack::switchEndian16(0x1234), 0x3412);
    EXPECT_EQ(QTTrack::switchEndian32(0x12345678), 0x78563412U);
    EXPECT_EQ(QTTrack::BE32(0x12345678), 0x78563412U);
}

} // namespace
} // namespace test
