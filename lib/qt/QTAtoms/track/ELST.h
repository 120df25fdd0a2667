// Edit list: which parts of the media a track presents, and when.
#pragma once

#include <qt/QTAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// One edit.
class KETRA_QT_API ELSTData {
public:
    ELSTData(unsigned int duration, int mediaTime, float mediaRate)
        : duration_(duration), mediaTime_(mediaTime), mediaRate_(mediaRate) {}

    unsigned int getDuration() const { return duration_; } ///< in units of the movie time scale
    int setDuration(unsigned int duration) { return duration_ = duration, 0; }
    int getMediaTime() const { return mediaTime_; } ///< in units of the media time scale; -1 is an empty edit
    int setMediaTime(int mediaTime) { return mediaTime_ = mediaTime, 0; }
    float getMediaRate() const { return mediaRate_; } ///< 1 is the natural rate
    int setMediaRate(float mediaRate) { return mediaRate_ = mediaRate, 0; }

private:
    unsigned int duration_;
    int mediaTime_;
    float mediaRate_;
};

namespace wire {
struct EditEntry;
}

/// "elst": 8 version, 9 flags, 12 entry count, 16 entries of duration (32), media time (signed 32) and media
/// rate (16.16). There is no 64-bit form: version 1 is read the same way. When the number of entries is not
/// that of the entries held, serialize() throws "Wrong number of entries in ELST-table".
class KETRA_QT_API ELST : public QTAtom {
public:
    ELST();
    explicit ELST(QTAtom* header);
    ELST(const ELST& other);
    ELST& operator=(const ELST& other);
    ~ELST() override;

    std::uint64_t updateSize() override; ///< 16 + 12 * entries held
    int parse() override;
    QTFrame* serialize() override;

    int addEditListEntry(ELSTData* entry);               ///< adopts; -1 for null
    ELSTData* getEditListData(unsigned int index) const; ///< null out of range
    ELSTData* getCurrentEditListData() const;            ///< at the iterator; null past the end
    std::vector<ELSTData*> getEditListTable() const;
    int setEditListTable(const std::vector<ELSTData*>& table); ///< adopts the entries, sets the size

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
    std::unique_ptr<wire::EntryTable<wire::EditEntry>> table_;
};

} // namespace Ketra::QT
