// A file in memory with a reader over it.
#pragma once

#include "support/Bytes.h"

#include <base/CMemoryStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTUtils.h>

#include <memory>

namespace test {

class AtomFile {
public:
    explicit AtomFile(const Bytes& bytes)
        : source_(new Ketra::Ferro::CMemoryStream(bytes.data(), static_cast<std::int64_t>(bytes.size()))),
          stream_(&source_), utils_(&stream_, nullptr) {}

    Ketra::QT::QTStream& stream() { return stream_; }
    Ketra::QT::QTUtils& utils() { return utils_; }
    std::int64_t position() { return stream_.lseek(0, 1); }
    std::unique_ptr<Ketra::QT::QTAtom> header() {
        return std::unique_ptr<Ketra::QT::QTAtom>(utils_.getNextAtom(0));
    }

    /// Reads the next header, makes the atom from it and parses it; `result` takes what parse() returned.
    template <class Atom>
    std::unique_ptr<Atom> parse(int* result = nullptr) {
        std::unique_ptr<Ketra::QT::QTAtom> head = header();
        if (!head) return nullptr;
        auto atom = std::make_unique<Atom>(head.release());
        const int got = atom->parse();
        if (result) *result = got;
        return atom;
    }

private:
    Ketra::Ferro::RStream source_;
    Ketra::QT::QTCMStream stream_;
    Ketra::QT::QTUtils utils_;
};

} // namespace test
