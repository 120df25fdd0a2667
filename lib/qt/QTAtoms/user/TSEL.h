// Track selection: which tracks replace one another, and by what they differ.
#pragma once

#include <qt/QTAtom.h>

#include <vector>

namespace Ketra::QT {

/// "tsel": 8 version, 9 flags, 12 switch group (32), 16 attributes (32 each) to the end of the atom.
class KETRA_QT_API TSEL : public QTAtom {
public:
    TSEL();
    explicit TSEL(QTAtom* header);
    TSEL(const TSEL&) = default;
    TSEL& operator=(const TSEL&) = default;
    ~TSEL() override;

    std::uint64_t updateSize() override; ///< 16 + 4 for each attribute
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned int getSwitchGroup() const { return switchGroup_; }
    int setSwitchGroup(unsigned int v) { return switchGroup_ = v, 0; }
    int addAttribute(unsigned int attribute); ///< a four-character code; the size follows with updateSize()
    std::vector<unsigned int> getAttributeList() const { return attributes_; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    unsigned int switchGroup_ = 0;
    std::vector<unsigned int> attributes_;
};

} // namespace Ketra::QT
