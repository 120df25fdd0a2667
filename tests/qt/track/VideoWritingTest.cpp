// Preparing a video track for writing.
#include "qt/track/DescriptionBytes.h"
#include "qt/track/WritingTree.h"

#include <qt/QTTrack/QTVideoTrack.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

struct Tree : WritingTree<QTVideoTrack> {
    VMHD* vmhd;
    TAPT* tapt;
    CLEF* clef = new CLEF;
    PROF* prof = new PROF;
    ENOF* enof = new ENOF;

    explicit Tree(QTMovieConstructionFlags flavour, VMHD* header = new VMHD, TAPT* apertures = new TAPT)
        : WritingTree(fourCC("vide"), flavour, header, {apertures}), vmhd(header), tapt(apertures) {
        adoptAll(tapt, {clef, prof, enof});
    }
    void prepare(const char (&format)[5], unsigned int width, unsigned int height) {
        track.setDataFormat(fourCC(format));
        track.setWidth(width);
        track.setHeight(height);
        EXPECT_EQ(track.prepareForWriting(), 0);
    }
};

TEST(VideoWriting, HeadersOfAQuickTimeMovie) {
    Tree tree(kMOV);
    tree.track.setDuration(3.3333);
    tree.vmhd->setGraphicsMode(0);
    tree.vmhd->setOpColor(0);
    tree.prepare("abcd", 720, 576);
    EXPECT_EQ(tree.tkhd->getWidth(), 720.0F);
    EXPECT_EQ(tree.tkhd->getHeight(), 576.0F);
    EXPECT_EQ(tree.mdhd->getDuration(), 2000U); // 600 x 3.3333, rounded
    EXPECT_EQ(tree.mdhd->getLanguage(), 0);
    EXPECT_EQ(tree.vmhd->getGraphicsMode(), 64);
    EXPECT_EQ(tree.vmhd->getOpColor(), 32768);
    EXPECT_EQ(tree.handler->getComponentType(), fourCC("mhlr"));
    EXPECT_EQ(tree.handler->getComponentSubType(), fourCC("vide"));
    EXPECT_TRUE(tree.handler->getIsPascalString());
    EXPECT_EQ(tree.handlerName(), std::string("Apple Video Media Handler\0", 26));
    ASSERT_EQ(tree.dref->getNumberOfEntries(), 1U);
    EXPECT_EQ(tree.dref->getDataReferenceEntry(0)->getType(), fourCC("alis"));
    EXPECT_EQ(tree.track.getDisplayWidth(), 720U);
    EXPECT_EQ(tree.track.getDisplayHeight(), 576U);
}

TEST(VideoWriting, HeadersOfA3GPPFile) {
    Tree tree(k3GP);
    tree.handler->setComponentManufacturer(7);
    tree.prepare("abcd", 176, 144);
    EXPECT_EQ(tree.vmhd->getGraphicsMode(), 0);
    EXPECT_EQ(tree.vmhd->getOpColor(), 0);
    EXPECT_EQ(tree.mdhd->getLanguage(), 5575);
    EXPECT_EQ(tree.handler->getComponentType(), 0U);
    EXPECT_EQ(tree.handler->getComponentManufacturer(), 0U);
    EXPECT_FALSE(tree.handler->getIsPascalString());
    EXPECT_EQ(tree.handlerName(), std::string("Ketra Video Media Handler\0", 26));
    EXPECT_EQ(tree.dref->getDataReferenceEntry(0)->getType(), fourCC("url "));
    EXPECT_EQ(tree.extensions(), hex("00000010 'pasp' 00000001 00000001"));
}

