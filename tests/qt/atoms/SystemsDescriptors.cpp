// MPEG-4 descriptors: trees that are read, trees that are built, and what is written of them.
#include "support/AtomFile.h"
#include "support/Bytes.h"

#include <qt/QTAtoms.h>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

unsigned char* block(const Bytes& bytes) {
    auto* data = static_cast<unsigned char*>(std::malloc(bytes.empty() ? 1 : bytes.size()));
    std::copy(bytes.begin(), bytes.end(), data);
    return data;
}

/// Reads a payload that has exactly these bytes; returns how many were consumed.
template <class Descriptor>
std::size_t readInfo(Descriptor& descriptor, Bytes payload) {
    payload.shrink_to_fit(); // so that a sanitizer sees one byte too far
    unsigned char* cursor = payload.data();
    EXPECT_EQ(descriptor.getInfo(&cursor), 0);
    return static_cast<std::size_t>(cursor - payload.data());
}

/// Reads an atom as a sample description does: its header is given, its bytes follow.
std::unique_ptr<ESDS> readESDS(const Bytes& atom) {
    auto esds = std::make_unique<ESDS>(new QTAtom(static_cast<unsigned int>(atom.size()), fourCC("esds")));
    EXPECT_EQ(readInfo(*esds, Bytes(atom.begin() + 8, atom.end())), atom.size() - 8);
    return esds;
}

/// The esds of object and scene description streams.
Bytes streamESDS(unsigned char streamType, const Bytes& info) {
    ESDS esds;
    auto* stream = new ESDescriptor;
    stream->setStreamPriority(1);
    auto* config = new DecoderConfigDescriptor;
    config->setObjectTypeIndication(2);
    config->setStreamType(streamType);
    config->setBufferSizeDB(15000);
    if (!info.empty()) {
        Bytes copy = info;
        config->addDescriptor(new DecoderSpecificInfo(static_cast<unsigned int>(copy.size()), copy.data()));
    }
    stream->addDescriptor(config);
    stream->addDescriptor(new SLConfigDescriptor(static_cast<unsigned char>(2)));
    esds.addDescriptor(stream);
    return take(esds.serialize());
}

TEST(Descriptors, ObjectDescriptorStream) {
    EXPECT_EQ(streamESDS(1, {}), hex({"0000002C 'esds' 00000000", "03 8080801B 0000 01",
                                      "04 8080800D 02 05 003A98 00000000 00000000", "06 80808001 02"}));
}

TEST(Descriptors, SceneDescriptionStream) {
    EXPECT_EQ(streamESDS(3, {0, 0, 0x40}),
              hex({"00000034 'esds' 00000000", "03 80808023 0000 01",
                   "04 80808015 02 0D 003A98 00000000 00000000", "05 80808003 000040", "06 80808001 02"}));
}

const Bytes kVideo =
    hex({"00000035 'esds' 00000000", "03 80808024 0000 00", "04 80808016 20 11 003A98 000003E8 00000384",
         "05 80808004 01020304", "06 80808001 02"});

TEST(Descriptors, VideoStreamReadsAndWritesBack) {
    const auto esds = readESDS(kVideo);
    auto* stream = dynamic_cast<ESDescriptor*>(esds->getDescriptorTag(3));
    ASSERT_TRUE(stream);
    EXPECT_EQ(esds->getDescriptorNumber(0), stream);
    EXPECT_EQ(esds->getDescriptorNumber(1), nullptr);
    EXPECT_EQ(esds->getDescriptorTag(4), nullptr);
    EXPECT_EQ(stream->getSize(), 0x24U);
    auto* config = dynamic_cast<DecoderConfigDescriptor*>(stream->getDescriptorTag(4));
    ASSERT_TRUE(config);
    EXPECT_EQ(config->getObjectTypeIndication(), 0x20);
    EXPECT_EQ(config->getStreamType(), 4);
    EXPECT_EQ(config->getUpStream(), 0);
    EXPECT_EQ(config->getReserved(), 1);
    EXPECT_EQ(config->getBufferSizeDB(), 15000U);
    EXPECT_EQ(config->getMaxBitRate(), 1000U);
    EXPECT_EQ(config->getAvgBitRate(), 900U);
    auto* info = dynamic_cast<DecoderSpecificInfo*>(config->getDescriptorTag(5));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->getDecoderSpecificInfoSize(), 4U);
    EXPECT_EQ(info->getDecoderSpecificInfo()[3], 4);
    auto* sync = dynamic_cast<SLConfigDescriptor*>(stream->getDescriptorTag(6));
    ASSERT_TRUE(sync);
    EXPECT_EQ(sync->getPredefined(), 2);
    EXPECT_EQ(take(esds->serialize()), kVideo);
}

