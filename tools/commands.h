// The tool's commands, each in a file of its own in tools/commands.
#pragma once

#include <span>

#include "tools/command.h"

namespace tools {

extern const Command kInfoCommand;
extern const Command kListCommand;
extern const Command kShowCommand;
extern const Command kProjectsCommand;
extern const Command kTablesCommand;
extern const Command kSchemaCommand;
extern const Command kRowsCommand;
extern const Command kCheckCommand;
extern const Command kSearchCommand;
extern const Command kSqlCommand;
extern const Command kReportCommand;
extern const Command kExportCommand;
extern const Command kImportCommand;
extern const Command kAddCommand;
extern const Command kSetCommand;
extern const Command kDeleteCommand;
extern const Command kDemoCommand;
extern const Command kUpgradeCommand;
extern const Command kBackupCommand;
extern const Command kRestoreCommand;
extern const Command kCompactCommand;
extern const Command kSalvageCommand;
extern const Command kDiffCommand;

// In the order of the help.
std::span<const Command* const> all_commands();

}  // namespace tools
