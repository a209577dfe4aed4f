// The peer: one SQLite file, journal mode WAL, synchronous NORMAL, prepared statements, one commit a call,
// the key as rowid and an index on the column that the filter asks for.
#include "bench/sqlite_statement.h"
#include "bench/store.h"
#include "os/system.h"

namespace bench {
namespace {

constexpr char kSchema[] =
    "CREATE TABLE IF NOT EXISTS Projects(ProjID INTEGER PRIMARY KEY, Name TEXT, ProjCreateDate REAL, Type TEXT, "
    "ProjTypeID INTEGER, Producer TEXT, ProducerID INTEGER, Client TEXT, ClientID INTEGER, Director TEXT, "
    "DirectorID INTEGER, Folder TEXT, DiscountType INTEGER, DiscountVal INTEGER, ExData INTEGER, Notes TEXT);"
    "CREATE INDEX IF NOT EXISTS ProjectsClient ON Projects(ClientID);";
constexpr char kColumns[] =
    "Name, ProjCreateDate, Type, ProjTypeID, Producer, ProducerID, Client, ClientID, Director, DirectorID, Folder, "
    "DiscountType, DiscountVal, ExData, Notes";

class SqliteStore final : public Store {
public:
    explicit SqliteStore(const std::string& folder) : path_(os::join_path(folder, "projects.sqlite")) {}
    ~SqliteStore() override { close(); }

    void open() override {
        if (sqlite3_open(path_.c_str(), &database_) != SQLITE_OK) throw std::runtime_error("cannot open " + path_);
        execute(database_, "PRAGMA journal_mode=WAL");
        execute(database_, "PRAGMA synchronous=NORMAL");
        execute(database_, kSchema);
        insert_ = prepare("INSERT INTO Projects(" + std::string(kColumns) + ") VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
        find_ = prepare("SELECT ProjID, " + std::string(kColumns) + " FROM Projects WHERE ProjID=?");
        update_ = prepare(
            "UPDATE Projects SET Name=?, ProjCreateDate=?, Type=?, ProjTypeID=?, Producer=?, ProducerID=?, Client=?, "
            "ClientID=?, Director=?, DirectorID=?, Folder=?, DiscountType=?, DiscountVal=?, ExData=?, Notes=? WHERE "
            "ProjID=?");
        delete_ = prepare("DELETE FROM Projects WHERE ProjID=?");
        all_ = prepare("SELECT ProjID, " + std::string(kColumns) + " FROM Projects");
        filtered_ = prepare("SELECT ProjID, " + std::string(kColumns) + " FROM Projects WHERE ClientID=? AND Type=?");
    }
    void close() override {
        for (auto* statement : {&insert_, &find_, &update_, &delete_, &all_, &filtered_}) statement->reset();
        sqlite3_close(database_);
        database_ = nullptr;
    }
    void fill(std::int32_t count) override {
        execute(database_, "BEGIN");
        for (std::int32_t n = 1; n <= count; ++n) {
            ProjInfo project = sample_project(n);
            add(project);
        }
        execute(database_, "COMMIT");
    }
    bool add(ProjInfo& project) override {
        bind(*insert_, project);
        const bool done = insert_->run();
        project.ProjID = static_cast<LONG>(sqlite3_last_insert_rowid(database_));
        return done;
    }
    bool find(ProjInfo& project) override {
        sqlite3_bind_int(find_->get(), 1, project.ProjID);
        const bool found = find_->step();
        if (found) read(*find_, project);
        find_->reset();
        return found;
    }
    bool update(ProjInfo& project) override {
        bind(*update_, project);
        sqlite3_bind_int(update_->get(), 16, project.ProjID);
        return update_->run() && sqlite3_changes(database_) == 1;
    }
    bool remove(std::int32_t key) override {
        sqlite3_bind_int(delete_->get(), 1, key);
        return delete_->run() && sqlite3_changes(database_) == 1;
    }
    std::int64_t enumerate(std::int32_t client, std::int64_t limit) override {
        const Statement& rows = client == 0 ? *all_ : *filtered_;
        if (client != 0) {
            sqlite3_bind_int(rows.get(), 1, client);
            sqlite3_bind_text(rows.get(), 2, "Album", -1, SQLITE_STATIC);
        }
        ProjInfo project{};
        std::int64_t count = 0;
        while (count < limit && rows.step()) {
            read(rows, project);
            ++count;
        }
        rows.reset();
        return count;
    }
    std::string main_file() const override { return path_; }

private:
    std::unique_ptr<Statement> prepare(const std::string& text) { return std::make_unique<Statement>(database_, text); }
    static void text(const Statement& statement, int at, const CString& value) {
        sqlite3_bind_text(statement.get(), at, value.GetString(), value.GetLength(), SQLITE_STATIC);
    }
    // Amounts in ten-thousandths and dates as day numbers, as the other store keeps them.
    static void bind(const Statement& s, const ProjInfo& p) {
        text(s, 1, p.Name);
        sqlite3_bind_double(s.get(), 2, static_cast<double>(p.ProjCreateDate.GetTime()) / 86400 + 25569);
        text(s, 3, p.Type);
        sqlite3_bind_int(s.get(), 4, p.ProjTypeID);
        text(s, 5, p.Producer);
        sqlite3_bind_int(s.get(), 6, p.ProducerID);
        text(s, 7, p.Client);
        sqlite3_bind_int(s.get(), 8, p.ClientID);
        text(s, 9, p.Director);
        sqlite3_bind_int(s.get(), 10, p.DirectorID);
        text(s, 11, p.Folder);
        sqlite3_bind_int(s.get(), 12, p.DiscountType);
        sqlite3_bind_int64(s.get(), 13, static_cast<sqlite3_int64>(static_cast<double>(p.DiscountVal) * 10000));
        sqlite3_bind_int(s.get(), 14, p.ExData);
        text(s, 15, p.Notes);
    }
    static void read(const Statement& s, ProjInfo& p) {
        const auto text = [&](int at) { return reinterpret_cast<const char*>(sqlite3_column_text(s.get(), at)); };
        p.ProjID = sqlite3_column_int(s.get(), 0);
        p.Name = text(1);
        p.ProjCreateDate = CTime(static_cast<LONG>((sqlite3_column_double(s.get(), 2) - 25569) * 86400));
        p.Type = text(3);
        p.ProjTypeID = sqlite3_column_int(s.get(), 4);
        p.Producer = text(5);
        p.ProducerID = sqlite3_column_int(s.get(), 6);
        p.Client = text(7);
        p.ClientID = sqlite3_column_int(s.get(), 8);
        p.Director = text(9);
        p.DirectorID = sqlite3_column_int(s.get(), 10);
        p.Folder = text(11);
        p.DiscountType = sqlite3_column_int(s.get(), 12);
        p.DiscountVal = static_cast<float>(static_cast<double>(sqlite3_column_int64(s.get(), 13)) / 10000);
        p.ExData = sqlite3_column_int(s.get(), 14);
        p.Notes = text(15);
    }

    std::string path_;
    sqlite3* database_ = nullptr;
    std::unique_ptr<Statement> insert_, find_, update_, delete_, all_, filtered_;
};

}  // namespace

std::unique_ptr<Store> make_sqlite_store(const std::string& folder) { return std::make_unique<SqliteStore>(folder); }

}  // namespace bench
