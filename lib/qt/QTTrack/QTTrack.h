// One track of a movie: its identity and times, its samples, and the values that live in its header atoms.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTAtoms/samples/STTS.h>

#include <deque>
#include <limits>
#include <memory>
#include <vector>

namespace Ketra::QT {

class CTTS;
class CTTSData;
class DREF;
class DREFEntry;
class ELST;
class ELSTData;
class HDLR;
class HMHD;
class MDHD;
class QTChunk;
class QTStream;
class STCO;
class STSD;
class STSDData;
class STSZ;
class TKHD;
class UDTA;
class VMHD;

/// The base of all track classes. A track points into the atom tree of its movie and owns nothing of it; it
/// owns its cursor, frames and byte blocks. Times are seconds, bit rates bits per second, unless a line says
/// otherwise.
///
/// Calls named setAtom... and getAtom... reach through to the atom that holds the value; without that atom a
/// setter returns -1 and a getter 0.
class KETRA_QT_API QTTrack {
public:
    /// Puts what the track holds into its atoms, once; 0.
    virtual int prepareForWriting();
    virtual unsigned int
    getType(); ///< "vide", "audi", "text", "tmcd", "hint", "vihi", "auhi", "desc"; base: 0
    /// Appends a sample to the chunk, copying its bytes, and to the tables. The four below do the same and
    /// note something beside it. -1 for null and without a chunk.
    virtual int addSample(QTFrame* frame);
    virtual int addSyncSample(QTFrame* frame);        ///< a key frame
    virtual int addPartialSyncSample(QTFrame* frame); ///< one from which decoding can begin with some loss
    virtual int addPSample(QTFrame* frame);           ///< an ordinary sample that others depend on
    virtual int addHintSample(QTFrame* frame);        ///< nothing beside it
    virtual unsigned short getSwitchSize();           ///< what players choose among alternates by; base: 0
    /// Reads the sample descriptions into the track. Throws CException when the table's count is wrong.
    virtual int parseStsd(QTAtom* stsd) = 0;
    virtual int addSdpFile(); ///< the session description, of a hint track; base: 0
    virtual ~QTTrack();

    /// The track over a parsed "trak" atom, of the class that its media header tells; null when that is not a
    /// usable track. The caller owns it; the atom stays in its tree.
    static QTTrack* createNewQTTrackFromTRAK(QTAtom* trak);
    /// A track for writing with a fresh, complete and empty "trak" tree, which getTrak() gives and the movie
    /// adopts. Throws CException "Unknown media type: %c%c%c%c".
    static QTTrack* createNewQTTrackFromType(unsigned int trackID, unsigned int mediaType,
                                             QTMovieConstructionFlags movieType);
    int initAtoms(); ///< looks the cached atoms up; -1 when the tree lacks a level
    int endTrack();  ///< closes the track and fills durations that nobody has set; 0

