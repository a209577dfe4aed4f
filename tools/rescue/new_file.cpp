#include "tools/rescue/new_file.h"

#include "jet/check/check.h"
#include "jet/indexes/index_key.h"
#include "os/draft.h"
#include "os/file.h"
#include "tools/access.h"
#include "tools/errors.h"
#include "tools/file_copies.h"
#include "tools/long_work.h"
#include "tools/open_file.h"
#include "tools/rescue/checked_copy.h"

namespace tools {
namespace {

constexpr std::size_t kRowsOfATransaction = 500;

}  // namespace

NewFile::NewFile(const std::string& path, const std::string& like, const jet::CreateOptions& options, Place place)
    : path_(path), draft_(os::draft_name(path)), place_(place) {
    if (place == Place::kNew && os::file_system().exists(path)) {
        throw CommandError(path + " is there already; nothing is written over it");
    }
    os::clear_drafts(path);
    jet::OpenOptions open;
    open.password = options.password;
    open.pager.cache_pages = kToolCachePages;
    try {
        jet::Database::create(draft_, options)->close();
        take_access({like}, draft_);
        database_ = jet::Database::open(draft_, open);
    } catch (...) {
        remove_quietly(draft_);
        throw;
    }
}

NewFile::~NewFile() {
    filling_.reset();
    database_.reset();
    if (is_published_) return;
    remove_quietly(draft_);
    remove_quietly(draft_ + "-journal");
}

void NewFile::set_last_number(std::u16string_view table, std::int32_t number) {
    for (const jet::CatalogEntry& entry : database_->catalog()) {
        if (entry.type != 1 || entry.name != table) continue;
        jet::Transaction change(database_->pager());
        {
            const jet::MutablePage page = database_->pager().modify(static_cast<jet::PageNumber>(entry.id));
            jet::store_u32(page.bytes(), database_->pager().format().definition.last_autonumber,
                           static_cast<std::uint32_t>(number));
        }
        change.commit();
    }
}

jet::RowId NewFile::insert(jet::Table& table, std::vector<jet::Value> values) {
    if (!filling_) filling_ = std::make_unique<jet::Transaction>(database_->pager());
    const jet::RowId row = table.insert(std::move(values));
    if (++waiting_ >= kRowsOfATransaction) commit();
    return row;
}

void NewFile::commit() {
    // Over either way, should the disk refuse.
    const std::unique_ptr<jet::Transaction> filled = std::move(filling_);
    if (filled) filled->commit();
    waiting_ = 0;
}

void NewFile::finish() {
    commit();
    LongWork work("pages checked", database_->pager().page_count());
    const std::vector<jet::Violation> violations = jet::check_structure(*database_, [&] { work.step(); });
    database_->close();
    database_.reset();
    if (violations.empty()) return;
    throw CommandError("the new file is not sound, and is not kept: page " + std::to_string(violations.front().page) +
                       ": " + violations.front().detail);
}

void NewFile::publish(std::unique_ptr<os::File> replaced) {
    try {
        if (place_ == Place::kNew) os::file_system().rename(draft_, path_);
        if (place_ == Place::kReplace) replace_locked(draft_, path_, std::move(replaced));
    } catch (const os::FileError& error) {
        if (error.fault() != os::FileFault::kExists) throw;
        throw CommandError(path_ + " has come to be there meanwhile; nothing is written over it");
    }
    is_published_ = true;
    os::file_system().sync_folder_of(path_);
}

const jet::Format& format_like(const jet::Format& format, std::uint16_t code_page) {
    if (!format.is_jet3()) return format;
    jet::ColumnDef names;
    names.type = jet::ColumnType::kText;
    names.code_page = code_page;
    return jet::text_order(names) == jet::TextOrder::kGeneral97 ? format : jet::kJet4;
}

jet::NewColumn new_column_like(const jet::ColumnDef& column, bool& is_same) {
    using jet::ColumnType;
    jet::NewColumn made;
    made.name = column.name;
    made.type = column.type;
    made.allow_zero_length = column.allow_zero_length;
    made.compressed = column.is_compressed();
    is_same = true;
    switch (column.type) {
        case ColumnType::kLong: made.autonumber = column.is_autonumber(); break;
        case ColumnType::kText: {
            const auto characters = static_cast<int>(column.most_characters());
            made.text_characters = static_cast<std::uint16_t>(characters < 1 || characters > 255 ? 255 : characters);
            is_same = !column.is_fixed();
            break;
        }
        case ColumnType::kGuid:
        case ColumnType::kNumeric:
            made.type = ColumnType::kText;
            made.text_characters = 64;
            is_same = false;
            break;
        case ColumnType::kBinary:
        case ColumnType::kFixedBinary:
            made.type = ColumnType::kOle;
            is_same = false;
            break;
        case ColumnType::kComplexId:
            made.type = ColumnType::kLong;
            is_same = false;
            break;
        default: break;
    }
    return made;
}

}  // namespace tools
