// Table definitions where they stand: read from and written to chains of pages, with what the catalogue's properties
// say of their columns.
//
// Invariants
//  1. A page belongs to the chain of one definition. One that is found in two is damage: it would be changed for the
//  one
//     behind the back of the other.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "jet/base/types.h"
#include "jet/schema/table_def.h"
#include "jet/storage/storage.h"

namespace jet {

class Catalog;

class DefinitionStore {
public:
    explicit DefinitionStore(Storage& storage) : storage_(storage) {}

    // The code page of the file's names, where it has one (FileHeader::text_code_page).
    void use_code_page(std::uint16_t code_page) { code_page_ = code_page; }
    std::uint16_t code_page() const { return code_page_; }

    // The catalogue to ask for properties. Its own tables have none and can be loaded before there is one.
    void use(const Catalog& catalog) { catalog_ = &catalog; }

    // The definition on `page`, its properties included. 3049 when there is none.
    TableDef load(PageNumber page, const std::u16string& name);
    // Writes the definition over the chain that begins at its page, which grows or shrinks as needed. Inside a
    // transaction, as what follows.
    void store(const TableDef& def);
    // Row count, auto-number and index statistics alone.
    void store_counts(const TableDef& def);

    // Whether the catalogue's index of names shows that the order of the column, which is one of `def`, is known.
    bool has_proved_order(const TableDef& def, const ColumnDef& column) const;

    // Pages have been taken back.
    void forget() { owners_.clear(); }

private:
    void claim(const std::vector<PageNumber>& pages);
    void apply_properties(TableDef& def) const;

    Storage& storage_;
    const Catalog* catalog_ = nullptr;
    std::uint16_t code_page_ = 0;
    std::map<PageNumber, PageNumber> owners_;  // pages of the loaded definitions, and their first pages
};

}  // namespace jet
