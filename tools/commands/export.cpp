// export: all of a studio, or some of its tables, in a form that other programs read.
#include <cstdio>
#include <filesystem>

#include "tools/commands.h"
#include "tools/damage.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/export/draft.h"
#include "tools/export/export_writer.h"
#include "tools/interrupt.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/row_selection.h"

namespace tools {
namespace {

struct Options {
    std::string folder;
    std::string out;
    std::string to;
    std::optional<std::string> tables;
    std::optional<std::string> schema;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.word("FOLDER", options.folder, "folder of a studio, or a Jet file");
    declare.word("OUT", options.out, "where to write: a file or, for csv and jsonl, a folder; nothing is overwritten");
    declare.required_option("--to", options.to, "FORM",
                            "sqlite (a database; on Windows the script that makes one), sqlite-script, csv or jsonl (a "
                            "file for each table, and schema.json), postgres (a script for psql)");
    declare.option("--tables", options.tables, "A,B", "these tables alone");
    declare.option("--schema", options.schema, "NAME",
                   "postgres: the schema for the tables, made where it is not there");
    declare.password(options.password);
}

const ExportFormat& format_called(const std::string& name) {
    Names names;
    for (const ExportFormat& format : export_formats()) {
        if (name == format.name) return format;
        names.emplace_back(format.name);
    }
    const std::string hint = suggestion(name, names);
    throw UsageError("--to takes no '" + name + "'" + (hint.empty() ? "; it takes " + listed(names) : hint));
}

struct Counts {
    std::uint64_t rows = 0;
    std::uint64_t impossible_dates = 0;  // which no calendar has
};

void write_table(const ExportTable& table, ExportWriter& writer, Progress& progress, Counts& counts) {
    std::vector<jet::Value> values(table.columns.size());
    jet::RowView row;
    writer.begin(table);
    for (auto id = table.table->next_row({}); id; id = table.table->next_row(*id)) {
        require_uninterrupted();
        progress.step();
        if (!table.table->read(*id, row)) continue;
        for (std::size_t i = 0; i < values.size(); ++i) {
            row.value(i, values[i]);
            if (make_exportable(values[i])) ++counts.impossible_dates;
        }
        writer.row(table, values);
        ++counts.rows;
    }
    writer.end(table);
}

int run(const Options& options) {
    const ExportFormat& format = format_called(options.to);
    if (options.schema && options.to != "postgres") throw UsageError("--schema goes with --to postgres alone");
    std::vector<std::unique_ptr<jet::Database>> databases;
    for (const std::string& file : jet_files_of(options.folder)) {
        databases.push_back(open_to_read(file, options.password, damage_teller(file)));
    }
    if (databases.size() == 1 && std::filesystem::is_directory(options.folder)) {
        std::fprintf(stderr,
                     "kvdb: only one of the studio's two files is in %s; the tables of the other one are missing\n",
                     options.folder.c_str());
    }
    const Names wanted = options.tables ? split_list(*options.tables) : Names();
    if (options.tables && wanted.empty()) throw UsageError("--tables names no table");
    const std::vector<ExportTable> tables = export_tables(databases, wanted);
    std::uint64_t rows = 0;
    for (const ExportTable& table : tables) rows += table.rows;
    catch_interrupts();
    Draft draft(options.out, format.is_folder);
    Counts counts;
    {
        const std::unique_ptr<ExportWriter> writer = format.make(draft.path(), options.schema);
        Progress progress("rows", rows);
        for (const ExportTable& table : tables) write_table(table, *writer, progress, counts);
        writer->finish(tables);
    }
    require_uninterrupted();
    draft.keep();
    if (counts.impossible_dates != 0) {
        std::fprintf(stderr, "kvdb: %ju date%s outside of the years 1 to 9999 became Null\n",
                     static_cast<std::uintmax_t>(counts.impossible_dates), counts.impossible_dates == 1 ? "" : "s");
    }
    output().print("%s: %zu table%s, %ju row%s\n", options.out.c_str(), tables.size(), tables.size() == 1 ? "" : "s",
                   static_cast<std::uintmax_t>(counts.rows), counts.rows == 1 ? "" : "s");
    require_undamaged();
    return 0;
}

}  // namespace

const Command kExportCommand{
    "export", kMoveGroup,
    "Write a studio, or some of its tables, in a form that other programs read. Keys, types, dates and amounts stay "
    "exact, memos whole. What does not come to its end leaves nothing behind.",
    declared<Options, bind, run>};

}  // namespace tools
