// Reads the command line of ./soak.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/soak/drive.h"

namespace {

int usage() {
    std::fprintf(stderr,
                 "usage: ./soak [MINUTES] [--kind NAME]... [--seed N] [--cases N] [--patience SECONDS]\n\nkinds:");
    for (const soak::KindPlan& kind : soak::kind_plans()) {
        if (!kind.only_by_name) std::fprintf(stderr, " %s", kind.name.c_str());
    }
    std::fprintf(stderr, "\n");
    return 2;
}

bool is_known(const std::string& name) {
    for (const soak::KindPlan& kind : soak::kind_plans()) {
        if (kind.name == name) return true;
    }
    return false;
}

// Parses the whole text as a number of at least 1.
bool read_number(const char* text, std::uint64_t& number) {
    char* end = nullptr;
    number = std::strtoull(text, &end, 10);
    return *end == 0 && end != text && number != 0;
}

}  // namespace

// The script passes the tree and the output folder as the first two arguments.
int main(int count, char** arguments) {
    if (count < 3) return usage();
    soak::Plan plan;
    plan.tree = arguments[1];
    plan.state_folder = arguments[2];
    for (int i = 3; i < count; ++i) {
        const std::string word = arguments[i];
        const char* const value = i + 1 < count ? arguments[i + 1] : "";
        std::uint64_t number = 0;
        if (word == "--kind" && is_known(value)) {
            plan.kinds.emplace_back(value);
            ++i;
        } else if (word == "--seed" && read_number(value, plan.seed)) {
            ++i;
        } else if (word == "--cases" && read_number(value, plan.cases)) {
            ++i;
        } else if (word == "--patience" && read_number(value, number)) {
            plan.patience = static_cast<double>(number);
            ++i;
        } else if (read_number(word.c_str(), number)) {
            plan.minutes = static_cast<double>(number);
        } else {
            return usage();
        }
    }
    return soak::drive(plan);
}
