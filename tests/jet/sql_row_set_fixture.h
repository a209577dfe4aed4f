// A table of songs and the sets that are opened over it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jet/sql/row_set.h"
#include "tests/support/temp_folder.h"

namespace row_set_tests {

using jet::ColumnType;
using jet::RowId;
using jet::Value;
using jet::sql::Query;
using jet::sql::RowSet;
using testing_support::TempFolder;
using Ids = std::vector<std::int32_t>;

inline constexpr std::size_t kProject = 1;
inline constexpr std::size_t kDate = 2;
inline constexpr std::size_t kName = 3;

inline void append(RowSet& set, RowId row) {
    set.additions().begin();
    set.additions().store(row);
}

class RowSetTest : public ::testing::Test {
protected:
    RowSetTest() : database_(jet::Database::create(folder_.file("a.mdb"), {})) {
        jet::NewColumn columns[4];
        columns[0].name = u"RecID";
        columns[0].autonumber = true;
        columns[1].name = u"ProjID";
        columns[2].name = u"Date";
        columns[2].type = ColumnType::kDate;
        columns[3].name = u"Name";
        columns[3].type = ColumnType::kText;
        database_->create_table(u"Songs", columns);
    }

    jet::Table& songs() { return *database_->find_table(u"Songs"); }

    RowId add(std::int32_t project, Value date = {}, std::u16string name = u"x") {
        return songs().insert({Value(), project, std::move(date), std::move(name)});
    }

    void change(RowId row, std::size_t position, Value value) {
        const jet::ColumnChange changed{position, std::move(value)};
        songs().update(row, std::span(&changed, 1));
    }

    std::unique_ptr<RowSet> open(std::u16string_view rest = u"") {
        return std::make_unique<RowSet>(Query::prepare(*database_, u"SELECT * FROM [Songs] " + std::u16string(rest)));
    }

    std::int32_t id_of(RowId row) {
        jet::RowView view;
        EXPECT_TRUE(songs().read(row, view));
        return std::get<std::int32_t>(view.value(0));
    }

    Ids all(RowSet& set) {
        Ids ids;
        for (auto row = set.first(); row; row = set.next()) ids.push_back(id_of(*row));
        return ids;
    }

    Ids rest(RowSet& set) {
        Ids ids;
        while (const auto row = set.next()) ids.push_back(id_of(*row));
        return ids;
    }

    TempFolder folder_;
    std::unique_ptr<jet::Database> database_;
};

}  // namespace row_set_tests
