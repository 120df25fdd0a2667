// Texts as they may stand in a page, and numbers as people read them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Ketra::Tool::Report {

/// Valid UTF-8 in which nothing is markup, in a text as well as in a quoted attribute. Control characters
/// show as \xNN. At most `longest` characters of it, with an ellipsis behind them when there are more.
std::string escaped(std::string_view text, std::size_t longest = 120);

/// The same where a file brought the text: its writing direction does not spread to what stands around it.
std::string foreign(std::string_view text, std::size_t longest = 120);

std::string grouped(std::uint64_t number); ///< 12 345 678
std::string plural(std::uint64_t number, std::string_view one, std::string_view many);
std::string bytesText(double bytes);   ///< 1.25 MB
std::string rateText(double bits);     ///< of a second: 128 kbit/s
std::string timeText(double seconds);  ///< 0.04 s, 12.5 s, 2:03, 1:02:03
std::string percentText(double share); ///< 0.1 %
std::string at(double share);          ///< a place between 0 and 1 as an attribute has it: 12.345%
std::string decimal(double number, int decimals = 2); ///< without zeros at the end

/// A name for a kind of figure and what it is, one pair of a list.
void addFact(std::string& page, std::string_view name, std::string_view markup);

} // namespace Ketra::Tool::Report
