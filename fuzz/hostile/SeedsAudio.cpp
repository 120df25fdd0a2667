#include "hostile/MovieParts.h"
#include "hostile/Seeds.h"

namespace hostile {

namespace {

TrackPlan audioPlan(const Part& entries, unsigned int constantSize = 0) {
    TrackPlan plan;
    plan.handler = "soun";
    plan.mediaHeader = smhd;
    plan.descriptions = entries;
    plan.timeScale = 44100;
    plan.frameDuration = 1024;
    plan.constantSize = constantSize;
    return plan;
}

/// Uncompressed samples: the table counts single ones, and one tick is one of them.
TrackPlan pcmPlan(const Part& entries) {
    TrackPlan plan = audioPlan(entries, 1);
    plan.frameDuration = 1;
    plan.samples = 30;
    plan.perChunk = 8;
    return plan;
}

void esds(Writer& w, unsigned int objectType) {
    w.full("esds", 0, [&] {
        w.u8(3).u8(25).u16(2).u8(0);
        w.u8(4).u8(17).u8(objectType).u8(0x15).u24(0).u32(64000).u32(64000).u8(5).u8(2).u16(0x1210);
        w.u8(6).u8(1).u8(2);
    });
}

Bytes mpeg4Audio() {
    return movie(
        {audioPlan([](Writer& w) { audioEntry(w, "mp4a", 0, 2, 16, [](Writer& e) { esds(e, 0x40); }); })},
        "M4A ");
}

Bytes wave() {
    TrackPlan plan = audioPlan([](Writer& w) {
        audioEntry(w, "mp4a", 1, 2, 16, [](Writer& e) {
            e.u32(1024).u32(0).u32(0).u32(2);
            e.atom("wave", [&] {
                e.atom("frma", [&] { e.text("mp4a"); });
                e.atom("mp4a", [&] { e.u32(0); });
                esds(e, 0x40);
                e.u32(8).u32(0);
            });
            e.full("chan", 0, [&] { e.u32(0x650002).u32(0).u32(0); });
        });
    });
    return movie({plan});
}

Bytes pcmVersion0() {
    TrackPlan sowt = pcmPlan([](Writer& w) { audioEntry(w, "sowt", 0, 2, 16, {}); });
    TrackPlan twos = pcmPlan([](Writer& w) { audioEntry(w, "twos", 0, 1, 8, {}); });
    twos.id = 2;
    return movie({sowt, twos});
}

Bytes pcmVersion1() {
    TrackPlan plan = pcmPlan([](Writer& w) {
        audioEntry(w, "in24", 1, 2, 16, [](Writer& e) {
            e.u32(1).u32(3).u32(6).u32(3);
            e.atom("wave", [&] {
                e.atom("frma", [&] { e.text("in24"); });
                e.atom("enda", [&] { e.u16(1); });
                e.u32(8).u32(0);
            });
        });
    });
    return movie({plan});
}

Bytes pcmVersion2() {
    TrackPlan plan = pcmPlan([](Writer& w) {
        audioEntry(w, "lpcm", 2, 3, 16, [](Writer& e) {
            e.u32(72).u64(0x40E5888000000000).u32(2).u32(0x7F000000).u32(24).u32(0xC).u32(6).u32(1);
        });
    });
    return movie({plan});
}

Bytes ima4() {
    TrackPlan plan = pcmPlan([](Writer& w) {
        audioEntry(w, "ima4", 1, 2, 16, [](Writer& e) { e.u32(64).u32(34).u32(68).u32(2); });
    });
    plan.samples = 256;
    plan.perChunk = 128;
    return movie({plan});
}

Bytes amr() {
    TrackPlan narrow = audioPlan([](Writer& w) {
        audioEntry(w, "samr", 0, 1, 16,
                   [](Writer& e) { e.atom("damr", [&] { e.text("KETR").u8(1).u16(0x81FF).u8(0).u8(1); }); });
    });
    TrackPlan wide = audioPlan([](Writer& w) { audioEntry(w, "sawb", 0, 1, 16, {}); }, 1);
    wide.id = 2;
    return movie({narrow, wide}, "3gp5");
}

Bytes layer3() {
    TrackPlan plan = audioPlan([](Writer& w) {
        audioEntry(w, "ms_U", 1, 2, 16, [](Writer& e) {
            e.u32(1152).u32(1).u32(1).u32(2);
            e.atom("wave", [&] {
                e.atom("frma", [&] { e.u32(0x6D730055); });
                e.u32(8).u32(0);
            });
        });
    });
    // The code has a zero byte in it, which no string literal carries: put it in by hand.
    const Part entry = plan.descriptions;
    plan.descriptions = [entry](Writer& w) {
        const std::size_t start = w.size();
        entry(w);
        w.patch(start + 4, 0x6D730055);
    };
    return movie({plan});
}

Bytes others() {
    std::vector<TrackPlan> tracks;
    unsigned int id = 0;
    for (const char* format : {"alac", "ac-3", "sqcp", "sevc", "dvca", "QDM2", "amrw", "MAC3"}) {
        TrackPlan plan = audioPlan(
            [format](Writer& w) {
                audioEntry(w, format, 0, 2, 16, [&](Writer& e) { e.full("alac", 0, [&] { e.zeros(24); }); });
            },
            ++id % 2 ? 0 : 1);
        plan.id = id;
        tracks.push_back(plan);
    }
    return movie(tracks);
}

} // namespace

std::vector<Seed> audioSeeds() {
    return {{"audio_mpeg4", mpeg4Audio()},
            {"audio_wave", wave()},
            {"audio_pcm_v0", pcmVersion0()},
            {"audio_pcm_v1", pcmVersion1()},
            {"audio_pcm_v2", pcmVersion2()},
            {"audio_ima4", ima4()},
            {"audio_amr", amr()},
            {"audio_layer3", layer3()},
            {"audio_others", others()}};
}

} // namespace hostile
