// Sample entry of AMR audio.
#pragma once

#include <qt/QTAtoms/entries/AudioEntry.h>

namespace Ketra::QT {

/// "samr": the fields of AudioEntry and an optional "damr".
class KETRA_QT_API SAMR : public AudioEntry {
public:
    SAMR();
    explicit SAMR(QTAtom* header);
    SAMR(const SAMR&) = default;
    SAMR& operator=(const SAMR&) = default;
    ~SAMR() override;

    int parse() override;
    QTFrame* serialize() override;

    QTAtom* getDamr() const { return child(); }          ///< borrowed, or null
    int setDamr(QTAtom* atom) { return setChild(atom); } ///< adopts; null removes
};

} // namespace Ketra::QT
