// Projects by the year in which they were made.
#include <algorithm>
#include <map>

#include "tools/report/bars.h"
#include "tools/report/card.h"
#include "tools/report/markup.h"
#include "tools/report/pictures.h"

namespace tools {
namespace {

constexpr int kShownYears = 24;
constexpr int kFewestYears = 6;

using CountByYear = std::map<int, std::uint64_t>;

// As with the invoices: what lies ahead is a slip, unless all does.
int last_year(const CountByYear& years, int present) {
    const auto after = years.upper_bound(present + 1);
    return after == years.begin() ? years.rbegin()->first : std::prev(after)->first;
}

std::vector<UprightBar> bars_of(const CountByYear& years, int last) {
    const int count = std::clamp(last - years.begin()->first + 1, kFewestYears, kShownYears);
    std::vector<UprightBar> bars;
    for (int year = last - count + 1; year <= last; ++year) {
        const auto found = years.find(year);
        const std::uint64_t projects = found == years.end() ? 0 : found->second;
        bars.push_back({std::to_string(year), static_cast<double>(projects), 0,
                        std::to_string(year) + ": " + counted(projects, "project", "projects")});
    }
    return bars;
}

}  // namespace

std::string projects_picture(const StudioTables& tables, std::chrono::sys_days today) {
    if (!tables.has("Projects")) return "";
    CountByYear years;
    std::uint64_t all = 0;
    std::uint64_t undated = 0;
    tables.each("Projects", {"ProjCreateDate"}, [&](StudioTables::Values row) {
        ++all;
        if (const auto day = day_of(row[0])) {
            ++years[static_cast<int>(std::chrono::year_month_day(*day).year())];
        } else {
            ++undated;
        }
    });
    Card card{"projects", "Projects by year", "Projects", "", ""};
    card.sentence = all == 0 ? "There are no projects." : counted(all, "project", "projects") + ".";
    if (undated > 0) card.sentence += " " + counted(undated, "has", "have") + " no date.";
    if (years.empty()) return card.html();
    const std::vector<UprightBar> bars =
        bars_of(years, last_year(years, static_cast<int>(std::chrono::year_month_day(today).year())));
    NumberTable numbers{{"Year", "Projects"}, {}};
    for (auto at = years.rbegin(); at != years.rend(); ++at) {
        numbers.rows.push_back({std::to_string(at->first), std::to_string(at->second)});
    }
    if (undated > 0) numbers.rows.push_back({"no date", std::to_string(undated)});
    card.body = picture_html("projects", "Projects by year",
                             "Bars from " + bars.front().label + " to " + bars.back().label + ". " + card.sentence,
                             kUprightHeight, upright_bars(bars)) +
                numbers.html("The numbers of all years");
    return card.html();
}

}  // namespace tools
