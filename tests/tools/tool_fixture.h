// The tool run as a user runs it, in a folder of the test's own.
#pragma once

#include <gtest/gtest.h>
#include <kvdb/com.h>

#ifndef _WIN32
#include <sys/wait.h>
#endif

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "os/code_page.h"
#include "tests/support/temp_folder.h"

namespace testing_tool {

struct Outcome {
    int code = -1;
    std::string out;
    std::string errors;
};

inline std::string contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline std::string in_quotes(const std::string& text) { return "'" + text + "'"; }

#ifdef _WIN32

// The arguments of a shell's command as one of Windows: words in single quotes become words in double quotes, in which
// a double quote has a backslash before it.
inline std::string windows_arguments(const std::string& arguments) {
    std::string result;
    for (const char c : arguments) {
        if (c == '"') result += '\\';
        result += c == '\'' ? '"' : c;
    }
    return result;
}

// Runs `command` with its output in the two files; its exit code, or -1. The output can be a stream that takes nothing.
inline int run_program(const std::string& command, const std::string& out, const std::string& errors,
                       bool output_takes_nothing = false) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const auto create = [&](const std::string& path) {
        return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
    };
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = create(out);
    if (output_takes_nothing) {
        CloseHandle(startup.hStdOutput);
        startup.hStdOutput =
            CreateFileA(out.c_str(), GENERIC_READ, FILE_SHARE_READ, &inherited, OPEN_EXISTING, 0, nullptr);
    }
    startup.hStdError = create(errors);
    PROCESS_INFORMATION process{};
    std::u16string line = os::detail::utf8_to_utf16(command);
    DWORD code = static_cast<DWORD>(-1);
    if (CreateProcessW(nullptr, reinterpret_cast<LPWSTR>(line.data()), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &startup, &process)) {
        WaitForSingleObject(process.hProcess, INFINITE);
        GetExitCodeProcess(process.hProcess, &code);
        CloseHandle(process.hProcess);
        CloseHandle(process.hThread);
    }
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    return static_cast<int>(code);
}

#endif

class Tool : public ::testing::Test {
protected:
#ifdef _WIN32
    Outcome run(const std::string& arguments, bool output_takes_nothing = false) {
        const int code = run_program("\"" KVDB_TOOL "\" " + windows_arguments(arguments), scratch_.file("out"),
                                     scratch_.file("err"), output_takes_nothing);
        return {code, contents(scratch_.file("out")), contents(scratch_.file("err"))};
    }
#else
    Outcome run(const std::string& arguments) { return run_with(arguments, ">" + in_quotes(scratch_.file("out"))); }
    // With what the shell makes of standard output, as in ">/dev/full".
    Outcome run_with(const std::string& arguments, const std::string& redirection) {
        std::filesystem::remove(scratch_.file("out"));
        const std::string command = "LC_ALL=C.UTF-8 " + in_quotes(KVDB_TOOL) + " " + arguments + " 2>" +
                                    in_quotes(scratch_.file("err")) + " " + redirection;
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contents(scratch_.file("out")),
                contents(scratch_.file("err"))};
    }
#endif
    Outcome demo() { return run("demo " + in_quotes(studio_)); }
    std::string file(const std::string& name) const { return studio_ + "/" + name; }
    // What is in the studio's folder, in order.
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(studio_)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    std::string both_files() const { return contents(file("sldb.mdb")) + contents(file("kvinvdb.mdb")); }
    std::string main_file() const { return in_quotes(studio_ + "/sldb.mdb"); }

    testing_support::TempFolder scratch_;
    std::string studio_ = scratch_.file("a studio");  // a blank in the name, as users have them
};

inline const std::vector<std::string> kBothFiles{"kvinvdb.mdb", "sldb.mdb"};

// One line on the error output, which names the trouble.
inline void expect_failure(const Outcome& outcome, int code, const std::string& text) {
    EXPECT_EQ(outcome.code, code);
    EXPECT_NE(outcome.errors.find(text), std::string::npos) << outcome.errors;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
}

}  // namespace testing_tool
