// The cursor over the samples of one track: positions, times and frames for reading, chunks for writing.
#pragma once

#include <qt/QTFrame.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Ketra::QT {

class CSLG;
class CTTS;
class QTStream;
class QTTrack;
class SDTP;
class STCO;
class STPS;
class STSC;
class STSD;
class STSDAudio;
class STSDData;
class STSS;
class STSZ;
class STTS;

namespace wire {
struct NavigatorIndex;
}

/// Sample numbers and chunk numbers count from 1; times are seconds of the media's own time line (no edit
/// list applied), offsets are bytes from the start of the file. One frame is one stored sample, except in
/// audio that groups stored samples: there `n` counts frames, and in buffered formats (PCM and the like) each
/// getNextFrame() hands out the rest of a chunk.
///
/// Everything is computed from the sample tables as it is needed. Positioning is O(log n), a step is O(1),
/// and a frame costs one read of the stream. The track must outlive the cursor.
///
/// \snippet seek.cpp time
class KETRA_QT_API QTChunk {
public:
    /// Throws CException "Error resetting QTChunk." when the track has no sample sizes or chunk offsets.
    explicit QTChunk(QTTrack* track);
    QTChunk(const QTChunk& other);            ///< a cursor of its own over the same track
    QTChunk& operator=(const QTChunk& other); ///< likewise
    ~QTChunk();

    // --- reading
    int reset(); ///< back to before the first sample; -1 without sample sizes or chunk offsets
    /// Positions at sample n. Throws CException "Couldn't init with sample nr. %d" when that cannot be had.
    int initWithSample(unsigned int n);
    /// Positions at the sample that is shown at t; getPreviousKeyframe() then tells the key frame at or
    /// before it. 0, or -1 (beyond the duration, or nothing there). A t below 0.01 counts as 0.
    int initWithTime(float t);
    /// The frame at the position, which then advances; null at the end. The caller owns it. Throws CException
    /// "Unable to alloc data" for a sample that no memory, or no file of this size, can hold. A frame that
    /// the file cuts short holds the bytes that are there.
    QTFrame* getNextFrame();
    QTFrame* getFrame(); ///< likewise, without advancing
    QTFrame* getPreviewFrame() { return getFrame(); }
    int rangeCheck(unsigned int n); ///< 0 when there is a sample n and the position is within the duration
    int rangeCheck(int n);          ///< likewise
    int rangeCheck(double t);       ///< 0 when t is not beyond the duration
    void printTables();             ///< the tables, for people, on standard output

    unsigned int getCurrentSampleNumber() const { return currentSample_; }
    double getCurrentTime() const; ///< decode time of the current sample; -1 before positioning
    bool getIsKeyframe() const { return isKeyframe_; }
    unsigned int getNextKeyframe() const { return nextKeyframe_; }         ///< 0: none
    unsigned int getPreviousKeyframe() const { return previousKeyframe_; } ///< 0: none
    unsigned int getChunkNumber() const { return chunkNumber_; }
    std::uint64_t getSampleOffset() const { return sampleOffset_; }
    unsigned int getSampleSize() const { return static_cast<unsigned int>(sampleSize_); }
    unsigned int getChunkSize() const { return getSampleSize(); } ///< the current sample's size, too
    double getChunkStartTime() const; ///< decode time of the first frame added; -1

    /// Makes entry `id` (from 1) of the sample descriptions current. 0, or -1: no such entry, or another data
    /// format than the one being read.
    int setSampleDescriptionID(unsigned int id);
    double findTime(unsigned int n);                ///< decode time of sample n, or -1
    unsigned int findChunkNumber(unsigned int n);   ///< the chunk that holds sample n, or 0
    std::uint64_t findSampleOffset(unsigned int n); ///< of sample n within the current chunk's file offset
    unsigned int findSampleSize(unsigned int n);    ///< in bytes
    /// The time up to which sample `*sample` (optional) lasts back from t; -1 beyond the duration.
    double findClosestTime(double t, unsigned int* sample);

    // --- writing
    int beginChunk(); ///< forgets what was collected; 0
    /// Appends the frame's bytes, which are copied, and its size to the tables. -1 for null.
    int addSample(QTFrame* frame);
    int addSyncSample(QTFrame* frame, unsigned int n);          ///< also a sync entry for sample n
    int addPartialSyncSample(QTFrame* frame, unsigned int n);   ///< also a partial-sync entry
    int addSampleDep(unsigned int flags);                       ///< one dependency byte
    int addSamplesToChunk(const std::vector<QTFrame*>& frames); ///< stops with -1 at the first null
    /// Records the chunk at a file offset and returns its bytes, which the caller owns and writes there.
    /// Null, nothing recorded, when the chunk is larger than a frame can be.
    QTFrame* closeChunk(std::uint64_t offset);
    unsigned int getChunkNr() const { return chunkNr_; }
    int setChunkNr(unsigned int n) { return chunkNr_ = n, 0; }
    unsigned int getSampleCount() const { return chunkSamples_; } ///< stored samples collected

private:
    friend class QTTrack;

