// A quick look at a statement that takes out its literals, so that one that differs from an earlier one only in them
// needs no lexer.
//
// Invariant: the lexer finds the same tokens in all statements of one frame, but for the values of the literals that
// were taken out.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/sql/lexer.h"

namespace jet::sql {

struct Skimmed {
    std::u16string frame;  // the text, each literal replaced by a mark of its kind
    std::vector<Literal> literals;
};

// Takes out whole numbers without a sign, and texts. None for a statement with other literals, or with anything else
// that takes a closer look.
std::optional<Skimmed> skim(std::u16string_view statement);

}  // namespace jet::sql
