// Ties a statement to its table. What costs time is shared or put off: parsing by the statement cache, the
// list of result columns until somebody asks for it.
#include "jet/sql/query.h"

#include <algorithm>

#include "jet/indexes/collation.h"
#include "jet/sql/evaluator.h"
#include "jet/sql/parser.h"
#include "jet/sql/scalar.h"
#include "jet/sql/skim.h"
#include "jet/sql/table_name.h"
#include "jet/storage/text_codec.h"

namespace jet::sql {

namespace {

class RowSource final : public ValueSource {
public:
    RowSource(const RowView& row, const TableDef& def) : row_(row), def_(def) {}
    Value value(std::size_t position) const override { return row_.value(position); }
    void load(std::size_t position, Value& into) const override { row_.value(position, into); }
    bool is_null(std::size_t position) const override { return row_.is_null(position); }
    std::optional<int> compare_text(std::size_t position, std::u16string_view text) const override {
        const ColumnDef& column = def_.columns[position];
        if (column.type != ColumnType::kText || column.code_page != 0) return std::nullopt;
        const auto stored = row_.stored(position);
        if (!stored) return std::nullopt;
        if (is_marked(*stored)) {
            const ByteSpan characters = stored->subspan(std::size(jet4::text::kCompressedMark));
            if (const auto order = compare_latin(characters, text)) return order;
        }
        char narrow[kLongestText];
        const std::size_t length = ascii_length(*stored);
        if (length > kLongestText || !copy_ascii(*stored, narrow)) return std::nullopt;
        char16_t wide[kLongestText];
        std::copy_n(narrow, length, wide);
        return jet::compare_text({wide, length}, text);
    }

private:
    static constexpr std::size_t kLongestText = 255;

    const RowView& row_;
    const TableDef& def_;
};

// One comparison of a column with a literal, the column put to the left.
struct ColumnTest {
    std::uint32_t position = 0;
    Comparison comparison = Comparison::kEqual;
    const Literal* literal = nullptr;
};

Comparison mirrored(Comparison comparison) {
    switch (comparison) {
        case Comparison::kLess: return Comparison::kGreater;
        case Comparison::kGreater: return Comparison::kLess;
        case Comparison::kLessEqual: return Comparison::kGreaterEqual;
        case Comparison::kGreaterEqual: return Comparison::kLessEqual;
        default: return comparison;
    }
}

std::optional<ColumnTest> as_column_test(const Node& node, const Binding& binding) {
    using Kind = Operand::Kind;
    if (node.kind != Node::Kind::kCompare) return std::nullopt;
    if (node.left.kind == Kind::kColumn && node.right.kind == Kind::kLiteral) {
        return ColumnTest{binding.positions[node.left.index], node.comparison, &binding.literals[node.right.index]};
    }
    if (node.left.kind == Kind::kLiteral && node.right.kind == Kind::kColumn) {
        return ColumnTest{binding.positions[node.right.index], mirrored(node.comparison),
                          &binding.literals[node.left.index]};
    }
    return std::nullopt;
}

MapSpan span_of_number(std::uint32_t position, std::int64_t number) {
    if (number < INT32_MIN || number > INT32_MAX) return {position, 1, 0};  // no such value in the column
    const std::uint64_t key = ColumnMap::key_of_long(static_cast<std::int32_t>(number));
    return {position, key, key};
}

void narrow(MapSpan& span, Comparison comparison, std::uint64_t key) {
    const bool from = comparison == Comparison::kEqual || comparison == Comparison::kGreater ||
                      comparison == Comparison::kGreaterEqual;
    const bool to =
        comparison == Comparison::kEqual || comparison == Comparison::kLess || comparison == Comparison::kLessEqual;
    if (from) span.first_key = std::max(span.first_key, key);
    if (to) span.last_key = std::min(span.last_key, key);
}

class Sum {
public:
    explicit Sum(const ColumnDef& column) : column_(column) {}

    void add(const Value& value) {
        if (jet::is_null(value)) return;
        any_ = true;
        if (const auto* numeric = std::get_if<Numeric>(&value)) {
            real_ += to_double(*numeric);
            return;
        }
        if (const auto* date = std::get_if<Date>(&value)) {
            real_ += date->days;
            return;
        }
        const Scalar scalar = to_scalar(value);
        if (scalar.kind == Scalar::Kind::kReal) {
            real_ += scalar.real;
        } else {
            add_exactly(scalar.integer);
        }
    }

    Value result() const {
        if (!any_) return Null{};
        if (column_.type == ColumnType::kCurrency) return Currency{exact_};
        return static_cast<double>(exact_) + real_;
    }

private:
    void add_exactly(std::int64_t number) {
        const bool overflows = number > 0 ? exact_ > INT64_MAX - number : exact_ < INT64_MIN - number;
        if (overflows) {
            fail(errors::kBadConversion, "The sum of the column " + to_utf8(column_.name) + " is too large.");
        }
        exact_ += number;
    }

