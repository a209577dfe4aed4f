// The commands on a whole studio: info, which only looks, and upgrade, which opens it as a host does.
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "db/content.h"
#include "tools/arguments.h"
#include "tools/commands.h"
#include "tools/studio.h"
#include "tools/studio_files.h"

namespace tools {
namespace {

using RowCounts = std::vector<std::pair<std::string, std::uint32_t>>;

constexpr std::size_t kMostMissing = 12;

std::string version_text(const StudioFile& file) {
    const auto version = file.version();
    return version ? std::to_string(*version) : "unknown (no header row)";
}

// What a file of the current version lacks, after an upgrade that stopped or left something out; "" for nothing.
std::string missing_text(const StudioFile& file) {
    if (file.version() != db::kCurrentVersion) return {};
    const std::vector<std::string> missing = file.missing();
    std::string text;
    for (std::size_t i = 0; i < std::min(missing.size(), kMostMissing); ++i) text += (i == 0 ? "" : ", ") + missing[i];
    if (missing.size() > kMostMissing) text += " and " + std::to_string(missing.size() - kMostMissing) + " more";
    return text;
}

void print_plan(const StudioFile& file) {
    const std::vector<const char*> plan = file.upgrade_plan();
    if (plan.empty()) {
        std::printf("  upgrade: %s\n", file.version() ? "nothing to do" : "not possible");
    } else {
        std::printf("  upgrade: the next opening would\n");
        for (const char* const effect : plan) std::printf("    - %s\n", effect);
    }
    if (const std::string missing = missing_text(file); !missing.empty()) {
        std::printf("  incomplete: not there: %s\n", missing.c_str());
    }
}

void print_file(const char* what, const StudioFile& file) {
    if (!file.exists()) {
        std::printf("%s: no file yet; the first opening makes it\n", what);
        return;
    }
    std::printf("%s: %s (%ju bytes), version %s\n", what, file.path().c_str(),
                static_cast<std::uintmax_t>(std::filesystem::file_size(file.path())), version_text(file).c_str());
    print_plan(file);
    for (const auto& [table, rows] : file.row_counts()) {
        std::printf("  %-24s %8u row%s\n", table.c_str(), rows, rows == 1 ? "" : "s");
    }
}

// A file as it was before the upgrade.
struct Before {
    explicit Before(const StudioFile& now)
        : file(now), version(now.exists() ? version_text(now) : "no file"), counts(counts_of(now)) {}
    static RowCounts counts_of(const StudioFile& file) { return file.exists() ? file.row_counts() : RowCounts(); }

    const StudioFile& file;
    std::string version;
    RowCounts counts;
};

std::string count_text(const RowCounts& counts, const std::string& table) {
    for (const auto& [name, rows] : counts) {
        if (name == table) return std::to_string(rows);
    }
    return "-";
}

void print_change(const Before& before) {
    const RowCounts after = before.file.row_counts();
    std::printf("%s: version %s, now %s\n", before.file.name(), before.version.c_str(),
                version_text(before.file).c_str());
    std::printf("  %-24s %8s %8s\n", "rows", "before", "now");
    for (const auto& [table, rows] : after) {
        std::printf("  %-24s %8s %8u\n", table.c_str(), count_text(before.counts, table).c_str(), rows);
    }
}

void require_current(const StudioFile& file) {
    if (file.version() != db::kCurrentVersion) {
        throw CommandError(file.path() + " could not be upgraded: its version is " + version_text(file));
    }
    if (const std::string missing = missing_text(file); !missing.empty()) {
        throw CommandError(file.path() + " is incomplete: not there: " + missing);
    }
}

}  // namespace

int run_info(const Words& words) {
    const Arguments arguments(words, {}, {});
    const StudioFiles files(arguments.expect(1, 1, "info FOLDER")[0]);
    std::printf("schema version %s, colours %d and %d\n", version_text(files.studio).c_str(),
                static_cast<int>(files.studio.header("Color1")), static_cast<int>(files.studio.header("Color2")));
    print_file("studio", files.studio);
    print_file("invoices", files.invoices);
    return 0;
}

int run_upgrade(const Words& words) {
    const Arguments arguments(words, {"--no-copy"}, {});
    const std::string& folder = arguments.expect(1, 1, "upgrade FOLDER [--no-copy]")[0];
    const StudioFiles files(folder);
    const Before studio(files.studio);
    const Before invoices(files.invoices);
    const auto is_current = [](const StudioFile& file) {
        return file.exists() && file.version() == db::kCurrentVersion;
    };
    if (is_current(files.studio) && is_current(files.invoices)) {
        std::printf("both files are at version %d: nothing to do\n", db::kCurrentVersion);
    } else {
        if (!arguments.has("--no-copy")) {
            for (const StudioFile* const file : {&files.studio, &files.invoices}) {
                if (file->exists()) std::printf("copy: %s\n", file->make_dated_copy().c_str());
            }
        }
        Studio opened(folder);
        opened.open();
        opened.close();
        print_change(studio);
        print_change(invoices);
    }
    require_current(files.studio);
    require_current(files.invoices);
    return 0;
}

}  // namespace tools
