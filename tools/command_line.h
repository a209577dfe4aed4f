// The command line: the commands' declarations as one tree, what was typed parsed by it, and the help that it gives.
#pragma once

#include <functional>
#include <map>
#include <memory>
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

    // The tree, for whoever makes documents of it.
    const CLI::App& tree() const { return *tree_; }

private:
    int parse_and_run(const std::vector<std::string>& words);

    std::unique_ptr<CLI::App> tree_;
    std::map<std::string, std::function<int()>> runs_;  // by command
    std::string help_topic_;
};

}  // namespace tools
