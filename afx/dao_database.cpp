#include "afx/dao_database.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "afx/cache_pages.h"
#include "afx/component_lock.h"
#include "afx/dao_error.h"
#include "afx/engine_database.h"
#include "os/system.h"

namespace {

constexpr int kNoTransaction = 3034;

// All open databases of the module, linked through next_open_. A plain pointer: it needs no construction and
// outlives every static object.
CDaoDatabase* first_open_database = nullptr;

// Set by AfxDaoAbandon.
constinit std::atomic<bool> is_abandoned{false};

// Ends the engine when the module goes, before the engine's own static objects do: it is made after them, at
// the first database opened.
struct ExitGuard {
    ~ExitGuard() {
        if (!afx::lock_component_for_good()) AfxDaoAbandon();
        AfxDaoTerm();
    }
};

char folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool same_key(std::string_view a, std::string_view lower) {
    return std::equal(a.begin(), a.end(), lower.begin(), lower.end(), [](char x, char y) { return folded(x) == y; });
}

// The value of PWD in a connect or locale text: segments between ";", keys in any case, other keys ignored,
// the value literal to the end of its segment.
std::string password_in(const char* text) {
    std::string_view rest = text != nullptr ? text : "";
    while (!rest.empty()) {
        const std::size_t end = rest.find(';');
        const std::string_view segment = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
        const std::size_t equals = segment.find('=');
        if (equals != std::string_view::npos && same_key(segment.substr(0, equals), "pwd")) {
            return std::string(segment.substr(equals + 1));
        }
    }
    return {};
}

std::string with_extension(const char* name) {
    std::string path = name != nullptr ? name : "";
    const std::size_t separator = path.find_last_of("/\\");
    const std::size_t dot = path.find_last_of('.');
    const bool has_name = !path.empty() && separator != path.size() - 1;
    if (has_name && (dot == std::string::npos || (separator != std::string::npos && dot < separator))) path += ".MDB";
    return path;
}

void require_closed(const CDaoDatabase& database) {
    if (database.IsOpen()) jet::fail(jet::errors::kFileInUse, "This object has a database open already.");
}

}  // namespace

// ---- Contents ------------------------------------------------------------------------------------

BOOL CDaoDatabase::CanAppend() const {
    return afx::translated([&] { return afx::require_open(this).engine().why_schema_is_fixed(); }) ? FALSE : TRUE;
}

// ---- Users ---------------------------------------------------------------------------------------

void afx::DatabaseUser::link(CDaoDatabase* database) {
    if (linked_ == database) return;
    unlink();
    if (database == nullptr) return;
    linked_ = database;
    next_ = database->first_user_;
    if (next_ != nullptr) next_->previous_ = this;
    database->first_user_ = this;
}

void afx::DatabaseUser::unlink() {
    if (linked_ == nullptr) return;
    if (previous_ != nullptr) {
        previous_->next_ = next_;
    } else {
        linked_->first_user_ = next_;
    }
    if (next_ != nullptr) next_->previous_ = previous_;
    linked_ = nullptr;
    next_ = previous_ = nullptr;
}

// ---- Workspace -----------------------------------------------------------------------------------

CDaoWorkspace::~CDaoWorkspace() {
    for (CDaoDatabase* database : databases_) {
        database->m_pWorkspace = &database->own_workspace_;
        if (this != database->m_pWorkspace) database->own_workspace_.databases_.push_back(database);
    }
}

void CDaoWorkspace::BeginTrans() {
    afx::translated([&] {
        std::size_t begun = 0;
        try {
            for (; begun < databases_.size(); ++begun) afx::EngineDatabase::of(*databases_[begun]).begin();
        } catch (...) {
            while (begun > 0) afx::EngineDatabase::of(*databases_[--begun]).rollback();
            throw;
        }
    });
}

void CDaoWorkspace::CommitTrans() {
    afx::translated([&] {
        require_transaction();
        for (CDaoDatabase* database : databases_) {
            if (!afx::EngineDatabase::of(*database).in_transaction()) continue;
            try {
                afx::EngineDatabase::of(*database).commit();
            } catch (...) {
                database->close_users();
                throw;
            }
        }
    });
}

