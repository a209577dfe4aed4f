// report: what it refuses, what stands in the page, and how texts and amounts get there.
#include <filesystem>

#include "tests/old_files/old_files.h"
#include "tests/tools/report_studio.h"
#include "tests/tools/rich_file.h"
#include "tests/tools/tool_fixture.h"
#include "tools/report/markup.h"
#include "tools/report/studio_tables.h"

namespace {

using namespace testing_tool;

std::size_t count_of(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

class Report : public Tool {
protected:
    std::string page_path() const { return scratch_.file("page.html"); }
    Outcome write(const std::string& source, const std::string& more = "") {
        return run("report " + in_quotes(source) + " -o " + in_quotes(page_path()) + " " + more);
    }
    // Of the demonstration's studio, or of what the test has put in its place.
    std::string page(const std::string& more = "") {
        const Outcome outcome = write(studio_, more);
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        const std::string text = contents(page_path());
        std::filesystem::remove(page_path());
        return text;
    }
    bool is_left() const {
        return std::filesystem::exists(page_path()) || std::filesystem::exists(page_path() + ".kvdb-draft");
    }
};

TEST_F(Report, page_is_written_and_overwrites_nothing) {
    ASSERT_EQ(demo().code, 0);
    const Outcome outcome = write(studio_);
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_TRUE(has(outcome.out, "page.html: 37 tables, 44 rows\n")) << outcome.out;
    const std::string before = contents(page_path());
    expect_failure(write(studio_), 1, "overwrites nothing");
    EXPECT_TRUE(contents(page_path()) == before);
    EXPECT_FALSE(std::filesystem::exists(page_path() + ".kvdb-draft"));
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(Report, what_cannot_be_meant_is_refused_and_leaves_nothing) {
    ASSERT_EQ(demo().code, 0);
    expect_failure(run("report " + in_quotes(studio_)), 2, "--output is required");
    expect_failure(write(studio_, "--tables Projcts"), 2, "did you mean Projects?");
    expect_failure(write(scratch_.file("nothing")), 1, "there is no file or folder");
    expect_failure(run("report " + in_quotes(studio_) + " -o " + in_quotes(scratch_.file("no/page.html"))), 1,
                   "no folder");
    EXPECT_FALSE(is_left());
}

TEST_F(Report, export_to_html_is_the_same_page) {
    ASSERT_EQ(demo().code, 0);
    const std::string own = page();
    ASSERT_EQ(run("export " + in_quotes(studio_) + " " + in_quotes(page_path()) + " --to html").code, 0);
    EXPECT_TRUE(contents(page_path()) == own);
}

TEST_F(Report, page_has_the_studio_at_a_glance) {
    ASSERT_EQ(demo().code, 0);
    const std::string text = page();
    EXPECT_TRUE(has(text, "<title>Harbour Sound</title>"));
    for (const char* const part :
         {"2026: 2 bookings, 7.25 h", "Studio A, 2026-W11 from 2026-03-09: 1 booking, 4.5 h",
          "1 invoice of 930.56, 730.56 unpaid.", "2026-03: 1 invoice of 930.56, 730.56 unpaid", "2026: 3 projects",
          "1 piece, bought for 1,850.00; 1 repair for 120.00.", "2&quot; tape: 7 on hand, 149.90 each"}) {
        EXPECT_TRUE(has(text, part)) << part;
    }
    EXPECT_EQ(count_of(text, "<svg role=\"img\""), 5U);
    EXPECT_EQ(count_of(text, "{{"), 0U);
}

TEST_F(Report, slips_and_gaps_of_the_rows_keep_the_pictures_right) {
    ASSERT_EQ(demo().code, 0);
    {
        StudioRows rows(file("sldb.mdb"));
        const auto booking = [&](double start, double end, std::int32_t room) {
            rows.add(u"Bookings", {{u"DateStart", jet::Date{start}}, {u"DateEnd", jet::Date{end}}, {u"RoomID", room}});
        };
        booking(46388.5, 46388.75, 1);   // 2027-01-01, a Friday
        booking(46024, 46025, 99);       // 2026-01-01, in a room that is not there
        booking(46094.5, 46094.25, 0);   // ends before it begins, and is in no room
        booking(2958465, 2958465.5, 1);  // 9999-12-31
        rows.add(u"Bookings", {{u"ClientName", jet::Value(std::u16string(u"some day"))}});
        rows.add(u"Projects", {{u"Name", jet::Value(std::u16string(u"undated"))}});
        rows.add(u"GearRepairs", {{u"GearID", std::int32_t{1}}, {u"SendDate", jet::Date{46000}}, {u"Cost", 30.25F}});
        // A host that has no date writes day 0.
        rows.add(u"GearRepairs",
                 {{u"GearID", std::int32_t{1}}, {u"SendDate", jet::Date{46000}}, {u"ReturnDate", jet::Date{0}}});
        StudioRows invoices(file("kvinvdb.mdb"));
        const auto invoice = [&](double day, std::int64_t total, float balance) {
            invoices.add(u"Invoices",
                         {{u"Date", jet::Date{day}}, {u"Total", jet::Currency{total}}, {u"Balance", balance}});
        };
        invoice(46082, 1000000, -50.0F);  // 2026-03-01, paid too much
        invoice(109000, 10000, 1.0F);     // 2198
        invoice(0, 20000, 2.0F);
    }
    const std::string text = page();
    for (const char* const part :
         {"Studio A, 2026-W53 from 2026-12-28: 1 booking, 6 h",
          "Other rooms, 2026-W01 from 2025-12-29: 1 booking, 24 h", "No room, 2026-W11 from 2026-03-09: 1 booking, 0 h",
          "2 bookings have no date of use", "2026-03: 2 invoices of 1,030.56, 730.56 unpaid",
          "4 invoices of 1,033.56, 733.56 unpaid.",
          "<th scope=\"row\" class=\"name\">no date</th><td>1</td><td>2.00</td><td>2.00</td>",
          "Bars from 2025-04 to 2026-03", "4 projects. 1 has no date.",
          "Sorensen R-84: bought for 1,850.00, 3 repairs for 150.25, 2 not back yet"}) {
        EXPECT_TRUE(has(text, part)) << part;
    }
    EXPECT_FALSE(has(text, "2198-06: "));
    EXPECT_FALSE(has(text, "9999-W"));
}

TEST_F(Report, page_names_nothing_outside_of_itself) {
    ASSERT_EQ(demo().code, 0);
    const std::string text = page();
    EXPECT_TRUE(has(text, "default-src 'none'"));
    for (const char* const part : {"http:", "https:", " src=", "url(", "@import", "<link"}) {
        EXPECT_FALSE(has(text, part)) << part;
    }
}

TEST_F(Report, hostile_texts_end_no_element) {
    ASSERT_EQ(demo().code, 0);
    const std::size_t scripts = count_of(page(), "</script");
    add_hostile_rows(file("sldb.mdb"));
    const std::string text = page();
    // Each of the tables had its rows in a block before.
    EXPECT_EQ(count_of(text, "</script"), scripts);
    EXPECT_EQ(count_of(text, "<script"), scripts);
    for (const char* const part : {"<img", "<!--", "<b>"}) {
        EXPECT_FALSE(has(text, part)) << part;
    }
    EXPECT_TRUE(has(text, "\\u003c/script>\\u003cscript>window.pwned"));
    EXPECT_TRUE(has(text, "&lt;/script&gt;&lt;script&gt;window.pwned"));
}

TEST_F(Report, one_file_alone_has_its_own_pictures) {
    ASSERT_EQ(demo().code, 0);
    std::filesystem::remove(file("kvinvdb.mdb"));
    const Outcome outcome = write(studio_);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(has(outcome.errors, "only one of the studio's two files")) << outcome.errors;
    EXPECT_EQ(count_of(contents(page_path()), "<svg role=\"img\""), 4U);
    std::filesystem::remove(page_path());
    for (const std::string table : {"Gear", "Projects", "Bookings", "Def_StockTypes"}) {
        EXPECT_EQ(write(studio_, "--tables " + table).code, 0);
        EXPECT_EQ(count_of(contents(page_path()), "<svg role=\"img\""), 1U) << table;
        std::filesystem::remove(page_path());
    }
}

TEST_F(Report, file_that_is_no_studios_has_tables_and_no_pictures) {
    make_rich_file(scratch_.file("rich.mdb"));
    const Outcome outcome = write(scratch_.file("rich.mdb"));
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    const std::string text = contents(page_path());
    EXPECT_TRUE(has(text, "<title>rich.mdb</title>"));
    EXPECT_EQ(count_of(text, "<svg"), 0U);
    // More digits than a browser's numbers have.
    EXPECT_TRUE(has(text, "\"922337203685477.5807\""));
}

TEST_F(Report, studios_of_earlier_versions_are_shown_as_they_are) {
    for (const std::int32_t version : testing_support::kOldVersions) {
        SCOPED_TRACE(version);
        std::filesystem::remove_all(studio_);
        std::filesystem::create_directory(studio_);
        testing_support::make_old_studio(studio_, version);
        const std::string before = both_files();
        EXPECT_TRUE(has(page(), "Projects by year"));
        EXPECT_TRUE(both_files() == before);
    }
}

TEST(ReportText, signs_of_a_page_are_escaped) {
    EXPECT_EQ(tools::html_text("<a href=\"x\">'&'</a>\n"), "&lt;a href=&quot;x&quot;&gt;&#39;&amp;&#39;&lt;/a&gt;\n");
    EXPECT_EQ(tools::html_text(std::string("\0\x1B", 2)), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(tools::in_script("</script><!--\xE2\x80\xA8x\xE2\x80\xA9"), "\\u003c/script>\\u003c!--\\u2028x\\u2029");
    EXPECT_EQ(tools::in_script("plain"), "plain");
}

TEST(ReportText, number_beyond_a_browsers_digits_is_a_text) {
    EXPECT_EQ(tools::script_value(jet::Currency{1234567}), "123.4567");
    EXPECT_EQ(tools::script_value(jet::Currency{999999999999999000}), "99999999999999.9");
    EXPECT_EQ(tools::script_value(jet::Currency{999999999999999900}), "\"99999999999999.99\"");
    EXPECT_EQ(tools::script_value(jet::Currency{INT64_MAX}), "\"922337203685477.5807\"");
    EXPECT_EQ(tools::script_value(jet::Currency{INT64_MIN}), "\"-922337203685477.5808\"");
    EXPECT_EQ(tools::script_value(0.1), "0.1");
    EXPECT_EQ(tools::script_value(jet::Null{}), "null");
}

TEST(ReportText, amounts_have_two_to_four_decimals) {
    using tools::Amount;
    EXPECT_EQ(Amount(jet::Currency{0}).text(), "0.00");
    EXPECT_EQ(Amount(jet::Currency{123456000}).text(), "12,345.60");
    EXPECT_EQ(Amount(jet::Currency{-15001}).text(), "-1.5001");
    EXPECT_EQ(Amount(jet::Currency{-15001}).rounded(), "-1.50");
    EXPECT_EQ(Amount(jet::Currency{19950}).rounded(), "2.00");
    EXPECT_EQ(Amount(jet::Value(730.56F)).text(), "730.56");
    EXPECT_EQ(Amount(jet::Value(std::u16string(u"12"))).text(), "0.00");
    Amount sum(jet::Currency{INT64_MAX});
    sum += Amount(jet::Currency{INT64_MAX});
    EXPECT_EQ(sum.text(), "922,337,203,685,477.5807");
    EXPECT_EQ(sum.rounded(), "922,337,203,685,477.58");
}

TEST(ReportText, days_outside_of_two_centuries_are_slips) {
    EXPECT_EQ(tools::iso_text(tools::day_of(jet::Date{46093.99}).value()), "2026-03-12");
    EXPECT_EQ(tools::iso_text(tools::day_of(jet::Date{46093.999999999}).value()), "2026-03-13");
    EXPECT_EQ(tools::iso_text(tools::day_of(jet::Date{2}).value()), "1900-01-01");
    EXPECT_FALSE(tools::day_of(jet::Date{1.5}));
    EXPECT_FALSE(tools::day_of(jet::Date{2958465}));
    EXPECT_FALSE(tools::day_of(jet::Date{std::numeric_limits<double>::quiet_NaN()}));
    EXPECT_FALSE(tools::day_of(jet::Null{}));
}

}  // namespace
