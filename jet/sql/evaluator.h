// Evaluates a bound condition on one row.
#pragma once

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
    virtual bool is_null(std::size_t position) const = 0;
};

// Of the whole condition; kTrue when there is none. Reads only columns that the condition names.
Truth evaluate(const Statement& statement, const Binding& binding, const ValueSource& row);

}  // namespace jet::sql
