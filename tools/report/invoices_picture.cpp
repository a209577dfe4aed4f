// Invoices by month, and what of them is unpaid.
#include <algorithm>
#include <map>

#include "tools/report/bars.h"
#include "tools/report/card.h"
#include "tools/report/markup.h"
#include "tools/report/pictures.h"

namespace tools {
namespace {

constexpr int kShownMonths = 24;
constexpr int kFewestMonths = 12;

struct Month {
    std::uint64_t invoices = 0;
    Amount total;
    Amount unpaid;

    void add(Amount more_total, Amount balance) {
        ++invoices;
        total += more_total;
        if (balance.is_positive()) unpaid += balance;
    }
};

// Months are counted from the year 0.
int month_of(std::chrono::sys_days day) {
    const std::chrono::year_month_day date(day);
    return static_cast<int>(date.year()) * 12 + static_cast<int>(static_cast<unsigned>(date.month())) - 1;
}

std::string month_text(int month) {
    const int in_year = month % 12 + 1;
    return std::to_string(month / 12) + (in_year < 10 ? "-0" : "-") + std::to_string(in_year);
}

std::string told(const Month& month) {
    return counted(month.invoices, "invoice", "invoices") + " of " + month.total.rounded() + ", " +
           month.unpaid.rounded() + " unpaid";
}

// The last month that has an invoice; one that lies more than a year ahead is a slip, unless all do.
int last_month(const std::map<int, Month>& months, int present) {
    const auto after = months.upper_bound(present + 12);
    return after == months.begin() ? months.rbegin()->first : std::prev(after)->first;
}

std::vector<UprightBar> bars_of(const std::map<int, Month>& months, int last) {
    const int count = std::clamp(last - months.begin()->first + 1, kFewestMonths, kShownMonths);
    std::vector<UprightBar> bars;
    for (int number = last - count + 1; number <= last; ++number) {
        const auto found = months.find(number);
        const Month month = found == months.end() ? Month() : found->second;
        bars.push_back(
            {month_text(number), month.total.units(), month.unpaid.units(), month_text(number) + ": " + told(month)});
    }
    return bars;
}

}  // namespace

std::string invoices_picture(const StudioTables& tables, std::chrono::sys_days today) {
    if (!tables.has("Invoices")) return "";
    std::map<int, Month> months;
    Month all;
    Month undated;
    tables.each("Invoices", {"Date", "Total", "Balance"}, [&](StudioTables::Values row) {
        const auto day = day_of(row[0]);
        Month& month = day ? months[month_of(*day)] : undated;
        month.add(Amount(row[1]), Amount(row[2]));
        all.add(Amount(row[1]), Amount(row[2]));
    });
    Card card{"invoices", "Invoices and what is unpaid", "Invoices", "", ""};
    card.sentence = all.invoices == 0 ? "There are no invoices." : told(all) + ".";
    if (months.empty()) return card.html();
    const std::vector<UprightBar> bars = bars_of(months, last_month(months, month_of(today)));
    NumberTable numbers{{"Month", "Invoices", "Total", "Unpaid"}, {}};
    const auto add_row = [&](const std::string& name, const Month& month) {
        numbers.rows.push_back({name, std::to_string(month.invoices), month.total.text(), month.unpaid.text()});
    };
    for (auto at = months.rbegin(); at != months.rend(); ++at) add_row(month_text(at->first), at->second);
    if (undated.invoices > 0) add_row("no date", undated);
    card.body = legend_html({{"first", "paid"}, {"second", "unpaid"}}) +
                picture_html("invoices", "Invoices by month",
                             "Bars from " + bars.front().label + " to " + bars.back().label +
                                 ", the unpaid part in a second colour. " + told(all) + " in all.",
                             kUprightHeight, upright_bars(bars)) +
                numbers.html("The numbers of all months");
    return card.html();
}

}  // namespace tools