TEST(Descriptors, EveryTruncationIsRead) {
    for (std::size_t length = 0; length <= kVideo.size(); ++length) {
        readESDS(Bytes(kVideo.begin(),
                       kVideo.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(length, 8))));
        ESDS large(new QTAtom(static_cast<unsigned int>(length), fourCC("esds")));
        Bytes bytes(kVideo.begin() + 8, kVideo.end());
        unsigned char* cursor = bytes.data();
        large.getInfo(&cursor);
        take(large.serialize());
    }
}

TEST(Descriptors, EveryByteChangedIsRead) {
    for (std::size_t at = 8; at < kVideo.size(); ++at) {
        for (int value = 0; value < 256; ++value) {
            Bytes changed = kVideo;
            changed[at] = static_cast<unsigned char>(value);
            take(readESDS(changed)->serialize());
        }
    }
}

TEST(Descriptors, SizeMayHaveAnyNumberOfBytes) {
    const auto one = readESDS(hex({"00000011 'esds' 00000000", "03 03 0007 00"}));
    ASSERT_TRUE(one->getDescriptorTag(3));
    EXPECT_EQ(one->getDescriptorTag(3)->getSize(), 3U);
    const auto six = readESDS(hex({"00000016 'esds' 00000000", "03 808080808003 0007 00"}));
    ASSERT_TRUE(six->getDescriptorTag(3));
    EXPECT_EQ(dynamic_cast<ESDescriptor*>(six->getDescriptorTag(3))->getES_ID(), 7);
    const auto endless = readESDS(hex("00000070 'esds' 00000000 03") + repeat(0x80, 99));
    ASSERT_EQ(endless->getDescriptors().size(), 1U);
    EXPECT_EQ(endless->getDescriptorTag(3)->getSize(), 0U);
}

TEST(Descriptors, OnlyTheAcceptedTagsAreRead) {
    // An unknown descriptor ends its parent: what follows it is not read.
    const auto esds =
        readESDS(hex({"00000021 'esds' 00000000", "03 13 0000 00", "06 01 02", "07 02 AABB", "04 02 2011"}));
    ASSERT_TRUE(esds->getDescriptorTag(3));
    EXPECT_TRUE(esds->getDescriptorTag(3)->getDescriptorTag(6));
    EXPECT_EQ(esds->getDescriptorTag(3)->getDescriptors().size(), 1U);
    EXPECT_TRUE(readESDS(hex({"00000012 'esds' 00000000", "04 04 00000000"}))->getDescriptors().empty());
}

TEST(Descriptors, PayloadOfAnUnknownChildIsLeftToTheParent) {
    // The configuration stops behind tag and size of an unknown child; the parent goes on right there.
    ESDescriptor stream(0x17, 3);
    EXPECT_EQ(readInfo(stream, hex({"0000 00", "04 12 40 15 000000 00000000 00000000", "14 03", "06 01 02"})),
              20U);
    ASSERT_EQ(stream.getDescriptors().size(), 1U); // nothing remains by the parent's own count
    ESDescriptor longer(0x1A, 3);
    readInfo(longer,
             hex({"0000 00", "04 12 40 15 000000 00000000 00000000", "14 03", "06 01 05", "06 01 02"}));
    ASSERT_EQ(longer.getDescriptors().size(), 2U);
    EXPECT_EQ(dynamic_cast<SLConfigDescriptor*>(longer.getDescriptorTag(6))->getPredefined(), 5);
}

