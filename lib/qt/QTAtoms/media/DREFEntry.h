// One data reference: where the samples of a track are.
#pragma once

#include <qt/QTAtom.h>

#include <vector>

namespace Ketra::QT {

class QTStream;

/// An atom of its own type ("alis", "url ", ...): 8 version, 9 flags, 12 data. Flags 1 in memory say that the
/// samples are in the same file; then there is no data.
class KETRA_QT_API DREFEntry : public QTAtom {
public:
    DREFEntry();
    DREFEntry(unsigned int type, unsigned int flags); ///< without data
    explicit DREFEntry(QTAtom* header);
    DREFEntry(const DREFEntry&) = default;
    DREFEntry& operator=(const DREFEntry&) = default;
    ~DREFEntry() override;

    std::uint64_t updateSize() override; ///< 12 + data
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getVersion() const { return version_; }
    int setVersion(unsigned int v) { return version_ = v, 0; }
    unsigned int getFlags() const { return flags_; }
    int setFlags(unsigned int v) { return flags_ = v, 0; }
    unsigned char* getData() const; ///< borrowed; null when there is none
    unsigned int getDataSize() const { return static_cast<unsigned int>(data_.size()); }
    int setData(unsigned int size, unsigned char* data); ///< takes a malloc block; -1 for null with a size

    /// The stream that the samples are read from; null: the movie's own. Borrowed, set by the application.
    QTStream* getStream() const { return stream_; }
    int setStream(QTStream* stream) { return stream_ = stream, 0; }

private:
    friend struct wire::Access;
    friend class DREF;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int version_ = 0;
    unsigned int flags_ = 0;
    std::vector<unsigned char> data_;
    QTStream* stream_ = nullptr;
};

} // namespace Ketra::QT
