// Hint track of an audio track.
#pragma once

#include <qt/QTTrack/QTHintTrack.h>

namespace Ketra::QT {

/// The sample rate becomes the media time scale when the track is prepared.
class KETRA_QT_API QTAudioHintTrack : public QTHintTrack {
public:
    QTAudioHintTrack();
    explicit QTAudioHintTrack(QTAtom* trak); ///< as QTHintTrack
    QTAudioHintTrack(const QTAudioHintTrack& other);
    QTAudioHintTrack& operator=(const QTAudioHintTrack& other);
    ~QTAudioHintTrack() override;

    /// Headers, sample entry, statistics and session description. A second call adds a second set of both.
    int prepareForWriting() override;
    unsigned int getType() override; ///< "auhi"
    int addSdpFile() override;       ///< appends the session description to "hnti"; -1 without one

    unsigned int getSampleRate() const { return sampleRate_; } ///< samples a second
    int setSampleRate(unsigned int v) { return sampleRate_ = v, 0; }

private:
    unsigned int sampleRate_ = 0;
};

} // namespace Ketra::QT
