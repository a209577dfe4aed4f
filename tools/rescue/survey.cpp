#include "tools/rescue/survey.h"

#include <algorithm>
#include <set>

#include "db/content.h"
#include "db/upgrade/schema_history.h"
#include "jet/indexes/collation.h"
#include "jet/schema/properties.h"
#include "tools/long_work.h"
#include "tools/paths.h"
#include "tools/rescue/found_row.h"
#include "tools/rescue/page_maps.h"
#include "tools/rescue/table_guess.h"

namespace tools {
namespace {

using db::DatabaseFile;
using jet::ByteSpan;
using jet::ByteVector;
using jet::PageNumber;
using jet::TableDef;

constexpr PageNumber kLastFixedPage = jet::jet4::kRelationshipsPage;
constexpr std::size_t kSampleRows = 300;

// One or two characters are others: what damage makes of a name.
bool is_nearly(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) return false;
    std::size_t others = 0;
    for (std::size_t i = 0; i < a.size(); ++i) others += a[i] != b[i] ? 1 : 0;
    return others <= 2 && others < a.size();
}

}  // namespace

FileSurvey::FileSurvey(const PageSource& pages) : pages_(pages), long_values_(pages), notes_(pages.page_count()) {
    note_pages();
    read_schema();
    find_studio_file();
    if (studio_file_) find_version();
    add_defined_tables();
    if (studio_file_) name_by_schema();
    add_undefined_tables();
    if (studio_file_) prefer_known_layouts();
    read_properties();
    std::sort(tables_.begin(), tables_.end(),
              [](const SurveyedTable& a, const SurveyedTable& b) { return a.page < b.page; });
    for (SurveyedTable& table : tables_) {
        if (table.def.name.empty()) {
            table.def.name = u"Table_" + jet::from_utf8(std::to_string(table.page));
            table.is_named_by_guess = true;
        }
        table.owned = read_page_map(pages_, table.def.owned_map);
    }
    assign_pages();
    drop_given_up_pages();
}

void FileSurvey::note_pages() {
    ByteVector page(pages_.page_size());
    LongWork work("pages looked at", notes_.size());
    for (PageNumber page_no = 1; page_no < notes_.size(); ++page_no) {
        work.step();
        pages_.read(page_no, page);
        const bool is_head = has_definition_mark(page);
        const FoundPage look = look_at_page(page, pages_.present(page_no));
        if (!is_head && look.holds_rows) {
            const bool is_long = look.owner == jet::jet4::data::kLongValueOwner;
            notes_[page_no] = {is_long ? Kind::kLongValues : Kind::kRows, look.owner};
            if (is_long) long_values_.note_page(page_no);
        } else if (is_definition_page(page)) {
            definition_pages_.push_back(page_no);
        }
    }
}

void FileSurvey::read_schema() {
    definitions_ = read_definitions(pages_, definition_pages_);
    std::vector<PageNumber> catalogue_pages;
    for (PageNumber page = 0; page < notes_.size(); ++page) {
        const PageNote& note = notes_[page];
        if (note.kind != Kind::kRows) continue;
        // A page with a damaged head may be one by the catalogue's own map.
        const bool is_its = note.owner == jet::jet4::kObjectsPage ||
                            (!definitions_.contains(note.owner) &&
                             listed_owner(page, note.owner) == PageNumber{jet::jet4::kObjectsPage});
        if (is_its) catalogue_pages.push_back(page);
    }
    catalogue_ = read_catalogue(pages_, catalogue_pages, definitions_);
    has_catalogue_ = !catalogue_.empty();
}

void FileSurvey::find_studio_file() {
    std::size_t most = 0;
    for (const DatabaseFile file : {DatabaseFile::kMain, DatabaseFile::kInvoice}) {
        std::set<std::string> found;
        for (const db::TableSchema* const table : known_tables(file)) {
            const bool is_named = std::any_of(catalogue_.begin(), catalogue_.end(), [&](const auto& object) {
                return jet::same_name(object.second.name, jet::from_utf8(table->name));
            });
            const bool is_defined =
                table->fields.size() > 3 && std::any_of(definitions_.begin(), definitions_.end(), [&](const auto& def) {
                    return has_columns_of(def.second, form_of(file), *table);
                });
            if (is_named || is_defined) found.insert(table->name);
        }
        const std::size_t enough = file == DatabaseFile::kMain ? 3 : 2;
        if (found.size() < enough || found.size() <= most) continue;
        most = found.size();
        studio_file_ = file;
    }
    if (studio_file_ || has_catalogue_) return;
    // With everything gone that says what a file is, there is its name.
    const std::string name = file_name_of(pages_.path());
    if (name.starts_with("sldb")) studio_file_ = DatabaseFile::kMain;
    if (name.starts_with("kvinvdb")) studio_file_ = DatabaseFile::kInvoice;
}

