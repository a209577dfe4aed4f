#include "tools/report/bars.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/report/markup.h"

namespace tools {
namespace {

constexpr double kPlotLeft = 0.1;  // names of the lines stand before it
constexpr int kPlotTop = 10;
constexpr int kPlotHeight = 152;
constexpr int kLines = 4;

// A step of 1, 2 or 5 times a power of ten that divides the height into at most kLines parts; whole where all is.
double nice_step(double most) {
    const double power = std::pow(10, std::floor(std::log10(most / kLines)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power * kLines >= most) return factor * power;
    }
    return 10 * power;
}

// "1500" is "1.5k".
std::string short_number(double number) {
    constexpr std::pair<double, const char*> kUnits[] = {{1e12, "T"}, {1e9, "G"}, {1e6, "M"}, {1e3, "k"}, {0, ""}};
    const auto* const unit =
        std::find_if(std::begin(kUnits), std::end(kUnits), [&](const auto& own) { return number >= own.first; });
    char text[64];
    std::snprintf(text, sizeof text, "%.4g%s", unit->first > 0 ? number / unit->first : number, unit->second);
    return text;
}

std::string pixels(double length) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", length);
    return text;
}

std::string rect(const char* kind, double x, double width, double y, double height) {
    return std::string("<rect class=\"") + kind + "\" x=\"" + percent(x) + "\" width=\"" + percent(width) + "\" y=\"" +
           pixels(y) + "\" height=\"" + pixels(height) + "\"/>";
}

std::string lines_across(double step, double top) {
    std::string text;
    for (int i = 0; i * step <= top * 1.0001; ++i) {
        const double y = kPlotTop + kPlotHeight * (1 - i * step / top);
        text += "<line class=\"" + std::string(i == 0 ? "base" : "across") + "\" x1=\"" + percent(kPlotLeft) +
                "\" x2=\"100%\" y1=\"" + pixels(y) + "\" y2=\"" + pixels(y) + "\"/><text class=\"tick\" x=\"" +
                percent(kPlotLeft - 0.015) + "\" y=\"" + pixels(y + 4) + "\" text-anchor=\"end\">" +
                short_number(i * step) + "</text>\n";
    }
    return text;
}

}  // namespace

std::string upright_bars(const std::vector<UprightBar>& bars) {
    double most = 0;
    bool is_whole = true;
    for (const UprightBar& bar : bars) {
        most = std::max(most, bar.total);
        is_whole = is_whole && bar.total == std::floor(bar.total);
    }
    if (most <= 0) most = 1;
    double step = nice_step(most);
    if (is_whole) step = std::max(1.0, step);
    const double top = step * std::ceil(most / step - 1e-9);
    std::string text = lines_across(step, top);
    const double pitch = (1 - kPlotLeft) / static_cast<double>(std::max<std::size_t>(bars.size(), 1));
    // As many as a narrow screen has room for.
    const std::size_t most_labels = !bars.empty() && bars.back().label.size() > 4 ? 4 : 6;
    const std::size_t labelled = (bars.size() + most_labels - 1) / most_labels;
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const UprightBar& bar = bars[i];
        const double x = kPlotLeft + pitch * static_cast<double>(i);
        const auto height = [&](double value) { return std::max(0.0, value) / top * kPlotHeight; };
        // The whole column answers to the mouse, however short the bar is.
        text += "<g class=\"column\"><title>" + html_text(bar.told) + "</title>" +
                rect("room", x, pitch, kPlotTop, kPlotHeight);
        const double bottom = kPlotTop + kPlotHeight;
        const double part = std::min(height(bar.part), height(bar.total));
        const double rest = height(bar.total) - part;
        const double width = pitch * 0.68;
        const double left = x + (pitch - width) / 2;
        if (rest > 0) text += rect("first", left, width, bottom - part - rest, rest);
        if (part > 0) text += rect("second", left, width, bottom - part, part);
        text += "</g>";
        // Counted from the end, so that the newest one has its label.
        if ((bars.size() - 1 - i) % labelled == 0) {
            text += "<text class=\"tick\" x=\"" + percent(x + pitch / 2) + "\" y=\"" +
                    std::to_string(kPlotTop + kPlotHeight + 20) + "\" text-anchor=\"middle\">" + html_text(bar.label) +
                    "</text>";
        }
        text += "\n";
    }
    return text;
}

namespace {

constexpr int kLyingPitch = 36;

}  // namespace

int lying_height(const std::vector<LyingBar>& bars) { return static_cast<int>(bars.size()) * kLyingPitch; }

std::string lying_bars(const std::vector<LyingBar>& bars) {
    double most = 0;
    bool has_second = false;
    for (const LyingBar& bar : bars) {
        most = std::max({most, bar.length, bar.second});
        has_second = has_second || bar.second > 0;
    }
    if (most <= 0) most = 1;
    std::string text;
    for (std::size_t i = 0; i < bars.size(); ++i) {
        const LyingBar& bar = bars[i];
        const auto y = static_cast<double>(i) * kLyingPitch;
        const auto share = [&](double value) { return std::max(0.0, value) / most; };
        text += "<g><title>" + html_text(bar.told) + "</title>" + rect("room", 0, 1, y, kLyingPitch);
        // The inner picture cuts a name that is too long.
        text += "<svg x=\"0\" y=\"" + pixels(y) +
                "\" width=\"66%\" height=\"20\"><text class=\"name\" x=\"0\" y=\"14\">" + html_text(bar.name) +
                "</text></svg><text class=\"value\" x=\"100%\" y=\"" + pixels(y + 14) + "\" text-anchor=\"end\">" +
                html_text(bar.value) + "</text>";
        text += rect("track", 0, 1, y + 21, has_second ? 4 : 6);
        if (bar.length > 0) text += rect("first", 0, share(bar.length), y + 21, has_second ? 4 : 6);
        if (bar.second > 0) text += rect("second", 0, share(bar.second), y + 26, 4);
        text += "</g>\n";
    }
    return text;
}

}  // namespace tools
