#include "jet/error.h"

namespace jet {

void fail(int number, const std::string& text) { throw Error(number, text); }

void corrupt(std::uint32_t page_no, std::string_view rule) {
    throw Error(errors::kDamaged,
                "The database is damaged: page " + std::to_string(page_no) + ": " + std::string(rule) + ".");
}

}  // namespace jet
