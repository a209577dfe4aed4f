// What tests of the engine share: error numbers, columns, a sound file, and a file's whole content as text.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "jet/check/check.h"
#include "jet/pages/header.h"
#include "jet/tables/database.h"
#include "tests/jet/new_column.h"
#include "tests/support/fault_file_system.h"

namespace jet {

// The engine's number of what `work` throws; 0 when it throws nothing.
template <class Work>
int error_number(Work&& work) {
    try {
        work();
    } catch (const Error& error) {
        return error.number();
    }
    return 0;
}

inline void expect_sound(Database& database, const std::string& where = {}) {
    for (const Violation& violation : check_structure(database)) {
        ADD_FAILURE() << where << " page " << violation.page << " row " << violation.row << ": " << violation.rule
                      << ": " << violation.detail;
    }
}

inline std::vector<Value> row_values(const Table& table, RowId row) {
    RowView view;
    std::vector<Value> values;
    if (!table.read(row, view)) return values;
    for (std::size_t i = 0; i < table.def().columns.size(); ++i) values.push_back(view.value(i));
    return values;
}

namespace detail {

inline std::string hex(ByteSpan bytes) {
    std::string text = "x";
    for (const std::uint8_t byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

struct ValueWriter {
    std::string operator()(Null) const { return "null"; }
    std::string operator()(bool v) const { return v ? "true" : "false"; }
    std::string operator()(Currency v) const { return std::to_string(v.ten_thousandths) + "e-4"; }
    std::string operator()(Date v) const { return std::to_string(v.days) + "d"; }
    std::string operator()(const std::u16string& v) const { return "'" + to_utf8(v) + "'"; }
    std::string operator()(const ByteVector& v) const { return hex(v); }
    std::string operator()(const Guid& v) const { return hex(v.bytes); }
    std::string operator()(const Numeric& v) const { return hex(v.bytes); }
    template <class Number>
    std::string operator()(Number v) const {
        return std::to_string(v);
    }
};

}  // namespace detail

inline std::string text_of(const Value& value) { return std::visit(detail::ValueWriter{}, value); }

// Everything in the file that its user can tell apart: password, tables, columns, rows with their addresses, and
// the catalogue's owners. The catalogue's dates are left out: they are those of the moment.
inline std::string content_of(Database& database) {
    std::string text;
    const FileHeader header = parse_header(database.pager().read(jet4::kHeaderPage).bytes(), database.path());
    text += "password " + to_utf8(header.password) + "\n";
    const auto add_table = [&](const Table& table) {
        text += "table " + to_utf8(table.def().name) + " rows " + std::to_string(table.def().row_count) + "\n";
        for (const ColumnDef& column : table.def().columns) {
            text += " column " + to_utf8(column.name) + " " + std::to_string(static_cast<int>(column.type)) + "\n";
        }
        for (auto row = table.next_row({}); row; row = table.next_row(*row)) {
            const std::vector<Value> values = row_values(table, *row);
            text += " row";
            for (std::size_t i = 0; i < values.size(); ++i) {
                const ColumnDef& column = table.def().columns[i];
                if (table.def().page <= jet4::kRelationshipsPage && column.type == ColumnType::kDate) continue;
                if ((column.flags & jet4::tdef::kFlagSid) != 0 && std::holds_alternative<ByteVector>(values[i])) {
                    ByteVector sid = std::get<ByteVector>(values[i]);
                    mask_sid(sid, header);
                    text += " " + text_of(sid);
                } else {
                    text += " " + text_of(values[i]);
                }
            }
            text += "\n";
        }
    };
    add_table(*database.table_by_page(jet4::kObjectsPage));
    add_table(*database.table_by_page(jet4::kAcesPage));
    for (const std::u16string& name : database.table_names()) add_table(*database.find_table(name));
    return text;
}

// Numbers that are the same in every run.
class Random {
public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}
    std::uint32_t operator()() { return static_cast<std::uint32_t>(engine_()); }
    std::uint32_t below(std::size_t bound) { return static_cast<std::uint32_t>((*this)() % bound); }
    std::uint8_t byte() { return static_cast<std::uint8_t>((*this)()); }

private:
    std::mt19937 engine_;
};

// A disk in memory that the engine uses for as long as the object lives.
struct MemoryDisk {
    testing_support::FaultFileSystem disk;
    testing_support::UseFileSystem use{disk};
};

}  // namespace jet
