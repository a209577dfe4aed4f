#include "afx/field_exchange.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include "jet/base/error.h"
#include "jet/storage/row_codec.h"
#include "jet/storage/text_codec.h"
#include "os/system.h"

namespace afx {
namespace {

// A text's stored form into its narrow one, cut at a NUL as everywhere that texts leave through C strings.
void read_text(jet::ByteSpan stored, ReadingMemory& memory, CString& member) {
    const std::size_t length = jet::ascii_length(stored);
    if (length == 0) return member.Empty();
    if (jet::copy_ascii(stored, member.GetBufferSetLength(static_cast<int>(length)))) return;
    jet::decode_text(stored, memory.text);
    member = os::narrow(memory.text).c_str();
}

// The same from a column whose texts are in a code page.
void read_narrow_text(jet::ByteSpan stored, const jet::ColumnDef& column, ReadingMemory& memory, CString& member) {
    const bool is_plain =
        std::all_of(stored.begin(), stored.end(), [](std::uint8_t byte) { return byte != 0 && byte < 0x80; });
    if (is_plain) {
        if (stored.empty()) return member.Empty();
        std::memcpy(member.GetBufferSetLength(static_cast<int>(stored.size())), stored.data(), stored.size());
        return;
    }
    jet::decode_column_text(stored, column, memory.text);
    member = os::narrow(memory.text).c_str();
}

template <class Member, class Address>
Member& as(Address* member) {
    return *static_cast<Member*>(member);
}

}  // namespace

void KnownTimes::begin_reading() {
    const std::time_t second = std::time(nullptr);
    const char* const set_zone = std::getenv("TZ");
    const std::string_view zone = set_zone != nullptr ? set_zone : "";
    if (second == second_ && zone == zone_) return;
    second_ = second;
    zone_ = zone;
    converted_ = 0;
    size_ = 0;
    entries_.reset();
}

// A small table is full soon, a large one is not worth making for few rows.
CTime KnownTimes::of(DATE days, CTime (*convert)(DATE)) {
    if (converted_ < kUnknownAtFirst) {
        ++converted_;
        return convert(days);
    }
    if (entries_ == nullptr) grow(kFewEntries);
    const auto bits = std::bit_cast<std::uint64_t>(days);
    const auto is_it = [&](const Entry& entry) { return entry.bits == bits && entry.convert == convert; };
    Entry* pair = pair_of(bits);
    if (is_it(pair[0])) return pair[0].time;
    if (is_it(pair[1])) return pair[1].time;
    if (size_<kEntries&& static_cast<std::size_t>(++converted_)> size_) {
        grow(kEntries);
        pair = pair_of(bits);
    }
    pair[1] = pair[0];
    pair[0] = {bits, convert, convert(days)};
    return pair[0].time;
}

KnownTimes::Entry* KnownTimes::pair_of(std::uint64_t bits) const {
    // The upper bits of the product depend on all those of a date.
    constexpr int kIndexBits = 11;
    static_assert(kEntries == std::size_t{1} << kIndexBits);
    return &entries_[static_cast<std::size_t>(bits * 0x9E3779B97F4A7C15u >> (64 - kIndexBits)) & (size_ - 2)];
}

void KnownTimes::grow(std::size_t entries) {
    const auto known = std::exchange(entries_, std::make_unique<Entry[]>(entries));
    const std::size_t known_size = std::exchange(size_, entries);
    for (std::size_t i = 0; i < known_size; ++i) {
        if (known[i].convert != nullptr) *pair_of(known[i].bits) = known[i];
    }
}

FieldExchange::FieldExchange(const FieldNames& names, const jet::TableDef* def,
                             std::span<const ExchangedMember> members)
    : members_(members.begin(), members.end()), columns_(def != nullptr ? def->columns.size() : 0) {
    fields_.reserve(members_.size());
    for (const ExchangedMember& member : members_) {
        Field field;
        field.member = &member;
        field.offset = static_cast<std::uint32_t>(member.offset);
        if (const auto position = names.find(member.column)) {
            field.field = static_cast<int>(*position);
            if (def != nullptr) {
                const jet::ColumnDef& column = def->columns.at(*position);
                field.way = way_of(column, member.type);
                field.place = column.place();
            }
        }
        fields_.push_back(field);
    }
}

FieldExchange::Way FieldExchange::way_of(const jet::ColumnDef& column, ExchangedMember::Type member) {
    using Type = ExchangedMember::Type;
    using Column = jet::ColumnType;
    struct Known {
        Column column;
        Type member;
        Way way;
    };
    static constexpr Known kKnown[] = {
        {Column::kText, Type::kText, Way::kText},           {Column::kMemo, Type::kText, Way::kMemo},
        {Column::kLong, Type::kInteger, Way::kLong},        {Column::kDate, Type::kTime, Way::kDate},
        {Column::kCurrency, Type::kAmount, Way::kCurrency},
    };
    for (const Known& known : kKnown) {
        if (known.column != column.type || known.member != member) continue;
        if (column.code_page == 0) return known.way;
        return known.way == Way::kText ? Way::kNarrowText : known.way == Way::kMemo ? Way::kNarrowMemo : known.way;
    }
    return Way::kByValue;
}

// The rarer ways. False where it has to go by value.
bool FieldExchange::read_field(const jet::RowView& row, const jet::TableDef& def, jet::ByteSpan stored,
                               ReadingMemory& memory, const Field& field, void* member) {
    const auto take_narrow = [&](jet::ByteSpan text) {
        const jet::ColumnDef& column = def.columns[static_cast<std::size_t>(field.field)];
        read_narrow_text(text, column, memory, as<CString>(member));
    };
    if (field.way == Way::kNarrowText) {
        take_narrow(stored);
        return true;
    }
    jet::Page page;
    const auto text = row.long_bytes(stored, page);
    if (!text) return false;
    if (field.way == Way::kMemo) {
        read_text(*text, memory, as<CString>(member));
    } else {
        take_narrow(*text);
    }
    return true;
}

void FieldExchange::read_null(const Field& field, void* member) {
    switch (field.way) {
        case Way::kLong: as<LONG>(member) = 0; return;
        case Way::kDate: as<CTime>(member) = CTime(LONG{-1}); return;
        case Way::kCurrency: as<float>(member) = 0; return;
        default: as<CString>(member).Empty();
    }
}

std::size_t FieldExchange::read(const jet::RowView& row, const jet::TableDef& def, ReadingMemory& memory,
                                std::size_t from, void* record) const {
    if (def.columns.size() != columns_) return from;
    const jet::RowReader& reader = row.reader();
    const Field* const end = fields_.data() + fields_.size();
    const Field* field = fields_.data() + from;
    const auto here = [&] { return static_cast<std::size_t>(field - fields_.data()); };
    for (; field != end; ++field) {
        if (field->way == Way::kByValue) return here();
        void* const member = static_cast<char*>(record) + field->offset;
        const auto stored = reader.stored(field->place);
        if (!stored) {
            read_null(*field, member);
            continue;
        }
        switch (field->way) {
            case Way::kText: read_text(*stored, memory, as<CString>(member)); break;
            case Way::kLong: as<LONG>(member) = jet::load_i32(*stored, 0); break;
            case Way::kDate:
                as<CTime>(member) = memory.times.of(jet::load_f64(*stored, 0), field->member->time_of);
                break;
            case Way::kCurrency: {
                CY amount{};
                amount.int64 = jet::load_i64(*stored, 0);
                as<float>(member) = field->member->amount_of(amount);
                break;
            }
            default:
                if (!read_field(row, def, *stored, memory, *field, member)) return here();
        }
    }
    return fields_.size();
}

int FieldExchange::field(std::size_t i) const {
    if (fields_[i].field < 0) {
        jet::fail(jet::errors::kNotInCollection, std::string("There is no field ") + members_[i].column + ".");
    }
    return fields_[i].field;
}

// False where it has to go by value: those that the column refuses.
bool FieldExchange::write_field(EditBuffer& into, const jet::ColumnDef& column, const Field& field,
                                const void* member) {
    if (column.is_autonumber()) return false;
    const auto position = static_cast<std::size_t>(field.field);
    switch (field.way) {
        case Way::kText:
        case Way::kMemo:
        case Way::kNarrowText:
        case Way::kNarrowMemo: return write_text(into, column, field, as<const CString>(member).GetString());
        case Way::kLong: into.set(position, std::int32_t{as<const LONG>(member)}); return true;
        case Way::kDate: {
            DATE days = 0;
            const bool is_date = field.member->days_of(as<const CTime>(member), days);
            into.set(position, is_date ? jet::Value(jet::Date{days}) : jet::Value());
            return true;
        }
        case Way::kCurrency: {
            const CY amount = field.member->stored_amount_of(as<const float>(member));
            into.set(position, jet::Currency{amount.int64});
            return true;
        }
        case Way::kByValue: break;
    }
    return false;
}

// ASCII, the same in every code page, goes as it is. The rest of a column in a code page goes by value: only that path
// knows what to write for a character that the code page lacks.
bool FieldExchange::write_text(EditBuffer& into, const jet::ColumnDef& column, const Field& field,
                               std::string_view text) {
    const auto position = static_cast<std::size_t>(field.field);
    const bool is_memo = field.way == Way::kMemo || field.way == Way::kNarrowMemo;
    if (jet::is_ascii(text)) {
        if (!is_memo && text.size() > column.most_characters()) return false;
        into.set_ascii(position, text);
        return true;
    }
    if (column.code_page != 0) return false;
    std::u16string wide = os::widen(text);
    if (!is_memo && wide.size() > column.most_characters()) return false;
    into.set(position, std::move(wide));
    return true;
}

std::size_t FieldExchange::write(EditBuffer& into, const jet::TableDef& def, std::size_t from,
                                 const void* record) const {
    for (; from < fields_.size(); ++from) {
        const Field& field = fields_[from];
        if (field.way == Way::kByValue) break;
        const jet::ColumnDef& column = def.columns.at(static_cast<std::size_t>(field.field));
        if (!write_field(into, column, field, static_cast<const char*>(record) + field.offset)) break;
    }
    return from;
}

const FieldExchange* TableFields::known(const void* list, std::size_t size) const {
    if (list != last_list_ || last_ == nullptr) {
        const auto found = exchanges_.find(list);
        last_list_ = list;
        last_ = found != exchanges_.end() ? &found->second : nullptr;
    }
    return last_ != nullptr && last_->size() == size ? last_ : nullptr;
}

const FieldExchange& TableFields::learn(const void* list, std::span<const ExchangedMember> members) const {
    return exchanges_.insert_or_assign(list, FieldExchange(names_, def_, members)).first->second;
}

}  // namespace afx
