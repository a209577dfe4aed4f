// A parsed statement, free of literal values, so that one serves every statement of its shape.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace jet::sql {

enum class Comparison : std::uint8_t { kEqual, kNotEqual, kLess, kGreater, kLessEqual, kGreaterEqual };

struct Operand {
    enum class Kind : std::uint8_t { kNull, kColumn, kLiteral };
    Kind kind = Kind::kNull;
    std::uint32_t index = 0;  // into Statement::columns, or of the literal
};

constexpr std::uint32_t kNoNode = 0xFFFFFFFF;

// One node of a condition. AND and OR have any number of children, chained through `next`.
struct Node {
    enum class Kind : std::uint8_t { kAnd, kOr, kNot, kCompare, kLike, kIsNull };
    Kind kind = Kind::kCompare;
    Comparison comparison = Comparison::kEqual;
    bool negated = false;  // NOT LIKE, IS NOT NULL
    Operand left;
    Operand right;
    std::uint32_t pattern = 0;  // kLike: its number among the LIKEs of the statement
    std::uint32_t first_child = kNoNode;
    std::uint32_t next = kNoNode;
};

struct OrderTerm {
    std::uint32_t column = 0;  // into Statement::columns
    bool descending = false;
};

struct Statement {
    std::u16string table;
    bool sum = false;  // SELECT SUM(...) instead of *
    std::uint32_t sum_column = 0;
    std::u16string alias;                 // of the sum
    std::vector<std::u16string> columns;  // every column named, each spelling once
    std::vector<Node> nodes;
    std::uint32_t condition = kNoNode;
    std::uint32_t pattern_count = 0;
    std::vector<OrderTerm> order;
    // Where each column was found last: only a guess, checked before it is used.
    mutable std::vector<std::atomic<std::uint32_t>> guesses;
};

}  // namespace jet::sql