// By the row of the header's table, else by the tables that the catalogue and the definitions know.
void FileSurvey::find_version() {
    const auto tables = *studio_file_ == DatabaseFile::kMain ? db::studio_tables() : db::invoice_tables();
    const db::TableSchema& header = *db::find_table(tables, "DBHeader");
    const TableDef layout = layout_at(form(), header, db::kCurrentVersion);
    const auto try_rows_of = [&](PageNumber owner) {
        for (const ByteVector& bytes : sample_rows(owner)) {
            const FoundRow row = take_apart(bytes, layout);
            const auto column = layout.find_column(u"DBversion");
            if (row.fit == Fit::kNone || !column || !row.stored[*column]) continue;
            const std::int32_t stored = jet::load_i32(*row.stored[*column], 0);
            if (stored >= 100000 && stored <= 2 * db::kCurrentVersion) {
                version_ = history_version(stored);
                return true;
            }
        }
        return false;
    };
    for (const auto& [page, object] : catalogue_) {
        if (object.name == jet::from_utf8(header.name) && try_rows_of(page)) return;
    }
    for (const auto& [page, def] : definitions_) {
        if (has_columns_of(def, form(), header) && try_rows_of(page)) return;
    }
    if (!has_catalogue_) return;
    version_ = history_version(0);
    for (const db::VersionAdditions& additions : db::schema_history()) {
        for (const char* const name : additions.studio_tables) {
            for (const auto& [page, object] : catalogue_) {
                if (object.name == jet::from_utf8(name)) version_ = additions.version;
            }
        }
    }
}

void FileSurvey::add_defined_tables() {
    const auto free_pages = read_page_map(pages_, {jet::jet4::kGlobalMapPage, 0});
    for (const auto& [page, def] : definitions_) {
        if (page <= kLastFixedPage || def.kind == jet::jet4::tdef::kSystemTable) continue;
        const auto object = catalogue_.find(page);
        const bool is_listed = object != catalogue_.end();
        if (is_listed && (object->second.is_system() || object->second.type != 1)) continue;
        const bool has_rows = std::any_of(notes_.begin(), notes_.end(), [&, owner = page](const PageNote& note) {
            return note.kind == Kind::kRows && note.owner == owner;
        });
        // A table that was given up, or a definition that has come to lie on the page of another one.
        if (!is_listed && has_catalogue_ && (!has_rows || (free_pages && (*free_pages)[page]))) {
            strays_.push_back(def);
            continue;
        }
        SurveyedTable table;
        table.page = page;
        table.def = def;
        if (is_listed) table.def.name = object->second.name;
        tables_.push_back(std::move(table));
    }
}

bool FileSurvey::is_taken(const db::TableSchema* schema) const {
    return std::any_of(tables_.begin(), tables_.end(), [&](const SurveyedTable& t) { return t.schema == schema; });
}

bool FileSurvey::is_listed(const db::TableSchema* schema) const {
    return std::any_of(catalogue_.begin(), catalogue_.end(), [&](const auto& object) {
        return object.second.type == 1 && jet::same_name(object.second.name, jet::from_utf8(schema->name));
    });
}

