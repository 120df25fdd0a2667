// The parts that all seed movies share: headers, a track's frame and its sample tables.
#pragma once

#include "hostile/Writer.h"

#include <functional>
#include <string>
#include <vector>

namespace hostile {

using Part = std::function<void(Writer&)>;

struct TrackPlan {
    unsigned int id = 1;
    std::string handler = "vide";
    Part mediaHeader;  // "vmhd" and its like
    Part descriptions; // the entries of "stsd"
    unsigned int descriptionCount = 1;
    Part beforeMedia;   // further children of "trak" in front of "mdia"
    Part afterMedia;    // and behind it
    Part furtherTables; // further children of "stbl"
    unsigned int timeScale = 600;
    unsigned int frameDuration = 20;
    unsigned int samples = 12;
    unsigned int perChunk = 4;
    unsigned int constantSize = 0; // 0: one size a sample
    unsigned int width = 0, height = 0;
    bool wideOffsets = false;
    bool wideMediaHeader = false;
    bool mediaInformation = true; // false: "mdia" without "minf"
};

void vmhd(Writer& w);
void smhd(Writer& w);
void videoEntry(Writer& w, const char* format, const Part& extensions);
void audioEntry(Writer& w, const char* format, unsigned int version, unsigned int channels, unsigned int bits,
                const Part& extensions);
void dataInformation(Writer& w);
void mvhd(Writer& w, unsigned int nextTrackID);
/// Bytes of the sample numbered `n` from 0.
unsigned int sampleSize(const TrackPlan& plan, unsigned int n);

/// "trak"; the first chunk stands at `offset`, the others directly behind it.
void trak(Writer& w, const TrackPlan& plan, std::uint64_t offset);

/// "ftyp", "mdat" with the samples of all tracks, "moov".
Bytes movie(const std::vector<TrackPlan>& tracks, const char* brand = "qt  ", const Part& moovExtra = {});
/// "ftyp" and "mdat" alone; `offset` gets where the samples begin.
Writer mediaFirst(const std::vector<TrackPlan>& tracks, const char* brand, std::uint64_t& offset);
/// "moov" alone.
Bytes moov(const std::vector<TrackPlan>& tracks, std::uint64_t offset, const Part& moovExtra = {});

} // namespace hostile
