// Partial sync samples: usable as sync samples with some of their neighbours left out.
#pragma once

#include <qt/QTAtoms/samples/STSS.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

namespace wire {
struct SyncEntry;
}

/// "stps": 8 version, 9 flags, 12 entry count, 16 entries of 32 bits: the numbers of the partial sync
/// samples.
///
/// An empty table is not written: serialize() gives null. The stored size follows appends only; what is
/// written is as long as the larger of it and the table. When the number of entries is not that of the
/// entries held, serialize() throws "Wrong number of entries in STSS-table" (the same text as STSS).
class KETRA_QT_API STPS : public QTAtom {
public:
    STPS();
    explicit STPS(QTAtom* header);
    STPS(const STPS& other);
    STPS& operator=(const STPS& other);
    ~STPS() override;

    std::uint64_t updateSize() override; ///< 16 + 4 * number of entries, 0 for none; not stored
    int parse() override;
    QTFrame* serialize() override;

    int addSyncSample(STSSData* entry);                    ///< adopts; -1 for null
    STSSData* getSyncSampleData(unsigned int index) const; ///< null out of range
    STSSData* getCurrentSyncSampleData() const;            ///< at the iterator; null past the end
    std::vector<STSSData*> getSyncSampleTable() const;
    int setSyncSampleTable(const std::vector<STSSData*>& table); ///< adopts the entries; the size stays

    int increaseIterator();
    int resetTableIterator();
    int setIterator(unsigned int n); ///< 1-based; 0

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
    std::unique_ptr<wire::EntryTable<wire::SyncEntry>> table_;
};

} // namespace Ketra::QT
