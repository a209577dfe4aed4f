#include "jet/storage/row_codec.h"

#include <algorithm>

#include "jet/base/jet4.h"
#include "jet/storage/text_codec.h"

namespace jet {
namespace {

constexpr std::size_t kCountBytes = 2;
constexpr std::uint8_t kFalseTrue[] = {0, 1};

std::size_t mask_bytes(std::size_t columns) { return (columns + 7) / 8; }

}  // namespace

RowReader::RowReader(ByteSpan row, const RowShape& shape) : row_(row), table_page_(shape.page) {
    column_count_ = load_u16(row, 0);
    const std::size_t mask = mask_bytes(column_count_);
    if (column_count_ > shape.max_columns) corrupt(shape.page, "a row has more columns than its table ever had");
    if (kCountBytes + mask > row.size()) corrupt(shape.page, "a row of the table is shorter than its null mask");
    mask_ = row.subspan(row.size() - mask);
}

std::optional<ByteSpan> RowReader::stored(const ColumnDef& column) const {
    if (column.type == ColumnType::kBoolean) {
        return ByteSpan(kFalseTrue).subspan(column.number < column_count_ && mask_bit(column.number) ? 1 : 0, 1);
    }
    if (column.number >= column_count_ || !mask_bit(column.number)) return std::nullopt;
    if (column.is_fixed()) return slice(row_, kCountBytes + column.fixed_offset, column.length_bytes);
    if (trailer_ == 0) find_trailer();
    if (column.variable_index >= variable_count_) return std::nullopt;
    const std::uint8_t* const entry = row_.data() + trailer_ + 2 * (variable_count_ - column.variable_index);
    const std::size_t begin = static_cast<std::size_t>(entry[0] | entry[1] << 8);
    const std::size_t end = static_cast<std::size_t>(entry[-2] | entry[-1] << 8);
    if (begin > end || end > trailer_) corrupt(table_page_, "a variable value of a row lies outside the row");
    return row_.subspan(begin, end - begin);
}

// Only a row that has a variable value has the offsets for them: end of data, then the values' in reverse, then
// how many.
void RowReader::find_trailer() const {
    const std::size_t end = row_.size() - mask_.size();
    const std::size_t count = load_u16(row_, end < 2 ? row_.size() : end - 2);
    const std::size_t bytes = 2 * (count + 2);
    if (kCountBytes + bytes > end) corrupt(table_page_, "a row is shorter than its offsets");
    trailer_ = end - bytes;
    variable_count_ = count;
}

ByteVector encode_row(const RowShape& shape, const std::vector<StoredValue>& values) {
    std::size_t fixed_bytes = 0;
    for (const ColumnDef& column : shape.columns) {
        if (column.is_fixed() && column.type != ColumnType::kBoolean) {
            fixed_bytes = std::max<std::size_t>(fixed_bytes, column.fixed_offset + column.length_bytes);
        }
    }
    ByteVector row(kCountBytes + fixed_bytes);
    store_u16(row, 0, shape.max_columns);
    ByteVector mask(mask_bytes(shape.max_columns));
    std::vector<const ByteVector*> variable(shape.variable_columns);
    for (std::size_t i = 0; i < shape.columns.size(); ++i) {
        const ColumnDef& column = shape.columns[i];
        if (i >= values.size() || !values[i]) continue;
        if (column.type == ColumnType::kBoolean && values[i]->at(0) == 0) continue;
        mask[column.number / 8] |= static_cast<std::uint8_t>(1 << (column.number % 8));
        if (column.type == ColumnType::kBoolean) continue;
        if (column.is_fixed()) {
            store_bytes(row, kCountBytes + column.fixed_offset, ByteSpan(*values[i]).first(column.length_bytes));
        } else {
            variable[column.variable_index] = &*values[i];
        }
    }
    if (shape.variable_columns > 0) {
        std::vector<std::size_t> offsets;
        offsets.reserve(variable.size() + 1);
        for (const ByteVector* value : variable) {
            offsets.push_back(row.size());
            if (value) append_bytes(row, *value);
        }
        offsets.push_back(row.size());
        for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset) {
            append_u16(row, static_cast<std::uint16_t>(*offset));
        }
        append_u16(row, shape.variable_columns);
    }
    // A row must be able to become a pointer; zeros before the mask are nobody's.
    while (row.size() + mask.size() < jet4::data::kMinRow) row.push_back(0);
    append_bytes(row, mask);
    return row;
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
        case ColumnType::kMemo: return decode_text(stored);
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
            return decode_text(stored, *std::get_if<std::u16string>(&into));
        case ColumnType::kLong: into.emplace<std::int32_t>(load_i32(stored, 0)); return;
        case ColumnType::kCurrency: into.emplace<Currency>(Currency{load_i64(stored, 0)}); return;
        case ColumnType::kDate: into.emplace<Date>(Date{load_f64(stored, 0)}); return;
        default: into = decode_value(stored, column);
    }
}

ByteVector encode_value(const Value& value, const ColumnDef& column) {
    ByteVector bytes;
    struct Encoder {
        ByteVector& to;
        const ColumnDef& column;
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
            if (fixed && begins_like_mark(v)) {
                fail(errors::kBadConversion,
                     "The text of fixed length in column '" + to_utf8(column.name) + "' cannot begin with U+FEFF.");
            }
            to = encode_text(v, !fixed && column.is_compressed());
            // Fixed text is padded with blanks to its full width.
            while (fixed && to.size() + 1 < column.length_bytes) append_u16(to, u' ');
        }
        void operator()(const ByteVector& v) const { to = v; }
        void operator()(const Guid& v) const { append_bytes(to, v.bytes); }
        void operator()(const Numeric& v) const { append_bytes(to, v.bytes); }
    };
    std::visit(Encoder{bytes, column}, value);
    if (column.is_fixed() && bytes.size() < column.length_bytes) bytes.resize(column.length_bytes);
    return bytes;
}

}  // namespace jet
