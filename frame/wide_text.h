// Between the narrow texts of the framework and the wide ones of automation.
#pragma once

#include <kvdb/com.h>

#include <string>
#include <string_view>
#include <utility>

namespace frame {

// A BSTR that frees itself.
class OwnedBstr {
public:
    OwnedBstr() = default;
    // Takes over `text`.
    explicit OwnedBstr(BSTR text) noexcept : text_(text) {}
    ~OwnedBstr() { SysFreeString(text_); }
    OwnedBstr(const OwnedBstr&) = delete;
    OwnedBstr& operator=(const OwnedBstr&) = delete;

    BSTR get() const { return text_; }
    // Hands the text over to the caller.
    BSTR release() { return std::exchange(text_, nullptr); }
    // Where a call may store a new text; the old one is freed.
    BSTR* put() {
        SysFreeString(std::exchange(text_, nullptr));
        return &text_;
    }

private:
    BSTR text_ = nullptr;
};

// A new BSTR of `narrow`, owned by the caller; null when out of memory.
BSTR to_bstr(std::string_view narrow) noexcept;

// The text of `wide` (null: empty) in the narrow code page, as far as its first zero character.
std::string to_narrow(BSTR wide);

}  // namespace frame
