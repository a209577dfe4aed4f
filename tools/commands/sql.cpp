// sql: a statement of the engine's own.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "jet/sql/query.h"
#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/row_scan.h"

namespace tools {
namespace {

struct Options {
    std::string file;
    std::string statement;
    FormatOption format;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.file(options.file);
    declare.word("STATEMENT", options.statement,
                 "SELECT * or SUM(COLUMN) FROM TABLE, with WHERE and ORDER BY; dates stand between #, as #2026-03-31#");
    declare.format(options.format);
    declare.password(options.password);
}

// Whether the engine's number says that the words are at fault.
bool is_of_the_statement(int number) {
    using namespace jet::errors;
    static constexpr int kNumbers[] = {kUnknownColumn,  kExpressionSyntax, kNoSuchTable, kSortOnMemo,
                                       kMixedAggregate, kBadStatement,     kBadFrom,     kBadOrderBy,
                                       kBadSelect,      kTextAfterEnd,     kBadWhere,    kTypeMismatch};
    return std::find(std::begin(kNumbers), std::end(kNumbers), number) != std::end(kNumbers);
}

// "; did you mean NAME?" by the word after FROM, which names no table.
std::string table_hint(const std::vector<OpenedFile>& files, const std::u16string& statement) {
    Names words(1);
    for (const char c : jet::to_utf8(statement)) {
        if (std::strchr(" \t\r\n[];,", c) == nullptr) {
            words.back() += c;
        } else if (!words.back().empty()) {
            words.emplace_back();
        }
    }
    const auto from =
        std::find_if(words.begin(), words.end(), [](const std::string& w) { return is_same_name(w, "FROM"); });
    if (from == words.end() || from + 1 == words.end()) return {};
    Names tables;
    for (const OpenedFile& file : files) {
        for (const std::u16string& name : file.database->table_names()) tables.push_back(jet::to_utf8(name));
    }
    const std::string nearest = nearest_name(from[1], tables);
    return nearest.empty() ? "" : " Did you mean " + nearest + "?";
}

// Prepared on the file that has the table.
jet::sql::Query prepare(const std::vector<OpenedFile>& files, const std::u16string& statement) {
    std::string nowhere;
    for (std::size_t i = 0;; ++i) {
        try {
            return jet::sql::Query::prepare(*files[i].database, statement);
        } catch (const jet::Error& error) {
            if (is_damage(error.number())) {
                tell_damage(files[i].path, error.what());
                require_undamaged();
            }
            if (error.number() == jet::errors::kNoSuchTable) {
                const std::string text = error.what();
                // A statement without a table says the same of each file.
                if (nowhere.find(text) == std::string::npos) nowhere += (nowhere.empty() ? "" : " ") + text;
                if (i + 1 < files.size()) continue;
                require_undamaged();  // its name may be what is lost
                throw UsageError(nowhere + table_hint(files, statement));
            }
            if (is_of_the_statement(error.number())) throw UsageError(error.what());
            throw;
        }
    }
}

int run(const Options& options) {
    const std::vector<OpenedFile> files = open_all_to_look(options.file, options.password);
    jet::sql::Query query = prepare(files, jet::from_utf8(options.statement));
    Names names;
    for (const jet::sql::ResultColumn& column : query.columns()) names.push_back(jet::to_utf8(column.name));
    RowPrinter printer(options.format.format(), names);
    if (query.is_aggregate()) {
        printer.print({query.aggregate()});
        printer.finish();
        require_undamaged();
        return 0;
    }
    RowScan scan{.table = query.table(),
                 .matches = [&](const jet::RowView& row) { return !query.has_condition() || query.matches(row); },
                 .order = query.order(),
                 .limit = {}};
    print_rows(printer, [&](const RowVisitor& print) {
        scan.for_each([&](const jet::RowView& view) {
            Row row;
            for (const jet::sql::ResultColumn& column : query.columns()) row.push_back(view.value(column.position));
            return print(row);
        });
    });
    require_undamaged();
    return 0;
}

}  // namespace

const Command kSqlCommand{"sql", kLookGroup,
                          "Print what a SELECT statement gives. The statements are the engine's own, over one table, "
                          "and change nothing.",
                          declared<Options, bind, run>};

}  // namespace tools
