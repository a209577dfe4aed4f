#include "tools/rescue/salvage.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>

#include "db/content.h"
#include "db/upgrade/schema_history.h"
#include "jet/indexes/collation.h"
#include "jet/pages/header.h"
#include "jet/storage/row_codec.h"
#include "tools/errors.h"
#include "tools/long_work.h"
#include "tools/rescue/known_layouts.h"
#include "tools/rescue/new_file.h"
#include "tools/rescue/page_source.h"
#include "tools/rescue/row_walk.h"
#include "tools/rescue/survey.h"
#include "tools/value_text.h"

namespace tools {
namespace {

using db::DatabaseFile;
using jet::ByteSpan;
using jet::ByteVector;
using jet::ColumnType;
using jet::PageNumber;
using jet::TableDef;
using jet::Value;

constexpr char16_t kHeaderTable[] = u"DBHeader";
constexpr char16_t kVersionColumn[] = u"DBversion";
constexpr std::int32_t kOldestVersion = 100000;
constexpr std::int32_t kNewestVersion = 300000;  // far beyond this program's own
constexpr std::int32_t kNewPasswordSince = 100006;
// So far a table may have numbered on beyond its last row for its count to be believed.
constexpr std::int32_t kMostNumbersAhead = 1000000;

// What a first walk over a table's rows has found.
struct TableFacts {
    std::optional<std::size_t> key;  // position of the column of automatic numbers
    std::int32_t highest = 0;
    std::size_t rows = 0;
    std::size_t above = 0;                 // keys beyond the last number that the definition knows
    bool believes_last = false;            // the definition's last number
    std::set<std::size_t> has_empty_text;  // columns
};

std::optional<std::int32_t> key_of(const FoundRow& row, const TableFacts& facts) {
    if (!facts.key || !row.stored[*facts.key]) return std::nullopt;
    return jet::load_i32(*row.stored[*facts.key], 0);
}

class Salvage {
public:
    Salvage(const std::string& from, const std::string& to)
        : pages_(from, PageSource::Bytes::kDecoded), survey_(require_pages(pages_)), to_(to) {}

    SalvageReport run() {
        report_.studio_file = survey_.studio_file();
        facts_.resize(survey_.tables().size());
        for (std::size_t i = 0; i < facts_.size(); ++i) look_at_rows(i);
        survey_.long_values().settle();
        find_version();
        const bool is_anything =
            std::any_of(facts_.begin(), facts_.end(), [](const TableFacts& f) { return f.rows > 0; });
        if (!is_anything && survey_.tables().empty()) {
            throw CommandError("nothing of " + pages_.path() + " can be read as a table; no file was made");
        }
        jet::CreateOptions options;
        options.password = password();
        set_format(options);
        options.encryption_key = pages_.encryption_key();
        NewFile file(to_, pages_.path(), options);
        make_tables(file);
        for (std::size_t i = 0; i < facts_.size(); ++i) copy_rows(file, i);
        mend_header(file);
        note_file();
        file.finish();
        check_counts(file.draft());
        file.publish();
        return std::move(report_);
    }

private:
    static const PageSource& require_pages(const PageSource& pages) {
        if (pages.page_count() < 3) {
            throw CommandError("there is nothing to save in " + pages.path() + ": it has " +
                               plural(pages.page_count(), "page", "pages") + " and no rows");
        }
        return pages;
    }

    void set_format(jet::CreateOptions& options) {
        const std::uint16_t code_page = pages_.text_code_page();
        options.format = &format_like(pages_.format(), code_page);
        if (options.format->is_jet3()) options.code_page = code_page;
        if (options.format == &pages_.format()) return;
        report_.notes.push_back("The new file is one of Jet 4: the order of texts in code page " +
                                std::to_string(code_page) + " is not known for every letter.");
    }

    const SurveyedTable& table(std::size_t i) const { return survey_.tables()[i]; }

