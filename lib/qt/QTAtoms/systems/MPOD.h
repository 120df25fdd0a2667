// Track reference of an object descriptor stream.
#pragma once

#include <qt/QTAtom.h>

#include <memory>

namespace Ketra::QT {

/// "mpod": 8 track IDs (32), kept as the file's bytes. Numbers set by a caller must therefore be big-endian.
class KETRA_QT_API MPOD : public QTAtom {
public:
    MPOD();
    MPOD(unsigned int* refs, unsigned int count); ///< adopts a malloc block
    explicit MPOD(QTAtom* header);
    MPOD(const MPOD& other);
    MPOD& operator=(const MPOD& other);
    ~MPOD() override;

    std::uint64_t updateSize() override; ///< 8 and the track IDs
    int parse() override;
    QTFrame* serialize() override; ///< calls updateSize() first

    unsigned int* getTrackRefs() const; ///< borrowed, big-endian; null when there are none
    unsigned int getTrackRefCount() const;
    /// Adopts a malloc block and sets the size. -1, nothing changed, for null with a count.
    int setTrackRefs(unsigned int* refs, unsigned int count);

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    std::unique_ptr<wire::Block> refs_;
};

} // namespace Ketra::QT
