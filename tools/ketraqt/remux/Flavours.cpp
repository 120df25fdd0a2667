#include "remux/Flavours.h"

#include "Atoms.h"
#include "ToolError.h"

#include <qt/QTAtoms.h>

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool {

using QT::fourCC;
using Flags = QT::QTMovieConstructionFlags;

namespace {

// One bit for each flavour.
constexpr unsigned int bit(Flags flavour) {
    switch (flavour) {
    case QT::kMOV:
        return 1;
    case QT::kMP4:
        return 2;
    case QT::kM4A:
        return 4;
    case QT::kM4V:
        return 8;
    case QT::k3GP:
        return 16;
    case QT::k3G2:
        return 32;
    case QT::kAMC:
        return 64;
    case QT::kPSP:
        return 128;
    }
    return 0;
}

struct Name {
    const char* text;
    Flags flavour;
};
constexpr Name kNames[] = {{"mov", QT::kMOV}, {"mp4", QT::kMP4}, {"m4a", QT::kM4A}, {"m4v", QT::kM4V},
                           {"3gp", QT::k3GP}, {"3g2", QT::k3G2}, {"amc", QT::kAMC}, {"psp", QT::kPSP}};

/// By the first characters of the major brand; the first row that fits counts.
struct BrandRow {
    const char* prefix;
    Flags flavour;
};
constexpr BrandRow kBrands[] = {{"qt  ", QT::kMOV}, {"M4A", QT::kM4A}, {"M4B", QT::kM4A}, {"M4P", QT::kM4A},
                                {"M4V", QT::kM4V},  {"3g2", QT::k3G2}, {"3g", QT::k3GP},  {"MSNV", QT::kPSP}};

constexpr unsigned int kMobile = bit(QT::k3GP) | bit(QT::k3G2);
constexpr unsigned int kGeneral = bit(QT::kMP4);
constexpr unsigned int kHome = kGeneral | bit(QT::kM4V);
constexpr unsigned int kAllPictures = kHome | kMobile | bit(QT::kAMC) | bit(QT::kPSP);
constexpr unsigned int kAllSound = kAllPictures | bit(QT::kM4A);

/// A QuickTime movie takes everything. Formats that stand in no row belong there alone.
struct FormatRow {
    unsigned int format;
    unsigned int flavours;
};
constexpr FormatRow kFormats[] = {
    {fourCC("avc1"), kAllPictures},
    {fourCC("avc2"), kHome | kMobile},
    {fourCC("avc3"), kHome | kMobile},
    {fourCC("hvc1"), kHome | kMobile | bit(QT::kPSP)},
    {fourCC("hev1"), kHome | kMobile | bit(QT::kPSP)},
    {fourCC("mp4v"), kAllPictures},
    {fourCC("s263"), kGeneral | kMobile | bit(QT::kAMC)},
    {fourCC("h263"), kGeneral | kMobile | bit(QT::kAMC)},
    {fourCC("jpeg"), kGeneral},
    {fourCC("mjp2"), kGeneral},
    {fourCC("png "), kGeneral},
    {fourCC("av01"), kGeneral},
    {fourCC("vp08"), kGeneral},
    {fourCC("vp09"), kGeneral},
    {fourCC("apch"), kGeneral},
    {fourCC("apcn"), kGeneral},
    {fourCC("apcs"), kGeneral},
    {fourCC("apco"), kGeneral},
    {fourCC("ap4h"), kGeneral},
    {fourCC("ap4x"), kGeneral},
    {fourCC("AVdn"), kGeneral},
    {fourCC("AVdh"), kGeneral},
    {fourCC("encv"), kHome | kMobile},
    {fourCC("mp4a"), kAllSound},
    {fourCC("enca"), kHome | kMobile | bit(QT::kM4A)},
    {fourCC(".mp3"), kGeneral | bit(QT::kM4A) | bit(QT::kM4V)},
    {fourCC("alac"), kHome | bit(QT::kM4A)},
    {fourCC("ac-3"), kHome},
    {fourCC("ec-3"), kHome},
    {fourCC("Opus"), kGeneral},
    {fourCC("fLaC"), kGeneral},
    {fourCC("raw "), kGeneral},
    {fourCC("sowt"), kGeneral},
    {fourCC("twos"), kGeneral},
    {fourCC("in24"), kGeneral},
    {fourCC("in32"), kGeneral},
    {fourCC("fl32"), kGeneral},
    {fourCC("fl64"), kGeneral},
    {fourCC("lpcm"), kGeneral},
    {fourCC("ipcm"), kGeneral},
    {fourCC("fpcm"), kGeneral},
    {fourCC("samr"), kMobile},
    {fourCC("sawb"), kMobile},
    {fourCC("sawp"), kMobile},
    {fourCC("sqcp"), bit(QT::k3G2)},
    {fourCC("sevc"), bit(QT::k3G2)},
    {fourCC("text"), kHome | kMobile | bit(QT::kM4A)},
    {fourCC("tx3g"), kHome | kMobile | bit(QT::kM4A)},
    {fourCC("tmcd"), kHome},
};

} // namespace

std::vector<std::string> flavourNames() {
    std::vector<std::string> names;
    for (const Name& row : kNames) {
        names.emplace_back(row.text);
    }
    return names;
}

std::string flavourName(Flags flavour) {
    const auto* row = std::find_if(std::begin(kNames), std::end(kNames),
                                   [flavour](const Name& name) { return name.flavour == flavour; });
    return row == std::end(kNames) ? std::string() : row->text;
}

Flags flavourOf(const std::string& name) {
    const auto* row = std::find_if(std::begin(kNames), std::end(kNames),
                                   [&name](const Name& candidate) { return name == candidate.text; });
    if (row == std::end(kNames)) throw ToolError(kUsage, fmt::format("there is no flavour \"{}\"", name));
    return row->flavour;
}

Flags flavourOf(const QT::QTMovie& movie) {
    const auto* type = childOf<QT::FTYP>(movie.getRoot(), fourCC("ftyp"));
    if (!type) return QT::kMOV; // older than file types
    std::string brand;
    for (int shift = 24; shift >= 0; shift -= 8) {
        brand += static_cast<char>(type->getMajorBrand() >> shift);
    }
    const auto* row = std::find_if(std::begin(kBrands), std::end(kBrands),
                                   [&brand](const BrandRow& r) { return brand.rfind(r.prefix, 0) == 0; });
    return row == std::end(kBrands) ? QT::kMP4 : row->flavour;
}

bool isAllowed(Flags flavour, MediaKind kind, unsigned int format) {
    if (flavour == QT::kMOV) return true;
    if (flavour == QT::kM4A && kind == MediaKind::kVideo) return false;
    const auto* row = std::find_if(std::begin(kFormats), std::end(kFormats),
                                   [format](const FormatRow& r) { return r.format == format; });
    return row != std::end(kFormats) && (row->flavours & bit(flavour)) != 0;
}

} // namespace Ketra::Tool
