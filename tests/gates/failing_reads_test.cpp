// Steps of the sessions' and the supplies' enumerations over rows that cannot be read whole: the plain ones leave what
// they had read by then, the extended ones leave the record alone, and all of them stay on their way.
#include "tests/gates/record_round_trip.h"
#include "tests/gates/sessions_cases.h"
#include "tests/gates/stock_cases.h"

using namespace testing_support;

namespace {

// Three rows of a table that lacks one of the columns that are read.
template <class Record>
class Unreadable {
public:
    Unreadable(const RecordCase<IDBgate1, Record>& table, std::string missing) : table_(table), missing_(missing) {
        for (const int variant : {1, 2, 3}) keys_.push_back(add_variant(table, *gate_, variant));
        gate_.while_closed([&] { delete_column(gate_.file("sldb.mdb"), table.table, missing_); });
    }
    IDBgate1& gate() { return *gate_; }

    // Of a plain step: what stands before the missing column in the order of reading.
    void expect_partly(typename RecordCase<IDBgate1, Record>::Method step, int variant) {
        Record record = question(table_);
        Record expected = question(table_);
        EXPECT_EQ(call(*gate_, step, record), E_FAIL);
        expected.*table_.key = keys_[variant - 1];
        for (const char* const column : table_.read_order) {
            if (missing_ == column) break;
            for (std::size_t i = 0; i < table_.members.size(); ++i) {
                if (std::string(table_.members[i].column) == column) put(table_, expected, i, variant, Form::kStored);
            }
        }
        expect_same(table_, record, expected);
    }
    void expect_end(typename RecordCase<IDBgate1, Record>::Method step) {
        Record record = filled(table_, kNoKey, 4);
        EXPECT_EQ(call(*gate_, step, record), E_FAIL);
        expect_same(table_, record, filled(table_, kNoKey, 4));
    }

private:
    const RecordCase<IDBgate1, Record>& table_;
    const std::string missing_;
    OpenGate<IDBgate1> gate_;
    std::vector<LONG> keys_;
};

// What no step has touched.
template <class Record>
void expect_fresh(const Record& record, LONG Record::*key, CString Record::*text) {
    EXPECT_EQ(record.*key, 0);
    EXPECT_EQ(record.*text, "");
}

TEST(FailingReadsGate, plain_sessions_keep_what_was_read_and_go_on) {
    for (const char* const missing : {"SongName", "RecDate", "Notes", "RoomID"}) {
        SCOPED_TRACE(missing);
        Unreadable rows(kSessions, missing);
        rows.expect_partly(&IDBgate1::EnumFirstSession, 1);
        rows.expect_partly(&IDBgate1::EnumNextSession, 2);
        rows.expect_partly(&IDBgate1::EnumNextSession, 3);
        rows.expect_end(&IDBgate1::EnumNextSession);
    }
}

TEST(FailingReadsGate, plain_supplies_keep_what_was_read_and_go_on) {
    for (const char* const missing : {"StockName", "Client", "Date", "ExData"}) {
        SCOPED_TRACE(missing);
        Unreadable rows(kSupply, missing);
        rows.expect_partly(&IDBgate1::EnumFirstSupply, 1);
        rows.expect_partly(&IDBgate1::EnumNextSupply, 2);
        rows.expect_partly(&IDBgate1::EnumNextSupply, 3);
        rows.expect_end(&IDBgate1::EnumNextSupply);
    }
}

TEST(FailingReadsGate, extended_sessions_leave_the_record_alone) {
    Unreadable rows(kSessions, "Notes");
    SessionExInfo record;
    record.Reserved = "sentinel";
    EXPECT_EQ(call(rows.gate(), &IDBgate1::EnumEx_FirstSession, record), E_FAIL);
    for (int i = 0; i < 4; ++i) {
        expect_fresh(record, &SessionExInfo::SessionID, &SessionExInfo::SongName);
        EXPECT_EQ(record.Reserved, "sentinel");
        EXPECT_EQ(call(rows.gate(), &IDBgate1::EnumEx_NextSession, record), E_FAIL);
    }
}

TEST(FailingReadsGate, extended_supplies_leave_the_record_alone) {
    Unreadable rows(kSupply, "Quantity");
    SupplyExInfo record;
    EXPECT_EQ(call(rows.gate(), &IDBgate1::EnumEx_FirstSupply, record), E_FAIL);
    for (int i = 0; i < 4; ++i) {
        expect_fresh(record, &SupplyExInfo::ActionID, &SupplyExInfo::StockName);
        EXPECT_EQ(call(rows.gate(), &IDBgate1::EnumEx_NextSupply, record), E_FAIL);
    }
}

TEST(FailingReadsGate, find_and_update_over_a_missing_column_fail_and_keep_the_key) {
    Unreadable rows(kSupply, "StockType");
    SupplyAct record;
    record.ActionID = 2;
    EXPECT_EQ(call(rows.gate(), &IDBgate1::FindSupplyAct, record), E_FAIL);
    EXPECT_EQ(record.ActionID, 2);
    EXPECT_EQ(record.StockID, integer_value(0, 2));
    EXPECT_EQ(call(rows.gate(), &IDBgate1::UpdateSupplyAct, record), E_FAIL);
    EXPECT_EQ(record.ActionID, 2);
}

}  // namespace
