#include "jet/storage/row_codec.h"

#include <algorithm>
#include <array>
#include <span>

#include "jet/base/code_page.h"
#include "jet/base/jet4.h"
#include "jet/storage/text_codec.h"

namespace jet {
namespace {

constexpr std::uint8_t kFalseTrue[] = {0, 1};

// Offsets of one byte: bytes before the null mask say from which value on 256, 512... have to be added.
constexpr std::uint8_t kNoJump = 0xFF;
constexpr std::size_t kJump = 256;

std::size_t mask_bytes(std::size_t columns) { return (columns + 7) / 8; }

}  // namespace

RowReader::RowReader(ByteSpan row, const RowShape& shape)
    : row_(row), table_page_(shape.page), is_short_(shape.format->data.row_number_bytes == 1) {
    column_count_ = is_short_ ? load_u8(row, 0) : load_u16(row, 0);
    const std::size_t mask = mask_bytes(column_count_);
    if (column_count_ > shape.max_columns) corrupt(shape.page, "a row has more columns than its table ever had");
    if (count_bytes() + mask > row.size()) corrupt(shape.page, "a row of the table is shorter than its null mask");
    mask_ = row.subspan(row.size() - mask);
}

ByteSpan RowReader::boolean(const ColumnPlace& column) const {
    return ByteSpan(kFalseTrue).subspan(column.number < column_count_ && mask_bit(column.number) ? 1 : 0, 1);
}

std::optional<ByteSpan> RowReader::short_stored(const ColumnPlace& column) const {
    if (trailer_ == 0) find_short_trailer();
    if (column.variable_index >= variable_count_) return std::nullopt;
    return variable_value(short_offset(column.variable_index), short_offset(column.variable_index + 1u));
}

void RowReader::outside() const { corrupt(table_page_, "a variable value of a row lies outside the row"); }

// Only a row that has a variable value has the offsets for them: end of data, then the values' in reverse, then
// how many.
void RowReader::find_trailer() const {
    const std::size_t end = row_.size() - mask_.size();
    const std::size_t count = load_u16(row_, end < 2 ? row_.size() : end - 2);
    const std::size_t bytes = 2 * (count + 2);
    if (2 + bytes > end) corrupt(table_page_, "a row is shorter than its offsets");
    trailer_ = end - bytes;
    variable_count_ = count;
}

// The same in one byte each, with the jumps between the offsets and their count.
void RowReader::find_short_trailer() const {
    const std::size_t end = row_.size() - mask_.size();
    const std::size_t count = load_u8(row_, end < 1 ? row_.size() : end - 1);
    jump_count_ = (row_.size() - 1) / kJump;
    const std::size_t bytes = count + 1 + jump_count_ + 1;
    if (1 + bytes > end) corrupt(table_page_, "a row is shorter than its offsets");
    trailer_ = end - bytes;
    variable_count_ = count;
    jumps_ = end - 1 - jump_count_;
}

std::size_t RowReader::short_offset(std::size_t index) const {
    std::size_t offset = row_[jumps_ - 1 - index];
    for (std::size_t k = 0; k < jump_count_; ++k) {
        const std::uint8_t first = row_[jumps_ + k];
        if (first != kNoJump && first <= index) offset += kJump;
    }
    return offset;
}

namespace {

using Offsets = std::span<const std::uint16_t>;

void append_offsets(ByteVector& row, Offsets offsets) {
    for (std::size_t i = offsets.size(); i-- > 0;) append_u16(row, offsets[i]);
    append_u16(row, static_cast<std::uint16_t>(offsets.size() - 1));
}

void append_short_offsets(ByteVector& row, Offsets offsets, std::size_t mask) {
    // The jumps count themselves in the length that says how many there are.
    std::size_t jumps = 0;
    for (;;) {
        const std::size_t length = row.size() + offsets.size() + jumps + 1 + mask;
        if ((length - 1) / kJump == jumps) break;
        jumps = (length - 1) / kJump;
    }
    for (std::size_t i = offsets.size(); i-- > 0;) append_u8(row, static_cast<std::uint8_t>(offsets[i]));
    for (std::size_t k = jumps; k > 0; --k) {
        const auto first = std::lower_bound(offsets.begin(), offsets.end(), kJump * k);
        append_u8(row, first == offsets.end() ? kNoJump : static_cast<std::uint8_t>(first - offsets.begin()));
    }
    append_u8(row, static_cast<std::uint8_t>(offsets.size() - 1));
}

std::size_t fixed_bytes_of(const RowShape& shape) {
    std::size_t bytes = 0;
    for (const ColumnDef& column : shape.columns) {
        if (column.is_fixed() && column.type != ColumnType::kBoolean) {
            bytes = std::max<std::size_t>(bytes, column.fixed_offset + column.length_bytes);
        }
    }
    return bytes;
}

// Builds one row: the fixed values first, then the variable ones in the order of their indexes.
class RowEncoder {
public:
    RowEncoder(const RowShape& shape, const StoredValues& values, ByteVector& row)
        : shape_(shape), values_(values), row_(row), mask_size_(mask_bytes(shape.max_columns)) {
        if (shape.max_columns > jet4::kMaxColumns || shape.variable_columns > jet4::kMaxColumns) {
            corrupt(shape.page, "a table has more columns than it can have");
        }
        std::fill_n(mask_.begin(), mask_size_, std::uint8_t{0});
        std::fill_n(variable_.begin(), shape.variable_columns, kNone);
    }

