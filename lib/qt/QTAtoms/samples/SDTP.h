// Sample dependencies: which samples depend on others and which may be dropped.
#pragma once

#include <qt/QTAtoms/samples/STSS.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

namespace wire {
struct DependencyEntry;
}

/// "sdtp": 8 version, 9 flags, 12 one byte of flags a sample. There is no count.
///
/// parse() reads version and flags only; the entries of a file are not loaded. An empty table is not written.
class KETRA_QT_API SDTP : public QTAtom {
public:
    SDTP();
    explicit SDTP(QTAtom* header);
    SDTP(const SDTP& other);
    SDTP& operator=(const SDTP& other);
    ~SDTP() override;

    std::uint64_t updateSize() override; ///< 12 + entries, 0 for none
    int parse() override;
    QTFrame* serialize() override;

    int addSampleDep(STSSData* entry);                    ///< adopts; -1 for null
    STSSData* getSampleDepData(unsigned int index) const; ///< null out of range
    STSSData* getCurrentSampleDepData() const;            ///< at the iterator; null past the end
    std::vector<STSSData*> getSampleDepTable() const;
    int setSampleDepTable(const std::vector<STSSData*>& table); ///< adopts the entries, sets the size

    int increaseIterator();
    int resetTableIterator();
    int setIterator(unsigned int n); ///< 1-based; 0

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int version) { return version_ = version, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int flags) { return flags_ = flags, 0; }

private:
    friend struct wire::Access;
    KETRA_QT_LOCAL bool write(wire::Output& out);
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    std::unique_ptr<wire::EntryTable<wire::DependencyEntry>> table_;
};

} // namespace Ketra::QT
