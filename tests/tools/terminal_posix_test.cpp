// What a person at a terminal sees: tables as wide as it is, nothing that the terminal would obey, and how far long
// work has come.
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>

#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

class Terminal : public Tool {
protected:
    // What the tool writes to a terminal of that many columns.
    std::string run_in_terminal(std::vector<std::string> words, int columns) {
        winsize size{};
        size.ws_row = 24;
        size.ws_col = static_cast<unsigned short>(columns);
        int terminal = -1;
        const pid_t child = ::forkpty(&terminal, nullptr, nullptr, &size);
        if (child == 0) {
            std::vector<char*> arguments{const_cast<char*>(KVDB_TOOL)};
            for (std::string& word : words) arguments.push_back(word.data());
            arguments.push_back(nullptr);
            ::execv(KVDB_TOOL, arguments.data());
            std::_Exit(127);
        }
        std::string text;
        char buffer[4096];
        for (long count = 0; (count = ::read(terminal, buffer, sizeof buffer)) > 0;) {
            text.append(buffer, static_cast<std::size_t>(count));
        }
        ::close(terminal);
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << text;
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        return text;
    }
    static std::vector<std::string> lines_of(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }
    static std::size_t characters(const std::string& utf8) {
        return static_cast<std::size_t>(std::count_if(
            utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
    }
};

TEST_F(Terminal, table_is_aligned_and_no_wider_than_the_terminal) {
    demo();
    EXPECT_EQ(
        run_in_terminal({"list", studio_, "Projects", "--columns", "ProjID,Name,ProjCreateDate,DiscountVal"}, 100),
        "  ProjID  Name                       ProjCreateDate  DiscountVal\n"
        "       1  Night Trains               2026-03-02             12.5\n"
        "       2  Harbour Jingle (long cut)  2026-03-09                3\n"
        "       4  Grüße aus Köln             2026-05-20             7.25\n");
    for (const int columns : {40, 60, 80, 132, 250}) {
        for (const char* const table : {"Projects", "Clients", "Invoices", "Bookings"}) {
            const std::vector<std::string> lines = lines_of(run_in_terminal({"list", studio_, table}, columns));
            ASSERT_GE(lines.size(), 2U);
            for (const std::string& line : lines) {
                if (line[0] != '(') {
                    EXPECT_LE(characters(line), static_cast<std::size_t>(columns)) << line;
                }
            }
        }
    }
}

TEST_F(Terminal, columns_without_a_place_are_named) {
    demo();
    const std::string text = run_in_terminal({"list", studio_, "Clients"}, 60);
    EXPECT_NE(text.find("(no place for "), std::string::npos) << text;
    EXPECT_NE(text.find("--columns chooses"), std::string::npos) << text;
    EXPECT_NE(text.find("North Radio"), std::string::npos) << text;
}

TEST_F(Terminal, narrow_terminal_cuts_no_number_and_no_date) {
    demo();
    const std::string text =
        run_in_terminal({"list", studio_, "Projects", "--columns", "Name,ProjCreateDate,DiscountVal"}, 36);
    EXPECT_NE(text.find("2026-03-02"), std::string::npos) << text;
    EXPECT_NE(text.find("12.5"), std::string::npos) << text;
    EXPECT_NE(text.find("Harbour"), std::string::npos) << text;
    EXPECT_EQ(text.find("(long cut)"), std::string::npos) << text;
    EXPECT_NE(text.find("…"), std::string::npos) << text;
}

TEST_F(Terminal, wide_characters_count_two) {
    demo();
    const std::string folder = in_quotes(studio_);
    ASSERT_EQ(run("add " + folder + " Def_ProjTypes 'Name=作曲'").code, 0);
    ASSERT_EQ(run("set " + folder + " Projects 1 'Type=作曲' 'Name=ab'").code, 0);
    ASSERT_EQ(run("set " + folder + " Projects 2 'Type=abcd' 'Name=e\u0301x'").code, 0);
    const auto lines = lines_of(run_in_terminal({"list", studio_, "Projects", "--columns", "Name,Type,ProjID"}, 100));
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[1], "  ab              作曲        1");
    EXPECT_EQ(lines[2], "  e\u0301x              abcd        2");
}

TEST_F(Terminal, control_characters_are_shown_and_not_obeyed) {
    demo();
    ASSERT_EQ(run("set " + in_quotes(studio_) + " Projects 1 'Name=a\x1b[31mb\tc\nd'").code, 0);
    const std::string listed = run_in_terminal({"list", studio_, "Projects", "--columns", "Name", "--limit", "1"}, 80);
    EXPECT_EQ(listed, "  Name\n  a\\x1b[31mb\\tc\\nd\n");
    const std::string shown = run_in_terminal({"show", studio_, "Projects", "1"}, 80);
    EXPECT_NE(shown.find("Name: a\\x1b[31mb\\tc\\nd\n"), std::string::npos) << shown;
    // A program that reads gets what is there.
    EXPECT_EQ(run("list " + in_quotes(studio_) + " Projects --columns Name --limit 1").out, "Name\na\x1b[31mb\tc\nd\n");
}

class ProgressSlow : public Terminal {};

TEST_F(ProgressSlow, long_import_tells_how_far_it_is_and_takes_the_line_away) {
    demo();
    {
        std::ofstream csv(scratch_.file("many.csv"), std::ios::binary);
        csv << "Name,Notes\n";
        for (int i = 0; i < 300000; ++i) csv << "Project " << i << "," << std::string(100, 'n') << "\n";
    }
    const std::string text = run_in_terminal({"import", studio_, "Projects", scratch_.file("many.csv")}, 80);
    EXPECT_NE(text.find(" lines, "), std::string::npos) << text;
    EXPECT_NE(text.find(" a second"), std::string::npos) << text;
    EXPECT_NE(text.find(" s left"), std::string::npos) << text;
    EXPECT_NE(text.find("\033[K300000 of 300000 lines added"), std::string::npos) << text;
    const std::string exported = run_in_terminal({"export", studio_, scratch_.file("x.jsonl"), "--to", "jsonl"}, 80);
    EXPECT_NE(exported.find("rows\n"), std::string::npos) << exported;
}

TEST_F(ProgressSlow, keeping_commands_tell_how_far_they_are) {
    demo();
    {
        std::ofstream csv(scratch_.file("many.csv"), std::ios::binary);
        csv << "Name,Notes\n";
        for (int i = 0; i < 400000; ++i) csv << "Project " << i << "," << std::string(100, 'n') << "\n";
    }
    ASSERT_EQ(run("import " + in_quotes(studio_) + " Projects " + in_quotes(scratch_.file("many.csv"))).code, 0);
    const std::string compacted = run_in_terminal({"compact", studio_}, 80);
    EXPECT_NE(compacted.find(" rows copied, "), std::string::npos) << compacted;
    EXPECT_NE(compacted.find(" s left"), std::string::npos) << compacted;
    const std::string salvaged = run_in_terminal({"salvage", file("sldb.mdb"), scratch_.file("saved.mdb")}, 80);
    EXPECT_NE(salvaged.find(" rows saved, "), std::string::npos) << salvaged;
    EXPECT_NE(salvaged.find(" s left"), std::string::npos) << salvaged;
    std::filesystem::copy(studio_, scratch_.file("other"));
    const auto begin = std::chrono::steady_clock::now();
    const std::string compared = run_in_terminal({"diff", studio_, scratch_.file("other")}, 80);
    if (std::chrono::steady_clock::now() - begin > std::chrono::milliseconds(1500)) {
        EXPECT_NE(compared.find(" a second"), std::string::npos) << compared;
    }
    const std::string selected = run_in_terminal({"sql", studio_, "SELECT * FROM Projects ORDER BY Type, Name"}, 80);
    EXPECT_NE(selected.find(" rows read, "), std::string::npos) << selected;
    EXPECT_NE(selected.find(" s left"), std::string::npos) << selected;
    // Its line comes between those of the rows, and never into one.
    const std::vector<std::string> lines =
        lines_of(run_in_terminal({"rows", file("sldb.mdb"), "Projects", "--columns", "Name,Notes"}, 80));
    std::size_t rows = 0;
    for (const std::string& line : lines) {
        const std::size_t erased = line.rfind("\033[K");
        const std::string row = erased == std::string::npos ? line : line.substr(erased + 3);
        if (row.starts_with("  Project ")) ++rows;
        EXPECT_LE(characters(row), 80u) << line;
    }
    EXPECT_EQ(rows, 400000u);
}

}  // namespace
