// Preload settings of a track.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "load": 8 preload start time, 12 preload duration (movie time scale), 16 preload flags, 20 default hints,
/// each 32 bits.
class KETRA_QT_API LOAD : public QTAtom {
public:
    LOAD();
    explicit LOAD(QTAtom* header);
    LOAD(const LOAD&) = default;
    LOAD& operator=(const LOAD&) = default;
    ~LOAD() override;

    std::uint64_t updateSize() override; ///< 24
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getPreloadStartTime() const { return startTime_; }
    int setPreloadStartTime(unsigned int v) { return startTime_ = v, 0; }
    unsigned int getPreloadDuration() const { return duration_; }
    int setPreloadDuration(unsigned int v) { return duration_ = v, 0; }
    unsigned int getPreloadFlags() const { return flags_; }
    int setPreloadFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned int getDefaultHints() const { return hints_; }
    int setDefaultHints(unsigned int v) { return hints_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int startTime_ = 0;
    unsigned int duration_ = 0;
    unsigned int flags_ = 0;
    unsigned int hints_ = 0;
};

} // namespace Ketra::QT
