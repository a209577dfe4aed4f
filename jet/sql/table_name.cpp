#include "jet/sql/table_name.h"

namespace jet::sql {

namespace {

constexpr std::u16string_view kBlanks = u" \t\r\n";

std::u16string_view trimmed(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::u16string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool ends_after_first(const Lexed& lexed) {
    const auto& tokens = lexed.tokens;
    if (tokens[1].kind == TokenKind::kSemicolon) return tokens[2].kind == TokenKind::kEnd;
    return tokens[1].kind == TokenKind::kEnd;
}

bool is_one_word(std::u16string_view text) {
    return !text.empty() && text.find_first_of(u" \t\r\n[(") == std::u16string_view::npos;
}

}  // namespace

Table* table_instead_of_statement(Database& database, const Lexed& lexed) {
    const std::u16string_view text = trimmed(lexed.statement);
    // A table may have the name of a keyword, or one with characters that no statement takes.
    if (is_one_word(text)) {
        if (Table* const table = database.find_table(text)) return table;
    }
    if (lexed.tokens.front().kind == TokenKind::kSelect) return nullptr;
    if (text.empty()) fail(errors::kNoSuchTable, "The statement is empty.");
    const bool one_name = lexed.tokens.front().kind == TokenKind::kName && ends_after_first(lexed);
    const std::u16string_view name = one_name ? lexed.text(lexed.tokens.front()) : text;
    if (Table* const table = database.find_table(name)) return table;
    const bool several_words = text.find_first_of(kBlanks) != std::u16string_view::npos;
    if (!one_name && several_words) {
        fail(errors::kBadStatement, "The statement does not begin with SELECT: " + to_utf8(text));
    }
    fail(errors::kNoSuchTable, database.why_no_table(name));
}

}  // namespace jet::sql
