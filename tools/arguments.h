// The command line, taken apart: positional words, options with and without a value.
#pragma once

#include <initializer_list>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

// What the user typed cannot be meant: exit code 2 and one line.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What was asked for did not succeed: exit code 1 and one line.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Arguments {
public:
    // `flags` take no value, `options` take one (a repeated option keeps every value); anything else that
    // begins with "--" is a UsageError. "--" ends the options.
    Arguments(const std::vector<std::string>& words, std::initializer_list<std::string_view> flags,
              std::initializer_list<std::string_view> options);

    bool has(std::string_view flag) const { return values_.count(std::string(flag)) != 0; }
    std::optional<std::string> value(std::string_view option) const;
    std::vector<std::string> values(std::string_view option) const;
    // A 32-bit decimal number; UsageError when it is none.
    std::optional<int> number(std::string_view option) const;
    const std::vector<std::string>& positional() const { return positional_; }
    // The positional words, of which there must be `least` to `most`; UsageError naming `usage`.
    const std::vector<std::string>& expect(std::size_t least, std::size_t most, std::string_view usage) const;

private:
    std::map<std::string, std::vector<std::string>> values_;
    std::vector<std::string> positional_;
};

}  // namespace tools