TEST(VideoWriting, DisplayFactorScalesTheDisplayAlone) {
    Tree tree(kMP4);
    tree.track.setDisplayFactor(2.0F);
    tree.prepare("abcd", 176, 144);
    EXPECT_EQ(tree.track.getDisplayWidth(), 352U);
    EXPECT_EQ(tree.track.getDisplayHeight(), 288U);
    EXPECT_EQ(tree.tkhd->getWidth(), 176.0F);
    Tree odd(kMP4);
    odd.track.setDisplayFactor(1.5F);
    odd.prepare("abcd", 175, 2);
    EXPECT_EQ(odd.track.getDisplayWidth(), 262U);
    Tree none(kMP4);
    none.track.setDisplayFactor(0.0F);
    none.prepare("abcd", 175, 2);
    EXPECT_EQ(none.track.getDisplayWidth(), 175U);
}

TEST(VideoWriting, UnsetFieldsOfTheDescription) {
    Tree tree(kMOV);
    tree.prepare("abcd", 720, 576);
    const auto& d = tree.description<STSDVideo>();
    EXPECT_EQ(tree.entry().getDataFormat(), fourCC("abcd"));
    EXPECT_EQ(d.getVendor(), fourCC("appl"));
    EXPECT_EQ(d.getWidth(), 720);
    EXPECT_EQ(d.getHeight(), 576);
    EXPECT_EQ(d.getHorizontalResolution(), 72.0F);
    EXPECT_EQ(d.getVerticalResolution(), 72.0F);
    EXPECT_EQ(d.getFrameCount(), 1);
    EXPECT_EQ(d.getDepth(), 24);
    EXPECT_EQ(d.getColorTableID(), 65535);
    EXPECT_EQ(d.getCompressorNameLength(), 0U);
    Tree mp4(kMP4);
    mp4.prepare("abcd", 720, 576);
    EXPECT_EQ(mp4.description<STSDVideo>().getVendor(), 0U);
}

TEST(VideoWriting, FieldsThatAreSetStay) {
    Tree tree(kMOV);
    unsigned char name[] = {'n', 'a', 'm', 'e'};
    tree.track.setVendor(1);
    tree.track.setTemporalQuality(2);
    tree.track.setSpatialQuality(3);
    tree.track.setHorizontalResolution(96);
    tree.track.setVerticalResolution(97);
    tree.track.setFrameCount(4);
    tree.track.setDepth(40);
    tree.track.setColorTableID(5);
    tree.track.setCompressorName(4, name);
    tree.description<STSDVideo>().setDepth(32); // set by a frame with alpha
    tree.prepare("abcd", 720, 576);
    const auto& d = tree.description<STSDVideo>();
    EXPECT_EQ(d.getVendor(), 1U);
    EXPECT_EQ(d.getTemporalQuality(), 2U);
    EXPECT_EQ(d.getSpatialQuality(), 3U);
    EXPECT_EQ(d.getHorizontalResolution(), 96.0F);
    EXPECT_EQ(d.getVerticalResolution(), 97.0F);
    EXPECT_EQ(d.getFrameCount(), 4);
    EXPECT_EQ(d.getDepth(), 32);
    EXPECT_EQ(d.getColorTableID(), 5);
    EXPECT_EQ(d.getCompressorNameLength(), 4U);
}

TEST(VideoWriting, PictureExtensions) {
    Tree tree(kMOV);
    tree.track.setFields(2);
    tree.track.setFieldOrder(9);
    tree.track.setColorDescription(1, 1, 1);
    tree.track.setDisplayAspectRatio(4, 3);
    tree.track.set_clap_width(704);
    tree.track.set_clap_height(576);
    tree.prepare("abcd", 720, 576);
    EXPECT_EQ(tree.extensions(), hex({"00000012 'colr' 'nclc' 0001 0001 0001", "0000000A 'fiel' 02 09",
                                      "00000010 'pasp' 00000010 0000000F", // 16 : 15
                                      "00000028 'clap' 000002C0 00000001 00000240 00000001",
                                      "00000000 00000001 00000000 00000001"}));
    EXPECT_EQ(tree.clef->getWidth(), 750U); // 704 x 16 / 15
    EXPECT_EQ(tree.clef->getHeight(), 576U);
    EXPECT_EQ(tree.prof->getWidth(), 768U);
    EXPECT_EQ(tree.prof->getHeight(), 576U);
    EXPECT_EQ(tree.enof->getWidth(), 720U);
    EXPECT_EQ(tree.enof->getHeight(), 576U);
    // What was written is read back as the same picture.
    QTVideoTrack back;
    readDescription(back, "abcd", videoBody(720, 576) + tree.extension("pasp"));
    EXPECT_EQ(back.getDisplayAspectRatioW(), 4U);
    EXPECT_EQ(back.getDisplayAspectRatioH(), 3U);
}

