#include "tools/rescue/found_row.h"

#include <algorithm>
#include <cmath>

#include "jet/base/format.h"
#include "jet/storage/text_codec.h"

namespace tools {
namespace {

namespace lv = jet::jet4::long_value;
using jet::ByteSpan;
using jet::ColumnDef;
using jet::ColumnType;
using jet::TableDef;

constexpr std::size_t kJump = 256;
constexpr std::uint8_t kNoJump = 0xFF;
constexpr double kFirstDate = -657434;  // 100-01-01
constexpr double kLastDate = 2958466;   // the day after 9999-12-31

// Where things stand in a row.
struct Shape {
    std::size_t count_bytes = 2;
    std::size_t columns = 0;
    ByteSpan mask;
    std::size_t fixed_end = 0;
    std::vector<std::size_t> offsets;  // of the variable values, and their end
    bool is_exact = true;

    bool has(const ColumnDef& column) const {
        return column.number < columns && (mask[column.number / 8u] >> (column.number % 8) & 1) != 0;
    }
};

bool is_stored_fixed(const ColumnDef& column) { return column.is_fixed() && column.type != ColumnType::kBoolean; }

// The end of the fixed area of a row that knows the first `columns` columns.
std::size_t fixed_area_end(const TableDef& def, std::size_t columns) {
    const std::size_t count_bytes = def.format->data.row_number_bytes;
    std::size_t end = count_bytes;
    for (const ColumnDef& column : def.columns) {
        if (!is_stored_fixed(column) || column.number >= columns) continue;
        end = std::max<std::size_t>(end, count_bytes + column.fixed_offset + column.length_bytes);
    }
    return end;
}

// Offsets of one byte, with the jumps between them.
bool find_short_offsets(ByteSpan row, const TableDef& def, Shape& shape, std::size_t& table_at) {
    const std::size_t end = row.size() - shape.mask.size();
    const std::size_t jumps = (row.size() - 1) / kJump;
    const std::size_t count = row[end - 1];
    const std::size_t bytes = count + 1 + jumps + 1;
    if (count > def.variable_columns || end < 1 + bytes) return false;
    table_at = end - bytes;
    const std::size_t jumps_at = end - 1 - jumps;
    for (std::size_t i = 0; i <= count; ++i) {
        std::size_t offset = row[jumps_at - 1 - i];
        for (const std::uint8_t first : row.subspan(jumps_at, jumps)) {
            if (first != kNoJump && first <= i) offset += kJump;
        }
        shape.offsets.push_back(offset);
    }
    for (std::size_t k = 1; k <= jumps; ++k) {
        const auto first = std::lower_bound(shape.offsets.begin(), shape.offsets.end(), kJump * k);
        const std::size_t right =
            first == shape.offsets.end() ? kNoJump : static_cast<std::size_t>(first - shape.offsets.begin());
        if (row[jumps_at + jumps - k] != right) shape.is_exact = false;
    }
    return true;
}

bool find_offsets(ByteSpan row, const TableDef& def, Shape& shape, std::size_t& table_at) {
    const std::size_t end = row.size() - shape.mask.size();
    if (end < 2 + 4) return false;
    const std::size_t count_at = end - 2;
    const std::size_t count = jet::load_u16(row, count_at);
    if (count > def.variable_columns || count_at < 2 + 2 * (count + 1)) return false;
    table_at = count_at - 2 * (count + 1);
    for (std::size_t i = 0; i <= count; ++i) shape.offsets.push_back(jet::load_u16(row, count_at - 2 * (i + 1)));
    return true;
}

bool find_variable_part(ByteSpan row, const TableDef& def, Shape& shape) {
    std::size_t table_at = 0;
    const bool is_short = shape.count_bytes == 1;
    if (!(is_short ? find_short_offsets(row, def, shape, table_at) : find_offsets(row, def, shape, table_at))) {
        return false;
    }
    std::size_t last = shape.count_bytes;
    for (const std::size_t offset : shape.offsets) {
        if (offset < last || offset > table_at) return false;
        last = offset;
    }
    shape.fixed_end = shape.offsets.front();
    const std::size_t count = shape.offsets.size() - 1;
    const bool is_complete = shape.columns < def.max_columns || count == def.variable_columns;
    shape.is_exact = shape.is_exact && last == table_at && is_complete;
    return true;
}

bool find_shape(ByteSpan row, const TableDef& def, Shape& shape) {
    if (row.size() < jet::jet4::data::kMinRow || row.size() > def.format->page_size) return false;
    shape.count_bytes = def.format->data.row_number_bytes;
    shape.columns = columns_of_row(row, def);
    if (shape.columns == 0 || shape.columns > def.max_columns) return false;
    const std::size_t mask_bytes = (shape.columns + 7) / 8;
    if (row.size() < shape.count_bytes + mask_bytes) return false;
    shape.mask = row.last(mask_bytes);
    shape.fixed_end = row.size() - mask_bytes;
    const bool has_variable = std::any_of(def.columns.begin(), def.columns.end(), [&](const ColumnDef& column) {
        return !column.is_fixed() && column.number < shape.columns;
    });
    if (has_variable && !find_variable_part(row, def, shape)) return false;
    const std::size_t expected = fixed_area_end(def, shape.columns);
    if (shape.fixed_end < expected) {
        // Columns that are Null at the end of the fixed area may have been left away.
        shape.is_exact = false;
        for (const ColumnDef& column : def.columns) {
            if (!is_stored_fixed(column) || !shape.has(column)) continue;
            if (shape.count_bytes + column.fixed_offset + column.length_bytes > shape.fixed_end) return false;
        }
    } else if (has_variable && shape.fixed_end != expected && shape.columns == def.max_columns) {
        shape.is_exact = false;
    }
    // A row of nothing but fixed columns has no more bytes than these, or four.
    if (!has_variable && row.size() != std::max(expected + mask_bytes, jet::jet4::data::kMinRow))
        shape.is_exact = false;
    return true;
}

bool is_text(ByteSpan bytes, const ColumnDef& column) {
    const std::size_t most_characters = column.most_characters();
    if (column.code_page != 0) return bytes.size() <= most_characters;
    const bool is_short = bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE;
    if (is_short) return jet::decode_text(bytes).size() <= most_characters;
    return bytes.size() % 2 == 0 && bytes.size() <= 2 * most_characters;
}

bool is_long_reference(ByteSpan bytes) {
    if (bytes.empty()) return true;
    if (bytes.size() < lv::kReference) return false;
    const std::uint32_t head = jet::load_u32(bytes, 0);
    const std::uint32_t length = head & lv::kLengthMask;
    switch (head & lv::kKindMask) {
        case lv::kInline: return bytes.size() - lv::kReference == length;
        case lv::kSingle: return length <= jet::kJet4.page_size && bytes.size() == lv::kReference;
        case 0: return bytes.size() == lv::kReference;
        default: return false;
    }
}

bool is_value(ByteSpan bytes, const ColumnDef& column) {
    switch (column.type) {
        case ColumnType::kDate: {
            const double days = jet::load_f64(bytes, 0);
            return days > kFirstDate - 1 && days < kLastDate;
        }
        case ColumnType::kSingle: return std::isfinite(jet::load_f32(bytes, 0));
        case ColumnType::kDouble: return std::isfinite(jet::load_f64(bytes, 0));
        case ColumnType::kText: return is_text(bytes, column);
        case ColumnType::kMemo:
        case ColumnType::kOle: return is_long_reference(bytes);
        case ColumnType::kBinary: return bytes.size() <= column.length_bytes;
        default: return true;
    }
}

constexpr std::uint8_t kFalseTrue[] = {0, 1};

std::optional<ByteSpan> find_value(ByteSpan row, const Shape& shape, const ColumnDef& column) {
    if (column.type == ColumnType::kBoolean) return ByteSpan(kFalseTrue).subspan(shape.has(column) ? 1 : 0, 1);
    if (!shape.has(column)) return std::nullopt;
    if (column.is_fixed()) return row.subspan(shape.count_bytes + column.fixed_offset, column.length_bytes);
    if (column.variable_index + 1u >= shape.offsets.size()) return std::nullopt;
    const std::size_t begin = shape.offsets[column.variable_index];
    return row.subspan(begin, shape.offsets[column.variable_index + 1u] - begin);
}

}  // namespace

std::size_t columns_of_row(ByteSpan row, const TableDef& def) {
    return def.format->data.row_number_bytes == 1 ? jet::load_u8(row, 0) : jet::load_u16(row, 0);
}

FoundRow take_apart(ByteSpan bytes, const TableDef& def) {
    FoundRow row;
    Shape shape;
    if (!find_shape(bytes, def, shape)) return row;
    row.fit = shape.is_exact ? Fit::kExact : Fit::kLoose;
    row.stored.resize(def.columns.size());
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        const ColumnDef& column = def.columns[i];
        const auto value = find_value(bytes, shape, column);
        if (value && !is_value(*value, column)) {
            row.bad_columns.push_back(column.name);
            row.fit = Fit::kLoose;
            continue;
        }
        // The engine numbers every row.
        if (!value && column.is_autonumber() && shape.columns > column.number) return {};
        row.stored[i] = value;
    }
    return row;
}

std::optional<std::size_t> find_row_border(ByteSpan page, std::size_t begin, std::size_t end, const TableDef& def,
                                           bool one_row) {
    std::optional<std::size_t> border;
    for (std::size_t at = begin; at + jet::jet4::data::kMinRow <= end; ++at) {
        if (take_apart(page.subspan(at, end - at), def).fit != Fit::kExact) continue;
        const bool fits = one_row || at == begin || take_apart(page.subspan(begin, at - begin), def).fit == Fit::kExact;
        if (!fits) continue;
        if (border) return std::nullopt;
        border = at;
    }
    return border;
}

}  // namespace tools
