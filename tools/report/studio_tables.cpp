#include "tools/report/studio_tables.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/interrupt.h"
#include "tools/names.h"
#include "tools/value_text.h"

namespace tools {

const ExportTable* StudioTables::find(const char* table) const {
    const auto found =
        std::find_if(tables_.begin(), tables_.end(), [&](const ExportTable& own) { return own.name == table; });
    return found == tables_.end() ? nullptr : &*found;
}

void StudioTables::each(const char* table, std::initializer_list<const char*> columns,
                        const std::function<void(Values)>& take) const {
    const ExportTable* const found = find(table);
    if (found == nullptr) return;
    std::vector<std::optional<std::size_t>> positions;
    for (const char* const column : columns) {
        const auto own = std::find_if(found->columns.begin(), found->columns.end(),
                                      [&](const ExportColumn& c) { return is_same_name(c.name, column); });
        if (own == found->columns.end()) {
            positions.push_back(std::nullopt);
        } else {
            positions.push_back(static_cast<std::size_t>(own - found->columns.begin()));
        }
    }
    std::vector<jet::Value> values(positions.size());
    jet::RowView row;
    for (auto id = found->table->next_row({}); id; id = found->table->next_row(*id)) {
        require_uninterrupted();
        if (!found->table->read(*id, row)) continue;
        for (std::size_t i = 0; i < positions.size(); ++i) {
            if (positions[i]) row.value(*positions[i], values[i]);
        }
        take(values);
    }
}

std::string text_of(const jet::Value& value) { return plain_text(value); }

std::int32_t number_of(const jet::Value& value) {
    const auto* const number = std::get_if<std::int32_t>(&value);
    return number == nullptr ? 0 : *number;
}

std::optional<std::chrono::sys_days> day_of(const jet::Value& value) {
    using namespace std::chrono;
    const auto* const date = std::get_if<jet::Date>(&value);
    constexpr int kToUnix = 25569;  // days from 1899-12-30 to 1970-01-01
    const auto in_days = [](int year_number) {
        return sys_days(year(year_number) / January / 1).time_since_epoch().count() + kToUnix;
    };
    if (date == nullptr || !(date->days >= in_days(kFirstYear) && date->days < in_days(kLastYear + 1))) {
        return std::nullopt;
    }
    constexpr double kHalfMillisecond = 0.5 / 86400000;
    return sys_days(days(static_cast<int>(std::floor(date->days + kHalfMillisecond)) - kToUnix));
}

std::string iso_text(std::chrono::sys_days day) {
    const std::chrono::year_month_day date(day);
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return text;
}

std::chrono::sys_days today() { return std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now()); }

}  // namespace tools
