#include "jet/tables/database.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <set>

#include "jet/indexes/collation.h"
#include "jet/pages/file_errors.h"
#include "jet/pages/header.h"
#include "jet/pages/journal.h"
#include "jet/schema/catalog.h"
#include "jet/schema/definition_pages.h"
#include "jet/schema/schema_editor.h"
#include "os/draft.h"
#include "os/system.h"

namespace jet {
namespace {

// Paths this process holds open for writing: a second opening here is told apart from one elsewhere.
class OpenPaths {
public:
    static bool contains(const std::string& path) {
        const std::lock_guard lock(mutex());
        return paths().count(path) != 0;
    }
    explicit OpenPaths(std::string path) : path_(std::move(path)) {
        const std::lock_guard lock(mutex());
        paths().insert(path_);
    }
    ~OpenPaths() {
        const std::lock_guard lock(mutex());
        paths().erase(paths().find(path_));
    }
    OpenPaths(const OpenPaths&) = delete;
    OpenPaths& operator=(const OpenPaths&) = delete;

private:
    static std::mutex& mutex() {
        static std::mutex instance;
        return instance;
    }
    static std::multiset<std::string>& paths() {
        static std::multiset<std::string> instance;
        return instance;
    }
    std::string path_;
};

void check_path(const std::string& path) {
    if (path.empty()) fail(errors::kBadFileName, "A database needs a file name.");
}

std::unique_ptr<os::File> open_file(const std::string& path, os::OpenMode mode) {
    try {
        return os::file_system().open(path, mode);
    } catch (const os::FileError& error) {
        if (error.fault() == os::FileFault::kLocked && OpenPaths::contains(path)) {
            fail(errors::kFileInUse, path + " is open already in this program.");
        }
        rethrow_as_engine_error(error);
    }
}

// Under another name until it is whole: nobody, whatever happens on the way, finds half a database.
void write_new_file(const std::string& path, ByteSpan pages) {
    os::FileSystem& files = os::file_system();
    const std::string draft = os::draft_name(path);
    bool is_named = false;
    try {
        with_engine_errors([&] {
            if (files.exists(path)) fail(errors::kFileExists, path + " exists already.");
            std::unique_ptr<os::File> file = files.open(draft, os::OpenMode::kCreateExclusive);
            file->write(0, pages);
            file->sync();
            file.reset();
            files.rename(draft, path);
            is_named = true;
            files.sync_folder_of(path);
        });
    } catch (...) {
        os::remove_unless_in_use(is_named ? path : draft);
        throw;
    }
}

// Finds columns without going through all of them.
class ColumnsByName {
public:
    explicit ColumnsByName(TableDef& def) {
        for (ColumnDef& column : def.columns) columns_.push_back(&column);
        std::stable_sort(columns_.begin(), columns_.end(),
                         [](const ColumnDef* a, const ColumnDef* b) { return compare_text(a->name, b->name) < 0; });
    }
    ColumnDef* find(std::u16string_view name) const {
        const auto found = std::lower_bound(
            columns_.begin(), columns_.end(), name,
            [](const ColumnDef* column, std::u16string_view wanted) { return compare_text(column->name, wanted) < 0; });
        return found != columns_.end() && same_name((*found)->name, name) ? *found : nullptr;
    }

private:
    std::vector<ColumnDef*> columns_;
};

FileHeader read_header(os::File& file, const std::string& path) {
    ByteVector page(jet4::kPageSize);
    const std::size_t got = with_engine_errors([&] { return file.read(0, page); });
    page.resize(got);
    return parse_header(page, path);
}

}  // namespace

struct Database::Impl {
    Impl(std::unique_ptr<os::File> file, const std::string& path, const PagerOptions& options)
        : pager(os::file_system(), std::move(file), path, options), allocator(pager) {
        if (!options.read_only) open_path.emplace(path);
    }

    Pager pager;
    PageAllocator allocator;
    FileHeader header;
    std::optional<OpenPaths> open_path;
    std::map<PageNumber, std::unique_ptr<Table>> tables;
    std::unique_ptr<Catalog> catalog;
    std::map<PageNumber, PageNumber> definitions;  // pages of the loaded definitions, and their first pages
    ChainOwners chain_owners;
    DamageListener on_damage;
    std::set<std::pair<PageNumber, std::string>> named_damage;

