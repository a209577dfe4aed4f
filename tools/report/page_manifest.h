// What the page's script has to know of the tables: names, columns, what leads to what.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "tools/export/export_table.h"

namespace tools {

// As JSON. `rows` are those that were written, by table.
std::string page_manifest(std::span<const ExportTable> tables, std::span<const std::uint64_t> rows);
// For a browser that runs no script: which tables there are, as HTML.
std::string table_list_html(std::span<const ExportTable> tables, std::span<const std::uint64_t> rows);

}  // namespace tools
