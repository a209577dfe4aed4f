// The filter of an enumeration, set from words: which members a table's declaration looks at, by what name they
// go, and what has to be set beside them.
//
// A member goes by the name of its column. One that only filters goes by what it does to the clause's column:
// SearchName, FromDate, ToDate. A date of a filter switches its clause on; a span that lacks a bound is open there.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "studio/record_table.h"
#include "tools/gate_table.h"
#include "tools/member_text.h"

namespace tools {

template <class Record>
class RecordFilter {
public:
    explicit RecordFilter(const studio::TableMapping<Record>& mapping) : mapping_(mapping) {
        if (mapping.filter_rule == studio::FilterRule::kKeyBeforeClauses)
            add_number(mapping.key.column, mapping.key.member);
        for (const studio::Clause<Record>& clause : mapping.filter) add(clause);
    }

    Names names() const {
        Names names;
        for (const Member& member : members_) names.push_back(member.name);
        return names;
    }

    // The record with which the enumeration begins.
    Record record(const Assignments& assignments) const {
        Record record;
        for (const Assignment& assignment : assignments) set(record, assignment);
        if (mapping_.filter_rule == studio::FilterRule::kParent && !is_given(members_.front(), assignments)) {
            const std::string& parent = members_.front().name;
            throw UsageError(std::string(mapping_.table) + " is listed by " + parent + ": --filter " + parent + "=N");
        }
        for (const studio::Clause<Record>& clause : mapping_.filter) {
            if (clause.form == Form::kOrderedSpan) complete_span(record, clause);
        }
        return record;
    }

private:
    using Form = typename studio::Clause<Record>::Form;

    struct Member {
        std::string name;
        studio::Column<Record> column;  // its kind and place; the name is above
        DWORD Record::*flags = nullptr;
        DWORD bit = 0;
    };

    template <class Type>
    std::string name_of(Type Record::*member, Type Record::*studio::Column<Record>::*place,
                        const std::string& otherwise) const {
        for (const auto columns : {mapping_.read, mapping_.enum_read}) {
            for (const studio::Column<Record>& column : columns) {
                if (column.*place == member) return column.name;
            }
        }
        return otherwise;
    }

    void add(const studio::Clause<Record>& clause) {
        const std::string column = clause.column;
        if (clause.number != nullptr) {
            add_number(name_of(clause.number, &studio::Column<Record>::number, column), clause.number);
        }
        if (clause.text != nullptr) {
            const std::string name = name_of(clause.text, &studio::Column<Record>::text, "Search" + column);
            add({.name = name, .column = studio::column::text("", clause.text)});
        }
        add_date(clause, clause.from, (clause.form == Form::kOnOrBefore ? "To" : "From") + column);
        add_date(clause, clause.to, "To" + column);
    }
    void add_number(const std::string& name, LONG Record::*member) {
        add({.name = name, .column = studio::column::integer("", member)});
    }
    void add_date(const studio::Clause<Record>& clause, CTime Record::*member, const std::string& otherwise) {
        if (member == nullptr) return;
        add({.name = name_of(member, &studio::Column<Record>::time, otherwise),
             .column = studio::column::date("", member),
             .flags = clause.flags,
             .bit = clause.bit});
    }
    void add(Member member) {
        const bool is_there =
            std::any_of(members_.begin(), members_.end(), [&](const Member& m) { return m.name == member.name; });
        if (!is_there) members_.push_back(std::move(member));
    }

    static bool is_given(const Member& member, const Assignments& assignments) {
        return std::any_of(assignments.begin(), assignments.end(),
                           [&](const Assignment& assignment) { return is_same_name(assignment.member, member.name); });
    }

    void set(Record& record, const Assignment& assignment) const {
        for (const Member& member : members_) {
            if (!is_same_name(member.name, assignment.member)) continue;
            studio::Column<Record> column = member.column;
            column.name = member.name.c_str();
            if (column.time != nullptr && assignment.value.empty()) throw UsageError(member.name + " needs a date");
            parse(assignment.value, column, record);
            if (member.flags != nullptr) record.*member.flags |= member.bit;
            return;
        }
        throw UsageError(std::string(mapping_.table) + " is not filtered by '" + assignment.member + "'" +
                         (members_.empty() ? ", nor by anything else" : "; it is by " + listed(names())));
    }

    static void complete_span(Record& record, const studio::Clause<Record>& clause) {
        const CTime unset;
        const bool has_bound = record.*clause.from != unset || record.*clause.to != unset;
        if (clause.number != nullptr && record.*clause.number == 0 && has_bound) record.*clause.number = clause.mode;
        if (!clause.applies(record)) return;
        // The first and the last day that every zone can tell.
        if (record.*clause.from == unset) record.*clause.from = CTime(1970, 1, 2, 0, 0, 0);
        if (record.*clause.to == unset) record.*clause.to = CTime(2038, 1, 18, 0, 0, 0);
    }

    const studio::TableMapping<Record>& mapping_;
    std::vector<Member> members_;
};

}  // namespace tools