    // A page of two definitions would be changed for the one behind the back of the other.
    void claim_definition(const std::vector<PageNumber>& pages) {
        for (const PageNumber page : pages) {
            const bool is_other = page != pages.front() && catalog && catalog->find(static_cast<std::int32_t>(page));
            if (is_other || definitions.emplace(page, pages.front()).first->second != pages.front()) {
                corrupt(page, "a page of a table definition belongs to two tables");
            }
        }
    }
};

std::unique_ptr<Database> Database::create(const std::string& path, const CreateOptions& options) {
    check_path(path);
    CreateOptions complete = options;
    if (complete.creation_date == 0) complete.creation_date = os::local_time_as_ole_date();
    const ByteVector pages = build_empty_database(complete);
    write_new_file(path, pages);
    OpenOptions open_options;
    open_options.password = complete.password;
    return open(path, open_options);
}

std::unique_ptr<Database> Database::open(const std::string& name, const OpenOptions& options) {
    check_path(name);
    const std::string path = os::file_system().resolved(name);
    std::unique_ptr<os::File> file =
        open_file(path, options.read_only ? os::OpenMode::kReadOnly : os::OpenMode::kExclusive);
    FileHeader header = read_header(*file, path);
    // A journal may bring another header: both are looked at.
    const auto check_encryption = [&] {
        if (header.encryption_key != 0) {
            fail(errors::kNotADatabase, path + " cannot be opened: its pages are encrypted.");
        }
    };
    check_encryption();
    // The password before anything else happens to the file, a replay of its journal included.
    const auto check_password = [&] {
        if (!options.ignore_password && !header.password.empty() && header.password != options.password) {
            fail(errors::kWrongPassword, "The password of " + path + " is missing or wrong.");
        }
    };
    PagerOptions pager_options = options.pager;
    pager_options.read_only = options.read_only;
    const bool has_journal = with_engine_errors([&] { return os::file_system().exists(Journal::path_for(path)); });
    if (!has_journal) check_password();
    auto impl = std::make_unique<Impl>(std::move(file), path, pager_options);
    header = parse_header(impl->pager.read(jet4::kHeaderPage).bytes(), path);
    check_encryption();
    check_password();
    impl->header = header;
    if (options.read_only) impl->on_damage = options.on_damage;
    auto database = std::unique_ptr<Database>(new Database(std::move(impl)));
    database->open_catalog();
    return database;
}

Database::Database(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {
    impl_->pager.set_rollback_listener([this] {
        impl_->allocator.forget();
        impl_->definitions.clear();
        impl_->chain_owners.forget();
        for (auto& [page, table] : impl_->tables) table->forget();
        if (impl_->catalog) impl_->catalog->forget();
    });
}

Database::~Database() {
    try {
        close();
    } catch (...) {
        // What is committed is in the journal; the next opening replays it.
    }
}

void Database::open_catalog() {
    const auto open_system = [&](PageNumber page, const char16_t* name) -> Table& {
        auto table = std::make_unique<Table>(*this, load_table_def(page, name));
        return *(impl_->tables[page] = std::move(table));
    };
    Table& objects = open_system(jet4::kObjectsPage, u"MSysObjects");
    Table& aces = open_system(jet4::kAcesPage, u"MSysACEs");
    impl_->catalog = std::make_unique<Catalog>(objects, aces);
    impl_->catalog->tables();
}

const std::string& Database::path() const { return impl_->pager.path(); }
Pager& Database::pager() { return impl_->pager; }
PageAllocator& Database::allocator() { return impl_->allocator; }
ChainOwners& Database::chain_owners() { return impl_->chain_owners; }

void Database::close() {
    if (impl_->pager.is_closed()) return;  // a closing that failed has let go of the file all the same
    struct Release {
        Impl& impl;
        ~Release() { impl.open_path.reset(); }
    } release{*impl_};
    if (!impl_->pager.read_only()) {
        try {
            for (auto& [page, table] : impl_->tables) table->flush_autonumber();
        } catch (const Error&) {
            // A number that could not be stored may be handed out again; nothing else is lost.
        } catch (const std::bad_alloc&) {
            // The same.
        }
    }
    impl_->pager.close();
}

TableDef Database::load_table_def(PageNumber page, const std::u16string& name) const {
    const DefinitionPages read = read_definition(impl_->pager, page);
    impl_->claim_definition(read.pages);
    TableDef def = parse_table_def(read.bytes, page);
    def.name = name;
    // The catalogue's own tables have no properties, and asking it for them would go in a circle.
    if (page <= jet4::kRelationshipsPage) return def;
    if (const Catalog::Object* object = impl_->catalog->find(static_cast<std::int32_t>(page))) {
        try {
            const PropertySet properties = impl_->catalog->properties(*object);
            const ColumnsByName columns(def);
            properties.visit_column_flags(u"AllowZeroLength", [&](std::u16string_view owner, bool value) {
                if (ColumnDef* column = columns.find(owner)) column->allow_zero_length = value;
            });
            properties.visit_column_flags(u"Required", [&](std::u16string_view owner, bool value) {
                if (ColumnDef* column = columns.find(owner)) column->required = value;
            });
        } catch (const Error& error) {
            if (!passes_over(object->row.page, error)) throw;
        }
    }
    return def;
}

void Database::forget_definition_pages() { impl_->definitions.clear(); }

bool Database::passes_over(PageNumber page, const Error& error) const {
    if (!impl_->on_damage) return false;
    if (error.number() != errors::kDamaged && error.number() != errors::kDiskError) return false;
    if (impl_->named_damage.emplace(page, error.what()).second) impl_->on_damage({page, error.what()});
    return true;
}

std::vector<CatalogEntry> Database::catalog() const {
    std::vector<CatalogEntry> entries;
    for (const Catalog::Object& object : impl_->catalog->tables()) entries.push_back(object.entry);
    return entries;
}

std::vector<std::u16string> Database::table_names() const {
    std::vector<std::u16string> names;
    for (const Catalog::Object& object : impl_->catalog->tables()) {
        if (object.entry.type == kTableObject && !object.entry.is_system()) names.push_back(object.entry.name);
    }
    return names;
}

Table* Database::find_table(std::u16string_view name) {
    const Catalog::Object* object = impl_->catalog->find(name);
    if (!object || object->entry.type != kTableObject) return nullptr;
    return table_by_page(static_cast<PageNumber>(object->entry.id));
}

Table* Database::table_by_page(PageNumber page) {
    const auto known = impl_->tables.find(page);
    if (known != impl_->tables.end()) return known->second.get();
    const Catalog::Object* object = impl_->catalog->find(static_cast<std::int32_t>(page));
    if (!object || object->entry.type != kTableObject) return nullptr;
    auto table = std::make_unique<Table>(*this, load_table_def(page, object->entry.name));
    return (impl_->tables[page] = std::move(table)).get();
}

namespace {

Table& require_table(Database& database, std::u16string_view name) {
    Table* table = database.find_table(name);
    if (!table) fail(errors::kNotInCollection, "There is no table '" + to_utf8(name) + "' in " + database.path() + ".");
    if (table->watched()) {
        fail(errors::kTableLocked, "Table '" + to_utf8(name) + "' cannot be changed while a record set is open on it.");
    }
    return *table;
}

}  // namespace

void Database::create_table(std::u16string_view name, std::span<const NewColumn> columns) {
    Transaction transaction(impl_->pager);
    SchemaEditor(*this, *impl_->catalog, impl_->header).create_table(name, columns);
    transaction.commit();
}

void Database::add_column(std::u16string_view table, const NewColumn& column) {
    Table& changed = require_table(*this, table);
    Transaction transaction(impl_->pager);
    SchemaEditor(*this, *impl_->catalog, impl_->header).add_column(changed, column);
    transaction.commit();
}

void Database::delete_column(std::u16string_view table, std::u16string_view column) {
    Table& changed = require_table(*this, table);
    Transaction transaction(impl_->pager);
    SchemaEditor(*this, *impl_->catalog, impl_->header).delete_column(changed, column);
    transaction.commit();
}

void Database::change_password(std::u16string_view old_password, std::u16string_view new_password) {
    if (impl_->header.password != old_password) {
        fail(errors::kWrongPassword, "The old password of " + path() + " is wrong.");
    }
    FileHeader changed = impl_->header;
    changed.password = new_password;
    Transaction transaction(impl_->pager);
    {
        const MutablePage page = impl_->pager.modify(jet4::kHeaderPage);
        store_password(page.bytes(), impl_->header, new_password);
    }
    impl_->catalog->reencrypt(impl_->header, changed);
    transaction.commit();
    impl_->header = std::move(changed);
}

}  // namespace jet
