// list, show and rows: which rows, which columns, in which order, and their values in every form.
#include "jet/tables/database.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class Listing : public Tool {
protected:
    void SetUp() override { ASSERT_EQ(demo().code, 0); }

    Outcome on(const std::string& command, const std::string& rest) {
        return run(command + " " + in_quotes(studio_) + " " + rest);
    }
    // The lines of one column, without its name.
    std::string names_of(const std::string& rest) {
        const Outcome outcome = on("list", rest + " --columns Name --csv");
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        std::string text = outcome.out.substr(std::min<std::size_t>(outcome.out.size(), 6));
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        std::replace(text.begin(), text.end(), '\n', '|');
        return text;
    }
};

constexpr const char* kTrains = "Night Trains|";
constexpr const char* kJingle = "Harbour Jingle (long cut)|";
constexpr const char* kCologne = "Grüße aus Köln|";

struct Where {
    const char* condition;
    bool trains, jingle, cologne;
};

constexpr Where kConditions[] = {
    {"ProjID=2", false, true, false},
    {"ProjID!=2", true, false, true},
    {"ProjID<2", true, false, false},
    {"ProjID<=2", true, true, false},
    {"ProjID>2", false, false, true},
    {"ProjID>=2", false, true, true},
    {"ProjID=2..4", false, true, true},
    {"Name=night trains", true, false, false},
    {"Name~JINGLE", false, true, false},
    {"Name~grüß", false, false, true},
    {"name>Harbour Jingle (long cut)", true, false, false},
    {"DiscountVal=12.5", true, false, false},
    {"DiscountVal=7.25", false, false, true},
    {"DiscountVal>3", true, false, true},
    {"DiscountVal=3..7.25", false, true, true},
    {"ProjCreateDate=2026-03-09", false, true, false},
    {"ProjCreateDate=2026-03", true, true, false},
    {"ProjCreateDate=2026", true, true, true},
    {"ProjCreateDate>2026-03-02", false, true, true},
    {"ProjCreateDate>2026-03", false, false, true},
    {"ProjCreateDate<2026-03-09", true, false, false},
    {"ProjCreateDate<=2026-03-09", true, true, false},
    {"ProjCreateDate!=2026-03", false, false, true},
    {"ProjCreateDate=2026-03-09..2026-05", false, true, true},
    {"Producer=", false, false, true},
    {"Producer!=", true, true, false},
};

TEST_F(Listing, where_takes_each_comparison) {
    for (const Where& where : kConditions) {
        const std::string wanted =
            std::string(where.trains ? kTrains : "") + (where.jingle ? kJingle : "") + (where.cologne ? kCologne : "");
        EXPECT_EQ(names_of(std::string("Projects --where '") + where.condition + "'"), wanted) << where.condition;
    }
}

TEST_F(Listing, conditions_add_up_to_each_other_and_to_a_filter) {
    EXPECT_EQ(names_of("Projects --where ProjID!=2 --where Type=Album"), std::string(kTrains) + kCologne);
    EXPECT_EQ(names_of("Projects --filter ClientID=3 --where Type=Album"), kCologne);
    EXPECT_EQ(names_of("Projects --filter ClientID=3 --where Type=Jingle"), "");
}

TEST_F(Listing, moments_are_compared_to_the_minute) {
    const auto count = [&](const std::string& condition) {
        const std::string out = on("list", "Bookings --columns RecID --csv --where '" + condition + "'").out;
        return std::count(out.begin(), out.end(), '\n') - 1;
    };
    EXPECT_EQ(count("DateStart=2026-03-12"), 1);
    EXPECT_EQ(count("DateStart=2026-03-12T10:00"), 1);
    EXPECT_EQ(count("DateStart=2026-03-12T10:00:00"), 1);
    EXPECT_EQ(count("DateStart=2026-03-12T10:01"), 0);
    EXPECT_EQ(count("DateStart>2026-03-12T10:00"), 1);
    EXPECT_EQ(count("DateStart>=2026-03-12T10:00"), 2);
}

TEST_F(Listing, span_of_days_goes_by_the_first_date) {
    EXPECT_EQ(names_of("Projects --from 2026-03-09"), std::string(kJingle) + kCologne);
    EXPECT_EQ(names_of("Projects --to 2026-03-09"), std::string(kTrains) + kJingle);
    EXPECT_EQ(names_of("Projects --from 2026-03-03 --to 2026-03-31"), kJingle);
    EXPECT_EQ(on("rows", "Invoices --from 2026-03-31 --to 2026-03-31 --columns InvoiceID --csv").out,
              "InvoiceID\r\n1001\r\n");
    expect_failure(on("list", "Songs --from 2026-01-01"), 2, "Songs has no dates");
}

