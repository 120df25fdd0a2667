// Chunk offsets: where in the file each chunk begins.
#pragma once

#include <qt/QTAtom.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::QT {

/// The position of a chunk, in bytes from the start of the file.
class KETRA_QT_API STCOData {
public:
    explicit STCOData(std::uint64_t offset) : offset_(offset) {}

    std::uint64_t getOffset() const { return offset_; }
    int setOffset(std::uint64_t offset) { return offset_ = offset, 0; }

private:
    std::uint64_t offset_;
};

namespace wire {
struct ChunkOffsetEntry;
}

/// "stco": 8 version, 9 flags, 12 entry count, 16 entries of 32 bits; "co64": the same with entries of 64
/// bits.
///
/// The type held is "stco" for both; is64Bit() says which one is written. When the number of entries is not
/// that of the entries held, serialize() throws "Wrong number of entries in STSC-table" (the text of STSC).
class KETRA_QT_API STCO : public QTAtom {
public:
    STCO();
    explicit STCO(QTAtom* header);
    STCO(QTAtom* header, int mode); ///< mode 1 or 64: entries of 64 bits
    STCO(const STCO& other);
    STCO& operator=(const STCO& other);
    ~STCO() override;

    std::uint64_t updateSize() override; ///< 16 + 4 * number of entries, or 8 * with 64 bits
    int parse() override;
    QTFrame* serialize() override;

    /// Adopts; -1 for null. The stored size grows by 4 for 64-bit entries too; updateSize() sets it right.
    int addChunkOffset(STCOData* entry);
    STCOData* getChunkOffsetData(unsigned int index) const; ///< null out of range
    STCOData* getCurrentChunkOffsetData() const;            ///< at the iterator; null past the end
    std::vector<STCOData*> getChunkOffsetTable() const;
    int setChunkOffsetTable(const std::vector<STCOData*>& table); ///< adopts the entries; the size stays

    int increaseIterator();
    int resetTableIterator();
    int setIterator(unsigned int n); ///< 1-based; 0

    /// True for 64-bit entries: read so, or since an offset was above 0xFFFFFFFF.
    bool is64Bit() const;
    /// Moves every chunk by `delta` bytes. A chunk moved above 0xFFFFFFFF makes the entries 64 bits wide:
    /// sizes are then to be updated again.
    int addToOffsets(std::uint64_t delta);

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
    void append(std::uint64_t offset);
    void widenFor(std::uint64_t offset);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    std::unique_ptr<wire::EntryTable<wire::ChunkOffsetEntry>> table_;
};

} // namespace Ketra::QT
