// Values that a column does not keep are refused before the studio is touched, and the refusal names the column.
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

struct Refused {
    const char* table;
    std::string members;
    const char* told;
};

std::string of(std::size_t count, const char* character) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += character;
    return text;
}

const Refused kRefused[] = {
    // Currency: 32 bits of whole units, four digits, and the sign of the fraction lost.
    {"Projects", "DiscountVal=1e30", "DiscountVal takes an amount"},
    {"Projects", "DiscountVal=2147483648", "DiscountVal takes an amount"},
    {"Projects", "DiscountVal=-2147483904", "DiscountVal takes an amount"},
    {"Projects", "DiscountVal=3000000000", "DiscountVal takes an amount"},
    {"Projects", "DiscountVal=-1.25", "DiscountVal takes an amount"},
    {"Projects", "DiscountVal=12.99996", "DiscountVal takes an amount"},
    {"Projects", "DiscountVal=nan", "DiscountVal takes a decimal number"},
    {"Projects", "DiscountVal=inf", "DiscountVal takes a decimal number"},
    {"Projects", "DiscountVal=-Infinity", "DiscountVal takes a decimal number"},
    {"Projects", "DiscountVal=12.5x", "DiscountVal takes a decimal number"},
    {"Projects", "'DiscountVal=12.5 '", "DiscountVal takes a decimal number"},
    {"Projects", "DiscountVal=", "DiscountVal takes a decimal number"},
    {"Projects", "DiscountVal=1e400", "DiscountVal takes a decimal number"},
    {"Invoices", "SubTotal=4294967296", "SubTotal takes an amount"},
    {"ProjPayments", "ProjID=1 Pay=1e10", "Pay takes an amount"},
    // Single precision.
    {"Stock", "Cost=1e39", "Cost takes a decimal number"},
    {"Stock", "Cost=-1e39", "Cost takes a decimal number"},
    {"Stock", "Cost=1e-60", "Cost takes a decimal number"},
    {"Stock", "Cost=nan", "Cost takes a decimal number"},
    {"Gear", "Cost=1e308", "Cost takes a decimal number"},
    // Integers.
    {"Songs", "ProjID=2147483648", "ProjID takes a whole number from -2147483648 to 2147483647"},
    {"Songs", "ProjID=-2147483649", "ProjID takes a whole number"},
    {"Songs", "ProjID=1.0", "ProjID takes a whole number"},
    {"Songs", "ProjID=0x10", "ProjID takes a whole number"},
    {"Songs", "'ProjID=1 '", "ProjID takes a whole number"},
    {"Songs", "ProjID=", "ProjID takes a whole number"},
    // Dates.
    {"Projects", "ProjCreateDate=2038-01-20", "ProjCreateDate takes a date"},
    {"Projects", "ProjCreateDate=1969-12-31", "ProjCreateDate takes a date"},
    {"Projects", "ProjCreateDate=9999-01-01", "ProjCreateDate takes a date"},
    {"Projects", "ProjCreateDate=2026-02-29", "ProjCreateDate takes a date"},
    {"Projects", "ProjCreateDate=2026-03-01x", "ProjCreateDate takes a date"},
    {"Bookings", "DateStart=2038-01-20T00:00", "DateStart takes a moment"},
    // Texts, in characters of the column.
    {"Songs", "ProjID=1 Name=" + of(256, "x"), "Name of Songs takes at most 255 characters, not 256"},
    {"Songs", "ProjID=1 Artist=" + of(256, "ü"), "Artist of Songs takes at most 255 characters, not 256"},
    {"Invoices", "ClientName=" + of(300, "x"), "ClientName of Invoices takes at most 255 characters, not 300"},
    {"Gear", "Model=" + of(256, "x"), "Model of Gear takes at most 255 characters"},
    {"Def_Engineers", "Name=" + of(256, "x"), "Name of Def_Engineers takes at most 255 characters"},
    {"Def_ProjTypes", "Name=" + of(256, "x"), "Name of Def_ProjTypes takes at most 255 characters"},
    // Texts that may not be empty.
    {"Equipment", "Action=x", "Name of Equipment cannot be empty"},
    {"Equipment", "Name= Action=x", "Name of Equipment cannot be empty"},
    {"Def_StockTypes", "ItemPrice=1", "TypeName of Def_StockTypes cannot be empty"},
    {"Def_Rooms", "BasePrice=1", "Name of Def_Rooms cannot be empty"},
};

