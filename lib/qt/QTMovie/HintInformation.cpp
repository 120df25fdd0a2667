// What a streaming server reads about the whole movie.
#include <base/CString.h>
#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack/detail/UserData.h>

namespace Ketra::QT {

int QTMovie::addInfoToHint(QTDataAtom* entry) {
    if (!entry) return -1;
    HNTI* information = wire::requireChild<HNTI>(ensureUserData(), fourCC("hnti"));
    return information ? information->addDataAtom(entry) : -1;
}

int QTMovie::addBitRateToHint() {
    if (!udta_) return -1;
    // Signed, as readers of these texts know it; carriage return and line feed end the line.
    const CString text = CString::createWithFormat("sdp b=AS:%d%c%c", static_cast<int>(bitRate_), '\r', '\n');
    auto entry = wire::dataAtom(fourCC("rtp "), text.getData(), text.getLength());
    if (addInfoToHint(entry.get()) != 0) return -1;
    static_cast<void>(entry.release());
    return 0;
}

} // namespace Ketra::QT
