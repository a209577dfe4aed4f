// The two that the studio of ten years is filled in: the component, and its peer with a statement for each call, made
// at the first one. Both take any table of ten_years_tables.h; a call is one commit, and true when it succeeded.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "bench/sqlite_statement.h"
#include "bench/sqlite_studio.h"
#include "bench/sqlite_values.h"
#include "bench/ten_years_tables.h"
#include "db/database_files.h"
#include "tools/studio.h"

namespace bench {

class KvdbTenYears {
public:
    explicit KvdbTenYears(const std::string& folder) : studio_(folder, tools::Studio::Purpose::kUpgrade) {}

    void create() { open(); }
    void open() {
        gate_ = &studio_.open();
        gear_ = &studio_.open_gear();
    }
    void close() { studio_.close(); }
    std::vector<std::string> files() const {
        return {db::file_path(db::DatabaseFile::kMain), db::file_path(db::DatabaseFile::kInvoice)};
    }
    void begin_filling() {}
    void end_filling() {}

    bool add_name(const StudioNames& list, CString name) {
        return (gate_->*list.add)(name.GetBuffer(name.GetLength())) == S_OK;
    }
    template <class Record, class Gate>
    bool add(const StudioTable<Record, Gate>& table, Record& record) {
        return call<Gate>(table.methods.add, record);
    }
    template <class Record, class Gate>
    bool find(const StudioTable<Record, Gate>& table, Record& record) {
        return call<Gate>(table.methods.find, record);
    }
    template <class Record, class Gate>
    bool update(const StudioTable<Record, Gate>& table, Record& record) {
        return call<Gate>(table.methods.update, record);
    }
    // Deliver every row, all members each, into one record; give their number.
    template <class Record, class Gate>
    std::int64_t children(const StudioTable<Record, Gate>& table, std::int32_t parent) {
        Record record;
        record.*table.parent = parent;
        return enumerate(table, record);
    }
    std::int64_t bookings_on(CTime day) {
        BookingInfo booking;
        booking.DateStart = booking.DateEnd = day;
        booking.ExData = 4;
        return enumerate(studio_table<BookingInfo>(), booking);
    }

private:
    template <class Gate, class Record>
    bool call(typename StudioMethods<Gate>::Method method, Record& record) {
        if constexpr (std::is_same_v<Gate, GearGate>) {
            return (gear_->*method)(tools::address_of(record)) == S_OK;
        } else {
            return (gate_->*method)(tools::address_of(record)) == S_OK;
        }
    }
    template <class Record, class Gate>
    std::int64_t enumerate(const StudioTable<Record, Gate>& table, Record& record) {
        std::int64_t count = 0;
        for (bool is_there = call<Gate>(table.methods.first, record); is_there;
             is_there = call<Gate>(table.methods.next, record)) {
            ++count;
        }
        return count;
    }

    tools::Studio studio_;
    IDBgate1* gate_ = nullptr;
    IDBGate3* gear_ = nullptr;
};

class SqliteTenYears {
public:
    explicit SqliteTenYears(const std::string& folder) : studio_(folder) {}
    ~SqliteTenYears() { close(); }
    SqliteTenYears(const SqliteTenYears&) = delete;
    SqliteTenYears& operator=(const SqliteTenYears&) = delete;

    void create() {
        studio_.create();
        std::apply([&](const auto&... tables) { (make_index(tables), ...); }, kTenYears);
    }
    void open() { studio_.open(); }
    void close() {
        statements_ = {};
        studio_.close();
    }
    std::vector<std::string> files() const { return {studio_.paths().begin(), studio_.paths().end()}; }
    void begin_filling() { in_both_files("BEGIN"); }
    void end_filling() { in_both_files("COMMIT"); }

