// Composition offsets: how far the presentation of each sample lies from its decoding, as runs.
#pragma once

#include <qt/QTAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// A run of samples of one composition offset, in units of the media time scale.
class KETRA_QT_API CTTSData {
public:
    CTTSData(unsigned int sampleCount, unsigned int sampleOffset)
        : sampleCount_(sampleCount), sampleOffset_(sampleOffset) {}

    unsigned int getSampleCount() const { return sampleCount_; }
    int setSampleCount(unsigned int sampleCount) { return sampleCount_ = sampleCount, 0; }
    int getSampleOffset() const { return static_cast<int>(sampleOffset_); } ///< the bits taken as signed
    int setSampleOffset(unsigned int sampleOffset) { return sampleOffset_ = sampleOffset, 0; }

private:
    unsigned int sampleCount_;
    unsigned int sampleOffset_;
};

namespace wire {
class DecodeIndex;
struct CompositionEntry;
} // namespace wire

/// "ctts": 8 version, 9 flags, 12 entry count, 16 entries of sample count (32) and composition offset (32).
/// The offset's bits are kept as they are in either version.
///
/// A table of zero offsets says nothing and is not written: updateSize() is then 0 and serialize() null. The
/// number of entries may differ from the entries held: serialize() then throws "Wrong number of entries in
/// CTTS-table".
class KETRA_QT_API CTTS : public QTAtom {
public:
    CTTS();
    explicit CTTS(QTAtom* header);
    CTTS(const CTTS& other);
    CTTS& operator=(const CTTS& other);
    ~CTTS() override;

    std::uint64_t updateSize() override; ///< merges neighbours of equal offset, then 16 + 8 * entries, or 0
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first

    int addCompositionTime(CTTSData* entry);                    ///< adopts; -1 for null
    CTTSData* getCompositionTimeData(unsigned int index) const; ///< null out of range
    CTTSData* getCurrentCompositionTimeData() const;            ///< at the iterator; null past the end
    std::vector<CTTSData*> getCompositionTimeTable() const;
    int setCompositionTimeTable(const std::vector<CTTSData*>& table); ///< adopts the entries, sets the size

    int increaseIterator();
    int resetTableIterator();
    int setIterator(unsigned int n); ///< 1-based; 0

    int compact(); ///< merges neighbours of equal offset and sets the count; 0
    /// The offset of the next sample in decode order; the last one repeats for ever. 0 for an empty table.
    /// The iterator moves along.
    int getNextDecodeOffset();
    int resetDecodeOffset(); ///< back to the first sample

    unsigned int getNumberOfEntries() const;
    int setNumberOfEntries(unsigned int count);
    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int version) { return version_ = version, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int flags) { return flags_ = flags, 0; }

private:
    friend struct wire::Access;
    KETRA_QT_LOCAL bool write(wire::Output& out);
    template <class Self, class Io>
    static void layout(Self& a, Io& io);
    void seekDecodeOffset(std::uint64_t steps);
    int peekDecodeOffset() const;

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned int taken_ = 0; // samples that the decode cursor took from the entry at the iterator
    std::unique_ptr<wire::EntryTable<wire::CompositionEntry>> table_;
    std::unique_ptr<wire::DecodeIndex> index_;
};

} // namespace Ketra::QT
