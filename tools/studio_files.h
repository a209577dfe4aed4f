// The two files of a studio, looked at below the gates: nothing is written, whatever their versions.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "db/schema.h"
#include "db/upgrade/upgrade.h"
#include "tools/open_file.h"

namespace tools {

class StudioFile {
public:
    StudioFile(const std::string& folder, const char* name, std::span<const db::UpgradeStep> upgrade,
               std::span<const db::TableSchema> schema);

    const std::string& path() const { return path_; }
    const char* name() const { return name_; }
    bool exists() const;

    // Of the file as it is now; none where it has no header row, and where that cannot be read. What cannot be read is
    // told, here and below (tools/damage.h).
    std::optional<std::int32_t> version() const;
    // The same in words.
    std::string version_text() const;
    bool is_newer() const;
    // The number of the header's column; 0 where there is none.
    std::int32_t header(const char* column) const;
    // By table that can be read, in the order of the file.
    std::vector<std::pair<std::string, std::uint32_t>> row_counts() const;
    // What a file of the current version lacks, after an upgrade that stopped or left something out: tables ("Stock"),
    // then fields ("Stock.Cost"); "" for nothing.
    std::string missing_text() const;
    // Why an upgrade leaves the file as it is, though it is of another version: what it would add could not be kept in
    // order. "" where it does not.
    std::string why_not_upgraded() const;
    // What the next opening by a host would do; empty where that is nothing.
    std::vector<const char*> upgrade_plan() const;
    // Whether a file of the current version has, or may have, the table.
    bool declares(const std::string& table) const;
    // Whether the step is one of this file's.
    bool has(const db::UpgradeStep& step) const;

private:
    std::optional<OpenedFile> look() const;
    std::vector<std::string> missing() const;

    std::string path_;
    const char* name_;
    std::span<const db::UpgradeStep> upgrade_;
    std::span<const db::TableSchema> schema_;
};

// Whether the path is a file, and by its name none of a studio's.
bool is_other_file(const std::string& path);

class StudioFiles {
public:
    // CommandError when there is no such folder.
    explicit StudioFiles(const std::string& folder);

    const std::string& folder() const { return folder_; }
    bool any() const { return studio.exists() || invoices.exists(); }
    // CommandError when one of the files is a link that leads nowhere.
    void require_no_dead_links() const;
    // The same, and when the studio file is not there.
    void require_studio() const;
    // CommandError when one of the files is not there or not of the current version.
    void require_current() const;
    // The same for a command that only reads: a damaged file need not tell its version.
    void require_current_to_read() const;

private:
    void require_current_versions(bool may_be_damaged) const;

    std::string folder_;

public:
    StudioFile studio;
    StudioFile invoices;
};

}  // namespace tools
