#include "db/upgrade/upgrade.h"

#include <exception>
#include <new>

#include "db/content.h"
#include "db/database_files.h"
#include "db/rows.h"
#include "db/upgrade/added_fields.h"
#include "db/upgrade/contact_model.h"
#include "db/upgrade/dated_records.h"
#include "db/upgrade/invoice_totals.h"
#include "db/upgrade/schema_history.h"
#include "db/values.h"

namespace db {
namespace {

using enum UpgradeStep::OnFailure;
constexpr LONG kEveryVersion = UpgradeStep::kEveryVersion;
constexpr bool kWithNext = true;

// ---- Steps defined only in this file

void change_password(CDaoDatabase& database) {
    const COleVariant former(former_password(DatabaseFile::kMain));
    const COleVariant current(password(DatabaseFile::kMain));
    DAO_CHECK(database.m_pDAODatabase->NewPassword(former.bstrVal, current.bstrVal));
}

// Fails, as in the engine, on a header without a row.
void mark_as_current(CDaoDatabase& database) {
    CDaoRecordset rows(&database);
    open_table(rows, "DBHeader");
    rows.Edit();
    rows.SetFieldValue("DBversion", long_value(kCurrentVersion));
    rows.Update();
}

void create_studio_tables(CDaoDatabase& database, std::int32_t version) {
    for (const char* const name : additions_of(version)->studio_tables) {
        // The gear tables are made in one pass, after the others.
        if (find_table(gear_tables(), name) != nullptr) continue;
        create_table(database, *find_table(studio_tables(), name));
    }
}

// Deliberately, an upgraded file has no row of invoice defaults.
void create_tables_of_200000(CDaoDatabase& database) { create_studio_tables(database, 200000); }

void create_tables_of_200010(CDaoDatabase& database) { create_studio_tables(database, 200010); }

void create_tables_of_210000(CDaoDatabase& database) {
    create_studio_tables(database, 210000);
    create_gear_tables(database);
}

void add_fields_of_210000(CDaoDatabase& database) {
    add_fields(database, studio_tables(), additions_of(210000)->studio_fields);
}

void add_tax_lists(CDaoDatabase& database) {
    add_fields(database, invoice_tables(), additions_of(200010)->invoice_fields);
}

void add_invoice_totals(CDaoDatabase& database) {
    add_fields(database, invoice_tables(), additions_of(210000)->invoice_fields);
}

// ---- The steps and the versions they apply to

constexpr UpgradeStep kStudioUpgrade[] = {
    // A file with the new password and the old version number could never be upgraded: both change or neither.
    {100006, "replace the former password", kStop, change_password, kWithNext},
    {kEveryVersion, "set the version to 210000", kStop, mark_as_current},
    {kEveryVersion, "add the demo project", kGoOn, add_demo_project},
    {200000, "turn the dates of sessions and equipment into date fields; add prices", kGoOn, convert_dated_records},
    {200000, "create the tables of media library, bookings, rooms and invoice defaults", kStop,
     create_tables_of_200000},
    {200000, "write the first groups and libraries of media", kGoOn, write_media_library},
    {200010, "create the table of taxes", kStop, create_tables_of_200010},
    {210000, "create the tables of contacts, payments, activities, mix files and gear", kStop, create_tables_of_210000},
    {210000, "add the fields of the contact model", kGoOn, add_fields_of_210000},
    {210000, "convert bookings", kGoOn, convert_bookings},
    {210000, "convert contacts", kGoOn, convert_contacts},
    {210000, "convert projects", kGoOn, convert_projects},
    {210000, "make engineers contacts with a service", kGoOn, convert_engineers},
    {210000, "tie sessions to songs, make their engineers participants", kGoOn, convert_sessions},
    {210000, "convert songs", kGoOn, convert_songs},
    {210000, "convert stock", kGoOn, convert_stock},
    {210000, "convert tracks", kGoOn, convert_tracks},
    {210000, "make mix files rows of their own", kGoOn, convert_mix_files},
    {210000, "write the contact categories", kGoOn, write_contact_categories},
};

constexpr UpgradeStep kInvoiceUpgrade[] = {
    {200010, "add lists of taxes to invoices and their lines", kGoOn, add_tax_lists},
    {210000, "add the fields of payments, balance, tax, discount and dates", kGoOn, add_invoice_totals},
    {210000, "reset what is paid, taxed and discounted", kGoOn, reset_invoice_totals},
    {210000, "date the lines of invoices", kGoOn, date_invoice_lines},
    {kEveryVersion, "set the version to 210000", kStop, mark_as_current},
};

UpgradeObserver* upgrade_observer = nullptr;

// Rolls back a step that ran out of memory; anything else open in the database is closed.
void take_back(CDaoWorkspace& workspace) {
    try {
        workspace.Rollback();
    } catch (CDaoException* e) {
        e->Delete();  // no transaction was open
    } catch (const std::bad_alloc&) {
        // The same.
    }
}

// Steps that may go on without the tables and fields of those before them would leave a file that says that it is
// current and is not: no step runs on a file that takes none.
bool takes_tables(CDaoDatabase& database) {
    bool takes = true;
    try {
        attempt([&] { takes = database.CanAppend() != FALSE; });
    } catch (const std::exception&) {
        // Whatever it is, a step meets it too.
    }
    return takes;
}

// Each step, or two that belong together, is one transaction. A failed step keeps its partial changes, unless it ran
// out of memory.
int run(CDaoDatabase& database, std::span<const UpgradeStep> steps, LONG version) {
    if (!takes_tables(database)) return -1;
    CDaoWorkspace& workspace = *database.m_pWorkspace;
    bool in_transaction = false;
    for (const UpgradeStep& step : steps) {
        if (!step.applies_to(version)) continue;
        if (upgrade_observer != nullptr) upgrade_observer->begins(step);
        bool ran = false;
        bool is_kept = false;
        try {
            is_kept = succeeds([&] {
                if (!in_transaction) workspace.BeginTrans();
                in_transaction = true;
                ran = succeeds([&] { step.run(database); });
                if (ran && step.with_next) return;
                workspace.CommitTrans();
                in_transaction = false;
            });
        } catch (CDaoException* e) {
            e->Delete();
        } catch (const std::exception&) {
        }
        if (!is_kept && in_transaction) take_back(workspace);
        if (!is_kept) in_transaction = false;
        if (ran && is_kept) continue;
        if (upgrade_observer != nullptr) upgrade_observer->failed(step);
        if (step.on_failure == kStop) return -1;
    }
    return 1;
}

}  // namespace

bool UpgradeStep::applies_to(LONG version) const {
    return version != kCurrentVersion && (below == kEveryVersion || version < below);
}

LONG stored_version(CDaoDatabase& database) {
    if (!database.IsOpen()) return 0;
    CDaoRecordset rows(&database);
    open_table(rows, "DBHeader", dbForwardOnly | dbReadOnly);
    if (rows.GetRecordCount() < 1) return 0;
    return value_to_integer(rows.GetFieldValue("DBversion"));
}

std::span<const UpgradeStep> studio_upgrade() { return kStudioUpgrade; }

std::span<const UpgradeStep> invoice_upgrade() { return kInvoiceUpgrade; }

void set_upgrade_observer(UpgradeObserver* observer) { upgrade_observer = observer; }

int upgrade_main_file(CDaoDatabase& database) {
    LONG version = 0;
    try {
        version = stored_version(database);
    } catch (CDaoException* e) {
        e->Delete();
        return -1;
    } catch (const std::exception&) {
        return -1;
    }
    if (!database.IsOpen()) return -1;
    return version == kCurrentVersion ? 0 : run(database, studio_upgrade(), version);
}

int upgrade_invoice_file(CDaoDatabase& database, LONG version) {
    if (version == kCurrentVersion) return 0;
    return database.IsOpen() ? run(database, invoice_upgrade(), version) : -1;
}

}  // namespace db
