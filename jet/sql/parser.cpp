#include "jet/sql/parser.h"

#include <algorithm>
#include <span>
#include <string>

#include "jet/base/error.h"

namespace jet::sql {

namespace {

constexpr int kMaxDepth = 256;        // parentheses and NOTs within each other
constexpr std::size_t kExcerpt = 40;  // characters of a statement quoted in an error text
constexpr std::u16string_view kSumAlias = u"Expr1000";

bool is_sum(std::u16string_view word) {
    constexpr std::u16string_view kUpper = u"SUM";
    constexpr std::u16string_view kLower = u"sum";
    if (word.size() != kUpper.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (word[i] != kUpper[i] && word[i] != kLower[i]) return false;
    }
    return true;
}

struct SelectItem {
    enum class Kind : std::uint8_t { kStar, kColumn, kSum };
    Kind kind = Kind::kStar;
    std::u16string column;
    std::u16string alias;
};

class Parser {
public:
    explicit Parser(const Lexed& lexed) : lexed_(lexed), tokens_(lexed.tokens) {}

    std::shared_ptr<const Statement> run() {
        parse_select();
        parse_from();
        if (accept(TokenKind::kWhere)) parse_where();
        if (accept(TokenKind::kOrder)) parse_order();
        parse_end();
        statement_->guesses = std::vector<std::atomic<std::uint32_t>>(statement_->columns.size());
        return statement_;
    }

private:
    const Token& current() const { return tokens_[at_]; }
    TokenKind kind() const { return tokens_[at_].kind; }

    // The last token, which ends the statement, is never left behind.
    void advance() {
        if (at_ + 1 < tokens_.size()) ++at_;
    }

    bool accept(TokenKind wanted) {
        if (kind() != wanted) return false;
        advance();
        return true;
    }

    bool at_end_of_clause() const {
        return kind() == TokenKind::kEnd || kind() == TokenKind::kSemicolon || kind() == TokenKind::kOrder;
    }

    // A bad token is an error of its own, whatever was expected in its place.
    [[noreturn]] void refuse(int number, std::string_view what) const {
        const auto rest = lexed_.statement.substr(std::min<std::size_t>(current().begin, lexed_.statement.size()));
        const std::string near = rest.empty() ? "at its end" : "near '" + to_utf8(rest.substr(0, kExcerpt)) + "'";
        if (kind() == TokenKind::kBad) {
            fail(errors::kExpressionSyntax,
                 "Unfinished or malformed literal, name or sign in the statement " + near + ".");
        }
        fail(number, std::string(what) + ": the statement is wrong " + near + ".");
    }

    [[noreturn]] void refuse_expression() const { refuse(errors::kExpressionSyntax, "Syntax error in the condition"); }

    std::uint32_t column_index(std::u16string_view name) {
        auto& columns = statement_->columns;
        const auto found = std::find(columns.begin(), columns.end(), name);
        const auto index = static_cast<std::uint32_t>(found - columns.begin());
        if (found == columns.end()) columns.emplace_back(name);
        return index;
    }

    void expect_select(TokenKind wanted) {
        if (!accept(wanted)) refuse(errors::kBadSelect, "Syntax error in SELECT");
    }

    std::u16string expect_select_name() {
        const std::u16string name(lexed_.text(current()));
        expect_select(TokenKind::kName);
        return name;
    }

    void parse_select() {
        expect_select(TokenKind::kSelect);
        std::vector<SelectItem> items;
        do {
            items.push_back(parse_item());
        } while (accept(TokenKind::kComma));
        expect_select(TokenKind::kFrom);
        const auto is_sum_item = [](const SelectItem& item) { return item.kind == SelectItem::Kind::kSum; };
        const auto sums = std::count_if(items.begin(), items.end(), is_sum_item);
        if (sums > 0 && static_cast<std::size_t>(sums) < items.size()) {
            fail(errors::kMixedAggregate, "SUM cannot stand beside columns that are not summed.");
        }
        if (items.size() > 1 || items.front().kind == SelectItem::Kind::kColumn) {
            fail(errors::kBadSelect, "SELECT takes * or one SUM of a column.");
        }
        if (sums == 0) return;
        statement_->sum = true;
        statement_->sum_column = column_index(items.front().column);
        statement_->alias = items.front().alias;
    }

    SelectItem parse_item() {
        SelectItem item;
        if (accept(TokenKind::kStar)) return item;
        const Token& token = current();
        item.column = expect_select_name();
        item.kind = SelectItem::Kind::kColumn;
        if (!token.bracketed && is_sum(item.column) && accept(TokenKind::kOpen)) {
            item.kind = SelectItem::Kind::kSum;
            item.column = expect_select_name();
            item.alias = kSumAlias;
            expect_select(TokenKind::kClose);
        }
        if (accept(TokenKind::kAs)) item.alias = expect_select_name();
        return item;
    }

    void parse_from() {
        constexpr std::string_view kWhat = "Syntax error in FROM";
        if (kind() != TokenKind::kName) refuse(errors::kBadFrom, kWhat);
        statement_->table = lexed_.text(current());
        advance();
        if (kind() != TokenKind::kWhere && !at_end_of_clause()) refuse(errors::kBadFrom, kWhat);
    }

    void parse_where() {
        if (at_end_of_clause()) refuse(errors::kBadWhere, "Syntax error in WHERE");
        statement_->condition = parse_or(0);
        if (!at_end_of_clause()) refuse_expression();
    }

