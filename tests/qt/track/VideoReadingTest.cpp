// Reading the video sample description.
#include "qt/track/DescriptionBytes.h"

#include <base/CException.h>
#include <qt/QTAtoms.h>
#include <qt/QTTrack/QTVideoTrack.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

/// A track that has read one description with extensions.
std::unique_ptr<QTVideoTrack> video(const char (&format)[5], unsigned int width, unsigned int height,
                                    std::initializer_list<Bytes> extensions = {}) {
    auto track = std::make_unique<QTVideoTrack>();
    readDescription(*track, format, videoBody(width, height) + join(extensions));
    return track;
}

Bytes pasp(unsigned int h, unsigned int v) { return atom("pasp", u32(h) + u32(v)); }

Bytes clap(unsigned int w, unsigned int h, unsigned int wd = 1, unsigned int hd = 1) {
    return atom("clap", u32(w) + u32(wd) + u32(h) + u32(hd) + repeat(0, 16));
}

Bytes bytesOf(QTFrame* frame) {
    return frame ? Bytes(frame->getData(), frame->getData() + frame->getDataLength()) : Bytes();
}

TEST(VideoReading, FixedFields) {
    const auto table = readTable(1, entryBytes("abcd", videoBody(720, 576)));
    QTVideoTrack track;
    EXPECT_EQ(track.parseStsd(table.get()), 0);
    EXPECT_EQ(track.getVersion(), 1);
    EXPECT_EQ(track.getRevisionLevel(), 2);
    EXPECT_EQ(track.getVendor(), fourCC("appl"));
    EXPECT_EQ(track.getTemporalQuality(), 3U);
    EXPECT_EQ(track.getSpatialQuality(), 4U);
    EXPECT_EQ(track.getWidth(), 720U);
    EXPECT_EQ(track.getHeight(), 576U);
    EXPECT_EQ(track.getHorizontalResoultion(), 72U);
    EXPECT_EQ(track.getVerticalResolution(), 73U); // a fraction of 0xFFFF adds one
    EXPECT_EQ(track.getFrameCount(), 1);           // whatever the file says
    EXPECT_EQ(track.getDepth(), 24);
    EXPECT_EQ(track.getColorTableID(), 65535);
    ASSERT_EQ(track.getCompressorNameLength(), 4U);
    EXPECT_STREQ(reinterpret_cast<char*>(track.getCompressorName()), "name");
    EXPECT_EQ(track.getDataFormat(), fourCC("abcd"));
    EXPECT_FALSE(track.getStsdContainsExtensions());
    EXPECT_EQ(track.getDisplayAspectRatioW(), 5U);
    EXPECT_EQ(track.getDisplayAspectRatioH(), 4U);
    EXPECT_EQ(track.getESDS(), nullptr);
    auto* description = dynamic_cast<STSDVideo*>(table->getSampleDescriptionData(0)->getExtraData());
    ASSERT_TRUE(description);
    EXPECT_EQ(description->getWidth(), 720);
    EXPECT_EQ(description->getFrameCount(), 1);
    EXPECT_EQ(description->getVerticalResolution(), 73.0F);
    EXPECT_EQ(description->getCompressorNameLength(), 4U);
}

TEST(VideoReading, LongNameTakesTheWholeField) {
    Bytes body = videoBody(16, 16);
    body[34] = 40;
    QTVideoTrack track;
    readDescription(track, "abcd", body);
    ASSERT_EQ(track.getCompressorNameLength(), 32U);
    EXPECT_EQ(track.getCompressorName()[0], 40);
    EXPECT_EQ(track.getCompressorName()[1], 'n');
    EXPECT_EQ(track.getCompressorName()[32], 0);
    EXPECT_EQ(track.getDepth(), 24); // read from behind the field
}

TEST(VideoReading, OnlyTheFirstOfSeveralIsRead) {
    const auto table =
        readTable(2, join({entryBytes("abcd", videoBody(1, 2)), entryBytes("efgh", videoBody(3, 4))}));
    QTVideoTrack track;
    EXPECT_EQ(track.parseStsd(table.get()), 0);
    EXPECT_EQ(track.getWidth(), 1U);
    EXPECT_EQ(table->getSampleDescriptionData(1)->getExtraData(), nullptr);
}

