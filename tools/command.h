// A command of the tool: one declaration from which the parsing, the help and the suggestions come.
//
// A command's file in tools/commands holds its options as a struct, a function that binds them to the command line's
// words, and one that runs; it ends with its constant, which commands.cpp lists.
#pragma once

#include <functional>
#include <memory>

namespace tools {

class Declaration;

struct Command {
    const char* name;
    // Heading of the help below which it stands: one of kCommandGroups.
    const char* group;
    // Sentences for the help; the first one is all that the list of commands shows.
    const char* help;
    // Declares words and options; what it returns runs them once they are parsed, and gives the exit code.
    // UsageError, CommandError, jet::Error and os::FileError are the caller's to report.
    std::function<int()> (*declare)(Declaration& declaration);
};

inline constexpr const char* kLookGroup = "Look";
inline constexpr const char* kChangeGroup = "Change";
inline constexpr const char* kMoveGroup = "Move";
inline constexpr const char* kKeepGroup = "Keep and rescue";
inline constexpr const char* kCommandGroups[] = {kLookGroup, kChangeGroup, kMoveGroup, kKeepGroup};

// A Command's `declare` for options that are a struct: binds them, and keeps them until the command has run.
template <class Options, void (*bind)(Declaration&, Options&), int (*run)(const Options&)>
std::function<int()> declared(Declaration& declaration) {
    auto options = std::make_shared<Options>();
    bind(declaration, *options);
    return [options] { return run(*options); };
}

}  // namespace tools
