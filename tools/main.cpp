// kvdb: the command-line tool. Exit codes: 0 done, 1 failed, 2 not understood; errors are one line on stderr.
#include <cstdio>
#include <exception>
#include <string>

#include "os/system.h"
#include "tools/command_line.h"
#include "tools/errors.h"
#include "tools/output.h"
#include "tools/program_arguments.h"

namespace {

int fail(int code, const std::string& text) {
    tools::output().flush();
    std::fprintf(stderr, "kvdb: %s\n", text.c_str());
    return code;
}

int run(const std::vector<std::string>& words) {
    try {
        return tools::CommandLine().run(words);
    } catch (const tools::UsageError& error) {
        return fail(2, error.what());
    } catch (const std::exception& error) {
        return fail(1, error.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    tools::open_standard_streams();
    // Whatever the environment says: a change writes back the whole row, and no text of it may lose a character.
    os::set_code_page(os::CodePage::kUtf8);
    const int code = run(tools::program_arguments(argc, argv));
    tools::Output& out = tools::output();
    out.finish();
    if (!out.is_lost()) return code;
    const int failed = code != 0 ? code : 1;
    return out.reader_has_gone() ? failed : fail(failed, "the output is not complete: " + out.reason());
}
