#include "tools/row_selection.h"

#include <algorithm>

#include "jet/sql/row_set.h"
#include "jet/sql/scalar.h"
#include "tools/errors.h"
#include "tools/progress.h"

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
    for (std::string name : split_list(text)) {
        const bool descending = name.front() == '-';
        if (descending || name.front() == '+') name.erase(0, 1);
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

template <class Visit>
void RowSelection::for_each_match(const std::string& statement, Visit&& visit) const {
    Progress progress("rows", table_.def().row_count);
    jet::RowView row;
    const auto take = [&](jet::RowId id) {
        progress.step();
        return !table_.read(id, row) || !matches(row) || visit(id, row);
    };
    if (statement.empty()) {
        for (auto id = table_.next_row({}); id && take(*id);) id = table_.next_row(*id);
        return;
    }
    jet::sql::RowSet rows(jet::sql::Query::prepare(database_, jet::from_utf8(statement)));
    for (auto id = rows.first(); id && take(*id);) id = rows.next();
}

std::vector<jet::RowId> RowSelection::sorted(const std::string& statement) const {
    struct Entry {
        std::vector<jet::Value> keys;
        jet::RowId row;
    };
    std::vector<Entry> entries;
    for_each_match(statement, [&](jet::RowId id, const jet::RowView& row) {
        Entry& entry = entries.emplace_back();
        entry.row = id;
        for (const Order& order : order_) entry.keys.push_back(row.value(order.position));
        return true;
    });
    const auto is_before = [&](const Entry& a, const Entry& b) {
        for (std::size_t i = 0; i < order_.size(); ++i) {
            const auto result = jet::sql::compare_for_order(a.keys[i], b.keys[i]);
            if (result != 0) return order_[i].descending ? result > 0 : result < 0;
        }
        return false;
    };
    std::stable_sort(entries.begin(), entries.end(), is_before);
    std::vector<jet::RowId> rows;
    for (const Entry& entry : entries) rows.push_back(entry.row);
    return rows;
}

void RowSelection::for_each(const RowVisitor& visit, const std::string& statement) const {
    std::size_t given = 0;
    if (limit_ && *limit_ == 0) return;
    const auto give = [&](const jet::RowView& row) {
        ++given;
        return visit(row_of(row)) && (!limit_ || given < *limit_);
    };
    if (order_.empty()) {
        for_each_match(statement, [&](jet::RowId, const jet::RowView& row) { return give(row); });
        return;
    }
    jet::RowView row;
    for (const jet::RowId id : sorted(statement)) {
        if (table_.read(id, row) && !give(row)) return;
    }
}

}  // namespace tools
