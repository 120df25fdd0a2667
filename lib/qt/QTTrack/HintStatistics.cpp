#include <qt/QTTrack/detail/HintStatistics.h>
#include <qt/QTTrack/detail/SessionText.h>
#include <qt/QTTrack/detail/UserData.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Reader.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

namespace Ketra::QT::wire {

namespace {

constexpr unsigned int kPacketOverhead = 32; // of a packet in a hint sample
constexpr unsigned int kRTPHeader = 12;
constexpr unsigned int kBitRatePeriod = 1000; // milliseconds
constexpr unsigned int kTransmissionTimeLimit = 0xF0000000;
constexpr unsigned int kLongestText = 255;
constexpr std::uint64_t kDataAtomHeader = 8;

unsigned int clamped(double x) {
    constexpr std::int64_t kMost = std::numeric_limits<unsigned int>::max();
    return static_cast<unsigned int>(std::clamp<std::int64_t>(toInteger(x), 0, kMost));
}

void add32(HINF& hinf, unsigned int type, std::uint64_t value) {
    unsigned char bytes[4];
    store32(bytes, value);
    append(hinf, dataAtom(type, bytes, sizeof bytes));
}

void add64(HINF& hinf, unsigned int type, std::uint64_t value) {
    unsigned char bytes[8];
    store64(bytes, value);
    append(hinf, dataAtom(type, bytes, sizeof bytes));
}

/// The number in front of the next slash; what is no number is 0.
unsigned int takeNumber(CString& text) {
    unsigned int value = 0;
    const char* begin = text.c_str();
    const char* end = begin + text.getLength();
    const char* slash = std::find(begin, end, '/');
    std::from_chars(begin, slash, value);
    const auto used = static_cast<unsigned int>(std::min(slash + 1, end) - begin);
    text = text.getSubString(used, text.getLength() - used);
    return value;
}

} // namespace

PayloadDescription PayloadDescription::read(QTDataAtom& atom) {
    PayloadDescription payload;
    // Its frame is as long as the atom says, whatever stands behind its data pointer.
    const std::unique_ptr<QTFrame> bytes(atom.serialize());
    if (!bytes) return payload;
    Reader in(bytes->getData(), bytes->getDataLength());
    in.skip(kDataAtomHeader);
    unsigned int length = 0;
    in.u32(payload.type);
    in.u8(length);
    length = static_cast<unsigned int>(std::min<std::uint64_t>(length, in.left()));
    if (!length) return payload;
    CString text(reinterpret_cast<const char*>(in.cursor()), length);
    const char* slash = std::find(text.c_str(), text.c_str() + length, '/');
    const auto name = static_cast<unsigned int>(slash - text.c_str());
    payload.encoding = text.getSubString(0, name);
    text = text.getSubString(name + 1, length);
    payload.clockRate = takeNumber(text);
    payload.parameter = takeNumber(text);
    return payload;
}

CString PayloadDescription::text(bool audio) const {
    return audio ? CString::createWithFormat("%s/%d/%d", encoding.c_str(), printed(clockRate),
                                             printed(parameter))
                 : CString::createWithFormat("%s/%d", encoding.c_str(), printed(clockRate));
}

void HintStatistics::append(HINF& hinf, bool audio) const {
    const std::uint64_t payloadBytes = bytes - std::uint64_t{kPacketOverhead} * packets;
    const std::uint64_t sentBytes = payloadBytes + std::uint64_t{kRTPHeader} * packets;
    add64(hinf, fourCC("trpy"), sentBytes);
    add32(hinf, fourCC("totl"), sentBytes);
    add64(hinf, fourCC("nump"), packets);
    add32(hinf, fourCC("npck"), packets);
    add64(hinf, fourCC("tpyl"), payloadBytes);
    add32(hinf, fourCC("tpay"), payloadBytes);
    add64(hinf, fourCC("maxr"), std::uint64_t{kBitRatePeriod} << 32 | maxBitRate);
    add64(hinf, fourCC("dmed"), 0);
    add64(hinf, fourCC("dimm"), payloadBytes); // every payload lies in the hint samples themselves
    add64(hinf, fourCC("drep"), 0);
    add32(hinf, fourCC("tmin"), kTransmissionTimeLimit);
    add32(hinf, fourCC("tmax"), kTransmissionTimeLimit);
    add32(hinf, fourCC("pmax"), largestPacket);
    add32(hinf, fourCC("dmax"), samples ? clamped(duration * 1000 / samples + 0.5) : 0);

    const CString description = payload.text(audio);
    const unsigned int length = std::min(description.getLength(), kLongestText);
    std::vector<unsigned char> field(5);
    store32(field.data(), payload.type);
    field[4] = static_cast<unsigned char>(length);
    field.insert(field.end(), description.getData(), description.getData() + length);
    wire::append(hinf, dataAtom(fourCC("payt"), field.data(), field.size()));
}

unsigned int hintBitRate(std::uint64_t bytes, unsigned int packets, double duration) {
    if (!(duration > 0) || !std::isfinite(duration)) return 0;
    const double payload = static_cast<double>(bytes) - kPacketOverhead * static_cast<double>(packets);
    return clamped((payload / duration + 0.5) * 8);
}

unsigned short videoPacketSize(std::uint64_t bytes, unsigned int packets) {
    return packets ? static_cast<unsigned short>((0 - 31 * bytes) / packets) : std::uint16_t{0};
}

unsigned short audioPacketSize(std::uint64_t bytes, unsigned int packets) {
    if (!packets) return 0;
    return static_cast<unsigned short>((bytes - std::uint64_t{kPacketOverhead} * packets) / packets);
}

} // namespace Ketra::QT::wire
