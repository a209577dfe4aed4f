// CDaoDatabase: a database file, open or not, and everything opened on it. CDaoWorkspace: transactions over
// the databases opened through it.
//
// Invariants
//  1. A database is open exactly while m_pDAODatabase is not null.
//  2. Closing a database closes every record set and table definition on it; these objects live on, may be
//     opened again, and outlive the database object itself without harm.
//  3. Every call throws CDaoException* and nothing else, or std::bad_alloc where there is no memory for one. Closing
//     asks for no memory, and whatever it throws leaves the object closed. Calls are made by one thread at a time.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>
#include <kvdb/dao_exception.h>

#include <memory>
#include <vector>

#include "afx/dao_constants.h"

class CDaoDatabase;

// The engine's side of an open database.
class DAODatabase {
public:
    virtual ~DAODatabase() = default;
    // Narrow texts, at most 20 characters; "" stands for no password. Takes effect in the file at once, the
    // database stays usable. Fails with 0x800A0000 + 3031 (wrong old password) or 3621 (not exclusive).
    virtual HRESULT NewPassword(BSTR old_password, BSTR new_password) = 0;
};

// Throws the CDaoException* that a failed result stands for.
void DAO_CHECK(HRESULT result);
// Throws a CDaoException* with the number inside `scode` (0x800A0000 + number).
[[noreturn]] void AfxThrowDaoException(int afx_error, SCODE scode);

// Transactions nest. A database belongs to the transaction when it was open at BeginTrans.
class CDaoWorkspace : public CObject {
public:
    CDaoWorkspace() = default;
    ~CDaoWorkspace() override;

    virtual void BeginTrans();
    // Everything since BeginTrans becomes durable as one change. When that fails nothing of it stays, and
    // the database's record sets and table definitions are closed. 3034 without a transaction.
    virtual void CommitTrans();
    // Takes back everything since BeginTrans. Closes the record sets and table definitions of its
    // databases: they may stand on rows that never were.
    virtual void Rollback();

private:
    friend class CDaoDatabase;
    void require_transaction() const;

    std::vector<CDaoDatabase*> databases_;  // open ones
};

namespace afx {

// Something opened on a database: linked to it from construction, told when it closes.
class DatabaseUser {
public:
    DatabaseUser(const DatabaseUser&) = delete;
    DatabaseUser& operator=(const DatabaseUser&) = delete;

protected:
    DatabaseUser() = default;
    virtual ~DatabaseUser() { unlink(); }
    void link(CDaoDatabase* database);
    void unlink();

private:
    friend class ::CDaoDatabase;
    virtual void database_closing() noexcept = 0;
    virtual void database_destroyed() noexcept = 0;

    CDaoDatabase* linked_ = nullptr;
    DatabaseUser* next_ = nullptr;
    DatabaseUser* previous_ = nullptr;
};

}  // namespace afx

class CDaoDatabase : public CObject {
public:
    // Null: a workspace of its own.
    explicit CDaoDatabase(CDaoWorkspace* workspace = nullptr);
    ~CDaoDatabase() override;

    // Makes a new file and leaves it open, exclusively. A name without an extension gets ".MDB". A password
    // comes as ";PWD=..." behind the locale text (or alone); it lasts to the next ";". 3204 when the file
    // exists, 3044, 3055, 3051 for its place, 3045 when this object is open.
    virtual void Create(const char* name, const char* locale = dbLangGeneral, int options = 0);
    // `connect` is "" or ";PWD=password". The file is held exclusively whatever `exclusive` says; what it
    // does decide is whether the password may be changed. 3024, 3044, 3055, 3031, 3356, 3045, 3051, 3343,
    // 3041, 3049; afterwards the object is closed.
    virtual void Open(const char* name, BOOL exclusive = FALSE, BOOL read_only = FALSE, const char* connect = "");
    // Discards pending edits, takes back open transactions, releases the file. Nothing when closed. The
    // object is closed even when the engine cannot write its last pages and this throws.
    virtual void Close();
    BOOL IsOpen() const { return m_pDAODatabase != nullptr; }
    // Whether table definitions and fields can be appended: the order of texts that the file lists its tables in may be
    // one that the engine reads and does not keep. 3420, 3049.
    BOOL CanAppend() const;

    DAODatabase* m_pDAODatabase = nullptr;  // null when closed
    CDaoWorkspace* m_pWorkspace;

private:
    friend class afx::DatabaseUser;
    friend class CDaoWorkspace;
    friend void AfxDaoTerm();

    void opened(std::unique_ptr<DAODatabase> object);
    void close_users() noexcept;
    void close_quietly() noexcept;

    CDaoWorkspace own_workspace_;
    std::unique_ptr<DAODatabase> object_;
    afx::DatabaseUser* first_user_ = nullptr;
    CDaoDatabase* next_open_ = nullptr;  // of all open databases of the module
};

// Leaves every open database as it is, for good: nothing is closed, written or freed any more. For the end of the
// library while a thread is still inside it; what was committed waits in the journals.
void AfxDaoAbandon() noexcept;

// Closes every open database (hence every record set) without throwing. May be called again; databases may
// be opened again afterwards.
void AfxDaoTerm();
