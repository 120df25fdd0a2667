#include "report/Axis.h"

#include "report/Markup.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

namespace {

constexpr double kMostTicks = 8;
constexpr double kBelow = 26; // pixels for the labels of the ticks

/// The smallest of 1, 2 and 5 times a power of ten that makes no more ticks than wanted.
double decimalStep(double end, double most) {
    if (!(end > 0) || !std::isfinite(end)) return 1;
    const double power = std::pow(10, std::floor(std::log10(end / most)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (end / (factor * power) <= most) return factor * power;
    }
    return 10 * power;
}

double timeStep(double seconds) {
    constexpr double kSteps[] = {1,   2,   5,    10,   15,   30,    60,    120,   300,
                                 600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400};
    if (seconds / kMostTicks <= 0.5) return decimalStep(seconds, kMostTicks);
    for (const double step : kSteps) {
        if (seconds / step <= kMostTicks) return step;
    }
    return 86400 * decimalStep(seconds / 86400, kMostTicks);
}

std::string clockText(double seconds, double end) {
    if (end < 60 || seconds < 0.5) return timeText(seconds);
    const auto whole = static_cast<unsigned long long>(std::llround(seconds));
    if (end < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

template <class Label>
Axis axisOf(double end, double step, Label label) {
    Axis axis;
    axis.end = end > 0 ? end : 1;
    for (int i = 0; i <= static_cast<int>(kMostTicks) + 1 && i * step <= axis.end * 1.000001; ++i) {
        axis.ticks.push_back({i * step / axis.end, label(i * step)});
    }
    return axis;
}

} // namespace

Axis timeAxis(double seconds) {
    return axisOf(seconds, timeStep(seconds), [seconds](double value) { return clockText(value, seconds); });
}

Axis byteAxis(double bytes) {
    return axisOf(bytes, std::max(1.0, decimalStep(bytes, kMostTicks)), bytesText);
}

Axis rateAxis(double most) {
    constexpr double kRows = 3;
    const double step = std::max(1.0, decimalStep(most, kRows));
    return axisOf(std::max(1.0, std::ceil(most / step - 1e-9)) * step, step, rateText);
}

Axis upTo(Axis axis, double end) {
    for (Tick& tick : axis.ticks) {
        tick.place *= axis.end / end;
    }
    axis.end = end;
    return axis;
}

void openGraph(std::string& page, double height, const Axis& across, std::string_view name, bool links,
               std::string_view foot) {
    auto out = std::back_inserter(page);
    fmt::format_to(out,
                   "<svg class=\"graph\" xmlns=\"http://www.w3.org/2000/svg\" width=\"100%\" height=\"{}\" ",
                   decimal(height + kBelow));
    fmt::format_to(out, "role=\"{}\" aria-label=\"{}\">", links ? "group" : "img", name);
    std::size_t index = 0;
    for (const Tick& tick : across.ticks) {
        const char* anchor = tick.place > 0.97 ? " class=\"e\"" : "";
        const bool odd = index % 2 == 1 && across.ticks.size() > 4;
        fmt::format_to(out, "<g{}><line class=\"tick\" x1=\"{}\" x2=\"{}\" y1=\"0\" y2=\"{}\"/>",
                       odd ? " class=\"wide\"" : "", at(tick.place), at(tick.place), decimal(height + 4));
        fmt::format_to(out, "<text{} x=\"{}\" y=\"{}\">{}</text></g>", anchor, at(tick.place),
                       decimal(height + 18), tick.label);
        ++index;
    }
    if (!foot.empty()) fmt::format_to(out, "{}", foot);
}

void addRows(std::string& page, double height, const Axis& up) {
    for (const Tick& tick : up.ticks) {
        const std::string y = decimal(height * (1 - tick.place), 1);
        fmt::format_to(std::back_inserter(page),
                       "<line class=\"row\" x1=\"0\" x2=\"100%\" y1=\"{}\" y2=\"{}\"/>"
                       "<text class=\"y\" x=\"-8\" y=\"{}\">{}</text>",
                       y, y, decimal(height * (1 - tick.place) + 4, 1), tick.label);
    }
}

void openStretched(std::string& page, double top, double height) {
    fmt::format_to(std::back_inserter(page),
                   "<svg x=\"0\" y=\"{}\" width=\"100%\" height=\"{}\" viewBox=\"0 0 {} {}\" "
                   "preserveAspectRatio=\"none\">",
                   decimal(top), decimal(height), kGrid, kGrid);
}

void closeStretched(std::string& page) { page += "</svg>"; }

void closeGraph(std::string& page) { page += "</svg>"; }

} // namespace Ketra::Tool::Report
