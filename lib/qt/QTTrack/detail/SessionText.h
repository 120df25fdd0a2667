// Text of a session description.
#pragma once

#include <base/CString.h>

namespace Ketra::QT::wire {

/// The number with four decimals and a point, whatever the program's locale is.
CString fourDecimals(double x);

/// A number as the texts print it: as a signed one.
constexpr int printed(unsigned int x) { return static_cast<int>(x); }

} // namespace Ketra::QT::wire
