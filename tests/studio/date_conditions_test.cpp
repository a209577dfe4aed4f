// Conditions on dates find their rows with every date separator of the system.
#include <gtest/gtest.h>

#include "jet/sql/row_set.h"
#include "os/system.h"
#include "studio/extended.h"
#include "studio/invoices.h"
#include "tests/jet/engine_fixture.h"

namespace {

class DateConditions : public testing::Test {
protected:
    DateConditions() : database_(jet::Database::create("d/a.mdb", {})) {
        for (const char16_t* name : {u"Sessions", u"Invoices"}) {
            const jet::NewColumn columns[] = {jet::new_column(u"RecDate", jet::ColumnType::kDate),
                                              jet::new_column(u"Date", jet::ColumnType::kDate)};
            database_->create_table(name, columns);
            // 28 February to 31 March 2005.
            for (double day = 38411; day < 38443; ++day) {
                database_->find_table(name)->insert({jet::Date{day}, jet::Date{day}});
            }
        }
    }
    ~DateConditions() override {
        os::set_date_format_for_test("", os::DateOrder::kMonthDayYear);
        os::set_code_page(os::CodePage::kSystem);
    }

    // As the framework passes a statement to the engine.
    std::size_t rows_of(const std::string& statement) {
        jet::sql::RowSet rows(jet::sql::Query::prepare(*database_, os::widen(statement)));
        std::size_t count = 0;
        for (auto row = rows.first(); row; row = rows.next()) ++count;
        return count;
    }

    jet::MemoryDisk memory_;
    std::unique_ptr<jet::Database> database_;
};

TEST_F(DateConditions, every_separator_of_a_system_finds_the_rows) {
    struct Case {
        const char* separator;
        os::CodePage code_page;
    };
    const Case cases[] = {
        {"/", os::CodePage::kUtf8},
        {"-", os::CodePage::kUtf8},
        {".", os::CodePage::kUtf8},
        {". ", os::CodePage::kUtf8},
        {", ", os::CodePage::kUtf8},
        {" ", os::CodePage::kUtf8},
        {"de", os::CodePage::kUtf8},
        {"\xE5\xB9\xB4", os::CodePage::kUtf8},
        {"\xE2\x80\x8F/", os::CodePage::kUtf8},
        {"\xE8", os::CodePage::kUtf8},
        {"\xE8", os::CodePage::kWindows1252},
        {"\x81", os::CodePage::kWindows1252},
        {"\xA0", os::CodePage::kWindows1252},
        {"'", os::CodePage::kWindows1252},
        {"#", os::CodePage::kWindows1252},
    };
    SessionExInfo session;
    session.FromDate = CTime(2005, 3, 3, 9, 0, 0);
    session.ToDate = CTime(2005, 3, 12, 9, 0, 0);
    session.DateFlags = 3;
    InvoiceInfo invoice = {};
    invoice.FromDate = session.FromDate;
    invoice.ToDate = session.ToDate;
    for (const Case& sample : cases) {
        os::set_date_format_for_test(sample.separator, os::DateOrder::kDayMonthYear);
        os::set_code_page(sample.code_page);
        EXPECT_EQ(10u, rows_of(studio::kSessionsWithin.statement(&session))) << sample.separator;
        EXPECT_EQ(10u, rows_of(studio::kInvoices.statement(&invoice))) << sample.separator;
    }
}

}  // namespace
