// The tool's commands. Each takes the words behind its name and returns the exit code; UsageError,
// CommandError and jet::Error are the caller's to report.
#pragma once

#include <string>
#include <vector>

namespace tools {

using Words = std::vector<std::string>;

// Below the gates, straight on a file, reading only (engine_commands.cpp).
int run_tables(const Words& words);
int run_schema(const Words& words);
int run_rows(const Words& words);
int run_check(const Words& words);

// On both files of a studio, reading only (studio_commands.cpp).
int run_info(const Words& words);

// Through the gates of the component, as any host (studio_commands.cpp, record_commands.cpp, demo.cpp).
int run_demo(const Words& words);
int run_upgrade(const Words& words);
int run_projects(const Words& words);
int run_list(const Words& words);
int run_show(const Words& words);
int run_add(const Words& words);
int run_set(const Words& words);
int run_delete(const Words& words);

}  // namespace tools
