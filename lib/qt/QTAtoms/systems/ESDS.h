// Elementary stream descriptor atom: the decoder configuration of an MPEG-4 stream.
#pragma once

#include <qt/QTAtom.h>
#include <qt/QTAtoms/systems/MP4ObjectData.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

/// "esds": 8 version, 9 flags, 12 an elementary stream descriptor (tag 3).
///
/// parse() only skips the atom: it is getInfo() that builds the tree of descriptors, from the bytes of the
/// sample description. Pointers handed out are borrowed.
class KETRA_QT_API ESDS : public QTAtom {
public:
    ESDS();
    explicit ESDS(QTAtom* header);
    ESDS(const ESDS& other);
    ESDS& operator=(const ESDS& other);
    ~ESDS() override;

    std::uint64_t updateSize() override; ///< 12 and the descriptors
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first

    /// Reads from version to the end of the atom, of which getSize() - 8 bytes must exist, and advances the
    /// cursor over all of them. Always 0.
    int getInfo(unsigned char** cursor);

    int addDescriptor(MP4ObjectData* descriptor); ///< adopts; -1 for null
    std::vector<MP4ObjectData*> getDescriptors() const;
    MP4ObjectData* getDescriptorNumber(unsigned int n) const; ///< from 0; null out of range
    MP4ObjectData* getDescriptorTag(unsigned char tag) const; ///< the last one with the tag, or null

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
