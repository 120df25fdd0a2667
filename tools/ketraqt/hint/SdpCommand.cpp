#include "../Atoms.h"
#include "../Commands.h"
#include "../Output.h"
#include "../Source.h"
#include "../ToolError.h"
#include "HintTracks.h"
#include "SessionDescription.h"

#include <qt/QTAtoms.h>

#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

/// The texts in a track's or a movie's session information.
std::vector<std::string> textsOf(QT::QTAtom* holder, unsigned int type) {
    std::vector<std::string> texts;
    const auto* information = atomAt<QT::HNTI>(holder, {fourCC("udta"), fourCC("hnti")});
    if (!information) return texts;
    for (QT::QTDataAtom* atom : information->getDataAtoms()) {
        if (atom->getType() != type) continue;
        constexpr unsigned int kHeader = 8;
        const std::unique_ptr<QT::QTFrame> bytes(atom->serialize());
        if (!bytes || bytes->getDataLength() <= kHeader) continue;
        texts.emplace_back(reinterpret_cast<const char*>(bytes->getData()) + kHeader,
                           bytes->getDataLength() - kHeader);
    }
    return texts;
}

/// In front of the movie's text stands what kind of description it is.
void addMovieTexts(SessionDescription& session, QT::QTAtom* moov) {
    constexpr std::string_view kKind = "sdp ";
    for (const std::string& text : textsOf(moov, fourCC("rtp "))) {
        if (text.rfind(kKind, 0) == 0) session.addSessionText(std::string_view(text).substr(kKind.size()));
    }
}

std::string originOf(const QT::QTAtom* moov) {
    const auto* header = childOf<QT::MVHD>(moov, fourCC("mvhd"));
    return fmt::format("- {} {} IN IP4 127.0.0.1", header ? header->getCreationTime() : 0U,
                       header ? header->getModificationTime() : 0U);
}

} // namespace

void runSdp(const std::string& file) {
    Source source(file);
    const auto movie = openMovie(source);
    const auto tracks = hintTracksOf(*movie);
    if (tracks.empty()) throw ToolError(kNotAllowed, "has no hint tracks");
    QT::QTAtom* moov = childOf<QT::QTAtom>(movie->getRoot(), fourCC("moov"));
    SessionDescription session;
    addMovieTexts(session, moov);
    session.addDefault("v=", "0");
    session.addDefault("o=", originOf(moov));
    session.addDefault("s=", " "); // no name: what a file is called is no business of those who watch it
    session.addDefault("c=", "IN IP4 0.0.0.0");
    session.addDefault("t=", "0 0");
    session.addDefault("a=control:", "*");
    session.addDefault("a=range:", fmt::format("npt=0-{:.4f}", movie->getDuration()));
    for (const QT::QTTrack* track : tracks) {
        for (const std::string& text : textsOf(track->getTrak(), fourCC("sdp "))) {
            session.addMediaText(text);
        }
    }
    Output output;
    output.write(session.text());
    output.finish();
}

} // namespace Ketra::Tool
