#include "tools/name_list_table.h"

#include "tools/member_text.h"

namespace tools {

std::vector<CString> NameListTable::names(Studio& studio) const {
    IDBgate1& gate = studio.open();
    std::vector<CString> names;
    char buffer[studio::kListNameSize];
    for (HRESULT result = (gate.*methods_.first)(buffer); SUCCEEDED(result); result = (gate.*methods_.next)(buffer)) {
        names.emplace_back(buffer);
    }
    return names;
}

std::vector<Row> NameListTable::list(Studio& studio, const Assignments& filter) const {
    if (!filter.empty()) throw UsageError(name() + " is a list of names and has no filter");
    std::vector<Row> rows;
    for (const CString& entry : names(studio)) rows.push_back({shown(entry)});
    return rows;
}

CString NameListTable::find(Studio& studio, const std::string& key) const {
    CString wanted;
    parse(column(), key, wanted);
    for (const CString& entry : names(studio)) {
        if (entry.CompareNoCase(wanted) == 0) return entry;
    }
    throw CommandError("there is no '" + key + "' in " + name());
}

Row NameListTable::show(Studio& studio, const std::string& key) const { return {shown(find(studio, key))}; }

HRESULT NameListTable::call(NameListMethods::Method method, Studio& studio, const CString& text) const {
    std::string buffer = text.GetString();
    return (studio.open().*method)(buffer.data());
}

std::string NameListTable::add(Studio& studio, const Assignments& members) const {
    if (members.size() != 1 || !is_same_name(members[0].member, column())) {
        throw UsageError(name() + " is a list of names: " + column() + "=TEXT and nothing else");
    }
    CString text;
    parse(column(), members[0].value, text);
    if (FAILED(call(methods_.add, studio, text)))
        throw CommandError("'" + members[0].value + "' could not be added to " + name());
    return members[0].value;
}

void NameListTable::set(Studio&, const std::string&, const Assignments&) const {
    throw UsageError("the names of " + name() + " are added and deleted, not changed");
}

void NameListTable::remove(Studio& studio, const std::string& key) const {
    if (FAILED(call(methods_.remove, studio, find(studio, key)))) {
        throw CommandError("'" + key + "' could not be deleted from " + name());
    }
}

}  // namespace tools
