// What is left of a file's definitions and of its catalogue, each read on its own.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "jet/schema/table_def.h"
#include "tools/rescue/found_page.h"
#include "tools/rescue/page_source.h"

namespace tools {

struct FoundObject {
    std::u16string name;
    std::int16_t type = 0;  // as jet::CatalogEntry has it
    std::uint32_t flags = 0;
    jet::ByteVector properties;  // the reference to the long value
    bool is_system() const { return (flags & jet::jet4::kSystemObjectFlags) != 0; }
};

// Objects of the container of tables by their identity, which is a table's first page.
using FoundCatalogue = std::map<jet::PageNumber, FoundObject>;

// Whether the page begins a definition, or goes on with one.
bool is_definition_page(jet::ByteSpan bytes);
// By first page: every definition that can be read.
std::map<jet::PageNumber, jet::TableDef> read_definitions(const PageSource& pages,
                                                          const std::vector<jet::PageNumber>& definition_pages);

// The definition of the catalogue itself as every file has it.
jet::TableDef definition_of_catalogue();
// `row_pages` are the pages of its rows.
FoundCatalogue read_catalogue(const PageSource& pages, const std::vector<jet::PageNumber>& row_pages,
                              const std::map<jet::PageNumber, jet::TableDef>& definitions);

}  // namespace tools