TEST(Descriptors, ChildLongerThanItsParentIsCut) {
    DecoderConfigDescriptor config(17, 4);
    readInfo(config, hex({"40 15 000000 00000000 00000000", "05 7F 1210"}));
    auto* info = dynamic_cast<DecoderSpecificInfo*>(config.getDescriptorTag(5));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->getSize(), 2U);
    EXPECT_EQ(info->getDecoderSpecificInfoSize(), 2U);
}

TEST(Descriptors, ConfigurationOfThirteenBytesHasNoChildren) {
    DecoderConfigDescriptor config(13, 4);
    EXPECT_EQ(readInfo(config, hex("40 16 010203 00000001 00000002")), 13U);
    EXPECT_TRUE(config.getDescriptors().empty());
    EXPECT_EQ(config.getStreamType(), 5);
    EXPECT_EQ(config.getUpStream(), 1);
    EXPECT_EQ(config.getReserved(), 0);
    EXPECT_EQ(config.getBufferSizeDB(), 0x010203U);
    EXPECT_EQ(take(config.serialize()), hex("04 8080800D 40 17 010203 00000001 00000002")); // bit 0 is set
    DecoderConfigDescriptor cut(3, 4);
    EXPECT_EQ(readInfo(cut, hex("40 16 01")), 3U);
    EXPECT_EQ(cut.getMaxBitRate(), 0U);
}

TEST(Descriptors, NewConfigurationHoldsSixteen) {
    DecoderConfigDescriptor config;
    EXPECT_EQ(config.getSize(), 16U);
    EXPECT_EQ(config.getTag(), 4);
    EXPECT_EQ(config.updateSize(), 13U);
}

TEST(Descriptors, LengthByteOfAURLIsNotCounted) {
    ESDescriptor stream;
    EXPECT_EQ(stream.getSize(), 3U);
    stream.setES_ID(1);
    stream.setURLFlag(1);
    EXPECT_EQ(stream.setURL(nullptr, 3), -1);
    EXPECT_EQ(stream.setURL(block({'u', 'r', 'l'}), 3), 0);
    EXPECT_EQ(stream.setURL(stream.getURL(), 3), 0); // its own
    EXPECT_EQ(stream.updateSize(), 6U);
    const std::unique_ptr<QTFrame> frame(stream.serialize());
    EXPECT_EQ(frame->getDataLength(), 11U);
    // The block holds one byte more than the frame's length says.
    EXPECT_EQ(Bytes(frame->getData(), frame->getData() + 12), hex("03 80808006 0001 40 03 'url'"));

    ESDS esds;
    auto* inside = new ESDescriptor;
    inside->setURLFlag(1);
    inside->setURL(block({'u'}), 1);
    inside->addDescriptor(new SLConfigDescriptor(static_cast<unsigned char>(2)));
    esds.addDescriptor(inside);
    EXPECT_EQ(esds.updateSize(), 12U + 5 + 3 + 1 + 6);
    const std::unique_ptr<QTFrame> whole(esds.serialize());
    EXPECT_EQ(whole->getDataLength(), 27U);
    EXPECT_EQ(Bytes(whole->getData(), whole->getData() + 28),
              hex({"0000001B 'esds' 00000000", "03 8080800A 0000 40 01 'u'", "06 80808001 02"}));
}

