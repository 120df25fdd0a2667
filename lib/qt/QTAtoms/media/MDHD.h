// Media header: the time scale and duration of one track's media.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "mdhd": 8 version, 9 flags, then creation time, modification time (seconds since 1904), time scale (32),
/// duration, language (16), quality (16). Version 0 has times and duration of 32 bits (32 bytes in all),
/// version 1 of 64 (44 bytes).
class KETRA_QT_API MDHD : public QTAtom {
public:
    MDHD();
    explicit MDHD(QTAtom* header);
    MDHD(const MDHD&) = default;
    MDHD& operator=(const MDHD&) = default;
    ~MDHD() override;

    std::uint64_t updateSize() override; ///< 32, or 44 for any version but 0
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    std::uint64_t getCreationTime() const { return creationTime_; }
    int setCreationTime(std::uint64_t v) { return creationTime_ = v, 0; }
    std::uint64_t getModificationTime() const { return modificationTime_; }
    int setModificationTime(std::uint64_t v) { return modificationTime_ = v, 0; }
    unsigned int getTimeScale() const { return timeScale_; } ///< units a second
    int setTimeScale(unsigned int v) { return timeScale_ = v, 0; }
    std::uint64_t getDuration() const {
        return duration_;
    } ///< in those units; version 0 writes the low 32 bits
    int setDuration(std::uint64_t v) { return duration_ = v, 0; }
    unsigned short getLanguage() const { return language_; } ///< the 16 bits as they stand
    int setLanguage(unsigned short v) { return language_ = v, 0; }
    unsigned short getQuality() const { return quality_; }
    int setQuality(unsigned short v) { return quality_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    std::uint64_t creationTime_ = 0;
    std::uint64_t modificationTime_ = 0;
    unsigned int timeScale_ = 0;
    std::uint64_t duration_ = 0;
    unsigned short language_ = 0;
    unsigned short quality_ = 0;
};

} // namespace Ketra::QT
