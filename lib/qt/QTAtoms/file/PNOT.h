// Preview reference.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "pnot": 8 modification date (32), 12 version (16), 14 atom type (32), 18 index (16). Read, never written.
class KETRA_QT_API PNOT : public QTAtom {
public:
    PNOT();
    /// A new one, a parameter for each field.
    PNOT(unsigned int modificationDate, unsigned short versionNumber, unsigned int atomType,
         unsigned short index);
    explicit PNOT(QTAtom* header);
    PNOT(const PNOT&) = default;
    PNOT& operator=(const PNOT&) = default;
    ~PNOT() override;

    int parse() override;
    QTFrame* serialize() override; ///< null

    unsigned int getModificationDate() const { return modificationDate_; } ///< seconds since 1904
    int setModificationDate(unsigned int v) { return modificationDate_ = v, 0; }
    unsigned short getVersionNumber() const { return versionNumber_; }
    int setVersionNumber(unsigned short v) { return versionNumber_ = v, 0; }
    unsigned int getAtomType() const { return atomType_; } ///< of the atom that holds the preview
    int setAtomType(unsigned int v) { return atomType_ = v, 0; }
    unsigned short getIndex() const { return index_; } ///< which atom of that type, from 1
    int setIndex(unsigned short v) { return index_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int modificationDate_ = 0;
    unsigned short versionNumber_ = 0;
    unsigned int atomType_ = 0;
    unsigned short index_ = 0;
};

} // namespace Ketra::QT
