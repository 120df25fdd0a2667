// Data references of a track's media.
#pragma once

#include <qt/QTAtoms/media/DREFEntry.h>

#include <vector>

namespace Ketra::QT {

/// "dref": 8 version, 9 flags, 12 entry count, 16 entries, each an atom. serialize() throws "Wrong number of
/// entries in DREF-table" when the count and the entries held differ.
class KETRA_QT_API DREF : public QTAtom {
public:
    DREF();
    explicit DREF(QTAtom* header);
    DREF(const DREF& other); ///< lists the same entries and does not own them
    DREF& operator=(const DREF& other);
    ~DREF() override;

    std::uint64_t updateSize() override; ///< 16 + the entries
    int parse() override;
    QTFrame* serialize() override;

    int addDataReference(DREFEntry* entry);                     ///< adopts, grows count and size; -1 for null
    DREFEntry* getDataReferenceEntry(unsigned int index) const; ///< from 0; null out of range
    std::vector<DREFEntry*> getDataReferenceTable() const { return entries_; } ///< borrowed
    unsigned int getNumberOfEntries() const { return count_; }
    int setNumberOfEntries(unsigned int count) { return count_ = count, 0; }
    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);
    void release();

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned int count_ = 0;
    std::vector<DREFEntry*> entries_;
    bool ownsEntries_ = true;
};

} // namespace Ketra::QT
