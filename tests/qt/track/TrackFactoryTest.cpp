// Which class a parsed track becomes, what tree a new one gets.
#include "NewTrack.h"
#include "support/MovieBytes.h"
#include "support/TrackTree.h"

#include <base/CException.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

using TrackPtr = std::unique_ptr<QTTrack>;

const Bytes kNoEntries{};

/// The type of the track over the tree; 0 for none.
unsigned int typeOf(QTAtom* trak) {
    const TrackPtr track(QTTrack::createNewQTTrackFromTRAK(trak));
    return track ? track->getType() : 0;
}

unsigned int typeOf(const Bytes& mediaHeader) {
    const ParsedTree tree(trackBytes(mediaHeader, kNoEntries, 0));
    return typeOf(tree.trak());
}

TEST(ParsedTrack, HasTheClassOfItsMediaHeader) {
    EXPECT_EQ(typeOf(atom("vmhd", repeat(0, 12))), fourCC("vide"));
    EXPECT_EQ(typeOf(atom("smhd", repeat(0, 8))), fourCC("audi"));
    EXPECT_EQ(typeOf(atom("gmhd", atom("tmcd", {}))), fourCC("tmcd"));
    EXPECT_EQ(typeOf(atom("gmhd", atom("text", {}))), fourCC("text"));
    EXPECT_EQ(typeOf(atom("gmhd", {})), fourCC("vihi"));
    EXPECT_EQ(typeOf(atom("hmhd", repeat(0, 20))), fourCC("vihi"));
    EXPECT_EQ(typeOf(atom("nmhd", repeat(0, 4))), fourCC("vihi"));
    EXPECT_EQ(typeOf(atom("what", repeat(0, 4))), 0U);
    EXPECT_EQ(typeOf(Bytes()), 0U);
    // Of several the first of this order counts, not the first of the file.
    EXPECT_EQ(typeOf(atom("smhd", repeat(0, 8)) + atom("vmhd", repeat(0, 12))), fourCC("vide"));
}

TEST(ParsedTrack, NeedsFiveTables) {
    const ParsedTree tree(trackBytes(atom("vmhd", repeat(0, 12)), kNoEntries, 0));
    QTAtom* tables = tree.trak()
                         ->getAtomOfType(fourCC("mdia"))
                         ->getAtomOfType(fourCC("minf"))
                         ->getAtomOfType(fourCC("stbl"));
    ASSERT_EQ(tables->getChildren().size(), 5U);
    EXPECT_EQ(typeOf(tree.trak()), fourCC("vide"));
    const std::unique_ptr<QTAtom> removed(tables->getAtomOfType(fourCC("stts")));
    tables->removeAtomOfType(fourCC("stts"));
    EXPECT_EQ(typeOf(tree.trak()), 0U);
}

TEST(ParsedTrack, WithoutMediaInformationHasTheClassOfItsHandler) {
    const auto typeFor = [](const Bytes& handler) {
        const Bytes tkhd = atom("tkhd", repeat(0, 84));
        const Bytes mdhd = atom("mdhd", repeat(0, 24));
        const ParsedTree tree(atom("trak", tkhd + atom("mdia", mdhd + handler)));
        return typeOf(tree.trak());
    };
    const auto handler = [](const char* subtype) {
        return atom("hdlr", hex("00000000 'mhlr'") + hex(subtype) + repeat(0, 12));
    };
    EXPECT_EQ(typeFor(handler("'vide'")), fourCC("vide"));
    EXPECT_EQ(typeFor(handler("'soun'")), fourCC("audi"));
    EXPECT_EQ(typeFor(handler("'text'")), fourCC("vihi"));
    EXPECT_EQ(typeFor({}), 0U);
}

TEST(ParsedTrack, IsATrackAtomWithMedia) {
    EXPECT_EQ(QTTrack::createNewQTTrackFromTRAK(nullptr), nullptr);
    UDTA other;
    EXPECT_EQ(typeOf(&other), 0U);
    const ParsedTree empty(atom("trak", atom("tkhd", repeat(0, 84))));
    EXPECT_EQ(typeOf(empty.trak()), 0U);
}

TEST(ParsedTrack, BeginsWhereItsFirstEditDoes) {
    TrackSpec spec;
    spec.stts = {{4, 250}};
    spec.sizes = {1, 1, 1, 2};
    spec.chunks = {4};
    spec.edits = {{300, 500}};
    const MovieFile edited(spec);
    ASSERT_TRUE(edited);
    EXPECT_EQ(edited.track()->getStartTime(), 0.5);
    EXPECT_EQ(edited.track()->getEndTime(), 1.5);
    EXPECT_EQ(edited.track()->getFrameRate(), 4.0);
    spec.edits = {{300, 0xFFFFFFFF}, {600, 0}}; // begins with nothing
    const MovieFile late(spec);
    ASSERT_TRUE(late);
    EXPECT_EQ(late.track()->getStartTime(), 0.0);
    EXPECT_EQ(late.track()->getEndTime(), 1.0);
}

struct Tree {
    const char* type;
    QTMovieConstructionFlags flavour;
    const char *trak, *minf, *header; // children of "trak", of "minf", of its media header
};