TEST(VideoReading, WrongCountIsAnError) {
    const auto table = readTable(3, join({entryBytes("abcd", videoBody(1, 2)), entryBytes("abcd", {})}));
    QTVideoTrack track;
    try {
        track.parseStsd(table.get());
        FAIL();
    } catch (const Ketra::CException& e) {
        EXPECT_TRUE(e.getMessage() ==
                    "Not a correct number of descriptions in the descriptionsvector 2 should be 3");
        EXPECT_TRUE(e.getFunction() == "Ketra::QT::QTVideoTrack::parseStsd");
        EXPECT_TRUE(e.getFile() == "lib/qt/QTTrack");
    }
}

TEST(VideoReading, WhatIsNoTableIsRefused) {
    QTVideoTrack track;
    EXPECT_EQ(track.parseStsd(nullptr), -1);
    QTAtom plain(16, fourCC("stsd"));
    EXPECT_EQ(track.parseStsd(&plain), -1);
    EXPECT_EQ(track.parseStsd(readTable(0, {}).get()), 0);
}

TEST(VideoReading, ShortBodyLeavesFieldsEmpty) {
    const Bytes body = videoBody(720, 576) + pasp(16, 15);
    for (std::size_t length = 0; length <= body.size(); ++length) {
        QTVideoTrack track;
        readDescription(track, "abcd",
                        Bytes(body.begin(), body.begin() + static_cast<std::ptrdiff_t>(length)));
        EXPECT_EQ(track.getWidth(), length >= 18 ? 720U : (length == 17 ? 512U : 0U)) << length;
        EXPECT_EQ(track.getStsdContainsExtensions(), length > 70);
        EXPECT_EQ(track.getDisplayWidth(), length == body.size() ? 768U : 0U);
    }
}

TEST(VideoReading, PixelAspectShapesThePicture) {
    const auto track = video("abcd", 720, 576, {pasp(16, 15)});
    EXPECT_EQ(track->getDisplayAspectRatioW(), 4U); // 11520 : 8640
    EXPECT_EQ(track->getDisplayAspectRatioH(), 3U);
    EXPECT_EQ(track->getDisplayWidth(), 768U);
    EXPECT_EQ(track->getDisplayHeight(), 576U);
    EXPECT_TRUE(track->getStsdContainsExtensions());
    EXPECT_EQ(track->getSwitchSize(), static_cast<unsigned short>(768 * 576));
    EXPECT_EQ(video("abcd", 720, 576, {pasp(0, 0)})->getDisplayWidth(), 720U); // 0 is read as 1
    const auto huge = video("abcd", 65535, 65535, {pasp(0xFFFFFFFF, 1)});
    EXPECT_EQ(huge->getDisplayAspectRatioW(), 0xFFFFFFFFU);
    EXPECT_EQ(huge->getDisplayAspectRatioH(), 1U);
    EXPECT_EQ(video("abcd", 0, 0, {pasp(16, 15)})->getDisplayAspectRatioW(), 0U);
}

TEST(VideoReading, CleanApertureThenPixelAspect) {
    const auto track = video("abcd", 720, 576, {clap(704, 576), pasp(12, 11)});
    EXPECT_EQ(track->getDisplayWidth(), 704U); // 12 / 11 is 1
    EXPECT_EQ(track->getDisplayHeight(), 576U);
    EXPECT_EQ(track->getDisplayAspectRatioW(), 704U); // 122 lines a hundred is no known shape
    EXPECT_EQ(track->getDisplayAspectRatioH(), 576U);
    EXPECT_EQ(video("abcd", 720, 576, {clap(704, 576), pasp(24, 11)})->getDisplayWidth(), 1408U);
}

TEST(VideoReading, PixelAspectThenCleanAperture) {
    const auto track = video("abcd", 720, 576, {pasp(16, 15), clap(704, 576)});
    EXPECT_EQ(track->getDisplayWidth(), 750U); // 704 x 768 / 720
    EXPECT_EQ(track->getDisplayHeight(), 576U);
    EXPECT_EQ(video("abcd", 720, 576, {clap(2112, 1152, 3, 2)})->getDisplayWidth(), 704U);
    EXPECT_EQ(video("abcd", 0, 576, {pasp(16, 15), clap(704, 576)})->getDisplayWidth(), 704U);
}

TEST(VideoReading, ShapesSnap) {
    const struct {
        unsigned int width, height, w, h;
    } kRows[] = {{768, 576, 4, 3}, {1024, 576, 16, 9},   {720, 480, 3, 2},
                 {720, 576, 5, 4}, {704, 576, 704, 576}, {640, 480, 4, 3}};
    for (const auto& row : kRows) {
        const auto track = video("abcd", row.width, row.height, {pasp(1, 1), clap(row.width, row.height)});
        EXPECT_EQ(track->getDisplayAspectRatioW(), row.w) << row.width;
        EXPECT_EQ(track->getDisplayAspectRatioH(), row.h) << row.width;
    }
}

