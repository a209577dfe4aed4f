// The command line: the commands' declarations as one tree, what was typed parsed by it, and the help that it gives.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tools {

class CommandLine {
public:
    CommandLine();
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    // Does what the words, without the program's name, ask for; the exit code. UsageError for words that cannot be
    // meant; what a command throws goes on.
    int run(const std::vector<std::string>& words);

private:
    int run_help();

    std::unique_ptr<CLI::App> tree_;
    std::map<std::string, std::function<int()>> runs_;  // by command
    std::string help_topic_;
    bool wants_man_page_ = false;
    std::optional<std::string> completion_shell_;
};

}  // namespace tools
