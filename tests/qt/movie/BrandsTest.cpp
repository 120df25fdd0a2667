#include "qt/movie/MovieTree.h"

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

/// Major brand, minor version and compatible brands as text.
std::string brandsOf(const MoviePtr& movie) {
    const auto* ftyp = childOf<FTYP>(movie->getRoot(), fourCC("ftyp"));
    if (!ftyp) return "none";
    std::string text = code(ftyp->getMajorBrand()) + ' ' + std::to_string(ftyp->getMinorVersion());
    for (const unsigned int brand : ftyp->getCompatibleBrands()) {
        text += ' ' + code(brand);
    }
    return text;
}

std::string preparedBrands(const MoviePtr& movie) {
    EXPECT_EQ(movie->prepareForWriting(), 0);
    return brandsOf(movie);
}

void addTracks(const MoviePtr& movie, QTMovieConstructionFlags flavour, unsigned int media,
               unsigned int hints) {
    for (unsigned int i = 0; i < media; ++i) {
        movie->beginTrack(fourCC("vide"), flavour)->setDataFormat(fourCC("mp4v"));
    }
    for (unsigned int i = 0; i < hints; ++i) {
        movie->beginTrack(fourCC("vihi"), flavour);
    }
}

TEST(Brands, OfEveryFlavour) {
    EXPECT_EQ(preparedBrands(begin(kMP4)), "mp42 1 isom mp41 avc1");
    EXPECT_EQ(preparedBrands(begin(kM4A)), "M4A  1 M4A  isom mp42");
    EXPECT_EQ(preparedBrands(begin(kM4V)), "M4V  1 M4V  M4A  mp42 isom");
    EXPECT_EQ(preparedBrands(begin(kAMC)), "isom 0 mp41");
    EXPECT_EQ(preparedBrands(begin(k3G2)), "3g2a 65536 3g2a 3gp4 3gp5 isom mp42");
    EXPECT_EQ(preparedBrands(begin(kPSP)), "MSNV 16777260 MSNV isom mp42");
    EXPECT_EQ(preparedBrands(begin(kMOV)), "none");
}

TEST(Brands, OfQuickTimeOnRequest) {
    EXPECT_EQ(preparedBrands(begin(kMOV, false, true)), "qt   537199360 qt  "); // 0x20050300
    const MoviePtr withdrawn = begin(kMOV, false, true);
    withdrawn->useFtypForMov(false);
    EXPECT_EQ(preparedBrands(withdrawn), std::string(4, '\0') + " 0");
    const MoviePtr late = begin(kMOV);
    late->useFtypForMov(true); // there is no atom for it
    EXPECT_EQ(preparedBrands(late), "none");
}

TEST(Brands, Of3GPPByReleaseTracksAndHints) {
    const MoviePtr release5 = begin(k3GP);
    release5->set3gpVersion(5);
    EXPECT_EQ(release5->get3gpVersion(), 5);
    EXPECT_EQ(preparedBrands(release5), "3gp5 4096 3gp5 3gp4 isom");

    struct Case {
        unsigned int media, hints;
        const char* brands;
    };
    for (const Case& c : {Case{2, 0, "3gr6 0 3gr6 3gp6 3gg6 3gp4 3gp5 isom"},
                          {3, 0, "3gr6 0 3gr6 3gg6 3gp4 3gp5 isom"},
                          {2, 2, "3gs6 0 3gs6 3gr6 3gp6 3gg6 3gp4 3gp5 isom"},
                          {3, 2, "3gs6 0 3gs6 3gr6 3gp6 3gg6 3gp4 3gp5 isom"}, // 5 / 2 = 2
                          {3, 3, "3gs6 0 3gs6 3gr6 3gg6 3gp4 3gp5 isom"}}) {
        const MoviePtr movie = begin(k3GP);
        addTracks(movie, k3GP, c.media, c.hints);
        EXPECT_EQ(preparedBrands(movie), c.brands) << c.media << " + " << c.hints;
    }
    const MoviePtr release7 = begin(k3GP);
    release7->set3gpVersion(7); // any other release is taken as the sixth
    EXPECT_EQ(preparedBrands(release7), "3gr6 0 3gr6 3gp6 3gg6 3gp4 3gp5 isom");
}

TEST(Brands, StandBehindThoseOfTheCaller) {
    const MoviePtr movie = begin(kMP4);
    EXPECT_EQ(movie->setFtypMajorBrand(fourCC("abcd")), 0);
    EXPECT_EQ(movie->setFtypMinorVersion(9), 0);
    EXPECT_EQ(movie->addCompatibleBrand(fourCC("mine")), 0);
    EXPECT_EQ(brandsOf(movie), "abcd 9 mine");
    EXPECT_EQ(preparedBrands(movie), "mp42 1 mine isom mp41 avc1");
    EXPECT_EQ(preparedBrands(movie), "mp42 1 mine isom mp41 avc1 isom mp41 avc1");
}

TEST(Brands, NeedAFileType) {
    const MoviePtr movie = begin(kMOV);
    EXPECT_EQ(movie->setFtypMajorBrand(1), -1);
    EXPECT_EQ(movie->setFtypMinorVersion(1), -1);
    EXPECT_EQ(movie->addCompatibleBrand(1), -1);
}

} // namespace
} // namespace test