    // --- identity and state
    unsigned int getID() const { return id_; }
    int setID(unsigned int id); ///< in the track header, too
    unsigned int getMediaType() const { return mediaType_; }
    int setMediaType(unsigned int v) { return mediaType_ = v, 0; }
    QTMovieConstructionFlags getMovieType() const { return movieType_; }
    int setMovieType(QTMovieConstructionFlags v) { return movieType_ = v, 0; }
    QTAtom* getTrak() const { return trak_; } ///< borrowed
    int setTrak(QTAtom* v) { return trak_ = v, 0; }
    double getStartTime() const { return startTime_; }
    int setStartTime(double v) { return startTime_ = v, 0; }
    double getEndTime() const { return endTime_; }
    int setEndTime(double v) { return endTime_ = v, 0; }
    double getStartOffset() const { return startOffset_; }
    int setStartOffset(double v) { return startOffset_ = v, 0; }
    double getFirstPTS() const { return firstPTS_; } ///< the largest double until a sample sets it
    int setFirstPTS(double v) { return firstPTS_ = v, 0; }
    double getFirstDTS() const { return firstDTS_; } ///< likewise
    int setFirstDTS(double v) { return firstDTS_ = v, 0; }
    double getDuration() const { return duration_; }
    int setDuration(double v) { return duration_ = v, 0; }
    double getFrameDuration() const { return frameDuration_; }
    int setFrameDuration(double v) { return frameDuration_ = v, 0; }
    double getFrameRate() const { return frameRate_; } ///< frames a second
    int setFrameRate(double v) { return frameRate_ = v, 0; }
    bool getIsClosed() const { return isClosed_; }
    int setIsClosed(bool v) { return isClosed_ = v, 0; }
    bool getIsHintTrack() const { return isHintTrack_; }
    int setIsHintTrack(bool v) { return isHintTrack_ = v, 0; }
    bool getIsMediaTrack() const { return isMediaTrack_; }
    int setIsMediaTrack(bool v) { return isMediaTrack_ = v, 0; }
    std::uint64_t getTotalDataSize() const { return totalDataSize_; } ///< bytes of all samples added
    int setTotalDataSize(std::uint64_t v) { return totalDataSize_ = v, 0; }
    unsigned int getSampleCount() const { return sampleNumber_; } ///< samples added
    int setSampleCount(unsigned int v) { return sampleNumber_ = v, 0; }
    unsigned int getQueueNumber() const { return queueNumber_; }
    int setQueueNumber(unsigned int v) { return queueNumber_ = v, 0; }
    unsigned int getMovieTimeScale() const { return movieTimeScale_; }
    int setMovieTimeScale(unsigned int v) { return movieTimeScale_ = v, 0; }
    unsigned int getAvgBitRate() const { return avgBitRate_; }
    int setAvgBitRate(unsigned int v) { return avgBitRate_ = v, 0; }
    unsigned int getMaxBitRate() const { return maxBitRate_; }
    int setMaxBitRate(unsigned int v) { return maxBitRate_ = v, 0; }
    double getMaxBitRateTime() const { return maxBitRateTime_; }
    int setMaxBitRateTime(double v) { return maxBitRateTime_ = v, 0; }
    unsigned int getBitRate() const { return bitRate_; }
    int setBitRate(unsigned int v) { return bitRate_ = v, 0; }
    unsigned int getMaxDuration() const { return maxDuration_; }
    int setMaxDuration(unsigned int v) { return maxDuration_ = v, 0; }
    unsigned short getSwitchGroup() const { return switchGroup_; }
    unsigned short getAlternateGroup() const { return alternateGroup_; }
    int setAlternateGroup(unsigned short group);     ///< in the track header, too
    bool getSTSDValid() const { return stsdValid_; } ///< false: the sample descriptions disagree

    // --- codec data common to the media classes
    unsigned int getDataFormat() const { return dataFormat_; }
    int setDataFormat(unsigned int format) { return dataFormat_ = format, 0; }
    QTFrame* getDecoderSpecificInfo() const { return decoderSpecificInfo_.get(); } ///< borrowed
    int setDecoderSpecificInfo(QTFrame* frame);                                    ///< adopts
    QTFrame* getHintDescription() const { return hintDescription_.get(); }         ///< borrowed
    int setHintDescription(QTFrame* frame);                                        ///< adopts; null clears
    int addHintDescription(QTFrame* frame); ///< adopts; its bytes join those held; -1 for null
    unsigned int getSamplesPerPacket() const { return samplesPerPacket_; }
    int setSamplesPerPacket(unsigned int count) { return samplesPerPacket_ = count, 0; }
    unsigned char* getCompressorName() const; ///< borrowed, ends in a zero byte; null when there is none
    unsigned int getCompressorNameLength() const { return compressorNameLength_; }
    int setCompressorName(unsigned int length,
                          unsigned char* name);            ///< copies, at most 32 bytes; -1 for null
    STSDData* getCurrentAtomSampleDescriptionData() const; ///< borrowed; at the table's iterator

    // --- references, switch groups, enabling
    /// Always appends a new "tref" with a "tmcd" or "chap" reference in it; with any other type it stays
    /// empty.
    int addTrackReference(unsigned int type, unsigned int trackID);
    int setHintTrackReference(unsigned int trackID); ///< in the existing "hint" reference; -1 without one
    int addSwitchAttribute(unsigned int attribute);  ///< to every "tsel"; -1 without a tree
    int setSwitchGroup(unsigned int group);          ///< held in 16 bits, passed on in 32
    int enableTrack();  ///< flags AND 1: clears the in-movie, in-preview and in-poster bits
    int disableTrack(); ///< flags XOR 1: a second call enables again