TEST(VideoWriting, PixelAspectOfKnownShapes) {
    const struct {
        unsigned int width, height, w, h;
        const char* pasp;
    } kRows[] = {{720, 576, 4, 3, "00000010 0000000F"},
                 {720, 480, 4, 3, "00000008 00000009"},
                 {720, 576, 16, 9, "00000040 0000002D"},
                 {1920, 1080, 16, 9, "00000001 00000001"}};
    for (const auto& row : kRows) {
        Tree tree(kMP4);
        tree.track.setDisplayAspectRatio(row.w, row.h);
        tree.prepare("abcd", row.width, row.height);
        EXPECT_EQ(tree.extensions(), hex("00000010 'pasp'") + hex(row.pasp));
    }
    Tree display(kMP4);
    display.track.setDisplayWidth(768);
    display.prepare("abcd", 720, 576);
    EXPECT_EQ(display.extensions(), hex("00000010 'pasp' 00000010 0000000F"));
    Tree nothing(kMP4);
    nothing.prepare("abcd", 0, 0);
    EXPECT_EQ(nothing.extensions(), Bytes());
}

TEST(VideoWriting, WithoutCleanApertureAllOfThePictureIsShown) {
    Tree tree(kMOV);
    tree.prepare("abcd", 640, 480);
    EXPECT_EQ(tree.extension("clap"), Bytes());
    EXPECT_EQ(tree.clef->getWidth(), 640U);
    EXPECT_EQ(tree.prof->getWidth(), 640U);
    EXPECT_EQ(tree.enof->getHeight(), 480U);
}

TEST(VideoWriting, ColourOfProRes) {
    const struct {
        unsigned int height;
        const char* values;
    } kRows[] = {{719, "0006 0001 0006"}, {720, "0001 0001 0001"}};
    for (const auto& row : kRows) {
        Tree tree(kMOV);
        tree.prepare("apcn", 720, row.height);
        EXPECT_EQ(tree.extension("colr"), hex("00000012 'colr' 'nclc'") + hex(row.values));
        EXPECT_EQ(tree.stbl->getAtomOfType(fourCC("stss")), nullptr); // all samples are sync samples
        EXPECT_EQ(tree.stbl->getAtomOfType(fourCC("sdtp")), nullptr);
    }
    Tree set(kMOV);
    set.track.setColorDescription(9, 9, 9);
    set.prepare("ap4h", 720, 480);
    EXPECT_EQ(set.extension("colr"), hex("00000012 'colr' 'nclc' 0009 0009 0009"));
    Tree other(kMOV);
    other.prepare("abcd", 720, 480);
    EXPECT_EQ(other.extension("colr"), hex("00000012 'colr' 'nclc' 0002 0002 0002"));
    EXPECT_TRUE(other.stbl->getAtomOfType(fourCC("stss")));
    Tree mp4(kMP4);
    mp4.track.setUseQuickTimeExtensions(true);
    mp4.prepare("abcd", 720, 480);
    EXPECT_FALSE(mp4.extension("colr").empty());
}

