// A one-column list behind its four methods of the gate. A name is its own key, in whatever case.
#pragma once

#include "studio/lookup_lists.h"
#include "tools/gate_table.h"

namespace tools {

struct NameListMethods {
    using Method = HRESULT (STDMETHODCALLTYPE IDBgate1::*)(LPSTR);

    Method first = nullptr;
    Method next = nullptr;
    Method add = nullptr;
    Method remove = nullptr;
};

class NameListTable : public GateTable {
public:
    NameListTable(const studio::TableMapping<studio::ListName>& mapping, const NameListMethods& methods)
        : mapping_(mapping), methods_(methods) {}

    std::string name() const override { return mapping_.table; }
    Names columns() const override { return {column()}; }
    Names members() const override { return {column()}; }
    std::string key_column() const override { return column(); }
    void list(Studio& studio, const Assignments& filter, const RowVisitor& visit) const override;
    std::string statement(const Assignments& filter) const override;
    std::string statement_of(const std::string& key) const override;
    std::string add(Studio& studio, const Assignments& members) const override;
    // A list's names are added and deleted, never changed: always a UsageError.
    void set(Studio& studio, const std::string& key, const Assignments& members) const override;
    void remove(Studio& studio, const std::string& key) const override;

private:
    const char* column() const { return mapping_.read.front().name; }
    // Calls `visit` with each name until it returns false.
    template <class Visit>
    void for_each_name(Studio& studio, Visit&& visit) const;
    // The name as the list has it.
    CString find(Studio& studio, const std::string& key) const;
    // Gives a copy of the name to the method, whose parameter is no constant.
    bool call(NameListMethods::Method method, Studio& studio, const CString& text) const;

    const studio::TableMapping<studio::ListName>& mapping_;
    const NameListMethods methods_;
};

}  // namespace tools
