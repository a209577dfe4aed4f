// The manual for owners is true: each command in it, typed as it stands there and in its order, does its work.
#include <map>
#include <regex>

#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;
namespace fs = std::filesystem;

class OwnersManual : public Tool {
protected:
    // What stands for itself in the manual stands for this here.
    std::map<std::string, std::string> own() const {
        return {{"STUDIO", in_quotes(studio_)},
                {"COPIES", in_quotes(scratch_.file("copies"))},
                {"DAMAGED", main_file()},
                {"OLD-COPY", in_quotes(scratch_.file("old copy.mdb"))}};
    }
    static std::string text() { return contents(std::string(KVDB_TEST_SCRIPTS) + "/../../docs/owners.md"); }

    // Lines of their own and words in the text, without the name of the program.
    static std::vector<std::string> commands() {
        std::vector<std::string> found;
        const std::string manual = text();
        const std::regex pattern("(^|\n) {4,}kvdb ([^\n]*)|`kvdb ([^`]*)`");
        for (auto at = std::sregex_iterator(manual.begin(), manual.end(), pattern); at != std::sregex_iterator();
             ++at) {
            std::string command = (*at)[2].matched ? (*at)[2].str() : (*at)[3].str();
            std::replace(command.begin(), command.end(), '\n', ' ');  // two lines of one paragraph
            found.push_back(command);
        }
        return found;
    }
    std::string typed(std::string command) const {
        for (const auto& [word, mine] : own()) {
            command = std::regex_replace(command, std::regex("(^| )" + word + "($|(?= ))"), "$1" + mine);
        }
        return command;
    }
    int type(const std::string& command) const {
        const int status = std::system(("cd " + in_quotes(scratch_.path()) + " && { LC_ALL=C.UTF-8 " +
                                        in_quotes(KVDB_TOOL) + " " + command + "; } >said 2>&1")
                                           .c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

TEST_F(OwnersManual, each_command_works_as_it_stands_there) {
    ASSERT_EQ(demo().code, 0);
    fs::copy(studio_, scratch_.file("My Studio"));
    fs::copy_file(file("sldb.mdb"), scratch_.file("old copy.mdb"));
    const std::vector<std::string> all = commands();
    EXPECT_GE(all.size(), 25u);
    for (const std::string& command : all) {
        // In most shells a path of Windows is another word.
        EXPECT_EQ(command.find('\\'), std::string::npos) << command;
        const std::string name = command.substr(0, command.find(' '));
        // A name alone tells of the command.
        const std::string entered = name == command && name != "help" ? "help " + name : typed(command);
        EXPECT_EQ(type(entered), 0) << "kvdb " << entered << "\n" << contents(scratch_.file("said"));
    }
    for (const char* const made :
         {"studio.html", "studio.sqlite", "tables/schema.json", "saved.mdb", "projects.csv", "copies"}) {
        EXPECT_TRUE(fs::exists(scratch_.file(made))) << made;
    }
}

TEST_F(OwnersManual, tells_how_to_get_everything_out) {
    const std::string manual = text();
    for (const char* const name : {"kvdb backup", "kvdb restore", "kvdb report", "kvdb export", "kvdb search",
                                   "kvdb salvage", "kvdb compact", "kvdb check", "kvdb info"}) {
        EXPECT_NE(manual.find(name), std::string::npos) << name;
    }
}

TEST_F(OwnersManual, info_tells_the_kind_of_file) {
    ASSERT_EQ(demo().code, 0);
    const std::string out = run("info " + in_quotes(studio_)).out;
    for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) {
        const std::size_t at = out.find(std::string(name) + " (");
        ASSERT_NE(at, std::string::npos) << out;
        const std::string line = out.substr(at, out.find('\n', at) - at);
        EXPECT_NE(line.find("version 210000, Jet 4 (Access 2000 to 2003)"), std::string::npos) << line;
    }
}

}  // namespace
