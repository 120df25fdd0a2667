// Adding texts to the user data of a movie.
#include <base/os/Macintosh.h>
#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack/detail/UserData.h>
#include <qt/wire/Bytes.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace Ketra::QT {

namespace {

constexpr unsigned short kEnglish = 0x15C7; // "eng", five bits a letter
constexpr unsigned int kTextPrefix = 4;     // length and language of a QuickTime text

} // namespace

UDTA* QTMovie::ensureUserData() {
    if (udta_) return udta_;
    auto fresh = std::make_unique<UDTA>();
    if (addMoovChild(fresh.get()) != 0) return nullptr;
    return udta_ = fresh.release();
}

int QTMovie::addUserData(unsigned int type, unsigned int length, const char* text) {
    if (!text && length) return -1;
    if (flags_ == kPSP && type == fourCC("mana")) {
        mana_.assign(text, text + length);
        return 0;
    }
    UDTA* place = ensureUserData();
    if (!place) return -1;
    std::vector<unsigned char> payload;
    if (flags_ == k3GP) {
        // version and flags, language, the text as it is
        payload.resize(std::size_t{6} + length);
        wire::store16(payload.data() + 4, kEnglish);
        if (length) std::memcpy(payload.data() + 6, text, length);
    } else {
        // length and language, then the text without its terminating zero byte
        const std::string converted = os::toMacintosh(text, length);
        const std::size_t counted = std::max<std::size_t>(1, converted.size());
        payload.resize(kTextPrefix + counted - 1);
        wire::store16(payload.data(), counted - 1);
        std::memcpy(payload.data() + kTextPrefix, converted.data(), std::min(converted.size(), counted - 1));
    }
    return wire::append(*place, wire::dataAtom(type, payload.data(), payload.size()));
}

int QTMovie::setAllowTranscoding(bool allow) {
    constexpr unsigned char kForbidden[4] = {0, 0, 0, 1};
    if (udta_ && udta_->getAtomOfType(fourCC("nsav"))) return -1;
    if (allow) return 0;
    UDTA* place = ensureUserData();
    return place ? wire::append(*place, wire::dataAtom(fourCC("nsav"), kForbidden, sizeof kForbidden)) : -1;
}

} // namespace Ketra::QT
