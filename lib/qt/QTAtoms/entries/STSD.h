// Sample description table: how the samples of a track are coded.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTAtoms/entries/STSDData.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// "stsd": 8 version, 9 flags, 12 entry count, 16 the entries (see STSDData).
///
/// Pointers handed out are borrowed. The number of entries is the count field; it may differ from the entries
/// held, and serialize() then throws "Wrong number of entries in STSD-table". A table set as a whole with
/// setSampleDescription() is written in place of the entries.
class KETRA_QT_API STSD : public QTAtom {
public:
    STSD();
    /// A table with one new description for the media type: "vide", "audi", "text", "tmcd", "vihi", "auhi",
    /// "sdsm", "odsm" or "mp4s". Throws "Don't recognize media type ...." for any other.
    explicit STSD(unsigned int mediaType);
    explicit STSD(int mediaType) : STSD(static_cast<unsigned int>(mediaType)) {}
    explicit STSD(QTAtom* header);
    STSD(const STSD& other);
    STSD& operator=(const STSD& other);
    ~STSD() override;

    std::uint64_t updateSize() override; ///< 16 + the whole table, or 16 + the entries
    int parse() override;                ///< an entry that the file cuts off keeps the bytes that are there
    QTFrame* serialize() override;       ///< calls updateSize() first

    int addSampleDescription(STSDData* entry);                    ///< adopts; -1 for null
    STSDData* getSampleDescriptionData(unsigned int index) const; ///< from 0; null out of range
    STSDData* getCurrentSampleDescriptionData() const;            ///< at the iterator; null past the end
    std::vector<STSDData*> getSampleDescriptionTable() const;
    int setSampleDescriptionTable(const std::vector<STSDData*>& table); ///< adopts the entries

    int increaseIterator();
    int resetTableIterator();
    int setIterator(unsigned int n); ///< 1-based; 0

    /// Adopts a malloc block that is written in place of all entries. -1, nothing changed, for null or none.
    int setSampleDescription(unsigned int size, unsigned char* data);
    unsigned char* getSampleDescripionData() const; ///< that block, borrowed, or null
    unsigned int getSampleDescriptionSize() const;

    /// Adopts a complete atom as an extension of the entry (counted from 1); entry and table grow by it. -1,
    /// nothing taken, without such an entry or for an empty frame.
    int addExtension(unsigned int entryNumber, QTFrame* atom);

    unsigned int getNumberOfEntries() const;
    int setNumberOfEntries(unsigned int count);
    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int version) { return version_ = version, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int flags) { return flags_ = flags, 0; }

private:
    friend struct wire::Access;

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    std::unique_ptr<wire::HeldList<STSDData>> table_;
    std::unique_ptr<wire::Block> whole_; // the table set as a whole
};

} // namespace Ketra::QT
