#include "hostile/MovieParts.h"
#include "hostile/Seeds.h"

namespace hostile {

namespace {

void entry(Writer& w, const char* format, const Part& body) {
    w.atom(format, [&] {
        w.zeros(6).u16(1);
        body(w);
    });
}

void gmin(Writer& w) {
    w.full("gmin", 0, [&] { w.u16(0x40).u16(0x8000).u16(0x8000).u16(0x8000).u16(0).u16(0); });
}

void hmhd(Writer& w) {
    w.full("hmhd", 0, [&] { w.u16(1500).u16(700).u32(64000).u32(32000).u32(16000); });
}

TrackPlan textPlan() {
    TrackPlan plan;
    plan.handler = "text";
    plan.mediaHeader = [](Writer& w) {
        w.atom("gmhd", [&] {
            gmin(w);
            w.atom("text", [&] { w.zeros(2).u16(1).zeros(14).u16(1).zeros(14).u16(0x4000); });
        });
    };
    plan.descriptions = [](Writer& w) {
        entry(w, "text", [](Writer& e) {
            e.u32(4).u32(1).u16(0xFFFF).u16(0xFFFF).u16(0xFFFF).u16(0).u16(0).u16(40).u16(320);
            e.zeros(8).u16(0).u16(2).u8(0).u16(0).zeros(6).pascal("Geneva");
        });
    };
    return plan;
}

Bytes chapters() {
    TrackPlan video;
    video.mediaHeader = vmhd;
    video.descriptions = [](Writer& w) { videoEntry(w, "jpeg", {}); };
    video.beforeMedia = [](Writer& w) {
        w.atom("tref", [&] {
            for (const char* type : {"chap", "tmcd", "sync", "scpt", "ssrc", "hint", "dpnd", "ipir"}) {
                w.atom(type, [&] { w.u32(2); });
            }
        });
    };
    TrackPlan text = textPlan();
    text.id = 2;
    text.afterMedia = [](Writer& w) {
        w.atom("udta", [&] {
            w.atom("chap", [&] { w.u32(1); });
            w.atom("name", [&] { w.text("Chapter Track"); });
            w.u32(0);
        });
    };
    return movie({video, text});
}

Bytes timeCode() {
    TrackPlan plan;
    plan.handler = "tmcd";
    plan.mediaHeader = [](Writer& w) {
        w.atom("gmhd", [&] {
            gmin(w);
            w.atom("tmcd", [&] {
                w.full("tcmi", 0, [&] {
                    w.u16(0).u16(0).u16(12).u16(0).zeros(6).u16(0xFFFF).u16(0xFFFF).u16(0xFFFF).pascal(
                        "Geneva");
                });
            });
        });
    };
    plan.descriptions = [](Writer& w) {
        entry(w, "tmcd", [](Writer& e) {
            e.u32(0).u32(2).u32(600).u32(20).u8(30).u8(0);
            e.atom("name", [&] { e.u16(4).u16(0).text("reel"); });
        });
    };
    plan.samples = 1;
    plan.constantSize = 4;
    return movie({plan});
}

Bytes hinted() {
    TrackPlan video;
    video.mediaHeader = vmhd;
    video.descriptions = [](Writer& w) { videoEntry(w, "mp4v", {}); };
    TrackPlan hint;
    hint.id = 2;
    hint.handler = "hint";
    hint.mediaHeader = hmhd;
    hint.descriptions = [](Writer& w) {
        entry(w, "rtp ", [](Writer& e) {
            e.u16(1).u16(1).u32(1500);
            e.atom("tims", [&] { e.u32(90000); });
        });
    };
    hint.beforeMedia = [](Writer& w) { w.atom("tref", [&] { w.atom("hint", [&] { w.u32(1); }); }); };
    hint.afterMedia = [](Writer& w) {
        w.atom("udta", [&] {
            w.atom("name", [&] { w.text("Hinted Video Track"); });
            w.atom("hnti", [&] { w.atom("sdp ", [&] { w.text("m=video 0 RTP/AVP 96\r\n"); }); });
            w.atom("hinf", [&] {
                w.atom("trpy", [&] { w.u64(1000); });
                w.atom("nump", [&] { w.u64(10); });
                w.atom("payt", [&] { w.u32(96).pascal("H264/90000"); });
            });
        });
    };
    return movie({video, hint}, "qt  ", [](Writer& w) {
        w.atom("udta", [&] { w.atom("hnti", [&] { w.atom("rtp ", [&] { w.text("sdp b=AS:64\r\n"); }); }); });
    });
}

Bytes descriptors() {
    const auto systemTrack = [](unsigned int id, const char* handler, const Part& references) {
        TrackPlan plan;
        plan.id = id;
        plan.handler = handler;
        plan.mediaHeader = [](Writer& w) { w.full("nmhd", 0, [] {}); };
        plan.samples = 2;
        plan.beforeMedia = references;
        plan.descriptions = [](Writer& w) {
            entry(w, "mp4s", [](Writer& e) {
                e.full("esds", 0, [&] {
                    e.u8(3).u8(21).u16(0).u8(1).u8(4).u8(13).u8(2).u8(0x0D).u24(15000).u32(0).u32(0);
                    e.u8(6).u8(1).u8(2);
                });
            });
        };
        return plan;
    };
    std::vector<TrackPlan> tracks;
    tracks.push_back(systemTrack(
        1, "odsm", [](Writer& w) { w.atom("tref", [&] { w.atom("mpod", [&] { w.u32(1).u32(2); }); }); }));
    tracks.push_back(systemTrack(
        2, "sdsm", [](Writer& w) { w.atom("tref", [&] { w.atom("dpnd", [&] { w.u32(1); }); }); }));
    return movie(tracks, "mp42", [](Writer& w) {
        w.full("iods", 0, [&] {
            w.u8(0x10).u8(0x80).u8(0x80).u8(0x80).u8(25).u16(0x4F).raw({0xFE, 1, 1, 3, 1});
            w.u8(0x0E).u8(4).u32(1).u8(0x0E).u8(4).u32(2).u8(3).u8(4).u16(1).u8(0).u8(9);
        });
    });
}

Bytes mediaHandlerOnly() {
    TrackPlan plan;
    plan.mediaInformation = false;
    return movie({plan});
}

} // namespace

std::vector<Seed> systemSeeds() {
    return {{"text_chapters", chapters()},
            {"time_code", timeCode()},
            {"hint_tracks", hinted()},
            {"systems_descriptors", descriptors()},
            {"media_handler_only", mediaHandlerOnly()}};
}

} // namespace hostile
