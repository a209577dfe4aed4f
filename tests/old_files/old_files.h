// Files as earlier versions of the studio program left them, made with the engine alone: today's tables as listed in
// expected_schema.h, without the additions of later versions, and with what later versions removed.
//
//     OldFile studio(path, OldFile::Kind::kStudio, 100006);
//     studio.add("Songs", {{"ProjID", 1}, {"Name", "Sunrise"}});
//     studio.close();
//
//     make_old_studio(folder, 200010);   // both files, full of rows
#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "jet/tables/database.h"

namespace testing_support {

inline constexpr std::int32_t kOldVersions[] = {100005, 100006, 200000, 200010};

// The passwords of the component's files, and of studio files below version 100006.
inline constexpr char kStudioPassword[] = "KvStudio2005sl";
inline constexpr char kFormerStudioPassword[] = "KvStudio2002";
inline constexpr char kInvoicePassword[] = "KvInvoice2005";

// Files are made in Jet 4, or in Jet 3 where the environment has KVDB_OLD_FILES=jet3, in another code page and language
// for KVDB_OLD_FILES=jet3:1250:1045: the same tests are run for all.
jet::CreateOptions old_file_options();

// Files are made in `format` as long as the object lives.
class UseOldFormat {
public:
    explicit UseOldFormat(const jet::Format& format, std::uint16_t code_page = jet::CreateOptions().code_page,
                          std::uint16_t lcid = jet::CreateOptions().lcid);
    ~UseOldFormat();
    UseOldFormat(const UseOldFormat&) = delete;
    UseOldFormat& operator=(const UseOldFormat&) = delete;
};

// A value of a row; texts are UTF-8.
struct Cell {
    Cell(const char* name, jet::Value given) : column(name), value(std::move(given)) {}
    Cell(const char* name, std::int32_t number) : Cell(name, jet::Value(number)) {}  // 0 is not a text
    Cell(const char* name, float number) : Cell(name, jet::Value(number)) {}
    Cell(const char* name, const char* text) : Cell(name, jet::from_utf8(text)) {}
    Cell(const char* name, const std::string& text) : Cell(name, jet::from_utf8(text)) {}

    const char* column;
    jet::Value value;
};

inline jet::Currency amount(std::int64_t whole, std::int64_t ten_thousandths = 0) {
    return {whole * 10000 + ten_thousandths};
}
jet::Date day(int year, int month, int day_of_month);
// A date in the system's format, in which files below version 200000 store dates.
std::string date_text(int year, int month, int day_of_month);

// How a file deviates from its version.
struct Oddities {
    std::set<std::string> without = {};             // "Table" or "Table.Column"
    std::map<std::string, std::string> kinds = {};  // "Table.Column" to its kind; a missing column is added
    std::set<std::string> also = {};                // additional tables of today's schema
    const char* password = nullptr;                 // null: the version's
    bool header_row = true;
};

class OldFile {
public:
    enum class Kind { kStudio, kInvoice };

    // Creates the file with its tables and its header row.
    OldFile(const std::string& path, Kind kind, std::int32_t version, const Oddities& oddities = {});
    ~OldFile();

    // Adds a row and returns its key (0: the table has none). Ignores a column of today's table that this version
    // lacks; any other unknown column is an error, and so is an unknown table.
    std::int32_t add(const std::string& table, std::initializer_list<Cell> cells);
    bool has(const std::string& table) const;
    std::int32_t version() const { return version_; }
    void close();

private:
    Kind kind_;
    std::int32_t version_;
    std::unique_ptr<jet::Database> database_;
    std::unique_ptr<jet::Transaction> filling_;
};

struct StudioSize {
    std::int32_t projects = 12;
    std::int32_t songs = 150;
    std::int32_t tracks = 60;
    std::int32_t sessions = 400;
    std::int32_t engineers = 9;
    std::int32_t contacts = 60;
    std::int32_t invoices = 40;
};

// Both files in the folder, with rows in every table of the version: texts with umlauts, empty and Null values,
// dates in the system's order and in others, texts that are no dates, names with wildcards and quotes.
void make_old_studio(const std::string& folder, std::int32_t version, const StudioSize& size = {});
void fill_studio(OldFile& file, const StudioSize& size = {});
void fill_invoices(OldFile& file, const StudioSize& size = {});

}  // namespace testing_support
