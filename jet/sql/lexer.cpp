#include "jet/sql/lexer.h"

#include <array>
#include <charconv>
#include <limits>
#include <optional>

#include "jet/sql/characters.h"
#include "jet/sql/date_literal.h"

namespace jet::sql {

namespace {

struct Keyword {
    std::u16string_view text;
    TokenKind kind;
};

constexpr std::array kKeywords{
    Keyword{u"SELECT", TokenKind::kSelect}, Keyword{u"FROM", TokenKind::kFrom}, Keyword{u"WHERE", TokenKind::kWhere},
    Keyword{u"ORDER", TokenKind::kOrder},   Keyword{u"BY", TokenKind::kBy},     Keyword{u"AND", TokenKind::kAnd},
    Keyword{u"OR", TokenKind::kOr},         Keyword{u"NOT", TokenKind::kNot},   Keyword{u"LIKE", TokenKind::kLike},
    Keyword{u"IS", TokenKind::kIs},         Keyword{u"NULL", TokenKind::kNull}, Keyword{u"ASC", TokenKind::kAsc},
    Keyword{u"DESC", TokenKind::kDesc},     Keyword{u"AS", TokenKind::kAs},
};

bool same_word(std::u16string_view word, std::u16string_view keyword) {
    if (word.size() != keyword.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (upper(word[i]) != keyword[i]) return false;
    }
    return true;
}

TokenKind kind_of_word(std::u16string_view word) {
    for (const Keyword& keyword : kKeywords) {
        if (same_word(word, keyword.text)) return keyword.kind;
    }
    return TokenKind::kName;
}

// A number of ASCII characters with at most four places as an amount, if it fits.
std::optional<Currency> exact_decimal(std::string_view digits) {
    const std::size_t point = digits.find('.');
    if (point == std::string_view::npos || digits.size() - point - 1 > kCurrencyPlaces) return std::nullopt;
    std::string all(digits.substr(0, point));
    all += digits.substr(point + 1);
    all.append(kCurrencyPlaces - (digits.size() - point - 1), '0');
    Currency amount;
    const auto result = std::from_chars(all.data(), all.data() + all.size(), amount.ten_thousandths);
    if (result.ec != std::errc() || result.ptr != all.data() + all.size()) return std::nullopt;
    return amount;
}

Literal number_from(const std::string& digits) {
    const char* const first = digits.data();
    const char* const last = first + digits.size();
    std::int64_t integer = 0;
    const auto whole = std::from_chars(first, last, integer);
    if (whole.ec == std::errc() && whole.ptr == last) return integer;
    if (const auto amount = exact_decimal(digits)) return *amount;
    double real = 0;
    if (std::from_chars(first, last, real).ec == std::errc::result_out_of_range) {
        // Beyond the range of doubles: larger, or closer to zero, than any stored number.
        const std::size_t exponent = digits.find('e');
        const bool tiny = exponent != std::string::npos && digits[exponent + 1] == '-';
        const double infinity = std::numeric_limits<double>::infinity();
        real = tiny ? 0 : digits[0] == '-' ? -infinity : infinity;
    }
    return real;
}

class Scanner {
public:
    explicit Scanner(std::u16string_view statement) : text_(statement) {
        lexed_.statement = statement;
        lexed_.tokens.reserve(32);
    }

    Lexed run() {
        while (scan_token()) {
        }
        return std::move(lexed_);
    }

private:
    // The character `ahead` places on; NUL beyond the end.
    char16_t peek(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : u'\0'; }

    void add(TokenKind kind, std::size_t begin, std::size_t end, bool bracketed = false) {
        Token token;
        token.kind = kind;
        token.bracketed = bracketed;
        token.begin = static_cast<std::uint32_t>(begin);
        token.length = static_cast<std::uint32_t>(end - begin);
        lexed_.tokens.push_back(token);
    }

    void add_literal(TokenKind kind, std::size_t begin, Literal literal) {
        add(kind, begin, at_);
        lexed_.tokens.back().literal = static_cast<std::uint32_t>(lexed_.literals.size());
        lexed_.literals.push_back(std::move(literal));
    }

    bool stop_as(TokenKind kind, std::size_t begin) {
        add(kind, begin, text_.size());
        return false;
    }

    // False when the last token has been added.
    bool scan_token() {
        while (at_ < text_.size() && is_blank(text_[at_])) ++at_;
        if (at_ == text_.size()) return stop_as(TokenKind::kEnd, at_);
        const char16_t c = text_[at_];
        if (c == u'[') return scan_brackets();
        if (c == u'"' || c == u'\'') return scan_text(c);
        if (c == u'#') return scan_date();
        if (is_digit(c) || c == u'.' || c == u'-') return scan_number();
        if (starts_name(c)) return scan_word();
        return scan_symbol(c);
    }

