// The whole content of a closed file, as text that tests can compare and print.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace testing_support {

// Value by column. Null is "null", texts are in quotes, dates are 2005-03-05 (with "+" and the fraction of the
// day where there is one), amounts have their four decimals, 32-bit fractions end in "f".
using ContentRow = std::map<std::string, std::string>;

struct ContentTable {
    std::map<std::string, std::string> columns;  // kinds by name, as in expected_schema.h
    std::vector<ContentRow> rows;                // in the order of the table
    friend bool operator==(const ContentTable&, const ContentTable&) = default;
};

using Content = std::map<std::string, ContentTable>;

// With any password. Fails the test when the structural check has findings, unless they are of the rule `expected`.
Content content_of(const std::string& path, std::string_view expected = {});
// The version in the header row; "none" where there is no such row.
std::string version_in(const Content& content);
// The password stored in the file, UTF-8.
std::string password_in(const std::string& path);
// The differences of `b` from `a`, one line each; "" for equal contents.
std::string difference(const Content& a, const Content& b);

}  // namespace testing_support
