// What holds for every table of the three gates: enumerations that are abandoned, disturbed or asked for without a
// record, texts with quotes, and a row that the engine refuses at the end.
#include "tests/gates/every_table.h"

#include <algorithm>
#include <cstring>

using namespace testing_support;

namespace {

// A gate with three rows of one table, and an enumeration of it.
template <class Table>
class ThreeRows {
public:
    using Gate = GateOf<Table>;
    using Record = RecordOf<Table>;

    explicit ThreeRows(const Table& table)
        : table_(table),
          gate_(table.prepare),
          keys_{add_variant(table, *gate_, 1), add_variant(table, *gate_, 2), add_variant(table, *gate_, 3)} {}

    Gate& gate() { return *gate_; }
    OpenGate<Gate>& open_gate() { return gate_; }
    LONG key(int variant) const { return keys_[variant - 1]; }

    void expect_first() { expect_delivered(table_.first, key(1), 1, __func__); }
    void expect_next(int variant) { expect_delivered(table_.next, key(variant), variant, __func__); }
    void expect_next(LONG key, int variant) { expect_delivered(table_.next, key, variant, __func__); }
    void expect_end() {
        Record record = question(table_);
        EXPECT_EQ(call(gate(), table_.next, record), E_FAIL);
        expect_same(table_, record, question(table_));
    }

private:
    void expect_delivered(typename Table::Method step, LONG key, int variant, const char* what) {
        SCOPED_TRACE(std::string(what) + " " + std::to_string(variant));
        Record record = question(table_);
        ASSERT_EQ(call(gate(), step, record), S_OK);
        expect_same(table_, record, filled(table_, key, variant, Form::kStored));
    }

