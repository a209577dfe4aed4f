// Checks a parsed statement against a table's definition.
#include "jet/sql/binder.h"
#include "jet/sql/scalar.h"

namespace jet::sql {

namespace {

class Binder {
public:
    Binder(const Statement& statement, const TableDef& def, std::vector<Literal> literals)
        : statement_(statement), def_(def) {
        binding_.literals = std::move(literals);
    }

    Binding run() {
        binding_.positions.reserve(statement_.columns.size());
        for (std::size_t i = 0; i < statement_.columns.size(); ++i) binding_.positions.push_back(resolve(i));
        binding_.patterns.resize(statement_.pattern_count);
        for (const Node& node : statement_.nodes) {
            if (node.kind == Node::Kind::kCompare) check_comparison(node);
            if (node.kind == Node::Kind::kLike) bind_like(node);
        }
        if (statement_.sum) check_sum();
        for (const OrderTerm& term : statement_.order) check_order(column(term.column));
        return std::move(binding_);
    }

private:
    std::uint32_t resolve(std::size_t index) const {
        const std::u16string& name = statement_.columns[index];
        const bool can_guess = index < statement_.guesses.size();
        if (can_guess) {
            const std::uint32_t guess = statement_.guesses[index].load(std::memory_order_relaxed);
            if (guess < def_.columns.size() && def_.columns[guess].name == name) return guess;
        }
        const auto found = def_.find_column(name);
        if (!found) {
            fail(errors::kUnknownColumn, "The table " + to_utf8(def_.name) + " has no column " + to_utf8(name) +
                                             ", and no parameter of that name has a value.");
        }
        const auto position = static_cast<std::uint32_t>(*found);
        if (can_guess) statement_.guesses[index].store(position, std::memory_order_relaxed);
        return position;
    }

    const ColumnDef& column(std::uint32_t index) const { return def_.columns[binding_.positions[index]]; }

    ValueClass operand_class(const Operand& operand) const {
        switch (operand.kind) {
            case Operand::Kind::kColumn: return class_of(column(operand.index).type);
            case Operand::Kind::kLiteral: return class_of(binding_.literals[operand.index]);
            case Operand::Kind::kNull: break;
        }
        return ValueClass::kNull;
    }

    [[noreturn]] void mismatch(const Node& node) const {
        std::string names;
        for (const Operand& operand : {node.left, node.right}) {
            if (operand.kind == Operand::Kind::kColumn) names += " " + to_utf8(column(operand.index).name);
        }
        fail(errors::kTypeMismatch, "A condition on the table " + to_utf8(def_.name) +
                                        " compares values of different types" + (names.empty() ? "" : ":" + names) +
                                        ".");
    }

    void check_comparison(const Node& node) const {
        const ValueClass left = operand_class(node.left);
        const ValueClass right = operand_class(node.right);
        if (left == ValueClass::kNull || right == ValueClass::kNull) return;
        if (left == ValueClass::kOther || right == ValueClass::kOther) mismatch(node);
        if ((left == ValueClass::kText) != (right == ValueClass::kText)) mismatch(node);
    }

    // Both sides must have a text: text itself or a number.
    void bind_like(const Node& node) {
        for (const Operand& operand : {node.left, node.right}) {
            const ValueClass side = operand_class(operand);
            if (side == ValueClass::kDate || side == ValueClass::kOther) mismatch(node);
        }
        if (node.right.kind != Operand::Kind::kLiteral) return;
        const std::u16string pattern = decimal_text(binding_.literals[node.right.index]);
        binding_.patterns[node.pattern] = LikePattern::compile(pattern);
        if (!binding_.patterns[node.pattern]) {
            fail(errors::kExpressionSyntax, "Invalid pattern behind LIKE: " + to_utf8(pattern));
        }
    }

    void check_sum() const {
        const ColumnDef& summed = column(statement_.sum_column);
        const ValueClass type = class_of(summed.type);
        if (type != ValueClass::kNumber && type != ValueClass::kDate) {
            fail(errors::kTypeMismatch, "The column " + to_utf8(summed.name) + " cannot be summed.");
        }
        if (!statement_.order.empty()) {
            fail(errors::kMixedAggregate, "A sum has no rows to put in order.");
        }
    }

    void check_order(const ColumnDef& key) const {
        if (is_long_value(key.type)) {
            fail(errors::kSortOnMemo,
                 "The column " + to_utf8(key.name) + " is a memo or object and cannot be a sort key.");
        }
    }

    const Statement& statement_;
    const TableDef& def_;
    Binding binding_;
};

}  // namespace

Binding bind_statement(const Statement& statement, const TableDef& def, std::vector<Literal> literals) {
    return Binder(statement, def, std::move(literals)).run();
}

}  // namespace jet::sql
