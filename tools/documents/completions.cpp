// What all shells' scripts share is the outline; each speaks its shell's language.
#include "tools/documents/documents.h"
#include "tools/errors.h"

namespace tools {
namespace {

struct Shell {
    const char* name;
    std::string (*script)(const Outline& outline);
};
constexpr Shell kShells[] = {
    {"bash", bash_completion},
    {"zsh", zsh_completion},
    {"fish", fish_completion},
};

}  // namespace

Names completion_shells() {
    Names names;
    for (const Shell& shell : kShells) names.emplace_back(shell.name);
    return names;
}

std::string completion_script(const Outline& outline, const std::string& shell) {
    for (const Shell& entry : kShells) {
        if (shell == entry.name) return entry.script(outline);
    }
    throw UsageError("--completion takes no '" + shell + "'; it takes " + listed(completion_shells()));
}

}  // namespace tools