    bool scan_word() {
        const std::size_t begin = at_;
        while (at_ < text_.size() && continues_name(text_[at_])) ++at_;
        add(kind_of_word(text_.substr(begin, at_ - begin)), begin, at_);
        return true;
    }

    bool scan_brackets() {
        const std::size_t begin = at_ + 1;
        const std::size_t end = text_.find_first_of(u"[]", begin);
        if (end == std::u16string_view::npos || text_[end] == u'[' || end == begin) {
            return stop_as(TokenKind::kBad, at_);
        }
        add(TokenKind::kName, begin, end, true);
        at_ = end + 1;
        return true;
    }

    // The delimiter doubled stands for itself.
    bool scan_text(char16_t delimiter) {
        const std::size_t begin = at_;
        std::u16string value;
        std::size_t from = at_ + 1;
        for (;;) {
            const std::size_t end = text_.find(delimiter, from);
            if (end == std::u16string_view::npos) return stop_as(TokenKind::kBad, begin);
            value += text_.substr(from, end - from);
            from = end + 1;
            if (from == text_.size() || text_[from] != delimiter) break;
            value += delimiter;
            ++from;
        }
        at_ = from;
        add_literal(TokenKind::kText, begin, std::move(value));
        return true;
    }

    bool scan_date() {
        // The separator between the numbers may hold the sign that ends the literal.
        const std::size_t begin = at_;
        for (std::size_t end = begin; end - begin <= kMaxDateLiteral;) {
            end = text_.find(u'#', end + 1);
            if (end == std::u16string_view::npos) break;
            const auto date = parse_date_literal(text_.substr(begin + 1, end - begin - 1));
            if (!date) continue;
            at_ = end + 1;
            add_literal(TokenKind::kDate, begin, *date);
            return true;
        }
        return stop_as(TokenKind::kBad, begin);
    }

    void take_digits(std::string& to) {
        while (is_digit(peek())) to += static_cast<char>(text_[at_++]);
    }

    bool scan_number() {
        const std::size_t begin = at_;
        std::string digits;
        if (peek() == u'-') {
            digits = "-";
            ++at_;
            while (is_blank(peek())) ++at_;
        }
        const bool fraction_only = peek() == u'.';
        if (!is_digit(fraction_only ? peek(1) : peek())) return stop_as(TokenKind::kBad, begin);
        take_digits(digits);
        if (fraction_only) digits += '0';
        if (peek() == u'.') {
            digits += '.';
            ++at_;
            take_digits(digits);
        }
        if (upper(peek()) == u'E') take_exponent(digits);
        add_literal(TokenKind::kNumber, begin, number_from(digits));
        return true;
    }

    void take_exponent(std::string& digits) {
        const bool has_sign = peek(1) == u'+' || peek(1) == u'-';
        if (!is_digit(peek(has_sign ? 2 : 1))) return;
        digits += 'e';
        if (peek(1) == u'-') digits += '-';
        at_ += has_sign ? 2 : 1;
        take_digits(digits);
    }

    bool scan_symbol(char16_t c) {
        const std::size_t begin = at_++;
        const auto one = [&](TokenKind kind) {
            add(kind, begin, at_);
            return true;
        };
        const auto two = [&](TokenKind kind) {
            ++at_;
            return one(kind);
        };
        switch (c) {
            case u'*': return one(TokenKind::kStar);
            case u',': return one(TokenKind::kComma);
            case u'(': return one(TokenKind::kOpen);
            case u')': return one(TokenKind::kClose);
            case u';': return one(TokenKind::kSemicolon);
            case u'=': return one(TokenKind::kEqual);
            case u'<':
                if (peek() == u'>') return two(TokenKind::kNotEqual);
                return peek() == u'=' ? two(TokenKind::kLessEqual) : one(TokenKind::kLess);
            case u'>': return peek() == u'=' ? two(TokenKind::kGreaterEqual) : one(TokenKind::kGreater);
            default: return stop_as(TokenKind::kBad, begin);
        }
    }

    std::u16string_view text_;
    std::size_t at_ = 0;
    Lexed lexed_;
};

}  // namespace

Lexed lex(std::u16string_view statement) { return Scanner(statement).run(); }

std::u16string shape_of(const Lexed& lexed) {
    std::u16string shape;
    shape.reserve(lexed.statement.size() + 2 * lexed.tokens.size());
    for (const Token& token : lexed.tokens) {
        const int mark = static_cast<int>(token.kind) << 1 | (token.bracketed ? 1 : 0);
        shape.push_back(static_cast<char16_t>(mark));
        if (token.kind != TokenKind::kName) continue;
        shape.push_back(static_cast<char16_t>(token.length));
        shape.push_back(static_cast<char16_t>(token.length >> 16));
        shape += lexed.text(token);
    }
    return shape;
}

}  // namespace jet::sql