TEST_F(Listing, order_columns_and_limit_are_those_asked_for) {
    EXPECT_EQ(names_of("Projects --sort Name"), std::string(kCologne) + kJingle + kTrains);
    EXPECT_EQ(names_of("Projects --sort -Name"), std::string(kTrains) + kJingle + kCologne);
    EXPECT_EQ(names_of("Projects --sort Type,-ProjID"), std::string(kCologne) + kTrains + kJingle);
    EXPECT_EQ(names_of("Projects --sort -DiscountVal --limit 2"), std::string(kTrains) + kCologne);
    EXPECT_EQ(names_of("Projects --limit 0"), "");
    EXPECT_EQ(on("list", "Projects --columns discountval,NAME --limit 1 --json").out,
              "[\n  {\"DiscountVal\": 12.5, \"Name\": \"Night Trains\"}\n]\n");
}

TEST_F(Listing, what_does_not_go_with_the_table_is_a_usage_error) {
    expect_failure(on("list", "Projects --where Nam=x"), 2, "did you mean Name?");
    expect_failure(on("list", "Projects --where Colour=x"), 2, "it has ProjID, Name");
    expect_failure(on("list", "Projects --where Name"), 2, "no condition");
    expect_failure(on("list", "Projects --where 'Name~'"), 2, "lacks its value");
    expect_failure(on("list", "Projects --where ProjID=many"), 2, "takes a number");
    expect_failure(on("list", "Projects --where ProjCreateDate=March"), 2, "YYYY-MM");
    expect_failure(on("list", "Projects --where ProjCreateDate=2026-02-30"), 2, "YYYY-MM");
    expect_failure(on("list", "Projects --columns Nam"), 2, "did you mean Name?");
    expect_failure(on("list", "Projects --columns ,"), 2, "names no column");
    expect_failure(on("list", "Projects --sort Nam"), 2, "did you mean Name?");
    expect_failure(on("list", "Projects --limit -1"), 2, "--limit");
    expect_failure(on("list", "Projects --limit few"), 2, "--limit");
    expect_failure(on("rows", "Projects --where Nam=x"), 2, "did you mean Name?");
}

TEST_F(Listing, show_finds_by_the_number_on_paper_too) {
    const std::string by_key = on("show", "Invoices 1 --json").out;
    EXPECT_NE(by_key.find("\"InvoiceID\": 1001"), std::string::npos) << by_key;
    EXPECT_EQ(on("show", "Invoices 1001 --json").out, by_key);
    EXPECT_EQ(on("show", "Gear A-1177").out, on("show", "Gear 1").out);
    EXPECT_EQ(on("show", "GearRepairs c-20").out, on("show", "GearRepairs 1").out);
    expect_failure(on("show", "Invoices 77"), 1, "no row 77 in Invoices, and none with InvoiceID 77");
    expect_failure(on("show", "Gear Z-1"), 1, "none with SerialNo Z-1");
    ASSERT_EQ(on("add", "Invoices InvoiceID=1001").code, 0);
    expect_failure(on("show", "Invoices 1001"), 1, "several rows of Invoices");
}

TEST_F(Listing, values_are_the_same_in_every_command) {
    ASSERT_EQ(on("set", "Invoices 1 Total=1234.5").code, 0);
    const std::string columns = " --columns RecID,Date,Total,Paymetns,ClientName";
    const std::string wanted =
        "{\"RecID\": 1, \"Date\": \"2026-03-31\", \"Total\": 1234.5, \"Paymetns\": 200, \"ClientName\": \"Aurora "
        "Quartet\"}";
    EXPECT_EQ(on("list", "Invoices --json" + columns).out, "[\n  " + wanted + "\n]\n");
    EXPECT_EQ(on("rows", "Invoices --json" + columns).out, "[\n  " + wanted + "\n]\n");
    EXPECT_EQ(on("list", "Invoices --csv" + columns).out, on("rows", "Invoices --csv" + columns).out);
    const std::string shown = on("show", "Invoices 1 --json").out;
    EXPECT_NE(shown.find("\"Total\": 1234.5,"), std::string::npos) << shown;
    const std::string selected = on("sql", "'SELECT * FROM Invoices' --json").out;
    EXPECT_NE(selected.find("\"Total\": 1234.5,"), std::string::npos) << selected;
}

