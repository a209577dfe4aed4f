// The first look at a damaged file: which tables it has, how their rows are laid out, and on which pages they stand.
//
// A page of rows names its table's definition page; that is believed before any map is. Maps and the catalogue speak
// only where a page cannot: whose a page with a damaged head is, and whether rows on a page that nobody lists are of
// today or were given up long ago.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "db/content.h"
#include "db/database_files.h"
#include "db/schema.h"
#include "jet/schema/table_def.h"
#include "tools/rescue/found_catalogue.h"
#include "tools/rescue/known_layouts.h"
#include "tools/rescue/long_value_finder.h"
#include "tools/rescue/page_source.h"

namespace tools {

struct SurveyedTable {
    jet::PageNumber page = 0;                 // of the definition: what its pages of rows name
    jet::TableDef def;                        // with its name, and with what the properties say of empty texts
    const db::TableSchema* schema = nullptr;  // of a studio's table
    bool is_rebuilt = false;                  // the definition is lost or damaged; this one is the studio's own
    bool is_named_by_guess = false;
    std::optional<std::vector<bool>> owned;      // its map, where it can be read
    std::vector<jet::PageNumber> row_pages;      // in order
    std::vector<jet::PageNumber> guessed_pages;  // of these, the ones whose head does not say so
    std::size_t lost_pages = 0;                  // of the map, which do not hold its rows any more
    std::size_t given_up_pages = 0;  // hold rows that neither its map nor the map of the file counts among its own
};

// Rows of which nobody knows how to read them.
struct OrphanedRows {
    jet::PageNumber owner = 0;
    std::u16string name;  // by the catalogue; empty where that does not know either
    std::size_t pages = 0;
    std::size_t rows = 0;
};

class FileSurvey {
public:
    // Reads the file several times over, and holds some bytes for each of its pages.
    explicit FileSurvey(const PageSource& pages);

    // Which of a studio's files it is; none for any other.
    std::optional<db::DatabaseFile> studio_file() const { return studio_file_; }
    // Of a studio's file.
    StudioForm form() const { return form_of(*studio_file_); }
    // In the order of creation.
    const std::vector<SurveyedTable>& tables() const { return tables_; }
    const std::vector<OrphanedRows>& orphans() const { return orphans_; }
    // Knows every page of long values, and no reference yet.
    LongValueFinder& long_values() { return long_values_; }
    bool has_catalogue() const { return has_catalogue_; }

private:
    enum class Kind : std::uint8_t { kOther, kRows, kLongValues };
    struct PageNote {
        Kind kind = Kind::kOther;
        std::uint32_t owner = 0;
    };

    // A table whose definition is lost.
    struct LostTable {
        jet::PageNumber page = 0;
        const FoundObject* object = nullptr;  // what the catalogue says of it
        std::vector<jet::ByteVector> rows;    // some of them
        const db::TableSchema* schema = nullptr;
    };

    void note_pages();
    void read_schema();
    void find_studio_file();
    void find_version();
    void add_defined_tables();
    void name_by_schema();
    std::vector<LostTable> find_lost_tables() const;
    void name_lost_tables(std::vector<LostTable>& lost) const;
    std::optional<jet::TableDef> definition_of(const LostTable& table) const;
    void add_undefined_tables();
    void prefer_known_layouts();
    void read_properties();
    void assign_pages();
    void drop_given_up_pages();

    StudioForm form_of(db::DatabaseFile file) const { return {file, &pages_.format(), pages_.text_code_page()}; }
    std::size_t index_of(jet::PageNumber owner) const;
    bool is_listed(const db::TableSchema* schema) const;
    bool is_taken(const db::TableSchema* schema) const;
    std::vector<jet::ByteVector> sample_rows(jet::PageNumber owner) const;
    std::optional<std::size_t> best_table(jet::PageNumber page_no) const;
    bool misses_pages(const SurveyedTable& table) const;
    std::optional<jet::PageNumber> listed_owner(jet::PageNumber page_no, jet::PageNumber but) const;

    const PageSource& pages_;
    LongValueFinder long_values_;
    std::vector<PageNote> notes_;
    std::vector<jet::PageNumber> definition_pages_;
    std::map<jet::PageNumber, jet::TableDef> definitions_;
    FoundCatalogue catalogue_;
    bool has_catalogue_ = false;
    std::vector<jet::TableDef> strays_;  // definitions of no table that the catalogue knows
    std::optional<db::DatabaseFile> studio_file_;
    std::int32_t version_ = history_version(db::kCurrentVersion);  // of the studio's file, as far as that can be told
    std::vector<SurveyedTable> tables_;
    std::vector<OrphanedRows> orphans_;
};

}  // namespace tools
