#include "HostileFiles.h"

#include "hostile/MovieParts.h"

#include <stdexcept>
#include <zlib.h>

namespace hostile {

namespace {

constexpr unsigned int kEight = 8u << 20;
constexpr std::size_t kRoom = kHostileSize - 8192; // for whatever a file has much of

TrackPlan video() {
    TrackPlan plan;
    plan.mediaHeader = vmhd;
    plan.descriptions = [](Writer& w) { videoEntry(w, "jpeg", {}); };
    return plan;
}

TrackPlan sound(const char* format, unsigned int version) {
    TrackPlan plan;
    plan.handler = "soun";
    plan.mediaHeader = smhd;
    plan.descriptions = [=](Writer& w) {
        audioEntry(w, format, version, 2, 16, [=](Writer& e) {
            if (version == 1) e.u32(1).u32(0xFFFFFFFF).u32(0xFFFFFFFF).u32(1);
        });
    };
    return plan;
}

/// A table's own bytes instead of the honest ones, or null to leave them.
struct Tables {
    Part stts, stsc, stsz, stco, more;
};

void repeat(Writer& w, std::size_t bytes, const Part& record) {
    const std::size_t end = w.size() + bytes;
    while (w.size() < end) {
        record(w);
    }
}

/// A movie of one track whose tables are given outright.
Bytes withTables(const TrackPlan& plan, const Tables& tables) {
    Writer w;
    w.atom("ftyp", [&] { w.text("qt  ").u32(0); });
    w.atom("moov", [&] {
        mvhd(w, 2);
        w.atom("trak", [&] {
            w.full("tkhd", 15, [&] { w.u32(0).u32(0).u32(1).u32(0).u32(0xFFFFFFFF).zeros(60); });
            w.atom("mdia", [&] {
                w.full("mdhd", 0x01000000, [&] { w.u64(0).u64(0).u32(600).u64(0x7FFFFFFFFFFF).u32(0); });
                w.full("hdlr", 0, [&] { w.text("mhlr").text(plan.handler).zeros(12).pascal("h"); });
                w.atom("minf", [&] {
                    plan.mediaHeader(w);
                    dataInformation(w);
                    w.atom("stbl", [&] {
                        w.full("stsd", 0, [&] {
                            w.u32(1);
                            plan.descriptions(w);
                        });
                        const auto put = [&](const char* type, const Part& given, const Part& usual) {
                            w.full(type, 0, [&] { given ? given(w) : usual(w); });
                        };
                        put("stts", tables.stts, [](Writer& t) { t.u32(1).u32(0xFFFFFFFF).u32(1); });
                        put("stsc", tables.stsc, [](Writer& t) { t.u32(1).u32(1).u32(1).u32(1); });
                        put("stsz", tables.stsz, [](Writer& t) { t.u32(16).u32(0xFFFFFFFF); });
                        put("stco", tables.stco, [](Writer& t) { t.u32(2).u32(64).u32(128); });
                        if (tables.more) tables.more(w);
                    });
                });
            });
        });
    });
    return w.take();
}

Bytes absurdCounts() {
    const Part absurd = [](Writer& w) { w.u32(0xFFFFFFFF).u32(1).u32(1); };
    Tables t{absurd,
             [](Writer& w) { w.u32(0xFFFFFFFF).u32(1).u32(1).u32(1); },
             [](Writer& w) { w.u32(0).u32(0xFFFFFFFF).u32(1); },
             absurd,
             {}};
    t.more = [=](Writer& w) {
        for (const char* type : {"ctts", "stss", "stps", "stsh", "stdp", "sdtp"}) {
            w.full(type, 0, [&] { absurd(w); });
        }
    };
    return withTables(video(), t);
}

Bytes constantSizeAndCount(const TrackPlan& plan, unsigned int perChunk) {
    Tables t;
    t.stsc = [=](Writer& w) { w.u32(1).u32(1).u32(perChunk).u32(1); };
    t.stsz = [](Writer& w) { w.u32(1).u32(0xFFFFFFFF); };
    return withTables(plan, t);
}

Bytes farFirstChunk() {
    Tables t;
    t.stsc = [](Writer& w) {
        w.u32(3).u32(1).u32(1).u32(1).u32(0xFFFFFFFE).u32(0xFFFFFFFF).u32(1).u32(0xFFFFFFFF).u32(2).u32(1);
    };
    t.stco = [](Writer& w) {
        w.u32(kRoom / 4);
        repeat(w, kRoom, [](Writer& r) { r.u32(64); });
    };
    return withTables(video(), t);
}

Bytes manyRuns(const char* table, unsigned int count, unsigned int value) {
    Tables t;
    const Part runs = [=](Writer& w) {
        w.u32(kRoom / 8);
        unsigned int n = value;
        repeat(w, kRoom, [&](Writer& r) { r.u32(count).u32(n++ & 0xFFFF); });
    };
    if (std::string(table) == "stts") t.stts = runs;
    if (std::string(table) == "ctts") t.more = [=](Writer& w) { w.full("ctts", 0, [&] { runs(w); }); };
    return withTables(video(), t);
}

Bytes manyChunkRuns() {
    Tables t;
    t.stsc = [](Writer& w) {
        w.u32(kRoom / 24);
        unsigned int n = 0;
        repeat(w, kRoom / 2, [&](Writer& r) {
            ++n;
            r.u32(n * 1000).u32(n % 5).u32(1);
        });
    };
    t.stco = [](Writer& w) {
        w.u32(kRoom / 8);
        repeat(w, kRoom / 2, [](Writer& r) { r.u32(64); });
    };
    return withTables(video(), t);
}

Bytes manySizes(unsigned int size) {
    Tables t;
    t.stsz = [=](Writer& w) {
        w.u32(0).u32(kRoom / 8);
        repeat(w, kRoom / 2, [=](Writer& r) { r.u32(size); });
    };
    t.stsc = [](Writer& w) { w.u32(1).u32(1).u32(0xFFFFFFFF).u32(1); };
    t.more = [](Writer& w) {
        w.full("stss", 0, [&] {
            w.u32(kRoom / 8);
            unsigned int n = 0;
            repeat(w, kRoom / 2, [&](Writer& r) { r.u32(++n); });
        });
    };
    return withTables(video(), t);
}

/// `inner` over and over inside the atoms named, at the end of "moov" or behind it.
Bytes filled(const std::vector<const char*>& path, const Part& inner, bool inMoov = true) {
    const Bytes plain = movie({video()});
    Writer w;
    w.raw(plain);
    const std::size_t moov = [&] {
        for (std::size_t i = 4;; ++i) {
            if (std::string(plain.begin() + static_cast<std::ptrdiff_t>(i),
                            plain.begin() + static_cast<std::ptrdiff_t>(i) + 4) == "moov")
                return i - 4;
        }
    }();
    const std::function<void(std::size_t)> open = [&](std::size_t depth) {
        if (depth == path.size()) {
            repeat(w, kRoom, inner);
        } else {
            w.atom(path[depth], [&] { open(depth + 1); });
        }
    };
    open(0);
    if (inMoov) w.patch(moov, w.size() - moov);
    return w.take();
}

Bytes eightByteAtoms(const std::vector<const char*>& path, bool inMoov = true) {
    return filled(
        path, [](Writer& w) { w.atom("abcd"); }, inMoov);
}

Bytes sizeZeroAtoms() {
    return filled({"trak", "mdia", "minf", "stbl"}, [](Writer& w) {
        w.u32(0).text("a\xFF\xFF"
                      "a");
    });
}

Bytes manyTracks() {
    std::vector<TrackPlan> tracks;
    TrackPlan plan = video();
    plan.samples = 1;
    const std::size_t each = movie({plan, plan}).size() - movie({plan}).size();
    while (tracks.size() * each < kRoom) {
        plan.id = static_cast<unsigned int>(tracks.size()) + 1;
        tracks.push_back(plan);
    }
    return movie(tracks);
}

Bytes manyEdits() {
    TrackPlan plan = video();
    plan.beforeMedia = [](Writer& w) {
        w.atom("edts", [&] {
            w.full("elst", 0, [&] {
                w.u32(0xFFFFFFFF);
                repeat(w, kRoom, [](Writer& r) { r.u32(0xFFFFFFFF).u32(0x7FFFFFFF).u32(0x10000); });
            });
        });
    };
    return movie({plan});
}

Bytes manyDescriptions(const char* handler) {
    const bool visual = std::string(handler) == "vide";
    TrackPlan plan = visual ? video() : sound("sowt", 0);
    plan.descriptionCount = static_cast<unsigned int>((kRoom + (visual ? 15 : 35)) / (visual ? 16 : 36));
    plan.descriptions = [=](Writer& w) {
        repeat(w, kRoom, [=](Writer& r) {
            if (visual) {
                r.atom("jpeg", [&] { r.zeros(8); });
            } else {
                audioEntry(r, "sowt", 0, 2, 16, {});
            }
        });
    };
    return movie({plan});
}

Bytes manyTrackReferences() {
    TrackPlan plan = video();
    plan.beforeMedia = [](Writer& w) {
        w.atom("tref", [&] { repeat(w, kRoom, [](Writer& r) { r.atom("hint", [&] { r.u32(1); }); }); });
    };
    return movie({plan});
}

Bytes manyDescriptors() {
    return movie({video()}, "mp42", [](Writer& w) {
        w.full("iods", 0, [&] {
            const std::size_t size = kRoom / 6 * 6 + 7;
            w.u8(0x10).u8(0x80 | size >> 14).u8(0x80 | (size >> 7 & 0x7F)).u8(size & 0x7F).u16(0x4F).zeros(5);
            repeat(w, kRoom / 6 * 6, [](Writer& r) { r.u8(0x0E).u8(4).u32(1); });
        });
    });
}

Bytes manyReferences() {
    return filled({"trak", "mdia", "minf", "dinf", "dref"}, [](Writer& w) { w.full("url ", 1, [] {}); });
}

Bytes manyExtensions() {
    TrackPlan plan = video();
    plan.descriptions = [](Writer& w) {
        videoEntry(w, "avc1", [](Writer& e) {
            repeat(e, kRoom,
                   [](Writer& r) { r.atom("avcC", [&] { r.u32(0x01640010).u16(0xFFE1).u16(0).u8(0xFF); }); });
        });
    };
    return movie({plan});
}

Bytes deflatedRepeat(std::size_t plainBytes, const Bytes& front, bool fill) {
    Bytes plain = front;
    plain.resize(plainBytes);
    if (fill) {
        for (std::size_t i = front.size(); i + 8 <= plainBytes; i += 8) {
            plain[i + 3] = 8;
            plain[i + 4] = plain[i + 5] = plain[i + 6] = plain[i + 7] = 'a';
        }
    }
    uLongf length = compressBound(static_cast<uLong>(plainBytes));
    Bytes out(length);
    if (compress2(out.data(), &length, plain.data(), static_cast<uLong>(plainBytes), 9) != Z_OK)
        throw std::runtime_error("zlib");
    out.resize(length);
    return out;
}

Bytes bomb(std::size_t plainBytes, bool fill, std::uint64_t declared) {
    Writer header;
    header.u32(plainBytes).text("moov");
    mvhd(header, 2);
    trak(header, video(), 64);
    if (!fill) header.u32(plainBytes - header.size()).text("free");
    const Bytes packed = deflatedRepeat(plainBytes, header.bytes(), fill);
    Writer w;
    w.atom("moov", [&] {
        w.atom("cmov", [&] {
            w.atom("dcom", [&] { w.text("zlib"); });
            w.atom("cmvd", [&] { w.u32(declared).raw(packed); });
        });
    });
    return w.take();
}

Bytes padded(Bytes bytes) {
    if (bytes.size() > kHostileSize) throw std::runtime_error("a hostile file is too long");
    bytes.resize(kHostileSize); // zeros: an atom of size 0 at the file level
    return bytes;
}

} // namespace

std::vector<HostileFile> hostileFiles() {
    std::vector<HostileFile> all{
        {"counts of 0xFFFFFFFF everywhere", absurdCounts},
        {"4 G samples of one size, one a chunk", [] { return constantSizeAndCount(video(), 1); }},
        {"4 G samples of one size in one chunk", [] { return constantSizeAndCount(video(), 0xFFFFFFFF); }},
        {"4 G sound samples in one chunk", [] { return constantSizeAndCount(sound("sowt", 0), 0xFFFFFFFF); }},
        {"4 G packets of 4 GiB", [] { return constantSizeAndCount(sound("MAC3", 1), 0xFFFFFFFF); }},
        {"first chunks near 2^32", farFirstChunk},
        {"time-to-sample runs of 2^32 samples", [] { return manyRuns("stts", 0xFFFFFFFF, 1); }},
        {"time-to-sample runs of no samples", [] { return manyRuns("stts", 0, 1); }},
        {"composition runs of one sample", [] { return manyRuns("ctts", 1, 1); }},
        {"composition runs of 2^32 samples", [] { return manyRuns("ctts", 0xFFFFFFFF, 1); }},
        {"sample-to-chunk runs with gaps", manyChunkRuns},
        {"131 k samples of no bytes", [] { return manySizes(0); }},
        {"131 k samples of the whole file", [] { return manySizes(0x100000 - 4096); }},
        {"131 k samples of 4 GiB", [] { return manySizes(0xFFFFFFFF); }},
        {"8-byte atoms at the file level", [] { return eightByteAtoms({}, false); }},
        {"8-byte atoms in moov", [] { return eightByteAtoms({}); }},
        {"8-byte atoms in trak", [] { return eightByteAtoms({"trak"}); }},
        {"8-byte atoms in stbl",
         [] {
             return eightByteAtoms({"trak", "mdia", "minf", "stbl"});
         }},
        {"8-byte atoms in udta", [] { return eightByteAtoms({"udta"}); }},
        {"8-byte atoms in hinf",
         [] {
             return eightByteAtoms({"udta", "hinf"});
         }},
        {"many track references", [] { return manyTrackReferences(); }},
        {"atoms of size 0 in stbl", sizeZeroAtoms},
        {"many tracks", manyTracks},
        {"many edits", manyEdits},
        {"many video descriptions", [] { return manyDescriptions("vide"); }},
        {"many sound descriptions", [] { return manyDescriptions("soun"); }},
        {"many data references", manyReferences},
        {"many descriptors", manyDescriptors},
        {"many description extensions", manyExtensions},
        {"compressed header of 512 MiB padding",
         [] { return bomb(std::size_t{512} << 20, false, 512u << 20); }},
        {"compressed header of 32 MiB atoms", [] { return bomb(std::size_t{32} << 20, true, 32u << 20); }},
        {"compressed header of 8 MiB padding", [] { return bomb(kEight, false, kEight); }},
        {"compressed header of 8 MiB atoms", [] { return bomb(kEight, true, kEight); }},
        {"compressed header that claims 4 GiB", [] { return bomb(4096, true, 0xFFFFFFFF); }},
    };
    for (HostileFile& file : all) {
        file.make = [make = file.make] { return padded(make()); };
    }
    return all;
}

} // namespace hostile
