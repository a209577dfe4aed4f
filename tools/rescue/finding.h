// What the findings of the structural check mean to the owner of a file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jet/check/check.h"

namespace tools {

enum class Grade {
    kRemark,  // programs of the time left files like this; nothing is missing and nothing goes wrong
    kDamage,
};

struct Rule {
    const char* name;  // as in jet::Violation
    Grade grade;
    const char* meaning;  // one sentence
};

// What is known of the rule; a rule that nobody knows is damage.
const Rule& rule_of(std::string_view name);

// All findings of one rule.
struct FindingGroup {
    const Rule* rule = nullptr;
    std::vector<jet::Violation> listed;
    std::size_t count = 0;
};

struct CheckResult {
    std::string path;
    std::vector<FindingGroup> groups;  // damage first
    std::size_t damage = 0;
    std::size_t remarks = 0;
    bool is_sound() const { return damage == 0; }
};

CheckResult check_file(jet::Database& database, const std::string& path);
// Of a file that cannot even be opened, for the reason that the engine gives.
CheckResult unreadable_file(const std::string& path, const std::string& reason);

// Lines, each with its end; `listed` of each rule's findings are shown one by one.
std::string check_text(const CheckResult& result, std::size_t listed);
// The same as one JSON object.
std::string check_json(const CheckResult& result, std::size_t listed);

}  // namespace tools
