// The first table, as it is printed.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "bench/ratios.h"

namespace bench {

class ProjectTable {
public:
    // `figures` must outlive the table.
    ProjectTable(const PassFigures& figures, std::vector<std::int32_t> sizes)
        : figures_(figures), sizes_(std::move(sizes)) {}

    // The table of a kind of store beside the peers.
    void print(const std::string& ours) const;

private:
    void print_operation(const std::string& ours, const char* operation) const;
    void print_megabytes(const std::string& ours, const char* label, const char* figure) const;

    const PassFigures& figures_;
    const std::vector<std::int32_t> sizes_;
};

}  // namespace bench
