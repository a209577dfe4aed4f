// The method tables of docs/reference.md.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/frame/published_methods.h"

namespace {

// The document for hosts, which tests compare with the code.
std::string document() {
    std::ifstream in(KVDB_DOCS "/reference.md");
    return {std::istreambuf_iterator<char>(in), {}};
}

// Parameters in the types of the type library.
std::string automation_parameters(const std::string& published) {
    std::string result;
    for (std::size_t at = 0; at < published.size();) {
        const std::size_t end = std::min(published.find(' ', at), published.size());
        const char kind = published[at];
        if (!result.empty()) result += ", ";
        result += kind == 't' ? "LPSTR " : kind == 'o' ? "I4* " : kind == 'f' ? "BSTR " : "I4 ";
        result += published.substr(at + 2, end - at - 2);
        at = end + 1;
    }
    return result;
}

template <std::size_t Count>
void expect_listed(const std::string& text, const testing_support::PublishedMethod (&methods)[Count]) {
    std::size_t slot = 0;
    for (const testing_support::PublishedMethod& method : methods) {
        const std::string row = "\n| " + std::to_string(++slot) + " | `" + method.name + "` | " +
                                automation_parameters(method.parameters) + " |\n";
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
}

}  // namespace

TEST(HostReference, lists_every_method_with_slot_and_parameters) {
    const std::string text = document();
    const std::size_t gear = text.find("### IDBgate2 and IDBGate3");
    ASSERT_NE(gear, std::string::npos);
    expect_listed(text.substr(0, gear), testing_support::kPublishedMainMethods);
    expect_listed(text.substr(gear), testing_support::kPublishedGearMethods);
}
