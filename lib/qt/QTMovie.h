// A movie: opened from a stream, or begun empty to be written.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTStream.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

class FTYP;
class InitialObjectDescriptor;
class IODS;
class MOOV;
class MVHD;
class QTDataAtom;
class QTTrack;
class QTUtils;
class ROOT;
class UDTA;

/// Owns its reader, its atom tree and its tracks, never the stream, which must outlive it. Times are seconds
/// unless a line says otherwise; pointers handed out are borrowed.
///
/// \snippet read_frames.cpp open
class KETRA_QT_API QTMovie {
public:
    /// Reads the whole header of a movie; samples are read when their tracks are asked. Null when there is no
    /// movie header or no usable track. Throws CException for a compressed header that cannot be inflated and
    /// for sample descriptions that contradict themselves.
    static QTMovie* createNewQTMovieFromStream(QTStream* stream, QTMovieConstructionFlags flags);
    /// An empty movie of the flavour, time scale 600: then per track beginTrack(), samples and endTrack();
    /// endMovie(); prepareForWriting(); updateAtomSizes(); serializeRoot(). `hinted` makes room for hint
    /// information, `ftypForMov` gives a QuickTime movie the file type that all others have. The caller owns
    /// the movie.
    static QTMovie* beginMovie(QTMovieConstructionFlags type, bool hinted, bool ftypForMov);
    ~QTMovie();
    QTMovie(const QTMovie&) = delete;
    QTMovie& operator=(const QTMovie&) = delete;

    std::vector<QTTrack*> getTracks() const { return tracks_; }
    unsigned int getNumberOfTracks() const { return static_cast<unsigned int>(tracks_.size()); }
    QTTrack* getTrackID(unsigned int id) const; ///< the first with the ID, or null
    /// The first track whose class, media type or handler has the code ("vide", "soun", "text", "tmcd",
    /// "hint", ...).
    QTTrack* getTrackOfType(unsigned int type) const;

    double getDuration() const { return duration_; }
    int setDuration(double seconds) { return duration_ = seconds, 0; }
    double getStartTime() const { return startTime_; }
    int setStartTime(double seconds) { return startTime_ = seconds, 0; }
    double getEndTime() const { return endTime_; }
    int setEndTime(double seconds) { return endTime_ = seconds, 0; }
    unsigned int getBitRate() const { return bitRate_; }
    int setBitRate(unsigned int rate) { return bitRate_ = rate, 0; }
    unsigned int
    getTimeScale() const; ///< units a second, of the movie header; 0 without one, like the next two
    int setTimeScale(unsigned int scale); ///< -1 without a movie header, like the next two
    unsigned int getAtomTimeScale() const;
    int setAtomTimeScale(unsigned int scale);
    unsigned int getAtomDuration() const; ///< in units of the time scale
    int setAtomDuration(unsigned int units);
    unsigned char get3gpVersion() const { return version3gp_; }
    int set3gpVersion(unsigned char release) { return version3gp_ = release, 0; }
    int useFtypForMov(bool use) { return useFtypForMov_ = use, 0; } ///< see beginMovie()

    ROOT* getRoot() const { return root_.get(); }
    QTStream* getStream() const { return stream_; }
    QTUtils* getUtils() const { return utils_.get(); }
    std::uint64_t getBytesRead() const;                    ///< 0 without a reader
    InitialObjectDescriptor* getInitialObjectDescriptor(); ///< null when there is none
    unsigned int getTimeCode();                            ///< of the last timecode track; 0 without one
    bool getAllowTranscoding();

    /// Takes the next track ID from the movie header. Throws CException "No moov atom exists. Aborting!" and
    /// "MOOV-atom doesn't have a headeratom. Aborting!".
    unsigned int getNewTrackID();
    int initAtoms();                 ///< looks the cached atoms up; -1 without "moov"
    int addTrack(QTTrack* track);    ///< adopts; -1 for null
    int addMoovChild(QTAtom* child); ///< adopts on 0; -1 without "moov"
    int addUuidAtom(QTAtom* child);  ///< adopts on 0
    /// Adds a text to the user data; `length` counts its terminating zero byte. QuickTime text is converted
    /// from UTF-8.
    int addUserData(unsigned int type, unsigned int length, const char* text);

    /// A new track of the media type ("vide", "audi", "text", "tmcd", "vihi", "auhi", "odsm", "sdsm") with
    /// its empty tree; borrowed. Throws what getNewTrackID() throws, and CException for another type.
    QTTrack* beginTrack(unsigned int type, QTMovieConstructionFlags flags);
    int endTrack(unsigned int trackID); ///< -1 without such a track
    int endMovie();                     ///< -1 while a track is open
    /// Prepares every track that is not prepared yet, then settles the movie's duration, hint information,
    /// brands and profiles. Brands add up when it is called again. 0.
    int prepareForWriting();
    int setFtypMajorBrand(unsigned int brand); ///< -1 without "ftyp", like the next two
    int setFtypMinorVersion(unsigned int version);
    int addCompatibleBrand(unsigned int brand); ///< appended, in front of those of prepareForWriting()
    /// False marks the movie as not to be transcoded, in its user data. -1 for a movie that was read with a
    /// marker.
    int setAllowTranscoding(bool allow);
    int addInfoToHint(QTDataAtom* entry); ///< adopts on 0; -1 for null and without "moov"
    int addBitRateToHint();               ///< the bit rate as it stands; -1 without user data
    /// Adds the restrictions of an AMC file, which this library only places.
    int addAMCRestrictions(bool a, bool b, unsigned int c, bool d, unsigned int e);
    /// Shifts the chunk offsets of all tracks, as when the header goes in front of the media. -1 when a track
    /// has no chunk offsets; the others are shifted all the same.
    int addToAtomStcoOffsets(std::uint64_t delta);

    std::uint64_t updateAtomSizes(); ///< of the whole tree
    QTFrame* serializeRoot();        ///< the header part of the file; the caller owns it

    QTMovieConstructionFlags getMovieType() const { return flags_; }
    bool isEnded() const { return ended_; }
    bool getHasHintTracks() const { return hasHintTracks_; }

private:
    QTMovie(QTStream* stream, QTMovieConstructionFlags flags);
    explicit QTMovie(QTMovieConstructionFlags flags);
    int parseMovie();
    bool createTracks();
    MOOV* movieAtom() const;
    UDTA* ensureUserData();
    void settleDuration();
    void settleBrands();
    void settleProfileLevels();
    void addHandheldProfiles();
    int adoptIntoMoov(std::unique_ptr<QTAtom> child);
    int adoptIntoRoot(std::unique_ptr<QTAtom> child);

    QTStream* stream_ = nullptr;
    QTMovieConstructionFlags flags_;
    std::unique_ptr<QTUtils> utils_;
    std::unique_ptr<ROOT> root_;
    std::vector<QTTrack*> tracks_;
    bool ended_ = false;
    double duration_ = 0;
    unsigned int bitRate_ = 0;
    double startTime_ = 0;
    double endTime_ = 0;
    unsigned int timeCode_ = 0;
    bool hasHintTracks_ = false;
    bool useFtypForMov_ = false;
    MVHD* mvhd_ = nullptr;
    FTYP* ftyp_ = nullptr;
    IODS* iods_ = nullptr;
    UDTA* udta_ = nullptr;
    unsigned char version3gp_ = 6;
    std::vector<char> mana_; // the title of a handheld movie
};

} // namespace Ketra::QT
