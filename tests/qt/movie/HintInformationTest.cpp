#include "qt/movie/MovieTree.h"
#include "support/AtomFile.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

HNTI* hintsOf(const MoviePtr& movie) {
    return childOf<HNTI>(childOf<UDTA>(moovOf(movie), fourCC("udta")), fourCC("hnti"));
}

Bytes text(const char* characters) {
    return Bytes(characters, characters + std::char_traits<char>::length(characters));
}

TEST(MovieHints, HoldTheBitRate) {
    const MoviePtr movie = begin(kMOV, true);
    movie->setBitRate(64000);
    EXPECT_EQ(movie->addBitRateToHint(), 0);
    ASSERT_TRUE(hintsOf(movie));
    const QTDataAtom* entry = hintsOf(movie)->getDataAtom(0);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->getType(), fourCC("rtp "));
    EXPECT_EQ(entry->getSize(), 24U);
    EXPECT_EQ(dataOf(entry), text("sdp b=AS:64000\r\n"));
    EXPECT_EQ(hintsOf(movie)->getSize(), 32U);
    movie->updateAtomSizes();
    EXPECT_EQ(take(hintsOf(movie)->serialize()),
              hex("00000020 'hnti' 00000018 'rtp ' 'sdp b=AS:64000' 0D0A"));
}

TEST(MovieHints, PrintALargeRateSigned) {
    const MoviePtr movie = begin(kMOV, true);
    movie->setBitRate(0x80000000);
    EXPECT_EQ(movie->addBitRateToHint(), 0);
    EXPECT_EQ(dataOf(hintsOf(movie)->getDataAtom(0)), text("sdp b=AS:-2147483648\r\n"));
}

TEST(MovieHints, AreAddedWhenTheMovieIsPrepared) {
    const MoviePtr hinted = begin(kMOV, true);
    hinted->prepareForWriting(); // a rate of 0 says nothing
    EXPECT_TRUE(hintsOf(hinted)->getDataAtoms().empty());
    hinted->setBitRate(1);
    hinted->prepareForWriting();
    EXPECT_EQ(hintsOf(hinted)->getDataAtoms().size(), 1U);

    const MoviePtr plain = begin(kMOV);
    plain->setBitRate(1);
    EXPECT_EQ(plain->addBitRateToHint(), -1); // no user data
    EXPECT_EQ(plain->prepareForWriting(), 0);
    EXPECT_EQ(childTypes(moovOf(plain)), "mvhd");
}

TEST(MovieHints, MakeTheirPlace) {
    const MoviePtr movie = begin(kMOV);
    EXPECT_EQ(movie->addInfoToHint(nullptr), -1);
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhd");
    unsigned char bytes[] = {1, 2};
    EXPECT_EQ(movie->addInfoToHint(new QTDataAtom(10, fourCC("abcd"), bytes)), 0);
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhdudta");
    ASSERT_TRUE(hintsOf(movie));
    EXPECT_EQ(movie->addInfoToHint(new QTDataAtom(8, fourCC("efgh"), nullptr)), 0);
    EXPECT_EQ(hintsOf(movie)->getDataAtoms().size(), 2U);
    EXPECT_EQ(hintsOf(movie)->getSize(), 26U);
    EXPECT_EQ(movie->addBitRateToHint(), 0); // now there is user data
}

TEST(Transcoding, IsForbiddenByAnEntry) {
    const MoviePtr movie = begin(kMOV);
    EXPECT_EQ(movie->setAllowTranscoding(true), 0);
    EXPECT_EQ(childTypes(moovOf(movie)), "mvhd"); // nothing to say
    EXPECT_EQ(movie->setAllowTranscoding(false), 0);
    auto* udta = childOf<UDTA>(moovOf(movie), fourCC("udta"));
    ASSERT_TRUE(udta);
    const QTDataAtom* entry = udta->getDataAtom(fourCC("nsav"));
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->getSize(), 12U);
    EXPECT_EQ(dataOf(entry), hex("00000001"));
    EXPECT_TRUE(movie->getAllowTranscoding()); // an entry is no child until the file is read
    EXPECT_EQ(movie->setAllowTranscoding(false), 0);
    EXPECT_EQ(udta->getDataAtoms().size(), 2U);
}

TEST(Transcoding, IsReadFromTheFile) {
    for (const unsigned char value : Bytes{0, 1}) {
        const MoviePtr movie = begin(kMOV);
        AtomFile file(atom("nsav", {0, 0, 0, value}));
        std::unique_ptr<NSAV> marker = file.parse<NSAV>();
        auto udta = std::make_unique<UDTA>();
        ASSERT_EQ(udta->addChild(marker.release()), 0);
        ASSERT_EQ(movie->addMoovChild(udta.release()), 0);
        EXPECT_EQ(movie->getAllowTranscoding(), value == 0);
        EXPECT_EQ(movie->setAllowTranscoding(true), 0) << "the user data is not looked up again";
        movie->initAtoms();
        EXPECT_EQ(movie->setAllowTranscoding(true), -1);
        EXPECT_EQ(movie->setAllowTranscoding(false), -1);
    }
}

} // namespace
} // namespace test
