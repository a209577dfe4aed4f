#include "tools/record_reader.h"

#include <cstdio>

#include "tools/damage.h"
#include "tools/errors.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

// What a person reads off a paper or a label.
struct PaperNumber {
    const char* table;
    const char* column;
};
constexpr PaperNumber kPaperNumbers[] = {
    {"Invoices", "InvoiceID"},
    {"Gear", "SerialNo"},
    {"GearRepairs", "ClaimNo"},
};

const char* paper_column(const std::string& table) {
    for (const PaperNumber& number : kPaperNumbers) {
        if (table == number.table) return number.column;
    }
    return nullptr;
}

bool is_number(const std::string& text) {
    return !text.empty() &&
           text.find_first_not_of("0123456789", text[0] == '-' && text.size() > 1 ? 1 : 0) == std::string::npos;
}

}  // namespace

RecordReader::RecordReader(const GateTable& table, const std::string& folder, const SelectionOptions& options)
    : table_(table), names_(table.columns()) {
    const StudioFiles files(folder);
    files.require_current_to_read();
    for (const StudioFile* const file : {&files.studio, &files.invoices}) {
        if (!file->declares(table.name())) continue;
        file_ = open_to_look(file->path(), std::nullopt);
        const TableLook look = look_at_table(file_, jet::from_utf8(table.name()));
        if (look.is_damaged) require_undamaged();
        if (look.table != nullptr) {
            selection_ = std::make_unique<RowSelection>(*file_.database, *look.table, options, names_);
            names_ = selection_->names();
        } else if (require_undamaged(); !is_same_name(table.name(), db::engineers_table().name)) {
            throw CommandError(table.name() + " cannot be read: " + file->path() + " has no such table");
        }
        return;
    }
}

void RecordReader::for_each(const std::string& statement, const RowVisitor& visit) const {
    if (selection_ != nullptr) selection_->for_each(visit, statement);
}

Row RecordReader::find(const std::string& key) const {
    const char* const column = paper_column(table_.name());
    std::vector<Row> found;
    const auto keep = [&](const Row& row) {
        found.push_back(row);
        return found.size() < 2;
    };
    const bool is_number_on_paper = column != nullptr && std::string(column) == "InvoiceID";
    if (column == nullptr || is_number_on_paper || is_number(key)) {
        const std::string statement = table_.statement_of(key);
        // One row at most has the key: the file is read no further.
        if (!statement.empty()) {
            for_each(statement, [&](const Row& row) {
                found.push_back(row);
                return false;
            });
        }
        if (!found.empty()) return found.front();
    }
    if (column != nullptr && file_.database != nullptr) {
        SelectionOptions options;
        options.where = {std::string(column) + "=" + key};
        jet::Table* const table = look_at_table(file_, jet::from_utf8(table_.name())).table;
        if (table != nullptr && !key.empty()) RowSelection(*file_.database, *table, options, names_).for_each(keep);
        if (found.size() == 1) return found.front();
        if (found.size() > 1) {
            throw CommandError("several rows of " + table_.name() + " have " + column + " " + key +
                               "; kvdb list with --where " + column + "=" + key + " shows them, and their keys");
        }
        throw CommandError("there is no row " + key + " in " + table_.name() + ", and none with " + column + " " + key);
    }
    throw CommandError("there is no row " + key + " in " + table_.name());
}

}  // namespace tools
