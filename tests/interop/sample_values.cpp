#include "tests/interop/sample_values.h"

#include <algorithm>

#include "jet/base/code_page.h"

namespace interop {

namespace {

std::vector<std::uint8_t> bytes_of(std::uint32_t number, std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    // Without zeros, so that every reader prints all of them.
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(1 + (number * 31 + i * 7) % 255);
    return bytes;
}

jet::Guid guid_of(std::uint32_t number) {
    jet::Guid guid;
    for (std::size_t i = 0; i < guid.bytes.size(); ++i)
        guid.bytes[i] = static_cast<std::uint8_t>(number * 17 + i * 13 + 1);
    return guid;
}

// At most four digits, up to the column's precision, with the column's own scale.
jet::Numeric numeric_of(const jet::ColumnDef& column, std::uint32_t number) {
    std::uint32_t limit = 1;
    for (int digit = 0; digit < std::min<int>(column.precision, 4); ++digit) limit *= 10;
    jet::Numeric value;
    value.scale = column.scale;
    const std::uint32_t magnitude = number % limit;
    value.bytes[0] = number % 2 && magnitude != 0 ? 0x80 : 0;
    // The last of the four words is the least significant one.
    value.bytes[13] = static_cast<std::uint8_t>(magnitude);
    value.bytes[14] = static_cast<std::uint8_t>(magnitude >> 8);
    return value;
}

// A code page lacks most characters.
std::u16string as_stored(const jet::ColumnDef& column, const std::u16string& text) {
    if (column.code_page == 0) return text;
    std::u16string stored;
    jet::decode_narrow(jet::encode_narrow(text, column.code_page), column.code_page, stored);
    return stored;
}

jet::Value text_for(const jet::ColumnDef& column, std::uint32_t number, std::size_t characters) {
    const std::size_t most = column.most_characters();
    std::u16string text = text_of(number, std::min(characters, most));
    // Text of fixed length is padded with blanks.
    if (column.is_fixed()) text.resize(most, u' ');
    return as_stored(column, text);
}

}  // namespace

std::u16string text_of(std::uint32_t number, std::size_t characters) {
    static constexpr std::u16string_view kPlain =
        u"The quick \u00e4\u00f6\u00fc\u00df fox, jumps \u00c4\u00d6\u00dc over; 'the' lazy dog - ";
    static constexpr std::u16string_view kWide = u"\u20ac \u4e00\u0416 \u03b1 wide text, ";
    const std::string digits = std::to_string(number);
    std::u16string text(digits.begin(), digits.end());
    const std::u16string_view filler = number % 2 ? kWide : kPlain;
    while (text.size() < characters) text += filler.substr(0, characters - text.size());
    return text.substr(0, characters);
}

jet::Value value_for(const jet::ColumnDef& column, std::uint32_t number) {
    const auto signed_number = static_cast<std::int32_t>(number);
    const std::int32_t sign = number % 3 == 0 ? -1 : 1;
    switch (column.type) {
        case jet::ColumnType::kBoolean: return number % 2 == 0;
        case jet::ColumnType::kByte: return static_cast<std::uint8_t>(number);
        case jet::ColumnType::kInteger: return static_cast<std::int16_t>(sign * signed_number % 32768);
        case jet::ColumnType::kLong: return sign * signed_number * 1000;
        case jet::ColumnType::kCurrency: return jet::Currency{sign * std::int64_t{number} * 9'876'543'210'123};
        case jet::ColumnType::kSingle: return static_cast<float>(sign * 0.37 * number);
        case jet::ColumnType::kDouble: return sign * 1e9 / (number + 1);
        // From 1970 on, with times of whole seconds.
        case jet::ColumnType::kDate: return jet::Date{25569 + number * 31 + (number * 7919 % 86400) / 86400.0};
        case jet::ColumnType::kBinary:
        case jet::ColumnType::kFixedBinary: {
            const bool whole = column.is_fixed() || column.type == jet::ColumnType::kFixedBinary;
            return bytes_of(number,
                            whole ? column.length_bytes : std::min<std::size_t>(column.length_bytes, 8 + number % 9));
        }
        case jet::ColumnType::kText: return text_for(column, number, 6 + number % 8);
        case jet::ColumnType::kMemo: {
            std::size_t characters = kMemoLengths[number % kMemoLengths.size()];
            if (characters == 0 && !column.allow_zero_length) characters = 2;
            return as_stored(column, text_of(number, characters));
        }
        case jet::ColumnType::kOle: return bytes_of(number, 2 * kMemoLengths[number % kMemoLengths.size()]);
        case jet::ColumnType::kGuid: return guid_of(number);
        case jet::ColumnType::kNumeric: return numeric_of(column, number);
        case jet::ColumnType::kComplexId: return jet::Null{};
    }
    return jet::Null{};
}

jet::Value longest_value_for(const jet::ColumnDef& column, std::uint32_t number) {
    if (column.is_fixed()) return jet::Null{};
    if (column.type == jet::ColumnType::kText) return text_for(column, number, column.most_characters());
    if (column.type == jet::ColumnType::kBinary) return bytes_of(number, column.length_bytes);
    return jet::Null{};
}

}  // namespace interop
