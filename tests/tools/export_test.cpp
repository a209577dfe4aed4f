// export: what it refuses, what it leaves, and what the files look like.
#include <filesystem>

#include "tests/tools/rich_file.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class Export : public Tool {
protected:
    void SetUp() override { ASSERT_EQ(demo().code, 0); }

    std::string out(const std::string& name) const { return scratch_.file(name); }
    Outcome write(const std::string& form, const std::string& more = "") {
        return run("export " + in_quotes(studio_) + " " + in_quotes(out(form)) + " --to " + form + " " + more);
    }
    static bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
};

TEST_F(Export, every_form_is_written_and_overwrites_nothing) {
    for (const std::string form : {"sqlite", "sqlite-script", "csv", "jsonl", "postgres", "html"}) {
        SCOPED_TRACE(form);
        const Outcome outcome = write(form);
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        EXPECT_TRUE(has(outcome.out, ": 37 tables, ")) << outcome.out;
        EXPECT_TRUE(std::filesystem::exists(out(form)));
        EXPECT_FALSE(std::filesystem::exists(out(form) + ".kvdb-draft"));
        expect_failure(write(form), 1, "overwrites nothing");
    }
    EXPECT_EQ(names(), kBothFiles);
}

TEST_F(Export, what_cannot_be_meant_is_refused_and_leaves_nothing) {
    const std::string begin = "export " + in_quotes(studio_) + " " + in_quotes(out("x"));
    expect_failure(run(begin), 2, "--to is required");
    expect_failure(run(begin + " --to sqlit"), 2, "did you mean sqlite?");
    expect_failure(run(begin + " --to excel"), 2, "it takes sqlite, sqlite-script, csv, jsonl, postgres, html");
    expect_failure(run(begin + " --to csv --tables Projcts"), 2, "did you mean Projects?");
    expect_failure(run(begin + " --to csv --schema x"), 2, "--schema goes with --to postgres alone");
    expect_failure(run("export " + in_quotes(studio_) + " " + in_quotes(out("no/where")) + " --to csv"), 1,
                   "no folder");
    expect_failure(run("export " + in_quotes(out("nothing")) + " " + in_quotes(out("x")) + " --to csv"), 1,
                   "there is no file or folder");
    expect_failure(run("export " + in_quotes(studio_) + " '' --to csv"), 2, "its name is empty");
    EXPECT_FALSE(std::filesystem::exists(out("x")));
    EXPECT_FALSE(std::filesystem::exists(out("x.kvdb-draft")));
}

TEST_F(Export, tables_alone_are_those_that_are_named) {
    EXPECT_TRUE(has(write("csv", "--tables projects,Invoices").out, ": 2 tables, 4 rows"));
    EXPECT_TRUE(std::filesystem::exists(out("csv") + "/Projects.csv"));
    EXPECT_TRUE(std::filesystem::exists(out("csv") + "/Invoices.csv"));
    EXPECT_TRUE(std::filesystem::exists(out("csv") + "/schema.json"));
    EXPECT_FALSE(std::filesystem::exists(out("csv") + "/Songs.csv"));
}

TEST_F(Export, missing_file_of_the_studio_is_told) {
    std::filesystem::remove(file("kvinvdb.mdb"));
    const Outcome outcome = write("csv");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(has(outcome.out, ": 34 tables, ")) << outcome.out;
    EXPECT_TRUE(has(outcome.errors, "only one of the studio's two files")) << outcome.errors;
}

TEST_F(Export, csv_is_as_rfc_4180_has_it) {
    EXPECT_EQ(write("csv").code, 0);
    EXPECT_EQ(contents(out("csv") + "/Def_Rooms.csv"),
              "RecID,Name,BasePrice,FullPrice,ExData\r\n1,Studio A,40,65.5,0\r\n");
    const std::string stock = contents(out("csv") + "/Def_StockTypes.csv");
    EXPECT_TRUE(has(stock, "1,\"2\"\" tape\",7,149.9,0\r\n")) << stock;
    const std::string schema = contents(out("csv") + "/schema.json");
    EXPECT_TRUE(has(schema, "{\"name\": \"FullPrice\", \"type\": \"currency\"}")) << schema;
}

TEST_F(Export, header_of_the_second_file_gets_its_name_in_front) {
    EXPECT_EQ(write("jsonl").code, 0);
    EXPECT_TRUE(has(contents(out("jsonl") + "/DBHeader.jsonl"), "\"Color1\""));
    EXPECT_TRUE(has(contents(out("jsonl") + "/kvinvdb_DBHeader.jsonl"), "\"CreateDate\""));
}

TEST_F(Export, names_of_tables_lead_out_of_no_folder) {
    make_rich_file(out("rich.mdb"));
    const Outcome outcome = run("export " + in_quotes(out("rich.mdb")) + " " + in_quotes(out("rich")) + " --to csv");
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(out("rich"))) {
        files.push_back(entry.path().filename().string());
    }
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files, (std::vector<std::string>{"CON__plain___.csv", "Rich; table _1_.csv", "schema.json"}));
}

TEST_F(Export, postgres_script_is_one_transaction) {
    EXPECT_EQ(write("postgres", "--schema 'my studio'").code, 0);
    const std::string script = contents(out("postgres"));
    EXPECT_LT(script.find("\nBEGIN;\n"), script.find("CREATE SCHEMA IF NOT EXISTS \"my studio\";"));
    EXPECT_TRUE(has(script, "COPY \"my studio\".\"Projects\" "));
    EXPECT_TRUE(has(script, "ALTER TABLE \"my studio\".\"Projects\" ADD PRIMARY KEY (\"ProjID\");"));
    EXPECT_TRUE(has(script, "ALTER COLUMN \"ProjID\" RESTART WITH 5;"));
    EXPECT_TRUE(has(script, "CREATE INDEX ON \"my studio\".\"Songs\" (\"ProjID\");"));
    EXPECT_EQ(script.substr(script.size() - 9), "\nCOMMIT;\n");
}

}  // namespace