    const Table& table_;
    OpenGate<Gate> gate_;
    const LONG keys_[3];
};

bool is_among(const std::string& name, std::initializer_list<const char*> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// ---- Enumerations

TEST(EveryTableGate, enumeration_begun_anew_abandons_the_one_under_way) {
    on_every_table([](const auto& table) {
        ThreeRows rows(table);
        rows.expect_first();
        rows.expect_next(2);
        rows.expect_first();
        rows.expect_first();
        rows.expect_next(2);
        rows.expect_next(3);
        rows.expect_end();
        rows.expect_end();
    });
}

// What has been changed shows, what has been deleted is passed over, what has been added is not among the rows.
TEST(EveryTableGate, other_operations_amid_an_enumeration_leave_it_under_way) {
    on_every_table([](const auto& table) {
        ThreeRows rows(table);
        rows.expect_first();
        expect_found(table, rows.gate(), rows.key(3), 3, 1);
        auto record = filled(table, rows.key(3), 4);
        EXPECT_EQ(call(rows.gate(), table.update, record), S_OK);
        add_variant(table, rows.gate(), 5);
        record = filled(table, rows.key(2), 2);
        EXPECT_EQ(table.call_remove(rows.gate(), record), S_OK);
        rows.expect_next(rows.key(3), 4);
        record = filled(table, kUnknownKey, 1);
        EXPECT_EQ(call(rows.gate(), table.find, record), E_FAIL);
        rows.expect_end();
    });
}

// Where no filter needs a record, the statement opens and its first row cannot be delivered.
TEST(EveryTableGate, enumeration_begun_without_a_record_is_begun_fails_or_is_refused_by_table) {
    on_every_table([](const auto& table) {
        ThreeRows rows(table);
        EXPECT_EQ((rows.gate().*table.first)(0), E_FAIL);  // the first of all
        rows.expect_first();
        rows.expect_next(2);
        EXPECT_EQ((rows.gate().*table.first)(0), E_FAIL);
        const bool is_refused =
            is_among(table.table, {"MediaLibs", "MediaFiles", "Bookings", "Invoices", "InvoiceParams"});
        const bool is_begun = is_among(table.table, {"LibGroups", "Def_Engineers", "Def_Sequencer", "Def_Rooms",
                                                     "Equipment", "Stock", "Def_StockTypes", "GearCategories"});
        if (is_refused) {
            rows.expect_next(3);  // the enumeration under way has not noticed
        } else if (is_begun) {
            rows.expect_next(2);
            rows.expect_next(3);
        }
        rows.expect_end();
    });
}

TEST(EveryTableGate, step_without_a_record_passes_a_row_by_or_stays_by_table) {
    on_every_table([](const auto& table) {
        ThreeRows rows(table);
        rows.expect_first();
        EXPECT_EQ((rows.gate().*table.next)(0), E_FAIL);
        if (!is_among(table.table, {"LibGroups", "MediaLibs", "MediaFiles"})) rows.expect_next(2);
        rows.expect_next(3);
        rows.expect_end();
    });
}

// ---- Quotes

constexpr char kQuoted[] = "6\" reel";

// The texts among the members that a filter makes a condition of.
bool is_condition(const char* table, const char* member) {
    struct Filter {
        const char* table;
        std::initializer_list<const char*> texts;
    };
    static const Filter kFilters[] = {
        {"Projects", {"Director", "Producer", "Type"}},
        {"Songs", {"Sequencer", "Name"}},
        {"Tracks", {"Destination", "Performer"}},
        {"Sessions", {"Engineer", "SongName"}},
        {"Clients", {"Company", "Title", "SearchName"}},
        {"ContactCategories", {"Name"}},
        {"Services", {"Name"}},
        {"Stock", {"Supplier"}},
        {"Gear", {"Manufacturer", "Model", "SerialNo"}},
        {"GearServices", {"Name"}},
        {"GearRepairs", {"ClaimNo", "GearName"}},
        {"GearRentals", {"ServiceName"}},
    };
    for (const Filter& filter : kFilters) {
        if (std::strcmp(filter.table, table) == 0) return is_among(member, filter.texts);
    }
    return false;
}

template <class Record>
CString Record::*text_of_member(const Member<Record>& member) {
    const auto* const place = std::get_if<CString Record::*>(&member.place);
    return place != nullptr ? *place : nullptr;
}

TEST(EveryTableGate, quote_in_a_condition_fails_and_in_any_other_text_is_no_matter) {
    on_every_table([](const auto& table) {
        ThreeRows rows(table);
        for (const auto& member : table.members) {
            const auto text = text_of_member(member);
            // A list of numbers has no texts.
            if (text == nullptr || std::strcmp(member.column, "CatIDs") == 0) continue;
            SCOPED_TRACE(member.column);
            auto record = question(table);
            record.*text = kQuoted;
            const bool breaks = is_condition(table.table, member.column);
            EXPECT_EQ(call(rows.gate(), table.first, record), breaks ? E_FAIL : S_OK);
            EXPECT_EQ(call(rows.gate(), table.next, record), breaks ? E_FAIL : S_OK);
        }
    });
}

// Only where the name picks the rows that Add opens, the statement breaks.
TEST(EveryTableGate, texts_with_quotes_are_added_found_and_changed) {
    on_every_table([](const auto& table) {
        ThreeRows rows(table);
        const bool opens_by_name = is_among(table.table, {"LibGroups", "Def_Rooms", "Def_Engineers"});
        for (const auto& member : table.members) {
            const auto text = text_of_member(member);
            if (text == nullptr || member.store == Store::kNowhere) continue;
            SCOPED_TRACE(member.column);
            auto record = filled(table, kNoKey, 4);
            record.*text = kQuoted;
            const bool breaks = opens_by_name && std::strcmp(member.column, "Name") == 0;
            EXPECT_EQ(call(rows.gate(), table.add, record), breaks ? E_FAIL : S_OK);
            if (breaks) {
                record.*table.key = rows.key(3);
                EXPECT_EQ(call(rows.gate(), table.update, record), S_OK);
            }
            auto found = filled(table, record.*table.key, 1);
            EXPECT_EQ(call(rows.gate(), table.find, found), S_OK);
            EXPECT_EQ(found.*text, kQuoted);
            (record.*text).MakeUpper();
            EXPECT_EQ(call(rows.gate(), table.update, record), S_OK);
            EXPECT_EQ(call(rows.gate(), table.find, found), S_OK);
            EXPECT_EQ(found.*text, "6\" REEL");
            EXPECT_EQ(table.call_remove(rows.gate(), record), S_OK);
        }
    });
}

TEST(EveryTableGate, find_without_a_key_by_a_text_with_a_quote_fails) {
    on_every_table([](const auto& table) {
        ThreeRows rows(table);
        const bool by_name = is_among(table.table, {"Def_Sequencer", "Def_Engineers"});
        for (const auto& member : table.members) {
            const auto text = text_of_member(member);
            if (text == nullptr) continue;
            if (!is_condition(table.table, member.column) && !(by_name && std::strcmp(member.column, "Name") == 0)) {
                continue;
            }
            SCOPED_TRACE(member.column);
            RecordOf<decltype(table)> record;
            record.*text = kQuoted;
            EXPECT_EQ(call(rows.gate(), table.find, record), E_FAIL);
            EXPECT_EQ(record.*table.key, 0);
        }
    });
}

// ---- A row that is refused at the end

// The text of the table that must not be empty; null where it has none.
template <class Table>
auto refused_when_empty(const Table& table) {
    CString RecordOf<Table>::*refused = nullptr;
    const bool has_one = is_among(table.table, {"LibGroups", "MediaLibs", "ContactCategories", "Def_Sequencer",
                                                "Def_Rooms", "Def_Engineers", "Def_StockTypes", "Equipment"});
    for (const auto& member : table.members) {
        if (has_one && is_among(member.column, {"Name", "TypeName"})) refused = text_of_member(member);
    }
    return refused;
}

// The key is read from the pending row before the engine looks at the whole of it.
TEST(EveryTableGate, row_refused_at_the_end_leaves_its_number_in_the_record_and_nothing_in_the_table) {
    int tables = 0;
    on_every_table([&](const auto& table) {
        const auto text = refused_when_empty(table);
        if (text == nullptr) return;
        ++tables;
        ThreeRows rows(table);
        auto record = filled(table, kNoKey, 4);
        record.*text = "";
        EXPECT_EQ(call(rows.gate(), table.add, record), E_FAIL);
        EXPECT_EQ(record.*table.key, rows.key(3) + 1);
        auto found = filled(table, record.*table.key, 1);
        EXPECT_EQ(call(rows.gate(), table.find, found), E_FAIL);

        record = filled(table, rows.key(2), 4);
        record.*text = "";
        EXPECT_EQ(call(rows.gate(), table.update, record), E_FAIL);
        EXPECT_EQ(record.*table.key, rows.key(2));
        expect_found(table, rows.gate(), rows.key(2), 2, 1);
        rows.expect_first();
        rows.expect_next(2);
        rows.expect_next(3);
        rows.expect_end();
    });
    EXPECT_EQ(tables, 8);
}

// ---- Find by the members of the filter

// The members by which a record without a key is found, but lists of categories.
bool finds(const char* table, const char* member) {
    struct Filter {
        const char* table;
        std::initializer_list<const char*> members;
    };
    static const Filter kFilters[] = {
        {"Clients", {"Company", "Title"}},
        {"ContactCategories", {"Type", "Name"}},
        {"Services", {"CategoryID", "RoomID", "Name"}},
        {"Gear", {"CategoryID", "RoomID", "StatusID", "Manufacturer", "Model", "SerialNo"}},
        {"GearServices", {"GearID", "RoomID", "TimeUnitID", "Name"}},
        {"GearRepairs", {"GearID", "TechID", "ClaimNo", "GearName"}},
        {"GearRentals", {"ServiceID", "ProjID", "RoomID", "ClientID", "ServiceName"}},
    };
    for (const Filter& filter : kFilters) {
        if (std::strcmp(filter.table, table) == 0) return is_among(member, filter.members);
    }
    return false;
}

TEST(EveryTableGate, find_without_a_key_goes_by_each_member_of_the_filter_and_by_several) {
    int members = 0;
    on_every_table([&](const auto& table) {
        std::vector<std::size_t> positions;
        for (std::size_t i = 0; i < table.members.size(); ++i) {
            const bool is_stored = table.members[i].store != Store::kNowhere;
            if (is_stored && finds(table.table, table.members[i].column)) positions.push_back(i);
        }
        if (positions.empty()) return;
        members += static_cast<int>(positions.size());
        ThreeRows rows(table);
        using Record = RecordOf<decltype(table)>;
        const auto find = [&](std::initializer_list<std::pair<std::size_t, int>> set) {
            Record record;
            for (const auto& [position, variant] : set) put(table, record, position, variant);
            return call(rows.gate(), table.find, record) == S_OK ? record.*table.key : 0;
        };
        for (const std::size_t one : positions) {
            SCOPED_TRACE(table.members[one].column);
            for (const int variant : {1, 2, 3}) EXPECT_EQ(find({{one, variant}}), rows.key(variant));
            EXPECT_EQ(find({{one, 4}}), 0);
            for (const std::size_t other : positions) {
                if (other == one) continue;
                EXPECT_EQ(find({{one, 2}, {other, 2}}), rows.key(2)) << table.members[other].column;
                EXPECT_EQ(find({{one, 2}, {other, 3}}), 0) << table.members[other].column;
            }
        }
    });
    EXPECT_EQ(members, 2 + 2 + 3 + 6 + 4 + 4 + 3 + 6 + 4 + 4 + 5);
}

// A key that is set is the only condition.
TEST(EveryTableGate, key_finds_its_row_whatever_else_is_set) {
    on_every_table([](const auto& table) {
        ThreeRows rows(table);
        expect_found(table, rows.gate(), rows.key(2), 2, 3);
        expect_found(table, rows.gate(), rows.key(1), 1, 2);
    });
}

}  // namespace
