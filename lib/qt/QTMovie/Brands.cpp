// The file type of a movie: which readers it is made for.
#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>

#include <algorithm>
#include <iterator>

namespace Ketra::QT {

namespace {

enum class When { kAlways, kRelease5, kHinted, kWithFileType };

struct Brands {
    QTMovieConstructionFlags flavour;
    When when;
    unsigned int major;
    unsigned int minor;
    unsigned int compatible[7]; // as many as are not 0
};

constexpr unsigned int kBasic3GP = fourCC("3gp6"); // only for movies with few tracks
constexpr unsigned int kFewTracks = 3;

// The first row that applies counts.
constexpr Brands kBrands[] = {
    {kMP4, When::kAlways, fourCC("mp42"), 1, {fourCC("isom"), fourCC("mp41"), fourCC("avc1")}},
    {kM4A, When::kAlways, fourCC("M4A "), 1, {fourCC("M4A "), fourCC("isom"), fourCC("mp42")}},
    {kM4V,
     When::kAlways,
     fourCC("M4V "),
     1,
     {fourCC("M4V "), fourCC("M4A "), fourCC("mp42"), fourCC("isom")}},
    {kAMC, When::kAlways, fourCC("isom"), 0, {fourCC("mp41")}},
    {k3GP, When::kRelease5, fourCC("3gp5"), 4096, {fourCC("3gp5"), fourCC("3gp4"), fourCC("isom")}},
    {k3GP,
     When::kHinted,
     fourCC("3gs6"),
     0,
     {fourCC("3gs6"), fourCC("3gr6"), kBasic3GP, fourCC("3gg6"), fourCC("3gp4"), fourCC("3gp5"),
      fourCC("isom")}},
    {k3GP,
     When::kAlways,
     fourCC("3gr6"),
     0,
     {fourCC("3gr6"), kBasic3GP, fourCC("3gg6"), fourCC("3gp4"), fourCC("3gp5"), fourCC("isom")}},
    {k3G2,
     When::kAlways,
     fourCC("3g2a"),
     65536,
     {fourCC("3g2a"), fourCC("3gp4"), fourCC("3gp5"), fourCC("isom"), fourCC("mp42")}},
    {kPSP, When::kAlways, fourCC("MSNV"), 0x0100002C, {fourCC("MSNV"), fourCC("isom"), fourCC("mp42")}},
    {kMOV, When::kWithFileType, fourCC("qt  "), 0x20050300, {fourCC("qt  ")}},
};

} // namespace

void QTMovie::settleBrands() {
    const auto applies = [this](const Brands& row) {
        if (row.flavour != flags_) return false;
        if (row.when == When::kRelease5) return version3gp_ == 5;
        if (row.when == When::kHinted) return hasHintTracks_;
        return row.when == When::kAlways || useFtypForMov_;
    };
    const auto* brands = std::find_if(std::begin(kBrands), std::end(kBrands), applies);
    if (brands == std::end(kBrands)) return;
    // Every media track of a hinted movie has its hint track.
    const unsigned int mediaTracks = hasHintTracks_ ? getNumberOfTracks() / 2 : getNumberOfTracks();
    setFtypMajorBrand(brands->major);
    setFtypMinorVersion(brands->minor);
    for (const unsigned int brand : brands->compatible) {
        if (brand == 0 || (brand == kBasic3GP && mediaTracks >= kFewTracks)) continue;
        addCompatibleBrand(brand);
    }
}

int QTMovie::setFtypMajorBrand(unsigned int brand) { return ftyp_ ? ftyp_->setMajorBrand(brand) : -1; }
int QTMovie::setFtypMinorVersion(unsigned int version) {
    return ftyp_ ? ftyp_->setMinorVersion(version) : -1;
}
int QTMovie::addCompatibleBrand(unsigned int brand) { return ftyp_ ? ftyp_->addCompatibleBrand(brand) : -1; }

} // namespace Ketra::QT