TEST(VideoWriting, NegativeOffsetsNeedAShift) {
    Tree tree(kMP4);
    tree.ctts->addCompositionTime(new CTTSData(1, static_cast<unsigned int>(-5)));
    tree.ctts->addCompositionTime(new CTTSData(2, 3));
    tree.track.setDuration(2);
    tree.prepare("abcd", 16, 16);
    auto* cslg = dynamic_cast<CSLG*>(tree.stbl->getAtomOfType(fourCC("cslg")));
    ASSERT_TRUE(cslg);
    EXPECT_EQ(cslg->getShift(), 5U);
    EXPECT_EQ(cslg->getLeastDelta(), static_cast<unsigned int>(-5));
    EXPECT_EQ(cslg->getGreatestDelta(), 3U);
    EXPECT_EQ(cslg->getDisplayStartTime(), 0U);
    EXPECT_EQ(cslg->getDisplayEndTime(), 1200U);
    const std::size_t children = tree.stbl->getChildren().size();
    tree.prepare("abcd", 16, 16);
    EXPECT_EQ(tree.stbl->getChildren().size(), children + 1) << "each time anew";

    Tree far(kMP4);
    far.ctts->addCompositionTime(new CTTSData(1, static_cast<unsigned int>(-20000)));
    far.prepare("abcd", 16, 16);
    cslg = dynamic_cast<CSLG*>(far.stbl->getAtomOfType(fourCC("cslg")));
    ASSERT_TRUE(cslg);
    EXPECT_EQ(cslg->getLeastDelta(), static_cast<unsigned int>(-20000));
    EXPECT_EQ(cslg->getGreatestDelta(), static_cast<unsigned int>(-10000)); // where the search begins

    Tree none(kMP4);
    none.ctts->addCompositionTime(new CTTSData(1, 3));
    none.prepare("abcd", 16, 16);
    EXPECT_EQ(none.stbl->getAtomOfType(fourCC("cslg")), nullptr);
}

TEST(VideoWriting, MPEG4Configuration) {
    Tree tree(kMP4);
    tree.track.setMaxBitRate(1000);
    tree.track.setDuration(1);
    tree.track.setTotalDataSize(112); // (112 + 0.5) x 8 = 900 bits a second
    tree.track.setDecoderSpecificInfo(frameOf({1, 2, 3, 4}));
    tree.prepare("mp4v", 16, 16);
    EXPECT_EQ(tree.extension("esds"),
              hex({"00000035 'esds' 00000000", "03 80808024 0000 00",
                   "04 80808016 20 11 003A98 000003E8 00000384", "05 80808004 01020304", "06 80808001 02"}));
    Tree bare(kMP4);
    bare.prepare("mp4v", 16, 16);
    EXPECT_EQ(bare.extension("esds"), hex({"0000002C 'esds' 00000000", "03 8080801B 0000 00",
                                           "04 8080800D 20 11 003A98 00000000 00000000", "06 80808001 02"}));
}

TEST(VideoWriting, AvcConfiguration) {
    // High profile, 4:2:0, eight bits: ID 0 (1), chroma 1 (010), luma 0 (1), chroma 0 (1): AC.
    Tree tree(kMOV);
    tree.track.setH264SeqParSet(frameOf(hex("00000001") + hex("6764000B AC")));
    tree.track.setH264PictParSet(frameOf(hex("00000001 68EBE3CB 000001 68AA 00 00000001 68BB")));
    tree.prepare("h264", 176, 144);
    EXPECT_EQ(tree.entry().getDataFormat(), fourCC("avc1"));
    EXPECT_EQ(tree.track.getDataFormat(), fourCC("h264")) << "the track keeps its own";
    EXPECT_STREQ(reinterpret_cast<char*>(tree.description<STSDVideo>().getCompressorName()), "H264");
    EXPECT_EQ(tree.extension("avcC"), hex({"00000028 'avcC'", "01 64 00 0B FF E1", "0005 6764000BAC", "03",
                                           "0004 68EBE3CB", "0002 68AA", "0002 68BB", "FD F8 F8 00"}));
    Tree mp4(kMP4);
    mp4.track.setH264SizeSize(2);
    mp4.track.setH264SeqParSet(frameOf(hex("6742000B AC"))); // no start code: one set
    mp4.prepare("avc1", 176, 144);
    EXPECT_EQ(mp4.description<STSDVideo>().getCompressorNameLength(), 0U);
    EXPECT_EQ(mp4.extension("avcC"), hex({"00000016 'avcC'", "01 42 00 0B FD E1", "0005 6742000BAC", "00"}));
}

