// Projects taken through a gate and shown.
#pragma once

#include <kvdb/kvdb.h>

#include <vector>

namespace tools {

// All projects that match the filter members of `filter`, in the engine's order.
std::vector<ProjInfo> list_projects(IDBgate1& gate, const ProjInfo& filter);

void print_projects(const std::vector<ProjInfo>& projects);
void print_projects_json(const std::vector<ProjInfo>& projects);

}  // namespace tools
