// Sample entry of MPEG-4 systems streams.
#pragma once

#include <qt/QTAtoms/entries/CodecEntry.h>

namespace Ketra::QT {

/// "mp4s": an optional "esds" and no fields of its own. serialize() leaves the atom header out: the frame
/// begins with the configuration and ends with eight zero bytes.
class KETRA_QT_API MP4S : public CodecEntry {
public:
    MP4S();
    explicit MP4S(QTAtom* header);
    MP4S(const MP4S&) = default;
    MP4S& operator=(const MP4S&) = default;
    ~MP4S() override;

    std::uint64_t updateSize() override; ///< 8 and the configuration
    int parse() override;                ///< looks for the configuration right behind the header
    QTFrame* serialize() override;       ///< calls updateSize() first

    QTAtom* getESDS() const { return child(); }          ///< borrowed, or null
    int setESDS(QTAtom* atom) { return setChild(atom); } ///< adopts; null removes

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self&, Io&) {} // no fields
};

} // namespace Ketra::QT
