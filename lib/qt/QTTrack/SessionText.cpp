#include <qt/QTTrack/detail/SessionText.h>

#include <charconv>

namespace Ketra::QT::wire {

CString fourDecimals(double x) {
    char text[400]; // the largest double has 309 digits before the point
    const auto end = std::to_chars(text, text + sizeof text, x, std::chars_format::fixed, 4).ptr;
    return CString(text, static_cast<unsigned int>(end - text));
}

} // namespace Ketra::QT::wire
