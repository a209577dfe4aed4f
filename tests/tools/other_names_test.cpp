// Folders and files with names that no narrow code page of Windows holds, in every command.
#include "os/path_text.h"
#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;
namespace fs = std::filesystem;

class OtherNames : public Tool {
protected:
    OtherNames() { studio_ = scratch_.file("st\u00fadio \u4f5c\u66f2 \u0424"); }

    std::string quoted(const std::string& name) const { return in_quotes(scratch_.file(name)); }
    static fs::path path_of(const std::string& text) {
        const std::u16string units = os::units_of_path(text);
        return fs::path(units);
    }
    void expect_done(const std::string& arguments) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, 0) << arguments << "\n" << outcome.errors;
    }
};

TEST_F(OtherNames, every_command_finds_a_folder_of_any_name) {
    const std::string studio = in_quotes(studio_);
    ASSERT_EQ(demo().code, 0);
    EXPECT_TRUE(fs::exists(path_of(studio_) / "sldb.mdb"));
    for (const std::string command : {"info", "check", "tables", "projects", "compact"}) {
        expect_done(command + " " + studio);
    }
    expect_done("info " + in_quotes(studio_ + "/sldb.mdb"));
    expect_done("list " + studio + " Projects");
    expect_done("rows " + studio + " Projects");
    expect_done("schema " + studio + " Projects");
    expect_done("search " + studio + " Night");
    expect_done("sql " + in_quotes(studio_ + "/sldb.mdb") + " 'SELECT * FROM Projects'");
    expect_done("add " + studio + " Def_ProjTypes Name=Jingle");
    expect_done("upgrade " + studio);
    expect_done("backup " + studio + " " + quoted("Kopien \u0424"));
    expect_done("restore --list " + quoted("Kopien \u0424"));
    expect_done("restore " + quoted("Kopien \u0424") + " " + quoted("zur\u00fcck \u4f5c"));
    expect_done("diff " + studio + " " + quoted("zur\u00fcck \u4f5c"));
    expect_done("salvage " + in_quotes(studio_ + "/sldb.mdb") + " " + quoted("gerettet \u0424.mdb"));
    for (const std::string form : {"csv", "jsonl", "postgres", "sqlite"}) {
        expect_done("export " + studio + " " + quoted("aus \u4f5c." + form) + " --to " + form);
        EXPECT_TRUE(fs::exists(path_of(scratch_.file("aus \u4f5c." + form)))) << form;
    }
    std::ofstream(path_of(scratch_.file("neu \u0424.csv")), std::ios::binary) << "Name\nvon drau\u00dfen\n";
    expect_done("import " + studio + " Projects " + quoted("neu \u0424.csv"));
    EXPECT_TRUE(fs::exists(path_of(scratch_.file("zur\u00fcck \u4f5c")) / "kvinvdb.mdb"));
}

}  // namespace
