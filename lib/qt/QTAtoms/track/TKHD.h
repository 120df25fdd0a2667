// Track header: identity, enabling, placement and display size of a track.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "tkhd", always written with 92 bytes:
///
/// 8 version, 9 flags (enabled 1, in movie 2, in preview 4, in poster 8), 12 creation time, 16 modification
/// time (seconds since 1904), 20 track ID, 24 reserved (32), 28 duration (movie time scale), 32 reserved
/// (64), 40 layer (16), 42 alternate group (16), 44 volume (8.8), 46 reserved (16), 48 matrix (9 x 32), 84
/// width, 88 height (16.16; read as their integer parts).
///
/// There is only this layout: a header with 64-bit times is read as if it had it.
class KETRA_QT_API TKHD : public QTAtom {
public:
    TKHD();
    explicit TKHD(unsigned int trackID); ///< a new one
    explicit TKHD(int trackID) : TKHD(static_cast<unsigned int>(trackID)) {}
    explicit TKHD(QTAtom* header);
    TKHD(const TKHD&) = default;
    TKHD& operator=(const TKHD&) = default;
    ~TKHD() override;

    std::uint64_t updateSize() override; ///< 92
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned int getCreationTime() const { return creationTime_; }
    int setCreationTime(unsigned int v) { return creationTime_ = v, 0; }
    unsigned int getModificationTime() const { return modificationTime_; }
    int setModificationTime(unsigned int v) { return modificationTime_ = v, 0; }
    unsigned int getTrackID() const { return trackID_; }
    int setTrackID(unsigned int v) { return trackID_ = v, 0; }
    unsigned int getReserved1() const { return reserved1_; }
    int setReserved1(unsigned int v) { return reserved1_ = v, 0; }
    unsigned int getDuration() const { return duration_; } ///< in units of the movie time scale
    int setDuration(unsigned int v) { return duration_ = v, 0; }
    std::uint64_t getReserved2() const { return reserved2_; }
    int setReserved2(std::uint64_t v) { return reserved2_ = v, 0; }
    unsigned short getLayer() const { return layer_; }
    int setLayer(unsigned short v) { return layer_ = v, 0; }
    unsigned short getAlternateGroup() const { return alternateGroup_; }
    int setAlternateGroup(unsigned short v) { return alternateGroup_ = v, 0; }
    float getVolume() const { return volume_; } ///< 1.0 = full
    int setVolume(float v) { return volume_ = v, 0; }
    unsigned short getReserved3() const { return reserved3_; }
    int setReserved3(unsigned short v) { return reserved3_ = v, 0; }
    /// Nine words, borrowed. After a parse these are the file's bytes unchanged, and are written back so.
    unsigned int* getMatrix() const { return matrix_; }
    int setMatrix(const unsigned int* words); ///< copies nine plain integers; -1 for null
    float getWidth() const { return width_; } ///< pixels
    int setWidth(float v) { return width_ = v, 0; }
    float getHeight() const { return height_; }
    int setHeight(float v) { return height_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 15;
    unsigned int creationTime_ = 0;
    unsigned int modificationTime_ = 0;
    unsigned int trackID_ = 0;
    unsigned int reserved1_ = 0;
    unsigned int duration_ = 0;
    std::uint64_t reserved2_ = 0;
    unsigned short layer_ = 0;
    unsigned short alternateGroup_ = 0;
    float volume_ = 1.0F;
    unsigned short reserved3_ = 0;
    mutable unsigned int matrix_[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    bool rawMatrix_ = false; // the matrix holds file bytes, not integers
    float width_ = 0;
    float height_ = 0;
};

} // namespace Ketra::QT
