// A table of records behind the gate's six methods, driven by the declaration from which the component itself
// works.
#pragma once

#include <algorithm>

#include "db/schema.h"
#include "tools/column_limits.h"
#include "tools/gate_call.h"
#include "tools/record_filter.h"

namespace tools {

// The methods of one table. Deletion goes by the record or, where the gate takes it so, by the key alone.
template <class Gate>
struct RecordMethods {
    using Method = HRESULT (STDMETHODCALLTYPE Gate::*)(LONG_PTR);
    using KeyMethod = HRESULT (STDMETHODCALLTYPE Gate::*)(LONG);

    Method first = nullptr;
    Method next = nullptr;
    Method find = nullptr;
    Method add = nullptr;
    Method update = nullptr;
    Method remove = nullptr;
    KeyMethod remove_key = nullptr;
};

template <class Gate, class Record>
class TypedGateTable : public GateTable {
public:
    TypedGateTable(const studio::TableMapping<Record>& mapping, const RecordMethods<Gate>& methods)
        : mapping_(mapping), methods_(methods) {}

    std::string name() const override { return mapping_.table; }

    Names columns() const override { return names_of(shown_columns()); }

    Names members() const override { return names_of(mapping_.write); }

    std::string key_column() const override { return mapping_.key.column; }

    void list(Studio& studio, const Assignments& filter, const RowVisitor& visit) const override {
        Record record = RecordFilter<Record>(mapping_).record(filter);
        Gate& gate = opened_gate<Gate>(studio);
        bool goes_on = succeeds([&] { return (gate.*methods_.first)(address_of(record)); });
        while (goes_on && visit(row_of(record))) {
            goes_on = succeeds([&] { return (gate.*methods_.next)(address_of(record)); });
        }
        if (!goes_on && !is_left_out(afx::last_error().number)) require_no_engine_error(gate);
    }

    std::string statement(const Assignments& filter) const override {
        if (filter.empty()) return studio::whole_table(mapping_.table);
        const Record record = RecordFilter<Record>(mapping_).record(filter);
        return mapping_.statement(&record);
    }

    std::string statement_of(const std::string& key) const override {
        const LONG number = parse_number("the key of " + name(), key);
        return number == 0 ? std::string() : studio::rows_where(mapping_.table, mapping_.key.column, number);
    }

    std::string add(Studio& studio, const Assignments& members) const override {
        Record record;
        for (const studio::Column<Record>& column : mapping_.write) {
            if (column.time != nullptr) record.*column.time = CTime(-1);  // no date rather than 1970
        }
        assign(record, members);
        require_fits(record);
        Gate& gate = opened_gate<Gate>(studio);
        if (!succeeds([&] { return (gate.*methods_.add)(address_of(record)); })) {
            throw CommandError(gate_words(gate));
        }
        // A name that the table holds once is there already: a success of the gate that adds nothing.
        if (record.*mapping_.key.member == 0)
            throw CommandError("there is a row of this name in " + name() + " already");
        return std::to_string(record.*mapping_.key.member);
    }

    void set(Studio& studio, const std::string& key, const Assignments& members) const override {
        Record checked;
        assign(checked, members);
        Record record = find(studio, key);
        assign(record, members);
        require_keeps(record, key);
        Gate& gate = opened_gate<Gate>(studio);
        if (!succeeds([&] { return (gate.*methods_.update)(address_of(record)); })) {
            throw CommandError(gate_words(gate));
        }
    }

    void remove(Studio& studio, const std::string& key) const override {
        Record record = find(studio, key);
        Gate& gate = opened_gate<Gate>(studio);
        const bool is_deleted = succeeds([&] {
            return methods_.remove_key != nullptr ? (gate.*methods_.remove_key)(record.*mapping_.key.member)
                                                  : (gate.*methods_.remove)(address_of(record));
        });
        if (!is_deleted) throw CommandError(gate_words(gate));
    }

private:
    using Columns = std::span<const studio::Column<Record>>;

    // What an enumeration reads is at times more than what a search reads; the rest is then known beforehand.
    Columns shown_columns() const { return mapping_.enum_read.empty() ? mapping_.read : mapping_.enum_read; }

    static Names names_of(Columns columns) {
        Names names;
        for (const studio::Column<Record>& column : columns) names.push_back(column.name);
        return names;
    }

    Row row_of(const Record& record) const {
        Row row;
        for (const studio::Column<Record>& column : shown_columns()) row.push_back(shown(record, column));
        return row;
    }

    // The row with this key. A search without a key would go by whatever else is set, so key 0 is never asked for.
    Record find(Studio& studio, const std::string& key) const {
        Record record;
        record.*mapping_.key.member = parse_number("the key of " + name(), key);
        Gate& gate = opened_gate<Gate>(studio);
        if (record.*mapping_.key.member != 0) {
            if (succeeds([&] { return (gate.*methods_.find)(address_of(record)); })) return record;
            if (!is_left_out(afx::last_error().number)) require_no_engine_error(gate);
        }
        throw CommandError("there is no row " + key + " in " + name());
    }

    // Used where a file has it, but part of no new one: a table that is not there has no rows.
    bool is_left_out(int error_number) const {
        return error_number == jet::errors::kNoSuchTable && is_same_name(name(), db::engineers_table().name);
    }

    // What is not given is empty, and at times that is no value of the column either.
    void require_fits(const Record& record) const {
        for (const studio::Column<Record>& column : mapping_.write) {
            if (column.text != nullptr) tools::require_fits(name(), column.name, record.*column.text);
        }
    }

    // A change writes all members of the row as they were read. One that does not come through that must not be lost.
    void require_keeps(const Record& record, const std::string& key) const {
        require_fits(record);
        for (const studio::Column<Record>& column : mapping_.write) {
            if (column.amount == nullptr) continue;
            const float amount = record.*column.amount;
            if (is_kept(amount, amount, column.conversion)) continue;
            throw CommandError("row " + key + " of " + name() + " holds an amount in " + column.name +
                               " that writing would change; set " + column.name + " as well");
        }
    }

    std::string no_member_text(const std::string& member) const {
        if (is_same_name(member, mapping_.key.column)) {
            return std::string(mapping_.key.column) + " is the key of " + name() + ", which the studio gives itself";
        }
        const Names members = names_of(mapping_.write);
        const std::string hint = suggestion(member, members);
        return name() + " has no member '" + member + "' to set" +
               (hint.empty() ? "; it has " + listed(members) : hint);
    }

    void assign(Record& record, const Assignments& members) const {
        for (const Assignment& assignment : members) {
            const auto column = std::find_if(mapping_.write.begin(), mapping_.write.end(), [&](const auto& candidate) {
                return is_same_name(candidate.name, assignment.member);
            });
            if (column == mapping_.write.end()) {
                throw UsageError(no_member_text(assignment.member));
            }
            parse(assignment.value, *column, record);
        }
    }

    const studio::TableMapping<Record>& mapping_;
    const RecordMethods<Gate> methods_;
};

}  // namespace tools