TEST(Descriptors, OptionalFieldsFollowTheirFlags) {
    ESDescriptor stream;
    stream.setES_ID(0x0102);
    stream.setStreamDependenceFlag(1);
    stream.setDependsOnES_ID(0x0304);
    stream.setOCRStreamFlag(1);
    stream.setOCR_ES_ID(0x0506);
    stream.setStreamPriority(31);
    EXPECT_EQ(stream.updateSize(), 7U);
    const Bytes bytes = hex("03 80808007 0102 BF 0304 0506");
    EXPECT_EQ(take(stream.serialize()), bytes);
    ESDescriptor back(7, 3);
    EXPECT_EQ(readInfo(back, Bytes(bytes.begin() + 5, bytes.end())), 7U);
    EXPECT_EQ(back.getStreamDependenceFlag(), 1);
    EXPECT_EQ(back.getURLFlag(), 0);
    EXPECT_EQ(back.getOCRStreamFlag(), 1);
    EXPECT_EQ(back.getStreamPriority(), 31);
    EXPECT_EQ(back.getDependsOnES_ID(), 0x0304);
    EXPECT_EQ(back.getOCR_ES_ID(), 0x0506);
    ESDescriptor url(7, 3);
    EXPECT_EQ(readInfo(url, hex("0001 40 03 'url'")), 7U);
    EXPECT_EQ(url.getURLLength(), 3);
    EXPECT_EQ(url.getURL()[2], 'l');
    ESDescriptor cut(6, 3);
    EXPECT_EQ(readInfo(cut, hex("0001 40 03 'ur'")), 6U);
    EXPECT_EQ(cut.getURLLength(), 2);
}

TEST(Descriptors, SizesFromTwoFiftySixOnLoseTheirHighBits) {
    const struct {
        unsigned int size;
        const char* bytes;
    } kSizes[] = {{5, "80808005"},   {127, "8080807F"}, {128, "80808100"},
                  {255, "8080817F"}, {256, "80808100"}, {300, "8080812C"}};
    for (const auto& row : kSizes) {
        DecoderSpecificInfo info(row.size, static_cast<unsigned char>(5));
        const Bytes bytes = take(info.serialize());
        ASSERT_EQ(bytes.size(), row.size + 5);
        EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 5), hex("05") + hex(row.bytes));
        EXPECT_EQ(Bytes(bytes.begin() + 5, bytes.end()), repeat(0, row.size)) << "without bytes: zeros";
    }
    const auto back = readESDS(hex("00000095 'esds' 00000000 03 80808100") + repeat(0, 132));
    EXPECT_EQ(back->getDescriptorTag(3)->getSize(), 128U);
}

TEST(Descriptors, SpecificInfoKeepsItsBytes) {
    Bytes bytes{1, 2, 3};
    DecoderSpecificInfo info(3, bytes.data());
    EXPECT_EQ(info.getTag(), 5);
    const DecoderSpecificInfo copy(info);
    EXPECT_NE(copy.getDecoderSpecificInfo(), info.getDecoderSpecificInfo());
    EXPECT_EQ(copy.getDecoderSpecificInfo()[2], 3);
    EXPECT_EQ(info.setInfo(2, nullptr), -1);
    EXPECT_EQ(info.getSize(), 3U);
    EXPECT_EQ(info.setInfo(2, block({8, 9})), 0);
    EXPECT_EQ(take(info.serialize()), hex("05 80808002 0809"));
    DecoderSpecificInfo none(0, nullptr);
    EXPECT_EQ(none.getDecoderSpecificInfo(), nullptr);
    EXPECT_EQ(take(none.serialize()), hex("05 80808000"));
}

TEST(Descriptors, SyncLayerKeepsOnlyItsFirstByte) {
    SLConfigDescriptor sync(3U, 6);
    EXPECT_EQ(readInfo(sync, hex("02 AABB")), 3U);
    EXPECT_EQ(take(sync.serialize()), hex("06 80808003 02 0000"));
    SLConfigDescriptor empty(0U, 6);
    EXPECT_EQ(readInfo(empty, {}), 0U);
    EXPECT_EQ(empty.getPredefined(), 0);
}