    // --- values in the atoms
    int setAtomHeaderDuration(unsigned int units); ///< movie time scale
    unsigned int getAtomHeaderDuration() const;
    int setAtomHeaderFlags(unsigned int flags);
    unsigned int getAtomHeaderFlags() const;
    int setAtomHeaderWidth(float pixels);
    int setAtomHeaderHeight(float pixels);
    float getAtomHeaderWidth() const;
    float getAtomHeaderHeight() const;
    int setAtomMediaDuration(std::uint64_t units); ///< media time scale
    std::uint64_t getAtomMediaDuration() const;
    int setAtomMediaTimeScale(unsigned int unitsPerSecond);
    unsigned int getAtomMediaTimeScale() const;
    int setAtomMediaLanguage(unsigned short code);
    unsigned short getAtomMediaLanguage() const;
    int setAtomMediaHandlerComponentType(unsigned int type);
    int setAtomMediaHandlerComponentSubType(unsigned int type);
    int setAtomMediaHandlerManufacturer(unsigned int code);
    int setAtomMediaHandlerComponentName(const char* name, unsigned int length, bool pascal); ///< copies
    int setAtomDataHandlerComponentType(unsigned int type);
    int setAtomDataHandlerComponentSubType(unsigned int type);
    int setAtomDataHandlerManufacturer(unsigned int code);
    int setAtomDataHandlerComponentName(const char* name, unsigned int length, bool pascal); ///< copies
    unsigned int getAtomMediaHandlerNameSize() const;
    unsigned int getAtomDataHandlerNameSize() const;
    int setAtomVideoMediaGraphicsMode(unsigned short mode);
    unsigned short getAtomVideoMediaGraphicsMode() const;
    int setAtomVideoMediaOpColors(unsigned short color);
    unsigned short getAtomVideoMediaOpColor() const;
    unsigned int getAtomNumberOfDataReferenceEntries() const;
    unsigned int getAtomNumberOfEditListEntries() const;
    int addAtomDataReference(DREFEntry* entry); ///< adopts on 0
    int addAtomEditListEntry(ELSTData* entry);  ///< adopts on 0

    // --- plain big-endian numbers at a cursor, which advances (unlike the QTAtom helpers of the same names)
    static unsigned char getUInt8(unsigned char** cursor);
    static unsigned short getUInt16(unsigned char** cursor);
    static unsigned int getUInt32(unsigned char** cursor);
    static std::uint64_t getUInt48(unsigned char** cursor);
    static std::uint64_t getUInt64(unsigned char** cursor);
    static int putUInt8(unsigned char** cursor, unsigned char v);
    static int putUInt16(unsigned char** cursor, unsigned short v);
    static int putUInt32(unsigned char** cursor, unsigned int v);
    static int putUInt48(unsigned char** cursor, std::uint64_t v);
    static int putUInt64(unsigned char** cursor, std::uint64_t v);
    static unsigned short switchEndian16(unsigned short v); ///< the other byte order
    static unsigned int switchEndian32(unsigned int v);     ///< likewise
    static unsigned int BE32(unsigned int v);               ///< likewise

    // --- samples and chunks
    int addSamplesToChunk(const std::vector<QTFrame*>& frames);   ///< stops with -1 at the first that fails
    int addSampleCount(unsigned int n);                           ///< counts n samples more; 0
    bool addSampleOK() const { return !chunkFull_ && !stopped_; } ///< whether the chunk takes more
    QTChunk* beginChunk();                                        ///< a fresh, numbered cursor; borrowed
    int createChunk();                                            ///< a fresh cursor without a number
    QTChunk* getChunk();                      ///< borrowed until the next chunk begins; null without one
    QTFrame* saveChunk(std::uint64_t offset); ///< the chunk's bytes, for the caller to write at `offset`
    /// Positions at sample n; sample 1 of a track whose first edit starts later, at that start. -1 without a
    /// cursor.
    int initWithSample(unsigned int n);
    int initWithTime(float t); ///< the key frame at or before t of the first edit; 0 or -1
    bool getChunkFull() const { return chunkFull_; }
    int setChunkFullTime(double seconds) { return chunkFullTime_ = seconds, 0; }
    double getChunkFullTime() const { return chunkFullTime_; }
    int setChunkFullMaxSize(unsigned int bytes) { return chunkFullMaxSize_ = bytes, 0; }
    int checkMaxBitRate(QTFrame* frame);            ///< counts the frame in, as adding it does; -1 for null
    int addDBABitrate(unsigned int bitRate);        ///< in the user data; -1 without a tree
    int addAtomTimeToSample(STTSData* entry);       ///< adopts on 0
    int addAtomCodingTimeToSample(CTTSData* entry); ///< adopts on 0
    int addToAtomStcoOffsets(std::uint64_t delta);  ///< moves all chunks; -1 without "stco"

protected:
    explicit QTTrack(QTMovieConstructionFlags movieType); ///< without a tree
    QTTrack(const QTTrack& other); ///< without a cursor; frames and blocks duplicated, atoms shared
    QTTrack& operator=(const QTTrack& other);
    int _addSample(QTFrame* frame, bool sync, bool partial); ///< what all of them do

    /// What every reading constructor does first: the header atoms must be there, and identity, duration,
    /// start and end come from them. Throws CException with the messages given.
    void readTrak(QTAtom* trak, unsigned int mediaType, const char* function, const char* headerMissing,
                  const char* mdiaMissing);
    /// Calls parseStsd() of this track; then, for classes whose descriptions must agree, compares the formats
    /// as they were before.
    void readDescriptions(bool mustAgree);
    /// Samples of the track by its size table.
    unsigned int storedSamples() const;
    /// The media duration for a duration in seconds, in media units.
    std::uint64_t mediaUnits(double seconds) const;

