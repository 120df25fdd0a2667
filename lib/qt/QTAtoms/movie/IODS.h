// Initial object descriptor atom of an MPEG-4 movie.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTAtoms/systems/InitialObjectDescriptor.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// "iods": 8 version, 9 flags, 12 initial object descriptors (tag 0x10, or 2). Pointers handed out are
/// borrowed.
class KETRA_QT_API IODS : public QTAtom {
public:
    IODS(); ///< with one new initial object descriptor of ID 1
    explicit IODS(QTAtom* header);
    IODS(const IODS& other);
    IODS& operator=(const IODS& other);
    ~IODS() override;

    std::uint64_t updateSize() override; ///< 12 and the descriptors; a new atom holds 12
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first

    int addDescriptor(MP4ObjectData* descriptor); ///< adopts; -1 for null
    std::vector<MP4ObjectData*> getDescriptors() const;
    MP4ObjectData* getDescriptor(unsigned int n) const; ///< from 0; null out of range
    /// The first one with tag 0x10, or null: one that was read with tag 2 is written but not found here.
    InitialObjectDescriptor* getInitialObjectDescriptor() const;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int version) { return version_ = version, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int flags) { return flags_ = flags, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    std::unique_ptr<wire::HeldList<MP4ObjectData>> descriptors_;
};

} // namespace Ketra::QT
