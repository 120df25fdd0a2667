// Sample-to-chunk: how many samples each chunk has, and which description they use.
#pragma once

#include <qt/QTAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// A chunk: its number, its samples, and the samples of all chunks before it (held in memory only).
class KETRA_QT_API STSCData {
public:
    STSCData(unsigned int firstChunk, unsigned int samplesPerChunk, unsigned int sampleDescriptionID,
             unsigned int totalSampleCount)
        : firstChunk_(firstChunk), samplesPerChunk_(samplesPerChunk),
          sampleDescriptionID_(sampleDescriptionID), totalSampleCount_(totalSampleCount) {}

    unsigned int getFirstChunk() const { return firstChunk_; }
    int setFirstChunk(unsigned int firstChunk) { return firstChunk_ = firstChunk, 0; }
    unsigned int getSamplesPerChunk() const { return samplesPerChunk_; }
    int setSamplesPerChunk(unsigned int samplesPerChunk) { return samplesPerChunk_ = samplesPerChunk, 0; }
    unsigned int getSampleDescriptionID() const { return sampleDescriptionID_; }
    int setSampleDescriptionID(unsigned int sampleDescriptionID) {
        return sampleDescriptionID_ = sampleDescriptionID, 0;
    }
    unsigned int getTotalSampleCount() const { return totalSampleCount_; } ///< samples before this chunk
    int setTotalSampleCount(unsigned int totalSampleCount) { return totalSampleCount_ = totalSampleCount, 0; }

private:
    unsigned int firstChunk_;
    unsigned int samplesPerChunk_;
    unsigned int sampleDescriptionID_;
    unsigned int totalSampleCount_;
};

namespace wire {
struct ChunkRunEntry;
}

/// "stsc": 8 version, 9 flags, 12 entry count, 16 entries of first chunk (32, from 1), samples per chunk (32)
/// and sample description ID (32).
///
/// The table is held expanded, one entry a chunk, so that a chunk's index finds its entry; the number of
/// entries is that of the expansion. A file can state no more chunks than its length has room for: further
/// entries are dropped. Writing puts neighbours of equal samples and description into one entry again and
/// leaves the table as it is. When the number of entries is not that of the entries held, serialize() throws
/// "Wrong number of entries in STSC-table".
class KETRA_QT_API STSC : public QTAtom {
public:
    STSC();
    explicit STSC(QTAtom* header);
    STSC(const STSC& other);
    STSC& operator=(const STSC& other);
    ~STSC() override;

    std::uint64_t updateSize() override; ///< 16 + 12 * entries that will be written
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first

    int addSampleToChunk(STSCData* entry);                    ///< adopts; -1 for null
    STSCData* getSampleToChunkData(unsigned int index) const; ///< null out of range
    STSCData* getCurrentSampleToChunkData() const;            ///< at the iterator; null past the end
    std::vector<STSCData*> getSampleToChunkTable() const;
    int setSampleToChunkTable(const std::vector<STSCData*>& table); ///< adopts the entries; the size stays

    int increaseIterator();
    int resetTableIterator();
    int setIterator(unsigned int n);  ///< 1-based; 0
    unsigned int getIterator() const; ///< 0-based

    unsigned int getNumberOfEntries() const;
    int setNumberOfEntries(unsigned int count);
    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int version) { return version_ = version, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int flags) { return flags_ = flags, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    std::unique_ptr<wire::EntryTable<wire::ChunkRunEntry>> table_;
};

} // namespace Ketra::QT
