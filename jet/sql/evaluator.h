// Evaluates a bound condition on one row.
#pragma once

#include <optional>
#include <string_view>

#include "jet/base/types.h"
#include "jet/sql/binder.h"

namespace jet::sql {

// Three-valued logic: AND is the smaller, OR the larger of two.
enum class Truth : std::uint8_t { kFalse, kUnknown, kTrue };

// Where the values of one row come from; `position` counts the table's columns.
class ValueSource {
public:
    virtual ~ValueSource() = default;
    virtual Value value(std::size_t position) const = 0;
    // As above, into a value whose memory is used again.
    virtual void load(std::size_t position, Value& into) const { into = value(position); }
    virtual bool is_null(std::size_t position) const = 0;
    // How the text of a column compares with `text` (jet/indexes/collation.h), where that shows without its value.
    virtual std::optional<int> compare_text(std::size_t /*position*/, std::u16string_view /*text*/) const {
        return std::nullopt;
    }
};

// The values compared last, kept for their memory.
struct ComparedValues {
    Value left;
    Value right;
};

// Of the whole condition; kTrue when there is none. Reads only columns that the condition names. The node `settled` is
// true, as is known from elsewhere.
Truth evaluate(const Statement& statement, const Binding& binding, const ValueSource& row, ComparedValues& compared,
               std::uint32_t settled = kNoNode);
inline Truth evaluate(const Statement& statement, const Binding& binding, const ValueSource& row) {
    ComparedValues compared;
    return evaluate(statement, binding, row, compared);
}

}  // namespace jet::sql
