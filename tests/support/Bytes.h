// Byte strings for tests, written so that a reader sees the fields.
#pragma once

#include <qt/QTFrame.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace test {

using Bytes = std::vector<unsigned char>;

/// Hexadecimal digits and 'quoted characters'; everything else is white space. One line a field:
///     hex({"00000010 'stts'",  // size, type
///          "00 000000"})       // version, flags
Bytes hex(std::initializer_list<const char*> lines);
Bytes hex(const char* text);

Bytes operator+(Bytes left, const Bytes& right);

/// An atom around a payload: size, type, payload.
Bytes atom(const char (&type)[5], const Bytes& payload);
/// Several of them behind one another.
Bytes join(std::initializer_list<Bytes> parts);

Bytes repeat(unsigned char value, std::size_t count);

/// The bytes of a frame, which is deleted; empty for null.
Bytes take(Ketra::QT::QTFrame* frame);

std::string show(const Bytes& bytes); // for messages

} // namespace test
