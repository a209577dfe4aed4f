// report: a studio as one page for a browser.
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/export/export_run.h"

namespace tools {
namespace {

void bind(Declaration& declare, ExportJob& job) {
    declare.word("FOLDER", job.folder, "folder of a studio, or a Jet file");
    declare.required_option("-o,--output", job.out, "FILE.html", "where to write; nothing is overwritten");
    declare.option("--tables", job.tables, "A,B", "these tables alone");
    declare.password(job.password);
}

int run(const ExportJob& job) {
    constexpr ExportFormat kPage{"html", false, make_html_writer};
    return run_export(kPage, job);
}

}  // namespace

const Command kReportCommand{
    "report", kMoveGroup,
    "Write a studio as one page that any browser shows without a network. It has the bookings of each room, invoices "
    "and what is unpaid, stock, gear with its repairs and projects as pictures, and every table to browse, sort and "
    "search, memos in full. What does not come to its end leaves nothing behind.",
    declared<ExportJob, bind, run>};

}  // namespace tools
