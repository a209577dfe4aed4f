// The two databases of the process, and how gates attach to them.
//
// Invariants
//  1. There is one main and one invoice database object per process. Every attached gate points at
//     both; opening or closing them through one gate does so for all.
//  2. A missing file is created, never an error, unless set_opening says otherwise. A file that cannot be opened
//     raises CDaoException* from attach and open; nothing else here throws.
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

// What opening may do to the files. Hosts get kMakeAndUpgrade; a program that embeds the component may change it while
// no database is open.
enum class Opening {
    kMakeAndUpgrade,  // creates a missing file, brings an older or newer one to the current version
    kAsTheyAre,       // for changes of rows; a missing file is an error, and a file keeps its version
};
void set_opening(Opening opening);

// Opens or creates each file that is not open and points the gate at both databases. S_OK.
HRESULT attach(GateDatabases& databases);
// As attach; then reopens the main file and checks the schema versions. Writes the sample equipment rows only if the
// main file is missing at that second opening, so a file that this very call has created deliberately gets none.
HRESULT open(GateDatabases& databases);
// Record sets on a closed database report that they are closed. Never throws: changes that the engine could not write
// back stay in its journal.
void close(unsigned flags);
// Ends the data-access engine, once per process.
void shut_down_engine();
bool main_file_exists();

// E_FAIL, with `version` unchanged, when the main database is not usable, its header has no row, or the engine raises
// an error.
HRESULT get_version(const GateDatabases& databases, LONG* version);
HRESULT get_head(const GateDatabases& databases, HeadInfo* head);
// Writes the two colours; never the version.
HRESULT set_head(const GateDatabases& databases, const HeadInfo* head);

// The main or invoice database, open; with `reopen` it is closed first.
CDaoDatabase& obtain_main(bool reopen);
CDaoDatabase& obtain_invoice(bool reopen);

}  // namespace db
