#include "hostile/MovieParts.h"
#include "hostile/Seeds.h"

#include <stdexcept>
#include <zlib.h>

namespace hostile {

namespace {

TrackPlan smallTrack(unsigned int id = 1) {
    TrackPlan plan;
    plan.id = id;
    plan.mediaHeader = vmhd;
    plan.descriptions = [](Writer& w) { videoEntry(w, "jpeg", {}); };
    plan.samples = 6;
    plan.perChunk = 3;
    return plan;
}

Bytes deflated(const Bytes& plain) {
    uLongf length = compressBound(static_cast<uLong>(plain.size()));
    Bytes out(length);
    if (compress2(out.data(), &length, plain.data(), static_cast<uLong>(plain.size()), 9) != Z_OK) {
        throw std::runtime_error("zlib");
    }
    out.resize(length);
    return out;
}

void compressedMovie(Writer& w, const Bytes& header) {
    const Bytes packed = deflated(header);
    w.atom("moov", [&] {
        w.atom("cmov", [&] {
            w.atom("dcom", [&] { w.text("zlib"); });
            w.atom("cmvd", [&] { w.u32(header.size()).raw(packed); });
        });
    });
}

Bytes compressedHeader() {
    std::uint64_t offset = 0;
    Writer w = mediaFirst({smallTrack()}, "qt  ", offset);
    compressedMovie(w, moov({smallTrack()}, offset));
    return w.take();
}

Bytes compressedTwice() {
    std::uint64_t offset = 0;
    Writer w = mediaFirst({smallTrack()}, "qt  ", offset);
    Writer inner;
    compressedMovie(inner, moov({smallTrack()}, offset));
    compressedMovie(w, inner.bytes());
    return w.take();
}

Bytes userData() {
    TrackPlan plan = smallTrack();
    plan.afterMedia = [](Writer& w) {
        w.atom("udta", [&] {
            w.full("tsel", 0, [&] { w.u32(1).text("scal").text("bitr"); });
            w.atom("nsav", [&] { w.u32(0); });
            w.atom("name", [&] { w.text("track"); });
        });
    };
    return movie({plan}, "3gp6", [](Writer& w) {
        w.atom("udta", [&] {
            w.full("titl", 0, [&] { w.u16(0x15C7).text("Title").u8(0); });
            w.atom("\xA9nam", [&] { w.u16(5).u16(0).text("Title"); });
            w.wideAtom("wide", [&] { w.text("entry"); });
            w.u32(0);
        });
        w.atom("ctab", [&] { w.u32(0).u16(0x8000).u16(0).zeros(8); });
        w.atom("mvex", [&] { w.full("trex", 0, [&] { w.u32(1).u32(1).zeros(12); }); });
    });
}

Bytes oddFileLevel() {
    std::uint64_t offset = 0;
    Writer w = mediaFirst({smallTrack()}, "qt  ", offset);
    w.atom("free", [&] { w.zeros(8); }).atom("skip", [&] { w.zeros(3); }).atom("wide");
    w.atom("uuid", [&] { w.zeros(16).text("private"); });
    w.atom("pnot", [&] { w.u32(1).u16(0).text("PICT").u16(1); });
    w.atom("\xA9xyz", [&] { w.text("unknown"); });
    w.wideAtom("moov", [&] {
        const Bytes plain = moov({smallTrack(), smallTrack(2)}, offset);
        w.raw(Bytes(plain.begin() + 8, plain.end()));
    });
    w.atom("moov", [&] { mvhd(w, 2); });
    w.atom("udta", [&] { w.atom("name", [&] { w.text("file"); }); });
    w.u32(0).text("mdat").zeros(16); // to the end
    return w.take();
}

Bytes fragmented() {
    TrackPlan plan = smallTrack();
    plan.samples = 0;
    Writer w;
    w.raw(movie({plan}, "iso5", [](Writer& m) {
        m.atom("mvex", [&] { m.full("trex", 0, [&] { m.u32(1).u32(1).u32(20).u32(10).u32(0); }); });
    }));
    w.atom("moof", [&] {
        w.full("mfhd", 0, [&] { w.u32(1); });
        w.atom("traf", [&] {
            w.full("tfhd", 0x020000, [&] { w.u32(1); });
            w.full("trun", 1, [&] { w.u32(2).u32(0); });
        });
    });
    w.atom("mdat", [&] { w.zeros(20); });
    w.full("mfra", 0, [&] { w.zeros(8); });
    return w.take();
}

/// No header at the file level: one is found in the tail, its size and type stored backwards.
Bytes headerInTheTail() {
    Writer w;
    w.atom("ftyp", [&] { w.text("qt  ").u32(0); });
    w.atom("free", [&] {
        w.zeros(16);
        Bytes plain = moov({smallTrack()}, 100);
        for (std::size_t half = 0; half < 8; half += 4) {
            std::swap(plain[half], plain[half + 3]);
            std::swap(plain[half + 1], plain[half + 2]);
        }
        w.raw(plain);
    });
    return w.take();
}

Bytes emptyEditAndNoTables() {
    TrackPlan plan = smallTrack();
    plan.beforeMedia = [](Writer& w) {
        w.atom("edts", [&] { w.full("elst", 0, [&] { w.u32(1).u32(60).u32(0xFFFFFFFF).u32(0x10000); }); });
    };
    TrackPlan bare = smallTrack(2);
    bare.descriptionCount = 0;
    bare.descriptions = [](Writer&) {};
    return movie({plan, bare});
}

} // namespace

std::vector<Seed> fileSeeds() {
    return {{"file_compressed_header", compressedHeader()},
            {"file_compressed_twice", compressedTwice()},
            {"file_user_data", userData()},
            {"file_odd_levels", oddFileLevel()},
            {"file_fragmented", fragmented()},
            {"file_header_in_the_tail", headerInTheTail()},
            {"file_empty_edit", emptyEditAndNoTables()}};
}

std::vector<Seed> allSeeds() {
    std::vector<Seed> all;
    for (auto group : {videoSeeds, audioSeeds, systemSeeds, fileSeeds}) {
        for (Seed& seed : group()) {
            all.push_back(std::move(seed));
        }
    }
    return all;
}

} // namespace hostile