    const ColumnDef& column_;
    bool any_ = false;
    std::int64_t exact_ = 0;
    double real_ = 0;
};

}  // namespace

struct Query::Impl {
    Table* table = nullptr;
    std::shared_ptr<const Statement> statement;
    Binding binding;
    std::vector<OrderKey> order;
    mutable std::vector<ResultColumn> columns;  // empty until asked for
    mutable ComparedValues compared;

    void find_columns() const;
};

void Query::Impl::find_columns() const {
    const auto& defined = table->def().columns;
    if (statement->sum) {
        const bool currency = defined[binding.positions[statement->sum_column]].type == ColumnType::kCurrency;
        columns.push_back({statement->alias, currency ? ColumnType::kCurrency : ColumnType::kDouble, 8, 0});
        return;
    }
    columns.reserve(defined.size());
    for (std::size_t i = 0; i < defined.size(); ++i) {
        columns.push_back({defined[i].name, defined[i].type, defined[i].length_bytes, i});
    }
}

Query::Query(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Query::Query(Query&&) noexcept = default;
Query& Query::operator=(Query&&) noexcept = default;
Query::~Query() = default;

Query Query::prepare(Database& database, std::u16string_view statement) {
    auto impl = std::make_unique<Impl>();
    std::optional<Skimmed> skimmed = skim(statement);
    std::vector<Literal> literals;
    if (skimmed && (impl->statement = recall_statement(skimmed->frame)) != nullptr) {
        literals = std::move(skimmed->literals);
    } else {
        Lexed lexed = lex(statement);
        impl->table = table_instead_of_statement(database, lexed);
        if (impl->table != nullptr) {
            impl->statement = whole_table(impl->table->def().name);
        } else {
            impl->statement = parse_cached(lexed);
            literals = std::move(lexed.literals);
            if (skimmed && skimmed->literals == literals) {
                remember_statement(std::move(skimmed->frame), impl->statement);
            }
        }
    }
    if (impl->table == nullptr) impl->table = database.find_table(impl->statement->table);
    if (impl->table == nullptr) {
        fail(errors::kNoSuchTable, database.why_no_table(impl->statement->table));
    }
    impl->binding = bind_statement(*impl->statement, impl->table->def(), std::move(literals));
    for (const OrderTerm& term : impl->statement->order) {
        impl->order.push_back({impl->binding.positions[term.column], term.descending});
    }
    return Query(std::move(impl));
}

Table& Query::table() const { return *impl_->table; }

const std::vector<ResultColumn>& Query::columns() const {
    if (impl_->columns.empty()) impl_->find_columns();
    return impl_->columns;
}

bool Query::is_aggregate() const { return impl_->statement->sum; }
bool Query::has_condition() const { return impl_->statement->condition != kNoNode; }
const std::vector<OrderKey>& Query::order() const { return impl_->order; }

bool Query::matches(const RowView& row) const {
    return evaluate(*impl_->statement, impl_->binding, RowSource(row, impl_->table->def()), impl_->compared) ==
           Truth::kTrue;
}

bool Query::matches(const RowView& row, const MapSpan& span) const {
    return evaluate(*impl_->statement, impl_->binding, RowSource(row, impl_->table->def()), impl_->compared,
                    span.node.value_or(kNoNode)) == Truth::kTrue;
}

std::optional<MapSpan> Query::span() const {
    if (!has_condition()) return std::nullopt;
    const auto& nodes = impl_->statement->nodes;
    const auto& columns = impl_->table->def().columns;
    const std::uint32_t root = impl_->statement->condition;
    const bool chain = nodes[root].kind == Node::Kind::kAnd;
    std::optional<MapSpan> dates;
    for (std::uint32_t at = chain ? nodes[root].first_child : root; at != kNoNode; at = nodes[at].next) {
        const auto test = as_column_test(nodes[at], impl_->binding);
        if (!test || test->comparison == Comparison::kNotEqual) continue;
        const ColumnType type = columns[test->position].type;
        const auto* number = std::get_if<std::int64_t>(test->literal);
        if (type == ColumnType::kLong && number != nullptr && test->comparison == Comparison::kEqual) {
            MapSpan span = span_of_number(test->position, *number);
            span.is_condition = !chain;
            span.node = at;
            return span;
        }
        const auto* date = std::get_if<Date>(test->literal);
        if (type != ColumnType::kDate || date == nullptr) continue;
        if (!dates) dates = MapSpan{test->position, 0, UINT64_MAX};
        if (dates->position == test->position) narrow(*dates, test->comparison, ColumnMap::key_of_date(date->days));
    }
    return dates;
}

Value Query::aggregate() const {
    const std::size_t position = impl_->binding.positions[impl_->statement->sum_column];
    Sum sum(table().def().columns[position]);
    RowView row;
    visit_candidates(table(), span(), [&](RowId id) {
        if (table().read(id, row) && matches(row)) sum.add(row.value(position));
    });
    return sum.result();
}

}  // namespace jet::sql