TEST(VideoReading, CleanApertureWithoutDenominatorIsIgnored) {
    for (const Bytes& bad : {clap(704, 576, 0, 1), clap(704, 576, 1, 0)}) {
        const auto track = video("abcd", 720, 576, {bad, pasp(3, 2)});
        EXPECT_EQ(track->getDisplayWidth(), 1080U); // as if it were not there
        EXPECT_EQ(track->getDisplayHeight(), 576U);
    }
    const auto short24 = video("abcd", 720, 576, {atom("clap", u32(704) + u32(1) + u32(570) + u32(1))});
    EXPECT_EQ(short24->getDisplayHeight(), 570U);
}

TEST(VideoReading, FieldsAreTwoBytes) {
    const auto track = video("abcd", 720, 576, {atom("fiel", {2, 9}), pasp(16, 15)});
    EXPECT_EQ(track->getFields(), 2);
    EXPECT_EQ(track->getFieldOrder(), 9);
    EXPECT_EQ(track->getDisplayWidth(), 768U);
    EXPECT_EQ(video("abcd", 1, 1, {atom("fiel", {2})})->getFields(), 0);
}

TEST(VideoReading, AvcConfiguration) {
    const Bytes sps = hex("67640028 AABBCCDDEEFF");
    const Bytes config = hex("01 64 00 28 FD E1 000A") + sps + hex("02 0004 68EE3C80 0004 68112233");
    const auto track = video("avc1", 1920, 1080, {atom("avcC", config), pasp(1, 1)});
    EXPECT_EQ(track->getH264Profile(), 100);
    EXPECT_EQ(track->getH264Level(), 40);
    EXPECT_EQ(track->getH264SizeSize(), 2);
    EXPECT_EQ(bytesOf(track->getH264SeqParSet()), hex("00000001") + sps);
    EXPECT_EQ(bytesOf(track->getH264PictParSet()), hex("00000001 68EE3C80 00000001 68112233"));
    EXPECT_EQ(track->getDisplayWidth(), 1920U) << "what follows is read";
    // What high profiles have behind the sets is no set.
    const auto high = video("avc1", 1, 1, {atom("avcC", config + hex("FDF8F800"))});
    EXPECT_EQ(bytesOf(high->getH264PictParSet()).size(), 16U);
}

TEST(VideoReading, AvcConfigurationCutAnywhere) {
    const Bytes config = hex("01 64 00 28 FF E1 0004 67640028 01 0004 68EE3C80");
    for (std::size_t length = 0; length <= config.size(); ++length) {
        const auto track = video(
            "avc1", 1, 1,
            {atom("avcC", Bytes(config.begin(), config.begin() + static_cast<std::ptrdiff_t>(length)))});
        EXPECT_EQ(track->getH264Profile(), length >= 5 ? 100 : 0) << length;
        EXPECT_EQ(bytesOf(track->getH264SeqParSet()).size(), length >= 12 ? 8U : 0U) << length;
        EXPECT_EQ(bytesOf(track->getH264PictParSet()).size(), length == config.size() ? 8U : 0U) << length;
    }
    const auto empty = video("avc1", 1, 1, {atom("avcC", hex("01 64 00 28 FF E1 0000 00"))});
    EXPECT_EQ(bytesOf(empty->getH264SeqParSet()), hex("00000001"));
    // The atom says more than the entry has: it is cut.
    QTVideoTrack track;
    readDescription(track, "avc1", videoBody(1, 1) + hex("000000FF 'avcC' 01 64 00 28 FF E1 0004 67640028"));
    EXPECT_EQ(track.getH264Level(), 40);
    EXPECT_EQ(bytesOf(track.getH264SeqParSet()).size(), 8U);
}

TEST(VideoReading, LaterConfigurationReplacesTheEarlier) {
    const auto track = video("avc1", 1, 1,
                             {atom("avcC", hex("01 64 00 28 FF E1 0004 67640028 01 0004 68EE3C80")),
                              atom("avcC", hex("01 42 00 1E FF E1 0005 67420028FF 00"))});
    EXPECT_EQ(track->getH264Profile(), 66);
    EXPECT_EQ(bytesOf(track->getH264SeqParSet()), hex("00000001 67420028FF"));
    EXPECT_EQ(track->getH264PictParSet(), nullptr);
}

