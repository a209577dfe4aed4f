#include "tools/column_limits.h"

#include <cmath>
#include <limits>

#include "db/schema.h"
#include "db/values.h"
#include "os/system.h"
#include "studio/lookup_lists.h"
#include "tools/errors.h"

namespace tools {
namespace {

constexpr std::size_t kTextCharacters = 255;

const db::FieldSchema* find_column(const std::string& table, const std::string& column) {
    for (const auto tables : {db::studio_tables(), db::invoice_tables(), std::span(&db::engineers_table(), 1)}) {
        if (const db::TableSchema* const found = db::find_table(tables, table.c_str())) {
            return db::find_field(*found, column.c_str());
        }
    }
    return nullptr;
}

bool is_name_list(const std::string& table) {
    for (const auto* const list :
         {&studio::kTrackTypes, &studio::kProjectTypes, &studio::kTrackDestinations, &studio::kEquipmentActions}) {
        if (table == list->table) return true;
    }
    return false;
}

}  // namespace

void require_fits(const std::string& table, const std::string& column, const CString& text) {
    const db::FieldSchema* const field = find_column(table, column);
    if (field == nullptr || field->kind == db::FieldKind::kMemo) return;
    const std::string place = column + " of " + table;
    const bool takes_empty = field->kind == db::FieldKind::kText;
    if (text.IsEmpty() && !takes_empty) throw UsageError(place + " cannot be empty");
    const std::size_t characters = os::widen(text.GetString()).size();
    if (characters > kTextCharacters) {
        throw UsageError(place + " takes at most " + std::to_string(kTextCharacters) + " characters, not " +
                         std::to_string(characters));
    }
    // The gate gives a list's names in buffers of bytes.
    constexpr int kMostBytes = studio::kListNameSize - 1;
    if (is_name_list(table) && text.GetLength() > kMostBytes) {
        throw UsageError(place + " takes at most " + std::to_string(kMostBytes) + " bytes, not " +
                         std::to_string(text.GetLength()));
    }
}

double kept_amount(float amount, studio::Conversion conversion) {
    if (conversion == studio::Conversion::kSingle) return static_cast<double>(amount);
    return static_cast<double>(db::float_of(db::currency_of(amount)));
}

bool is_kept(double wanted, float amount, studio::Conversion conversion) {
    if (!std::isfinite(wanted) || !std::isfinite(amount)) return false;
    const double digits_of_column = conversion == studio::Conversion::kSingle ? 0 : 0.0001;
    const double digits_of_record = std::abs(wanted) * static_cast<double>(std::numeric_limits<float>::epsilon());
    return std::abs(kept_amount(amount, conversion) - wanted) <= digits_of_column + digits_of_record;
}

}  // namespace tools
