// Texts and numbers as the page holds them: nothing of a studio's texts is ever taken for a sign of the page.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "jet/base/types.h"

namespace tools {

// Between tags, or in an attribute's double quotes.
std::string html_text(std::string_view utf8);
// A JSON text as a script element holds it: nothing in it ends the element, or begins a comment.
std::string in_script(std::string json);
// A value as JSON in a script. A number of more digits than a browser's numbers have is a text with all of them.
std::string script_value(const jet::Value& value);
// "12,345"
std::string count_text(std::uint64_t count);
// "1 booking", "12,345 bookings"
std::string counted(std::uint64_t count, const char* one, const char* more);
// A share of the width, with two decimals: "12.25%".
std::string percent(double share);

// A sum of money. What is beyond a currency's range stays at its end.
class Amount {
public:
    Amount() = default;
    // Currency, or a number; 0 for anything else.
    explicit Amount(const jet::Value& value);

    Amount& operator+=(Amount other);
    double units() const { return static_cast<double>(ten_thousandths_) / 10000; }
    bool is_positive() const { return ten_thousandths_ > 0; }
    // With commas and two to four decimals: "12,345.60".
    std::string text() const;
    // With two decimals, for a sentence.
    std::string rounded() const;

private:
    std::int64_t ten_thousandths_ = 0;
};

}  // namespace tools