TEST(VideoReading, HevcConfigurationIsKeptWhole) {
    const Bytes config = atom("hvcC", hex("01 02 03"));
    const auto track = video("hev1", 1, 1, {config});
    EXPECT_EQ(bytesOf(track->getH265DecoderSpecificInfo()), config);
    EXPECT_EQ(track->getDataFormat(), fourCC("hvc1"));
}

Bytes esds(const char* objectType, const Bytes& info) {
    const Bytes specific = info.empty() ? Bytes() : Bytes{5, static_cast<unsigned char>(info.size())} + info;
    const auto configSize = static_cast<unsigned char>(13 + specific.size());
    const auto streamSize = static_cast<unsigned char>(3 + 2 + configSize);
    return atom("esds", hex("00000000 03") + Bytes{streamSize} + hex("0001 00 04") + Bytes{configSize} +
                            hex(objectType) + hex("11 000000 00000000 00000000") + specific);
}

TEST(VideoReading, EsdsTellsTheCodec) {
    const auto mpeg4 = video("mp4v", 1, 1, {esds("20", {1, 2, 3})});
    EXPECT_EQ(mpeg4->getDataFormat(), fourCC("mp4v"));
    EXPECT_EQ(bytesOf(mpeg4->getDecoderSpecificInfo()), Bytes({1, 2, 3}));
    ASSERT_TRUE(mpeg4->getESDS());
    EXPECT_TRUE(mpeg4->getESDS()->getDescriptorTag(3));
    for (const char* type : {"60", "61", "65"}) {
        EXPECT_EQ(video("mp4v", 1, 1, {esds(type, {})})->getDataFormat(), fourCC("mp2v"));
    }
    EXPECT_EQ(video("mp4v", 1, 1, {esds("6A", {})})->getDataFormat(), fourCC("mp1v"));
    EXPECT_EQ(video("mp4v", 1, 1, {esds("66", {})})->getDataFormat(), fourCC("mp4v"));
    EXPECT_EQ(video("mp4v", 1, 1, {esds("20", {})})->getDecoderSpecificInfo(), nullptr);
    EXPECT_TRUE(video("mp4v", 1, 1, {atom("esds", hex("00000000"))})->getESDS());
}

TEST(VideoReading, H263Configuration) {
    const auto track = video("s263", 176, 144, {atom("d263", hex("'abcd' 00 0A 03"))});
    EXPECT_EQ(track->getH263Level(), 10);
    EXPECT_EQ(track->getH263Profile(), 3);
    EXPECT_EQ(video("s263", 1, 1, {atom("d263", hex("'abcd' 00 0A"))})->getH263Level(), 0);
}

TEST(VideoReading, SequenceHeaders) {
    const Bytes smi = atom("SMI ", hex("'SEQH' 00000003 010203"));
    const auto svq3 = video("SVQ3", 1, 1, {smi});
    ASSERT_EQ(svq3->getSVQ3DataLength(), 3U);
    EXPECT_EQ(svq3->getSVQ3Data()[2], 3);
    EXPECT_EQ(svq3->getDataFormat(), fourCC("SVQ3"));

    const auto table = readTable(1, entryBytes("MPG4", videoBody(1, 1) + smi));
    QTVideoTrack mpg4;
    mpg4.parseStsd(table.get());
    EXPECT_EQ(mpg4.getDataFormat(), fourCC("mp4v"));
    EXPECT_EQ(table->getSampleDescriptionData(0)->getDataFormat(), fourCC("mp4v"));
    EXPECT_EQ(bytesOf(mpg4.getDecoderSpecificInfo()), Bytes({1, 2, 3}));

    EXPECT_EQ(video("SVQ3", 1, 1, {atom("SMI ", hex("'SEQH' 000000FF 0102"))})->getSVQ3DataLength(), 2U);
    EXPECT_EQ(video("SVQ3", 1, 1, {atom("SMI ", hex("'abcd' 00000003 010203"))})->getSVQ3Data(), nullptr);
    EXPECT_EQ(video("abcd", 1, 1, {smi})->getSVQ3Data(), nullptr);
}

