#include "tools/assignments.h"

#include "tools/errors.h"

namespace tools {

Assignments assignments_of(const std::vector<std::string>& words) {
    Assignments assignments;
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == 0 || equals == std::string::npos) throw UsageError("'" + word + "' is no member=value");
        assignments.push_back({word.substr(0, equals), word.substr(equals + 1)});
    }
    return assignments;
}

}  // namespace tools
