#include "Atoms.h"
#include "Commands.h"
#include "InfoTrack.h"
#include "Output.h"
#include "Source.h"
#include "Text.h"
#include "ToolError.h"
#include "UserText.h"

#include <qt/QTAtoms.h>

#include <algorithm>
#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

Json brandsJson(const QT::QTAtom* root) {
    Json compatible = Json::array();
    const auto* ftyp = childOf<QT::FTYP>(root, fourCC("ftyp"));
    if (!ftyp) return {{"major", nullptr}, {"minor", nullptr}, {"compatible", std::move(compatible)}};
    for (const unsigned int brand : ftyp->getCompatibleBrands()) {
        compatible.push_back(codeText(brand));
    }
    return {{"major", codeText(ftyp->getMajorBrand())},
            {"minor", ftyp->getMinorVersion()},
            {"compatible", std::move(compatible)}};
}

/// Of the text tracks that others refer to as their chapters, and of those that call themselves chapter
/// tracks.
Json movieChapters(QT::QTMovie& movie) {
    std::vector<unsigned int> referred;
    for (QT::QTTrack* track : movie.getTracks()) {
        const auto* tref = childOf<QT::TREF>(track->getTrak(), fourCC("tref"));
        if (const auto* chapters = childOf<QT::CHAP>(tref, fourCC("chap")))
            referred.push_back(chapters->getTrackID());
    }
    Json list = Json::array();
    for (QT::QTTrack* track : movie.getTracks()) {
        auto* text = dynamic_cast<QT::QTTextTrack*>(track);
        const bool named = std::find(referred.begin(), referred.end(), track->getID()) != referred.end();
        if (!text || !(named || text->isChapterTrack())) continue;
        list.push_back({{"track", track->getID()}, {"chapters", chaptersJson(*track)}});
    }
    return list;
}

} // namespace

Json movieJson(const std::string& file, QT::QTMovie& movie) {
    Json tracks = Json::array();
    for (QT::QTTrack* track : movie.getTracks()) {
        tracks.push_back(trackJson(*track));
    }
    const auto* moov = childOf<QT::QTAtom>(movie.getRoot(), fourCC("moov"));
    const auto* udta = childOf<QT::UDTA>(moov, fourCC("udta"));
    return {{"schema", kSchema},
            {"file", validUtf8(file)},
            {"brands", brandsJson(movie.getRoot())},
            {"timescale", movie.getTimeScale()},
            {"duration", movie.getDuration()},
            {"tracks", std::move(tracks)},
            {"chapter_tracks", movieChapters(movie)},
            {"user_data", userDataJson(udta ? udta->getDataAtoms() : std::vector<QT::QTDataAtom*>())}};
}

namespace {

std::string texts(const Json& list) {
    std::string out;
    for (const auto& item : list) {
        out += " " + item.get<std::string>();
    }
    return out;
}

std::string number(const Json& value) {
    return value.is_number_float() ? fmt::format("{:g}", value.get<double>()) : value.dump();
}

std::string trackFormat(const Json& track) {
    if (track.contains("width"))
        return fmt::format(", {}x{}", number(track["width"]), number(track["height"]));
    if (!track.contains("sample_rate")) return {};
    return fmt::format(", {} Hz, {} channels, {} bits", number(track["sample_rate"]),
                       number(track["channels"]), number(track["bits"]));
}

void printTimes(std::string& out, const Json& track) {
    for (const auto& edit : track["edits"]) {
        out += fmt::format("    edit: duration {} (movie units), media time {} (media units), rate {}\n",
                           number(edit["duration"]), number(edit["media_time"]), number(edit["rate"]));
    }
    if (track.contains("timecode") && track["timecode"].is_object()) {
        const Json& timecode = track["timecode"];
        out +=
            fmt::format("    timecode: start {}, {} frames a second{}\n",
                        timecode["start"].is_null() ? "counter " + number(timecode["frame"])
                                                    : timecode["start"].get<std::string>(),
                        number(timecode["rate"]), timecode["drop_frame"].get<bool>() ? ", drop frame" : "");
    }
}

void printHint(std::string& out, const Json& hint) {
    if (!hint["payload_type"].is_null())
        out += fmt::format("    payload type: {}\n", number(hint["payload_type"]));
    if (hint["sdp"].is_null()) return;
    std::string line;
    for (const char c : hint["sdp"].get<std::string>() + "\n") {
        if (c != '\n') {
            if (c != '\r') line += c;
        } else if (!line.empty()) {
            out += "    sdp: " + oneLine(line) + "\n";
            line.clear();
        }
    }
}

void printUserData(std::string& out, const char* indent, const Json& entries) {
    for (const auto& entry : entries) {
        const bool text = entry.contains("text");
        out += fmt::format("{}user data {}: {}\n", indent, entry["type"].get<std::string>(),
                           text ? oneLine(entry["text"].get<std::string>())
                                : fmt::format("{} bytes", number(entry["size"])));
    }
}

std::string trackText(const Json& track) {
    std::string out =
        fmt::format("  track {}: {} {}{}, {:.6f} s, time scale {}, {} samples, {} key frames, {} bit/s\n",
                    number(track["id"]), track["type"].get<std::string>(), track["format"].get<std::string>(),
                    trackFormat(track), track["duration"].get<double>(), number(track["timescale"]),
                    number(track["samples"]), number(track["key_frames"]), number(track["bit_rate"]));
    out += fmt::format("    handler: {}, language {}\n", oneLine(track["handler"].get<std::string>()),
                       track["language"].get<std::string>());
    for (const auto& reference : track["references"]) {
        out += fmt::format("    reference: {} {}\n", reference["type"].get<std::string>(),
                           reference["tracks"].dump());
    }
    if (track.contains("switch_group"))
        out += fmt::format("    switch group: {}\n", track["switch_group"].dump());
    printTimes(out, track);
    if (track.contains("hint")) printHint(out, track["hint"]);
    printUserData(out, "    ", track["user_data"]);
    return out;
}

std::string movieText(const std::string& file, const Json& movie) {
    std::string out = oneLine(validUtf8(file)) + "\n";
    const Json& brands = movie["brands"];
    if (!brands["major"].is_null()) {
        out += fmt::format("  brands: {} {}, compatible{}\n", brands["major"].get<std::string>(),
                           number(brands["minor"]), texts(brands["compatible"]));
    }
    out += fmt::format("  duration: {:.6f} s, time scale {}\n", movie["duration"].get<double>(),
                       number(movie["timescale"]));
    for (const auto& track : movie["tracks"]) {
        out += trackText(track);
    }
    for (const auto& list : movie["chapter_tracks"]) {
        for (const auto& chapter : list["chapters"]) {
            out += fmt::format("  chapter (track {}): {:.6f} s, {}\n", number(list["track"]),
                               chapter["start"].get<double>(), oneLine(chapter["title"].get<std::string>()));
        }
    }
    printUserData(out, "  ", movie["user_data"]);
    return out;
}

} // namespace

int runInfo(const std::vector<std::string>& files, bool json) {
    int worst = kSuccess;
    for (const std::string& file : files) {
        const int code = guarded(file, [&] {
            Source source(file);
            const auto movie = openMovie(source);
            const Json told = movieJson(file, *movie);
            Output output;
            output.write(json ? jsonLine(told) : movieText(file, told));
            output.finish();
        });
        worst = std::max(worst, code);
    }
    return worst;
}

} // namespace Ketra::Tool
