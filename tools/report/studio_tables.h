// The tables of an export by their names, and some columns of their rows: what the pictures are drawn from.
#pragma once

#include <chrono>
#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>

#include "tools/export/export_table.h"

namespace tools {

class StudioTables {
public:
    using Values = std::span<const jet::Value>;

    explicit StudioTables(std::span<const ExportTable> tables) : tables_(tables) {}

    bool has(const char* table) const { return find(table) != nullptr; }
    // Each row's values of the columns; Null for a column that the table does not have. Nothing where there is no such
    // table. CommandError when the command is interrupted.
    void each(const char* table, std::initializer_list<const char*> columns,
              const std::function<void(Values)>& take) const;

private:
    const ExportTable* find(const char* table) const;

    std::span<const ExportTable> tables_;
};

// "" for Null.
std::string text_of(const jet::Value& value);
// 0 for anything but a whole number.
std::int32_t number_of(const jet::Value& value);

// Outside of these years a date is a slip, and no picture has room for it.
inline constexpr int kFirstYear = 1900;
inline constexpr int kLastYear = 2199;

// Nothing for Null, and for what lies outside of the years above.
std::optional<std::chrono::sys_days> day_of(const jet::Value& value);
std::string iso_text(std::chrono::sys_days day);
// The day on which the page is made.
std::chrono::sys_days today();

}  // namespace tools
