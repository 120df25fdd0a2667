#include "check/Check.h"

#include "Atoms.h"
#include "Source.h"
#include "check/Subject.h"

#include <base/CException.h>
#include <qt/QTAtoms/file/CMOV.h>
#include <qt/QTFrame.h>

#include <algorithm>
#include <fmt/format.h>
#include <optional>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

bool isFragmented(const AtomPlace& file, const AtomPlace& movie) {
    return file.child(fourCC("moof")) || movie.child(fourCC("mvex"));
}

void checkHeader(const Subject& subject) { checkMovieAtoms(subject); }

/// The atoms of a compressed header, which have no places in the file of their own.
void checkInflated(Findings& findings, Source& source, const AtomPlace& file, const AtomPlace& compressed) {
    AtomTree tree(source.stream());
    const auto* cmov = atomAt<QT::CMOV>(&tree.root(), {fourCC("moov"), fourCC("cmov")});
    const QT::QTFrame* inflated = cmov ? cmov->getUnCompressedHeaders() : nullptr;
    if (!inflated || !inflated->getData()) {
        findings.add(Severity::Error, "compressed-header", compressed.path, compressed.offset,
                     "it cannot be inflated");
        return;
    }
    findings.pin(compressed.offset);
    Bytes bytes(inflated->getData(), inflated->getDataLength());
    const AtomPlace root = readPlaces(bytes, findings);
    if (const AtomPlace* movie = root.child(fourCC("moov"))) {
        checkHeader({findings, bytes, file, *movie, true, isFragmented(file, *movie)});
    } else {
        findings.add(Severity::Error, "compressed-header", compressed.path, compressed.offset,
                     "there is no movie header in it");
    }
}

} // namespace

std::vector<Finding> checkMovie(Source& source) {
    Findings findings;
    Bytes bytes(source.stream());
    const AtomPlace file = readPlaces(bytes, findings);
    checkFileAtoms(findings, bytes, file);
    if (const AtomPlace* movie = file.child(fourCC("moov"))) {
        if (const AtomPlace* compressed = movie->child(fourCC("cmov"))) {
            checkInflated(findings, source, file, *compressed);
        } else {
            checkHeader({findings, bytes, file, *movie, false, isFragmented(file, *movie)});
        }
    }
    return findings.take();
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
