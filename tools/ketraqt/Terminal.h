// Whether somebody is looking, and wants colours.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace Ketra::Tool {

bool isTerminal(std::FILE* stream);

/// Colours go to a terminal only, and not when the environment has NO_COLOR (https://no-color.org).
bool wantsColours(std::FILE* stream);

enum class Colour { kRed = 31, kGreen = 32, kYellow = 33, kCyan = 36 };

/// The text in the colour, when it is wanted.
std::string coloured(std::string_view text, Colour colour, bool wanted);

} // namespace Ketra::Tool
