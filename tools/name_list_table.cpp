#include "tools/name_list_table.h"

#include "tools/column_limits.h"
#include "tools/gate_call.h"
#include "tools/member_text.h"

namespace tools {

template <class Visit>
void NameListTable::for_each_name(Studio& studio, Visit&& visit) const {
    IDBgate1& gate = studio.open();
    char buffer[studio::kListNameSize];
    bool goes_on = succeeds([&] { return (gate.*methods_.first)(buffer); });
    while (goes_on && visit(CString(buffer))) goes_on = succeeds([&] { return (gate.*methods_.next)(buffer); });
    if (!goes_on) require_no_engine_error(studio.open());
}

void NameListTable::list(Studio& studio, const Assignments& filter, const RowVisitor& visit) const {
    statement(filter);
    for_each_name(studio, [&](const CString& entry) { return visit({shown(entry)}); });
}

CString NameListTable::find(Studio& studio, const std::string& key) const {
    CString wanted;
    parse(column(), key, wanted);
    CString found;
    bool is_found = false;
    for_each_name(studio, [&](const CString& entry) {
        is_found = entry.CompareNoCase(wanted) == 0;
        if (is_found) found = entry;
        return !is_found;
    });
    if (!is_found) throw CommandError("there is no '" + key + "' in " + name());
    return found;
}

std::string NameListTable::statement(const Assignments& filter) const {
    if (!filter.empty()) throw UsageError(name() + " is a list of names and has no filter");
    return studio::whole_table(mapping_.table);
}

std::string NameListTable::statement_of(const std::string& key) const {
    CString wanted;
    parse(column(), key, wanted);
    return studio::rows_named(mapping_.table, column(), wanted.GetString());
}

bool NameListTable::call(NameListMethods::Method method, Studio& studio, const CString& text) const {
    std::string buffer = text.GetString();
    IDBgate1& gate = studio.open();
    return succeeds([&] { return (gate.*method)(buffer.data()); });
}

std::string NameListTable::add(Studio& studio, const Assignments& members) const {
    if (members.size() != 1 || !is_same_name(members[0].member, column())) {
        throw UsageError(name() + " is a list of names: " + column() + "=TEXT and nothing else");
    }
    CString text;
    parse(column(), members[0].value, text);
    require_fits(name(), column(), text);
    if (!call(methods_.add, studio, text)) {
        throw CommandError(gate_words(studio.open()));
    }
    return members[0].value;
}

void NameListTable::set(Studio&, const std::string&, const Assignments&) const {
    throw UsageError("the names of " + name() + " are added and deleted, not changed");
}

void NameListTable::remove(Studio& studio, const std::string& key) const {
    if (!call(methods_.remove, studio, find(studio, key))) {
        throw CommandError(gate_words(studio.open()));
    }
}

}  // namespace tools
