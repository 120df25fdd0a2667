// Track references: one atom for each kind, holding the ID of the track that is meant.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// What all of them are: size, type, 8 track ID (32); 12 bytes.
class KETRA_QT_API TrackReference : public QTAtom {
public:
    TrackReference(const TrackReference&) = default;
    TrackReference& operator=(const TrackReference&) = default;
    ~TrackReference() override;

    int parse() override;
    QTFrame* serialize() override;

    unsigned int getTrackID() const { return trackID_; }
    int setTrackID(unsigned int id) { return trackID_ = id, 0; }

protected:
    TrackReference(unsigned int type, unsigned int trackID); ///< a new one
    explicit TrackReference(QTAtom* header);

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int trackID_ = 0;
};

/// "tmcd": the timecode track.
class KETRA_QT_API TMCD : public TrackReference {
public:
    TMCD();
    explicit TMCD(unsigned int trackID);
    explicit TMCD(int trackID) : TMCD(static_cast<unsigned int>(trackID)) {}
    explicit TMCD(QTAtom* header);
    TMCD(const TMCD&) = default;
    TMCD& operator=(const TMCD&) = default;
    ~TMCD() override;
};

/// "chap": the chapter track.
class KETRA_QT_API CHAP : public TrackReference {
public:
    CHAP();
    explicit CHAP(unsigned int trackID);
    explicit CHAP(int trackID) : CHAP(static_cast<unsigned int>(trackID)) {}
    explicit CHAP(QTAtom* header);
    CHAP(const CHAP&) = default;
    CHAP& operator=(const CHAP&) = default;
    ~CHAP() override;
};

/// "sync": a track to keep in step with.
class KETRA_QT_API SYNC : public TrackReference {
public:
    SYNC();
    explicit SYNC(unsigned int trackID);
    explicit SYNC(int trackID) : SYNC(static_cast<unsigned int>(trackID)) {}
    explicit SYNC(QTAtom* header);
    SYNC(const SYNC&) = default;
    SYNC& operator=(const SYNC&) = default;
    ~SYNC() override;
};

/// "scpt": a transcript.
class KETRA_QT_API SCPT : public TrackReference {
public:
    SCPT();
    explicit SCPT(unsigned int trackID);
    explicit SCPT(int trackID) : SCPT(static_cast<unsigned int>(trackID)) {}
    explicit SCPT(QTAtom* header);
    SCPT(const SCPT&) = default;
    SCPT& operator=(const SCPT&) = default;
    ~SCPT() override;
};

/// "ssrc": a source of effects.
class KETRA_QT_API SSRC : public TrackReference {
public:
    SSRC();
    explicit SSRC(unsigned int trackID);
    explicit SSRC(int trackID) : SSRC(static_cast<unsigned int>(trackID)) {}
    explicit SSRC(QTAtom* header);
    SSRC(const SSRC&) = default;
    SSRC& operator=(const SSRC&) = default;
    ~SSRC() override;
};

/// "hint": the track that is hinted.
class KETRA_QT_API HINT : public TrackReference {
public:
    HINT();
    explicit HINT(unsigned int trackID);
    explicit HINT(int trackID) : HINT(static_cast<unsigned int>(trackID)) {}
    explicit HINT(QTAtom* header);
    HINT(const HINT&) = default;
    HINT& operator=(const HINT&) = default;
    ~HINT() override;
};

/// "dpnd": a track that this one depends on.
class KETRA_QT_API DPND : public TrackReference {
public:
    DPND();
    explicit DPND(unsigned int trackID);
    explicit DPND(int trackID) : DPND(static_cast<unsigned int>(trackID)) {}
    explicit DPND(QTAtom* header);
    DPND(const DPND&) = default;
    DPND& operator=(const DPND&) = default;
    ~DPND() override;
};

/// "ipir": a track with intellectual property data.
class KETRA_QT_API IPIR : public TrackReference {
public:
    IPIR();
    explicit IPIR(unsigned int trackID);
    explicit IPIR(int trackID) : IPIR(static_cast<unsigned int>(trackID)) {}
    explicit IPIR(QTAtom* header);
    IPIR(const IPIR&) = default;
    IPIR& operator=(const IPIR&) = default;
    ~IPIR() override;
};

} // namespace Ketra::QT
