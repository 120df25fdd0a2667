// The session description of a movie, put together from what movie and hint tracks say.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Ketra::Tool {

/// Sorts session lines into the order that the format wants and fills in those that have to be there.
class SessionDescription {
public:
    /// Lines of the whole session, as the movie states them. Media sections in it are left out.
    void addSessionText(std::string_view text);
    /// A line of the session if there is none of its kind yet. For an attribute, kind is its name with "a=".
    void addDefault(const std::string& kind, const std::string& value);
    /// A media section: what stands in front of its "m=" line is left out.
    void addMediaText(std::string_view text);

    std::string text() const;

private:
    std::vector<std::string> session_;
    std::vector<std::vector<std::string>> media_;
};

/// The lines of a text, whatever their ends; those that are no "x=..." are left out.
std::vector<std::string> sessionLines(std::string_view text);

} // namespace Ketra::Tool
