// How the entries of the sample tables stand in the file: one layout per entry, private to the library.
#pragma once

#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/EntryTable.h>

namespace Ketra::QT::wire {

/// A run of samples with one value each: durations ("stts") or composition offsets ("ctts").
struct Run {
    std::uint32_t count;
    std::uint32_t value;
};

struct RunBytes {
    using Value = Run;
    static constexpr unsigned int width = 8;
    static Run read(const unsigned char* p) { return {load32(p), load32(p + 4)}; }
    static void write(unsigned char* p, const Run& run) {
        store32(p, run.count);
        store32(p + 4, run.value);
    }
};

struct TimeToSampleEntry : RunBytes {
    using Record = STTSData;
    static Record* record(const Run& run) { return new STTSData(run.count, run.value); }
    static Run value(const STTSData& data) { return {data.getSampleCount(), data.getDuration()}; }
    static void assign(STTSData& data, const Run& run) {
        data.setSampleCount(run.count);
        data.setDuration(run.value);
    }
};

struct SampleSizeEntry {
    using Record = STSZData;
    using Value = std::uint32_t;
    static constexpr unsigned int width = 4;
    static Value read(const unsigned char* p) { return load32(p); }
    static void write(unsigned char* p, Value size) { store32(p, size); }
    static Record* record(Value size) { return new STSZData(size); }
    static Value value(const STSZData& data) { return data.getSize(); }
};

} // namespace Ketra::QT::wire
