// Scales with round numbers, and the frame that every graph is drawn in.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Ketra::Tool::Report {

struct Tick {
    double place; ///< 0 to 1
    std::string label;
};

struct Axis {
    double end = 1; ///< what the far end stands for
    std::vector<Tick> ticks;
};

Axis timeAxis(double seconds);    ///< ends there
Axis byteAxis(double bytes);      ///< ends there
Axis rateAxis(double most);       ///< of bits a second; ends at a round number from there on
Axis upTo(Axis axis, double end); ///< the same axis, ending elsewhere

/// Graphs are as wide as the page and keep their height: bars and texts have places in percent, and lines are
/// drawn in a nested picture of kGrid units a side that is stretched over the plot.
constexpr double kGrid = 1000;

/// The picture with the plot `height` pixels high below `above` pixels; room for the ticks of `across` below.
/// A graph that holds links is a group, any other one picture with a name.
void openGraph(std::string& page, double height, const Axis& across, std::string_view name,
               bool links = false, std::string_view foot = {});
void addRows(std::string& page, double height, const Axis& up); ///< lines and labels of a vertical axis
void openStretched(std::string& page, double top, double height);
void closeStretched(std::string& page);
void closeGraph(std::string& page);

} // namespace Ketra::Tool::Report
