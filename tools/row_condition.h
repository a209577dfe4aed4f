// Conditions on rows as a user types them: COLUMN=VALUE, and with !=, <, <=, >, >= and ~ (contains).
//
// A date stands for all of its span: 2026-03 is a month, and Date=2026-03 holds on each of its days. A..B is a span
// with both ends, of dates and of numbers. Text is compared without regard to case. Nothing after = asks for an empty
// column.
#pragma once

#include <optional>
#include <string>

#include "jet/schema/table_def.h"

namespace tools {

class RowCondition {
public:
    enum class Comparison { kEqual, kNotEqual, kLess, kLessOrEqual, kGreater, kGreaterOrEqual, kContains };

    // UsageError for a word that is no condition, names no column of the table, or has a value that its column cannot
    // hold.
    RowCondition(const jet::TableDef& table, const std::string& word);

    // In the table's columns.
    std::size_t position() const { return position_; }
    bool holds(const jet::Value& value) const;

private:
    // A number or a date: what lies between the two is equal.
    struct Span {
        double first = 0;
        double last = 0;
        bool includes_last = true;  // a span of time ends before its last
    };

    void parse_value(const jet::ColumnDef& column, const std::string& text);
    bool holds_for_number(double number) const;

    std::size_t position_ = 0;
    Comparison comparison_ = Comparison::kEqual;
    std::u16string text_;
    std::optional<Span> span_;
};

// The place of `part` in `text` without regard to case; none where it is not.
std::optional<std::size_t> find_text(std::u16string_view text, std::u16string_view part, std::size_t from = 0);

// Days since 1899-12-30 on a line on which later is more: the first moment of what the text names, and the first after
// it. YYYY, YYYY-MM, YYYY-MM-DD, and the last with THH:MM or THH:MM:SS. None for other text.
struct TimeSpan {
    double begin = 0;
    double end = 0;
};
std::optional<TimeSpan> parse_time_span(const std::string& text);

}  // namespace tools
