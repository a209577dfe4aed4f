#include "db/create_files.h"

#include <string>

#include "afx/dao_database.h"
#include "afx/engine_errors.h"
#include "db/content.h"
#include "db/database_files.h"
#include "db/rows.h"
#include "db/schema.h"
#include "os/draft.h"
#include "os/file.h"

namespace db {
namespace {

constexpr SCODE kReservedError = static_cast<SCODE>(0x800A0000u + afx::errors::kReserved);

void remove_quietly(const std::string& path) {
    try {
        os::file_system().remove(path);
    } catch (const os::FileError&) {
        // Harmless: a later creation clears it.
    }
}

// Both files of a studio have the same permissions.
void take_access_of_the_other(DatabaseFile file, const std::string& draft) {
    const DatabaseFile other = file == DatabaseFile::kMain ? DatabaseFile::kInvoice : DatabaseFile::kMain;
    try {
        if (file_exists(other)) os::file_system().copy_access(file_path(other), draft);
    } catch (const os::FileError&) {
        // It keeps the default permissions of a new file.
    }
}

// Renames the draft to its final name. If another file has that name by now, removes the draft; the other file is used.
void publish(const std::string& draft, const std::string& path) {
    os::FileSystem& files = os::file_system();
    afx::with_dao_errors([&] {
        try {
            files.rename(draft, path);
        } catch (const os::FileError&) {
            if (!files.exists(path)) throw;
            return remove_quietly(draft);
        }
        try {
            files.sync_folder_of(path);
        } catch (const os::FileError&) {
            // A file that a power loss may still remove does not count as created.
            os::remove_unless_in_use(path);
            throw;
        }
    });
}

void fill_main_file(CDaoDatabase& database) {
    const auto tables = studio_tables();
    create_tables(database, tables.first(tables.size() - gear_tables().size()));
    create_gear_tables(database);
    write_main_content(database);
}

void fill_invoice_file(CDaoDatabase& database) {
    create_tables(database, invoice_tables());
    write_invoice_content(database);
}

void make_draft(CDaoDatabase& database, const std::string& draft, DatabaseFile file, void (*fill)(CDaoDatabase&)) {
    database.Create(draft.c_str(), locale_text(file).c_str());
    database.m_pWorkspace->BeginTrans();
    if (!succeeds([&] { fill(database); })) AfxThrowDaoException(NO_AFX_DAO_ERROR, kReservedError);
    database.m_pWorkspace->CommitTrans();
    database.Close();
    take_access_of_the_other(file, draft);
}

// Cleans up after any failure: leaves no transaction open and no half-made database.
void give_up(CDaoDatabase& database, const std::string& draft, const std::string& path) {
    close_quietly(database);
    remove_quietly(draft);
    os::clear_drafts(path);
}

void create_file(CDaoDatabase& database, DatabaseFile file, void (*fill)(CDaoDatabase&)) {
    const std::string path = file_path(file);
    const std::string draft = os::draft_name(path);
    try {
        make_draft(database, draft, file, fill);
        publish(draft, path);
        os::clear_drafts(path);
    } catch (CDaoException* e) {
        give_up(database, draft, path);
        // Another host was faster and removed this draft as abandoned: use its file.
        if (!file_exists(file)) throw;
        e->Delete();
    } catch (...) {
        give_up(database, draft, path);
        throw;
    }
    database.Open(path.c_str(), TRUE, FALSE, connect_text(file).c_str());
}

}  // namespace

void create_main_file(CDaoDatabase& database) { create_file(database, DatabaseFile::kMain, fill_main_file); }

void create_invoice_file(CDaoDatabase& database) { create_file(database, DatabaseFile::kInvoice, fill_invoice_file); }

}  // namespace db
