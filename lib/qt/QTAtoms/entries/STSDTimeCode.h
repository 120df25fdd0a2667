// The timecode form of a sample description.
#pragma once

#include <qt/QTAtom.h>

#include <vector>

namespace Ketra::QT {

/// The bytes behind the entry header: 0 reserved, 4 flags (drop frame 1, 24 hours 2, negative times 4,
/// counter 8), 8 time scale, 12 frame duration (32), 16 frames a second (8), 17 three reserved bytes; with a
/// source reference 17 one reserved byte and 18 an atom "name": size, type, 8 length, 10 language (16), 12
/// the bytes.
///
/// serialize() returns these bytes without an atom header.
class KETRA_QT_API STSDTimeCode : public QTAtom {
public:
    STSDTimeCode();
    explicit STSDTimeCode(QTAtom* header);
    STSDTimeCode(const STSDTimeCode&) = default;
    STSDTimeCode& operator=(const STSDTimeCode&) = default;
    ~STSDTimeCode() override;

    std::uint64_t updateSize() override; ///< 20, or 30 and the source reference
    int parse() override;                ///< reads these bytes from behind an atom header
    QTFrame* serialize() override;

    unsigned int getReserved() const { return reserved_; }
    int setReserved(unsigned int v) { return reserved_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned int getTimeScale() const { return timeScale_; } ///< units a second
    int setTimeScale(unsigned int v) { return timeScale_ = v, 0; }
    unsigned int getFrameDuration() const { return frameDuration_; } ///< in these units
    int setFrameDuration(unsigned int v) { return frameDuration_ = v, 0; }
    unsigned int getNumberOfFrames() const { return numberOfFrames_; } ///< its low 8 bits are written
    int setNumberOfFrames(unsigned int v) { return numberOfFrames_ = v, 0; }

    /// Copies at most 65535 bytes; -1 for null with a length.
    int setSourceReference(unsigned int length, unsigned char* bytes);
    int getSourceReference(unsigned int& length, unsigned char*& bytes) const; ///< borrowed, or 0 and null

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int reserved_ = 0;
    unsigned int flags_ = 0;
    unsigned int timeScale_ = 2500;
    unsigned int frameDuration_ = 100;
    unsigned int numberOfFrames_ = 25;
    mutable std::vector<unsigned char> sourceReference_;
};

} // namespace Ketra::QT
