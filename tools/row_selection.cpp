#include "tools/row_selection.h"

#include <algorithm>

#include "tools/errors.h"
#include "tools/row_scan.h"

namespace tools {

Names split_list(const std::string& text) {
    Names names;
    std::size_t begin = 0;
    while (begin <= text.size()) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        std::string name = text.substr(begin, end - begin);
        name.erase(0, name.find_first_not_of(' '));
        name.erase(name.find_last_not_of(' ') + 1);
        if (!name.empty()) names.push_back(name);
        begin = end + 1;
    }
    return names;
}

RowSelection::RowSelection(jet::Database& database, jet::Table& table, const SelectionOptions& options,
                           const Names& columns)
    : database_(database), table_(table) {
    for (const std::string& word : options.where) conditions_.emplace_back(table.def(), word);
    add_span(options);
    if (options.columns) {
        const Names chosen = split_list(*options.columns);
        if (chosen.empty()) throw UsageError("--columns names no column");
        for (const std::string& name : chosen) position_of(name);
        choose_columns(chosen);
    } else if (!columns.empty()) {
        choose_columns(columns);
    } else {
        Names all;
        for (const jet::ColumnDef& column : table.def().columns) all.push_back(jet::to_utf8(column.name));
        choose_columns(all);
    }
    if (options.sort) parse_order(*options.sort);
    if (options.limit) {
        if (*options.limit < 0)
            throw UsageError("--limit takes a number from 0, not " + std::to_string(*options.limit));
        limit_ = static_cast<std::size_t>(*options.limit);
    }
}

std::size_t RowSelection::position_of(const std::string& column) const {
    const jet::TableDef& def = table_.def();
    if (const auto position = def.find_column(jet::from_utf8(column))) return *position;
    Names names;
    for (const jet::ColumnDef& candidate : def.columns) names.push_back(jet::to_utf8(candidate.name));
    const std::string hint = suggestion(column, names);
    throw UsageError(jet::to_utf8(def.name) + " has no column '" + column + "'" +
                     (hint.empty() ? "; it has " + listed(names) : hint));
}

void RowSelection::choose_columns(const Names& columns) {
    for (const std::string& name : columns) {
        const auto position = table_.def().find_column(jet::from_utf8(name));
        names_.push_back(position ? jet::to_utf8(table_.def().columns[*position].name) : name);
        positions_.push_back(position);
    }
}

void RowSelection::parse_order(const std::string& text) {
    const Names names = split_list(text);
    if (names.empty()) throw UsageError("--sort names no column");
    for (std::string name : names) {
        const bool descending = name.front() == '-';
        if (descending || name.front() == '+') name.erase(0, 1);
        if (name.empty()) throw UsageError("--sort has a sign without a column");
        order_.push_back({position_of(name), descending});
    }
}

void RowSelection::add_span(const SelectionOptions& options) {
    if (!options.from && !options.to) return;
    const jet::TableDef& def = table_.def();
    const auto dates = std::find_if(def.columns.begin(), def.columns.end(),
                                    [](const jet::ColumnDef& column) { return column.type == jet::ColumnType::kDate; });
    if (dates == def.columns.end()) {
        throw UsageError(jet::to_utf8(def.name) + " has no dates; --from and --to do not go with it");
    }
    const std::string name = jet::to_utf8(dates->name);
    if (options.from) conditions_.emplace_back(def, name + ">=" + *options.from);
    if (options.to) conditions_.emplace_back(def, name + "<=" + *options.to);
}

bool RowSelection::matches(const jet::RowView& row) const {
    return std::all_of(conditions_.begin(), conditions_.end(),
                       [&](const RowCondition& condition) { return condition.holds(row.value(condition.position())); });
}

Row RowSelection::row_of(const jet::RowView& row) const {
    Row values;
    values.reserve(positions_.size());
    for (const auto position : positions_) values.push_back(position ? row.value(*position) : jet::Null{});
    return values;
}

void RowSelection::for_each(const RowVisitor& visit, const std::string& statement) const {
    std::optional<jet::sql::Query> query;
    if (!statement.empty()) query = jet::sql::Query::prepare(database_, jet::from_utf8(statement));
    const bool has_condition = query && query->has_condition();
    RowScan scan{
        .table = table_,
        .matches = [&](const jet::RowView& row) { return (!has_condition || query->matches(row)) && matches(row); },
        .order = order_,
        .limit = limit_};
    if (query) scan.order.insert(scan.order.end(), query->order().begin(), query->order().end());
    scan.for_each([&](const jet::RowView& row) { return visit(row_of(row)); });
}

}  // namespace tools