    void encode() {
        const bool is_short = shape_.format->data.row_number_bytes == 1;
        count_bytes_ = shape_.format->data.row_number_bytes;
        row_.assign(count_bytes_ + fixed_bytes_of(shape_), 0);
        row_[0] = static_cast<std::uint8_t>(shape_.max_columns);
        if (!is_short) store_u16(row_, 0, shape_.max_columns);
        for (std::size_t i = 0; i < shape_.columns.size() && i < values_.size(); ++i) {
            if (const auto stored = values_[i]) take(i, *stored);
        }
        if (shape_.variable_columns > 0) append_variable(is_short);
        // A row must be able to become a pointer; zeros before the mask are nobody's.
        while (row_.size() + mask_size_ < jet4::data::kMinRow) row_.push_back(0);
        append_bytes(row_, ByteSpan(mask_).first(mask_size_));
    }

private:
    static constexpr std::uint16_t kNone = 0xFFFF;

    void take(std::size_t position, ByteSpan stored) {
        const ColumnDef& column = shape_.columns[position];
        const bool is_boolean = column.type == ColumnType::kBoolean;
        if (is_boolean && load_u8(stored, 0) == 0) return;
        mask_[column.number / 8] |= static_cast<std::uint8_t>(1 << (column.number % 8));
        if (is_boolean) return;
        if (column.is_fixed()) {
            store_bytes(row_, count_bytes_ + column.fixed_offset, slice(stored, 0, column.length_bytes));
        } else {
            variable_[column.variable_index] = static_cast<std::uint16_t>(position);
        }
    }

    void append_variable(bool is_short) {
        std::array<std::uint16_t, jet4::kMaxColumns + 1> offsets;
        for (std::size_t i = 0; i < shape_.variable_columns; ++i) {
            offsets[i] = static_cast<std::uint16_t>(row_.size());
            if (variable_[i] != kNone) append_bytes(row_, *values_[variable_[i]]);
        }
        offsets[shape_.variable_columns] = static_cast<std::uint16_t>(row_.size());
        const Offsets used = Offsets(offsets).first(shape_.variable_columns + 1u);
        if (is_short) {
            append_short_offsets(row_, used, mask_size_);
        } else {
            append_offsets(row_, used);
        }
    }

    const RowShape& shape_;
    const StoredValues& values_;
    ByteVector& row_;
    const std::size_t mask_size_;
    std::size_t count_bytes_ = 0;
    std::array<std::uint8_t, jet4::kMaxColumns / 8 + 1> mask_;
    std::array<std::uint16_t, jet4::kMaxColumns> variable_;  // position of the value of each index
};

}  // namespace

void encode_row(const RowShape& shape, const StoredValues& values, ByteVector& into) {
    RowEncoder(shape, values, into).encode();
}

ByteVector encode_row(const RowShape& shape, const std::vector<StoredValue>& values) {
    StoredValues stored;
    stored.clear(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i]) stored.refer(i, *values[i]);
    }
    ByteVector row;
    encode_row(shape, stored, row);
    return row;
}

void decode_column_text(ByteSpan stored, const ColumnDef& column, std::u16string& into) {
    if (column.code_page == 0) return decode_text(stored, into);
    decode_narrow(stored, column.code_page, into);
}

