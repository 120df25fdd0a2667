// Hint information: the session description of a movie or of a hint track.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTDataAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// "hnti": atoms behind one another, kept as opaque data: "rtp " in a movie, "sdp " in a hint track.
class KETRA_QT_API HNTI : public QTAtom {
public:
    HNTI();
    explicit HNTI(QTAtom* header);
    HNTI(const HNTI& other);
    HNTI& operator=(const HNTI& other);
    ~HNTI() override;

    std::uint64_t updateSize() override; ///< 8 and the data atoms
    int parse() override;
    QTFrame* serialize() override;

    int addDataAtom(QTDataAtom* atom);             ///< adopts, and grows by its size; -1 for null
    QTDataAtom* getDataAtom(unsigned int n) const; ///< from 0; null out of range
    std::vector<QTDataAtom*> getDataAtoms() const; ///< borrowed, in the order added

private:
    std::unique_ptr<wire::HeldList<QTDataAtom>> atoms_;
};

} // namespace Ketra::QT
