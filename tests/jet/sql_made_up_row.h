// A table definition with a column of every type and a made-up row of it, for statements without a database.
#pragma once

#include <gtest/gtest.h>

#include <map>

#include "jet/base/error.h"
#include "jet/sql/evaluator.h"
#include "jet/sql/parser.h"

namespace sql_test {

using jet::ColumnType;
using jet::Value;
using namespace jet::sql;

inline jet::TableDef songs() {
    jet::TableDef def;
    def.name = u"Songs";
    const auto add = [&def](const char16_t* name, ColumnType type) {
        jet::ColumnDef column;
        column.name = name;
        column.type = type;
        column.number = static_cast<std::uint16_t>(def.columns.size());
        def.columns.push_back(column);
    };
    add(u"ProjID", ColumnType::kLong);
    add(u"Name", ColumnType::kText);
    add(u"Date", ColumnType::kDate);
    add(u"Notes", ColumnType::kMemo);
    add(u"Price", ColumnType::kCurrency);
    add(u"Rate", ColumnType::kSingle);
    add(u"Weight", ColumnType::kDouble);
    add(u"Small", ColumnType::kByte);
    add(u"Short", ColumnType::kInteger);
    add(u"Flag", ColumnType::kBoolean);
    add(u"Exact", ColumnType::kNumeric);
    add(u"Key", ColumnType::kGuid);
    add(u"Raw", ColumnType::kBinary);
    add(u"Object", ColumnType::kOle);
    add(u"Client ID", ColumnType::kLong);
    return def;
}

class Row final : public ValueSource {
public:
    Row() : def_(songs()) {}

    Row& set(std::u16string_view column, Value value) {
        values_[*def_.find_column(column)] = std::move(value);
        return *this;
    }

    Value value(std::size_t position) const override {
        ++reads_[position];
        const auto found = values_.find(position);
        return found == values_.end() ? Value() : found->second;
    }
    bool is_null(std::size_t position) const override { return jet::is_null(value(position)); }

    Truth truth(std::u16string_view condition) const {
        const std::u16string text = u"SELECT * FROM [Songs] WHERE " + std::u16string(condition);
        Lexed lexed = lex(text);
        const auto statement = parse(lexed);
        return evaluate(*statement, bind_statement(*statement, def_, std::move(lexed.literals)), *this);
    }

    bool meets(std::u16string_view condition) const { return truth(condition) == Truth::kTrue; }
    const std::map<std::size_t, int>& reads() const { return reads_; }

private:
    jet::TableDef def_;
    std::map<std::size_t, Value> values_;
    mutable std::map<std::size_t, int> reads_;
};

// 0 when the statement is right.
inline int error_of(std::u16string_view text) {
    try {
        const jet::TableDef def = songs();
        Lexed lexed = lex(text);
        const auto statement = parse(lexed);
        bind_statement(*statement, def, std::move(lexed.literals));
        return 0;
    } catch (const jet::Error& error) {
        EXPECT_STRNE("", error.what());
        return error.number();
    }
}

inline int condition_error(std::u16string_view condition) {
    return error_of(u"SELECT * FROM [Songs] WHERE " + std::u16string(condition));
}

}  // namespace sql_test
