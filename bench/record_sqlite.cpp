// The peer of the record tables: one SQLite file, journal mode WAL, synchronous NORMAL, prepared statements, the
// key as rowid and an index on every column that a selection asks for.
#include <array>
#include <tuple>

#include "bench/record_columns.h"
#include "bench/record_store.h"
#include "bench/sqlite_statement.h"
#include "bench/sqlite_values.h"
#include "os/system.h"

namespace bench {
namespace {

constexpr const char* kIndexes =
    "CREATE INDEX IF NOT EXISTS SongsProject ON Songs(ProjID);"
    "CREATE INDEX IF NOT EXISTS ClientsCategories ON Clients(CatIDs);"
    "CREATE INDEX IF NOT EXISTS ClientsName ON Clients(Name);"
    "CREATE INDEX IF NOT EXISTS SessionsDate ON Sessions(RecDate);"
    "CREATE INDEX IF NOT EXISTS BookingsStart ON Bookings(DateStart);"
    "CREATE INDEX IF NOT EXISTS StockType ON Stock(TypeID);"
    "CREATE INDEX IF NOT EXISTS SupplyStock ON Supply(StockID);"
    "CREATE INDEX IF NOT EXISTS LinesInvoice ON InvoiceParams(InvoiceID);"
    "CREATE INDEX IF NOT EXISTS GearCategory ON Gear(CategoryID);";

template <class Record>
std::string create_text() {
    const SqlTable<Record>& table = kSqlTable<Record>;
    std::string text =
        std::string("CREATE TABLE IF NOT EXISTS ") + table.name + "(" + table.key_column + " INTEGER PRIMARY KEY";
    constexpr std::array kTypes = {" INTEGER", " TEXT", " REAL", " REAL"};
    for (const auto& column : table.columns) text += std::string(", ") + column.name + kTypes[column.member.index()];
    return text + ")";
}

template <class Record>
std::string insert_text() {
    std::string names;
    std::string marks;
    for (const auto& column : kSqlTable<Record>.columns) {
        names += std::string(names.empty() ? "" : ", ") + column.name;
        marks += marks.empty() ? "?" : ", ?";
    }
    return std::string("INSERT INTO ") + kSqlTable<Record>.name + "(" + names + ") VALUES(" + marks + ")";
}

template <class Record>
std::string select_text(const std::string& condition) {
    std::string names = kSqlTable<Record>.key_column;
    for (const auto& column : kSqlTable<Record>.columns) names += std::string(", ") + column.name;
    return "SELECT " + names + " FROM " + kSqlTable<Record>.name + " WHERE " + condition;
}

// A table: its rows are added by one statement and selected by another.
template <class Record>
struct Table {
    std::unique_ptr<Statement> insert;
    std::unique_ptr<Statement> select;
};

class SqliteRecordStore final : public RecordStore {
public:
    explicit SqliteRecordStore(const std::string& folder) : path_(os::join_path(folder, "records.sqlite")) {}
    ~SqliteRecordStore() override { close(); }

    void open() override {
        if (sqlite3_open(path_.c_str(), &database_) != SQLITE_OK) throw std::runtime_error("cannot open " + path_);
        execute(database_, "PRAGMA journal_mode=WAL");
        execute(database_, "PRAGMA synchronous=NORMAL");
        create<SongInfo, ClientInfo, SessionInfo, BookingInfo, StockInfo, SupplyAct, StockTypeInfo, InvParamsInfo,
               GearInfo>();
        execute(database_, kIndexes);
        prepare<SongInfo>("ProjID=?");
        prepare<ClientInfo>("CatIDs LIKE '%' || ? || '%' AND Name LIKE '%' || ? || '%'");
        prepare<SessionInfo>("RecDate>=? AND RecDate<=?");
        prepare<BookingInfo>("DateStart BETWEEN ? AND ? ORDER BY DateStart");
        prepare<StockInfo>("StockID=?");
        prepare<SupplyAct>("ActionID=?");
        prepare<StockTypeInfo>("TypeID=?");
        prepare<InvParamsInfo>("InvoiceID=?");
        prepare<GearInfo>("CategoryID=? AND Model LIKE '%' || ? || '%'");
        bought_ = std::make_unique<Statement>(database_, "SELECT SUM(Quantity) FROM Stock WHERE TypeID=?");
        handed_out_ = std::make_unique<Statement>(database_, "SELECT SUM(Quantity) FROM Supply WHERE StockID=?");
        store_in_stock_ = std::make_unique<Statement>(
            database_, "UPDATE Def_StockTypes SET TypeName=?, InStock=?, ItemPrice=?, ExData=? WHERE TypeID=?");
    }
    void close() override {
        tables_ = {};
        for (auto* statement : {&bought_, &handed_out_, &store_in_stock_}) statement->reset();
        sqlite3_close(database_);
        database_ = nullptr;
    }

