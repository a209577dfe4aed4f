#include "jet/base/error.h"

namespace jet {

void fail(int number, const std::string& text) { throw Error(number, text); }

void corrupt(std::uint32_t page_no, std::string_view rule) {
    throw Error(errors::kDamaged,
                "The database is damaged: page " + std::to_string(page_no) + ": " + std::string(rule) + ".");
}

void fail_short(std::size_t byte) {
    throw Error(errors::kDamaged,
                "The database is damaged: a structure ends before byte " + std::to_string(byte) + ".");
}

}  // namespace jet
