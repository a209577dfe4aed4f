// Every command gives the same values in every form: JSON, CSV, by the gates' columns and by the file's.
#include <optional>
#include <set>
#include <sstream>

#include "tests/tools/json_reader.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

using Field = std::optional<std::string>;  // none is Null
using Record = std::vector<Field>;

struct Listed {
    std::vector<std::string> names;
    std::vector<Record> records;
};

// By RFC 4180; a field without anything, not even quotes, is Null.
Listed listed_in_csv(const std::string& text) {
    std::vector<Record> lines(1);
    std::size_t at = 0;
    while (at < text.size()) {
        Field field;
        if (text[at] == '"') {
            field = "";
            for (++at; at < text.size(); ++at) {
                if (text[at] == '"' && text.compare(at, 2, "\"\"") != 0) break;
                if (text[at] == '"') ++at;
                *field += text[at];
            }
            ++at;
        } else {
            const std::size_t end = text.find_first_of(",\r", at);
            if (end != at) field = text.substr(at, end - at);
            at = end;
        }
        lines.back().push_back(field);
        if (at < text.size() && text[at] == ',') {
            ++at;
            if (text.compare(at, 2, "\r\n") == 0) lines.back().push_back(std::nullopt);
        }
        if (text.compare(at, 2, "\r\n") == 0) {
            at += 2;
            lines.emplace_back();
        }
    }
    EXPECT_TRUE(lines.back().empty()) << "the last line has no end";
    lines.pop_back();
    Listed listed;
    if (lines.empty()) return listed;
    for (const Field& name : lines.front()) listed.names.push_back(name.value_or(""));
    listed.records.assign(lines.begin() + 1, lines.end());
    return listed;
}

Listed listed_in_json(const std::string& text) {
    Listed listed;
    const std::optional<Json> all = json_of(text);
    if (!all) return listed;
    for (const Json& object : all->items) {
        EXPECT_TRUE(listed.names.empty() || listed.names == object.names);
        listed.names = object.names;
        Record record;
        for (const Json& value : object.items) {
            EXPECT_NE(value.kind, Json::Kind::kObject);
            record.push_back(value.kind == Json::Kind::kNull ? Field() : Field(value.text));
        }
        listed.records.push_back(record);
    }
    return listed;
}

class Forms : public Tool {
protected:
    void SetUp() override {
        ASSERT_EQ(demo().code, 0);
        // What each form has to quote, and what is not whole.
        ASSERT_EQ(on("set", "Projects 1 'Name=a \"quoted\", one\\two' DiscountVal=0.1").code, 0);
        ASSERT_EQ(on("set", "Invoices 1 Total=1234.5").code, 0);
        ASSERT_EQ(on("set", "Clients 1 'Name= \tDré,'").code, 0);
    }

    Outcome on(const std::string& command, const std::string& rest) {
        return run(command + " " + in_quotes(studio_) + " " + rest);
    }

    // The records of a table in both forms, which are the same.
    Listed in_both_forms(const std::string& command, const std::string& rest) {
        const Outcome json = on(command, rest + " --json");
        const Outcome csv = on(command, rest + " --csv");
        EXPECT_EQ(json.code, 0) << json.errors;
        EXPECT_EQ(csv.code, 0) << csv.errors;
        const Listed in_csv = listed_in_csv(csv.out);
        const Listed in_json = listed_in_json(json.out);
        EXPECT_EQ(in_csv.records, in_json.records);
        if (!in_json.records.empty()) {
            EXPECT_EQ(in_csv.names, in_json.names);
        }
        return in_csv;
    }
};

TEST_F(Forms, values_of_all_tables_are_the_same_in_list_rows_json_and_csv) {
    std::set<std::string> tables;
    std::istringstream lines(on("tables", "").out);
    for (std::string name; std::getline(lines, name);) tables.insert(name.substr(0, name.find('\r')));
    int with_rows = 0;
    int with_records = 0;
    for (const std::string& table : tables) {
        SCOPED_TRACE(table);
        with_rows += in_both_forms("rows", table).records.empty() ? 0 : 1;
        if (on("list", table).code == 2) continue;  // the gates have no records of it
        const Listed listed = in_both_forms("list", table);
        std::string names;
        for (const std::string& name : listed.names) names += (names.empty() ? "" : ",") + name;
        Listed rows = in_both_forms("rows", table + " --columns " + names);
        EXPECT_EQ(rows.names, listed.names);
        std::vector<Record> records = listed.records;
        std::sort(records.begin(), records.end());
        std::sort(rows.records.begin(), rows.records.end());
        EXPECT_EQ(records, rows.records);
        with_records += records.empty() ? 0 : 1;
    }
    EXPECT_GE(tables.size(), 34U);
    EXPECT_GE(with_rows, 30);
    EXPECT_GE(with_records, 25);
}

TEST_F(Forms, search_in_json_is_json) {
    const std::optional<Json> found = json_of(on("search", "'\"quoted\"' --json").out);
    ASSERT_TRUE(found);
    ASSERT_FALSE(found->items.empty());
    EXPECT_EQ(found->items[0].find("Text")->text, "a \"quoted\", one\\two");
    const std::optional<Json> nothing = json_of(on("search", "'nowhere at all' --json").out);
    ASSERT_TRUE(nothing);
    EXPECT_EQ(nothing->kind, Json::Kind::kArray);
    EXPECT_TRUE(nothing->items.empty());
}

TEST_F(Forms, diff_in_json_is_json) {
    const std::string other = scratch_.file("other");
    std::filesystem::copy(studio_, other, std::filesystem::copy_options::recursive);
    const std::string both = in_quotes(other) + " --json";
    const std::optional<Json> nothing = json_of(on("diff", both).out);
    ASSERT_TRUE(nothing);
    EXPECT_TRUE(nothing->items.empty());
    ASSERT_EQ(on("set", "Projects 1 'Name=x\ny\"'").code, 0);
    ASSERT_EQ(on("add", "Clients Name=New").code, 0);
    ASSERT_EQ(on("delete", "Invoices 1").code, 0);
    const Outcome outcome = on("diff", both);
    EXPECT_EQ(outcome.code, 1);
    const std::optional<Json> differences = json_of(outcome.out);
    ASSERT_TRUE(differences);
    std::set<std::string> changes;
    for (const Json& difference : differences->items) {
        changes.insert(difference.find("table")->text + " " + difference.find("change")->text);
        if (difference.find("table")->text != "Projects") continue;
        EXPECT_EQ(difference.find("before")->find("Name")->text, "x\ny\"");
        EXPECT_EQ(difference.find("after")->find("Name")->text, "a \"quoted\", one\\two");
    }
    EXPECT_TRUE(changes.contains("Projects changed"));
    EXPECT_TRUE(changes.contains("Clients removed"));
    EXPECT_TRUE(changes.contains("Invoices added"));
}

}  // namespace