    void look_at_rows(std::size_t i) {
        const TableDef& def = table(i).def;
        TableFacts& facts = facts_[i];
        for (std::size_t c = 0; c < def.columns.size() && !facts.key; ++c) {
            if (def.columns[c].is_autonumber() && def.columns[c].type == ColumnType::kLong) facts.key = c;
        }
        LongWork work("rows found", std::min(std::uint64_t{def.row_count}, std::uint64_t{256} * pages_.page_count()));
        walk_rows(pages_, table(i), [&](jet::RowId, const FoundRow& row, unsigned) {
            work.step();
            ++facts.rows;
            if (const auto key = key_of(row, facts)) {
                if (*key > def.last_autonumber || *key < 1) ++facts.above;
                if (*key <= def.last_autonumber) facts.highest = std::max(facts.highest, *key);
            }
            for (std::size_t c = 0; c < def.columns.size(); ++c) {
                if (!row.stored[c]) continue;
                if (def.columns[c].is_long()) survey_.long_values().note_reference(*row.stored[c]);
                if (!def.columns[c].allow_zero_length && row.stored[c]->empty()) facts.has_empty_text.insert(c);
            }
            read_version(table(i), row);
        });
        // A definition that knows fewer numbers than its rows have is wrong itself; a few rows beyond it are.
        facts.believes_last = def.last_autonumber > 0 && facts.above <= 3 + facts.rows / 100 &&
                              def.last_autonumber - facts.highest <= kMostNumbersAhead;
    }

    void read_version(const SurveyedTable& found, const FoundRow& row) {
        if (version_ || !jet::same_name(found.def.name, kHeaderTable)) return;
        const auto column = found.def.find_column(kVersionColumn);
        if (!column || !row.stored[*column] || row.stored[*column]->size() != 4) return;
        const std::int32_t stored = jet::load_i32(*row.stored[*column], 0);
        if (stored >= kOldestVersion && stored <= kNewestVersion) version_ = stored;
    }

    bool has_table(const char* name) const {
        const auto& tables = survey_.tables();
        return std::any_of(tables.begin(), tables.end(),
                           [&](const SurveyedTable& t) { return jet::same_name(t.def.name, jet::from_utf8(name)); });
    }

    // Where the header's row is lost, the tables and fields tell the version.
    void find_version() {
        if (!survey_.studio_file() || version_) return;
        version_ = kNewPasswordSince;
        for (const db::VersionAdditions& additions : db::schema_history()) {
            bool has_any = false;
            if (*survey_.studio_file() == DatabaseFile::kMain) {
                for (const char* const name : additions.studio_tables) has_any = has_any || has_table(name);
            }
            for (const db::AddedFields& added :
                 *survey_.studio_file() == DatabaseFile::kMain ? additions.studio_fields : additions.invoice_fields) {
                for (const SurveyedTable& found : survey_.tables()) {
                    if (!jet::same_name(found.def.name, jet::from_utf8(added.table))) continue;
                    for (const char* const field : added.fields) {
                        has_any = has_any || found.def.find_column(jet::from_utf8(field)).has_value();
                    }
                }
            }
            if (has_any) version_ = additions.version;
        }
        is_version_guessed_ = true;
    }

    std::u16string password() {
        std::u16string stored;
        bool is_read = false;
        try {
            stored = jet::parse_header(pages_.page(0), pages_.path()).password;
            is_read = true;
        } catch (const jet::Error& error) {
            report_.notes.push_back(std::string("The first page is damaged (") + error.what() + ").");
        }
        if (!survey_.studio_file()) {
            const bool is_plain =
                std::all_of(stored.begin(), stored.end(), [](char16_t c) { return c >= u' ' && c < 0xD800; });
            if (is_read && is_plain) return stored;
            report_.notes.push_back("The file's password, if it had one, is lost; the new file has none.");
            return {};
        }
        const DatabaseFile file = *survey_.studio_file();
        const bool is_former = db::former_password(file) != nullptr && *version_ < kNewPasswordSince;
        const std::u16string own = jet::from_utf8(is_former ? db::former_password(file) : db::password(file));
        if (is_read && stored == own) return own;
        report_.notes.push_back("The password was not the one that the studio program uses, and has been set to it.");
        return own;
    }

    // Tables that a studio's file of the version has, in the order of creation, and whatever else was found.
    void make_tables(NewFile& file) {
        std::vector<bool> is_made(facts_.size());
        if (survey_.studio_file()) {
            for (const db::TableSchema* const schema : known_tables(*survey_.studio_file())) {
                bool found = false;
                for (std::size_t i = 0; i < facts_.size(); ++i) {
                    if (table(i).schema != schema) continue;
                    make_table(file, i);
                    found = is_made[i] = true;
                }
                if (!found) make_missing(file, *schema);
            }
        }
        for (std::size_t i = 0; i < facts_.size(); ++i) {
            if (!is_made[i]) make_table(file, i);
        }
    }