TEST(Descriptors, LastOfTwoWithOneTagIsFound) {
    MP4ObjectData parent(0, 1);
    auto* first = new SLConfigDescriptor(static_cast<unsigned char>(1));
    auto* second = new SLConfigDescriptor(static_cast<unsigned char>(2));
    EXPECT_EQ(parent.addDescriptor(first), 0);
    EXPECT_EQ(parent.addDescriptor(second), 0);
    EXPECT_EQ(parent.addDescriptor(nullptr), -1);
    EXPECT_EQ(parent.addDescriptor(&parent), -1);
    EXPECT_EQ(parent.getDescriptorTag(6), second);
    EXPECT_EQ(parent.getDescriptorNumber(0), first);
    EXPECT_EQ(parent.getDescriptorNumber(2), nullptr);
    EXPECT_EQ(parent.getDescriptors().size(), 2U);
    ESDS esds;
    EXPECT_EQ(esds.addDescriptor(nullptr), -1);
    esds.addDescriptor(new ESDescriptor);
    auto* last = new ESDescriptor;
    esds.addDescriptor(last);
    EXPECT_EQ(esds.getDescriptorTag(3), last);
}

TEST(Descriptors, BaseSkipsItsPayload) {
    MP4ObjectData unknown(3, 0x40);
    EXPECT_EQ(readInfo(unknown, {1, 2, 3, 4}), 3U);
    EXPECT_EQ(unknown.updateSize(), 3U);
    EXPECT_EQ(take(unknown.serialize()), hex("40 80808003 000000"));
    Bytes bytes = hex("01 0203 040506 0708090A");
    unsigned char* cursor = bytes.data();
    EXPECT_EQ(MP4ObjectData::getUInt8(&cursor), 1);
    EXPECT_EQ(MP4ObjectData::getUInt16(&cursor), 0x0203);
    EXPECT_EQ(MP4ObjectData::getUInt24(&cursor), 0x040506U); // unlike the atoms' reader
    EXPECT_EQ(MP4ObjectData::getUInt32(&cursor), 0x0708090AU);
    Bytes out(7);
    cursor = out.data();
    EXPECT_EQ(MP4ObjectData::putUInt8(&cursor, 1), 0);
    EXPECT_EQ(MP4ObjectData::putUInt16(&cursor, 0x0203), 0);
    EXPECT_EQ(MP4ObjectData::putUInt32(&cursor, 0x04050607), 0);
    EXPECT_EQ(out, hex("01020304050607"));
    Bytes size = hex("80808005");
    cursor = size.data();
    unsigned int remaining = 10;
    EXPECT_EQ(MP4ObjectData::getMP4ObjectSize(&cursor, &remaining), 5U);
    EXPECT_EQ(remaining, 6U);
}

TEST(Descriptors, InitialObjectDescriptorOfAMovie) {
    IODS iods;
    EXPECT_EQ(iods.getSize(), 12U);
    InitialObjectDescriptor* d = iods.getInitialObjectDescriptor();
    ASSERT_TRUE(d);
    EXPECT_EQ(d->getID(), 1);
    d->setODProfileLevelIndication(0xFE);
    d->setSceneProfileLevelIndication(1);
    d->setAudioProfileLevelIndication(1);
    d->setVisualProfileLevelIndication(3);
    d->setGraphicsProfileLevelIndication(1);
    EXPECT_EQ(iods.updateSize(), 24U);
    EXPECT_EQ(take(iods.serialize()), hex({"00000018 'iods' 00000000", "10 80808007 004F FE 01 01 03 01"}));
    d->addESIDIncReference(3);
    EXPECT_EQ(take(d->serialize()), hex("10 80808010 004F FE 01 01 03 01 0E 80808004 00000003"));
    EXPECT_EQ(iods.updateSize(), 33U);
}

