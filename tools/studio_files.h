// The two files of a studio, looked at below the gates: opening through a gate would upgrade older ones.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "db/schema.h"
#include "db/upgrade.h"

namespace tools {

class StudioFile {
public:
    StudioFile(const std::string& folder, const char* name, std::span<const db::UpgradeStep> upgrade,
               std::span<const db::TableSchema> schema);

    const std::string& path() const { return path_; }
    const char* name() const { return name_; }
    bool exists() const;

    // Of the file as it is now; none where it has no header row.
    std::optional<std::int32_t> version() const;
    // The number of the header's column; 0 where there is none.
    std::int32_t header(const char* column) const;
    // By table, in the order of the file.
    std::vector<std::pair<std::string, std::uint32_t>> row_counts() const;
    // Tables ("Stock"), then fields ("Stock.Cost") of the current version that the file has not.
    std::vector<std::string> missing() const;
    // What the next opening would do; empty where that is nothing.
    std::vector<const char*> upgrade_plan() const;

    // Copies the file, with a journal that lies beside it, under a name with today's date; the file is locked
    // meanwhile. Returns the copy's path. Throws os::FileError.
    std::string make_dated_copy() const;

private:
    std::string path_;
    std::string system_path_;  // for the engine
    const char* name_;
    std::span<const db::UpgradeStep> upgrade_;
    std::span<const db::TableSchema> schema_;
};

struct StudioFiles {
    // CommandError when there is no such folder, or no studio in it.
    explicit StudioFiles(const std::string& folder);

    StudioFile studio;
    StudioFile invoices;
};

}  // namespace tools
