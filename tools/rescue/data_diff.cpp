#include "tools/rescue/data_diff.h"

#include <algorithm>
#include <map>

#include "tools/long_work.h"
#include "tools/value_text.h"

namespace tools {
namespace {

using jet::RowId;
using jet::Table;
using jet::Value;
using Kind = RowDifference::Kind;

// A row by what it is paired with.
struct Entry {
    std::uint64_t key = 0;
    RowId row;
    friend bool operator<(const Entry& a, const Entry& b) { return a.key != b.key ? a.key < b.key : a.row < b.row; }
};

std::optional<std::size_t> number_column(const Table& table) {
    const auto& columns = table.def().columns;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].is_autonumber() && columns[i].type == jet::ColumnType::kLong) return i;
    }
    return std::nullopt;
}

class TableDiff {
public:
    TableDiff(const Table& a, const Table& b, const DiffVisitor& visitor)
        : a_(a), b_(b), name_(jet::to_utf8(a.def().name)), visitor_(visitor) {
        pair_columns();
        const auto number_a = number_column(a);
        const auto number_b = number_column(b);
        if (number_a && number_b && a.def().columns[*number_a].name == b.def().columns[*number_b].name) {
            number_a_ = number_a;
            number_b_ = number_b;
        }
    }

    bool run() {
        const std::vector<Entry> left = entries(a_, number_a_, true);
        const std::vector<Entry> right = entries(b_, number_b_, false);
        LongWork work("rows compared", left.size() + right.size());
        std::size_t i = 0;
        std::size_t k = 0;
        std::size_t told = 0;
        while (i < left.size() || k < right.size()) {
            work.step(i + k - told);
            told = i + k;
            if (k == right.size() || (i < left.size() && left[i].key < right[k].key)) {
                tell_whole(a_, left[i++].row, Kind::kRemoved, number_a_);
            } else if (i == left.size() || right[k].key < left[i].key) {
                tell_whole(b_, right[k++].row, Kind::kAdded, number_b_);
            } else {
                compare(left[i++].row, right[k++].row);
            }
        }
        return is_same_;
    }

private:
    void note(const std::string& what) {
        is_same_ = false;
        visitor_.schema(name_, what);
    }

    void pair_columns() {
        const auto& columns = a_.def().columns;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const auto other = b_.def().find_column(columns[i].name);
            if (other) {
                columns_.emplace_back(i, *other);
                if (b_.def().columns[*other].type != columns[i].type) {
                    note("column " + jet::to_utf8(columns[i].name) + " is of another type");
                }
            } else {
                note("column " + jet::to_utf8(columns[i].name) + " is in the first only");
            }
        }
        for (const jet::ColumnDef& column : b_.def().columns) {
            if (!a_.def().find_column(column.name))
                note("column " + jet::to_utf8(column.name) + " is in the second only");
        }
    }

    // What a row is paired by when it has no number: a hash of all that both files have of it.
    std::uint64_t content_key(const jet::RowView& view, bool is_first) const {
        std::uint64_t hash = 14695981039346656037u;
        const auto add = [&](std::uint8_t byte) { hash = (hash ^ byte) * 1099511628211u; };
        for (const auto& [i, k] : columns_) {
            const Value value = view.value(is_first ? i : k);
            add(jet::is_null(value) ? 1 : 2);
            for (const char c : plain_text(value)) add(static_cast<std::uint8_t>(c));
        }
        return hash;
    }

    std::vector<Entry> entries(const Table& table, std::optional<std::size_t> number, bool is_first) const {
        std::vector<Entry> all;
        jet::RowView view;
        LongWork work("rows read", table.def().row_count);
        for (auto id = table.next_row({}); id; id = table.next_row(*id)) {
            work.step();
            if (!table.read(*id, view)) continue;
            std::uint64_t key = 0;
            if (number) {
                const Value value = view.value(*number);
                const auto* const stored = std::get_if<std::int32_t>(&value);
                key = stored != nullptr ? static_cast<std::uint64_t>(std::int64_t{*stored} + 0x80000001) : 0;
            } else {
                key = content_key(view, is_first);
            }
            all.push_back({key, *id});
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    static std::optional<std::int32_t> key_of(const jet::RowView& view, std::optional<std::size_t> number) {
        if (!number) return std::nullopt;
        const Value value = view.value(*number);
        const auto* const stored = std::get_if<std::int32_t>(&value);
        return stored != nullptr ? std::optional(*stored) : std::nullopt;
    }

    void tell_whole(const Table& table, RowId row, Kind kind, std::optional<std::size_t> number) {
        is_same_ = false;
        jet::RowView view;
        if (!table.read(row, view)) return;
        RowDifference difference{kind, name_, key_of(view, number), {}};
        for (std::size_t i = 0; i < table.def().columns.size(); ++i) {
            Value value = view.value(i);
            if (jet::is_null(value) || number == i) continue;
            ChangedValue told{jet::to_utf8(table.def().columns[i].name), {}, {}};
            (kind == Kind::kAdded ? told.after : told.before) = std::move(value);
            difference.values.push_back(std::move(told));
        }
        visitor_.row(difference);
    }

    void compare(RowId left, RowId right) {
        jet::RowView before;
        jet::RowView after;
        if (!a_.read(left, before) || !b_.read(right, after)) return;
        RowDifference difference{Kind::kChanged, name_, key_of(before, number_a_), {}};
        for (const auto& [i, k] : columns_) {
            Value old_value = before.value(i);
            Value new_value = after.value(k);
            if (old_value == new_value) continue;
            difference.values.push_back(
                {jet::to_utf8(a_.def().columns[i].name), std::move(old_value), std::move(new_value)});
        }
        if (difference.values.empty()) return;
        is_same_ = false;
        visitor_.row(difference);
    }

    const Table& a_;
    const Table& b_;
    std::string name_;
    const DiffVisitor& visitor_;
    std::vector<std::pair<std::size_t, std::size_t>> columns_;  // positions of what both have
    std::optional<std::size_t> number_a_;
    std::optional<std::size_t> number_b_;
    bool is_same_ = true;
};

}  // namespace

bool diff_databases(const OpenedFile& a, const OpenedFile& b, const DiffVisitor& visitor) {
    bool is_same = true;
    const auto in_one = [&](const Table& table, const char* which) {
        is_same = false;
        visitor.schema(jet::to_utf8(table.def().name), std::string("is in the ") + which + " only, with " +
                                                           std::to_string(table.def().row_count) + " rows");
    };
    for (const Table* const left : readable_tables(a)) {
        const TableLook right = look_at_table(b, left->def().name);
        if (right.is_damaged) continue;
        if (right.table == nullptr) {
            in_one(*left, "first");
        } else {
            is_same = TableDiff(*left, *right.table, visitor).run() && is_same;
        }
    }
    for (const Table* const right : readable_tables(b)) {
        const TableLook left = look_at_table(a, right->def().name);
        if (left.table == nullptr && !left.is_damaged) in_one(*right, "second");
    }
    return is_same;
}

}  // namespace tools