TEST(Descriptors, InitialObjectDescriptorWithAURLHasNothingElse) {
    InitialObjectDescriptor d(9, 0x10);
    EXPECT_EQ(readInfo(d, hex("007F 02 'ab' 01020304")), 5U);
    EXPECT_EQ(d.getID(), 1);
    EXPECT_EQ(d.getURLFlag(), 1);
    EXPECT_EQ(d.getIncludeInlineProfileLevelFlag(), 1);
    EXPECT_EQ(d.getURLLength(), 2);
    EXPECT_EQ(d.getODProfileLevelIndication(), 0);
    EXPECT_EQ(d.updateSize(), 5U);
    EXPECT_EQ(take(d.serialize()), hex("10 80808005 007F 02 'ab'"));
    EXPECT_EQ(d.setURL(nullptr, 1), -1);
    EXPECT_EQ(d.setURL(nullptr, 0), 0);
    EXPECT_EQ(d.updateSize(), 3U);
}

TEST(Descriptors, InitialObjectDescriptorOfTagTwoIsKeptButNotFound) {
    IODS iods(new QTAtom(21, fourCC("iods")));
    auto* read = new InitialObjectDescriptor(7, 2);
    readInfo(*read, hex("004F 01 02 03 04 05"));
    iods.addDescriptor(read);
    EXPECT_EQ(iods.getInitialObjectDescriptor(), nullptr);
    EXPECT_EQ(iods.getDescriptor(0), read);
    EXPECT_EQ(iods.getDescriptor(1), nullptr);
    EXPECT_EQ(iods.addDescriptor(nullptr), -1);
    EXPECT_EQ(take(iods.serialize()), hex({"00000018 'iods' 00000000", "10 80808007 004F 01 02 03 04 05"}));
}

TEST(Descriptors, StaleSizesDoNotCutTheBytes) {
    InitialObjectDescriptor d;
    auto* stream = new ESDescriptor;
    d.addDescriptor(stream);
    stream->addDescriptor(new SLConfigDescriptor(static_cast<unsigned char>(2))); // holds 3, needs 9
    EXPECT_EQ(d.updateSize(), 7U + 5 + 3); // by the size that the child holds
    const Bytes bytes = take(d.serialize());
    EXPECT_EQ(bytes, hex({"10 80808015 000F 00 00 00 00 00", "03 80808009 0000 00", "06 80808001 02"}));
}

TEST(Descriptors, ObjectDescriptorIsNotReadAsItIsWritten) {
    ObjectDescriptor d;
    EXPECT_EQ(d.getSize(), 2U);
    EXPECT_EQ(d.getTag(), 0x11);
    EXPECT_EQ(d.getReserved(), 0x1F);
    d.setID(5);
    d.addESIDRefReference(7);
    const Bytes bytes = hex("11 80808009 015F 0F 80808002 0007");
    EXPECT_EQ(take(d.serialize()), bytes);
    ObjectDescriptor back(9, 0x11);
    readInfo(back, Bytes(bytes.begin() + 5, bytes.end()));
    EXPECT_EQ(back.getID(), 5);
    EXPECT_TRUE(back.getDescriptors().empty()); // references have another tag on reading
    ObjectDescriptor other(6, 0x11);
    EXPECT_EQ(readInfo(other, hex("0140 11 02 0007")), 6U);
    ASSERT_EQ(other.getDescriptors().size(), 1U);
    auto* reference = dynamic_cast<ESIDRef*>(other.getDescriptorNumber(0));
    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->getTag(), 0x11);
    EXPECT_EQ(reference->getESID(), 7U);
    EXPECT_EQ(take(reference->serialize()), hex("0F 80808002 0007"));
    EXPECT_EQ(other.getReserved(), 0);
    ObjectDescriptor url(4, 0x11);
    EXPECT_EQ(readInfo(url, hex("0160 01 'u'")), 4U);
    EXPECT_EQ(url.getURLFlag(), 1);
    EXPECT_EQ(url.updateSize(), 4U);
    EXPECT_EQ(take(url.serialize()), hex("11 80808004 017F 01 'u'"));
}

