#include "tools/commands.h"

namespace tools {

std::span<const Command* const> all_commands() {
    static constexpr const Command* kCommands[] = {
        &kInfoCommand,    &kListCommand,   &kShowCommand,    &kProjectsCommand, &kTablesCommand,  &kSchemaCommand,
        &kRowsCommand,    &kCheckCommand,  &kAddCommand,     &kSetCommand,      &kDeleteCommand,  &kDemoCommand,
        &kUpgradeCommand, &kBackupCommand, &kRestoreCommand, &kCompactCommand,  &kSalvageCommand, &kDiffCommand,
    };
    return kCommands;
}

}  // namespace tools
