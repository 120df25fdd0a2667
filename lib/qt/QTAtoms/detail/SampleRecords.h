// How the entries of the timing, sync and size tables stand in the file: one layout per entry, private to the
// library.
#pragma once

#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/QTAtoms/samples/STDP.h>
#include <qt/QTAtoms/samples/STSS.h>
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

struct CompositionEntry : RunBytes {
    using Record = CTTSData;
    static Record* record(const Run& run) { return new CTTSData(run.count, run.value); }
    static Run value(const CTTSData& data) {
        return {data.getSampleCount(), static_cast<std::uint32_t>(data.getSampleOffset())};
    }
    static void assign(CTTSData& data, const Run& run) {
        data.setSampleCount(run.count);
        data.setSampleOffset(run.value);
    }
};

/// Number of a sync sample or a partial sync sample.
struct SyncEntry {
    using Record = STSSData;
    using Value = std::uint32_t;
    static constexpr unsigned int width = 4;
    static Value read(const unsigned char* p) { return load32(p); }
    static void write(unsigned char* p, Value number) { store32(p, number); }
    static Record* record(Value number) { return new STSSData(number); }
    static Value value(const STSSData& data) { return data.getNumber(); }
};

/// Dependency flags of a sample, the low byte of the record's number.
struct DependencyEntry {
    using Record = STSSData;
    using Value = std::uint32_t;
    static constexpr unsigned int width = 1;
    static Value read(const unsigned char* p) { return *p; }
    static void write(unsigned char* p, Value flags) { *p = static_cast<unsigned char>(flags); }
    static Record* record(Value flags) { return new STSSData(flags); }
    static Value value(const STSSData& data) { return data.getNumber(); }
};

struct PriorityEntry {
    using Record = STDPData;
    using Value = std::uint16_t;
    static constexpr unsigned int width = 2;
    static Value read(const unsigned char* p) { return load16(p); }
    static void write(unsigned char* p, Value priority) { store16(p, priority); }
    static Record* record(Value priority) { return new STDPData(priority); }
    static Value value(const STDPData& data) { return static_cast<Value>(data.getPriority()); }
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
