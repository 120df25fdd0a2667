// Hint track of a video track.
#pragma once

#include <qt/QTTrack/QTHintTrack.h>

namespace Ketra::QT {

/// The size is that of the coded picture in pixels; the track header gets it times the display factor.
class KETRA_QT_API QTVideoHintTrack : public QTHintTrack {
public:
    QTVideoHintTrack();
    explicit QTVideoHintTrack(QTAtom* trak); ///< as QTHintTrack, and the size from the track header
    QTVideoHintTrack(const QTVideoHintTrack& other);
    QTVideoHintTrack& operator=(const QTVideoHintTrack& other);
    ~QTVideoHintTrack() override;

    /// Headers, sample entry, statistics and session description. A second call adds a second set of both.
    int prepareForWriting() override;
    unsigned int getType() override; ///< "vihi"
    int addSdpFile() override;       ///< appends the session description to "hnti"; -1 without one

    unsigned short getWidth() const { return width_; }
    int setWidth(unsigned short v) { return width_ = v, 0; }
    unsigned short getHeight() const { return height_; }
    int setHeight(unsigned short v) { return height_ = v, 0; }
    double getDisplayFactor() const { return displayFactor_; }
    int setDisplayFactor(double v) { return displayFactor_ = v, 0; }

private:
    unsigned short height_ = 0;
    unsigned short width_ = 0;
    double displayFactor_ = 1.0;
};

} // namespace Ketra::QT
