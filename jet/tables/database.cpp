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
#include "jet/schema/definition_store.h"
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

FileHeader read_header(os::File& file, const std::string& path) {
    ByteVector page(jet4::kPageSize);
    const std::size_t got = with_engine_errors([&] { return file.read(0, page); });
    page.resize(got);
    return parse_header(page, path);
}

// Whether what the header says of the encoding is true.
void check_first_pages(Pager& pager) {
    if (pager.kind().encryption_key == 0) return;
    const auto begins = [&](PageNumber page_no, std::uint8_t kind) {
        const Page page = pager.read(page_no);
        return page.bytes()[0] == kind && page.bytes()[jet4::kPageKindMark] == 1;
    };
    if (!begins(jet4::kGlobalMapPage, jet4::kDataPage) || !begins(jet4::kObjectsPage, jet4::kTableDefPage)) {
        fail(errors::kDamaged, pager.path() + " is damaged: its pages are encoded with another key than it names.");
    }
}

}  // namespace

struct Database::Impl {
    Impl(std::unique_ptr<os::File> file, const std::string& path, const PagerOptions& options)
        : storage(os::file_system(), std::move(file), path, options), definitions(storage) {
        if (!options.read_only) open_path.emplace(path);
    }

    Storage storage;
    DefinitionStore definitions;
    FileHeader header;
    std::optional<OpenPaths> open_path;
    std::map<PageNumber, std::unique_ptr<Table>> tables;
    std::unique_ptr<Catalog> catalog;
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
    // A journal may bring another header: both are looked at. The password before anything else happens to the file, a
    // replay of its journal included.
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
    header = parse_header(impl->storage.pager().read(jet4::kHeaderPage).bytes(), path);
    check_password();
    const FileKind& kind = impl->storage.pager().kind();
    if (header.format != kind.format || header.encryption_key != kind.encryption_key) {
        corrupt(jet4::kHeaderPage, "a journal makes another kind of file of it");
    }
    impl->header = header;
    impl->definitions.use_code_page(header.text_code_page());
    check_first_pages(impl->storage.pager());
    if (options.read_only) impl->storage.read_past_damage(options.on_damage);
    auto database = std::unique_ptr<Database>(new Database(std::move(impl)));
    database->open_catalog();
    return database;
}

