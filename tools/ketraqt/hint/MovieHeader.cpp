#include "MovieHeader.h"

#include "../ToolError.h"
#include "PacketBytes.h"
#include "TrackBytes.h"

#include <qt/QTTypes.h>

#include <algorithm>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::size_t kMovieHeader = 108;
constexpr std::size_t kLongMovieHeader = 120; // with 64-bit times
constexpr std::size_t kVersion = 8;

bool isLong(const ByteBlock& atom) { return atom.size() > kVersion && atom[kVersion] == 1; }

auto byType(unsigned int type) {
    return [type](const AtomBytes& atom) { return atom.type == type; };
}

} // namespace

MovieHeader::MovieHeader(const ByteBlock& moov) : children_(childrenOf(payloadOf(moov), rest_)) {
    const auto found = std::find_if(children_.begin(), children_.end(), byType(fourCC("mvhd")));
    if (found == children_.end() ||
        found->bytes.size() < (isLong(found->bytes) ? kLongMovieHeader : kMovieHeader)) {
        throw ToolError(kMalformed, "there is no movie header that can be changed");
    }
}

ByteBlock& MovieHeader::header() {
    return std::find_if(children_.begin(), children_.end(), byType(fourCC("mvhd")))->bytes;
}

const ByteBlock& MovieHeader::header() const { return const_cast<MovieHeader&>(*this).header(); }

unsigned int MovieHeader::timeScale() const { return load32(header().data() + (isLong(header()) ? 28 : 20)); }

std::vector<const ByteBlock*> MovieHeader::tracks() const {
    std::vector<const ByteBlock*> found;
    for (const AtomBytes& child : children_) {
        if (child.type == fourCC("trak")) found.push_back(&child.bytes);
    }
    return found;
}

unsigned int MovieHeader::nextTrackID() const {
    unsigned int highest = 0;
    for (const ByteBlock* trak : tracks()) {
        highest = std::max(highest, trackIDOf(*trak));
    }
    if (highest >= 0xFFFFFF00) throw ToolError(kNotAllowed, "there are no track IDs left");
    return highest + 1;
}

void MovieHeader::addTrack(ByteBlock trak) {
    // Behind the other tracks: what follows them, user data first of all, stays last.
    auto place = std::find_if(children_.rbegin(), children_.rend(), byType(fourCC("trak"))).base();
    children_.insert(place, {fourCC("trak"), std::move(trak)});
    settleNextTrackID();
}

void MovieHeader::removeHintTracks() {
    const auto goes = [](const AtomBytes& child) {
        return child.type == fourCC("trak") && isHintTrack(child.bytes);
    };
    children_.erase(std::remove_if(children_.begin(), children_.end(), goes), children_.end());
    settleNextTrackID();
}

void MovieHeader::settleNextTrackID() {
    const unsigned int next = nextTrackID();
    ByteBlock& mvhd = header();
    const std::size_t size = isLong(mvhd) ? kLongMovieHeader : kMovieHeader;
    store32(mvhd.data() + size - 4, next);
}

void MovieHeader::setHintInformation(ByteBlock hnti) { changeUserData(&hnti); }

void MovieHeader::removeHintInformation() { changeUserData(nullptr); }

void MovieHeader::changeUserData(const ByteBlock* hnti) {
    auto place = std::find_if(children_.begin(), children_.end(), byType(fourCC("udta")));
    if (place == children_.end()) {
        if (!hnti) return;
        place = children_.insert(place, {fourCC("udta"), makeAtom(fourCC("udta"), {}, {})});
    }
    ByteBlock rest;
    std::vector<AtomBytes> entries = childrenOf(payloadOf(place->bytes), rest);
    const auto old = std::remove_if(entries.begin(), entries.end(), byType(fourCC("hnti")));
    const bool changed = old != entries.end() || hnti;
    entries.erase(old, entries.end());
    if (hnti) entries.push_back({fourCC("hnti"), *hnti});
    if (!changed) return;
    place->bytes = makeAtom(fourCC("udta"), entries, rest);
    if (entries.empty() && rest.empty()) children_.erase(place);
}

ByteBlock MovieHeader::bytes() const { return makeAtom(fourCC("moov"), children_, rest_); }

} // namespace Ketra::Tool
