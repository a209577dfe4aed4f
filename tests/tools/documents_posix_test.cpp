// The man page and the completions say what the help says, and the programs they are for take them.
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <poll.h>

#include <csignal>
#include <cstdio>
#include <sstream>

#include "tests/tools/tool_fixture.h"

namespace {

using namespace testing_tool;

bool is_installed(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

class Documents : public Tool {
protected:
    // The names of all commands, as the help lists them.
    std::vector<std::string> commands() {
        std::vector<std::string> names;
        std::istringstream lines(run("--help").out);
        for (std::string line; std::getline(lines, line);) {
            std::istringstream words(line);
            std::string program;
            std::string name;
            if (words >> program >> name && program == "kvdb" && line[0] == ' ') names.push_back(name);
        }
        return names;
    }
    // "--json", "-h" and so on, as a command's help explains them.
    std::vector<std::string> options(const std::string& command) {
        std::vector<std::string> names;
        std::istringstream lines(run("help " + command).out);
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("  -", 0) != 0) continue;
            std::istringstream words(line);
            for (std::string word; words >> word && word[0] == '-';) {
                if (word.back() == ',') word.pop_back();
                names.push_back(word);
            }
        }
        return names;
    }
    std::string made(const std::string& arguments, const std::string& name) {
        const Outcome outcome = run("help " + arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.errors;
        std::ofstream(scratch_.file(name), std::ios::binary) << outcome.out;
        return outcome.out;
    }
    // What the command writes to both of its outputs.
    std::string output_of(const std::string& command) {
        const std::string out = scratch_.file("output");
        static_cast<void>(std::system(("(" + command + ") >" + in_quotes(out) + " 2>&1").c_str()));
        return contents(out);
    }
    // What stands on a terminal after the line was typed to an interactive shell, and the key for completion; as soon
    // as that is what is wanted.
    std::string completed(std::vector<std::string> shell, const std::string& source, const std::string& typed,
                          const std::string& wanted) {
        winsize size{};
        size.ws_row = 50;
        size.ws_col = 200;
        int terminal = -1;
        std::fflush(nullptr);
        const pid_t child = ::forkpty(&terminal, nullptr, nullptr, &size);
        if (child == 0) {
            static_cast<void>(::chdir(scratch_.path().c_str()));
            ::setenv("TERM", "dumb", 1);
            ::setenv("HOME", scratch_.path().c_str(), 1);
            std::vector<char*> arguments;
            for (std::string& word : shell) arguments.push_back(word.data());
            arguments.push_back(nullptr);
            ::execvp(arguments[0], arguments.data());
            std::_Exit(127);
        }
        type(terminal, source + "; echo rea''dy\n");
        std::string screen;
        while (screen.find("ready\r") == std::string::npos && read_some(terminal, screen, 10000)) continue;
        EXPECT_NE(screen.find("ready\r"), std::string::npos) << screen;
        screen.clear();
        type(terminal, typed + "\t\t");
        while (screen.find(wanted) == std::string::npos && read_some(terminal, screen, 5000)) continue;
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ::close(terminal);
        return screen;
    }

private:
    static void type(int terminal, const std::string& text) {
        EXPECT_EQ(::write(terminal, text.data(), text.size()), static_cast<long>(text.size()));
    }
    static bool read_some(int terminal, std::string& text, int milliseconds) {
        pollfd waiting{terminal, POLLIN, 0};
        char buffer[4096];
        if (::poll(&waiting, 1, milliseconds) <= 0) return false;
        const long count = ::read(terminal, buffer, sizeof buffer);
        if (count > 0) text.append(buffer, static_cast<std::size_t>(count));
        return count > 0;
    }
};

std::string without_backslashes(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\\'), text.end());
    return text;
}

TEST_F(Documents, every_command_and_option_is_in_the_man_page_and_in_the_completions) {
    const std::string man = without_backslashes(made("--man", "kvdb.1"));
    const std::string bash = made("--completion bash", "kvdb.bash");
    const std::string zsh = made("--completion zsh", "_kvdb");
    const std::string fish = made("--completion fish", "kvdb.fish");
    const std::vector<std::string> names = commands();
    ASSERT_GE(names.size(), 20u);
    for (const std::string& command : names) {
        EXPECT_NE(man.find("fBkvdb " + command + "fR"), std::string::npos) << command;
        EXPECT_NE(bash.find("        " + command + ")\n"), std::string::npos) << command;
        EXPECT_NE(zsh.find("        " + command + ")\n"), std::string::npos) << command;
        EXPECT_NE(fish.find("-a " + command + " -d"), std::string::npos) << command;
        // Of the command's own part of each.
        const auto part = [&](const std::string& text, const std::string& begin, const std::string& end) {
            const std::size_t at = text.find(begin);
            return text.substr(at, text.find(end, at + begin.size()) - at);
        };
        const std::string in_man = part(man, "fBkvdb " + command + "fR", "fBkvdb ");
        const std::string in_bash = part(bash, "        " + command + ")\n", ";;");
        const std::string in_zsh = part(zsh, "        " + command + ")\n", ";;");
        for (const std::string& option : options(command)) {
            EXPECT_NE(in_bash.find(option), std::string::npos) << command << " " << option;
            EXPECT_NE(in_zsh.find(option + "["), std::string::npos) << command << " " << option;
            const std::string as_fish = option[1] == '-' ? " -l " + option.substr(2) : " -s " + option.substr(1);
            std::istringstream lines(fish);
            bool is_there = false;
            for (std::string line; std::getline(lines, line);) {
                is_there |= line.find("__kvdb_in " + command + "'") != std::string::npos &&
                            (line + " ").find(as_fish + " ") != std::string::npos;
            }
            EXPECT_TRUE(is_there) << command << " " << option;
            if (option == "-h" || option == "--help") continue;
            EXPECT_NE(in_man.find("fB" + option), std::string::npos) << command << " " << option;
        }
    }
}

TEST_F(Documents, man_pages_are_taken_without_a_warning) {
    made("--man", "kvdb.1");
    const std::string pages =
        in_quotes(scratch_.file("kvdb.1")) + " " + in_quotes(KVDB_TEST_SCRIPTS "/../../docs/kvdb-files.5");
    int tried = 0;
    if (is_installed("groff")) {
        EXPECT_EQ(output_of("groff -ww -man -Tutf8 " + pages + " >/dev/null"), "");
        ++tried;
    }
    if (is_installed("mandoc")) {
        EXPECT_EQ(output_of("mandoc -Tlint -Wwarning " + pages), "");
        ++tried;
    }
    if (tried == 0) GTEST_SKIP() << "neither groff nor mandoc is installed";
}

TEST_F(Documents, man_page_shows_what_the_help_says) {
    if (!is_installed("groff")) GTEST_SKIP() << "groff is not installed";
    made("--man", "kvdb.1");
    std::string page = output_of("groff -man -Tascii -P-cbou " + in_quotes(scratch_.file("kvdb.1")));
    page.erase(std::unique(page.begin(), page.end(), [](char a, char b) { return a == ' ' && b == ' '; }), page.end());
    EXPECT_NE(page.find("kvdb - looks at, keeps, moves and rescues"), std::string::npos) << page.substr(0, 400);
    EXPECT_NE(page.find("kvdb backup FOLDER DEST [--keep N]"), std::string::npos);
    EXPECT_NE(page.find("remove all but the newest N copies afterwards"), std::string::npos);
}

TEST_F(Documents, unknown_shell_is_refused_with_those_that_are_known) {
    expect_failure(run("help --completion csh"), 2, "bash, zsh, fish");
}

// What is typed, and what has to come.
struct Completion {
    const char* typed;
    const char* wanted;
};
constexpr Completion kCompletions[] = {
    {"kvdb sal", "kvdb salvage"},          {"kvdb backup folder dest --ke", "--keep"},
    {"kvdb list folder Book", "Bookings"}, {"kvdb export folder out --to sqlite-", "sqlite-script"},
    {"kvdb info a-stu", "a-studio"},
};

TEST_F(Documents, bash_completes_what_is_typed) {
    if (!is_installed("bash")) GTEST_SKIP() << "bash is not installed";
    made("--completion bash", "kvdb.bash");
    std::filesystem::create_directory(scratch_.file("a-studio"));
    EXPECT_EQ(output_of("bash -n " + in_quotes(scratch_.file("kvdb.bash"))), "");
    for (const Completion& completion : kCompletions) {
        const std::string screen = completed({"bash", "--norc", "--noprofile", "-i"}, "PS1='$ '; source ./kvdb.bash",
                                             completion.typed, completion.wanted);
        EXPECT_NE(screen.find(completion.wanted), std::string::npos) << completion.typed << "\n" << screen;
    }
}

TEST_F(Documents, zsh_completes_what_is_typed) {
    if (!is_installed("zsh")) GTEST_SKIP() << "zsh is not installed";
    made("--completion zsh", "_kvdb");
    std::filesystem::create_directory(scratch_.file("a-studio"));
    EXPECT_EQ(output_of("zsh -n " + in_quotes(scratch_.file("_kvdb"))), "");
    for (const Completion& completion : kCompletions) {
        const std::string screen =
            completed({"zsh", "-f", "-i"}, "PS1='$ '; fpath=($PWD $fpath); autoload -Uz compinit; compinit -u -D",
                      completion.typed, completion.wanted);
        EXPECT_NE(screen.find(completion.wanted), std::string::npos) << completion.typed << "\n" << screen;
    }
}

TEST_F(Documents, fish_completes_what_is_typed) {
    if (!is_installed("fish")) GTEST_SKIP() << "fish is not installed";
    made("--completion fish", "kvdb.fish");
    std::filesystem::create_directory(scratch_.file("a-studio"));
    for (const Completion& completion : kCompletions) {
        const std::string last = std::string(completion.wanted).substr(std::string(completion.wanted).find(' ') + 1);
        const std::string screen =
            output_of("cd " + in_quotes(scratch_.path()) + " && HOME=. fish --no-config -c \"source ./kvdb.fish; " +
                      "complete -C '" + completion.typed + "'\"");
        EXPECT_EQ(screen.rfind(last, 0), 0u) << completion.typed << "\n" << screen;
    }
}

}  // namespace