Value decode_value(ByteSpan stored, const ColumnDef& column) {
    switch (column.type) {
        case ColumnType::kBoolean: return load_u8(stored, 0) != 0;
        case ColumnType::kByte: return load_u8(stored, 0);
        case ColumnType::kInteger: return load_i16(stored, 0);
        case ColumnType::kLong:
        case ColumnType::kComplexId: return load_i32(stored, 0);
        case ColumnType::kCurrency: return Currency{load_i64(stored, 0)};
        case ColumnType::kSingle: return load_f32(stored, 0);
        case ColumnType::kDouble: return load_f64(stored, 0);
        case ColumnType::kDate: return Date{load_f64(stored, 0)};
        case ColumnType::kText:
        case ColumnType::kMemo: {
            std::u16string text;
            decode_column_text(stored, column, text);
            return text;
        }
        case ColumnType::kGuid: {
            Guid guid;
            const ByteSpan bytes = slice(stored, 0, guid.bytes.size());
            std::copy(bytes.begin(), bytes.end(), guid.bytes.begin());
            return guid;
        }
        case ColumnType::kNumeric: {
            Numeric numeric;
            const ByteSpan bytes = slice(stored, 0, numeric.bytes.size());
            std::copy(bytes.begin(), bytes.end(), numeric.bytes.begin());
            numeric.scale = column.scale;
            return numeric;
        }
        case ColumnType::kBinary:
        case ColumnType::kOle:
        case ColumnType::kFixedBinary: break;
    }
    return ByteVector(stored.begin(), stored.end());
}

void decode_value(ByteSpan stored, const ColumnDef& column, Value& into) {
    switch (column.type) {
        case ColumnType::kText:
        case ColumnType::kMemo:
            if (!std::holds_alternative<std::u16string>(into)) into.emplace<std::u16string>();
            return decode_column_text(stored, column, *std::get_if<std::u16string>(&into));
        case ColumnType::kLong: into.emplace<std::int32_t>(load_i32(stored, 0)); return;
        case ColumnType::kCurrency: into.emplace<Currency>(Currency{load_i64(stored, 0)}); return;
        case ColumnType::kDate: into.emplace<Date>(Date{load_f64(stored, 0)}); return;
        default: into = decode_value(stored, column);
    }
}

namespace {

// Appends a value that is not Null.
struct Encoder {
    ByteVector& to;
    const ColumnDef& column;
    const std::size_t begin = to.size();

    void operator()(Null) const {}
    void operator()(bool v) const { append_u8(to, v ? 1 : 0); }
    void operator()(std::uint8_t v) const { append_u8(to, v); }
    void operator()(std::int16_t v) const { append_u16(to, static_cast<std::uint16_t>(v)); }
    void operator()(std::int32_t v) const { append_u32(to, static_cast<std::uint32_t>(v)); }
    void operator()(Currency v) const { append_u64(to, static_cast<std::uint64_t>(v.ten_thousandths)); }
    void operator()(float v) const { append_u32(to, std::bit_cast<std::uint32_t>(v)); }
    void operator()(double v) const { append_u64(to, std::bit_cast<std::uint64_t>(v)); }
    void operator()(Date v) const { append_u64(to, std::bit_cast<std::uint64_t>(v.days)); }
    void operator()(const std::u16string& v) const {
        const bool fixed = column.is_fixed();
        if (column.code_page != 0) {
            append_bytes(to, encode_narrow(v, column.code_page));
            if (fixed && size() < column.length_bytes) to.resize(begin + column.length_bytes, ' ');
            return;
        }
        if (fixed && begins_like_mark(v)) {
            fail(errors::kBadConversion,
                 "The text of fixed length in column '" + to_utf8(column.name) + "' cannot begin with U+FEFF.");
        }
        append_text(to, v, !fixed && column.is_compressed());
        // Fixed text is padded with blanks to its full width.
        while (fixed && size() + 1 < column.length_bytes) append_u16(to, u' ');
    }
    void operator()(const ByteVector& v) const { append_bytes(to, v); }
    void operator()(const Guid& v) const { append_bytes(to, v.bytes); }
    void operator()(const Numeric& v) const { append_bytes(to, v.bytes); }

    std::size_t size() const { return to.size() - begin; }
};

}  // namespace

void append_value(ByteVector& to, const Value& value, const ColumnDef& column) {
    const Encoder encoder{to, column};
    std::visit(encoder, value);
    if (column.is_fixed() && encoder.size() < column.length_bytes) to.resize(encoder.begin + column.length_bytes);
}

void append_ascii(ByteVector& to, std::string_view text, const ColumnDef& column) {
    if (column.code_page != 0) return append_ascii_bytes(to, text);
    append_ascii(to, text, column.is_compressed());
}

ByteVector encode_value(const Value& value, const ColumnDef& column) {
    ByteVector bytes;
    append_value(bytes, value, column);
    return bytes;
}

}  // namespace jet
