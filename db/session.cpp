#include "db/session.h"

#include <exception>

#include "afx/dao_recordset.h"
#include "db/content.h"
#include "db/create_files.h"
#include "db/database_files.h"
#include "db/refusal.h"
#include "db/rows.h"
#include "db/upgrade/upgrade.h"
#include "db/values.h"

namespace db {
namespace {

constexpr char kHeader[] = "SELECT * FROM [DBHeader]";

// Created when the library starts, destroyed when it ends.
CDaoDatabase main_database;
CDaoDatabase invoice_database;

Opening opening = Opening::kMakeAndUpgrade;

bool makes_and_upgrades() { return opening == Opening::kMakeAndUpgrade; }

// The oldest studio files still carry the former password.
void open_file(CDaoDatabase& database, DatabaseFile file) {
    const std::string path = file_path(file);
    const char* const former = former_password(file);
    try {
        return database.Open(path.c_str(), TRUE, FALSE, connect_text(file).c_str());
    } catch (CDaoException* e) {
        if (former == nullptr || e->m_pErrorInfo->m_lErrorCode != afx::errors::kWrongPassword) throw;
        e->Delete();
    }
    database.Open(path.c_str(), TRUE, FALSE, connect_text(former).c_str());
}

CDaoDatabase& obtain(CDaoDatabase& database, DatabaseFile file, bool reopen) {
    if (database.IsOpen() && !reopen) return database;
    const bool is_main = file == DatabaseFile::kMain;
    const auto kept = os::file_system().keep_lock(file_path(file));
    if (reopen) close(is_main ? kCloseMainOnly : kCloseInvoiceOnly);
    if (!makes_and_upgrades() || file_exists(file)) {
        open_file(database, file);
    } else if (is_main) {
        create_main_file(database);
    } else {
        create_invoice_file(database);
    }
    return database;
}

// A file without a header, or without the number in it, counts as version 0, like an empty header: the upgrade runs and
// ends at the header. Other reasons why the header cannot be read say nothing about the version: the file is used
// unchanged.
void upgrade_invoices(CDaoDatabase& invoice) {
    LONG version = 0;
    try {
        version = stored_version(invoice);
    } catch (CDaoException* e) {
        const LONG number = e->m_pErrorInfo->m_lErrorCode;
        e->Delete();
        if (number != afx::errors::kNoSuchTable && number != afx::errors::kNotInCollection) return;
    } catch (const std::exception&) {
        return;
    }
    upgrade_invoice_file(invoice, version);
}

// Runs `work` with the header of the main database on its row.
template <class Work>
HRESULT with_header(const GateDatabases& databases, int options, Work&& work) {
    if (databases.main == nullptr || !databases.main->IsOpen()) return refuse(Refusal::kNoDatabase);
    try {
        CDaoRecordset rows(databases.main);
        rows.Open(dbOpenDynaset, kHeader, options);
        if (rows.GetRecordCount() < 1) return refuse(Refusal::kNoRow);
        work(rows);
        rows.Close();
        return S_OK;
    } catch (CDaoException* e) {
        e->Delete();
        return E_FAIL;
    }
}

LONG integer_field(CDaoRecordset& rows, const char* name) { return value_to_integer(rows.GetFieldValue(name)); }

}  // namespace

void set_opening(Opening wanted) { opening = wanted; }

CDaoDatabase& obtain_main(bool reopen) { return obtain(main_database, DatabaseFile::kMain, reopen); }

CDaoDatabase& obtain_invoice(bool reopen) { return obtain(invoice_database, DatabaseFile::kInvoice, reopen); }

HRESULT attach(GateDatabases& databases) {
    databases.main = &obtain_main(false);
    databases.invoice = &obtain_invoice(false);
    return S_OK;
}

HRESULT open(GateDatabases& databases) {
    if (const HRESULT attached = attach(databases); attached != S_OK || !makes_and_upgrades()) return attached;

    // Keeps both locks between the closing and the opening. Otherwise, of two hosts that open at the same moment, each
    // could get one of the files, and neither both.
    const auto main_kept = os::file_system().keep_lock(file_path(DatabaseFile::kMain));
    const auto invoice_kept = os::file_system().keep_lock(file_path(DatabaseFile::kInvoice));
    CDaoDatabase& main = *databases.main;
    close_quietly(main);
    if (file_exists(DatabaseFile::kMain)) {
        open_file(main, DatabaseFile::kMain);
        upgrade_main_file(main);  // its result is ignored here
    } else {
        create_main_file(main);
        attempt([&] { add_sample_equipment(main); });  // a studio without samples is valid
    }

    CDaoDatabase& invoice = *databases.invoice;
    close_quietly(invoice);
    if (file_exists(DatabaseFile::kInvoice)) {
        open_file(invoice, DatabaseFile::kInvoice);
        upgrade_invoices(invoice);
    } else {
        create_invoice_file(invoice);
    }
    return S_OK;
}

void close(unsigned flags) {
    const bool both = flags == kCloseAll || flags == kCloseBoth;
    if (both || flags == kCloseMainOnly) close_quietly(main_database);
    if (both || flags == kCloseInvoiceOnly) close_quietly(invoice_database);
}

void shut_down_engine() {
    static bool done = false;
    if (done) return;
    done = true;
    AfxDaoTerm();
}

bool main_file_exists() { return file_exists(DatabaseFile::kMain); }

HRESULT get_version(const GateDatabases& databases, LONG* version) {
    if (version == nullptr) return refuse(Refusal::kNoRecord);
    return with_header(databases, dbForwardOnly | dbReadOnly,
                       [&](CDaoRecordset& rows) { *version = integer_field(rows, "DBversion"); });
}

HRESULT get_head(const GateDatabases& databases, HeadInfo* head) {
    if (head == nullptr) return refuse(Refusal::kNoRecord);
    return with_header(databases, 0, [&](CDaoRecordset& rows) {
        HeadInfo read;
        read.DBversion = integer_field(rows, "DBversion");
        read.Color1 = integer_field(rows, "Color1");
        read.Color2 = integer_field(rows, "Color2");
        *head = read;
    });
}

HRESULT set_head(const GateDatabases& databases, const HeadInfo* head) {
    if (head == nullptr) return refuse(Refusal::kNoRecord);
    return with_header(databases, 0, [&](CDaoRecordset& rows) {
        rows.Edit();
        rows.SetFieldValue("Color1", COleVariant(head->Color1, VT_I4));
        rows.SetFieldValue("Color2", COleVariant(head->Color2, VT_I4));
        rows.Update();
    });
}

}  // namespace db
