// Bookings of each room over the weeks of a year, as a map of warmth: the more hours, the stronger the colour.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <tuple>

#include "tools/report/card.h"
#include "tools/report/markup.h"
#include "tools/report/pictures.h"

namespace tools {
namespace {

using std::chrono::sys_days;

constexpr std::size_t kMostRooms = 12;
constexpr int kWeeks = 53;
constexpr int kRoomHeight = 42;
constexpr int kMonthsHeight = 18;
constexpr int kLevels = 4;

// As ISO 8601 counts: a week belongs to the year that has its Thursday.
struct Week {
    int year = 0;
    int week = 0;
    explicit Week(sys_days day) {
        const std::chrono::weekday weekday(day);
        const sys_days thursday = day + std::chrono::days(4 - static_cast<int>(weekday.iso_encoding()));
        year = static_cast<int>(std::chrono::year_month_day(thursday).year());
        const sys_days first = std::chrono::year(year) / std::chrono::January / 1;
        week = static_cast<int>((thursday - first).count() / 7 + 1);
    }
};

// Monday of the first week.
sys_days first_monday(int year) {
    const sys_days fourth = std::chrono::year(year) / std::chrono::January / 4;
    return fourth - std::chrono::days(static_cast<int>(std::chrono::weekday(fourth).iso_encoding()) - 1);
}

struct Booked {
    std::uint64_t bookings = 0;
    double hours = 0;
    void add(double more_hours) {
        ++bookings;
        hours += more_hours;
    }
};

std::string hours_text(double hours) {
    char text[64];
    std::snprintf(text, sizeof text, "%.4g h", hours);
    if (hours >= 1000) return count_text(static_cast<std::uint64_t>(std::llround(hours))) + " h";
    return text;
}

std::string told(const Booked& booked) {
    return counted(booked.bookings, "booking", "bookings") + ", " + hours_text(booked.hours);
}

class Calendar {
public:
    explicit Calendar(const StudioTables& tables) {
        tables.each("Def_Rooms", {"RecID", "Name"}, [&](StudioTables::Values row) {
            if (rooms_.size() < kMostRooms) rooms_.emplace_back(number_of(row[0]), text_of(row[1]));
        });
        tables.each("Bookings", {"DateStart", "DateEnd", "RoomID"}, [&](StudioTables::Values row) { add(row); });
        for (const auto& [cell, booked] : cells_) {
            most_hours_ = std::max(most_hours_, booked.hours);
            years_[std::get<0>(cell)].bookings += booked.bookings;
            years_[std::get<0>(cell)].hours += booked.hours;
        }
    }

    const std::map<int, Booked>& years() const { return years_; }
    std::uint64_t undated() const { return undated_; }
    std::string year_html(int year) const;

private:
    using Cell = std::tuple<int, std::size_t, int>;  // year, room, week

    void add(StudioTables::Values row) {
        const auto day = day_of(row[0]);
        if (!day) {
            ++undated_;
            return;
        }
        const double start = std::get<jet::Date>(row[0]).days;
        const auto* const end = std::get_if<jet::Date>(&row[1]);
        constexpr double kMostDays = 366;
        const double length = end == nullptr ? 0 : std::clamp(end->days - start, 0.0, kMostDays);
        const Week week(*day);
        cells_[{week.year, room_index(number_of(row[2])), week.week}].add(length * 24);
    }
    // Behind the rooms: bookings of other rooms, and of none.
    std::size_t room_index(std::int32_t room) const {
        if (room == 0) return rooms_.size() + 1;
        const auto found =
            std::find_if(rooms_.begin(), rooms_.end(), [&](const auto& own) { return own.first == room; });
        return static_cast<std::size_t>(found - rooms_.begin());
    }
    std::string room_name(std::size_t index) const {
        if (index < rooms_.size()) return rooms_[index].second.empty() ? "(no name)" : rooms_[index].second;
        return index == rooms_.size() ? "Other rooms" : "No room";
    }
    // All rooms that the studio has, the others where they are booked.
    std::vector<std::size_t> rooms_of(int year) const {
        std::vector<std::size_t> rooms;
        for (std::size_t i = 0; i < rooms_.size() + 2; ++i) {
            const auto first = cells_.lower_bound({year, i, 0});
            const bool is_booked =
                first != cells_.end() && std::get<0>(first->first) == year && std::get<1>(first->first) == i;
            if (is_booked || i < rooms_.size()) rooms.push_back(i);
        }
        return rooms;
    }
    int level(double hours) const {
        if (most_hours_ <= 0) return 1;
        return std::clamp(static_cast<int>(std::ceil(hours / most_hours_ * kLevels)), 1, kLevels);
    }
    std::string room_html(int year, std::size_t room, int top) const;

