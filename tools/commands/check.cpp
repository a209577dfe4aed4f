// check: whether all that must hold in a file does.
#include "jet/check/check.h"
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/open_file.h"
#include "tools/output.h"

namespace tools {
namespace {

struct Options {
    std::string file;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.file(options.file);
    declare.password(options.password);
}

int run(const Options& options) {
    bool is_sound = true;
    for (const std::string& file : jet_files_of(options.file)) {
        const auto database = open_to_read(file, options.password);
        const std::vector<jet::Violation> violations = jet::check_structure(*database);
        for (const jet::Violation& violation : violations) {
            const std::string row = violation.row < 0 ? "" : ", row " + std::to_string(violation.row);
            output().print("page %u%s: %s: %s\n", violation.page, row.c_str(), violation.rule.c_str(),
                           violation.detail.c_str());
        }
        output().print("%s: %zu violation%s\n", file.c_str(), violations.size(), violations.size() == 1 ? "" : "s");
        is_sound = is_sound && violations.empty();
    }
    return is_sound ? 0 : 1;
}

}  // namespace

const Command kCheckCommand{"check", kKeepGroup, "Check the structure of a Jet file, and list every violation.",
                            declared<Options, bind, run>};

}  // namespace tools
