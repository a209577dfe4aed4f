// The two kinds of bars: upright ones along time, and lying ones for a short list of names.
#pragma once

#include <string>
#include <vector>

namespace tools {

struct UprightBar {
    std::string label;  // along the axis, where there is room
    double total = 0;
    double part = 0;   // of the total, drawn in its lower end in the second colour
    std::string told;  // when the mouse rests on it
};

// The SVG's content, and its height in pixels. Bars below 0 are not drawn.
inline constexpr int kUprightHeight = 196;
std::string upright_bars(const std::vector<UprightBar>& bars);

struct LyingBar {
    std::string name;
    std::string value;  // at the end of the line
    double length = 0;  // all in one measure
    double second = 0;  // below it, in the second colour
    std::string told;
};

int lying_height(const std::vector<LyingBar>& bars);
std::string lying_bars(const std::vector<LyingBar>& bars);

}  // namespace tools
