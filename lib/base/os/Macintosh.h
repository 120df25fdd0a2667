// The character set of texts in QuickTime user data.
#pragma once

#include <string>

namespace Ketra::os {

/// UTF-8 as Macintosh text, up to the first character that has none; zero bytes are characters like others.
std::string toMacintosh(const char* text, unsigned int length);

} // namespace Ketra::os
