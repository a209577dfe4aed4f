#include "tests/old_files/old_files.h"

#include <chrono>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "os/system.h"
#include "tests/interop/expected_schema.h"

namespace testing_support {
namespace {

// What each version added: tables, and columns of existing tables.
struct Addition {
    std::int32_t version;
    const char* table;
    const char* columns;  // separated by blanks; "" for the whole table
};

constexpr Addition kStudioAdditions[] = {
    {200000, "LibGroups", ""},
    {200000, "MediaLibs", ""},
    {200000, "MediaFiles", ""},
    {200000, "Bookings", ""},
    {200000, "Def_Rooms", ""},
    {200000, "Def_Invoice", ""},
    {200000, "Sessions", "RecDate RoomID"},
    {200000, "Equipment", "ActDate"},
    {200000, "Def_StockTypes", "ItemPrice"},
    {200000, "Def_Engineers", "Price RecID"},
    {200010, "Def_Tax", ""},
    {210000, "ContactCategories", ""},
    {210000, "ProjPayments", ""},
    {210000, "ProjActivities", ""},
    {210000, "MixFiles", ""},
    {210000, "Messages", ""},
    {210000, "Services", ""},
    {210000, "Participants", ""},
    {210000, "Gear", ""},
    {210000, "GearServices", ""},
    {210000, "GearRepairs", ""},
    {210000, "GearCategories", ""},
    {210000, "GearRentals", ""},
    {210000, "Bookings", "StatusID"},
    {210000, "Clients",
     "CategoryID CatIDs Company Title Country State City ZipCode WebSite Phone4 Phone5 Phone1Descript Phone2Descript "
     "Phone3Descript Phone4Descript Phone5Descript"},
    {210000, "Projects", "ProjCreateDate ProjTypeID ProducerID DirectorID DiscountType DiscountVal"},
    {210000, "Sessions", "SongID ArtistID"},
    {210000, "Songs", "ArtistID CopyrightsID ProducerID ComposerID WriterID"},
    {210000, "Stock", "Date SupplierID Cost"},
    {210000, "Tracks", "TypeID TDate PerformerID DestinationID EngineerID ProducerID Status Mode"},
};

constexpr Addition kInvoiceAdditions[] = {
    {200010, "Invoices", "InvTaxIDs"},
    {200010, "InvoiceParams", "TaxIDs"},
    {210000, "Invoices", "fTax fDiscount Paymetns Balance"},
    {210000, "InvoiceParams", "Date Details"},
};

constexpr interop::ExpectedTable kEngineers = {"Def_Engineers", "Name short, Price currency, RecID key"};

bool has_word(const char* words, const std::string& wanted) {
    std::istringstream in(words);
    for (std::string word; in >> word;) {
        if (word == wanted) return true;
    }
    return false;
}

// Whether the version lacks the column because a later one added it. `column` "" asks for the table.
bool lacks(std::span<const Addition> additions, std::int32_t version, const std::string& table,
           const std::string& column) {
    for (const Addition& addition : additions) {
        if (addition.version <= version || table != addition.table) continue;
        if (column.empty() ? *addition.columns == 0 : has_word(addition.columns, column)) return true;
    }
    return false;
}

jet::NewColumn column_of(const std::string& name, const std::string& kind) {
    jet::NewColumn column;
    column.name = jet::from_utf8(name);
    if (kind == "key") {
        column.autonumber = true;
    } else if (kind == "date") {
        column.type = jet::ColumnType::kDate;
    } else if (kind == "currency") {
        column.type = jet::ColumnType::kCurrency;
    } else if (kind == "single") {
        column.type = jet::ColumnType::kSingle;
    } else if (kind == "text" || kind == "short") {
        column.type = jet::ColumnType::kText;
        column.allow_zero_length = kind == "text";
    } else if (kind == "memo") {
        column.type = jet::ColumnType::kMemo;
        column.allow_zero_length = true;
    } else if (kind != "long") {
        throw std::runtime_error("no such kind of column: " + kind);
    }
    return column;
}

class TableMaker {
public:
    TableMaker(OldFile::Kind kind, std::int32_t version, const Oddities& oddities)
        : additions_(kind == OldFile::Kind::kStudio ? std::span<const Addition>(kStudioAdditions)
                                                    : std::span<const Addition>(kInvoiceAdditions)),
          version_(version),
          oddities_(oddities) {}

    void make(jet::Database& database, const interop::ExpectedTable& table) const {
        const std::string name = table.name;
        if (oddities_.without.contains(name)) return;
        if (lacks(additions_, version_, name, "") && !oddities_.also.contains(name)) return;
        std::vector<jet::NewColumn> columns;
        std::istringstream words(table.columns);
        for (std::string column, kind; words >> column >> kind;) {
            if (kind.back() == ',') kind.pop_back();
            if (lacks(additions_, version_, name, column) || oddities_.without.contains(name + "." + column)) continue;
            if (const auto odd = oddities_.kinds.find(name + "." + column); odd != oddities_.kinds.end()) {
                kind = odd->second;
            }
            columns.push_back(column_of(column, kind));
        }
        add_others(name, columns);
        database.create_table(jet::from_utf8(name), columns);
    }

private:
    // The text dates that version 200000 removed, and odd columns that the version lacks.
    void add_others(const std::string& table, std::vector<jet::NewColumn>& columns) const {
        const auto add = [&](const std::string& name, const std::string& kind) {
            const jet::NewColumn column = column_of(name, kind);
            for (const jet::NewColumn& other : columns) {
                if (other.name == column.name) return;
            }
            columns.push_back(column);
        };
        if (version_ < 200000 && (table == "Sessions" || table == "Equipment") &&
            !oddities_.without.contains(table + ".Date")) {
            add("Date", "text");
        }
        for (const auto& [place, kind] : oddities_.kinds) {
            if (place.starts_with(table + ".")) add(place.substr(table.size() + 1), kind);
        }
    }

