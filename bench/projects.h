// The first table: calls on projects, in stores of growing sizes.
#pragma once

#include <cstdint>
#include <string>

namespace bench {

// The mode of the measuring process.
inline constexpr const char* kMeasureProjects = "--measure";

// In the order of the table.
inline constexpr const char* kProjectOperations[] = {
    "open",       "first FindProj",      "AddProj", "FindProj", "Enum (a row)", "filtered Enum (a row)", "UpdateProj",
    "DeleteProj", "close after a burst",
};

// The measuring process: a store of that kind ("kvdb", "jet3", "sqlite", "lmdb") with `size` projects.
int measure_projects(const std::string& kind, std::int32_t size, const std::string& folder);

}  // namespace bench