    void parse_order() {
        constexpr std::string_view kWhat = "Syntax error in ORDER BY";
        if (!accept(TokenKind::kBy)) refuse(errors::kBadOrderBy, kWhat);
        do {
            if (kind() != TokenKind::kName) refuse(errors::kBadOrderBy, kWhat);
            OrderTerm term;
            term.column = column_index(lexed_.text(current()));
            advance();
            term.descending = kind() == TokenKind::kDesc;
            if (term.descending || kind() == TokenKind::kAsc) advance();
            statement_->order.push_back(term);
        } while (accept(TokenKind::kComma));
        if (kind() != TokenKind::kEnd && kind() != TokenKind::kSemicolon) refuse(errors::kBadOrderBy, kWhat);
    }

    void parse_end() {
        if (!accept(TokenKind::kSemicolon)) return;
        if (kind() != TokenKind::kEnd) fail(errors::kTextAfterEnd, "Text stands after the end of the statement.");
    }

    std::uint32_t add(const Node& node) {
        statement_->nodes.push_back(node);
        return static_cast<std::uint32_t>(statement_->nodes.size() - 1);
    }

    std::uint32_t parse_or(int depth) { return parse_chain(Node::Kind::kOr, TokenKind::kOr, depth); }
    std::uint32_t parse_and(int depth) { return parse_chain(Node::Kind::kAnd, TokenKind::kAnd, depth); }

    std::uint32_t parse_link(Node::Kind kind, int depth) {
        return kind == Node::Kind::kOr ? parse_and(depth) : parse_not(depth);
    }

    // One term, or all terms linked by `link` as children of one node. A term in parentheses that is itself
    // such a node gives its children to the chain.
    std::uint32_t parse_chain(Node::Kind kind, TokenKind link, int depth) {
        const std::uint32_t first = parse_link(kind, depth);
        if (this->kind() != link) return first;
        Node chain;
        chain.kind = kind;
        std::uint32_t last = kNoNode;
        append_child(chain, last, first);
        while (accept(link)) append_child(chain, last, parse_link(kind, depth));
        return add(chain);
    }

    void append_child(Node& chain, std::uint32_t& last, std::uint32_t child) {
        auto& nodes = statement_->nodes;
        if (nodes[child].kind == chain.kind) child = nodes[child].first_child;
        if (last == kNoNode) {
            chain.first_child = child;
        } else {
            nodes[last].next = child;
        }
        last = child;
        while (nodes[last].next != kNoNode) last = nodes[last].next;
    }

    std::uint32_t parse_not(int depth) {
        if (depth > kMaxDepth) {
            fail(errors::kExpressionSyntax, "The condition has too many parentheses within each other.");
        }
        if (accept(TokenKind::kNot)) {
            Node node;
            node.kind = Node::Kind::kNot;
            node.first_child = parse_not(depth + 1);
            return add(node);
        }
        if (accept(TokenKind::kOpen)) {
            const std::uint32_t inner = parse_or(depth + 1);
            if (!accept(TokenKind::kClose)) refuse_expression();
            return inner;
        }
        return parse_comparison();
    }

    Operand parse_operand() {
        Operand operand;
        switch (kind()) {
            case TokenKind::kName:
                operand.kind = Operand::Kind::kColumn;
                operand.index = column_index(lexed_.text(current()));
                break;
            case TokenKind::kNumber:
            case TokenKind::kText:
            case TokenKind::kDate:
                operand.kind = Operand::Kind::kLiteral;
                operand.index = current().literal;
                break;
            case TokenKind::kNull: break;
            default: refuse_expression();
        }
        advance();
        return operand;
    }

    std::uint32_t parse_comparison() {
        Node node;
        node.left = parse_operand();
        if (accept(TokenKind::kIs)) {
            node.kind = Node::Kind::kIsNull;
            node.negated = accept(TokenKind::kNot);
            if (!accept(TokenKind::kNull)) refuse_expression();
            return add(node);
        }
        if (kind() == TokenKind::kNot || kind() == TokenKind::kLike) {
            node.kind = Node::Kind::kLike;
            node.negated = accept(TokenKind::kNot);
            if (!accept(TokenKind::kLike)) refuse_expression();
            node.right = parse_operand();
            node.pattern = statement_->pattern_count++;
            return add(node);
        }
        node.comparison = parse_operator();
        node.right = parse_operand();
        return add(node);
    }

    Comparison parse_operator() {
        Comparison comparison = Comparison::kEqual;
        switch (kind()) {
            case TokenKind::kEqual: break;
            case TokenKind::kNotEqual: comparison = Comparison::kNotEqual; break;
            case TokenKind::kLess: comparison = Comparison::kLess; break;
            case TokenKind::kGreater: comparison = Comparison::kGreater; break;
            case TokenKind::kLessEqual: comparison = Comparison::kLessEqual; break;
            case TokenKind::kGreaterEqual: comparison = Comparison::kGreaterEqual; break;
            default: refuse_expression();
        }
        advance();
        return comparison;
    }

    const Lexed& lexed_;
    std::span<const Token> tokens_;
    std::size_t at_ = 0;
    std::shared_ptr<Statement> statement_ = std::make_shared<Statement>();
};

}  // namespace

std::shared_ptr<const Statement> parse(const Lexed& lexed) { return Parser(lexed).run(); }

std::shared_ptr<const Statement> whole_table(std::u16string_view table) {
    auto statement = std::make_shared<Statement>();
    statement->table = table;
    return statement;
}

}  // namespace jet::sql
