#include "tools/order_key.h"

#include <bit>
#include <cmath>

#include "jet/base/jet4.h"
#include "jet/indexes/sort_key.h"
#include "jet/sql/scalar.h"

namespace tools {
namespace {

constexpr std::uint8_t kNull = 0;
constexpr std::uint8_t kValue = 1;

void append_integer(jet::ByteVector& to, std::int64_t number) {
    jet::append_be(to, static_cast<std::uint64_t>(number) ^ std::uint64_t{1} << 63, 8);
}

// Not-a-number stands before all numbers, and the two zeros are one.
void append_real(jet::ByteVector& to, double number) {
    if (std::isnan(number)) return jet::append_be(to, 0, 8);
    const auto bits = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number);
    const std::uint64_t sign = std::uint64_t{1} << 63;
    jet::append_be(to, (bits & sign) != 0 ? ~bits : bits | sign, 8);
}

// Bytes of any number: 00 becomes 00 FF, and 00 00 ends them.
void append_ended(jet::ByteVector& to, jet::ByteSpan bytes) {
    for (const std::uint8_t byte : bytes) {
        to.push_back(byte);
        if (byte == 0) to.push_back(0xFF);
    }
    to.insert(to.end(), 2, 0);
}

void append_text(jet::ByteVector& to, std::u16string_view text) {
    const std::size_t last = text.find_last_not_of(u' ');
    thread_local jet::ByteVector sections;
    sections.clear();
    jet::append_sections(sections, text.substr(0, last == std::u16string_view::npos ? 0 : last + 1));
    sections.push_back(jet::jet4::key::kEndOfText);
    append_ended(to, sections);
}

struct KeyWriter {
    jet::ByteVector& to;

    void operator()(jet::Null) const {}
    void operator()(const std::u16string& text) const { append_text(to, text); }
    void operator()(const std::vector<std::uint8_t>& bytes) const { append_ended(to, bytes); }
    void operator()(const jet::Guid& guid) const { jet::append_bytes(to, guid.bytes); }
    // As reals, which is how the engine compares all that are large; small ones of one column differ as reals as well.
    void operator()(const jet::Numeric& number) const { append_real(to, jet::sql::to_double(number)); }
    template <class Number>
    void operator()(const Number& number) const {
        const jet::sql::Scalar scalar = jet::sql::to_scalar(jet::Value(number));
        if (scalar.kind == jet::sql::Scalar::Kind::kReal) {
            append_real(to, scalar.real);
        } else {
            append_integer(to, scalar.integer);
        }
    }
};

}  // namespace

void append_order_key(jet::ByteVector& to, const jet::Value& value, bool descending) {
    const std::size_t begin = to.size();
    to.push_back(jet::is_null(value) ? kNull : kValue);
    std::visit(KeyWriter{to}, value);
    if (!descending) return;
    for (std::size_t i = begin; i < to.size(); ++i) to[i] = static_cast<std::uint8_t>(~to[i]);
}

}  // namespace tools
