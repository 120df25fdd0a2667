// Hint statistics of a hint track.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTDataAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// "hinf": atoms behind one another, kept as opaque data ("trpy", "nump", "maxr", "payt", ...), and behind
/// them, when it is set, a description of the hinting as raw bytes.
class KETRA_QT_API HINF : public QTAtom {
public:
    HINF();
    explicit HINF(QTAtom* header);
    HINF(const HINF& other);
    HINF& operator=(const HINF& other);
    ~HINF() override;

    std::uint64_t updateSize() override; ///< 8, the data atoms and the description
    int parse() override;                ///< every atom becomes a data atom
    QTFrame* serialize() override;

    int addDataAtom(QTDataAtom* atom);             ///< adopts, and grows by its size; -1 for null
    QTDataAtom* getDataAtom(unsigned int n) const; ///< from 0; null out of range
    std::vector<QTDataAtom*> getDataAtoms() const; ///< borrowed, in the order added

    int setHintDescription(QTFrame* description); ///< adopts; null removes it
    QTFrame* getHintDescription() const;          ///< borrowed, or null

private:
    std::unique_ptr<wire::HeldList<QTDataAtom>> atoms_;
    std::unique_ptr<wire::HeldList<QTFrame>> description_;
};

} // namespace Ketra::QT
