#include "hostile/MovieParts.h"

namespace hostile {

namespace {

void matrix(Writer& w) {
    for (const unsigned int v : {0x10000u, 0u, 0u, 0u, 0x10000u, 0u, 0u, 0u, 0x40000000u}) {
        w.u32(v);
    }
}

void tkhd(Writer& w, const TrackPlan& plan) {
    w.full("tkhd", 0x00000F, [&] {
        w.u32(0xD0000000).u32(0xD0000001).u32(plan.id).u32(0);
        w.u32(plan.samples * plan.frameDuration * 600ull / plan.timeScale);
        w.zeros(8).u16(0).u16(0).u16(0x0100).u16(0);
        matrix(w);
        w.u32(plan.width << 16).u32(plan.height << 16);
    });
}

void mdhd(Writer& w, const TrackPlan& plan) {
    const std::uint64_t duration = std::uint64_t{plan.samples} * plan.frameDuration;
    if (plan.wideMediaHeader) {
        w.full("mdhd", 0x01000000,
               [&] { w.u64(1).u64(2).u32(plan.timeScale).u64(duration).u16(0x55C4).u16(0); });
    } else {
        w.full("mdhd", 0, [&] { w.u32(1).u32(2).u32(plan.timeScale).u32(duration).u16(0x55C4).u16(0); });
    }
}

void hdlr(Writer& w, const char* type, const char* subtype, const char* name) {
    w.full("hdlr", 0, [&] { w.text(type).text(subtype).text("appl").u32(0).u32(0).pascal(name); });
}

unsigned int chunks(const TrackPlan& plan) { return (plan.samples + plan.perChunk - 1) / plan.perChunk; }

void tables(Writer& w, const TrackPlan& plan, std::uint64_t offset) {
    w.full("stsd", 0, [&] {
        w.u32(plan.descriptionCount);
        plan.descriptions(w);
    });
    w.full("stts", 0, [&] { w.u32(1).u32(plan.samples).u32(plan.frameDuration); });
    w.full("stsc", 0, [&] {
        const unsigned int rest = plan.samples % plan.perChunk;
        w.u32(rest ? 2 : 1).u32(1).u32(plan.perChunk).u32(1);
        if (rest) w.u32(chunks(plan)).u32(rest).u32(1);
    });
    w.full("stsz", 0, [&] {
        w.u32(plan.constantSize).u32(plan.samples);
        if (!plan.constantSize) {
            for (unsigned int i = 0; i < plan.samples; ++i) {
                w.u32(sampleSize(plan, i));
            }
        }
    });
    w.full(plan.wideOffsets ? "co64" : "stco", 0, [&] {
        w.u32(chunks(plan));
        for (unsigned int i = 0; i < plan.samples; ++i) {
            if (i % plan.perChunk == 0) plan.wideOffsets ? w.u64(offset) : w.u32(offset);
            offset += sampleSize(plan, i);
        }
    });
    if (plan.furtherTables) plan.furtherTables(w);
}

std::uint64_t mediaBytes(const TrackPlan& plan) {
    std::uint64_t sum = 0;
    for (unsigned int i = 0; i < plan.samples; ++i) {
        sum += sampleSize(plan, i);
    }
    return sum;
}

} // namespace

unsigned int sampleSize(const TrackPlan& plan, unsigned int n) {
    return plan.constantSize ? plan.constantSize : 5 + n * 7 % 11;
}

void vmhd(Writer& w) {
    w.full("vmhd", 1, [&] { w.u16(0x40).u16(0x8000).u16(0x8000).u16(0x8000); });
}

void smhd(Writer& w) {
    w.full("smhd", 0, [&] { w.u32(0); });
}

void videoEntry(Writer& w, const char* format, const Part& extensions) {
    w.atom(format, [&] {
        w.zeros(6).u16(1);
        w.u16(0).u16(0).text("appl").u32(512).u32(512).u16(320).u16(240);
        w.u32(0x480000).u32(0x480000).u32(0).u16(1).pascal("Codec").zeros(26).u16(24).u16(0xFFFF);
        if (extensions) extensions(w);
    });
}

void audioEntry(Writer& w, const char* format, unsigned int version, unsigned int channels, unsigned int bits,
                const Part& extensions) {
    w.atom(format, [&] {
        w.zeros(6).u16(1);
        w.u16(version).u16(0).u32(0).u16(channels).u16(bits).u16(0).u16(0).u32(44100u << 16);
        if (extensions) extensions(w);
    });
}

void dataInformation(Writer& w) {
    w.atom("dinf", [&] {
        w.full("dref", 0, [&] {
            w.u32(1);
            w.full("alis", 1, [] {});
        });
    });
}

void mvhd(Writer& w, unsigned int nextTrackID) {
    w.full("mvhd", 0, [&] {
        w.u32(0xD0000000).u32(0xD0000001).u32(600).u32(1200).u32(0x10000).u16(0x100).zeros(10);
        matrix(w);
        w.zeros(24).u32(nextTrackID);
    });
}

void trak(Writer& w, const TrackPlan& plan, std::uint64_t offset) {
    w.atom("trak", [&] {
        tkhd(w, plan);
        if (plan.beforeMedia) plan.beforeMedia(w);
        w.atom("mdia", [&] {
            mdhd(w, plan);
            hdlr(w, "mhlr", plan.handler.c_str(), "Media Handler");
            if (!plan.mediaInformation) return;
            w.atom("minf", [&] {
                plan.mediaHeader(w);
                hdlr(w, "dhlr", "alis", "Data Handler");
                dataInformation(w);
                w.atom("stbl", [&] { tables(w, plan, offset); });
            });
        });
        if (plan.afterMedia) plan.afterMedia(w);
    });
}

Writer mediaFirst(const std::vector<TrackPlan>& tracks, const char* brand, std::uint64_t& offset) {
    Writer w;
    w.atom("ftyp", [&] { w.text(brand).u32(0x200).text(brand).text("mp42"); });
    w.atom("mdat", [&] {
        offset = w.size();
        for (const TrackPlan& plan : tracks) {
            for (std::uint64_t i = 0, n = mediaBytes(plan); i < n; ++i) {
                w.u8((i * 37 + plan.id) & 0xFF);
            }
        }
    });
    return w;
}

Bytes moov(const std::vector<TrackPlan>& tracks, std::uint64_t offset, const Part& moovExtra) {
    Writer w;
    w.atom("moov", [&] {
        mvhd(w, static_cast<unsigned int>(tracks.size()) + 1);
        for (const TrackPlan& plan : tracks) {
            trak(w, plan, offset);
            offset += mediaBytes(plan);
        }
        if (moovExtra) moovExtra(w);
    });
    return w.take();
}

Bytes movie(const std::vector<TrackPlan>& tracks, const char* brand, const Part& moovExtra) {
    std::uint64_t offset = 0;
    Writer w = mediaFirst(tracks, brand, offset);
    w.raw(moov(tracks, offset, moovExtra));
    return w.take();
}

} // namespace hostile
