// The two databases of the process and how gates come to them.
//
// Invariants
//  1. There is one main and one invoice database object per process. Every gate that has attached points at
//     both; opening or closing them through one gate does so for all.
//  2. A missing file is made, never an error, unless set_opening says otherwise. A file that cannot be opened
//     raises CDaoException* out of attach and open; nothing else here lets an exception out.
#pragma once

#include <kvdb/records.h>

#include "afx/dao_database.h"

namespace db {

// What a gate holds; null until it attaches. Closing leaves the pointers set.
struct GateDatabases {
    CDaoDatabase* main = nullptr;
    CDaoDatabase* invoice = nullptr;
};

// What close closes; other values close nothing.
enum CloseFlags : unsigned {
    kCloseAll = 0,
    kCloseBoth = 8,
    kCloseInvoiceOnly = 16,
    kCloseMainOnly = 32,
};

// What opening may do to the files. Hosts get kMakeAndUpgrade; a program that contains the component says otherwise
// while no database is open.
enum class Opening {
    kMakeAndUpgrade,  // a missing file is made, an older or newer one brought to the current version
    kAsTheyAre,       // for changes of rows; a missing file is an error, and a file keeps its version
};
void set_opening(Opening opening);

// Opens or makes whichever file is not open and points the gate at both databases. S_OK.
HRESULT attach(GateDatabases& databases);
// The same, and then opens the main file anew and looks at the schema versions. The sample equipment rows
// are written only where the main file is missing at that second opening, which deliberately leaves a file
// that this very call has made without them.
HRESULT open(GateDatabases& databases);
// Record sets on a closed database report that they are closed. Never throws: what the engine could not
// write back waits in its journal.
void close(unsigned flags);
// Ends the data-access engine, once per process.
void shut_down_engine();
bool main_file_exists();

// E_FAIL, with the out parameter as it was, when the main database is not usable, its header has no row, or
// the engine raises an error.
HRESULT get_version(const GateDatabases& databases, LONG* version);
HRESULT get_head(const GateDatabases& databases, HeadInfo* head);
// Writes the two colours; never the version.
HRESULT set_head(const GateDatabases& databases, const HeadInfo* head);

// The main or invoice database, open; with `reopen` it is closed first.
CDaoDatabase& obtain_main(bool reopen);
CDaoDatabase& obtain_invoice(bool reopen);

}  // namespace db
