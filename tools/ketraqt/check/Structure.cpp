// Which atoms are there, how often, and in which order.
#include "Text.h"
#include "check/Subject.h"

#include <qt/QTTypes.h>

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::size_t kMostKinds = 6;

enum class Need { kOptional, kAdvised, kAtom, kTable };

/// What an atom may have at most once; of several types, one is enough.
struct Part {
    unsigned int parent;
    Need need;
    unsigned int types[kMostKinds];
};

constexpr Part kParts[] = {
    {fourCC("moov"), Need::kAtom, {fourCC("mvhd")}},
    {fourCC("moov"), Need::kOptional, {fourCC("iods")}},
    {fourCC("moov"), Need::kOptional, {fourCC("mvex")}},
    {fourCC("moov"), Need::kOptional, {fourCC("udta")}},
    {fourCC("trak"), Need::kAtom, {fourCC("tkhd")}},
    {fourCC("trak"), Need::kAtom, {fourCC("mdia")}},
    {fourCC("trak"), Need::kOptional, {fourCC("edts")}},
    {fourCC("trak"), Need::kOptional, {fourCC("tref")}},
    {fourCC("trak"), Need::kOptional, {fourCC("udta")}},
    {fourCC("trak"), Need::kOptional, {fourCC("tapt")}},
    {fourCC("trak"), Need::kOptional, {fourCC("load")}},
    {fourCC("edts"), Need::kOptional, {fourCC("elst")}},
    {fourCC("mdia"), Need::kAtom, {fourCC("mdhd")}},
    {fourCC("mdia"), Need::kAtom, {fourCC("hdlr")}},
    {fourCC("mdia"), Need::kAtom, {fourCC("minf")}},
    {fourCC("minf"),
     Need::kAtom,
     {fourCC("vmhd"), fourCC("smhd"), fourCC("gmhd"), fourCC("nmhd"), fourCC("hmhd"), fourCC("sthd")}},
    {fourCC("minf"), Need::kAdvised, {fourCC("dinf")}},
    {fourCC("minf"), Need::kAtom, {fourCC("stbl")}},
    {fourCC("dinf"), Need::kAdvised, {fourCC("dref")}},
    {fourCC("stbl"), Need::kTable, {fourCC("stsd")}},
    {fourCC("stbl"), Need::kTable, {fourCC("stts")}},
    {fourCC("stbl"), Need::kTable, {fourCC("stsc")}},
    {fourCC("stbl"), Need::kTable, {fourCC("stsz"), fourCC("stz2")}},
    {fourCC("stbl"), Need::kTable, {fourCC("stco"), fourCC("co64")}},
    {fourCC("stbl"), Need::kOptional, {fourCC("ctts")}},
    {fourCC("stbl"), Need::kOptional, {fourCC("cslg")}},
    {fourCC("stbl"), Need::kOptional, {fourCC("stss")}},
    {fourCC("stbl"), Need::kOptional, {fourCC("stps")}},
    {fourCC("stbl"), Need::kOptional, {fourCC("sdtp")}},
};

bool isOf(const Part& part, unsigned int type) {
    return type != 0 && std::find(std::begin(part.types), std::end(part.types), type) != std::end(part.types);
}

std::string namesOf(const Part& part) {
    std::string names;
    for (const unsigned int type : part.types) {
        if (type == 0) break;
        names += (names.empty() ? "" : ", ") + codeText(type);
    }
    return part.types[1] ? "one of " + names : names;
}

void checkPart(Findings& findings, const AtomPlace& atom, const Part& part) {
    unsigned int count = 0;
    for (const AtomPlace& child : atom.children) {
        if (!isOf(part, child.type) || ++count < 2) continue;
        findings.add(Severity::Warning, "duplicate-atom", child.path, child.offset,
                     [&] { return fmt::format("there is another in {} before it", atom.path); });
    }
    if (count > 0 || part.need == Need::kOptional) return;
    const bool table = part.need == Need::kTable;
    // One finding a kind, for which the missing name makes the place.
    findings.add(part.need == Need::kAdvised ? Severity::Warning : Severity::Error,
                 table ? "missing-table" : "missing-atom", atom.path + "/" + codeText(part.types[0]),
                 atom.offset, [&] { return fmt::format("{} has no {}", atom.path, namesOf(part)); });
}

