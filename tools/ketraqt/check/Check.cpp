#include "check/Check.h"

#include "Source.h"
#include "check/Tables.h"

#include <base/CException.h>
#include <qt/QTAtoms/file/CMOV.h>
#include <qt/QTFrame.h>

#include <algorithm>
#include <fmt/format.h>
#include <unordered_map>
#include <utility>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

bool isFragmented(const AtomPlace& file, const AtomPlace& movie) {
    return file.child(fourCC("moof")) || movie.child(fourCC("mvex"));
}

/// Where the tracks are, by their IDs.
using TrackPaths = std::unordered_map<unsigned int, std::string>;

void checkHeader(const Subject& subject, TrackPaths& paths) {
    checkMovieAtoms(subject);
    MovieHead movie = readHeads(subject);
    for (const TrackHead& track : movie.tracks) {
        paths.emplace(track.id, track.trak->path);
    }
    std::vector<TrackTables> tables(movie.tracks.size());
    for (std::size_t i = 0; i < tables.size(); ++i) {
        if (movie.tracks[i].tables) tables[i] = checkTables(subject, movie.tracks[i]);
    }
    checkTimes(subject, movie);
    ChunkPlaces places(subject);
    for (std::size_t i = 0; i < tables.size(); ++i) {
        places.add(movie.tracks[i], i, std::move(tables[i]));
    }
    places.finish(movie);
}

/// The atoms of a compressed header, which have no places in the file of their own.
void checkInflated(Findings& findings, Source& source, const AtomPlace& file, const AtomPlace& compressed,
                   TrackPaths& paths) {
    QT::QTUtils reader(&source.stream(), nullptr);
    QT::CMOV cmov(new QT::QTAtom(compressed.size, compressed.type, compressed.offset,
                                 static_cast<unsigned char>(compressed.headerSize), &reader, false));
    try {
        source.stream().lseek(static_cast<std::int64_t>(compressed.body()), 0);
        cmov.parse();
    } catch (const CException& error) {
        findings.add(Severity::Error, "compressed-header", compressed.path, compressed.offset, error.what());
        return;
    }
    const QT::QTFrame* inflated = cmov.getUnCompressedHeaders();
    if (!inflated || !inflated->getData()) {
        findings.add(Severity::Error, "compressed-header", compressed.path, compressed.offset,
                     "there is nothing in it");
        return;
    }
    findings.pin(compressed.offset);
    Bytes bytes(inflated->getData(), inflated->getDataLength());
    const AtomPlace root = readPlaces(bytes, findings);
    if (const AtomPlace* movie = root.child(fourCC("moov"))) {
        checkHeader({findings, bytes, file, *movie, true, isFragmented(file, *movie)}, paths);
    } else {
        findings.add(Severity::Error, "compressed-header", compressed.path, compressed.offset,
                     "there is no movie header in it");
    }
}

std::vector<Finding> checkMovie(Source& source, TrackPaths& paths) {
    Findings findings;
    Bytes bytes(source.stream());
    const AtomPlace file = readPlaces(bytes, findings);
    checkFileAtoms(findings, bytes, file);
    if (const AtomPlace* movie = file.child(fourCC("moov"))) {
        if (const AtomPlace* compressed = movie->child(fourCC("cmov"))) {
            checkInflated(findings, source, file, *compressed, paths);
        } else {
            checkHeader({findings, bytes, file, *movie, false, isFragmented(file, *movie)}, paths);
        }
    }
    return findings.take();
}

/// That there is no header is what the message says anyway.
bool isPlace(const Finding& finding) {
    return finding.severity == Severity::Error && !(finding.rule == "missing-atom" && finding.path == "moov");
}

} // namespace

std::vector<Finding> checkMovie(Source& source) {
    TrackPaths paths;
    return checkMovie(source, paths);
}

std::string withPlace(Source& source, const std::string& text, std::optional<unsigned int> track) {
    source.leaveMediaOut(false);
    TrackPaths paths;
    const std::vector<Finding> findings = checkMovie(source, paths);
    const std::string within = track ? paths[*track] + "/" : "";
    const auto found = std::find_if(findings.begin(), findings.end(), [&](const Finding& finding) {
        return isPlace(finding) && finding.path.compare(0, within.size(), within) == 0;
    });
    return found == findings.end() ? text : fmt::format("{} ({})", findingText(*found), text);
}

std::string_view severityName(Severity severity) {
    return severity == Severity::Error ? "error" : severity == Severity::Warning ? "warning" : "note";
}

std::string findingText(const Finding& finding) {
    std::string text = fmt::format("{}{}@0x{:x}: {}", finding.path, finding.path.empty() ? "" : " ",
                                   finding.offset, finding.text);
    if (finding.count > 1) text += fmt::format(" (and {} more)", finding.count - 1);
    return text;
}

} // namespace Ketra::Tool
