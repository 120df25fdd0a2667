// Time-to-sample: how long each sample lasts, as runs of equal durations.
#pragma once

#include <qt/QTAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// A run of samples of one duration, in units of the media time scale.
class KETRA_QT_API STTSData {
public:
    STTSData(unsigned int sampleCount, unsigned int duration)
        : sampleCount_(sampleCount), duration_(duration) {}

    unsigned int getSampleCount() const { return sampleCount_; }
    int setSampleCount(unsigned int count) { return sampleCount_ = count, 0; }
    unsigned int getDuration() const { return duration_; }
    int setDuration(unsigned int duration) { return duration_ = duration, 0; }

private:
    unsigned int sampleCount_;
    unsigned int duration_;
};

namespace wire {
struct TimeToSampleEntry;
}

/// "stts": 8 version, 9 flags, 12 entry count, 16 entries of sample count (32) and duration (32).
///
/// Pointers handed out are borrowed. The number of entries is the count field; it may differ from the entries
/// held, and serialize() then throws "Wrong number of entries in STTS-table".
class KETRA_QT_API STTS : public QTAtom {
public:
    STTS();
    explicit STTS(QTAtom* header);
    STTS(const STTS& other);
    STTS& operator=(const STTS& other);
    ~STTS() override;

    std::uint64_t updateSize() override; ///< merges neighbours of equal duration, then 16 + 8 * entries
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first

    int addTimeToSample(STTSData* entry);                    ///< adopts; -1 for null
    STTSData* getTimeToSampleData(unsigned int index) const; ///< null out of range
    STTSData* getCurrentTimeToSampleData() const;            ///< at the iterator; null past the end
    std::vector<STTSData*> getTimeToSampleTable() const;
    int setTimeToSampleTable(const std::vector<STTSData*>& table); ///< adopts the entries, sets the size

    int increaseIterator();
    int resetTableIterator();
    /// Goes to the n-th entry (1-based) and returns the number of the last sample that it covers.
    unsigned int setIterator(unsigned int n);
    unsigned int getCurrentIndex() const; ///< 0-based

    unsigned int getSumOfDurations() const; ///< the media's duration, modulo 2^32
    unsigned int getSumOfEntries() const;   ///< the number of samples, modulo 2^32

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
    int compact();

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    std::unique_ptr<wire::EntryTable<wire::TimeToSampleEntry>> table_;
};

} // namespace Ketra::QT