    // One that the engine takes.
    static std::u16string valid_name(std::u16string name) {
        for (char16_t& c : name) {
            if (c < u' ' || std::u16string_view(u".!`[]").find(c) != std::u16string_view::npos) c = u'_';
        }
        if (name.empty() || name.front() == u' ') name.insert(0, u"_");
        return name;
    }

    std::u16string free_name(const std::u16string& found) {
        std::u16string name = valid_name(found);
        const std::u16string base = name.substr(0, 56);
        for (int n = 2; !names_.insert(jet::to_utf8(name)).second; ++n)
            name = base + u"_" + jet::from_utf8(std::to_string(n));
        return name;
    }

    void make_table(NewFile& file, std::size_t i) {
        const SurveyedTable& found = table(i);
        SalvagedTable& outcome = outcome_of_[i];
        const std::u16string name = free_name(found.def.name);
        outcome.name = jet::to_utf8(name);
        outcome.is_rebuilt = found.is_rebuilt;
        outcome.is_named_by_guess = found.is_named_by_guess;
        outcome.lost_pages = found.lost_pages;
        std::vector<jet::NewColumn> columns;
        std::set<std::u16string> column_names;
        bool has_key = false;
        for (std::size_t c = 0; c < found.def.columns.size(); ++c) {
            bool is_same = true;
            jet::NewColumn column = new_column_like(found.def.columns[c], is_same);
            if (!is_same) {
                outcome.notes.push_back("Column " + jet::to_utf8(column.name) + " has another type in the new file.");
            }
            if (column.autonumber && has_key) column.autonumber = false;
            has_key = has_key || column.autonumber;
            if (facts_[i].has_empty_text.contains(c)) column.allow_zero_length = true;
            column.name = valid_name(std::move(column.name));
            while (!column_names.insert(column.name).second) column.name += u"_";
            columns.push_back(std::move(column));
        }
        file.database().create_table(name, columns);
        if (facts_[i].believes_last) file.set_last_number(name, found.def.last_autonumber);
        if (!found.def.real_indexes.empty()) {
            outcome.notes.push_back(
                "Its indexes are not in the new file; the program that needs them makes them anew.");
        }
    }

    bool has_missing_table(const db::TableSchema& schema) const {
        if (&schema == &db::engineers_table()) return *version_ < 200000;
        for (const db::VersionAdditions& additions : db::schema_history()) {
            for (const char* const name : additions.studio_tables) {
                if (std::string_view(name) == schema.name) return additions.version <= *version_;
            }
        }
        return true;
    }

    void make_missing(NewFile& file, const db::TableSchema& schema) {
        if (!has_missing_table(schema) || &schema == &db::engineers_table()) return;
        const TableDef def = layout_at(survey_.form(), schema, *version_);
        std::vector<jet::NewColumn> columns;
        bool is_same = true;
        for (const jet::ColumnDef& column : def.columns) columns.push_back(new_column_like(column, is_same));
        const std::u16string name = free_name(def.name);
        file.database().create_table(name, columns);
        SalvagedTable outcome;
        outcome.name = schema.name;
        outcome.is_made_anew = true;
        made_anew_.push_back(std::move(outcome));
    }

    std::optional<Value> value_of(ByteSpan stored, const jet::ColumnDef& column, bool& is_cut) {
        if (!column.is_long()) return jet::decode_value(stored, column);
        FoundLongValue found = survey_.long_values().read(stored);
        is_cut = !found.is_whole;
        if (is_cut && found.bytes.empty()) return std::nullopt;
        if (column.type == ColumnType::kOle) return Value(std::move(found.bytes));
        return jet::decode_value(found.bytes, column);
    }

    // As the column of the new table takes it.
    static Value fitted(Value value, const jet::ColumnDef& column) {
        switch (column.type) {
            case ColumnType::kGuid:
            case ColumnType::kNumeric: return jet::from_utf8(plain_text(value));
            case ColumnType::kText: {
                auto* const text = std::get_if<std::u16string>(&value);
                if (text == nullptr || !column.is_fixed()) return value;
                text->erase(text->find_last_not_of(u' ') + 1);
                return value;
            }
            default: return value;
        }
    }

