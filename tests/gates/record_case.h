// A record, its table and its methods, as a test writes them out: the description that the checks of
// record_round_trip.h run on. It is deliberately independent of the component's own declarations.
//
//     const RecordCase<IDBgate1, MixInfo> kMixes{
//         .table = "MixFiles",
//         .key = &MixInfo::RecID,
//         .first = &IDBgate1::EnumFirstMix, ..., .remove = &IDBgate1::DeleteMix,
//         .members = {member::integer("SongID", &MixInfo::SongID), member::text("Descript", &MixInfo::Descript),
//                     member::memo("Path", &MixInfo::Path), member::integer("ExData", &MixInfo::ExData)},
//         .parents = {&MixInfo::SongID},
//         .opened_by = "SongID",
//         .read_order = {"SongID", "Descript", "Path", "ExData"},
//         .write_order = {"SongID", "Descript", "Path", "ExData"}};
//
// Values are made from the member's position and a variant from 1 on, so that no two members of a record,
// and no two variants of a member, are alike.
#pragma once

#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <ostream>
#include <string>
#include <variant>
#include <vector>

#include "jet/base/types.h"

namespace testing_support {

// How a member is stored.
enum class Store { kInteger, kText, kMemo, kDate, kMinutes, kCurrency, kSingle, kNowhere };

template <class Record>
struct Member {
    Store store;
    const char* column;  // of the table; for kNowhere a name for messages
    std::variant<LONG Record::*, CString Record::*, CTime Record::*, float Record::*> place;
    const char* sentinel = "untouched";  // of a text that is stored nowhere
};

namespace member {

template <class R>
Member<R> integer(const char* column, LONG R::*place) {
    return {Store::kInteger, column, place};
}
// At most 255 characters.
template <class R>
Member<R> text(const char* column, CString R::*place) {
    return {Store::kText, column, place};
}
template <class R>
Member<R> memo(const char* column, CString R::*place) {
    return {Store::kMemo, column, place};
}
template <class R>
Member<R> date(const char* column, CTime R::*place) {
    return {Store::kDate, column, place};
}
// A date whose hours and minutes are kept.
template <class R>
Member<R> minutes(const char* column, CTime R::*place) {
    return {Store::kMinutes, column, place};
}
template <class R>
Member<R> currency(const char* column, float R::*place) {
    return {Store::kCurrency, column, place};
}
template <class R>
Member<R> single(const char* column, float R::*place) {
    return {Store::kSingle, column, place};
}
// Neither read nor written by any operation.
template <class Place, class R>
Member<R> untouched(const char* name, Place R::*place, const char* sentinel = "untouched") {
    return {Store::kNowhere, name, place, sentinel};
}

}  // namespace member

// What Add does with a name that is there already.
enum class Adds {
    kAlways,
    kNamesOnce,  // nothing, and answers S_OK
};

template <class Gate, class Record>
struct RecordCase {
    using Method = HRESULT (STDMETHODCALLTYPE Gate::*)(LONG_PTR);
    using KeyMethod = HRESULT (STDMETHODCALLTYPE Gate::*)(LONG);

    const char* table;
    const char* key_column = "RecID";
    LONG Record::*key;
    Method first;
    Method next;
    Method find;
    Method add;
    Method update;
    Method remove = nullptr;  // one of the two; on Windows their types are the same
    KeyMethod remove_key = nullptr;
    std::vector<Member<Record>> members;       // all but the key
    std::vector<LONG Record::*> parents = {};  // the same in every variant and given to the enumeration
    const char* opened_by = nullptr;           // the column that picks the rows Add opens; null: the whole table
    Adds adds = Adds::kAlways;
    std::vector<const char*> read_order = {};  // columns but the key
    std::vector<const char*> write_order = {};
    std::function<void(Record&)> ask = nullptr;  // what else an enumeration has to be given
    const char* file = "sldb.mdb";
    std::function<void(const std::string& folder)> prepare = nullptr;  // of the new files, while they are closed

