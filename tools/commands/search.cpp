// search: a text, wherever it stands.
#include "jet/schema/table_def.h"
#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/row_condition.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    std::string text;
    FormatOption format;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.word("FOLDER", options.folder, "folder of a studio, or a Jet file");
    declare.word("TEXT", options.text, "what to look for, in whatever case");
    declare.format(options.format);
    declare.password(options.password);
}

// The found place and what stands around it.
std::u16string excerpt(const std::u16string& text, std::size_t at, std::size_t length) {
    constexpr std::size_t kAround = 30;
    const std::size_t begin = at > kAround ? at - kAround : 0;
    const std::size_t end = std::min(text.size(), at + length + kAround);
    std::u16string part = text.substr(begin, end - begin);
    if (begin > 0) part.insert(0, u"\u2026");
    if (end < text.size()) part += u"\u2026";
    return part;
}

std::optional<std::size_t> key_position(const jet::TableDef& def) {
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        if (def.columns[i].is_autonumber()) return i;
    }
    return std::nullopt;
}

bool holds_text(const jet::ColumnDef& column) {
    return column.type == jet::ColumnType::kText || column.type == jet::ColumnType::kMemo;
}

// Every column of every row of the table, once for each place.
void search(const jet::Table& table, const std::u16string& wanted, Progress& progress, const RowVisitor& print) {
    const jet::TableDef& def = table.def();
    const auto key = key_position(def);
    jet::RowView row;
    jet::Value value;
    for (auto id = table.next_row({}); id && !output().is_lost(); id = table.next_row(*id)) {
        progress.step();
        if (!table.read(*id, row)) continue;
        for (std::size_t i = 0; i < def.columns.size(); ++i) {
            if (!holds_text(def.columns[i])) continue;
            row.value(i, value);
            const auto* const text = std::get_if<std::u16string>(&value);
            if (text == nullptr) continue;
            for (auto at = find_text(*text, wanted); at; at = find_text(*text, wanted, *at + wanted.size())) {
                print({def.name, key ? row.value(*key) : jet::Null{}, def.columns[i].name,
                       static_cast<std::int32_t>(*at + 1), excerpt(*text, *at, wanted.size())});
            }
        }
    }
}

int run(const Options& options) {
    const std::u16string wanted = jet::from_utf8(options.text);
    if (wanted.empty()) throw UsageError("there is nothing to search for");
    const std::vector<OpenedFile> files = open_all_to_look(options.folder, options.password);
    std::vector<const jet::Table*> tables;
    std::uint64_t rows = 0;
    for (const OpenedFile& file : files) {
        for (const jet::Table* const table : readable_tables(file)) {
            tables.push_back(table);
            rows += table->def().row_count;
        }
    }
    RowPrinter printer(options.format.format(), {"Table", "Key", "Column", "Place", "Text"});
    Progress progress("rows", rows);
    print_rows(printer, [&](const RowVisitor& print) {
        for (const jet::Table* const table : tables) search(*table, wanted, progress, print);
    });
    require_undamaged();
    return 0;
}

}  // namespace

const Command kSearchCommand{
    "search", kLookGroup,
    "Find a text in every text and memo of every table. Prints table, key, column, the place in the text (1 is its "
    "first character) and what stands around it.",
    declared<Options, bind, run>};

}  // namespace tools