    void copy_rows(NewFile& file, std::size_t i) {
        SalvagedTable& outcome = outcome_of_[i];
        const TableDef& def = table(i).def;
        jet::Table* const into = file.database().find_table(jet::from_utf8(outcome.name));
        if (into == nullptr) jet::fail(jet::errors::kDamaged, "The new table cannot be opened.");
        std::unordered_map<std::int32_t, std::uint64_t> keys;  // and what their rows hold
        bool has_key_column = false;
        for (const jet::ColumnDef& column : into->def().columns) has_key_column |= column.is_autonumber();
        LongWork work("rows saved", facts_[i].rows);
        const WalkCounts counts =
            walk_rows(pages_, table(i), [&](jet::RowId place, const FoundRow& row, unsigned doubts) {
                work.step();
                const auto key = key_of(row, facts_[i]);
                if (key && !takes_key(i, *key, row, keys, doubts)) {
                    ++outcome.left_out;
                    note_row(outcome, place,
                             "its key " + std::to_string(*key) +
                                 (*key < 1 || *key > def.last_autonumber ? " was never given" : " is there twice"));
                    return;
                }
                std::vector<Value> values(def.columns.size());
                for (std::size_t c = 0; c < values.size(); ++c) {
                    if (!row.stored[c]) continue;
                    bool is_cut = false;
                    if (auto value = value_of(*row.stored[c], def.columns[c], is_cut)) {
                        values[c] = fitted(std::move(*value), def.columns[c]);
                    }
                    if (!is_cut) continue;
                    doubts |= kCutValue;
                    ++outcome.cut_values;
                    note_row(outcome, place,
                             jet::to_utf8(def.columns[c].name) + " of " + row_name(key) +
                                 (jet::is_null(values[c]) ? " is lost" : " is cut"));
                }
                if (!key && has_key_column) doubts |= kStrangeKey;
                try {
                    file.insert(*into, std::move(values));
                } catch (const jet::Error& error) {
                    if (error.number() == jet::errors::kDiskFull || error.number() == jet::errors::kDiskError) throw;
                    ++outcome.left_out;
                    return note_row(outcome, place, error.what());
                }
                ++outcome.saved;
                if (doubts == kNoDoubt) return;
                ++outcome.doubtful;
                if (doubts & (kBadValue | kMended | kNoPointer))
                    note_row(outcome, place, row_name(key) + why(doubts, row));
            });
        outcome.unreadable = counts.unreadable;
        note_table(i);
    }

    static std::string row_name(std::optional<std::int32_t> key) {
        return key ? "row " + std::to_string(*key) : std::string("a row without a key");
    }

    static std::string why(unsigned doubts, const FoundRow& row) {
        std::string text;
        if (doubts & kBadValue) {
            text += ": a value that cannot be is left empty:";
            for (const std::u16string& name : row.bad_columns) text += " " + jet::to_utf8(name);
        }
        if (doubts & kMended) text += ": its place in the page was found from what it holds";
        if (doubts & kNoPointer) text += ": it has moved, and what led to it is lost";
        return text;
    }

    // A key that was never given is damage. Of rows that are the same, byte for byte, one is enough.
    bool takes_key(std::size_t i, std::int32_t key, const FoundRow& row,
                   std::unordered_map<std::int32_t, std::uint64_t>& keys, unsigned& doubts) const {
        if (facts_[i].believes_last && (key < 1 || key > table(i).def.last_autonumber)) return false;
        std::uint64_t hash = 14695981039346656037u;
        for (const auto& stored : row.stored) {
            for (const std::uint8_t byte : stored.value_or(ByteSpan{})) hash = (hash ^ byte) * 1099511628211u;
            hash = (hash ^ (stored ? 1 : 2)) * 1099511628211u;
        }
        const auto [known, is_new] = keys.emplace(key, hash);
        if (is_new) return true;
        if (known->second == hash || (doubts & (kGuessedPage | kNoPointer)) != 0) return false;
        doubts |= kStrangeKey;
        return true;
    }

    static void note_row(SalvagedTable& outcome, jet::RowId place, const std::string& what) {
        constexpr std::size_t kMostNotes = 20;
        if (outcome.notes.size() > kMostNotes) return;
        outcome.notes.push_back(outcome.notes.size() == kMostNotes
                                    ? "There are more like these."
                                    : "Page " + std::to_string(place.page) + ", row " + std::to_string(place.slot) +
                                          ": " + what + ".");
    }