void FileSurvey::name_by_schema() {
    const std::vector<const db::TableSchema*> known = known_tables(*studio_file_);
    for (SurveyedTable& table : tables_) {
        for (const db::TableSchema* const schema : known) {
            if (jet::same_name(table.def.name, jet::from_utf8(schema->name)) && !is_taken(schema))
                table.schema = schema;
        }
    }
    std::vector<SurveyedTable*> unnamed;
    for (SurveyedTable& table : tables_) {
        if (table.schema != nullptr) continue;
        if (table.def.name.empty()) unnamed.push_back(&table);
        for (const db::TableSchema* const schema : known) {
            const std::u16string name = jet::from_utf8(schema->name);
            if (is_taken(schema) || !is_nearly(table.def.name, name)) continue;
            if (!has_columns_of(table.def, form(), *schema)) continue;
            table.schema = schema;
            table.def.name = name;
        }
    }
    std::vector<const db::TableSchema*> open;
    for (const db::TableSchema* const schema : known) {
        if (!is_taken(schema)) open.push_back(schema);
    }
    const std::vector<std::size_t> matched = match_in_order(
        unnamed.size(), open.size(),
        [&](std::size_t i, std::size_t k) { return has_columns_of(unnamed[i]->def, form(), *open[k]) ? 1.0 : 0.0; });
    for (std::size_t i = 0; i < unnamed.size(); ++i) {
        if (matched[i] == kNoMatch) continue;
        unnamed[i]->schema = open[matched[i]];
        unnamed[i]->def.name = jet::from_utf8(unnamed[i]->schema->name);
        unnamed[i]->is_named_by_guess = true;
    }
}

std::vector<ByteVector> FileSurvey::sample_rows(PageNumber owner) const {
    std::vector<ByteVector> rows;
    for (PageNumber page_no = 0; page_no < notes_.size() && rows.size() < kSampleRows; ++page_no) {
        if (notes_[page_no].kind != Kind::kRows || notes_[page_no].owner != owner) continue;
        const ByteVector page = pages_.page(page_no);
        for (const FoundSlot& slot : look_at_page(page, pages_.present(page_no)).slots) {
            if (slot.is_deleted() || slot.is_pointer() || !slot.is_placed || slot.begin == slot.end) continue;
            rows.emplace_back(page.begin() + static_cast<std::ptrdiff_t>(slot.begin),
                              page.begin() + static_cast<std::ptrdiff_t>(slot.end));
        }
    }
    return rows;
}

// Owners of pages of rows whose definition is lost.
std::vector<FileSurvey::LostTable> FileSurvey::find_lost_tables() const {
    std::map<PageNumber, std::size_t> owners;
    for (const PageNote& note : notes_) {
        if (note.kind == Kind::kRows && note.owner > kLastFixedPage && !definitions_.contains(note.owner)) {
            ++owners[note.owner];
        }
    }
    std::vector<LostTable> lost;
    for (const auto& [owner, count] : owners) {
        const auto object = catalogue_.find(owner);
        const bool is_listed = object != catalogue_.end();
        if (is_listed && (object->second.is_system() || object->second.type != 1)) continue;
        // A single page of an owner that nobody knows is more likely one with a damaged head.
        if (owner >= notes_.size() || (!is_listed && count < 2 && has_catalogue_)) continue;
        std::vector<ByteVector> rows = sample_rows(owner);
        // So are several whose rows are those of a table that is there.
        const bool is_of_another = std::any_of(tables_.begin(), tables_.end(), [&](const SurveyedTable& t) {
            return t.def.columns.size() >= 3 && share_of_rows(rows, t.def) >= 0.8;
        });
        if (!is_listed && has_catalogue_ && is_of_another) continue;
        lost.push_back({owner, is_listed ? &object->second : nullptr, std::move(rows)});
    }
    return lost;
}

// The studio's tables that they are: by their names, else by what their rows look like.
void FileSurvey::name_lost_tables(std::vector<LostTable>& lost) const {
    const std::vector<const db::TableSchema*> known = known_tables(*studio_file_);
    for (LostTable& table : lost) {
        for (const db::TableSchema* const schema : known) {
            const bool is_its =
                table.object != nullptr && jet::same_name(table.object->name, jet::from_utf8(schema->name));
            if (is_its && !is_taken(schema)) table.schema = schema;
        }
    }
    std::vector<const db::TableSchema*> open;
    for (const db::TableSchema* const schema : known) {
        const bool is_named =
            std::any_of(lost.begin(), lost.end(), [&](const LostTable& t) { return t.schema == schema; });
        if (!is_taken(schema) && !is_named) open.push_back(schema);
    }
    std::vector<LostTable*> nameless;
    for (LostTable& table : lost) {
        if (table.object == nullptr && !table.rows.empty()) nameless.push_back(&table);
    }
    const std::vector<std::size_t> matched =
        match_in_order(nameless.size(), open.size(), [&](std::size_t i, std::size_t k) {
            const LayoutGuess guess = best_layout(nameless[i]->rows, form(), *open[k], version_);
            return guess.share >= 0.95 ? static_cast<double>(nameless[i]->rows.size()) + 1 : 0.0;
        });
    for (std::size_t i = 0; i < nameless.size(); ++i) {
        if (matched[i] != kNoMatch) nameless[i]->schema = open[matched[i]];
    }
}

