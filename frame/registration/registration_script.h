// Registration scripts: what a class writes into the registry, as a text.
//
//     HKCR
//     {
//         Name = s 'default value'
//         {
//             val Other = s 'named value'
//             NoRemove Kept
//             {
//                 ForceRemove {66DA35EC-...} = s '%MODULE%'
//             }
//         }
//     }
//
// A name or a text stands in single quotes where it holds blanks; two quotes within stand for one. Values are texts
// (s) or 32-bit numbers (d). A brace opens or closes a block only where a blank or a line's end follows it.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace frame {

using RegistrationValue = std::variant<std::string, std::uint32_t>;

struct RegistrationKey {
    struct NamedValue {
        std::string name;
        RegistrationValue value;
    };

    std::string name;
    bool is_kept = false;      // NoRemove: unregistering leaves the key and works on what is below
    bool is_replaced = false;  // ForceRemove: what is there goes, with all that is below, before anything is written
    std::optional<RegistrationValue> value;
    std::vector<NamedValue> values;
    std::vector<RegistrationKey> keys;
};

// A text that is not a script; `what()` says what was expected, and in which line.
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The keys below HKCR, which is the only root that a script may name.
std::vector<RegistrationKey> parse_registration_script(std::string_view script);

}  // namespace frame