    void note_table(std::size_t i) {
        SalvagedTable& outcome = outcome_of_[i];
        const TableDef& def = table(i).def;
        const std::size_t met = outcome.saved + outcome.left_out;
        // The count of a definition that has been damaged may be any number.
        const bool is_likely = def.row_count <= met + 1000 + std::size_t{table(i).lost_pages} * 255 ||
                               (table(i).owned == std::nullopt && def.row_count <= 10 * met + 100000);
        if (!table(i).is_rebuilt && def.row_count > met && is_likely) outcome.lost_rows = def.row_count - met;
    }

    void mend_header(NewFile& file) {
        if (!survey_.studio_file()) return;
        jet::Table* const header = file.database().find_table(kHeaderTable);
        const auto column = header != nullptr ? header->def().find_column(kVersionColumn) : std::nullopt;
        if (!column) return;
        const Value version = *version_;
        const auto first = header->next_row({});
        jet::RowView view;
        if (!first) {
            std::vector<Value> values(header->def().columns.size());
            values[*column] = version;
            // As a new file has it: the second colour is 1, the first is not set.
            if (const auto colour = header->def().find_column(u"Color2")) values[*colour] = std::int32_t{1};
            file.insert(*header, std::move(values));
        } else if (header->read(*first, view) && view.value(*column) != version) {
            const jet::ColumnChange change{*column, version};
            header->update(*first, {&change, 1});
        } else if (!is_version_guessed_) {
            return;
        }
        report_.notes.push_back("The row with the version was lost or damaged; it says " + std::to_string(*version_) +
                                " now, which is what the tables look like.");
    }

    void note_file() {
        for (auto& [i, outcome] : outcome_of_) report_.tables.push_back(std::move(outcome));
        for (SalvagedTable& outcome : made_anew_) report_.tables.push_back(std::move(outcome));
        if (!survey_.has_catalogue()) {
            report_.notes.push_back("The list of the tables is lost; their names were found in another way.");
        }
        if (pages_.refused() > 0) {
            report_.notes.push_back("The disk refused " + plural(pages_.refused(), "reading", "readings") +
                                    ": copy the file to another disk before that one gets worse.");
        }
        if (pages_.has_journal_pages()) report_.notes.push_back("What the journal beside the file held is in it.");
        if (pages_.has_foreign_journal()) {
            report_.notes.push_back(
                "A journal lies beside the file and was not used: it cannot be told that it is this file's.");
        }
        for (const OrphanedRows& orphan : survey_.orphans()) {
            report_.notes.push_back(
                plural(orphan.rows, "row", "rows") + " of " +
                (orphan.name.empty() ? "a table without a name" : "table " + jet::to_utf8(orphan.name)) +
                " cannot be read: the definition of its columns is lost (page " + std::to_string(orphan.owner) + ").");
            orphaned_rows_ += orphan.rows;
        }
        for (std::size_t i = 0; i < facts_.size(); ++i) {
            if (table(i).given_up_pages == 0) continue;
            report_.notes.push_back(plural(table(i).given_up_pages, "page", "pages") + " of rows that table " +
                                    jet::to_utf8(table(i).def.name) + " had given up long ago " +
                                    (table(i).given_up_pages == 1 ? "was" : "were") + " not taken.");
        }
    }

    // What was counted on the way in has to be what a fresh opening finds.
    void check_counts(const std::string& draft) const {
        jet::OpenOptions options;
        options.read_only = options.ignore_password = true;
        const auto database = jet::Database::open(draft, options);
        for (const SalvagedTable& outcome : report_.tables) {
            const jet::Table* const made = database->find_table(jet::from_utf8(outcome.name));
            const bool is_header = jet::same_name(jet::from_utf8(outcome.name), kHeaderTable);
            if (made == nullptr || (made->def().row_count != outcome.saved && !is_header)) {
                throw CommandError("table " + outcome.name +
                                   " of the new file does not hold what was saved; it is not kept");
            }
        }
    }

    PageSource pages_;
    FileSurvey survey_;
    std::string to_;
    SalvageReport report_;
    std::vector<TableFacts> facts_;
    std::map<std::size_t, SalvagedTable> outcome_of_;
    std::vector<SalvagedTable> made_anew_;
    std::set<std::string> names_;
    std::optional<std::int32_t> version_;
    bool is_version_guessed_ = false;
    std::size_t orphaned_rows_ = 0;
};

}  // namespace

SalvageReport salvage(const std::string& from, const std::string& to) { return Salvage(from, to).run(); }

}  // namespace tools
