// What holds for every table that a gate serves by the six operations, checked through the class factory of
// a loaded component and, where the tables themselves count, in the closed file.
//
//     TEST(MixesGate, members_make_the_round_trip) { expect_round_trip(kMixes); }
//     TEST(MixesGate, columns_hold_the_members_of_their_name) { expect_columns(kMixes); }
//     TEST(MixesGate, failure_leaves_the_record_alone) { expect_failures(kMixes); }
//     TEST(MixesGate, mappings_go_in_their_order) { expect_orders(kMixes); }
//     TEST(MixesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kMixes); }
#pragma once

#include <algorithm>
#include <map>
#include <string>

#include "tests/frame/gate_host.h"
#include "tests/gates/closed_file.h"
#include "tests/gates/record_case.h"

namespace testing_support {

// A component in a folder of its own with a gate whose databases are open.
template <class Gate>
class OpenGate {
public:
    // `prepare` is called with the closed files' folder.
    explicit OpenGate(const std::function<void(const std::string& folder)>& prepare = nullptr)
        : gate_(host_.create<Gate>()) {
        EXPECT_EQ(gate_->OpenDB(), S_OK);
        if (prepare) while_closed([&] { prepare(host_.folder()); });
    }

    Gate& operator*() const { return *gate_; }
    Gate* operator->() const { return gate_.get(); }
    const GateHost& host() const { return host_; }
    std::string file(const std::string& name) const { return host_.file(name); }