TEST(VideoWriting, AvcConfigurationOfTenBits422) {
    // ID 0 (1), chroma 2 (011), luma 2 (011), chroma 2 (011): 1 011 011 0 11...
    Tree tree(kMP4);
    tree.track.setH264SeqParSet(frameOf(hex("00000001 677A0028 B6 C0")));
    tree.prepare("avc1", 176, 144);
    const Bytes config = tree.extension("avcC");
    ASSERT_GE(config.size(), 4U);
    EXPECT_EQ(Bytes(config.end() - 4, config.end()), hex("FE FA FA 00"));
}

TEST(VideoWriting, AvcConfigurationWithoutSets) {
    Tree none(kMP4);
    none.prepare("avc1", 176, 144);
    EXPECT_EQ(none.extension("avcC"), Bytes());
    EXPECT_EQ(none.entry().getDataFormat(), fourCC("avc1"));
    Tree tooShort(kMP4);
    tooShort.track.setH264SeqParSet(frameOf(hex("00000001 674200")));
    tooShort.prepare("avc1", 176, 144);
    EXPECT_EQ(tooShort.extension("avcC"), Bytes());
    Tree record(kMP4);
    record.track.setDecoderSpecificInfo(frameOf(hex("0142000B")));
    record.prepare("xavc", 176, 144);
    EXPECT_EQ(record.extension("avcC"), hex("0000000C 'avcC' 0142000B"));
    Tree whole(kMP4);
    whole.track.setDecoderSpecificInfo(frameOf(hex("0000000C 'avcC' 0142000B")));
    whole.prepare("avc1", 176, 144);
    EXPECT_EQ(whole.extension("avcC"), hex("0000000C 'avcC' 0142000B"));
}

TEST(VideoWriting, AvcSetsThatDoNotFitAreLeftOut) {
    Bytes many;
    for (int i = 0; i < 40; ++i) {
        many = many + hex("00000001 6742000B");
    }
    Tree tree(kMP4);
    tree.track.setH264SeqParSet(frameOf(many));
    tree.track.setH264PictParSet(frameOf(hex("00000001") + repeat(0x68, 65536) + hex("00000001 68AA")));
    tree.prepare("avc1", 176, 144);
    const Bytes config = tree.extension("avcC");
    ASSERT_EQ(config.size(), 14U + 31 * 6 + 1 + 4);
    EXPECT_EQ(config[13], 0xFF); // 31 sets
    EXPECT_EQ(Bytes(config.end() - 5, config.end()), hex("01 0002 68AA"));
}

TEST(VideoWriting, HevcConfigurationIsWrittenBack) {
    const Bytes config = atom("hvcC", hex("01 02 03"));
    Tree mov(kMOV);
    mov.track.setH265DecoderSpecificInfo(frameOf(config));
    mov.prepare("hvc1", 176, 144);
    EXPECT_EQ(mov.entry().getDataFormat(), fourCC("hev1"));
    EXPECT_EQ(mov.extension("hvcC"), config);
    Tree mp4(kMP4);
    mp4.track.setH265DecoderSpecificInfo(frameOf(hex("01 02 03")));
    mp4.prepare("hevc", 176, 144);
    EXPECT_EQ(mp4.entry().getDataFormat(), fourCC("hvc1"));
    EXPECT_EQ(mp4.extension("hvcC"), config);
    Tree none(kMP4);
    none.prepare("h265", 176, 144);
    EXPECT_EQ(none.extension("hvcC"), Bytes());
}