    bool add_name(const StudioNames& list, const CString& name) {
        const Statement statement(studio_.file_of(list.table),
                                  std::string("INSERT INTO ") + list.table + "(Name) VALUES(?)");
        bind_value(statement.get(), 1, name);
        return statement.run();
    }
    template <class Record, class Gate>
    bool add(const StudioTable<Record, Gate>& table, Record& record) {
        const Statement& statement = made(of<Record>().add, table, [&] {
            std::string names;
            std::string marks;
            for (const auto& column : table.mapping.write) {
                names += std::string(names.empty() ? "" : ", ") + column.name;
                marks += marks.empty() ? "?" : ", ?";
            }
            return std::string("INSERT INTO ") + table.mapping.table + "(" + names + ") VALUES(" + marks + ")";
        });
        bind(statement, table, record);
        const bool done = statement.run();
        record.*table.mapping.key.member =
            static_cast<LONG>(sqlite3_last_insert_rowid(studio_.file_of(table.mapping.table)));
        return done;
    }
    template <class Record, class Gate>
    bool find(const StudioTable<Record, Gate>& table, Record& record) {
        const Statement& statement =
            made(of<Record>().find, table, [&] { return rows_where(table, key_of(table) + "=?"); });
        bind_value(statement.get(), 1, record.*table.mapping.key.member);
        return deliver(statement, table, record) == 1;
    }
    template <class Record, class Gate>
    bool update(const StudioTable<Record, Gate>& table, Record& record) {
        const Statement& statement = made(of<Record>().update, table, [&] {
            std::string changes;
            for (const auto& column : table.mapping.write) {
                changes += std::string(changes.empty() ? "" : ", ") + column.name + "=?";
            }
            return std::string("UPDATE ") + table.mapping.table + " SET " + changes + " WHERE " + key_of(table) + "=?";
        });
        bind_value(statement.get(), bind(statement, table, record), record.*table.mapping.key.member);
        return statement.run() && sqlite3_changes(studio_.file_of(table.mapping.table)) == 1;
    }
    template <class Record, class Gate>
    std::int64_t children(const StudioTable<Record, Gate>& table, std::int32_t parent) {
        const Statement& statement =
            made(of<Record>().list, table, [&] { return rows_where(table, std::string(table.list_by) + "=?"); });
        bind_value(statement.get(), 1, LONG{parent});
        Record record;
        return deliver(statement, table, record);
    }
    std::int64_t bookings_on(CTime day) {
        const auto& table = studio_table<BookingInfo>();
        const Statement& statement = made(of<BookingInfo>().list, table, [&] {
            return rows_where(table, "DateStart BETWEEN ? AND ? ORDER BY DateStart");
        });
        bind_value(statement.get(), 1, day);
        bind_value(statement.get(), 2, day);
        BookingInfo record;
        return deliver(statement, table, record);
    }

private:
    template <class Record>
    struct Statements {
        std::unique_ptr<Statement> add, find, update, list;
    };
    template <class... Record, class... Gate>
    static std::tuple<Statements<Record>...> statements_of(const std::tuple<StudioTable<Record, Gate>...>&) {
        return {};
    }
    template <class Record>
    Statements<Record>& of() {
        return std::get<Statements<Record>>(statements_);
    }

    template <class Table, class Text>
    const Statement& made(std::unique_ptr<Statement>& statement, const Table& table, Text&& text) {
        if (statement == nullptr) {
            statement = std::make_unique<Statement>(studio_.file_of(table.mapping.table), text());
        }
        return *statement;
    }
    template <class Table>
    static std::string key_of(const Table& table) {
        return table.mapping.key.column;
    }
    template <class Table>
    static std::string rows_where(const Table& table, const std::string& condition) {
        std::string names;
        for (const auto& column : table.mapping.read) names += std::string(names.empty() ? "" : ", ") + column.name;
        return "SELECT " + names + " FROM " + table.mapping.table + " WHERE " + condition;
    }
    template <class Table>
    void make_index(const Table& table) {
        if (table.list_by == nullptr) return;
        const std::string name = table.mapping.table;
        execute(studio_.file_of(table.mapping.table),
                "CREATE INDEX By" + name + " ON " + name + "(" + table.list_by + ")");
    }
    void in_both_files(const char* text) {
        for (const char* table : {"Projects", "Invoices"}) execute(studio_.file_of(table), text);
    }

    // The position after the last value.
    template <class Table, class Record>
    static int bind(const Statement& statement, const Table& table, const Record& record) {
        int at = 1;
        for (const auto& column : table.mapping.write) {
            studio::visit_member(column, record,
                                 [&](const auto& member) { bind_value(statement.get(), at++, member); });
        }
        return at;
    }
    template <class Table, class Record>
    static std::int64_t deliver(const Statement& statement, const Table& table, Record& record) {
        std::int64_t count = 0;
        for (; statement.step(); ++count) {
            int at = 0;
            for (const auto& column : table.mapping.read) {
                studio::visit_member(column, record, [&](auto& member) { read_value(statement.get(), at++, member); });
            }
        }
        statement.reset();
        return count;
    }

    SqliteStudio studio_;
    decltype(statements_of(kTenYears)) statements_;
};

}  // namespace bench