    bool add(SongInfo& song) override { return insert(song); }
    bool add(ClientInfo& client) override { return insert(client); }
    bool add(SessionInfo& session) override { return insert(session); }
    bool add(BookingInfo& booking) override { return insert(booking); }
    bool add(StockInfo& stock) override { return insert(stock); }
    bool add(SupplyAct& supply) override { return insert(supply); }
    bool add(StockTypeInfo& type) override { return insert(type); }
    bool add(InvParamsInfo& line) override { return insert(line); }
    bool add(GearInfo& gear) override { return insert(gear); }
    void begin_filling() override { execute(database_, "BEGIN"); }
    void end_filling() override { execute(database_, "COMMIT"); }

    std::int64_t songs_of(std::int32_t project) override {
        SongInfo song;
        return rows(song, project);
    }
    std::int64_t clients(std::int32_t category, const char* part_of_name) override {
        ClientInfo client;
        return rows(client, category, CString(part_of_name));
    }
    std::int64_t sessions_within(std::int32_t first_day, std::int32_t last_day) override {
        SessionInfo session;
        return rows(session, sample_day(first_day), sample_day(last_day));
    }
    std::int64_t bookings_within(std::int32_t first_day, std::int32_t last_day) override {
        BookingInfo booking;
        return rows(booking, sample_day(first_day), sample_day(last_day));
    }
    std::int64_t lines_of(std::int32_t invoice) override {
        InvParamsInfo line;
        return rows(line, invoice);
    }
    bool find_gear(std::int32_t category, const char* part_of_model) override {
        GearInfo gear;
        return select_rows(gear, 1, category, CString(part_of_model)) == 1;
    }
    bool compute_in_stock(std::int32_t type, std::int32_t& in_stock) override {
        in_stock = sum(*bought_, type) - sum(*handed_out_, type);
        StockTypeInfo row;
        if (rows(row, type) != 1) return false;
        row.InStock = in_stock;
        int at = 0;
        for (const auto& column : kSqlTable<StockTypeInfo>.columns) {
            std::visit([&](auto member) { bind_value(store_in_stock_->get(), ++at, row.*member); }, column.member);
        }
        bind_value(store_in_stock_->get(), ++at, LONG{type});
        return store_in_stock_->run() && sqlite3_changes(database_) == 1;
    }

private:
    template <class... Records>
    void create() {
        (execute(database_, create_text<Records>()), ...);
    }
    template <class Record>
    Table<Record>& table() {
        return std::get<Table<Record>>(tables_);
    }
    template <class Record>
    void prepare(const char* condition) {
        table<Record>().insert = std::make_unique<Statement>(database_, insert_text<Record>());
        table<Record>().select = std::make_unique<Statement>(database_, select_text<Record>(condition));
    }

    template <class Record>
    bool insert(Record& record) {
        const Statement& statement = *table<Record>().insert;
        int at = 0;
        for (const auto& column : kSqlTable<Record>.columns) {
            std::visit([&](auto member) { bind_value(statement.get(), ++at, record.*member); }, column.member);
        }
        const bool done = statement.run();
        record.*kSqlTable<Record>.key = static_cast<LONG>(sqlite3_last_insert_rowid(database_));
        return done;
    }

    // Up to `limit` rows that fit the conditions, all members each; their number.
    template <class Record, class... Conditions>
    std::int64_t select_rows(Record& record, std::int64_t limit, const Conditions&... conditions) {
        const Statement& statement = *table<Record>().select;
        int at = 0;
        (bind_value(statement.get(), ++at, conditions), ...);
        std::int64_t count = 0;
        while (count < limit && statement.step()) {
            int column_no = 0;
            read_value(statement.get(), column_no, record.*kSqlTable<Record>.key);
            for (const auto& column : kSqlTable<Record>.columns) {
                std::visit([&](auto member) { read_value(statement.get(), ++column_no, record.*member); },
                           column.member);
            }
            ++count;
        }
        statement.reset();
        return count;
    }
    template <class Record, class... Conditions>
    std::int64_t rows(Record& record, const Conditions&... conditions) {
        return select_rows(record, INT64_MAX, conditions...);
    }

    static std::int32_t sum(const Statement& statement, std::int32_t value) {
        sqlite3_bind_int(statement.get(), 1, value);
        const std::int32_t total = statement.step() ? sqlite3_column_int(statement.get(), 0) : 0;
        statement.reset();
        return total;
    }

    std::string path_;
    sqlite3* database_ = nullptr;
    std::tuple<Table<SongInfo>, Table<ClientInfo>, Table<SessionInfo>, Table<BookingInfo>, Table<StockInfo>,
               Table<SupplyAct>, Table<StockTypeInfo>, Table<InvParamsInfo>, Table<GearInfo>>
        tables_;
    std::unique_ptr<Statement> bought_, handed_out_, store_in_stock_;
};

}  // namespace

std::unique_ptr<RecordStore> make_sqlite_record_store(const std::string& folder) {
    return std::make_unique<SqliteRecordStore>(folder);
}

}  // namespace bench
