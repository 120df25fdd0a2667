#include "hostile/MovieParts.h"
#include "hostile/Seeds.h"

namespace hostile {

namespace {

TrackPlan videoPlan(const char* format, const Part& extensions) {
    TrackPlan plan;
    plan.mediaHeader = vmhd;
    plan.descriptions = [=](Writer& w) { videoEntry(w, format, extensions); };
    plan.width = 320;
    plan.height = 240;
    return plan;
}

void avcC(Writer& w) {
    w.atom("avcC", [&] {
        w.u8(1).u8(100).u8(0).u8(30).u8(0xFF).u8(0xE1);
        w.u16(10).raw({0x67, 0x64, 0x00, 0x1E, 0xAC, 0xD9, 0x40, 0xA0, 0x2F, 0xF9});
        w.u8(2).u16(4).raw({0x68, 0xEB, 0xE3, 0xCB}).u16(4).raw({0x68, 0xEB, 0xE3, 0xCC});
    });
}

void pictureExtensions(Writer& w) {
    w.atom("fiel", [&] { w.u8(2).u8(9); });
    w.atom("colr", [&] { w.text("nclc").u16(6).u16(1).u16(6); });
    w.atom("clap", [&] { w.u32(704).u32(1).u32(576).u32(1).u32(0).u32(1).u32(0).u32(1); });
    w.atom("pasp", [&] { w.u32(16).u32(15); });
    w.atom("gama", [&] { w.u32(0x23333); });
}

void reorderTables(Writer& w) {
    w.full("ctts", 0, [&] { w.u32(4).u32(2).u32(20).u32(1).u32(60).u32(8).u32(0).u32(1).u32(0xFFFFFFEC); });
    w.full("cslg", 0, [&] { w.u32(20).u32(0xFFFFFFEC).u32(60).u32(0).u32(240); });
    w.full("stss", 0, [&] { w.u32(3).u32(1).u32(5).u32(9); });
}

void everyTable(Writer& w) {
    reorderTables(w);
    w.full("stps", 0, [&] { w.u32(2).u32(3).u32(7); });
    w.full("sdtp", 0, [&] { w.zeros(6).raw({0x10, 0x20, 0x24, 0x08, 0x04, 0x02}); });
    w.full("stdp", 0, [&] {
        for (int i = 0; i < 12; ++i) {
            w.u16(static_cast<unsigned int>(i * 100));
        }
    });
    w.full("stsh", 0, [&] { w.u32(2).u32(2).u32(1).u32(6).u32(5); });
    w.full("sgpd", 0x01000000, [&] { w.text("roll").u32(2).u32(1).u16(0xFFFF); });
}

void aperture(Writer& w) {
    w.atom("tapt", [&] {
        for (const char* type : {"clef", "prof", "enof"}) {
            w.full(type, 0, [&] { w.u32(320u << 16).u32(240u << 16); });
        }
    });
}

void clippingAndMatte(Writer& w) {
    w.atom("clip", [&] { w.atom("crgn", [&] { w.u16(10).u16(0).u16(0).u16(240).u16(320); }); });
    w.atom("matt", [&] { w.full("kmat", 0, [&] { w.zeros(24); }); });
    w.atom("ctab", [&] { w.u32(0).u16(0x8000).u16(1).zeros(16); });
    w.atom("load", [&] { w.u32(0).u32(240).u32(1).u32(0x100); });
}

void inputMap(Writer& w) {
    w.atom("imap", [&] {
        w.atom(std::string_view("\0\0in", 4), [&] {
            w.u32(1).u16(0).u16(2).u32(0);
            w.atom(std::string_view("\0\0ty", 4), [&] { w.u32(3); });
            w.atom("obid", [&] { w.u32(7); });
        });
        w.atom("  in", [&] {
            w.u32(2).u16(0).u16(2).u32(0);
            w.atom("  ty", [&] { w.u32(3); });
            w.atom("obid", [&] { w.u32(8); });
        });
    });
}

void edits(Writer& w) {
    w.atom("edts", [&] {
        w.full("elst", 0,
               [&] { w.u32(2).u32(60).u32(0xFFFFFFFF).u32(0x10000).u32(240).u32(20).u32(0x10000); });
    });
}

void esds(Writer& w) {
    w.full("esds", 0, [&] {
        w.u8(3).u8(0x80).u8(0x80).u8(28).u16(1).u8(0xC0).u16(2).u8(4).text("http");
        w.u8(4).u8(17).u8(0x20).u8(0x11).u24(0).u32(64000).u32(64000).u8(5).u8(2).u16(0x1290);
    });
}

Bytes plain() {
    TrackPlan plan = videoPlan("avc1", avcC);
    plan.furtherTables = reorderTables;
    return movie({plan}, "isom");
}

Bytes everything() {
    TrackPlan plan = videoPlan("avc1", [](Writer& w) {
        avcC(w);
        pictureExtensions(w);
    });
    plan.furtherTables = everyTable;
    plan.wideMediaHeader = true;
    plan.beforeMedia = [](Writer& w) {
        aperture(w);
        clippingAndMatte(w);
        edits(w);
        inputMap(w);
    };
    return movie({plan});
}

Bytes wideOffsets() {
    TrackPlan plan = videoPlan("hev1", [](Writer& w) {
        w.atom("hvcC", [&] { w.u8(1).zeros(21).u8(1).u8(0x20).u16(1).u16(3).u24(0x400102); });
    });
    plan.wideOffsets = true;
    plan.samples = 10;
    plan.furtherTables = reorderTables;
    return movie({plan}, "mp42");
}

Bytes severalDescriptions() {
    TrackPlan plan = videoPlan("mp4v", esds);
    plan.descriptionCount = 2;
    plan.descriptions = [](Writer& w) {
        videoEntry(w, "mp4v", esds);
        videoEntry(w, "mp4v", pictureExtensions);
    };
    plan.samples = 9;
    return movie({plan}, "mp42");
}

Bytes shortEntries() {
    TrackPlan plan =
        videoPlan("s263", [](Writer& w) { w.atom("d263", [&] { w.text("KETR").u8(0).u8(10).u8(0); }); });
    return movie({plan}, "3gp5");
}

Bytes oldCodecs() {
    TrackPlan sorenson = videoPlan(
        "SVQ3", [](Writer& w) { w.atom("SMI ", [&] { w.text("SEQH").u32(6).u32(0x01020304).u16(5); }); });
    TrackPlan dnx = videoPlan("AVdn", [](Writer& w) {
        w.atom("ARES", [&] { w.u32(1).u32(2).u32(1270).zeros(8); });
        w.atom("ADHR", [&] { w.u32(1).u32(1256); });
        w.u32(0);
    });
    dnx.id = 2;
    TrackPlan raw = videoPlan("raw ", {});
    raw.id = 3;
    raw.constantSize = 16;
    return movie({sorenson, dnx, raw});
}

Bytes partialSyncOnly() {
    TrackPlan plan = videoPlan("mx5p", {});
    plan.furtherTables = [](Writer& w) { w.full("stps", 0, [&] { w.u32(3).u32(1).u32(4).u32(8); }); };
    return movie({plan});
}

} // namespace

std::vector<Seed> videoSeeds() {
    return {{"video_plain", plain()},
            {"video_everything", everything()},
            {"video_wide_offsets", wideOffsets()},
            {"video_several_descriptions", severalDescriptions()},
            {"video_short_entries", shortEntries()},
            {"video_old_codecs", oldCodecs()},
            {"video_partial_sync_only", partialSyncOnly()}};
}

} // namespace hostile
