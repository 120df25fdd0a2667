// User data of a movie or a track.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTDataAtom.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// "udta": entries of opaque data, and the few kinds that are atoms of their own ("chap", "hinf", "hnti",
/// "nsav", "tsel"), which become children. The four zero bytes that may end it in a file are absorbed and not
/// written.
class KETRA_QT_API UDTA : public QTAtom {
public:
    UDTA();
    explicit UDTA(QTAtom* header);
    UDTA(const UDTA& other); ///< lists the same entries and does not own them
    UDTA& operator=(const UDTA& other);
    ~UDTA() override;

    std::uint64_t updateSize() override; ///< 8, the entries and the children
    int parse() override;
    QTFrame* serialize() override;

    int addDataAtom(QTDataAtom* entry);               ///< adopts, and grows by its size; -1 for null
    QTDataAtom* getDataAtom(unsigned int type) const; ///< the first of the type, or null
    std::vector<QTDataAtom*> getDataAtoms() const;    ///< borrowed, in file order

private:
    std::unique_ptr<wire::HeldList<QTDataAtom>> entries_;
};

} // namespace Ketra::QT
