// Whether a movie may be transcoded.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "nsav": 8 allow-transcoding value (32).
class KETRA_QT_API NSAV : public QTAtom {
public:
    NSAV();
    explicit NSAV(QTAtom* header);
    NSAV(const NSAV&) = default;
    NSAV& operator=(const NSAV&) = default;
    ~NSAV() override;

    std::uint64_t updateSize() override; ///< 12
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getAllowTranscoding() const { return allowTranscoding_; }
    int setAllowTranscoding(unsigned int v) { return allowTranscoding_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int allowTranscoding_ = 0;
};

} // namespace Ketra::QT
