// Cuts a statement into tokens. Literals are taken out and numbered in order, so that what is left (the
// statement's shape) is the same for all statements that differ only in their literals.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "jet/base/types.h"

namespace jet::sql {

enum class TokenKind : std::uint8_t {
    kEnd,
    kBad,  // an unfinished literal or bracket, a malformed date, a character that starts no token; the last one
    kName,
    kNumber,
    kText,
    kDate,
    kStar,
    kComma,
    kOpen,
    kClose,
    kSemicolon,
    kEqual,
    kNotEqual,
    kLess,
    kGreater,
    kLessEqual,
    kGreaterEqual,
    kSelect,
    kFrom,
    kWhere,
    kOrder,
    kBy,
    kAnd,
    kOr,
    kNot,
    kLike,
    kIs,
    kNull,
    kAsc,
    kDesc,
    kAs,
};

struct Token {
    TokenKind kind = TokenKind::kEnd;
    bool bracketed = false;   // a name in brackets is never a keyword or a function
    std::uint32_t begin = 0;  // characters of the statement; of a name without its brackets
    std::uint32_t length = 0;
    std::uint32_t literal = 0;  // index of the literal
};

// Integers beyond 64 bits and decimals beyond four places become doubles.
using Literal = std::variant<std::int64_t, Currency, double, Date, std::u16string>;

struct Lexed {
    std::u16string_view statement;
    std::vector<Token> tokens;  // ends with kEnd or kBad
    std::vector<Literal> literals;

    std::u16string_view text(const Token& token) const { return statement.substr(token.begin, token.length); }
};

// Never throws for what the statement holds; the parser decides what a bad token means. The result refers
// to the statement's characters.
Lexed lex(std::u16string_view statement);

// Kinds and names of the tokens without the literals' values; equal exactly for statements of one shape.
std::u16string shape_of(const Lexed& lexed);

}  // namespace jet::sql