Database::Database(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {
    pager().set_rollback_listener([this] {
        impl_->storage.forget();
        impl_->definitions.forget();
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

// Opens a table that is not open yet.
Table& Database::keep(PageNumber page, const std::u16string& name) {
    auto table = std::make_unique<Table>(impl_->storage, impl_->definitions, impl_->definitions.load(page, name));
    return *(impl_->tables[page] = std::move(table));
}

void Database::open_catalog() {
    Table& objects = keep(jet4::kObjectsPage, u"MSysObjects");
    Table& aces = keep(jet4::kAcesPage, u"MSysACEs");
    impl_->catalog = std::make_unique<Catalog>(objects, aces);
    impl_->definitions.use(*impl_->catalog);
    impl_->catalog->tables();
}

const std::string& Database::path() const { return impl_->storage.pager().path(); }
std::uint16_t Database::code_page() const { return impl_->header.text_code_page(); }
const FileHeader& Database::header() const { return impl_->header; }
Storage& Database::storage() { return impl_->storage; }

void Database::close() {
    if (pager().is_closed()) return;  // a closing that failed has let go of the file all the same
    struct Release {
        Impl& impl;
        ~Release() { impl.open_path.reset(); }
    } release{*impl_};
    while (pager().in_transaction()) pager().rollback();
    if (!pager().read_only()) {
        try {
            for (auto& [page, table] : impl_->tables) {
                // One whose making was taken back is not in the file.
                if (impl_->catalog && impl_->catalog->find(static_cast<std::int32_t>(page))) table->flush_autonumber();
            }
        } catch (const Error&) {
            // A number that could not be stored may be handed out again; nothing else is lost.
        } catch (const std::bad_alloc&) {
            // The same.
        }
    }
    pager().close();
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

std::string Database::why_no_table(std::u16string_view name) {
    const std::string quoted = "'" + to_utf8(name) + "'";
    const Catalog::Object* object = impl_->catalog->find(name);
    if (!object) return "There is no table " + to_utf8(name) + " in " + path() + ".";
    if (object->entry.type == kQueryObject) return quoted + " is a query of " + path() + ", no table.";
    if (object->entry.type != kLinkedTable && object->entry.type != kLinkedOdbcTable) {
        return quoted + " is no table of " + path() + ".";
    }
    const LinkTarget target = impl_->catalog->link_target(*object);
    std::string where = target.database.empty() ? target.connect : target.database;
    if (where.empty()) where = "another database";
    return quoted + " is linked to " + (target.table.empty() ? "" : "'" + target.table + "' in ") + where +
           "; open that instead.";
}

bool Database::is_replica() { return find_table(u"MSysReplicas") != nullptr || find_table(u"MSysRepInfo") != nullptr; }

Table* Database::table_by_page(PageNumber page) {
    const auto known = impl_->tables.find(page);
    if (known != impl_->tables.end()) return known->second.get();
    const Catalog::Object* object = impl_->catalog->find(static_cast<std::int32_t>(page));
    if (!object || object->entry.type != kTableObject) return nullptr;
    return &keep(page, object->entry.name);
}

namespace {

Table& require_table(Database& database, std::u16string_view name) {
    Table* table = database.find_table(name);
    if (!table) fail(errors::kNotInCollection, database.why_no_table(name));
    if (table->watched()) {
        fail(errors::kTableLocked, "Table '" + to_utf8(name) + "' cannot be changed while a record set is open on it.");
    }
    return *table;
}

}  // namespace

std::optional<std::string> Database::why_schema_is_fixed() {
    for (const PageNumber page : {jet4::kObjectsPage, jet4::kAcesPage}) {
        if (auto reason = table_by_page(page)->why_not_writable()) return reason;
    }
    return std::nullopt;
}

SchemaEditor Database::schema_editor() { return {impl_->storage, impl_->definitions, *impl_->catalog, impl_->header}; }

void Database::create_table(std::u16string_view name, std::span<const NewColumn> columns) {
    Transaction transaction(pager());
    schema_editor().create_table(name, columns);
    const auto page = static_cast<PageNumber>(impl_->catalog->find(name)->entry.id);
    if (const auto left = impl_->tables.find(page); left != impl_->tables.end()) left->second->begin_anew(name);
    transaction.commit();
}

void Database::add_column(std::u16string_view table, const NewColumn& column) {
    Table& changed = require_table(*this, table);
    Transaction transaction(pager());
    const TableDef old_def = changed.def();
    const bool reshapes = schema_editor().add_column(old_def, column);
    changed.forget();
    if (reshapes) changed.rewrite_rows(old_def, column.autonumber);
    transaction.commit();
}

void Database::delete_column(std::u16string_view table, std::u16string_view column) {
    Table& changed = require_table(*this, table);
    Transaction transaction(pager());
    const TableDef old_def = changed.def();
    schema_editor().delete_column(old_def, column);
    changed.forget();
    if (old_def.columns[*old_def.find_column(column)].is_autonumber()) changed.restart_autonumbers();
    transaction.commit();
}

void Database::change_password(std::u16string_view old_password, std::u16string_view new_password) {
    if (impl_->header.password != old_password) {
        fail(errors::kWrongPassword, "The old password of " + path() + " is wrong.");
    }
    FileHeader changed = impl_->header;
    changed.password = new_password;
    Transaction transaction(pager());
    {
        const MutablePage page = pager().modify(jet4::kHeaderPage);
        store_password(page.bytes(), impl_->header, new_password);
    }
    impl_->catalog->reencrypt(impl_->header, changed);
    transaction.commit();
    impl_->header = std::move(changed);
}

}  // namespace jet
