#include "tools/export/sql_text.h"

namespace tools {
namespace {

std::string in(char quote, std::string_view text) {
    std::string result(1, quote);
    for (const char c : text) {
        if (c == quote) result += quote;
        result += c;
    }
    return result + quote;
}

}  // namespace

std::string sql_name(std::string_view name) { return in('"', name); }
std::string sql_string(std::string_view text) { return in('\'', text); }

}  // namespace tools