// The definition that the table's rows go by, as far as one is known.
std::optional<TableDef> FileSurvey::definition_of(const LostTable& table) const {
    if (table.schema != nullptr) {
        const LayoutGuess guess = best_layout(table.rows, form(), *table.schema, version_);
        if (guess.layout != nullptr && guess.share >= 0.5) return guess.layout->def;
    }
    const auto stray = std::find_if(strays_.begin(), strays_.end(),
                                    [&](const TableDef& def) { return share_of_rows(table.rows, def) >= 0.9; });
    if (stray == strays_.end() || table.object == nullptr) return std::nullopt;
    TableDef def = *stray;
    def.name = table.object->name;
    return def;
}

void FileSurvey::add_undefined_tables() {
    std::vector<LostTable> lost = find_lost_tables();
    if (studio_file_) name_lost_tables(lost);
    for (const LostTable& table : lost) {
        auto def = definition_of(table);
        if (!def) {
            OrphanedRows orphan;
            orphan.owner = table.page;
            if (table.object != nullptr) orphan.name = table.object->name;
            orphans_.push_back(std::move(orphan));
            continue;
        }
        SurveyedTable found;
        found.page = table.page;
        found.schema = table.schema;
        found.def = std::move(*def);
        found.def.page = table.page;
        found.is_rebuilt = true;
        found.is_named_by_guess = table.object == nullptr;
        tables_.push_back(std::move(found));
    }
}

// A definition that its own rows contradict has been damaged without becoming unreadable.
void FileSurvey::prefer_known_layouts() {
    for (SurveyedTable& table : tables_) {
        if (table.schema == nullptr || table.is_rebuilt) continue;
        if (is_known_layout(table.def, form(), *table.schema)) continue;
        const std::vector<ByteVector> rows = sample_rows(table.page);
        const double own = share_of_rows(rows, table.def);
        const LayoutGuess guess = best_layout(rows, form(), *table.schema, version_);
        const bool fits_better = guess.layout != nullptr && guess.share >= 0.9 && own < guess.share;
        const KnownLayout* const twin = twin_layout(table.def, form(), *table.schema);
        // Without rows to tell, another table's definition stands here.
        const bool is_another = rows.empty() && !has_columns_of(table.def, form(), *table.schema);
        const KnownLayout* const right = fits_better  ? guess.layout
                                         : is_another ? layout_of_version(form(), *table.schema, version_)
                                                      : twin;
        if (right == nullptr) continue;
        TableDef mended = right->def;
        mended.page = table.page;
        mended.owned_map = table.def.owned_map;
        mended.free_map = table.def.free_map;
        mended.row_count = table.def.row_count;
        mended.last_autonumber = table.def.last_autonumber;
        table.def = std::move(mended);
        table.is_rebuilt = true;
    }
}

void FileSurvey::read_properties() {
    for (SurveyedTable& table : tables_) {
        const auto object = catalogue_.find(table.page);
        bool has_properties = false;
        if (object != catalogue_.end() && !object->second.properties.empty()) {
            const FoundLongValue blob = long_values_.read(object->second.properties);
            try {
                if (blob.is_whole && !blob.bytes.empty()) {
                    const jet::PropertySet properties = jet::parse_properties(blob.bytes, pages_.text_code_page());
                    for (jet::ColumnDef& column : table.def.columns) {
                        column.allow_zero_length = properties.column_flag(column.name, u"AllowZeroLength", true);
                    }
                    has_properties = true;
                }
            } catch (const jet::Error&) {
                // Properties that cannot be read say nothing.
            }
        }
        if (has_properties || table.schema == nullptr) continue;
        for (jet::ColumnDef& column : table.def.columns) {
            const db::FieldSchema* const field = db::find_field(*table.schema, jet::to_utf8(column.name).c_str());
            column.allow_zero_length =
                field == nullptr || field->kind == db::FieldKind::kText || field->kind == db::FieldKind::kMemo;
        }
    }
}

}  // namespace tools
