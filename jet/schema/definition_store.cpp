#include "jet/schema/definition_store.h"

#include <algorithm>

#include "jet/indexes/collation.h"
#include "jet/schema/catalog.h"
#include "jet/schema/definition_pages.h"

namespace jet {

namespace tdef = jet4::tdef;

namespace {

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

// Writes one page of a definition: `bytes` behind a head of its own on all but the first.
void fill_page(const MutablePage& page, ByteSpan bytes, bool is_first, PageNumber next) {
    const std::size_t head = is_first ? 0 : tdef::kPageHeader;
    std::fill(page.bytes().begin(), page.bytes().end(), std::uint8_t{0});
    store_bytes(page.bytes(), head, bytes);
    page.bytes()[0] = jet4::kTableDefPage;
    page.bytes()[jet4::kPageKindMark] = 1;
    const std::size_t unused = page.bytes().size() - head - bytes.size();
    const std::size_t free_bytes = unused > tdef::kPageHeader ? unused - tdef::kPageHeader : 0;
    const Format& format = format_of(page.bytes());
    store_u16(page.bytes(), tdef::kFree,
              format.definition.free != 0 ? static_cast<std::uint16_t>(free_bytes) : tdef::kJet3Mark);
    store_u32(page.bytes(), tdef::kNext, next);
}

}  // namespace

void DefinitionStore::claim(const std::vector<PageNumber>& pages) {
    for (const PageNumber page : pages) {
        const bool is_other = page != pages.front() && catalog_ && catalog_->find(static_cast<std::int32_t>(page));
        if (is_other || owners_.emplace(page, pages.front()).first->second != pages.front()) {
            corrupt(page, "a page of a table definition belongs to two tables");
        }
    }
}

TableDef DefinitionStore::load(PageNumber page, const std::u16string& name) {
    const DefinitionPages read = read_definition(storage_.pager(), page);
    claim(read.pages);
    TableDef def = parse_table_def(read.bytes, page, storage_.pager().format(), code_page_);
    def.name = name;
    // The catalogue's own tables have no properties, and asking it for them would go in a circle.
    if (page > jet4::kRelationshipsPage) apply_properties(def);
    return def;
}

void DefinitionStore::apply_properties(TableDef& def) const {
    const Catalog::Object* object = catalog_->find(static_cast<std::int32_t>(def.page));
    if (!object) return;
    try {
        const PropertySet properties = catalog_->properties(*object);
        const ColumnsByName columns(def);
        properties.visit_column_flags(u"AllowZeroLength", [&](std::u16string_view owner, bool value) {
            if (ColumnDef* column = columns.find(owner)) column->allow_zero_length = value;
        });
        properties.visit_column_flags(u"Required", [&](std::u16string_view owner, bool value) {
            if (ColumnDef* column = columns.find(owner)) column->required = value;
        });
    } catch (const Error& error) {
        if (!storage_.passes_over(object->row.page, error)) throw;
    }
}

// Only pages that the present definition has been read from are used again.
void DefinitionStore::store(const TableDef& def) {
    Pager& pager = storage_.pager();
    PageAllocator& allocator = storage_.allocator();
    std::vector<PageNumber> pages{def.page};
    if (pager.read(def.page).bytes()[0] == jet4::kTableDefPage) pages = read_definition(pager, def.page).pages;
    const ByteVector bytes = build_table_def(def);
    // In Jet 3 the engine's own numbers stand behind the end of the catalogue's definition.
    const std::size_t own_at = pager.format().file_identity;
    const bool keeps_own = def.page == jet4::kObjectsPage && own_at != 0;
    if (keeps_own && bytes.size() > own_at) corrupt(def.page, "the catalogue's definition is too long");
    std::uint64_t identity = 0;
    std::uint64_t counter = 0;
    if (keeps_own) {
        const Page page = pager.read(def.page);
        identity = load_u64(page.bytes(), own_at);
        counter = load_u64(page.bytes(), pager.format().change_counter);
    }
    std::size_t used = 0;
    for (std::size_t at = 0; at < bytes.size(); ++used) {
        const std::size_t room = pager.format().page_size - (used == 0 ? 0 : tdef::kPageHeader);
        const std::size_t count = std::min(bytes.size() - at, room);
        const bool is_last = at + count == bytes.size();
        if (!is_last && used + 1 == pages.size()) pages.push_back(allocator.allocate().number());
        fill_page(pager.modify(pages[used]), ByteSpan(bytes).subspan(at, count), used == 0,
                  is_last ? 0 : pages[used + 1]);
        at += count;
    }
    for (; used < pages.size(); ++used) allocator.free(pages[used]);
    if (keeps_own) {
        const MutablePage page = pager.modify(def.page);
        store_u64(page.bytes(), own_at, identity);
        store_u64(page.bytes(), pager.format().change_counter, counter);
    }
    forget();
}

bool DefinitionStore::has_proved_order(const TableDef& def, const ColumnDef& column) const {
    return def.page != jet4::kObjectsPage && catalog_ != nullptr && catalog_->keeps_order_of(column);
}

void DefinitionStore::store_counts(const TableDef& def) {
    const MutablePage page = storage_.pager().modify(def.page);
    const Format::Definition& layout = storage_.pager().format().definition;
    store_u32(page.bytes(), layout.row_count, def.row_count);
    store_u32(page.bytes(), layout.last_autonumber, static_cast<std::uint32_t>(def.last_autonumber));
    std::size_t at = layout.fixed_header + tdef::kDistinctKeys;
    for (const RealIndex& index : def.real_indexes) {
        store_u32(page.bytes(), at, index.distinct_keys);
        at += layout.index_statistics;
    }
}

}  // namespace jet
