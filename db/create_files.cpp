#include "db/create_files.h"

#include <string>

#include "afx/dao_database.h"
#include "db/content.h"
#include "db/database_files.h"
#include "db/schema.h"
#include "os/file.h"

namespace db {
namespace {

constexpr char kDraftSuffix[] = "-new";
constexpr char kJournalSuffix[] = "-journal";
constexpr SCODE kReservedError = static_cast<SCODE>(0x800A0000u + 3001);
constexpr SCODE kDiskFull = static_cast<SCODE>(0x800A0000u + 3026);
constexpr SCODE kAccessDenied = static_cast<SCODE>(0x800A0000u + 3051);
constexpr LONG kFileExists = 3204;

// Faults of the system between the engine's own operations.
template <class Work>
void with_dao_errors(Work&& work) {
    try {
        work();
    } catch (const os::FileError& error) {
        AfxThrowDaoException(NO_AFX_DAO_ERROR, error.fault() == os::FileFault::kDiskFull ? kDiskFull : kAccessDenied);
    }
}

void remove_quietly(const std::string& path) {
    try {
        if (os::file_system().exists(path)) os::file_system().remove(path);
    } catch (const os::FileError&) {
        // It is in nobody's way: the next creation tries again.
    }
}

void remove_draft(const std::string& draft) {
    remove_quietly(draft);
    remove_quietly(draft + kJournalSuffix);
}

void close_quietly(CDaoDatabase& database) {
    try {
        database.Close();
    } catch (CDaoException* e) {
        e->Delete();
    }
}

// A draft that a crash has left is made anew; one that somebody is working on is not touched.
void begin_draft(CDaoDatabase& database, const std::string& draft, const std::string& locale) {
    try {
        return database.Create(draft.c_str(), locale.c_str());
    } catch (CDaoException* e) {
        if (e->m_pErrorInfo->m_lErrorCode != kFileExists) throw;
        try {
            os::file_system().open(draft, os::OpenMode::kExclusive);
        } catch (const os::FileError&) {
            throw e;
        }
        e->Delete();
    }
    remove_draft(draft);
    database.Create(draft.c_str(), locale.c_str());
}

int fill_main_file(CDaoDatabase& database) {
    const auto tables = studio_tables();
    const std::size_t others = tables.size() - gear_tables().size();
    if (create_tables(database, tables.first(others)) != 0) return -1;
    if (create_gear_tables(database) != 0) return -1;
    return write_main_content(database);
}

int fill_invoice_file(CDaoDatabase& database) {
    return create_tables(database, invoice_tables()) != 0 ? -1 : write_invoice_content(database);
}

void create_file(CDaoDatabase& database, DatabaseFile file, int (*fill)(CDaoDatabase&)) {
    const std::string path = file_path(file);
    const std::string draft = path + kDraftSuffix;
    begin_draft(database, draft, locale_text(file));
    try {
        database.m_pWorkspace->BeginTrans();
        if (fill(database) != 0) AfxThrowDaoException(NO_AFX_DAO_ERROR, kReservedError);
        database.m_pWorkspace->CommitTrans();
        database.Close();
        with_dao_errors([&] {
            // Another process may have been faster.
            if (!os::file_system().exists(path)) os::file_system().rename(draft, path);
            os::file_system().sync_folder_of(path);
        });
    } catch (CDaoException*) {
        close_quietly(database);
        remove_draft(draft);
        throw;
    }
    remove_draft(draft);
    database.Open(path.c_str(), TRUE, FALSE, connect_text(file).c_str());
}

}  // namespace

void create_main_file(CDaoDatabase& database) { create_file(database, DatabaseFile::kMain, fill_main_file); }

void create_invoice_file(CDaoDatabase& database) { create_file(database, DatabaseFile::kInvoice, fill_invoice_file); }

}  // namespace db
