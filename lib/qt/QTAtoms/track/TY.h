// What an input of a track does to it.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// "  ty" (two spaces): 8 input type (32).
class KETRA_QT_API __TY : public QTAtom {
public:
    __TY();
    explicit __TY(QTAtom* header);
    __TY(const __TY&) = default;
    __TY& operator=(const __TY&) = default;
    ~__TY() override;

    std::uint64_t updateSize() override; ///< 12
    int parse() override;
    QTFrame* serialize() override;

    unsigned int getInputType() const { return inputType_; }
    int setInputType(unsigned int v) { return inputType_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int inputType_ = 0;
};

} // namespace Ketra::QT
