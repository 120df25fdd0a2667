// An MPEG-4 systems track: object descriptors or a scene description.
#pragma once

#include <qt/QTTrack/QTTrack.h>

#include <memory>

namespace Ketra::QT {

namespace wire {
class ExtensionList;
}

/// Media type "odsm" (object descriptor stream) or "sdsm" (scene description stream). The caller sets the
/// media time scale.
class KETRA_QT_API QTDescriptionTrack : public QTTrack {
public:
    QTDescriptionTrack();
    explicit QTDescriptionTrack(
        QTAtom* trak); ///< over a parsed "trak"; throws CException without its headers
    QTDescriptionTrack(const QTDescriptionTrack& other);
    QTDescriptionTrack& operator=(const QTDescriptionTrack& other);
    ~QTDescriptionTrack() override;

    /// Throws CException "Unknown description media type." for any other media type.
    int prepareForWriting() override;
    unsigned int getType() override; ///< "desc"
    int parseStsd(QTAtom*) override; ///< 0: nothing is read from the description

    unsigned int getODSMTrackID() const { return odsmTrackID_; } ///< of the object descriptor track
    int setODSMTrackID(unsigned int id) { return odsmTrackID_ = id, 0; }
    unsigned int getSDSMTrackID() const { return sdsmTrackID_; } ///< of the scene description track
    int setSDSMTrackID(unsigned int id) { return sdsmTrackID_ = id, 0; }
    /// Adopts a malloc block of track IDs for "mpod". They are written as they are in memory: pass them
    /// big-endian. -1, nothing taken, for null with a count; a count of 0 clears.
    int setMpodData(unsigned int* refs, unsigned int count);

private:
    void writeReferences();

    unsigned int odsmTrackID_ = 0;
    unsigned int sdsmTrackID_ = 0;
    std::unique_ptr<wire::Block> mpod_;
    std::shared_ptr<wire::ExtensionList> extensions_; // those written into the description
};

} // namespace Ketra::QT
