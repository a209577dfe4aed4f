// export: all of a studio, or some of its tables, in a form that other programs read.
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/errors.h"
#include "tools/export/export_run.h"
#include "tools/names.h"

namespace tools {
namespace {

struct Options {
    ExportJob job;
    std::string to;
};

void bind(Declaration& declare, Options& options) {
    declare.word("FOLDER", options.job.folder, "folder of a studio, or a Jet file");
    declare.word("OUT", options.job.out,
                 "where to write: a file or, for csv and jsonl, a folder; nothing is overwritten");
    declare.required_option(
        "--to", options.to, "FORM",
        "sqlite (a database; on Windows the script that makes one), sqlite-script, csv or jsonl (a "
        "file for each table, and schema.json), postgres (a script for psql), html (the page of report)");
    declare.option("--tables", options.job.tables, "A,B", "these tables alone");
    declare.option("--schema", options.job.schema, "NAME",
                   "postgres: the schema for the tables, made where it is not there");
    declare.password(options.job.password);
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

int run(const Options& options) {
    const ExportFormat& format = format_called(options.to);
    if (options.job.schema && options.to != "postgres") throw UsageError("--schema goes with --to postgres alone");
    return run_export(format, options.job);
}

}  // namespace

const Command kExportCommand{
    "export", kMoveGroup,
    "Write a studio, or some of its tables, in a form that other programs read. Keys, types, dates and amounts stay "
    "exact, memos whole. What does not come to its end leaves nothing behind.",
    declared<Options, bind, run>};

}  // namespace tools
