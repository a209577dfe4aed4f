// Names and texts as standard SQL writes them.
#pragma once

#include <string>
#include <string_view>

namespace tools {

// In double quotes, as it stands.
std::string sql_name(std::string_view name);
// In single quotes.
std::string sql_string(std::string_view text);

}  // namespace tools
