#include "report/Collect.h"

#include "Atoms.h"
#include "InfoTrack.h"
#include "Text.h"
#include "report/Markup.h"

#include <qt/QTAtoms/movie/MVHD.h>

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace Ketra::Tool::Report {

using QT::fourCC;

namespace {

constexpr std::size_t kMostAtoms = 1200;

/// The rows of the table of atoms, depth first.
class AtomWalk {
public:
    AtomWalk(MovieParts& parts, TableStore& store, const std::map<const QT::QTAtom*, int>& tracks)
        : parts_(parts), store_(store), tracks_(tracks) {}

    void add(QT::QTAtom& parent, unsigned int depth, std::uint64_t begin, std::uint64_t end, int track) {
        for (QT::QTAtom* child : parent.getChildren()) {
            ++parts_.atomCount;
            const auto own = tracks_.find(child);
            const int belongs = own == tracks_.end() ? track : own->second;
            const std::uint64_t offset = child->getOffset();
            const auto place = parts_.atoms.size() < kMostAtoms ? store_.placeOf(child) : std::nullopt;
            const bool placed = place && !place->unpacked && offset >= begin && offset < end;
            const std::uint64_t size = place ? place->size : child->getSize();
            if (parts_.atoms.size() < kMostAtoms)
                parts_.atoms.push_back({depth, child->getType(), offset, size, placed, belongs});
            const std::uint64_t childEnd = placed ? offset + std::min(size, end - offset) : 0;
            add(*child, depth + 1, placed ? offset : 0, childEnd, belongs);
        }
    }

private:
    MovieParts& parts_;
    TableStore& store_;
    const std::map<const QT::QTAtom*, int>& tracks_;
};

std::string kindName(const std::string& type) {
    static const std::map<std::string, std::string> names = {
        {"vide", "video"}, {"soun", "sound"}, {"tmcd", "timecode"}, {"text", "text"}, {"hint", "hints"}};
    const auto found = names.find(type);
    return found == names.end() ? escaped(type) : found->second;
}

TrackPart partOf(const Json& info, std::size_t index) {
    TrackPart part;
    part.id = info["id"].get<unsigned int>();
    const std::string kind = kindName(info["type"].get<std::string>());
    part.kind = kind;
    part.lane = fmt::format("{} {}", part.id, kind);
    part.name = fmt::format("{} {} <bdi>{}</bdi>", part.id, kind, escaped(info["format"].get<std::string>()));
    part.colour = fmt::format("c{}", index % kColours);
    part.info = &info;
    return part;
}

void addTracks(MovieParts& parts, TableStore& store, QT::QTMovie& movie) {
    const std::vector<QT::QTTrack*> tracks = movie.getTracks();
    const std::size_t count = std::min(tracks.size(), kMostGraphs);
    for (std::size_t i = 0; i < count; ++i) {
        parts.seconds = std::max(parts.seconds, mediaSeconds(store, *tracks[i]));
    }
    for (std::size_t i = 0; i < count; ++i) {
        parts.tracks.push_back(partOf(parts.info["tracks"][i], i));
        parts.tracks.back().graph = readGraph(store, *tracks[i], parts.seconds, parts.fileSize);
    }
}

} // namespace

void collect(MovieParts& parts, Source& source, QT::QTAtom& root, QT::QTMovie* movie) {
    parts.fileSize = source.fileSize();
    TableStore store(source, root);
    std::map<const QT::QTAtom*, int> tracks;
    if (const auto* header = atomAt<QT::MVHD>(&root, {fourCC("moov"), fourCC("mvhd")})) {
        parts.created = header->getCreationTime();
        parts.modified = header->getModificationTime();
    }
    if (movie) {
        parts.info = movieJson(parts.file, *movie);
        addTracks(parts, store, *movie);
        for (std::size_t i = 0; i < parts.tracks.size(); ++i) {
            tracks[movie->getTracks()[i]->getTrak()] = static_cast<int>(i);
        }
    }
    AtomWalk(parts, store, tracks).add(root, 0, 0, parts.fileSize, -1);
}

} // namespace Ketra::Tool::Report