    HRESULT call_remove(Gate& gate, Record& record) const {
        if (remove_key != nullptr) return (gate.*remove_key)(record.*key);
        return (gate.*remove)(reinterpret_cast<LONG_PTR>(&record));
    }

    bool is_parent(LONG Record::*place) const {
        for (LONG Record::*const parent : parents) {
            if (parent == place) return true;
        }
        return false;
    }
};

inline constexpr LONG kParentValue = 77;

// ---- The values of a member; `position` is the member's place in the list

inline LONG integer_value(std::size_t position, int variant) {
    const LONG value = 1000 * variant + static_cast<LONG>(position);
    return variant == 2 ? -value : value;
}
inline std::string text_value(const char* column, Store store, int variant) {
    std::string text = std::string(column) + " " + std::to_string(variant) + " 'a' & b";
    if (store == Store::kMemo) text += "\r\n" + std::string(variant == 2 ? 5000 : 300, 'm');
    return text;
}
inline std::chrono::year_month_day day_value(std::size_t position, int variant) {
    const unsigned step = static_cast<unsigned>(position);
    return std::chrono::year(2003 + variant) / (1 + step % 12) / (1 + step % 28);
}
inline CTime time_value(std::size_t position, int variant, int hour, int minute, int second) {
    const auto day = day_value(position, variant);
    return CTime(static_cast<int>(day.year()), static_cast<int>(static_cast<unsigned>(day.month())),
                 static_cast<int>(static_cast<unsigned>(day.day())), hour, minute, second);
}
// Of variant 2 a negative one with a fraction, whose sign a column of currency deliberately loses.
inline float amount_value(Store store, std::size_t position, int variant, bool stored) {
    const float whole = 100.0f * static_cast<float>(variant) + static_cast<float>(position);
    if (variant != 2) return whole + 0.25f;
    return stored && store == Store::kCurrency ? -whole + 0.25f : -whole - 0.25f;
}
inline constexpr int kHour = 14;
inline constexpr int kMinute = 35;
inline constexpr int kSecond = 10;

// Which form of a value: what the caller puts in, or what comes back from the table.
enum class Form { kGiven, kStored };

// Sets one member of a record to its value.
template <class Gate, class Record>
void put(const RecordCase<Gate, Record>& table, Record& record, std::size_t position, int variant,
         Form form = Form::kGiven) {
    const Member<Record>& member = table.members[position];
    const bool nowhere = member.store == Store::kNowhere;
    if (const auto* number = std::get_if<LONG Record::*>(&member.place)) {
        const LONG value = nowhere ? 0x5A5A5A5A : integer_value(position, variant);
        record.** number = table.is_parent(*number) ? kParentValue : value;
    } else if (const auto* text = std::get_if<CString Record::*>(&member.place)) {
        record.** text = nowhere ? member.sentinel : text_value(member.column, member.store, variant).c_str();
    } else if (const auto* time = std::get_if<CTime Record::*>(&member.place)) {
        if (form == Form::kGiven || nowhere) {
            record.** time = time_value(position, nowhere ? 1 : variant, kHour, kMinute, kSecond);
        } else if (member.store == Store::kMinutes) {
            record.** time = time_value(position, variant, kHour, kMinute, 0);
        } else {
            record.** time = time_value(position, variant, 0, 0, 0);
        }
    } else {
        record.*std::get<float Record::*>(member.place) =
            amount_value(member.store, position, nowhere ? 1 : variant, form == Form::kStored);
    }
}

// A record with every member set.
template <class Gate, class Record>
Record filled(const RecordCase<Gate, Record>& table, LONG key, int variant, Form form = Form::kGiven) {
    Record record;
    record.*table.key = key;
    for (std::size_t i = 0; i < table.members.size(); ++i) put(table, record, i, variant, form);
    return record;
}

// What an enumeration is given: nothing set but the parents and what is stored nowhere.
template <class Gate, class Record>
Record question(const RecordCase<Gate, Record>& table) {
    Record record;
    for (std::size_t i = 0; i < table.members.size(); ++i) {
        if (table.members[i].store == Store::kNowhere) put(table, record, i, 1);
    }
    for (LONG Record::*const parent : table.parents) record.*parent = kParentValue;
    if (table.ask) table.ask(record);
    return record;
}

template <class Record>
bool same_member(const Member<Record>& member, const Record& a, const Record& b) {
    return std::visit([&](auto place) { return a.*place == b.*place; }, member.place);
}

template <class Record>
std::string member_text(const Member<Record>& member, const Record& record) {
    std::ostringstream out;
    if (const auto* number = std::get_if<LONG Record::*>(&member.place)) out << record.**number;
    if (const auto* text = std::get_if<CString Record::*>(&member.place)) out << (record.**text).GetString();
    if (const auto* time = std::get_if<CTime Record::*>(&member.place)) out << (record.**time).GetTime();
    if (const auto* amount = std::get_if<float Record::*>(&member.place)) out << record.**amount;
    return out.str();
}

// Every member, the key included.
template <class Gate, class Record>
void expect_same(const RecordCase<Gate, Record>& table, const Record& record, const Record& expected) {
    EXPECT_EQ(record.*table.key, expected.*table.key) << table.key_column;
    for (const Member<Record>& member : table.members) {
        EXPECT_TRUE(same_member(member, record, expected))
            << member.column << " is " << member_text(member, record) << ", not " << member_text(member, expected);
    }
}

// ---- The same values as the file holds them

inline jet::ColumnType column_type(Store store) {
    switch (store) {
        case Store::kText: return jet::ColumnType::kText;
        case Store::kMemo: return jet::ColumnType::kMemo;
        case Store::kDate:
        case Store::kMinutes: return jet::ColumnType::kDate;
        case Store::kCurrency: return jet::ColumnType::kCurrency;
        case Store::kSingle: return jet::ColumnType::kSingle;
        case Store::kInteger:
        case Store::kNowhere: break;
    }
    return jet::ColumnType::kLong;
}

template <class Gate, class Record>
jet::Value file_value(const RecordCase<Gate, Record>& table, std::size_t position, int variant) {
    const Member<Record>& member = table.members[position];
    const float amount = amount_value(member.store, position, variant, true);
    switch (member.store) {
        case Store::kInteger: {
            const bool parent = table.is_parent(std::get<LONG Record::*>(member.place));
            return std::int32_t{parent ? kParentValue : integer_value(position, variant)};
        }
        case Store::kText:
        case Store::kMemo: return jet::from_utf8(text_value(member.column, member.store, variant));
        case Store::kDate:
        case Store::kMinutes: {
            const auto zero = std::chrono::sys_days(std::chrono::year(1899) / 12 / 30);
            const auto days = std::chrono::sys_days(day_value(position, variant)) - zero;
            const double time = member.store == Store::kMinutes ? (kHour * 60 + kMinute) / 1440.0 : 0;
            return jet::Date{static_cast<double>(days.count()) + time};
        }
        case Store::kCurrency: return jet::Currency{std::llround(amount * 10000.0)};
        case Store::kSingle: return amount;
        case Store::kNowhere: break;
    }
    return {};
}

inline std::string value_text(const jet::Value& value) {
    std::ostringstream out;
    if (jet::is_null(value)) out << "Null";
    if (const auto* number = std::get_if<std::int32_t>(&value)) out << *number;
    if (const auto* text = std::get_if<std::u16string>(&value)) out << jet::to_utf8(*text);
    if (const auto* date = std::get_if<jet::Date>(&value)) out << "day " << date->days;
    if (const auto* amount = std::get_if<jet::Currency>(&value)) out << "currency " << amount->ten_thousandths;
    if (const auto* single = std::get_if<float>(&value)) out << "single " << *single;
    return out.str();
}

// Times of day go through a count of seconds: equal to a millisecond.
inline bool same_value(const jet::Value& a, const jet::Value& b) {
    const auto* const day_a = std::get_if<jet::Date>(&a);
    const auto* const day_b = std::get_if<jet::Date>(&b);
    if (day_a != nullptr && day_b != nullptr) return std::abs(day_a->days - day_b->days) < 1e-8;
    return a == b;
}

}  // namespace testing_support
