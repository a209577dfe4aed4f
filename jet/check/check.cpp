// The order of the structural check, and its rules about whole pages: each has one use, or is free.
#include "jet/check/check.h"

#include "jet/check/check_parts.h"
#include "os/file.h"

namespace jet {

namespace check {

namespace {

constexpr std::size_t kMaxListed = 100;  // of one rule
constexpr std::size_t kMaxFindings = 100000;

const char* name_of(Use use) {
    switch (use) {
        case Use::kNone: return "nothing";
        case Use::kFixed: return "the file itself";
        case Use::kTableDef: return "a table definition";
        case Use::kMapRows: return "usage maps";
        case Use::kBitmap: return "a usage map's bits";
        case Use::kRows: return "rows of a table";
        case Use::kIndex: return "an index";
        case Use::kLongValue: return "long values";
    }
    return "";
}

}  // namespace

bool RowSet::insert(RowId row) {
    std::bitset<256>& slots = pages_[row.page];
    if (slots[row.slot]) return false;
    slots[row.slot] = true;
    ++size_;
    return true;
}

bool RowSet::contains(RowId row) const {
    const auto page = pages_.find(row.page);
    return page != pages_.end() && page->second[row.slot];
}

void RowSet::for_each(const std::function<void(RowId)>& visitor) const {
    for (const auto& [page, slots] : pages_) {
        for (std::size_t slot = 0; slot < slots.size(); ++slot) {
            if (slots[slot]) visitor({page, static_cast<std::uint8_t>(slot)});
        }
    }
}

Context::Context(Database& checked, std::vector<Violation>& into, const std::function<void()>& on_page)
    : database(checked),
      pager(checked.pager()),
      violations_(into),
      on_page_(on_page),
      uses_(pager.page_count(), Use::kNone) {}

void Context::report(PageNumber page, int row, std::string rule, std::string detail) {
    if (++count_ > kMaxFindings) throw Enough{};
    if (++counts_[rule] > kMaxListed) return;
    violations_.push_back({page, row, std::move(rule), std::move(detail)});
}

void Context::finish_counts() {
    for (const auto& [rule, count] : counts_) {
        if (count <= kMaxListed) continue;
        const std::size_t more = count - kMaxListed;
        violations_.push_back({0, -1, rule, "There are " + std::to_string(more) + " more of these.", more});
    }
    if (count_ > kMaxFindings) violations_.push_back({0, -1, "more", "There is more damage than was counted."});
}

bool Context::guard(PageNumber page, const char* rule, const std::function<void()>& part) {
    try {
        part();
        return true;
    } catch (const Error& error) {
        report(page, -1, rule, error.what());
        return false;
    }
}

bool Context::claim(PageNumber page, Use use) {
    if (page >= uses_.size()) {
        report(page, -1, "page-range", std::string("A page of ") + name_of(use) + " lies behind the end of the file.");
        return false;
    }
    if (uses_[page] != Use::kNone) {
        report(page, -1, "page-twice",
               std::string("The page is used for ") + name_of(uses_[page]) + " and for " + name_of(use) + ".");
        return false;
    }
    uses_[page] = use;
    if (on_page_) on_page_();
    return true;
}

void Context::finish_pages() {
    const PageAllocator& allocator = database.allocator();
    guard(jet4::kGlobalMapPage, "map", [&] {
        for (PageNumber page = 0; page < uses_.size(); ++page) {
            const bool is_free = allocator.is_free(page);
            if (is_free && uses_[page] != Use::kNone) {
                report(page, -1, "page-free",
                       std::string("The page is marked free and used for ") + name_of(uses_[page]) + ".");
            } else if (!is_free && uses_[page] == Use::kNone && !incomplete_) {
                report(page, -1, "page-leaked", "The page is neither free nor part of anything.");
            }
        }
    });
}

}  // namespace check

namespace {

using check::Context;
using check::Use;

// The first pages of all tables: those the catalogue names, and the four it stands in itself.
std::set<PageNumber> table_pages(Context& context) {
    std::set<PageNumber> pages{jet4::kObjectsPage, jet4::kAcesPage, jet4::kQueriesPage, jet4::kRelationshipsPage};
    const bool read = context.guard(jet4::kObjectsPage, "catalog", [&] {
        for (const CatalogEntry& entry : context.database.catalog()) {
            if (entry.type == 1 && entry.id > 0) pages.insert(static_cast<PageNumber>(entry.id));
        }
    });
    if (!read) context.mark_incomplete();
    return pages;
}

void check_table(Context& context, PageNumber page) {
    const std::optional<TableDef> def = check::check_definition(context, page);
    if (!def) {
        context.mark_incomplete();
        return;
    }
    const check::TableRows rows = check::check_rows(context, *def);
    const bool opened = context.guard(page, "table-definition", [&] {
        const Table* table = context.database.table_by_page(page);
        if (!table) fail(errors::kDamaged, "The table cannot be opened.");
        check::check_indexes(context, *def, *table, rows);
    });
    if (!opened || !rows.complete) context.mark_incomplete();
}

void check_file_size(Context& context, Pager& pager) {
    // A file open for writing has been found to be whole when it was opened.
    if (!pager.read_only()) return;
    try {
        const std::uint64_t size = os::file_system().open(pager.path(), os::OpenMode::kReadOnly)->size();
        if (size % pager.format().page_size != 0) context.report(0, -1, "file-size", "The file ends inside a page.");
    } catch (const os::FileError& error) {
        context.report(0, -1, "file-size", error.what());
    }
}

void check_all(Context& context, Database& database) {
    check_file_size(context, database.pager());
    context.claim(jet4::kHeaderPage, Use::kFixed);
    context.guard(jet4::kGlobalMapPage, "map", [&] {
        for (const PageNumber page : database.allocator().bitmap_pages()) context.claim(page, Use::kBitmap);
    });
    context.claim_map_row({jet4::kGlobalMapPage, 0}, "the file");
    context.read_map({jet4::kGlobalMapPage, 1}, "the file");
    for (const PageNumber page : table_pages(context)) check_table(context, page);
    context.finish_map_pages();
    context.finish_pages();
}

}  // namespace

std::vector<Violation> check_structure(Database& database, const std::function<void()>& on_page) {
    std::vector<Violation> violations;
    Context context(database, violations, on_page);
    try {
        check_all(context, database);
    } catch (const check::Enough&) {
        // The last of the violations says so.
    }
    context.finish_counts();
    return violations;
}

}  // namespace jet