    std::vector<std::pair<std::int32_t, std::string>> rooms_;
    std::map<Cell, Booked> cells_;
    std::map<int, Booked> years_;
    double most_hours_ = 0;
    std::uint64_t undated_ = 0;
};

std::string week_text(int year, int week) {
    char text[64];
    std::snprintf(text, sizeof text, "%04d-W%02d", year, week);
    return text;
}

std::string Calendar::room_html(int year, std::size_t room, int top) const {
    const std::string y = std::to_string(top + 20);
    std::string marks;
    Booked sum;
    for (auto at = cells_.lower_bound({year, room, 0}); at != cells_.end(); ++at) {
        const auto& [cell_year, cell_room, week] = at->first;
        if (cell_year != year || cell_room != room) break;
        const Booked& booked = at->second;
        sum.bookings += booked.bookings;
        sum.hours += booked.hours;
        marks += "<rect class=\"level" + std::to_string(level(booked.hours)) + "\" x=\"" +
                 percent((week - 1) / double{kWeeks}) + "\" y=\"" + y + "\" width=\"" + percent(0.82 / kWeeks) +
                 "\" height=\"16\" rx=\"2\"><title>" +
                 html_text(room_name(room) + ", " + week_text(year, week) + " from " +
                           iso_text(first_monday(year) + std::chrono::days(7 * (week - 1))) + ": " + told(booked)) +
                 "</title></rect>\n";
    }
    return "<svg x=\"0\" y=\"" + std::to_string(top) + "\" width=\"56%\" height=\"20\"><text class=\"name\" x=\"0\" " +
           "y=\"14\">" + html_text(room_name(room)) + "</text></svg><text class=\"value\" x=\"100%\" y=\"" +
           std::to_string(top + 14) + "\" text-anchor=\"end\">" + told(sum) + "</text><rect class=\"track\" x=\"0\" " +
           "y=\"" + y + "\" width=\"100%\" height=\"16\" rx=\"2\"/>\n" + marks;
}

std::string Calendar::year_html(int year) const {
    static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::string content;
    const sys_days begin = first_monday(year);
    for (unsigned month = 1; month <= 12; ++month) {
        const sys_days first = std::chrono::year(year) / std::chrono::month(month) / 1;
        const double share = std::max(0.0, static_cast<double>((first - begin).count()) / (7.0 * kWeeks));
        // A narrow screen has room for every other one.
        content += "<text class=\"tick" + std::string(month % 2 == 0 ? " minor" : "") + "\" x=\"" + percent(share) +
                   "\" y=\"12\">" + kMonths[month - 1] + "</text>";
    }
    content += "\n";
    int top = kMonthsHeight;
    const std::vector<std::size_t> rooms = rooms_of(year);
    for (const std::size_t room : rooms) {
        content += room_html(year, room, top);
        top += kRoomHeight;
    }
    NumberTable numbers{{"Week", "Room", "Bookings", "Hours"}, {}, 2};
    std::map<std::pair<int, std::size_t>, Booked> by_week;
    for (const std::size_t room : rooms) {
        for (auto at = cells_.lower_bound({year, room, 0}); at != cells_.end(); ++at) {
            if (std::get<0>(at->first) != year || std::get<1>(at->first) != room) break;
            by_week[{std::get<2>(at->first), room}] = at->second;
        }
    }
    for (const auto& [key, booked] : by_week) {
        char hours[32];
        std::snprintf(hours, sizeof hours, "%.2f", booked.hours);
        numbers.rows.push_back(
            {week_text(year, key.first), room_name(key.second), std::to_string(booked.bookings), hours});
    }
    const std::string text = std::to_string(year);
    return picture_html("bookings-" + text, "Bookings of each room by week, " + text,
                        "A line for each room, a mark for each week with bookings: the stronger, the more hours. " +
                            counted(rooms.size(), "room", "rooms") + ", " + told(years_.at(year)) + ".",
                        top, content) +
           numbers.html("The numbers of " + text);
}

// The present year, or the last one before it, or the first one after it.
int nearest_year(const std::map<int, Booked>& years, int present) {
    auto after = years.upper_bound(present);
    return after == years.begin() ? after->first : std::prev(after)->first;
}

}  // namespace

std::string bookings_picture(const StudioTables& tables, sys_days today) {
    if (!tables.has("Bookings")) return "";
    const Calendar calendar(tables);
    Card card{"bookings", "Bookings of each room", "Bookings", "", "", true};
    if (calendar.years().empty()) {
        card.sentence = "There are no bookings with a date.";
        return card.html();
    }
    const int shown = nearest_year(calendar.years(), static_cast<int>(std::chrono::year_month_day(today).year()));
    card.sentence = std::to_string(shown) + ": " + told(calendar.years().at(shown)) +
                    ". A booking counts in the week in which it begins.";
    if (calendar.undated() > 0) {
        card.sentence += " " + counted(calendar.undated(), "booking has", "bookings have") + " no date of use.";
    }
    card.body =
        "<p class=\"legend\"><span>fewer hours</span><span class=\"scale\"><i class=\"level1\"></i>"
        "<i class=\"level2\"></i><i class=\"level3\"></i><i class=\"level4\"></i></span><span>more</span></p>\n" +
        calendar.year_html(shown);
    std::string others;
    for (auto at = calendar.years().rbegin(); at != calendar.years().rend(); ++at) {
        if (at->first == shown) continue;
        others += "<details class=\"year\"><summary>" + std::to_string(at->first) + ": " + told(at->second) +
                  "</summary>\n" + calendar.year_html(at->first) + "</details>\n";
    }
    if (!others.empty()) {
        card.body += "<details class=\"years\"><summary>" +
                     counted(calendar.years().size() - 1, "other year", "other years") + "</summary>\n" + others +
                     "</details>\n";
    }
    return card.html();
}

}  // namespace tools
