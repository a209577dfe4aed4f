// check: whether all that must hold in a file does, and what it means where it does not.
#include "jet/base/error.h"
#include "tools/commands.h"
#include "tools/declaration.h"
#include "tools/open_file.h"
#include "tools/output.h"
#include "tools/rescue/finding.h"

namespace tools {
namespace {

constexpr std::size_t kListed = 5;
constexpr std::size_t kAll = 100;

struct Options {
    std::string file;
    bool all = false;
    bool json = false;
    std::optional<std::string> password;
};

void bind(Declaration& declare, Options& options) {
    declare.file(options.file);
    declare.flag("--all", options.all, "show up to 100 findings of each rule, not 5");
    declare.flag("--json", options.json, "one JSON object for each file, in one array");
    declare.password(options.password);
}

CheckResult checked(const std::string& file, const Options& options) {
    try {
        return check_file(*open_to_read(file, options.password), file);
    } catch (const DamagedFile& error) {
        return unreadable_file(file, error.reason());
    } catch (const jet::Error& error) {
        if (error.number() != jet::errors::kDamaged) throw;
        return unreadable_file(file, error.what());
    }
}

int run(const Options& options) {
    bool is_sound = true;
    std::string json;
    for (const std::string& file : jet_files_of(options.file)) {
        const CheckResult result = checked(file, options);
        const std::size_t listed = options.all ? kAll : kListed;
        if (options.json) {
            json += (json.empty() ? "[\n" : ",\n") + check_json(result, listed);
        } else {
            output().write(check_text(result, listed));
        }
        is_sound = is_sound && result.is_sound();
    }
    if (options.json) output().write(json + "\n]\n");
    return is_sound ? 0 : 1;
}

}  // namespace

const Command kCheckCommand{
    "check", kKeepGroup,
    "Check the structure of a Jet file, or of both files of a studio. There are two grades: damage, which costs data "
    "or "
    "may cost some with the next change (exit code 1), and remarks, which is what programs of the time left behind and "
    "which costs nothing (exit code 0). Each kind of finding says what it means, and what helps.",
    declared<Options, bind, run>};

}  // namespace tools
