#include "tools/export/export_run.h"

#include <cstdio>
#include <filesystem>

#include "tools/damage.h"
#include "tools/errors.h"
#include "tools/export/draft.h"
#include "tools/interrupt.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/paths.h"
#include "tools/progress.h"
#include "tools/row_selection.h"

namespace tools {
namespace {

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

}  // namespace

int run_export(const ExportFormat& format, const ExportJob& job) {
    const std::vector<OpenedFile> files = open_all_to_look(job.folder, job.password);
    if (jet_files_of(job.folder).size() == 1 && std::filesystem::is_directory(system_path(job.folder))) {
        std::fprintf(stderr,
                     "kvdb: only one of the studio's two files is in %s; the tables of the other one are missing\n",
                     job.folder.c_str());
    }
    const Names wanted = job.tables ? split_list(*job.tables) : Names();
    if (job.tables && wanted.empty()) throw UsageError("--tables names no table");
    const std::vector<ExportTable> tables = export_tables(files, wanted);
    std::uint64_t rows = 0;
    for (const ExportTable& table : tables) rows += table.rows;
    catch_interrupts();
    Draft draft(job.out, format.is_folder);
    Counts counts;
    {
        const std::unique_ptr<ExportWriter> writer = format.make(draft.path(), job.schema);
        writer->start(job.folder, tables);
        Progress progress("rows", rows);
        for (const ExportTable& table : tables) write_table(table, *writer, progress, counts);
        writer->finish(tables);
    }
    require_uninterrupted();
    draft.keep(jet_files_of(job.folder));
    if (counts.impossible_dates != 0) {
        std::fprintf(stderr, "kvdb: %ju date%s outside of the years 1 to 9999 became Null\n",
                     static_cast<std::uintmax_t>(counts.impossible_dates), counts.impossible_dates == 1 ? "" : "s");
    }
    output().print("%s: %zu table%s, %ju row%s\n", job.out.c_str(), tables.size(), tables.size() == 1 ? "" : "s",
                   static_cast<std::uintmax_t>(counts.rows), counts.rows == 1 ? "" : "s");
    require_undamaged();
    return 0;
}

}  // namespace tools