TEST(VideoWriting, HevcConfigurationOfParameterSets) {
    // NAL header 42 01; set 0, one layer, nested (01); twelve bytes of profile with an emulation byte; then
    // ID 0 (1), chroma 1 (010), width 7 (0001000), height 7 (0001000), no window (0), luma 0 (1), chroma 0
    // (1).
    const Bytes sps = hex({"4201 01", "01 60000000 B00000030000 03 00 5D", "A1 10 23 80"});
    Tree tree(kMP4);
    tree.track.setH265DecoderSpecificInfo(
        frameOf(hex("00000001 4001 0C") + hex("00000001") + sps + hex("00000001 4401 C1 00000001 4E01 05")));
    tree.prepare("h265", 176, 144);
    EXPECT_EQ(tree.extension("hvcC"), hex({"00000049 'hvcC' 01", "01 60000000 B00000000000 5D",
                                           "F000 FC FD F8 F8", "0000 0F", "03", "A0 0001 0003 40010C"}) +
                                          hex("A1 0001 0015") + sps + hex("A2 0001 0003 4401C1"));
}

TEST(VideoWriting, SequenceHeader) {
    Tree tree(kMOV);
    unsigned char data[] = {1, 2, 3};
    tree.track.setSVQ3Data(3, data);
    tree.prepare("SVQ3", 16, 16);
    EXPECT_EQ(tree.extension("SMI "), hex("00000013 'SMI ' 'SEQH' 00000003 010203"));
    Tree none(kMOV);
    none.prepare("SVQ3", 16, 16);
    EXPECT_EQ(none.extension("SMI "), Bytes());
}

TEST(VideoWriting, KeptAtoms) {
    const Bytes kept = atom("ACLR", {1}) + atom("ARES", {2});
    Tree tree(kMOV);
    tree.track.setDecoderSpecificInfo(frameOf(kept));
    tree.prepare("AVdn", 16, 16);
    const Bytes all = tree.extensions();
    EXPECT_EQ(Bytes(all.end() - static_cast<std::ptrdiff_t>(kept.size()), all.end()), kept);
    Tree other(kMP4);
    other.track.setDecoderSpecificInfo(frameOf(hex("0000FFFF 'ACLR' 00")));
    other.prepare("AVdh", 16, 16);
    EXPECT_EQ(other.extensions().size(), 16U); // no atom: only the pixel aspect
}

TEST(VideoWriting, H263Configuration) {
    Tree tree(k3GP);
    tree.prepare("s263", 176, 144);
    EXPECT_EQ(tree.extension("d263"), hex("0000000F 'd263' 'KETR' 00 0A 00"));
    Tree renamed(k3G2);
    renamed.track.setH263Level(45);
    renamed.track.setH263Profile(3);
    renamed.prepare("h263", 176, 144);
    EXPECT_EQ(renamed.entry().getDataFormat(), fourCC("s263"));
    EXPECT_EQ(renamed.extension("d263"), hex("0000000F 'd263' 'KETR' 00 2D 03"));
    Tree mov(kMOV);
    mov.prepare("h263", 176, 144);
    EXPECT_EQ(mov.entry().getDataFormat(), fourCC("h263"));
    EXPECT_EQ(mov.extension("d263"), Bytes());
}

TEST(VideoWriting, PreparingTwiceDoesNotDoubleTheExtensions) {
    Tree tree(kMP4);
    tree.entry().addExtension(frameOf(atom("abcd", {1}))); // the caller's own
    tree.prepare("mp4v", 16, 16);
    const Bytes first = tree.extensions();
    tree.prepare("mp4v", 16, 16);
    EXPECT_EQ(tree.extensions(), first);
    EXPECT_EQ(tree.stsd->updateSize(), 16U + 86 + first.size());
}

TEST(VideoWriting, TrackWithoutATreeIsPrepared) {
    QTVideoTrack track;
    track.setDataFormat(fourCC("apch"));
    EXPECT_EQ(track.prepareForWriting(), 0);
}

} // namespace
} // namespace test
