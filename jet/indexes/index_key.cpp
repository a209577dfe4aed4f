// Builds the keys of index entries: per key column a flag byte and, unless the value is null, bytes whose
// order is that of the values. Descending columns invert them.
#include "jet/indexes/index_key.h"

#include <algorithm>
#include <bit>

#include "jet/base/code_page.h"
#include "jet/base/jet4.h"
#include "jet/indexes/sort_key.h"

namespace jet {

namespace {

using namespace jet4::key;

template <class T>
const T& expect(const Value& value, const ColumnDef& column) {
    if (const T* held = std::get_if<T>(&value)) return *held;
    fail(errors::kReserved, "The value for the indexed column " + to_utf8(column.name) + " is of another type.");
}

// Signed integers in order as big-endian numbers: with the sign turned.
void append_signed(ByteVector& to, std::int64_t value, int bytes) {
    const std::uint64_t sign = std::uint64_t{1} << (8 * bytes - 1);
    append_be(to, static_cast<std::uint64_t>(value) ^ sign, bytes);
}

// IEEE numbers in order: positive ones with the sign bit set, negative ones inverted.
void append_real(ByteVector& to, std::uint64_t bits, int bytes) {
    const std::uint64_t sign = std::uint64_t{1} << (8 * bytes - 1);
    append_be(to, (bits & sign) != 0 ? ~bits : bits | sign, bytes);
}

// Segments of eight bytes; a marker tells whether more follow, the last one is padded and counted. The
// descending form leaves the markers between segments as they are.
void append_binary(ByteVector& to, ByteSpan data, bool ascending) {
    const std::uint8_t mask = ascending ? 0x00 : 0xFF;
    for (std::size_t at = 0; at < data.size(); at += kSegment) {
        const std::size_t count = std::min(kSegment, data.size() - at);
        for (std::size_t i = 0; i < kSegment; ++i) {
            const std::uint8_t byte = i < count ? data[at + i] : std::uint8_t{0};
            to.push_back(byte ^ mask);
        }
        const bool last = at + kSegment >= data.size();
        to.push_back(last ? static_cast<std::uint8_t>(count) ^ mask : kMoreSegments);
    }
}

// Bytes of an identifier in the order in which it is written as text.
ByteVector textual_order(const Guid& guid) {
    ByteVector bytes(guid.bytes.begin(), guid.bytes.end());
    std::reverse(bytes.begin(), bytes.begin() + 4);
    std::reverse(bytes.begin() + 4, bytes.begin() + 6);
    std::reverse(bytes.begin() + 6, bytes.begin() + 8);
    return bytes;
}

// The sign byte is the same in both directions: negative numbers come first in a descending index too.
void append_numeric(ByteVector& to, const Numeric& value, bool ascending) {
    const bool negative = value.bytes[0] != 0;
    const std::uint8_t mask = negative == ascending ? 0xFF : 0x00;
    to.push_back(negative ? 0x00 : 0xFF);
    for (std::size_t word = 0; word < 4; ++word) {
        for (std::size_t byte = 4; byte-- > 0;) to.push_back(value.bytes[1 + 4 * word + byte] ^ mask);
    }
}

// The ascending value bytes of the types whose descending form is their plain inversion.
void append_plain(ByteVector& to, const ColumnDef& column, const Value& value) {
    switch (column.type) {
        case ColumnType::kByte: to.push_back(expect<std::uint8_t>(value, column)); return;
        case ColumnType::kInteger: append_signed(to, expect<std::int16_t>(value, column), 2); return;
        case ColumnType::kLong: append_signed(to, expect<std::int32_t>(value, column), 4); return;
        case ColumnType::kCurrency: append_signed(to, expect<Currency>(value, column).ten_thousandths, 8); return;
        case ColumnType::kSingle:
            append_real(to, std::bit_cast<std::uint32_t>(expect<float>(value, column)), 4);
            return;
        case ColumnType::kDouble:
            append_real(to, std::bit_cast<std::uint64_t>(expect<double>(value, column)), 8);
            return;
        case ColumnType::kDate:
            append_real(to, std::bit_cast<std::uint64_t>(expect<Date>(value, column).days), 8);
            return;
        default: fail(errors::kCannotMaintainIndex, "The column " + to_utf8(column.name) + " cannot be indexed.");
    }
}

void require_known_key(std::u16string_view text, const ColumnDef& column) {
    if (is_key_known(text, column)) return;
    fail(errors::kCannotMaintainIndex, "The place of '" + to_utf8(text) + "' in the index on column '" +
                                           to_utf8(column.name) + "' is not known: the column is sorted by " +
                                           described_order(column) + ".");
}

void append_value(ByteVector& to, const ColumnDef& column, const Value& value, bool ascending, KeyRule rule) {
    switch (column.type) {
        case ColumnType::kText:
        case ColumnType::kMemo: {
            const auto& text = expect<std::u16string>(value, column);
            require_known_key(text, column);
            if (ascending) {
                append_sort_key(to, text, *text_order(column), rule);
            } else {
                append_descending_sort_key(to, text, *text_order(column), rule);
            }
            return;
        }
        case ColumnType::kBinary: append_binary(to, expect<ByteVector>(value, column), ascending); return;
        case ColumnType::kGuid: append_binary(to, textual_order(expect<Guid>(value, column)), ascending); return;
        case ColumnType::kNumeric: append_numeric(to, expect<Numeric>(value, column), ascending); return;
        default: break;
    }
    const std::size_t start = to.size();
    append_plain(to, column, value);
    if (ascending) return;
    for (std::size_t i = start; i < to.size(); ++i) to[i] = static_cast<std::uint8_t>(~to[i]);
}

void append_key_column(ByteVector& to, const ColumnDef& column, const Value& value, bool ascending, KeyRule rule) {
    if (column.type == ColumnType::kBoolean) {  // never null
        const bool* held = std::get_if<bool>(&value);
        const bool truth = held != nullptr && *held;
        to.push_back(ascending ? kValueAscending : kValueDescending);
        to.push_back(truth == ascending ? 0x00 : 0xFF);
        return;
    }
    if (is_null(value)) {
        to.push_back(ascending ? kNullAscending : kNullDescending);
        return;
    }
    to.push_back(ascending ? kValueAscending : kValueDescending);
    append_value(to, column, value, ascending, rule);
}

bool is_indexable(ColumnType type) {
    switch (type) {
        case ColumnType::kBoolean:
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong:
        case ColumnType::kCurrency:
        case ColumnType::kSingle:
        case ColumnType::kDouble:
        case ColumnType::kDate:
        case ColumnType::kBinary:
        case ColumnType::kText:
        case ColumnType::kMemo:
        case ColumnType::kGuid:
        case ColumnType::kNumeric: return true;
        default: return false;
    }
}

std::size_t position_of(const KeyColumn& key, const RowShape& shape) {
    const auto position = shape.column_by_number(key.column_number);
    if (!position) corrupt(shape.page, "an index names a column that the table does not have");
    return *position;
}

}  // namespace

std::optional<std::string> why_not_maintainable(const RealIndex& index, const RowShape& shape) {
    for (const KeyColumn& key : index.columns) {
        const auto position = shape.column_by_number(key.column_number);
        if (!position) return "column number " + std::to_string(key.column_number) + " does not exist";
        const ColumnDef& column = shape.columns[*position];
        const std::string name = "column " + to_utf8(column.name);
        if (!is_indexable(column.type)) return name + " has a type without known index keys";
        const bool text = column.type == ColumnType::kText || column.type == ColumnType::kMemo;
        if (text && !text_order(column)) return name + " is sorted by " + described_order(column);
    }
    return std::nullopt;
}

bool has_text(const RealIndex& index, const RowShape& shape) {
    return std::any_of(index.columns.begin(), index.columns.end(), [&](const KeyColumn& column) {
        const ColumnType type = shape.columns[position_of(column, shape)].type;
        return type == ColumnType::kText || type == ColumnType::kMemo;
    });
}

bool is_key_known(const RealIndex& index, const RowShape& shape, std::span<const Value> values) {
    return std::all_of(index.columns.begin(), index.columns.end(), [&](const KeyColumn& column) {
        const std::size_t position = position_of(column, shape);
        const auto* text = position < values.size() ? std::get_if<std::u16string>(&values[position]) : nullptr;
        return text == nullptr || is_key_known(*text, shape.columns[position]);
    });
}

ByteVector make_index_key(const RealIndex& index, const RowShape& shape, std::span<const Value> values, KeyRule rule) {
    ByteVector key;
    static const Value kNothing;
    for (const KeyColumn& column : index.columns) {
        const std::size_t position = position_of(column, shape);
        const Value& value = position < values.size() ? values[position] : kNothing;
        append_key_column(key, shape.columns[position], value, column.ascending, rule);
    }
    return key;
}

// Texts of ASCII have the same key by every rule.
static bool has_plain_key(const RealIndex& index, const RowShape& shape, std::span<const Value> values) {
    return std::all_of(index.columns.begin(), index.columns.end(), [&](const KeyColumn& column) {
        const std::size_t position = position_of(column, shape);
        const auto* text = position < values.size() ? std::get_if<std::u16string>(&values[position]) : nullptr;
        return text == nullptr || std::all_of(text->begin(), text->end(), [](char16_t c) { return c < 0x80; });
    });
}

std::vector<ByteVector> former_index_keys(const RealIndex& index, const RowShape& shape,
                                          std::span<const Value> values) {
    std::vector<ByteVector> keys;
    if (has_plain_key(index, shape, values)) return keys;
    const ByteVector own = make_index_key(index, shape, values);
    for (const KeyRule rule : kFormerKeyRules) {
        ByteVector key = make_index_key(index, shape, values, rule);
        if (key != own && (keys.empty() || keys.back() != key)) keys.push_back(std::move(key));
    }
    return keys;
}

bool all_null_key(const RealIndex& index, const RowShape& shape, std::span<const Value> values) {
    return std::all_of(index.columns.begin(), index.columns.end(), [&](const KeyColumn& column) {
        const std::size_t position = position_of(column, shape);
        if (shape.columns[position].type == ColumnType::kBoolean) return false;
        return position >= values.size() || is_null(values[position]);
    });
}

}  // namespace jet
