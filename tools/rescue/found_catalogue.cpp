#include "tools/rescue/found_catalogue.h"

#include <algorithm>

#include "jet/schema/definition_pages.h"
#include "jet/storage/row_codec.h"
#include "jet/tables/database.h"
#include "tools/rescue/found_row.h"

namespace tools {
namespace {

namespace tdef = jet::jet4::tdef;
using jet::ByteSpan;
using jet::ByteVector;
using jet::PageNumber;
using jet::TableDef;

constexpr const char16_t* kColumns[] = {u"Id", u"ParentId", u"Name", u"Type", u"Flags", u"LvProp"};

// A definition that goes over several pages is whole only with all of them.
std::optional<TableDef> read_definition(const PageSource& pages, PageNumber first) {
    ByteVector joined;
    std::vector<PageNumber> chain;
    for (PageNumber page_no = first; page_no != 0 && chain.size() < jet::kMaxDefinitionPages;) {
        if (page_no >= pages.page_count()) break;
        if (std::find(chain.begin(), chain.end(), page_no) != chain.end()) break;
        const ByteVector page = pages.page(page_no);
        jet::append_bytes(joined, ByteSpan(page).subspan(chain.empty() ? 0 : tdef::kPageHeader));
        chain.push_back(page_no);
        page_no = jet::load_u32(page, tdef::kNext);
    }
    if (joined.size() < pages.format().definition.fixed_header) return std::nullopt;
    joined[0] = jet::jet4::kTableDefPage;
    try {
        TableDef def = jet::parse_table_def(joined, first, pages.format(), pages.text_code_page());
        if (def.columns.empty()) return std::nullopt;
        return def;
    } catch (const jet::Error&) {
        return std::nullopt;
    }
}

template <class T>
std::optional<T> value_of(const TableDef& def, const FoundRow& row, const char16_t* name) {
    const auto position = def.find_column(name);
    if (!position || !row.stored[*position]) return std::nullopt;
    const jet::Value value = jet::decode_value(*row.stored[*position], def.columns[*position]);
    const T* const typed = std::get_if<T>(&value);
    return typed != nullptr ? std::optional<T>(*typed) : std::nullopt;
}

bool is_catalogue(const TableDef& def) {
    return std::all_of(std::begin(kColumns), std::end(kColumns),
                       [&](const char16_t* name) { return def.find_column(name).has_value(); });
}

void read_object(ByteSpan bytes, const TableDef& def, FoundCatalogue& into) {
    const FoundRow row = take_apart(bytes, def);
    if (row.fit == Fit::kNone) return;
    const auto id = value_of<std::int32_t>(def, row, u"Id");
    const auto parent = value_of<std::int32_t>(def, row, u"ParentId");
    const auto name = value_of<std::u16string>(def, row, u"Name");
    if (!id || *id <= 0 || parent != jet::jet4::kTablesContainer || !name || name->empty()) return;
    FoundObject object;
    object.name = *name;
    object.type = value_of<std::int16_t>(def, row, u"Type").value_or(std::int16_t{0});
    object.flags = static_cast<std::uint32_t>(value_of<std::int32_t>(def, row, u"Flags").value_or(0));
    if (const auto properties = row.stored[*def.find_column(u"LvProp")]) {
        object.properties.assign(properties->begin(), properties->end());
    }
    into.emplace(static_cast<PageNumber>(*id), std::move(object));
}

}  // namespace

bool is_definition_page(ByteSpan bytes) {
    if (bytes[0] == jet::jet4::kTableDefPage && bytes[jet::jet4::kPageKindMark] == 1) return true;
    return has_definition_mark(bytes);
}

std::map<PageNumber, TableDef> read_definitions(const PageSource& pages,
                                                const std::vector<PageNumber>& definition_pages) {
    std::map<PageNumber, TableDef> definitions;
    for (const PageNumber page : definition_pages) {
        if (auto def = read_definition(pages, page)) definitions.emplace(page, std::move(*def));
    }
    return definitions;
}

TableDef definition_of_catalogue(const jet::Format& format, std::uint16_t code_page) {
    jet::CreateOptions options;
    options.creation_date = 1;
    options.format = &format;
    if (code_page != 0) options.code_page = code_page;
    const ByteVector file = jet::build_empty_database(options);
    const ByteSpan page = ByteSpan(file).subspan(jet::jet4::kObjectsPage * format.page_size, format.page_size);
    return jet::parse_table_def(page, jet::jet4::kObjectsPage, format, code_page);
}

FoundCatalogue read_catalogue(const PageSource& pages, const std::vector<PageNumber>& row_pages,
                              const std::map<PageNumber, TableDef>& definitions) {
    const auto own = definitions.find(jet::jet4::kObjectsPage);
    const TableDef def = own != definitions.end() && is_catalogue(own->second)
                             ? own->second
                             : definition_of_catalogue(pages.format(), pages.text_code_page());
    FoundCatalogue catalogue;
    for (const PageNumber page_no : row_pages) {
        const ByteVector page = pages.page(page_no);
        for (const FoundSlot& slot : look_at_page(page, pages.present(page_no)).slots) {
            if (slot.is_deleted() || !slot.is_placed) continue;
            read_object(ByteSpan(page).subspan(slot.begin, slot.end - slot.begin), def, catalogue);
        }
    }
    return catalogue;
}

}  // namespace tools
