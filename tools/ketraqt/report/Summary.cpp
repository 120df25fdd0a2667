// The movie and its tracks in figures.
#include "report/Markup.h"
#include "report/Report.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

namespace {

constexpr std::size_t kMostTracks = 64;

std::string stringOf(const Json& value) {
    return value.is_string() ? value.get<std::string>() : std::string();
}

std::string dateText(unsigned int since1904) {
    using namespace std::chrono;
    const sys_seconds point = sys_days{year{1904} / January / 1} + seconds{since1904};
    const auto day = floor<days>(point);
    const year_month_day date{day};
    const hh_mm_ss time{point - day};
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02} UTC", static_cast<int>(date.year()),
                       static_cast<unsigned int>(date.month()), static_cast<unsigned int>(date.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

/// Which comes first, as it matters to who plays a movie while it is still coming in.
std::string headerPlace(const MovieParts& movie) {
    bool media = false;
    for (const AtomRow& atom : movie.atoms) {
        if (atom.depth != 0) continue;
        if (atom.type == QT::fourCC("moov")) return media ? "behind the media" : "in front of the media";
        media = media || atom.type == QT::fourCC("mdat");
    }
    return "not there";
}

std::string brandsText(const Json& brands) {
    if (brands["major"].is_null()) return "none";
    constexpr std::size_t kMost = 16;
    std::string text = foreign(stringOf(brands["major"])) + " " + brands["minor"].dump();
    std::size_t count = 0;
    for (const auto& brand : brands["compatible"]) {
        text += count == 0 ? "; compatible " : ", ";
        if (++count > kMost) return text + "\xE2\x80\xA6";
        text += foreign(stringOf(brand));
    }
    return text;
}

void addUserData(std::string& page, const Json& entries) {
    constexpr std::size_t kMost = 12;
    std::size_t shown = 0;
    for (const auto& entry : entries) {
        if (!entry.contains("text")) continue;
        if (++shown > kMost) return;
        addFact(page, "User data " + foreign(stringOf(entry["type"])), foreign(stringOf(entry["text"])));
    }
}

void addMovie(std::string& page, const MovieParts& movie) {
    page += "<dl class=\"facts\">";
    addFact(page, "File size",
            plural(movie.fileSize, "byte", "bytes") +
                (movie.fileSize < 1000 ? "" : " (" + bytesText(static_cast<double>(movie.fileSize)) + ")"));
    addFact(page, "Header", headerPlace(movie));
    if (movie.info.is_object()) {
        const Json& info = movie.info;
        addFact(page, "Brands", brandsText(info["brands"]));
        addFact(page, "Duration",
                fmt::format("{} ({:.6f} s)", timeText(info["duration"].get<double>()),
                            info["duration"].get<double>()));
        addFact(page, "Time scale", grouped(info["timescale"].get<std::uint64_t>()) + " units a second");
        addFact(page, "Tracks", grouped(info["tracks"].size()));
        if (movie.created) addFact(page, "Created", dateText(movie.created));
        if (movie.modified) addFact(page, "Modified", dateText(movie.modified));
        addUserData(page, info["user_data"]);
    }
    page += "</dl>";
}

void addFormat(std::string& page, const Json& track) {
    const std::string format = stringOf(track["format"]);
    std::string codec = format.empty() ? "none" : foreign(format);
    if (track.contains("codec")) codec += " holding " + foreign(stringOf(track["codec"]));
    addFact(page, "Codec", codec);
    if (track.contains("width")) {
        std::string size = fmt::format("{} \xC3\x97 {}", decimal(track["width"].get<double>()),
                                       decimal(track["height"].get<double>()));
        const double wide = track["display_width"].get<double>();
        const double high = track["display_height"].get<double>();
        if (wide != track["width"].get<double>() || high != track["height"].get<double>())
            size += fmt::format(", shown {} \xC3\x97 {}", decimal(wide), decimal(high));
        addFact(page, "Picture", size);
    } else if (track.contains("sample_rate")) {
        addFact(page, "Sound",
                fmt::format(
                    "{} Hz, {}, {} bits",
                    grouped(static_cast<std::uint64_t>(std::max(0.0, track["sample_rate"].get<double>()))),
                    plural(track["channels"].get<std::uint64_t>(), "channel", "channels"),
                    track["bits"].dump()));
    }
}

void addTrack(std::string& page, const Json& track, std::string_view colour, std::string_view kind) {
    const auto samples = track["samples"].get<std::uint64_t>();
    const double duration = track["duration"].get<double>();
    fmt::format_to(std::back_inserter(page),
                   "<article class=\"track {}\"><h3>Track {} <span>{}</span></h3><dl>", colour,
                   track["id"].dump(), kind);
    addFact(page, "Media type", foreign(stringOf(track["type"])));
    addFormat(page, track);
    addFact(page, "Duration", fmt::format("{} ({:.6f} s)", timeText(duration), duration));
    addFact(page, "Samples", grouped(samples));
    addFact(page, "Key frames", grouped(track["key_frames"].get<std::uint64_t>()));
    addFact(page, "Bit rate", rateText(track["bit_rate"].get<double>()));
    if (track.contains("width") && duration > 0)
        addFact(page, "Frame rate", decimal(static_cast<double>(samples) / duration, 3) + " frames a second");
    addFact(page, "Time scale", grouped(track["timescale"].get<std::uint64_t>()) + " units a second");
    addFact(page, "Edits", track["edits"].empty() ? "none" : grouped(track["edits"].size()));
    addFact(page, "Language", foreign(stringOf(track["language"])));
    if (!stringOf(track["handler"]).empty())
        addFact(page, "Handler", foreign(stringOf(track["handler"]), 60));
    constexpr std::size_t kMostDigits = 60;
    constexpr int kMostReferences = 8;
    int references = 0;
    for (const auto& reference : track["references"]) {
        if (++references > kMostReferences) break;
        const Json& ids = reference["tracks"];
        addFact(page, "Refers to",
                foreign(stringOf(reference["type"])) +
                    (ids.empty() ? "" : " " + escaped(ids.dump(), kMostDigits)));
    }
    page += "</dl></article>";
}

} // namespace

void addSummary(std::string& page, const MovieParts& movie) {
    openSection(page, "summary", "Summary", {});
    addMovie(page, movie);
    if (movie.info.is_object()) {
        page += "<div class=\"tracks\">";
        std::size_t index = 0;
        for (const auto& track : movie.info["tracks"]) {
            if (index == kMostTracks) break;
            const bool known = index < movie.tracks.size();
            addTrack(page, track, known ? movie.tracks[index].colour : "",
                     known ? movie.tracks[index].kind : "");
            ++index;
        }
        page += "</div>";
        if (movie.info["tracks"].size() > index)
            page += "<p>" + plural(movie.info["tracks"].size() - index, "more track is", "more tracks are") +
                    " not shown.</p>";
    }
    closeSection(page);
}

} // namespace Ketra::Tool::Report