    // Runs `look` while the files are closed.
    template <class Look>
    void while_closed(Look&& look) {
        ASSERT_EQ(gate_->CloseDB(), S_OK);
        look();
        ASSERT_EQ(gate_->OpenDB(), S_OK);
    }

private:
    GateHost host_;
    ComPtr<Gate> gate_;
};

template <class Gate, class Record>
HRESULT call(Gate& gate, HRESULT (STDMETHODCALLTYPE Gate::*method)(LONG_PTR), Record& record) {
    return (gate.*method)(address_of(record));
}

inline constexpr LONG kUnknownKey = 987654;
inline constexpr LONG kNoKey = -5;

// Adds a row of that variant; its key.
template <class Gate, class Record>
LONG add_variant(const RecordCase<Gate, Record>& table, Gate& gate, int variant) {
    Record record = filled(table, kNoKey, variant);
    EXPECT_EQ(call(gate, table.add, record), S_OK);
    const LONG key = record.*table.key;
    EXPECT_GT(key, 0);
    expect_same(table, record, filled(table, key, variant));  // the key, and only the key, has changed
    return key;
}

template <class Gate, class Record>
void expect_found(const RecordCase<Gate, Record>& table, Gate& gate, LONG key, int variant, int before) {
    Record record = filled(table, key, before);
    EXPECT_EQ(call(gate, table.find, record), S_OK);
    expect_same(table, record, filled(table, key, variant, Form::kStored));
}

// Add, find, both steps of the enumeration, update and delete, every member each time.
template <class Gate, class Record>
void expect_round_trip(const RecordCase<Gate, Record>& table) {
    OpenGate<Gate> gate(table.prepare);
    const LONG a = add_variant(table, *gate, 1);
    const LONG b = add_variant(table, *gate, 2);
    EXPECT_EQ(b, a + 1);
    expect_found(table, *gate, a, 1, 3);
    expect_found(table, *gate, b, 2, 3);

    Record record = question(table);
    ASSERT_EQ(call(*gate, table.first, record), S_OK);
    expect_same(table, record, filled(table, a, 1, Form::kStored));
    record = filled(table, kNoKey, 3);
    ASSERT_EQ(call(*gate, table.next, record), S_OK);
    expect_same(table, record, filled(table, b, 2, Form::kStored));
    record = filled(table, kNoKey, 3);
    EXPECT_EQ(call(*gate, table.next, record), E_FAIL);
    EXPECT_EQ(call(*gate, table.next, record), E_FAIL);
    expect_same(table, record, filled(table, kNoKey, 3));

    record = filled(table, b, 3);
    EXPECT_EQ(call(*gate, table.update, record), S_OK);
    expect_same(table, record, filled(table, b, 3));
    expect_found(table, *gate, b, 3, 1);
    expect_found(table, *gate, a, 1, 3);

    record = filled(table, a, 3);
    EXPECT_EQ(table.call_remove(*gate, record), S_OK);
    expect_same(table, record, filled(table, a, 3));
    EXPECT_EQ(call(*gate, table.find, record), E_FAIL);
    EXPECT_EQ(table.call_remove(*gate, record), E_FAIL);
    expect_found(table, *gate, b, 3, 1);
    EXPECT_EQ(add_variant(table, *gate, 1), b + 1);
}

// The columns of a row that were written up to `end` hold `variant`, the others `rest`; 0 stands for Null.
template <class Gate, class Record>
void expect_row(const RecordCase<Gate, Record>& table, const ClosedRow& row, int variant,
                const std::vector<const char*>& written, int rest) {
    const auto is_written = [&](const std::string& column) {
        return std::find(written.begin(), written.end(), column) != written.end();
    };
    std::map<std::string, std::size_t> positions;
    for (std::size_t i = 0; i < table.members.size(); ++i) {
        if (table.members[i].store != Store::kNowhere) positions[table.members[i].column] = i;
    }
    for (const auto& [name, column] : row) {
        if (name == table.key_column) continue;
        const auto position = positions.find(name);
        jet::Value expected;
        if (position != positions.end()) {
            const int held = is_written(name) ? variant : rest;
            if (held != 0) expected = file_value(table, position->second, held);
            EXPECT_EQ(column.type, column_type(table.members[position->second].store)) << name;
        }
        EXPECT_TRUE(same_value(column.value, expected))
            << name << " holds " << value_text(column.value) << ", not " << value_text(expected);
    }
}

// Every column of the file holds the member of its name, and columns without a member hold Null.
template <class Gate, class Record>
void expect_columns(const RecordCase<Gate, Record>& table) {
    OpenGate<Gate> gate(table.prepare);
    const LONG key = add_variant(table, *gate, 1);
    const LONG changed = add_variant(table, *gate, 3);
    Record record = filled(table, changed, 2);
    ASSERT_EQ(call(*gate, table.update, record), S_OK);
    gate.while_closed([&] {
        const auto rows = rows_of(gate.file(table.file), table.table, table.key_column);
        for (const Member<Record>& member : table.members) {
            const std::size_t columns = member.store == Store::kNowhere ? 0 : 1;
            EXPECT_EQ(rows.at(key).count(member.column), columns) << member.column;
        }
        expect_row(table, rows.at(key), 1, table.write_order, 0);
        expect_row(table, rows.at(changed), 2, table.write_order, 0);
    });
}

// Unknown keys, null records, a closed database and a gate that was never opened.
template <class Gate, class Record>
void expect_failures(const RecordCase<Gate, Record>& table) {
    OpenGate<Gate> gate(table.prepare);
    Record record = filled(table, kNoKey, 1);
    EXPECT_EQ(call(*gate, table.next, record), E_FAIL);  // no enumeration has begun
    record = question(table);
    EXPECT_EQ(call(*gate, table.first, record), E_FAIL);  // an empty table
    expect_same(table, record, question(table));
    EXPECT_EQ(call(*gate, table.next, record), E_FAIL);
    EXPECT_EQ(call(*gate, table.next, record), E_FAIL);

    const LONG key = add_variant(table, *gate, 1);
    record = filled(table, kUnknownKey, 2);
    EXPECT_EQ(call(*gate, table.find, record), E_FAIL);
    EXPECT_EQ(call(*gate, table.update, record), E_FAIL);
    EXPECT_EQ(table.call_remove(*gate, record), E_FAIL);
    expect_same(table, record, filled(table, kUnknownKey, 2));
    for (const auto method : {table.first, table.next, table.find, table.add, table.update}) {
        EXPECT_EQ((*gate.*method)(0), E_FAIL);
    }
    if (table.remove != nullptr) {
        EXPECT_EQ((*gate.*table.remove)(0), E_FAIL);
    }
    expect_found(table, *gate, key, 1, 2);

    record = question(table);
    EXPECT_EQ(call(*gate, table.first, record), S_OK);
    ASSERT_EQ(gate->CloseDB(), S_OK);
    const ComPtr<Gate> fresh = gate.host().template create<Gate>();
    for (Gate* const closed : {&*gate, fresh.get()}) {
        record = filled(table, key, 2);
        for (const auto method : {table.first, table.next, table.find, table.add, table.update}) {
            EXPECT_EQ(call(*closed, method, record), E_FAIL);
        }
        EXPECT_EQ(table.call_remove(*closed, record), E_FAIL);
        expect_same(table, record, filled(table, key, 2));
    }
    ASSERT_EQ(gate->OpenDB(), S_OK);
    EXPECT_EQ(call(*gate, table.next, record), E_FAIL);  // the enumeration ended with the database
    expect_found(table, *gate, key, 1, 2);
}

// How many members are stored, which is how long an order has to be.
template <class Gate, class Record>
std::ptrdiff_t stored_members(const RecordCase<Gate, Record>& table) {
    return std::count_if(table.members.begin(), table.members.end(),
                         [](const auto& member) { return member.store != Store::kNowhere; });
}

// Reading and writing stop at a column that the table does not have, so what was read or written by then
// shows the order: columns are taken away from the last to the first.
template <class Gate, class Record>
void expect_read_order(const RecordCase<Gate, Record>& table) {
    const auto position_of = [&](const std::string& name) {
        return std::find(table.read_order.begin(), table.read_order.end(), name) - table.read_order.begin();
    };
    const std::ptrdiff_t columns = stored_members(table);
    ASSERT_EQ(static_cast<std::ptrdiff_t>(table.read_order.size()), columns);
    OpenGate<Gate> gate(table.prepare);
    const LONG key = add_variant(table, *gate, 1);
    for (auto missing = columns - 1; missing >= 0; --missing) {
        gate.while_closed([&] { delete_column(gate.file(table.file), table.table, table.read_order[missing]); });
        Record record = filled(table, key, 3);
        EXPECT_EQ(call(*gate, table.find, record), E_FAIL);
        Record expected = filled(table, key, 3);
        for (std::size_t i = 0; i < table.members.size(); ++i) {
            if (position_of(table.members[i].column) < missing) put(table, expected, i, 1, Form::kStored);
        }
        SCOPED_TRACE(std::string("reading without ") + table.read_order[missing]);
        expect_same(table, record, expected);
    }
}

// Without the column that picks the rows it opens, Add fails before it adds; with any other missing it saves
// what was set before. Where a name is added once only, Update alone shows the order.
template <class Gate, class Record>
void expect_write_order(const RecordCase<Gate, Record>& table) {
    const std::ptrdiff_t columns = stored_members(table);
    ASSERT_EQ(static_cast<std::ptrdiff_t>(table.write_order.size()), columns);
    OpenGate<Gate> gate(table.prepare);
    const std::string path = gate.file(table.file);
    const LONG kept = add_variant(table, *gate, 1);
    bool can_add = table.adds == Adds::kAlways;
    for (auto missing = columns - 1; missing >= 0; --missing) {
        const std::string column = table.write_order[missing];
        SCOPED_TRACE("writing without " + column);
        gate.while_closed([&] { delete_column(path, table.table, column); });
        if (table.opened_by != nullptr && column == table.opened_by) can_add = false;

        Record record = filled(table, kNoKey, 2);
        if (table.adds == Adds::kAlways) {
            EXPECT_EQ(call(*gate, table.add, record), E_FAIL);
        }
        const LONG added = record.*table.key;
        EXPECT_EQ(added != kNoKey, can_add);
        expect_same(table, record, filled(table, added, 2));
        const int variant = missing % 2 == 0 ? 2 : 3;
        record = filled(table, kept, variant);
        EXPECT_EQ(call(*gate, table.update, record), E_FAIL);

        const std::vector<const char*> written(table.write_order.begin(), table.write_order.begin() + missing);
        gate.while_closed([&] {
            const auto rows = rows_of(path, table.table, table.key_column);
            expect_row(table, rows.at(kept), variant, written, 0);
            ASSERT_EQ(rows.count(added), can_add ? 1u : 0u);
            if (can_add) expect_row(table, rows.at(added), 2, written, 0);
        });
    }
}

template <class Gate, class Record>
void expect_orders(const RecordCase<Gate, Record>& table) {
    expect_read_order(table);
    expect_write_order(table);
}

// A text of 256 characters in a column for 255: the row keeps the columns set before it, and only those.
template <class Gate, class Record>
void expect_half_written(const RecordCase<Gate, Record>& table) {
    OpenGate<Gate> gate(table.prepare);
    struct Attempt {
        std::size_t written;  // columns
        LONG added;
        LONG changed;
    };
    std::vector<Attempt> attempts;
    for (std::size_t i = 0; i < table.members.size(); ++i) {
        if (table.members[i].store != Store::kText) continue;
        SCOPED_TRACE(table.members[i].column);
        const CString overlong(std::string(256, 'x').c_str());
        const auto place = std::get<CString Record::*>(table.members[i].place);
        const LONG changed = add_variant(table, *gate, 1);
        Record record = filled(table, changed, 2);
        record.*place = overlong;
        EXPECT_EQ(call(*gate, table.update, record), E_FAIL);
        record.*table.key = kNoKey;
        EXPECT_EQ(call(*gate, table.add, record), E_FAIL);
        EXPECT_EQ(record.*table.key, changed + 1);
        const auto found =
            std::find(table.write_order.begin(), table.write_order.end(), std::string(table.members[i].column));
        attempts.push_back({static_cast<std::size_t>(found - table.write_order.begin()), record.*table.key, changed});
        record = filled(table, changed, 2);
        record.*place = CString(std::string(255, 'x').c_str());
        EXPECT_EQ(call(*gate, table.add, record), S_OK);
    }
    ASSERT_FALSE(attempts.empty());
    gate.while_closed([&] {
        const auto rows = rows_of(gate.file(table.file), table.table, table.key_column);
        for (const Attempt& attempt : attempts) {
            const auto end = table.write_order.begin() + static_cast<std::ptrdiff_t>(attempt.written);
            const std::vector<const char*> written(table.write_order.begin(), end);
            SCOPED_TRACE(std::string("overlong ") + *end);
            expect_row(table, rows.at(attempt.added), 2, written, 0);
            expect_row(table, rows.at(attempt.changed), 2, written, 1);
        }
    });
}

}  // namespace testing_support