using ColumnLimits = Tool;

TEST_F(ColumnLimits, value_that_a_column_does_not_keep_is_refused_and_names_the_column) {
    ASSERT_EQ(demo().code, 0);
    const std::string before = both_files();
    for (const Refused& refused : kRefused) {
        SCOPED_TRACE(refused.members.substr(0, 60));
        const std::string where = in_quotes(studio_) + " " + refused.table + " ";
        expect_failure(run("add " + where + refused.members), 2, refused.told);
    }
    expect_failure(run("set " + in_quotes(studio_) + " Projects 1 DiscountVal=1e30"), 2, "DiscountVal");
    expect_failure(run("set " + in_quotes(studio_) + " Songs 1 Name=" + of(256, "x")), 2, "Name of Songs");
    expect_failure(run("set " + in_quotes(studio_) + " Def_Rooms 1 Name="), 2, "Name of Def_Rooms");
    EXPECT_EQ(both_files(), before);
}

#ifndef _WIN32
// Where the code page has several bytes for a character.
TEST_F(ColumnLimits, name_of_a_list_is_limited_in_bytes_too) {
    ASSERT_EQ(demo().code, 0);
    const std::string add = "add " + in_quotes(studio_) + " Def_ProjTypes Name=";
    expect_failure(run(add + of(128, "ü")), 2, "Name of Def_ProjTypes takes at most 255 bytes, not 256");
    EXPECT_EQ(run(add + of(127, "ü")).code, 0);
    EXPECT_NE(run("list " + in_quotes(studio_) + " Def_ProjTypes").out.find("\n" + of(127, "ü") + "\n"),
              std::string::npos);
}
#endif

struct Kept {
    const char* table;
    std::string members;
    std::string shown;
};

const Kept kKept[] = {
    {"Projects", "DiscountVal=2147483520", "\"DiscountVal\": 2147483520"},
    {"Projects", "DiscountVal=-2147483648", "\"DiscountVal\": -2147483648"},
    {"Projects", "DiscountVal=-12", "\"DiscountVal\": -12"},
    {"Projects", "DiscountVal=0.0001", "\"DiscountVal\": 0.0001"},
    {"Projects", "DiscountVal=123456.78", "\"DiscountVal\": 123456.78"},
    {"Projects", "DiscountVal=-0", "\"DiscountVal\": 0"},
    {"Stock", "Cost=1e38", "\"Cost\": 1e+38"},
    {"Stock", "Cost=-1.25", "\"Cost\": -1.25"},
    {"Songs", "ProjID=-2147483648", "\"ProjID\": -2147483648"},
    {"Songs", "ProjID=2147483647", "\"ProjID\": 2147483647"},
    {"Projects", "ProjCreateDate=2038-01-18", "\"ProjCreateDate\": \"2038-01-18\""},
    {"Songs", "ProjID=1 Name=" + of(255, "ü"), "\"Name\": \"" + of(255, "ü") + "\""},
    {"Songs", "ProjID=1 Notes=" + of(3000, "x"), "\"Notes\": \"" + of(3000, "x") + "\""},
};

TEST_F(ColumnLimits, value_at_its_limit_is_kept) {
    ASSERT_EQ(demo().code, 0);
    for (const Kept& kept : kKept) {
        SCOPED_TRACE(kept.members.substr(0, 60));
        const std::string where = in_quotes(studio_) + " " + kept.table + " ";
        const Outcome added = run("add " + where + kept.members);
        ASSERT_EQ(added.code, 0) << added.errors;
        const std::string shown = run("show " + where + added.out.substr(0, added.out.find('\n')) + " --json").out;
        EXPECT_NE(shown.find(kept.shown), std::string::npos) << shown;
    }
}

}  // namespace
