// One row per atom class: its bytes in a file, what is read from them, what is written back.
//
// A file of rows registers them with a static RowList; AtomSuite.cpp runs every row through the same tests:
// fields, bytes, sizes, every truncation, an endless count, copies.
#pragma once

#include "support/AtomFile.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <vector>

namespace test {

struct AtomRow {
    const char* name = "";
    Bytes file{};                                     ///< the whole atom as it stands in a file
    std::function<void(Ketra::QT::QTAtom&)> expect{}; ///< the fields after parse()
    Bytes written{};                                  ///< bytes of serialize(); empty: the same as `file`
    bool writesNothing = false;                       ///< serialize() gives null (then `written` is unused)
    std::optional<std::uint64_t> sizeAfterUpdate{};   ///< none: the size of `file`
    std::uint64_t blankSize = 0;                      ///< size of a default-constructed atom
    std::size_t countAt = 0;                          ///< offset of a 32-bit count field; 0: none

    // Filled by row<Atom>().
    std::function<std::unique_ptr<Ketra::QT::QTAtom>(Ketra::QT::QTAtom*)> adopt{};
    std::function<std::unique_ptr<Ketra::QT::QTAtom>()> blank{};
    std::function<std::unique_ptr<Ketra::QT::QTAtom>(const Ketra::QT::QTAtom&)> copy{};
    std::function<void(Ketra::QT::QTAtom&, const Ketra::QT::QTAtom&)> assign{};
};

/// The row of class Atom. `expect` is called with the atom as its own class.
template <class Atom>
AtomRow row(AtomRow fields, std::function<void(Atom&)> expect) {
    using Ketra::QT::QTAtom;
    fields.expect = [expect](QTAtom& atom) { expect(dynamic_cast<Atom&>(atom)); };
    fields.adopt = [](QTAtom* header) -> std::unique_ptr<QTAtom> { return std::make_unique<Atom>(header); };
    fields.blank = []() -> std::unique_ptr<QTAtom> { return std::make_unique<Atom>(); };
    fields.copy = [](const QTAtom& atom) -> std::unique_ptr<QTAtom> {
        return std::make_unique<Atom>(dynamic_cast<const Atom&>(atom));
    };
    fields.assign = [](QTAtom& to, const QTAtom& from) {
        dynamic_cast<Atom&>(to) = dynamic_cast<const Atom&>(from);
    };
    return fields;
}

std::vector<AtomRow>& atomRows();

/// Put one at namespace scope of a file of rows.
struct RowList {
    explicit RowList(std::vector<AtomRow> rows);
};

} // namespace test