void CDaoWorkspace::Rollback() {
    afx::translated([&] {
        require_transaction();
        for (CDaoDatabase* database : databases_) {
            if (!afx::EngineDatabase::of(*database).in_transaction()) continue;
            database->close_users();
            afx::EngineDatabase::of(*database).rollback();
        }
    });
}

void CDaoWorkspace::require_transaction() const {
    const auto is_inside = [](const CDaoDatabase* one) { return afx::EngineDatabase::of(*one).in_transaction(); };
    if (std::none_of(databases_.begin(), databases_.end(), is_inside)) {
        jet::fail(kNoTransaction, "There is no open transaction.");
    }
}

// ---- Database ------------------------------------------------------------------------------------

CDaoDatabase::CDaoDatabase(CDaoWorkspace* workspace)
    : m_pWorkspace(workspace != nullptr ? workspace : &own_workspace_) {}

CDaoDatabase::~CDaoDatabase() {
    if (is_abandoned) {
        static_cast<void>(object_.release());
        return;
    }
    close_quietly();
    while (afx::DatabaseUser* user = first_user_) {
        user->unlink();
        user->database_destroyed();
    }
}

void CDaoDatabase::Create(const char* name, const char* locale, int options) {
    afx::translated([&] {
        require_closed(*this);
        if (options != 0 && options != dbVersion40) {
            jet::fail(jet::errors::kReserved, "The engine makes neither encrypted files nor files of older versions.");
        }
        jet::CreateOptions create;
        create.password = os::widen(password_in(locale));
        opened(std::make_unique<afx::EngineDatabase>(jet::Database::create(with_extension(name), create), true));
    });
}

void CDaoDatabase::Open(const char* name, BOOL exclusive, BOOL read_only, const char* connect) {
    afx::translated([&] {
        require_closed(*this);
        jet::OpenOptions open;
        open.password = os::widen(password_in(connect));
        open.read_only = read_only != FALSE;
        open.pager.cache_pages = afx::cache_pages;
        opened(std::make_unique<afx::EngineDatabase>(jet::Database::open(name != nullptr ? name : "", open),
                                                     exclusive != FALSE));
    });
}

void CDaoDatabase::opened(std::unique_ptr<DAODatabase> object) {
    static const ExitGuard guard;
    own_workspace_.databases_.reserve(1);  // it may get this database from another workspace's destructor
    m_pWorkspace->databases_.push_back(this);
    object_ = std::move(object);
    m_pDAODatabase = object_.get();
    next_open_ = std::exchange(first_open_database, this);
}

void CDaoDatabase::close_users() noexcept {
    for (afx::DatabaseUser* user = first_user_; user != nullptr; user = user->next_) user->database_closing();
}

void CDaoDatabase::close_quietly() noexcept {
    try {
        // Not virtually: the object may be on its way out.
        CDaoDatabase::Close();
    } catch (CDaoException* e) {
        e->Delete();  // what was committed waits in the journal for the next opening
    } catch (const std::bad_alloc&) {
        // The same, and no memory to say so.
    }
}

void CDaoDatabase::Close() {
    if (!IsOpen()) return;
    close_users();
    std::erase(m_pWorkspace->databases_, this);
    for (CDaoDatabase** link = &first_open_database; *link != nullptr; link = &(*link)->next_open_) {
        if (*link != this) continue;
        *link = next_open_;
        break;
    }
    next_open_ = nullptr;
    m_pDAODatabase = nullptr;
    const std::unique_ptr<DAODatabase> object = std::move(object_);
    afx::translated([&] { static_cast<afx::EngineDatabase&>(*object).close(); });
}

void AfxDaoAbandon() noexcept { is_abandoned = true; }

void AfxDaoTerm() {
    if (is_abandoned) return;
    while (first_open_database != nullptr) {
        first_open_database->close_quietly();
    }
}