    /// The bytes of the chunk being written.
    class KETRA_QT_LOCAL Collected {
    public:
        Collected() = default;
        Collected(const Collected& other);
        Collected(Collected&& other) noexcept;
        Collected& operator=(Collected other) noexcept;
        ~Collected();
        std::uint64_t size() const { return size_; }
        bool append(const unsigned char* bytes, std::uint64_t count); // null bytes: zeros
        void expect(std::uint64_t size);                              // so many bytes will probably come
        unsigned char* release();
        void clear();

    private:
        unsigned char* data_ = nullptr;
        std::uint64_t size_ = 0;
        std::uint64_t room_ = 0;
    };

    int getSampleAtoms();
    void readEditList();
    void resetKeyframes();
    int setNeedsBuffering(const STSDData& entry);
    int setPreviousKeyframe();
    int nextSampleTime();
    int nextKeyframe();
    bool updateSettings();
    bool advance();
    bool enterNextChunk();
    QTFrame* bufferNextChunk();
    QTFrame* readFrame(const char* function, bool consumeOffset);
    unsigned char* readBytes(const char* function, std::uint64_t offset, std::uint64_t size,
                             unsigned int* got);

    int positionAt(unsigned int n);
    int place(unsigned int n);
    int positionAtTime(double t);
    int seekTime(double t);
    bool locate(unsigned int n);
    void leavePosition();
    void setTableIterators();
    bool withinDuration(double seconds) const { return duration_ + mediaStart_ >= seconds; }
    double seconds(std::uint64_t ticks) const;
    bool ticksWithinDuration(std::uint64_t ticks) const;
    void setSampleTicks(std::uint64_t ticks);
    bool closestTicks(double t, unsigned int& sample, std::uint64_t& ticks);
    bool ticksOf(unsigned int n, std::uint64_t& ticks, std::uint64_t& entry);
    bool enterTimeEntry(std::uint64_t entry);
    std::uint64_t sizeOf(std::uint64_t n) const;
    std::uint64_t bytesOf(std::uint64_t first, std::uint64_t count);
    unsigned int lastPlayable(unsigned int from, unsigned int to);
    std::uint64_t partialKeyframe() const;
    QTStream* dataStream(const STSDData& entry) const;

    QTTrack* track_;
    QTStream* stream_ = nullptr;
    const STSD* stsd_ = nullptr;
    STSS* stss_ = nullptr;
    STPS* stps_ = nullptr;
    SDTP* sdtp_ = nullptr;
    STTS* stts_ = nullptr;
    STSC* stsc_ = nullptr;
    STSZ* stsz_ = nullptr;
    STCO* stco_ = nullptr;
    CTTS* ctts_ = nullptr;
    CSLG* cslg_ = nullptr;
    STSS* writtenSync_ = nullptr; // the sync tables even when they have no entries yet
    STPS* writtenPartialSync_ = nullptr;

    unsigned int samplesPerFrame_ = 1;
    unsigned int reportedSamples_ = 1; // what a frame says of itself
    unsigned int sizeFactor_ = 1;
    unsigned int timeScale_ = 0;
    double mediaStart_ = 0;
    double emptyEditStart_ = 0;
    double duration_ = 0;
    std::uint64_t mediaDuration_ = 0;
    unsigned int sampleCount_ = 0;
    unsigned int chunkCount_ = 0;
    unsigned int constantSize_ = 0;

    unsigned int previousKeyframe_ = 0;
    unsigned int nextKeyframe_ = 0;
    bool hasNextKeyframe_ = false;
    bool isKeyframe_ = false;
    std::uint64_t syncPosition_ = 0;

    std::uint64_t timeEntry_ = 0;         // index into the time-to-sample table
    std::uint64_t lastCoveredSample_ = 0; // stored samples up to the end of that entry
    std::uint64_t entryDuration_ = 0;     // ticks of one stored sample of that entry
    unsigned int sampleInChunk_ = 0;
    unsigned int chunkNumber_ = 0;
    unsigned int samplesPerChunk_ = 0;   // of the current chunk
    std::uint64_t chunkFirstSample_ = 0; // stored samples before the current chunk
    std::uint64_t sampleOffset_ = 0;
    std::uint64_t sampleSize_ = 0;
    unsigned int currentSample_ = 0;
    std::uint64_t currentTicks_ = 0;
    bool timeKnown_ = false;
    std::uint64_t sampleTicks_ = 0; // duration of the current frame
    double sampleSeconds_ = 0;      // the same
    std::uint64_t safeTicks_ = 0;   // up to here a time is surely within the duration
    std::uint64_t knownLength_ = 0; // of the data stream, as far as it was asked
    bool moreFrames_ = false;
    unsigned int dataFormat_ = 0;
    bool buffering_ = false;
    unsigned int descriptionID_ = 0;
    std::shared_ptr<wire::NavigatorIndex> index_;

    Collected collected_;
    unsigned int chunkSamples_ = 0;
    unsigned int chunkNr_ = 0;
    bool hasFrames_ = false;
    double firstTime_ = -1;
    double firstDecodeTime_ = -1;
};

} // namespace Ketra::QT
