#include "tools/rescue/table_guess.h"

#include <algorithm>
#include <set>

#include "jet/storage/row_codec.h"
#include "tools/rescue/found_row.h"

namespace tools {
namespace {

using jet::ColumnDef;
using jet::TableDef;

bool lies_like(const ColumnDef& a, const ColumnDef& b) {
    if (a.type != b.type || a.number != b.number || a.is_fixed() != b.is_fixed()) return false;
    return a.is_fixed() ? a.fixed_offset == b.fixed_offset : a.variable_index == b.variable_index;
}

// How many of the columns have the same name and the same place; none where the places differ.
std::optional<std::size_t> same_names(const TableDef& a, const TableDef& b) {
    if (a.columns.size() != b.columns.size() || a.max_columns != b.max_columns) return std::nullopt;
    std::size_t same = 0;
    for (const ColumnDef& column : a.columns) {
        const auto position = b.column_by_number(column.number);
        if (!position || !lies_like(column, b.columns[*position])) return std::nullopt;
        const ColumnDef& other = b.columns[*position];
        if (other.name == column.name && other.is_autonumber() == column.is_autonumber()) ++same;
    }
    return same;
}

bool is_of(const KnownLayout& layout, std::int32_t version) {
    return std::find(layout.versions.begin(), layout.versions.end(), version) != layout.versions.end();
}

// How many of the texts in the column that held dates once are made of digits and separators, 0 to 1.
double date_share(const std::vector<jet::ByteVector>& rows, const TableDef& def) {
    const auto column = def.find_column(u"Date");
    if (!column || def.columns[*column].type != jet::ColumnType::kText) return 0;
    std::size_t texts = 0;
    std::size_t dates = 0;
    std::u16string text;
    for (const jet::ByteVector& bytes : rows) {
        const FoundRow row = take_apart(bytes, def);
        if (row.fit == Fit::kNone || !row.stored[*column]) continue;
        jet::decode_column_text(*row.stored[*column], def.columns[*column], text);
        ++texts;
        const bool is_date = std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= u'-' && c <= u'9'; });
        if (is_date && text.size() >= 6) ++dates;
    }
    return texts == 0 ? 0 : static_cast<double>(dates) / static_cast<double>(texts);
}

template <class Visit>
void for_each_layout(const StudioForm& form, const db::TableSchema& table, Visit&& visit) {
    for (const KnownLayout& layout : known_layouts(form)) {
        if (layout.table == &table) visit(layout);
    }
}

}  // namespace

bool has_columns_of(const TableDef& def, const StudioForm& form, const db::TableSchema& table) {
    std::set<std::u16string> names;
    for (const ColumnDef& column : def.columns) names.insert(column.name);
    bool found = false;
    for_each_layout(form, table, [&](const KnownLayout& layout) {
        std::set<std::u16string> wanted;
        for (const ColumnDef& column : layout.def.columns) wanted.insert(column.name);
        found = found || names == wanted;
    });
    return found;
}

bool is_known_layout(const TableDef& def, const StudioForm& form, const db::TableSchema& table) {
    bool found = false;
    for_each_layout(form, table, [&](const KnownLayout& layout) {
        found = found || same_names(def, layout.def) == layout.def.columns.size();
    });
    return found;
}

const KnownLayout* twin_layout(const TableDef& def, const StudioForm& form, const db::TableSchema& table) {
    const KnownLayout* twin = nullptr;
    for_each_layout(form, table, [&](const KnownLayout& layout) {
        const auto same = same_names(def, layout.def);
        if (same && 10 * *same >= 7 * layout.def.columns.size()) twin = &layout;
    });
    return twin;
}

const KnownLayout* layout_of_version(const StudioForm& form, const db::TableSchema& table, std::int32_t version) {
    const KnownLayout* found = nullptr;
    for_each_layout(form, table, [&](const KnownLayout& layout) {
        if (found == nullptr && is_of(layout, version)) found = &layout;
    });
    return found;
}

double share_of_rows(const std::vector<jet::ByteVector>& rows, const TableDef& def) {
    if (rows.empty()) return 0;
    const auto exact = std::count_if(rows.begin(), rows.end(),
                                     [&](const jet::ByteVector& r) { return take_apart(r, def).fit == Fit::kExact; });
    return static_cast<double>(exact) / static_cast<double>(rows.size());
}

LayoutGuess best_layout(const std::vector<jet::ByteVector>& rows, const StudioForm& form, const db::TableSchema& table,
                        std::int32_t version) {
    // Rows of before a column was added fit the layouts of after it as well.
    constexpr double kOfTheVersion = 0.02;
    constexpr double kOfTheDates = 0.01;
    LayoutGuess best;
    double worth = 0;
    for_each_layout(form, table, [&](const KnownLayout& layout) {
        const double share = share_of_rows(rows, layout.def);
        if (share <= 0) return;
        const double own =
            share + (is_of(layout, version) ? kOfTheVersion : 0) + kOfTheDates * date_share(rows, layout.def);
        if (own <= worth) return;
        worth = own;
        best = {&layout, share};
    });
    return best;
}

std::vector<std::size_t> match_in_order(std::size_t things, std::size_t candidates,
                                        const std::function<double(std::size_t, std::size_t)>& worth) {
    // best[i][k]: the worth of matching the first i things with the first k candidates.
    std::vector<std::vector<double>> best(things + 1, std::vector<double>(candidates + 1));
    std::vector<std::vector<double>> single(things, std::vector<double>(candidates));
    for (std::size_t i = 1; i <= things; ++i) {
        for (std::size_t k = 1; k <= candidates; ++k) {
            single[i - 1][k - 1] = worth(i - 1, k - 1);
            best[i][k] = std::max(best[i - 1][k], best[i][k - 1]);
            if (single[i - 1][k - 1] > 0) best[i][k] = std::max(best[i][k], best[i - 1][k - 1] + single[i - 1][k - 1]);
        }
    }
    std::vector<std::size_t> matched(things, kNoMatch);
    for (std::size_t i = things, k = candidates; i > 0 && k > 0;) {
        if (best[i][k] == best[i - 1][k]) {
            --i;
        } else if (best[i][k] == best[i][k - 1]) {
            --k;
        } else {
            matched[--i] = --k;
        }
    }
    return matched;
}

}  // namespace tools
