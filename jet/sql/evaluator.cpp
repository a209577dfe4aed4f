#include "jet/sql/evaluator.h"
#include "jet/sql/scalar.h"

namespace jet::sql {

namespace {

Truth truth_of(bool value) { return value ? Truth::kTrue : Truth::kFalse; }

Truth negate(Truth truth) { return static_cast<Truth>(2 - static_cast<int>(truth)); }

Truth compare_by(Comparison comparison, std::partial_ordering order) {
    if (order == std::partial_ordering::unordered) return Truth::kUnknown;
    switch (comparison) {
        case Comparison::kEqual: return truth_of(order == 0);
        case Comparison::kNotEqual: return truth_of(order != 0);
        case Comparison::kLess: return truth_of(order < 0);
        case Comparison::kGreater: return truth_of(order > 0);
        case Comparison::kLessEqual: return truth_of(order <= 0);
        case Comparison::kGreaterEqual: return truth_of(order >= 0);
    }
    return Truth::kUnknown;
}

class Evaluator {
public:
    Evaluator(const Statement& statement, const Binding& binding, const ValueSource& row, ComparedValues& compared,
              std::uint32_t settled)
        : statement_(statement), binding_(binding), row_(row), compared_(compared), settled_(settled) {}

    Truth evaluate(std::uint32_t index) const {
        if (index == settled_) return Truth::kTrue;
        const Node& node = statement_.nodes[index];
        switch (node.kind) {
            case Node::Kind::kAnd: return evaluate_chain(node, Truth::kFalse);
            case Node::Kind::kOr: return evaluate_chain(node, Truth::kTrue);
            case Node::Kind::kNot: return negate(evaluate(node.first_child));
            case Node::Kind::kCompare: return evaluate_comparison(node);
            case Node::Kind::kLike: return evaluate_like(node);
            case Node::Kind::kIsNull: return truth_of(operand_is_null(node.left) != node.negated);
        }
        return Truth::kUnknown;
    }

private:
    // `deciding` is the truth that settles the whole chain: false for AND, true for OR.
    Truth evaluate_chain(const Node& chain, Truth deciding) const {
        Truth result = negate(deciding);
        for (std::uint32_t child = chain.first_child; child != kNoNode; child = statement_.nodes[child].next) {
            const Truth truth = evaluate(child);
            if (truth == deciding) return deciding;
            if (truth == Truth::kUnknown) result = Truth::kUnknown;
        }
        return result;
    }

    std::uint32_t position(const Operand& operand) const { return binding_.positions[operand.index]; }

    bool operand_is_null(const Operand& operand) const {
        if (operand.kind == Operand::Kind::kColumn) return row_.is_null(position(operand));
        return operand.kind == Operand::Kind::kNull;
    }

    // `held` keeps what the scalar refers to.
    Scalar load(const Operand& operand, Value& held) const {
        switch (operand.kind) {
            case Operand::Kind::kLiteral: return to_scalar(binding_.literals[operand.index]);
            case Operand::Kind::kColumn: row_.load(position(operand), held); return to_scalar(held);
            case Operand::Kind::kNull: break;
        }
        return {};
    }

    // Of a column with a literal text.
    std::optional<int> compare_text(const Node& node) const {
        using Kind = Operand::Kind;
        if (node.left.kind != Kind::kColumn || node.right.kind != Kind::kLiteral) return std::nullopt;
        const auto* const text = std::get_if<std::u16string>(&binding_.literals[node.right.index]);
        return text != nullptr ? row_.compare_text(position(node.left), *text) : std::nullopt;
    }

    Truth evaluate_comparison(const Node& node) const {
        if (const auto order = compare_text(node)) return compare_by(node.comparison, *order <=> 0);
        const Scalar a = load(node.left, compared_.left);
        if (a.kind == Scalar::Kind::kNull) return Truth::kUnknown;
        return compare_by(node.comparison, compare(a, load(node.right, compared_.right)));
    }

    // None for Null.
    std::optional<std::u16string> text_of(const Operand& operand) const {
        if (operand.kind == Operand::Kind::kLiteral) return decimal_text(binding_.literals[operand.index]);
        if (operand.kind == Operand::Kind::kNull) return std::nullopt;
        Value value = row_.value(position(operand));
        if (jet::is_null(value)) return std::nullopt;
        if (auto* text = std::get_if<std::u16string>(&value)) return std::move(*text);
        return decimal_text(value);
    }

    Truth evaluate_like(const Node& node) const {
        const auto value = text_of(node.left);
        if (!value) return Truth::kUnknown;
        if (const auto& fixed = binding_.patterns[node.pattern])
            return truth_of(fixed->matches(*value) != node.negated);
        // A pattern out of the row itself: a bad one matches nothing and fails nothing.
        const auto pattern = text_of(node.right);
        if (!pattern) return Truth::kUnknown;
        const auto compiled = LikePattern::compile(*pattern);
        if (!compiled) return Truth::kUnknown;
        return truth_of(compiled->matches(*value) != node.negated);
    }

    const Statement& statement_;
    const Binding& binding_;
    const ValueSource& row_;
    ComparedValues& compared_;
    const std::uint32_t settled_;
};

}  // namespace

Truth evaluate(const Statement& statement, const Binding& binding, const ValueSource& row, ComparedValues& compared,
               std::uint32_t settled) {
    if (statement.condition == kNoNode) return Truth::kTrue;
    return Evaluator(statement, binding, row, compared, settled).evaluate(statement.condition);
}

}  // namespace jet::sql
