// Numbers and texts are always read from the text of a field's value, whatever type the column has: files of other
// programs may have other ones under the names of the studio's.
#include <gtest/gtest.h>

#include "tests/gates/projects_cases.h"
#include "tests/gates/record_round_trip.h"

using namespace testing_support;

namespace {

struct Parsed {
    const char* what;
    jet::ColumnType type;
    jet::Value value;
    LONG number;
    const char* text;  // null: not looked at
};

const Parsed kParsed[] = {
    {"text that begins with a number", jet::ColumnType::kText, std::u16string(u" 12abc"), 12, " 12abc"},
    {"text without a number", jet::ColumnType::kText, std::u16string(u"abc12"), 0, "abc12"},
    {"memo", jet::ColumnType::kMemo, std::u16string(u"-7 and more"), -7, "-7 and more"},
    {"16-bit integer", jet::ColumnType::kInteger, std::int16_t{-300}, -300, "-300"},
    {"byte", jet::ColumnType::kByte, std::uint8_t{31}, 0, "0x1F"},  // the text is hexadecimal, the parser is not
    {"true", jet::ColumnType::kBoolean, true, 0, "TRUE"},
    {"false", jet::ColumnType::kBoolean, false, 0, "FALSE"},
    {"single", jet::ColumnType::kSingle, 7.9f, 7, "7.900000"},
    {"double", jet::ColumnType::kDouble, 1234.5, 1, nullptr},  // 1.234500e+03
    {"currency", jet::ColumnType::kCurrency, jet::Currency{-37500}, -3, nullptr},
    {"date", jet::ColumnType::kDate, jet::Date{38416}, 5, "05/03/2005"},
};

TEST(ParsedNumbersGate, columns_of_other_types_are_read_by_their_text) {
    for (const Parsed& parsed : kParsed) {
        SCOPED_TRACE(parsed.what);
        OpenGate<IDBgate1> gate;
        const LONG key = add_variant(kProjects, *gate, 1);
        gate.while_closed([&] {
            jet::OpenOptions options;
            options.ignore_password = true;
            const auto database = jet::Database::open(gate.file("sldb.mdb"), options);
            for (const char16_t* const name : {u"ExData", u"Folder"}) {
                database->delete_column(u"Projects", name);
                jet::NewColumn column;
                column.name = name;
                column.type = parsed.type;
                database->add_column(u"Projects", column);
                jet::Table& table = *database->find_table(u"Projects");
                const jet::ColumnChange change{*table.def().find_column(name), parsed.value};
                table.update(*table.next_row({}), {&change, 1});
            }
            database->close();
        });
        ProjInfo project;
        project.ProjID = key;
        ASSERT_EQ(call(*gate, &IDBgate1::FindProj, project), S_OK);
        EXPECT_EQ(project.ExData, parsed.number);
        if (parsed.text != nullptr) {
            EXPECT_EQ(project.Folder, parsed.text);
        }
        ProjInfo first;
        ASSERT_EQ(call(*gate, &IDBgate1::EnumFirstProj, first), S_OK);
        EXPECT_EQ(first.ExData, parsed.number);
        EXPECT_EQ(first.Folder, project.Folder);
    }
}

}  // namespace