TEST_F(Listing, tables_schema_and_projects_have_every_form) {
    const std::string invoices = in_quotes(file("kvinvdb.mdb"));
    const std::string tables = run("tables " + invoices + " --json").out;
    EXPECT_NE(tables.find("\"Table\": \"InvoiceParams\", \"Rows\": 2}"), std::string::npos) << tables;
    EXPECT_NE(run("tables " + invoices + " --csv").out.find(",Invoices,1\r\n"), std::string::npos);
    EXPECT_EQ(run("tables " + invoices).out, "DBHeader\nInvoices\nInvoiceParams\n");
    const std::string schema = on("schema", "Invoices --json").out;
    EXPECT_NE(schema.find("\"Position\": 1, \"Column\": \"RecID\", \"Type\": \"long auto-number\""), std::string::npos)
        << schema;
    EXPECT_NE(schema.find("\"Column\": \"Total\", \"Type\": \"currency\""), std::string::npos) << schema;
    EXPECT_NE(on("schema", "--csv").out.find(",Def_Rooms,3,BasePrice,currency,false,"), std::string::npos);
    EXPECT_EQ(on("projects", "--csv").out, on("list", "Projects --csv").out);
    EXPECT_EQ(on("projects", "--json").out, on("list", "Projects --json").out);
}

TEST_F(Listing, amount_keeps_all_its_digits) {
    const std::string path = scratch_.file("money.mdb");
    {
        const auto database = jet::Database::create(path, {});
        const jet::NewColumn columns[] = {{.name = u"Amount", .type = jet::ColumnType::kCurrency}};
        database->create_table(u"Money", columns);
        database->find_table(u"Money")->insert({jet::Currency{INT64_MAX}});
        database->close();
    }
    EXPECT_EQ(run("rows " + in_quotes(path) + " Money --json").out, "[\n  {\"Amount\": 922337203685477.5807}\n]\n");
}

TEST_F(Listing, table_that_is_listed_by_its_parent_is_listed_whole_without_one) {
    EXPECT_EQ(names_of("Songs"), "Last Departure|Platform 9|");
    EXPECT_EQ(on("list", "Tracks --csv --columns Number").out, "Number\r\n1\r\n2\r\n");
}

TEST_F(Listing, search_finds_every_place_of_every_text) {
    const std::string header = "Table,Key,Column,Place,Text\r\n";
    EXPECT_EQ(on("search", "KÖLN --csv").out,
              header + "Projects,4,Name,11,Grüße aus Köln\r\nClients,3,City,1,Köln\r\n");
    ASSERT_EQ(on("set", "Projects 1 'Notes=one two one'").code, 0);
    EXPECT_EQ(on("search", "'one ' --csv").out, header + "Projects,1,Notes,1,one two one\r\n");
    EXPECT_EQ(
        on("search", "one --json").out.find("\"Key\": 1, \"Column\": \"Notes\", \"Place\": 9") != std::string::npos,
        true);
    ASSERT_EQ(on("set", "Projects 2 'Notes=" + std::string(3000, 'x') + " needle " + std::string(3000, 'y') + "'").code,
              0);
    EXPECT_EQ(on("search", "needle --csv").out,
              header + "Projects,2,Notes,3002,…" + std::string(29, 'x') + " needle " + std::string(29, 'y') + "…\r\n");
    EXPECT_EQ(on("search", "nowhere --csv").out, header);
    EXPECT_EQ(run("search " + in_quotes(file("kvinvdb.mdb")) + " aurora --csv").out,
              header + "Invoices,1,ClientName,1,Aurora Quartet\r\n");
    expect_failure(on("search", "''"), 2, "nothing to search for");
}

TEST_F(Listing, sql_reads_either_file_and_changes_nothing) {
    const std::string before = both_files();
    EXPECT_EQ(on("sql", "'SELECT SUM(Total) AS [sum] FROM InvoiceParams' --csv").out, "sum\r\n744.45\r\n");
    const Outcome projects =
        on("sql", "'SELECT * FROM Projects WHERE ProjCreateDate>#2026-03-05# ORDER BY ProjID DESC' --csv");
    EXPECT_EQ(projects.code, 0) << projects.errors;
    EXPECT_LT(projects.out.find("Grüße"), projects.out.find("Harbour"));
    EXPECT_EQ(projects.out.find("Trains"), std::string::npos);
    EXPECT_EQ(run("sql " + main_file() + " 'SELECT * FROM Def_Rooms' --csv").out,
              "RecID,Name,BasePrice,FullPrice,ExData\r\n1,Studio A,40,65.5,0\r\n");
    expect_failure(on("sql", "'DELETE FROM Projects'"), 2, "SELECT");
    expect_failure(on("sql", "'SELECT * FROM Nothing'"), 2, "Nothing");
    expect_failure(on("sql", "'SELECT * FROM Projects WHERE'"), 2, "");
    EXPECT_EQ(both_files(), before);
}

}  // namespace
