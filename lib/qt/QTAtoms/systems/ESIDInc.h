// A reference from an initial object descriptor to a track.
#pragma once

#include <qt/QTAtoms/systems/MP4ObjectData.h>

namespace Ketra::QT {

/// Tag 0x0E: the track ID (32). Always written with a size of 4.
class KETRA_QT_API ESIDInc : public MP4ObjectData {
public:
    explicit ESIDInc(unsigned int trackID); ///< a new one
    ESIDInc(unsigned int size, unsigned char tag);
    ~ESIDInc() override;

    int getInfo(unsigned char** cursor) override;
    QTFrame* serialize() override;
    unsigned int updateSize() override; ///< the size held

    unsigned int getTrackID() const { return trackID_; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int trackID_ = 0;
};

} // namespace Ketra::QT