    std::span<const Addition> additions_;
    std::int32_t version_;
    const Oddities& oddities_;
};

const char* password_of(OldFile::Kind kind, std::int32_t version) {
    if (kind == OldFile::Kind::kInvoice) return kInvoicePassword;
    return version < 100006 ? kFormerStudioPassword : kStudioPassword;
}

}  // namespace

namespace {
std::optional<jet::CreateOptions> used_options;
}

UseOldFormat::UseOldFormat(const jet::Format& format, std::uint16_t code_page, std::uint16_t lcid) {
    used_options.emplace();
    used_options->format = &format;
    used_options->code_page = code_page;
    used_options->lcid = lcid;
}
UseOldFormat::~UseOldFormat() { used_options.reset(); }

jet::CreateOptions old_file_options() {
    if (used_options) return *used_options;
    jet::CreateOptions options;
    const char* const wanted = std::getenv("KVDB_OLD_FILES");
    std::istringstream words(wanted != nullptr ? wanted : "");
    std::string format, number;
    if (!std::getline(words, format, ':') || format != "jet3") return options;
    options.format = &jet::kJet3;
    if (std::getline(words, number, ':')) options.code_page = static_cast<std::uint16_t>(std::stoi(number));
    if (std::getline(words, number, ':')) options.lcid = static_cast<std::uint16_t>(std::stoi(number));
    return options;
}

jet::Date day(int year, int month, int day_of_month) {
    const std::chrono::sys_days date = std::chrono::year(year) / month / day_of_month;
    const std::chrono::sys_days zero = std::chrono::year(1899) / 12 / 30;
    return {static_cast<double>((date - zero).count())};
}

std::string date_text(int year, int month, int day_of_month) {
    const std::string separator = os::date_separator();
    const std::string y = std::to_string(year), m = std::to_string(month), d = std::to_string(day_of_month);
    switch (os::date_order()) {
        case os::DateOrder::kMonthDayYear: return m + separator + d + separator + y;
        case os::DateOrder::kDayMonthYear: return d + separator + m + separator + y;
        case os::DateOrder::kYearMonthDay: return y + separator + m + separator + d;
    }
    return {};
}

OldFile::OldFile(const std::string& path, Kind kind, std::int32_t version, const Oddities& oddities)
    : kind_(kind), version_(version) {
    jet::CreateOptions options = old_file_options();
    options.password = jet::from_utf8(oddities.password != nullptr ? oddities.password : password_of(kind, version));
    database_ = jet::Database::create(path, options);
    filling_ = std::make_unique<jet::Transaction>(database_->pager());
    const TableMaker maker(kind, version, oddities);
    if (kind == Kind::kStudio) {
        for (const interop::ExpectedTable& table : interop::kStudioTables) maker.make(*database_, table);
        maker.make(*database_, kEngineers);
    } else {
        for (const interop::ExpectedTable& table : interop::kInvoiceTables) maker.make(*database_, table);
    }
    if (oddities.header_row && has("DBHeader")) {
        if (kind == Kind::kStudio) {
            add("DBHeader", {{"DBversion", version}, {"Color2", 1}});
        } else {
            add("DBHeader", {{"DBversion", version}});
        }
    }
}

OldFile::~OldFile() {
    if (database_ != nullptr) close();
}

bool OldFile::has(const std::string& table) const { return database_->find_table(jet::from_utf8(table)) != nullptr; }

std::int32_t OldFile::add(const std::string& table, std::initializer_list<Cell> cells) {
    jet::Table* const found = database_->find_table(jet::from_utf8(table));
    if (found == nullptr) throw std::runtime_error("no table " + table);
    std::vector<jet::Value> row(found->def().columns.size());
    for (const Cell& cell : cells) {
        if (const auto position = found->def().find_column(jet::from_utf8(cell.column))) {
            row[*position] = found->coerce(*position, cell.value);
            continue;
        }
        const auto additions = kind_ == Kind::kStudio ? std::span<const Addition>(kStudioAdditions)
                                                      : std::span<const Addition>(kInvoiceAdditions);
        if (!lacks(additions, version_, table, cell.column) && std::string(cell.column) != "Date") {
            throw std::runtime_error("no column " + table + "." + cell.column);
        }
    }
    std::int32_t key = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (!found->def().columns[i].is_autonumber()) continue;
        key = found->take_autonumber();
        row[i] = key;
    }
    found->insert(std::move(row));
    return key;
}

void OldFile::close() {
    filling_->commit();
    filling_.reset();
    database_->close();
    database_.reset();
}

void make_old_studio(const std::string& folder, std::int32_t version, const StudioSize& size) {
    OldFile studio(os::join_path(folder, "sldb.mdb"), OldFile::Kind::kStudio, version);
    fill_studio(studio, size);
    studio.close();
    OldFile invoices(os::join_path(folder, "kvinvdb.mdb"), OldFile::Kind::kInvoice, version);
    fill_invoices(invoices, size);
    invoices.close();
}

}  // namespace testing_support