TEST(VideoReading, CompressionIDs) {
    const Bytes ares = atom("ARES", hex("'ARES' '0001' 000004E8 0000"));
    const auto dn = video("AVdn", 1, 1, {ares});
    EXPECT_EQ(dn->getDNxHDType(), 1256U);
    EXPECT_EQ(dn->getDataFormat(), fourCC("dn44"));
    EXPECT_EQ(bytesOf(dn->getDecoderSpecificInfo()), ares);
    const auto dh = video("AVdh", 1, 1, {atom("ADHR", hex("'0001' 000004F6"))});
    EXPECT_EQ(dh->getDNxHDType(), 1270U);
    EXPECT_EQ(dh->getDataFormat(), fourCC("dh44"));
    const auto other = video("AVdn", 1, 1, {atom("ARES", hex("'ARES' '0001' 000004D3"))});
    EXPECT_EQ(other->getDNxHDType(), 1235U);
    EXPECT_EQ(other->getDataFormat(), fourCC("AVdn"));
    EXPECT_EQ(video("AVdn", 1, 1, {atom("ARES", hex("'ARES' '0001' 0000"))})->getDNxHDType(), 0U);
    EXPECT_EQ(bytesOf(video("mjp2", 1, 1, {atom("jp2h", {1})})->getDecoderSpecificInfo()), atom("jp2h", {1}));
}

TEST(VideoReading, WalkEndsAtASizeThatLeadsNowhere) {
    for (const char* header : {"00000000 'abcd'", "00000004 'abcd'", "00000007 'abcd'"}) {
        EXPECT_EQ(video("abcd", 720, 576, {hex(header), pasp(16, 15)})->getDisplayWidth(), 0U);
    }
    EXPECT_EQ(video("abcd", 720, 576, {atom("abcd", {1, 2, 3}), pasp(16, 15)})->getDisplayWidth(), 768U);
    EXPECT_EQ(video("abcd", 720, 576, {pasp(16, 15), {0, 0, 0, 0}})->getDisplayWidth(), 768U);
    EXPECT_EQ(video("abcd", 720, 576, {pasp(16, 15), hex("00000008 'ab'")})->getDisplayWidth(), 768U);
}

TEST(VideoReading, EveryByteChangedIsRead) {
    const Bytes body =
        videoBody(720, 576) +
        join({pasp(16, 15), clap(704, 576), esds("20", {1, 2, 3}), atom("fiel", {2, 9}),
              atom("avcC", hex("01 64 00 28 FF E1 0004 67640028 01 0004 68EE3C80")), atom("hvcC", {1, 2}),
              atom("SMI ", hex("'SEQH' 00000003 010203")), atom("d263", hex("'abcd' 00 0A 03")),
              atom("ARES", hex("'ARES' '0001' 000004E8")), atom("ADHR", hex("'0001' 000004F6"))});
    for (std::size_t at = 0; at < body.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Bytes changed = body;
            changed[at] = static_cast<unsigned char>(value);
            QTVideoTrack track;
            readDescription(track, "SVQ3", changed);
        }
    }
}

TEST(VideoTrack, OwnsItsFrames) {
    QTVideoTrack track;
    auto* set = new QTFrame;
    EXPECT_EQ(track.setH264SeqParSet(set), 0);
    EXPECT_EQ(track.setH264SeqParSet(set), 0); // the one it holds
    EXPECT_EQ(track.setH264PictParSet(new QTFrame), 0);
    EXPECT_EQ(track.setH265DecoderSpecificInfo(new QTFrame), 0);
    unsigned char bytes[] = {1, 2};
    EXPECT_EQ(track.setSVQ3Data(2, bytes), 0);
    EXPECT_EQ(track.setSVQ3Data(2, nullptr), -1);
    QTVideoTrack copy(track);
    EXPECT_NE(copy.getH264SeqParSet(), set);
    EXPECT_TRUE(copy.getH264SeqParSet());
    EXPECT_NE(copy.getSVQ3Data(), track.getSVQ3Data());
    copy = track;
    const QTVideoTrack& itself = copy;
    copy = itself;
    track.setH264SeqParSet(nullptr);
    EXPECT_TRUE(copy.getH264SeqParSet());
    EXPECT_EQ(track.getH264SeqParSet(), nullptr);
}

TEST(VideoTrack, Defaults) {
    QTVideoTrack track;
    EXPECT_EQ(track.getType(), fourCC("vide"));
    EXPECT_EQ(track.getMovieType(), kMOV);
    EXPECT_EQ(track.getDisplayFactor(), 1.0F);
    EXPECT_EQ(track.getSwitchSize(), 0);
    EXPECT_FALSE(track.getUseQuickTimeExtensions());
    unsigned short p = 0;
    unsigned short t = 0;
    unsigned short m = 0;
    EXPECT_EQ(track.getColorDescription(p, t, m), 0);
    EXPECT_EQ(p, 2);
    EXPECT_EQ(t, 2);
    EXPECT_EQ(m, 2);
    track.setDisplayWidth(1920);
    track.setDisplayHeight(1080);
    EXPECT_EQ(track.getSwitchSize(), 41984);
}

} // namespace
} // namespace test
