// Sample sizes: one constant, or one size a sample.
#pragma once

#include <qt/QTAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// The size of one sample in bytes.
class KETRA_QT_API STSZData {
public:
    explicit STSZData(unsigned int size) : size_(size) {}

    unsigned int getSize() const { return size_; }
    int setSize(unsigned int size) { return size_ = size, 0; }

private:
    unsigned int size_;
};

namespace wire {
struct SampleSizeEntry;
}

/// "stsz": 8 version, 9 flags, 12 constant sample size (0 = sizes in the table), 16 sample count, 20 entries
/// of 32 bits when the constant is 0.
///
/// The number of entries is the sample count. A table whose entries are all equal is written in the constant
/// form. serialize() throws "Wrong number of entries in STSZ-table (NumOfEntries / actual count = %d / %d)"
/// when a table is to be written whose length is not the count.
class KETRA_QT_API STSZ : public QTAtom {
public:
    STSZ();
    explicit STSZ(QTAtom* header);
    STSZ(const STSZ& other);
    STSZ& operator=(const STSZ& other);
    ~STSZ() override;

    std::uint64_t updateSize() override; ///< 20, or 20 + 4 * sample count for a table of different sizes
    int parse() override;
    QTFrame* serialize() override;

    int addSampleSize(STSZData* entry); ///< adopts; -1 for null
    /// The entry, or the last one past the end. An empty table first gets one entry of the constant size: so
    /// a constant-size track answers every index.
    STSZData* getSampleSizeData(unsigned int index);
    STSZData* getCurrentSampleSizeData() const;
    std::vector<STSZData*> getSampleSizeTable() const;
    int setSampleSizeTable(const std::vector<STSZData*>& table); ///< adopts the entries; the size stays

    int increaseIterator();
    int resetTableIterator();
    int setIterator(unsigned int n); ///< 1-based; 0

    int setSize(std::uint64_t size) { return size_ = size, 0; } ///< the atom's size, not a sample's
    std::uint64_t getSize() const { return size_; }
    unsigned int getSampleSize() const { return sampleSize_; } ///< the constant; 0 with a table
    int setSampleSize(unsigned int size) { return sampleSize_ = size, 0; }
    /// All sample bytes: constant times count modulo 2^32, or the sum of the entries held.
    std::uint64_t getCalculatedSize();

    unsigned int getNumberOfEntries() const; ///< the sample count
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
    bool writesTable() const;

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned int sampleSize_ = 0;
    std::uint64_t calculatedSize_ = 0;
    std::unique_ptr<wire::EntryTable<wire::SampleSizeEntry>> table_;
};

} // namespace Ketra::QT
