#include "tools/declaration.h"
#include "tools/row_selection.h"

namespace tools {

void SelectionOptions::declare(Declaration& declaration) {
    declaration.repeated_option("--where", where, "CONDITION",
                                "rows for which it holds: COLUMN=VALUE, or != < <= > >= or ~ (contains) in place of =; "
                                "a date may be a month or a year, and A..B is a span; may be repeated");
    declaration.option("--columns", columns, "A,B", "these columns alone");
    declaration.option("--sort", sort, "A,-B", "in the order of these columns; - before a name turns it round");
    declaration.option("--from", from, "DATE", "rows whose first column of dates is on that day or later");
    declaration.option("--to", to, "DATE", "rows whose first column of dates is on that day or earlier");
    declaration.option("--limit", limit, "N", "no more than N rows");
}

}  // namespace tools
