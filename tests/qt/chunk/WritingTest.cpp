// A chunk that is gathered by hand: what it collects and what closing it records.
#include "qt/track/NewTrack.h"
#include "support/MovieBytes.h"

#include <base/CException.h>
#include <qt/QTChunk.h>

#include <gtest/gtest.h>

namespace test {
namespace {

using namespace Ketra::QT;

TEST(ChunkWriting, CollectsBytesAndRecordsThem) {
    const NewTrack track(fourCC("vide"));
    QTChunk chunk(track.track.get());
    EXPECT_EQ(chunk.getChunkStartTime(), -1.0);
    chunk.setChunkNr(4);
    EXPECT_EQ(chunk.beginChunk(), 0);
    EXPECT_EQ(chunk.addSample(nullptr), -1);
    EXPECT_EQ(chunk.addSyncSample(nullptr, 1), -1);
    EXPECT_EQ(chunk.addPartialSyncSample(nullptr, 1), -1);
    auto first = frameOf(2, 0xA, 3, 1, 2, 5);
    EXPECT_EQ(chunk.addSyncSample(first.get(), 7), 0);
    first.reset(); // what was added is held
    const auto second = frameOf(1, 0xB, 4, 1, 4);
    EXPECT_EQ(chunk.addPartialSyncSample(second.get(), 8), 0);
    QTFrame withoutBytes; // a length and nothing behind it
    withoutBytes.setDataLength(3);
    EXPECT_EQ(chunk.addSamplesToChunk({second.get(), &withoutBytes}), 0);
    EXPECT_EQ(chunk.addSamplesToChunk({second.get(), nullptr}), -1);
    EXPECT_EQ(chunk.addSampleDep(0x60), 0);
    EXPECT_EQ(chunk.getSampleCount(), 9U);
    EXPECT_EQ(chunk.getChunkStartTime(), 2.0); // of its first frame, when it is decoded

    QTChunk copy(chunk); // collects on its own
    EXPECT_EQ(take(chunk.closeChunk(0x100000000)), hex("0A0A 0B 0B 000000 0B"));
    EXPECT_EQ(track.sizes(), (std::vector<unsigned int>{2, 1, 1, 3, 1}));
    EXPECT_EQ(NewTrack::numbers(track.table<STSS>("stss").getSyncSampleTable()),
              (std::vector<unsigned int>{7}));
    EXPECT_EQ(NewTrack::numbers(track.table<STPS>("stps").getSyncSampleTable()),
              (std::vector<unsigned int>{8}));
    EXPECT_EQ(NewTrack::numbers(track.table<SDTP>("sdtp").getSampleDepTable()),
              (std::vector<unsigned int>{0x60}));
    const STSCData* run = track.table<STSC>("stsc").getSampleToChunkData(0);
    ASSERT_TRUE(run);
    EXPECT_EQ(run->getFirstChunk(), 4U);
    EXPECT_EQ(run->getSamplesPerChunk(), 9U);
    EXPECT_EQ(take(copy.closeChunk(0)), hex("0A0A 0B 0B 000000 0B"));
    auto& offsets = track.table<STCO>("stco");
    EXPECT_EQ(offsets.updateSize(), 16U + 2 * 8); // the large one makes all wide
    chunk = copy;
    EXPECT_EQ(chunk.beginChunk(), 0);
    EXPECT_EQ(chunk.getSampleCount(), 0U);
    EXPECT_EQ(take(chunk.closeChunk(0)), Bytes());
}

TEST(ChunkWriting, NeedsSizesAndOffsets) {
    const NewTrack track(fourCC("vide"));
    QTAtom* tables = track.at({"mdia", "minf", "stbl"});
    const std::unique_ptr<QTAtom> sizes(tables->getAtomOfType(fourCC("stsz")));
    tables->removeAtomOfType(fourCC("stsz"));
    EXPECT_THROW(QTChunk chunk(track.track.get()), Ketra::CException);
    EXPECT_EQ(track->beginChunk(), nullptr);
}

TEST(ChunkTables, ArePrintedForPeople) {
    TrackSpec spec;
    spec.stts = {{1, 10}, {2, 20}};
    spec.ctts = {{3, 0xFFFFFFFF}};
    spec.sizes = {4, 5, 6};
    spec.hasSync = true;
    spec.sync = {1, 3};
    spec.chunks = {1, 2};
    const MovieFile movie(spec);
    ASSERT_TRUE(movie);
    testing::internal::CaptureStdout();
    movie.track()->getChunk()->printTables();
    const std::string printed = testing::internal::GetCapturedStdout();
    for (const char* part : {"time scale 1000", "samples 3, chunks 2", "stts 1: 2 x 20", "ctts 0: 3 x -1",
                             "stss 1: 3", "stco 1: "}) {
        EXPECT_NE(printed.find(part), std::string::npos) << part << " in\n" << printed;
    }
}

} // namespace
} // namespace test