void checkParts(Findings& findings, const AtomPlace& atom) {
    for (const Part& part : kParts) {
        if (part.parent == atom.type) checkPart(findings, atom, part);
    }
    for (const AtomPlace& child : atom.children) {
        checkParts(findings, child);
    }
}

void checkFileType(Findings& findings, Bytes& bytes, const AtomPlace& file) {
    const AtomPlace* ftyp = file.child(fourCC("ftyp"));
    if (!ftyp) return;
    constexpr std::uint64_t kFixed = 8;
    if (ftyp->bodySize() < kFixed) {
        findings.add(Severity::Error, "short-atom", ftyp->path, ftyp->offset,
                     "it ends before its minor version");
        return;
    }
    const unsigned int brand = bytes.u32(ftyp->body());
    if (ftyp == &file.children.front()) return;
    findings.add(brand == fourCC("qt  ") ? Severity::Note : Severity::Warning, "ftyp-not-first", ftyp->path,
                 ftyp->offset, [&] {
                     return fmt::format("files of brand '{}' begin with it; {} is in front",
                                        oneLine(codeText(brand)), file.children.front().path);
                 });
}

} // namespace

void checkFileAtoms(Findings& findings, Bytes& bytes, const AtomPlace& file) {
    checkFileType(findings, bytes, file);
    unsigned int headers = 0;
    unsigned int fileTypes = 0;
    std::uint64_t fragments = 0;
    const AtomPlace* header = nullptr;
    const AtomPlace* media = nullptr;
    const AtomPlace* fragment = nullptr;
    for (const AtomPlace& atom : file.children) {
        if (atom.type == fourCC("moov") && headers++ == 0) header = &atom;
        if (atom.type == fourCC("mdat") && !media && atom.bodySize() > 0) media = &atom;
        if (atom.type == fourCC("moof") && fragments++ == 0) fragment = &atom;
        const bool again =
            (atom.type == fourCC("moov") && headers > 1) || (atom.type == fourCC("ftyp") && fileTypes++ > 0);
        if (again) {
            findings.add(Severity::Warning, "duplicate-atom", atom.path, atom.offset,
                         "there is another in the file before it");
        }
    }
    if (!header) {
        findings.add(Severity::Error, "missing-atom", "moov", 0, "the file has no movie header");
    } else if (media && media->offset < header->offset) {
        findings.add(Severity::Note, "header-last", header->path, header->offset,
                     "it lies behind the media, so that a player has to get the end of the file first");
    }
    if (fragment) {
        findings.add(Severity::Note, "fragments", fragment->path, fragment->offset, [&] {
            return fmt::format("the samples of {} movie fragment{} are not in the tables", fragments,
                               fragments == 1 ? "" : "s");
        });
    }
}

void checkMovieAtoms(const Subject& subject) {
    checkParts(subject.findings, subject.movie);
    const AtomPlace* descriptor = subject.movie.child(fourCC("iods"));
    if (descriptor && !subject.file.child(fourCC("ftyp"))) {
        subject.findings.add(Severity::Warning, "missing-ftyp", descriptor->path, descriptor->offset,
                             "a file with an object descriptor is MPEG-4, which begins with ftyp");
    }
    if (subject.movie.children.empty() || !subject.movie.child(fourCC("trak"))) {
        subject.findings.add(Severity::Warning, "no-tracks", subject.movie.path, subject.movie.offset,
                             "the movie has no tracks");
    }
}

} // namespace Ketra::Tool
