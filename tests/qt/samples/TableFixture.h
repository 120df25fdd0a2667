// What the tests of the sample tables share.
#pragma once

#include "support/AtomFile.h"

#include <base/CException.h>

#include <gtest/gtest.h>

namespace test {

/// A full atom of version and flags 0.
inline Bytes tableAtom(const char (&type)[5], const Bytes& rest) {
    return atom(type, hex("00000000") + rest);
}

/// Bytes of an atom after updateSize(); empty for none.
inline Bytes rewritten(Ketra::QT::QTAtom& atom) {
    atom.updateSize();
    return take(atom.serialize());
}

/// Writing must fail with exactly this exception.
inline void expectThrow(Ketra::QT::QTAtom& atom, const char* function, const char* message) {
    try {
        take(atom.serialize());
        FAIL() << "no exception: " << message;
    } catch (const Ketra::CException& e) {
        EXPECT_STREQ(e.what(), message);
        EXPECT_TRUE(e.getFunction() == function) << e.getFunction().c_str();
        EXPECT_TRUE(e.getFile() == "lib/qt/QTAtoms") << e.getFile().c_str();
        EXPECT_TRUE(e.getName() == "Ketra::CException") << e.getName().c_str();
    }
}

} // namespace test
