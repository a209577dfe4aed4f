// The bytes of one row: column count, fixed area, variable values, their offsets, null mask.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/storage/row_shape.h"
#include "jet/storage/stored_values.h"

namespace jet {

// One column's stored form alone: nothing for Null.
using StoredValue = std::optional<ByteVector>;

// Read access to a row's bytes. What a value needs of them is checked when it is asked for (3049).
class RowReader {
public:
    RowReader() = default;  // of no row: nothing may be asked
    RowReader(ByteSpan row, const RowShape& shape);

    // The column's stored bytes inside the row; none for Null. Booleans give a byte of a static table.
    std::optional<ByteSpan> stored(const ColumnDef& column) const { return stored(column.place()); }
    std::optional<ByteSpan> stored(const ColumnPlace& column) const {
        if (column.type == ColumnType::kBoolean) return boolean(column);
        if (column.number >= column_count_ || !mask_bit(column.number)) return std::nullopt;
        if (column.is_fixed) return slice(row_, count_bytes() + column.fixed_offset, column.length_bytes);
        if (is_short_) return short_stored(column);
        if (trailer_ == 0) find_trailer();
        if (column.variable_index >= variable_count_) return std::nullopt;
        const std::uint8_t* const entry = row_.data() + trailer_ + 2 * (variable_count_ - column.variable_index);
        return variable_value(static_cast<std::size_t>(entry[0] | entry[1] << 8),
                              static_cast<std::size_t>(entry[-2] | entry[-1] << 8));
    }

private:
    ByteSpan boolean(const ColumnPlace& column) const;
    std::optional<ByteSpan> short_stored(const ColumnPlace& column) const;
    [[noreturn]] void outside() const;
    void find_trailer() const;
    void find_short_trailer() const;
    ByteSpan variable_value(std::size_t begin, std::size_t end) const {
        if (begin > end || end > trailer_) outside();
        return row_.subspan(begin, end - begin);
    }
    std::size_t short_offset(std::size_t index) const;
    std::size_t count_bytes() const { return is_short_ ? 1 : 2; }
    bool mask_bit(std::size_t number) const { return (mask_[number / 8] >> (number % 8) & 1) != 0; }

    ByteSpan row_;
    PageNumber table_page_ = 0;
    std::size_t column_count_ = 0;
    ByteSpan mask_;
    mutable std::size_t trailer_ = 0;  // where the offsets of variable values stand; 0: not looked for yet
    mutable std::size_t variable_count_ = 0;
    bool is_short_ = false;          // numbers of one byte, as in Jet 3
    mutable std::size_t jumps_ = 0;  // then: where the jumps stand, the first one last
    mutable std::size_t jump_count_ = 0;
};

// A row of the table's present shape; `values` by position in shape.columns. How long a row may be is the
// caller's to check.
void encode_row(const RowShape& shape, const StoredValues& values, ByteVector& into);
ByteVector encode_row(const RowShape& shape, const std::vector<StoredValue>& values);

// The text of a column that holds texts, in whichever form the column has them, into a text whose memory is used again.
void decode_column_text(ByteSpan stored, const ColumnDef& column, std::u16string& into);

// Values that stand in the row itself, to and from their stored form (long values: long_value.h).
Value decode_value(ByteSpan stored, const ColumnDef& column);
// As above, into a value whose memory is used again where it held a text before.
void decode_value(ByteSpan stored, const ColumnDef& column, Value& into);
ByteVector encode_value(const Value& value, const ColumnDef& column);
// As above, at the end of `to`.
void append_value(ByteVector& to, const Value& value, const ColumnDef& column);
// The same of a text of nothing but ASCII, which is given in one byte a character, of a column of variable length.
void append_ascii(ByteVector& to, std::string_view text, const ColumnDef& column);

}  // namespace jet
