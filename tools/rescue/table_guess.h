// Which of a studio's tables something is: by its columns, by its rows, by its place in the order of creation.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/schema/table_def.h"
#include "tools/rescue/known_layouts.h"

namespace tools {

// Whether the names of the columns are those of the table, in one of its layouts.
bool has_columns_of(const jet::TableDef& def, const StudioForm& form, const db::TableSchema& table);
// Whether the definition is one of the table's layouts, names and all.
bool is_known_layout(const jet::TableDef& def, const StudioForm& form, const db::TableSchema& table);
// The layout that lies in a row exactly as the definition does, with most of the names; null for none.
const KnownLayout* twin_layout(const jet::TableDef& def, const StudioForm& form, const db::TableSchema& table);

// One that files of the version have; null where they have no such table.
const KnownLayout* layout_of_version(const StudioForm& form, const db::TableSchema& table, std::int32_t version);

// How many of the rows are exactly rows of the definition, 0 to 1; 0 without rows.
double share_of_rows(const std::vector<jet::ByteVector>& rows, const jet::TableDef& def);

struct LayoutGuess {
    const KnownLayout* layout = nullptr;
    double share = 0;
};
// The table's layout that most of the rows are in; of several, one that files of the version have.
LayoutGuess best_layout(const std::vector<jet::ByteVector>& rows, const StudioForm& form, const db::TableSchema& table,
                        std::int32_t version);

inline constexpr std::size_t kNoMatch = static_cast<std::size_t>(-1);
// For each of `things` the candidate that it is, or kNoMatch: both in their order, so that the worth of all matches is
// the highest. A worth of 0 is no match.
std::vector<std::size_t> match_in_order(std::size_t things, std::size_t candidates,
                                        const std::function<double(std::size_t thing, std::size_t candidate)>& worth);

}  // namespace tools
