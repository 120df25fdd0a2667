// Movie header: time scale, duration and playback settings of the whole movie.
#pragma once

#include <qt/QTAtom.h>

#include <memory>

namespace Ketra::QT {

/// "mvhd", 108 bytes: 8 version, 9 flags, 12 creation time, 16 modification time (seconds since 1904), 20
/// time scale, 24 duration, 28 preferred rate (16.16), 32 preferred volume (8.8), 34 ten reserved bytes, 44
/// matrix (9 x 32), 80 preview time, 84 preview duration, 88 poster time, 92 selection time, 96 selection
/// duration, 100 current time, 104 next track ID. There is only this layout: a header with 64-bit times is
/// read as if it had it.
///
/// The matrix is written as nine plain integers; one that was read holds the file's bytes, which that does
/// not restore.
class KETRA_QT_API MVHD : public QTAtom {
public:
    MVHD();
    explicit MVHD(QTAtom* header);
    MVHD(const MVHD& other);
    MVHD& operator=(const MVHD& other);
    ~MVHD() override;

    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFLags() const { return flags_; }
    int setFLags(unsigned int v) { return flags_ = v, 0; }
    unsigned int getCreationTime() const { return creationTime_; }
    int setCreationTime(unsigned int v) { return creationTime_ = v, 0; }
    unsigned int getModificationTime() const { return modificationTime_; }
    int setModificationTime(unsigned int v) { return modificationTime_ = v, 0; }
    unsigned int getTimeScale() const { return timeScale_; } ///< units a second
    int setTimeScale(unsigned int v) { return timeScale_ = v, 0; }
    unsigned int getDuration() const { return duration_; } ///< in those units
    int setDuration(unsigned int v) { return duration_ = v, 0; }
    float getPreferredRate() const { return preferredRate_; } ///< a file's 1.0 reads as 256
    int setPreferredRate(float v) { return preferredRate_ = v, 0; }
    float getPreferredVolume() const { return preferredVolume_; }
    int setPreferredVolume(float v) { return preferredVolume_ = v, 0; }
    unsigned char* getReserved() const { return reservedBytes_; } ///< borrowed, 10 bytes
    int setReserved(unsigned char* bytes);                        ///< adopts 10 bytes; -1 for null
    unsigned int* getMatrix() const { return matrix_; }           ///< borrowed, 9 words
    int setMatrix(unsigned int* words);                           ///< adopts 9 words; -1 for null
    unsigned int getPreviewTime() const { return previewTime_; }
    int setPreviewTime(unsigned int v) { return previewTime_ = v, 0; }
    unsigned int getPreviewDuration() const { return previewDuration_; }
    int setPreviewDuration(unsigned int v) { return previewDuration_ = v, 0; }
    unsigned int getPosterTime() const { return posterTime_; }
    int setPosterTime(unsigned int v) { return posterTime_ = v, 0; }
    unsigned int getSelectionTime() const { return selectionTime_; }
    int setSelectionTime(unsigned int v) { return selectionTime_ = v, 0; }
    unsigned int getSelectionDuration() const { return selectionDuration_; }
    int setSelectionDuration(unsigned int v) { return selectionDuration_ = v, 0; }
    unsigned int getCurrentTime() const { return currentTime_; }
    int setCurrentTime(unsigned int v) { return currentTime_ = v, 0; }
    unsigned int getNextTrackID() const { return nextTrackID_; }
    int setNextTrackID(unsigned int v) { return nextTrackID_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);
    void makeBlocks();

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned int creationTime_ = 0;
    unsigned int modificationTime_ = 0;
    unsigned int timeScale_ = 0;
    unsigned int duration_ = 0;
    float preferredRate_ = 1.0F;
    float preferredVolume_ = 1.0F;
    unsigned char* reservedBytes_ = nullptr; // malloc
    unsigned int* matrix_ = nullptr;         // malloc
    unsigned int previewTime_ = 0;
    unsigned int previewDuration_ = 0;
    unsigned int posterTime_ = 0;
    unsigned int selectionTime_ = 0;
    unsigned int selectionDuration_ = 0;
    unsigned int currentTime_ = 0;
    unsigned int nextTrackID_ = 1;
};

} // namespace Ketra::QT