TEST(Descriptors, ReferencesHaveOneForm) {
    ESIDInc inc(0x01020304);
    EXPECT_EQ(inc.getSize(), 4U);
    EXPECT_EQ(take(inc.serialize()), hex("0E 80808004 01020304"));
    ESIDInc cut(2U, 0x0E);
    EXPECT_EQ(readInfo(cut, hex("0102")), 2U);
    EXPECT_EQ(cut.getTrackID(), 0x01020000U);
    ESIDRef ref(0x10203);
    EXPECT_EQ(ref.getSize(), 2U);
    EXPECT_EQ(ref.updateSize(), 2U);
    EXPECT_EQ(take(ref.serialize()), hex("0F 80808002 0203"));
}

TEST(Descriptors, EmptyESDSHasTwelveBytes) {
    ESDS esds;
    EXPECT_EQ(esds.getSize(), 12U);
    EXPECT_EQ(esds.updateSize(), 12U);
    esds.setVersion(1);
    esds.setFlags(0x123456);
    EXPECT_EQ(take(esds.serialize()), hex("0000000C 'esds' 01 020406"));
    ESDS small(new QTAtom(9, fourCC("esds")));
    EXPECT_EQ(readInfo(small, {1}), 1U);
    EXPECT_EQ(small.getVersion(), 1U);
}

/// Counts its own deaths.
struct Mourned : SLConfigDescriptor {
    explicit Mourned(int& deaths) : SLConfigDescriptor(static_cast<unsigned char>(2)), deaths_(deaths) {}
    ~Mourned() override { ++deaths_; }
    int& deaths_;
};

TEST(Descriptors, AreOwnedByWhatHoldsThem) {
    int deaths = 0;
    {
        ESDS esds;
        esds.addDescriptor(new Mourned(deaths));
        {
            ESDS copy(esds);
            ESDS assigned;
            assigned = copy;
            assigned.addDescriptor(new Mourned(deaths)); // its own
            EXPECT_EQ(assigned.getDescriptors().size(), 2U);
        }
        EXPECT_EQ(deaths, 1);
        ESDescriptor parent;
        parent.addDescriptor(new Mourned(deaths));
    }
    EXPECT_EQ(deaths, 3);
}

TEST(SpecificInformation, HasTheSizeGivenWhereItHasNoBytes) {
    DecoderSpecificInfo info(5, static_cast<unsigned char>(5));
    EXPECT_EQ(info.getDecoderSpecificInfo(), nullptr);
    EXPECT_EQ(info.getDecoderSpecificInfoSize(), 5U);
}

TEST(TrackReferences, AreKeptAsTheyAreInMemory) {
    auto* refs = static_cast<unsigned int*>(std::malloc(8));
    refs[0] = QTAtom::BE32(1);
    refs[1] = QTAtom::BE32(2);
    MPOD mpod(refs, 2);
    EXPECT_EQ(mpod.getSize(), 16U);
    EXPECT_EQ(take(mpod.serialize()), hex("00000010 'mpod' 00000001 00000002"));
    EXPECT_EQ(mpod.setTrackRefs(nullptr, 1), -1);
    EXPECT_EQ(mpod.getTrackRefCount(), 2U);
    EXPECT_EQ(mpod.setTrackRefs(mpod.getTrackRefs(), 1), 0); // its own
    EXPECT_EQ(mpod.getSize(), 12U);
    EXPECT_EQ(mpod.setTrackRefs(nullptr, 0), 0);
    EXPECT_EQ(mpod.getSize(), 8U);
    EXPECT_EQ(mpod.getTrackRefs(), nullptr);
    EXPECT_EQ(take(mpod.serialize()), hex("00000008 'mpod'"));
    AtomFile file(hex("00000008 'mpod'")); // and that is read again
    int result = -1;
    const auto back = file.parse<MPOD>(&result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(back->getTrackRefCount(), 0U);
}

} // namespace
} // namespace test
