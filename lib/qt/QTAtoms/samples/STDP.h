// Degradation priorities: which samples to drop first.
#pragma once

#include <qt/QTAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// The degradation priority of one sample.
class KETRA_QT_API STDPData {
public:
    explicit STDPData(unsigned short priority) : priority_(priority) {}

    unsigned int getPriority() const { return priority_; }
    int setPriority(unsigned short priority) { return priority_ = priority, 0; }

private:
    unsigned short priority_;
};

namespace wire {
struct PriorityEntry;
}

/// "stdp": 8 version, 9 flags, 12 entries of 16 bits, one a sample. There is no count in the file, and none
/// is read: the number of entries of an atom just parsed is 0. Four bytes of padding follow the last entry
/// when the atom is written. When the number of entries is not that of the entries held, serialize() throws
/// "Wrong number of entries in STDP-table".
class KETRA_QT_API STDP : public QTAtom {
public:
    STDP();
    explicit STDP(QTAtom* header);
    STDP(const STDP& other);
    STDP& operator=(const STDP& other);
    ~STDP() override;

    std::uint64_t updateSize() override; ///< 16 + 2 * entries held
    int parse() override;
    QTFrame* serialize() override;

    int addDegradationPriority(STDPData* entry);                    ///< adopts; -1 for null
    STDPData* getDegradationPriorityData(unsigned int index) const; ///< null out of range
    STDPData* getCurrentDegradationPriorityData() const;            ///< at the iterator; null past the end
    std::vector<STDPData*> getDegradationPriorityTable() const;
    int
    setDegradationPriorityTable(const std::vector<STDPData*>& table); ///< adopts the entries, sets the size

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
    std::unique_ptr<wire::EntryTable<wire::PriorityEntry>> table_;
};

} // namespace Ketra::QT
