#include "remux/HeaderFields.h"

#include "remux/Extensions.h"

#include <base/CMemoryStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTUtils.h>

namespace Ketra::Tool {

namespace {

constexpr unsigned int kLongTimes = 1; // version
constexpr std::size_t kVersionAt = 8;

bool hasLongTimes(const Bytes& atom) { return atom.size() > kVersionAt && atom[kVersionAt] == kLongTimes; }

/// A time of 64 bits cut to the 32 that a short header has for it.
void putShort(Bytes& out, std::uint64_t value) {
    putNumber(out, std::min<std::uint64_t>(value, 0xFFFFFFFF), 4);
}

} // namespace

MovieTimes movieTimes(QT::QTStream& stream, const QT::MVHD& header) {
    if (header.getVersion() == kLongTimes) {
        const Bytes atom = bytesOf(stream, header);
        if (hasLongTimes(atom))
            return {static_cast<unsigned int>(numberIn(atom, 28, 4)), numberIn(atom, 12, 8)};
    }
    return {header.getTimeScale(), header.getCreationTime()};
}

std::unique_ptr<QT::TKHD> trackHeader(QT::QTStream& stream, QT::TKHD& header) {
    constexpr std::size_t kLongSize = 104;
    constexpr std::size_t kShortSize = 92;
    constexpr std::ptrdiff_t kBehindTimes = 44; // of the long header
    const Bytes atom = header.getVersion() == kLongTimes ? bytesOf(stream, header) : Bytes();
    if (!hasLongTimes(atom) || atom.size() < kLongSize) return std::make_unique<QT::TKHD>(header);
    Bytes plain;
    putNumber(plain, kShortSize, 4);
    putNumber(plain, header.getType(), 4);
    putNumber(plain, numberIn(atom, 9, 3), 4); // version 0 and the flags
    putShort(plain, numberIn(atom, 12, 8));
    putShort(plain, numberIn(atom, 20, 8));
    putNumber(plain, numberIn(atom, 28, 8), 8); // ID and reserved
    putShort(plain, numberIn(atom, 36, 8));
    plain.insert(plain.end(), atom.begin() + kBehindTimes, atom.begin() + kLongSize);
    Ferro::RStream memory(new Ferro::CMemoryStream(plain.data(), static_cast<std::int64_t>(plain.size())));
    QT::QTCMStream bytes(&memory);
    QT::QTUtils reader(&bytes, nullptr);
    std::unique_ptr<QT::QTAtom> start(reader.getNextAtom(0));
    if (!start) return std::make_unique<QT::TKHD>(header);
    QT::TKHD parsed(start.release());
    parsed.parse();
    return std::make_unique<QT::TKHD>(parsed);
}

std::vector<Edit> editsOf(QT::QTStream& stream, const QT::ELST& list) {
    constexpr std::size_t kFixed = 16;
    constexpr std::size_t kLongEntry = 20;
    std::vector<Edit> edits;
    const Bytes atom = list.getVersion() == kLongTimes ? bytesOf(stream, list) : Bytes();
    if (!hasLongTimes(atom)) {
        for (const QT::ELSTData* entry : list.getEditListTable()) {
            edits.push_back({entry->getDuration(), entry->getMediaTime(), entry->getMediaRate()});
        }
        return edits;
    }
    const std::uint64_t count = numberIn(atom, 12, 4);
    for (std::size_t at = kFixed; edits.size() < count && atom.size() - at >= kLongEntry; at += kLongEntry) {
        const auto rate = static_cast<std::int32_t>(numberIn(atom, at + 16, 4));
        edits.push_back({numberIn(atom, at, 8), static_cast<std::int64_t>(numberIn(atom, at + 8, 8)),
                         static_cast<float>(rate) / 65536.0F});
    }
    return edits;
}

} // namespace Ketra::Tool
