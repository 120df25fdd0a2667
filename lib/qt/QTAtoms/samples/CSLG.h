// Composition shift and its limits.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "cslg": 8 version, 9 flags, 12 shift, 16 least delta, 20 greatest delta, 24 display start time, 28 display
/// end time, each 32 bits in units of the media time scale. The bits are held as they are; a caller takes
/// them as signed where the format does.
class KETRA_QT_API CSLG : public QTAtom {
public:
    CSLG();
    explicit CSLG(QTAtom* header);
    CSLG(const CSLG&) = default;
    CSLG& operator=(const CSLG&) = default;
    ~CSLG() override;

    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int version) { return version_ = version, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int flags) { return flags_ = flags, 0; }
    unsigned int getShift() const { return shift_; }
    int setShift(unsigned int shift) { return shift_ = shift, 0; }
    unsigned int getLeastDelta() const { return leastDelta_; }
    int setLeastDelta(unsigned int delta) { return leastDelta_ = delta, 0; }
    unsigned int getGreatestDelta() const { return greatestDelta_; }
    int setGreatestDelta(unsigned int delta) { return greatestDelta_ = delta, 0; }
    unsigned int getDisplayStartTime() const { return displayStartTime_; }
    int setDisplayStartTime(unsigned int time) { return displayStartTime_ = time, 0; }
    unsigned int getDisplayEndTime() const { return displayEndTime_; }
    int setDisplayEndTime(unsigned int time) { return displayEndTime_ = time, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned int shift_ = 0;
    unsigned int leastDelta_ = 0;
    unsigned int greatestDelta_ = 0;
    unsigned int displayStartTime_ = 0;
    unsigned int displayEndTime_ = 0;
};

} // namespace Ketra::QT