    TKHD* tkhd() const { return atoms_.tkhd; }
    MDHD* mdhd() const { return atoms_.mdhd; }
    HDLR* mediaHandler() const { return atoms_.mediaHandler; }
    HDLR* dataHandler() const { return atoms_.dataHandler; }
    VMHD* vmhd() const { return atoms_.vmhd; }
    HMHD* hmhd() const { return atoms_.hmhd; }
    QTAtom* gmhd() const { return atoms_.gmhd; }
    QTAtom* stbl() const { return atoms_.stbl; }
    STSD* stsd() const { return atoms_.stsd; }
    STSZ* stsz() const { return atoms_.stsz; }
    STTS* stts() const { return atoms_.stts; }
    CTTS* ctts() const { return atoms_.ctts; }
    ELST* elst() const { return atoms_.elst; }
    DREF* dref() const { return atoms_.dref; }
    UDTA* udta() const { return atoms_.udta; }
    QTAtom* tref() const { return atoms_.tref; }

private:
    friend struct wire::Access;

    /// What initAtoms() finds; the tree owns it.
    struct Atoms {
        TKHD* tkhd = nullptr;
        QTAtom* mdia = nullptr;
        ELST* elst = nullptr;
        MDHD* mdhd = nullptr;
        QTAtom* minf = nullptr;
        HDLR* mediaHandler = nullptr;
        STTS* stts = nullptr;
        CTTS* ctts = nullptr;
        VMHD* vmhd = nullptr;
        QTAtom* smhd = nullptr;
        QTAtom* gmhd = nullptr;
        HMHD* hmhd = nullptr;
        DREF* dref = nullptr;
        QTAtom* stbl = nullptr;
        HDLR* dataHandler = nullptr;
        STSD* stsd = nullptr;
        STCO* stco = nullptr;
        STSZ* stsz = nullptr;
        UDTA* udta = nullptr;
        QTAtom* tref = nullptr;
    };
    struct BitRateRecord {
        unsigned int length;
        double time;
        double duration;
    };

    void noteTimes(QTFrame& frame);
    unsigned int durationUnits(double seconds, unsigned int count);
    unsigned int samplesOf(const QTFrame& frame);
    void testChunkFull(double time);
    void copyState(const QTTrack& other);
    void addDefaultEdits();

    static constexpr double kUnset = std::numeric_limits<double>::max();

    QTMovieConstructionFlags movieType_;
    unsigned int mediaType_ = 0;
    unsigned int id_ = 0;
    QTAtom* trak_ = nullptr;
    bool readsSamples_ = false; // built over a parsed "trak": the cursor comes when it is asked for
    bool isClosed_ = false;
    double startTime_ = 0;
    double endTime_ = 0;
    double startOffset_ = 0;
    double firstPTS_ = kUnset;
    double firstDTS_ = kUnset;
    double duration_ = 0;
    double frameDuration_ = 0;
    bool isMediaTrack_ = false;
    bool isHintTrack_ = false;
    std::uint64_t totalDataSize_ = 0;
    unsigned int queueNumber_ = 0;
    unsigned int movieTimeScale_ = 0;
    unsigned int avgBitRate_ = 0;
    unsigned int maxBitRate_ = 0;
    double maxBitRateTime_ = 0;
    unsigned short alternateGroup_ = 0;
    unsigned short switchGroup_ = 0;
    unsigned int bitRate_ = 0;
    unsigned int maxDuration_ = 0;
    double frameRate_ = 0;
    bool stsdValid_ = true;
    bool prepared_ = false;

    unsigned int dataFormat_ = 0;
    unsigned int samplesPerPacket_ = 0;
    std::unique_ptr<QTFrame> decoderSpecificInfo_;
    std::unique_ptr<QTFrame> hintDescription_;
    std::vector<unsigned char> compressorName_;
    unsigned int compressorNameLength_ = 0;

    Atoms atoms_; // of the tree; filled by initAtoms()

    std::unique_ptr<QTChunk> chunk_;
    unsigned int chunkNumber_ = 0;
    unsigned int sampleNumber_ = 0;
    bool chunkFull_ = false;
    bool stopped_ = false;
    double chunkFullTime_ = 0;
    unsigned int chunkFullMaxSize_ = 0;
    double negativeShift_ = 0;
    double durationRemainder_ = 0;
    std::deque<BitRateRecord> window_;
    std::uint64_t windowBytes_ = 0;
};

} // namespace Ketra::QT
