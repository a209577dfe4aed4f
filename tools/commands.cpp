#include "tools/commands.h"

namespace tools {

std::span<const Command* const> all_commands() {
    static constexpr const Command* kCommands[] = {
        // What there is.
        &kInfoCommand,
        &kListCommand,
        &kShowCommand,
        &kSearchCommand,
        &kProjectsCommand,
        &kTablesCommand,
        &kSchemaCommand,
        &kRowsCommand,
        &kSqlCommand,
        // Changes of rows.
        &kAddCommand,
        &kSetCommand,
        &kDeleteCommand,
        &kImportCommand,
        // Ways out, and care of the files.
        &kReportCommand,
        &kExportCommand,
        &kDemoCommand,
        &kCheckCommand,
        &kBackupCommand,
        &kRestoreCommand,
        &kCompactCommand,
        &kDiffCommand,
        &kSalvageCommand,
        &kUpgradeCommand,
    };
    return kCommands;
}

}  // namespace tools