TEST(CreatedTrack, HasTheWholeTreeOfItsMedium) {
    for (const Tree& t : {
             Tree{"vide", kMOV, "tkhdtaptedtsmdia", "vmhddinfhdlrstbl", ""},
             Tree{"vide", kMP4, "tkhdedtsmdia", "vmhddinfstbl", ""},
             Tree{"audi", kMOV, "tkhdedtsmdia", "smhddinfhdlrstbl", ""},
             Tree{"audi", k3GP, "tkhdedtsmdia", "smhddinfstbl", ""},
             Tree{"text", kMOV, "tkhdedtsmdia", "gmhddinfhdlrstbl", "gmintext"},
             Tree{"text", kMP4, "tkhdedtsmdia", "hmhddinfstbl", ""},
             Tree{"tmcd", kMOV, "tkhdmdia", "gmhddinfhdlrstbl", "tcmi"},
             Tree{"tmcd", kM4V, "tkhdmdia", "hmhddinfstbl", ""},
             Tree{"vihi", kMOV, "tkhdedtstrefudtamdia", "gmhddinfhdlrstbl", "gmin"},
             Tree{"auhi", kMP4, "tkhdedtstrefudtamdia", "hmhddinfstbl", ""},
             Tree{"odsm", kMP4, "tkhdtrefmdia", "nmhddinfstbl", ""},
             Tree{"sdsm", kMP4, "tkhdtrefmdia", "nmhddinfstbl", ""},
         }) {
        SCOPED_TRACE(std::string(t.type) + " " + code(t.flavour));
        const Bytes type = text(t.type);
        const unsigned int medium =
            static_cast<unsigned int>(type[0] << 24 | type[1] << 16 | type[2] << 8 | type[3]);
        const NewTrack track(medium, t.flavour);
        EXPECT_EQ(childTypes(track.trak.get()), t.trak);
        EXPECT_EQ(childTypes(track.at({"mdia"})), "mdhdhdlrminf");
        EXPECT_EQ(childTypes(track.at({"mdia", "minf"})), t.minf);
        EXPECT_EQ(childTypes(track.at({"mdia", "minf"})->getChildren()[0]), t.header);
        EXPECT_EQ(childTypes(track.at({"mdia", "minf", "dinf"})), "dref");
        EXPECT_EQ(childTypes(track.at({"mdia", "minf", "stbl"})), "stsdsttscttsstssstpssdtpstscstszstco");
        EXPECT_EQ(track->getID(), 3U);
        EXPECT_EQ(dynamic_cast<TKHD&>(*track.at({"tkhd"})).getTrackID(), 3U);
        EXPECT_EQ(track->getAtomHeaderFlags(), 15U);
        EXPECT_FALSE(track->getIsClosed());
    }
}

TEST(CreatedTrack, OfAHintHasItsNameAndPlaces) {
    const NewTrack video(fourCC("vihi"));
    const auto* place = childOf<UDTA>(video.trak.get(), fourCC("udta"));
    ASSERT_TRUE(place);
    EXPECT_EQ(childTypes(place), "hntihinf");
    ASSERT_TRUE(place->getDataAtom(fourCC("name")));
    EXPECT_EQ(place->getDataAtom(fourCC("name"))->getSize(), 26U);
    EXPECT_EQ(dataOf(place->getDataAtom(fourCC("name"))), hex("'Hinted Video Track'"));
    EXPECT_EQ(childTypes(video.at({"tref"})), "hint");
    EXPECT_TRUE(video->getIsHintTrack());
    EXPECT_FALSE(video->getIsMediaTrack());
    EXPECT_EQ(video->getMediaType(), fourCC("hint"));
    const NewTrack audio(fourCC("auhi"));
    EXPECT_EQ(dataOf(childOf<UDTA>(audio.trak.get(), fourCC("udta"))->getDataAtom(fourCC("name"))),
              hex("'Hinted Audio Track'"));
    EXPECT_EQ(audio->setHintTrackReference(9), 0);
    EXPECT_EQ(dynamic_cast<HINT&>(*audio.at({"tref", "hint"})).getTrackID(), 9U);
}

TEST(CreatedTrack, OfSoundHasTheHandlerOfSound) {
    const NewTrack track(fourCC("audi"));
    EXPECT_EQ(dynamic_cast<HDLR&>(*track.at({"mdia", "hdlr"})).getComponentSubType(), fourCC("soun"));
    EXPECT_EQ(dynamic_cast<HDLR&>(*track.at({"mdia", "minf", "hdlr"})).getComponentSubType(), fourCC("soun"));
    EXPECT_TRUE(track->getIsMediaTrack());
}

TEST(CreatedTrack, OfAnUnknownMediumIsAnError) {
    try {
        QTTrack::createNewQTTrackFromType(1, fourCC("abcd"), kMOV);
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(), "Unknown media type: abcd");
    }
}

TEST(CachedAtoms, AreFoundAnewEachTime) {
    const NewTrack track(fourCC("vide"));
    EXPECT_EQ(track->initAtoms(), 0);
    const std::unique_ptr<QTAtom> media(track.at({"mdia"}));
    track.trak->removeAtomOfType(fourCC("mdia"));
    EXPECT_EQ(track->initAtoms(), -1);
    EXPECT_EQ(track->setAtomMediaTimeScale(5), -1);
    EXPECT_EQ(track->getAtomMediaTimeScale(), 0U);
    EXPECT_EQ(track->setAtomHeaderDuration(5), 0); // stands above
    track->setTrak(nullptr);
    EXPECT_EQ(track->initAtoms(), -1);
    EXPECT_EQ(track->setAtomHeaderDuration(5), -1);
    EXPECT_EQ(track->enableTrack(), -1);
    EXPECT_EQ(track->disableTrack(), -1);
    EXPECT_EQ(track->addTrackReference(fourCC("tmcd"), 1), -1);
    EXPECT_EQ(track->setHintTrackReference(1), -1);
    EXPECT_EQ(track->setSwitchGroup(1), -1);
    EXPECT_EQ(track->addSwitchAttribute(1), -1);
    EXPECT_EQ(track->addDBABitrate(1), -1);
    EXPECT_EQ(track->beginChunk(), nullptr);
    EXPECT_EQ(track->createChunk(), -1);
}

} // namespace
} // namespace test
