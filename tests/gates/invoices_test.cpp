// Invoices, their lines and their defaults through the main gate.
#include "tests/gates/dates.h"
#include "tests/gates/invoices_cases.h"
#include "tests/gates/record_round_trip.h"

namespace {

using namespace testing_support;

TEST(InvoicesGate, members_make_the_round_trip) { expect_round_trip(kInvoices); }
TEST(InvoicesGate, columns_hold_the_members_of_their_name) { expect_columns(kInvoices); }
TEST(InvoicesGate, failure_leaves_the_record_alone) { expect_failures(kInvoices); }
TEST(InvoicesGate, mappings_go_in_their_order) { expect_orders(kInvoices); }
TEST(InvoicesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kInvoices); }

TEST(InvoiceLinesGate, members_make_the_round_trip) { expect_round_trip(kInvoiceLines); }
TEST(InvoiceLinesGate, columns_hold_the_members_of_their_name) { expect_columns(kInvoiceLines); }
TEST(InvoiceLinesGate, failure_leaves_the_record_alone) { expect_failures(kInvoiceLines); }
TEST(InvoiceLinesGate, mappings_go_in_their_order) { expect_orders(kInvoiceLines); }
TEST(InvoiceLinesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kInvoiceLines); }

// ---- Invoices

LONG add_invoice(IDBgate1& gate, CTime date) {
    InvoiceInfo record;
    record.Date = date;
    EXPECT_EQ(gate.AddInvoice(address_of(record)), S_OK);
    return record.RecID;
}
// The keys of the invoices of a span, each ended by a blank; "-" when the enumeration fails at its beginning.
std::string keys(IDBgate1& gate, CTime from, CTime to) {
    InvoiceInfo record;
    record.FromDate = from;
    record.ToDate = to;
    if (gate.EnumFirstInvoice(address_of(record)) != S_OK) return "-";
    std::string all;
    do {
        all += std::to_string(record.RecID) + " ";
    } while (gate.EnumNextInvoice(address_of(record)) == S_OK);
    return all;
}

TEST(InvoicesGate, span_holds_both_its_days_in_the_order_of_dates) {
    const OpenGate<IDBgate1> gate;
    for (const int day : {20, 10, 15, 21, 9}) add_invoice(*gate, march(day, 18));
    EXPECT_EQ(keys(*gate, march(10), march(20)), "2 3 1 ");
    EXPECT_EQ(keys(*gate, march(10, 23), march(20, 1)), "2 3 1 ");  // the time of day of a bound does not count
    EXPECT_EQ(keys(*gate, march(21), march(21)), "4 ");
}

TEST(InvoicesGate, span_that_ends_before_it_begins_fails) {
    const OpenGate<IDBgate1> gate;
    add_invoice(*gate, march(15));
    EXPECT_EQ(keys(*gate, march(20), march(10)), "-");
}

TEST(InvoicesGate, bounds_are_left_alone_and_never_stored) {
    const OpenGate<IDBgate1> gate;
    InvoiceInfo record;
    record.Date = march(15);
    record.FromDate = march(1, 7);
    record.ToDate = march(31, 7);
    const auto expect_bounds = [&] {
        EXPECT_EQ(record.FromDate, march(1, 7));
        EXPECT_EQ(record.ToDate, march(31, 7));
    };
    ASSERT_EQ(gate->AddInvoice(address_of(record)), S_OK);
    expect_bounds();
    ASSERT_EQ(gate->EnumFirstInvoice(address_of(record)), S_OK);
    expect_bounds();
    EXPECT_EQ(gate->EnumNextInvoice(address_of(record)), E_FAIL);
    expect_bounds();
    ASSERT_EQ(gate->FindInvoice(address_of(record)), S_OK);
    expect_bounds();
    EXPECT_EQ(record.Date, march(15));
    ASSERT_EQ(gate->UpdateInvoice(address_of(record)), S_OK);
    expect_bounds();
}

TEST(InvoicesGate, filter_members_but_the_bounds_are_no_conditions) {
    const OpenGate<IDBgate1> gate;
    add_invoice(*gate, march(15));
    InvoiceInfo record = filled(kInvoices, 99, 1);
    record.FromDate = march(1);
    record.ToDate = march(31);
    EXPECT_EQ(gate->EnumFirstInvoice(address_of(record)), S_OK);
    EXPECT_EQ(record.RecID, 1);
}

// Deliberate: the split of an amount loses the sign of its fraction; payments and balance are plain floats.
TEST(InvoicesGate, negative_fraction_loses_its_sign_in_amounts_but_not_in_floats) {
    const OpenGate<IDBgate1> gate;
    InvoiceInfo record;
    record.Total = -1.25f;
    record.Paymetns = -1.25f;
    record.Balance = -0.5f;
    ASSERT_EQ(gate->AddInvoice(address_of(record)), S_OK);
    ASSERT_EQ(gate->FindInvoice(address_of(record)), S_OK);
    EXPECT_EQ(record.Total, -0.75f);
    EXPECT_EQ(record.Paymetns, -1.25f);
    EXPECT_EQ(record.Balance, -0.5f);
    gate->CloseDB();
    auto row = rows_of(gate.file("kvinvdb.mdb"), "Invoices", "RecID").at(record.RecID);
    EXPECT_EQ(std::get<jet::Currency>(row.at("Total").value).ten_thousandths, -7500);
    EXPECT_EQ(std::get<float>(row.at("Paymetns").value), -1.25f);
    EXPECT_EQ(std::get<float>(row.at("Balance").value), -0.5f);
}

TEST(InvoicesGate, deleted_invoice_leaves_its_lines) {
    const OpenGate<IDBgate1> gate;
    InvoiceInfo invoice;
    invoice.InvoiceID = 12;
    ASSERT_EQ(gate->AddInvoice(address_of(invoice)), S_OK);
    InvParamsInfo line;
    line.InvoiceID = 12;
    ASSERT_EQ(gate->AddInvParams(address_of(line)), S_OK);
    ASSERT_EQ(gate->DeleteInvoice(address_of(invoice)), S_OK);
    EXPECT_EQ(gate->EnumFirstInvParams(address_of(line)), S_OK);
}

TEST(InvoiceLinesGate, enumeration_gives_the_lines_of_one_invoice) {
    const OpenGate<IDBgate1> gate;
    for (const LONG invoice : {7, 8, 7, 0}) {
        InvParamsInfo line;
        line.InvoiceID = invoice;
        ASSERT_EQ(gate->AddInvParams(address_of(line)), S_OK);
    }
    InvParamsInfo line;
    line.InvoiceID = 7;
    ASSERT_EQ(gate->EnumFirstInvParams(address_of(line)), S_OK);
    EXPECT_EQ(line.RecID, 1);
    ASSERT_EQ(gate->EnumNextInvParams(address_of(line)), S_OK);
    EXPECT_EQ(line.RecID, 3);
    EXPECT_EQ(gate->EnumNextInvParams(address_of(line)), E_FAIL);
    line.InvoiceID = 0;  // invoice 0, not all of them
    ASSERT_EQ(gate->EnumFirstInvParams(address_of(line)), S_OK);
    EXPECT_EQ(line.RecID, 4);
    EXPECT_EQ(gate->EnumNextInvParams(address_of(line)), E_FAIL);
}

TEST(InvoiceLinesGate, invoice_without_lines_fails) {
    const OpenGate<IDBgate1> gate;
    InvParamsInfo line;
    line.InvoiceID = 7;
    ASSERT_EQ(gate->AddInvParams(address_of(line)), S_OK);
    line = filled(kInvoiceLines, kNoKey, 1);
    line.InvoiceID = 8;
    InvParamsInfo expected = line;
    EXPECT_EQ(gate->EnumFirstInvParams(address_of(line)), E_FAIL);
    expect_same(kInvoiceLines, line, expected);
}

// ---- Defaults

InvoiceDef some_defaults() {
    InvoiceDef defaults;
    defaults.StudioName = "Blue Room";
    defaults.StudioDetails = std::string(3000, 'd').c_str();
    defaults.BaseCounter = 100;
    defaults.LastUsedCounter = 142;
    defaults.VAT1 = 18;
    defaults.VAT2 = 7;
    defaults.Tax = 17.5f;
    defaults.ExData = -3;
    return defaults;
}

void expect_defaults(const InvoiceDef& defaults, const InvoiceDef& expected) {
    EXPECT_EQ(defaults.StudioName, expected.StudioName);
    EXPECT_EQ(defaults.StudioDetails, expected.StudioDetails);
    EXPECT_EQ(defaults.BaseCounter, expected.BaseCounter);
    EXPECT_EQ(defaults.LastUsedCounter, expected.LastUsedCounter);
    EXPECT_EQ(defaults.VAT1, expected.VAT1);
    EXPECT_EQ(defaults.VAT2, expected.VAT2);
    EXPECT_EQ(defaults.Tax, expected.Tax);
    EXPECT_EQ(defaults.ExData, expected.ExData);
}

void expect_stored_defaults(IDBgate1& gate, const InvoiceDef& expected) {
    InvoiceDef defaults;
    EXPECT_EQ(gate.GetInvoiceDef(address_of(defaults)), S_OK);
    expect_defaults(defaults, expected);
}

InvoiceDef first_defaults() {
    InvoiceDef defaults;
    defaults.StudioName = "Your Studio Name";
    defaults.StudioDetails = "Your Studio Details";
    defaults.BaseCounter = 1;
    return defaults;
}

// The closed main file, for changes by the engine alone.
std::unique_ptr<jet::Database> open_main_file(const std::string& path) {
    jet::OpenOptions options;
    options.ignore_password = true;
    return jet::Database::open(path, options);
}

TEST(InvoiceDefaultsGate, new_file_holds_the_first_ones) {
    const OpenGate<IDBgate1> gate;
    expect_stored_defaults(*gate, first_defaults());
}

TEST(InvoiceDefaultsGate, every_member_makes_the_round_trip) {
    OpenGate<IDBgate1> gate;
    InvoiceDef defaults = some_defaults();
    ASSERT_EQ(gate->SetInvoiceDef(address_of(defaults)), S_OK);
    expect_defaults(defaults, some_defaults());
    expect_stored_defaults(*gate, some_defaults());
    gate.while_closed([&] {
        const auto rows = rows_of(gate.file("sldb.mdb"), "Def_Invoice", "BaseCounter");
        ASSERT_EQ(rows.size(), 1u);
        const ClosedRow& row = rows.at(100);
        EXPECT_EQ(std::get<std::u16string>(row.at("StudioName").value), u"Blue Room");
        EXPECT_EQ(std::get<std::u16string>(row.at("StudioDetails").value), std::u16string(3000, u'd'));
        EXPECT_EQ(std::get<std::int32_t>(row.at("LastUsedCounter").value), 142);
        EXPECT_EQ(std::get<std::int32_t>(row.at("VAT1").value), 18);
        EXPECT_EQ(std::get<std::int32_t>(row.at("VAT2").value), 7);
        EXPECT_EQ(std::get<std::int32_t>(row.at("ExData").value), -3);
        EXPECT_EQ(std::get<jet::Currency>(row.at("Tax").value).ten_thousandths, 175000);
    });
    expect_stored_defaults(*gate, some_defaults());
}

TEST(InvoiceDefaultsGate, added_invoices_leave_the_counters) {
    const OpenGate<IDBgate1> gate;
    InvoiceDef defaults = some_defaults();
    ASSERT_EQ(gate->SetInvoiceDef(address_of(defaults)), S_OK);
    add_invoice(*gate, march(10));
    expect_stored_defaults(*gate, some_defaults());
}

TEST(InvoiceDefaultsGate, empty_table_fails_and_gets_no_row) {
    OpenGate<IDBgate1> gate;
    gate.while_closed([&] {
        const auto database = open_main_file(gate.file("sldb.mdb"));
        jet::Table* const table = database->find_table(u"Def_Invoice");
        table->erase(*table->next_row({}));
        database->close();
    });
    InvoiceDef defaults = some_defaults();
    EXPECT_EQ(gate->SetInvoiceDef(address_of(defaults)), E_FAIL);
    EXPECT_EQ(gate->GetInvoiceDef(address_of(defaults)), E_FAIL);
    expect_defaults(defaults, some_defaults());
    gate.while_closed([&] { EXPECT_TRUE(rows_of(gate.file("sldb.mdb"), "Def_Invoice", "BaseCounter").empty()); });
}

TEST(InvoiceDefaultsGate, first_of_several_rows_is_the_one) {
    OpenGate<IDBgate1> gate;
    gate.while_closed([&] {
        const auto database = open_main_file(gate.file("sldb.mdb"));
        jet::Table* const table = database->find_table(u"Def_Invoice");
        for (const std::int32_t counter : {50, 60}) {
            std::vector<jet::Value> row(table->def().columns.size());
            row[0] = std::u16string(u"another");
            row[2] = counter;
            table->insert(row);
        }
        database->close();
    });
    expect_stored_defaults(*gate, first_defaults());
    InvoiceDef defaults = some_defaults();
    EXPECT_EQ(gate->SetInvoiceDef(address_of(defaults)), S_OK);
    expect_stored_defaults(*gate, some_defaults());
    gate.while_closed([&] {
        const auto rows = rows_of(gate.file("sldb.mdb"), "Def_Invoice", "BaseCounter");
        ASSERT_EQ(rows.size(), 3u);
        for (const std::int32_t counter : {50, 60}) {
            EXPECT_EQ(std::get<std::u16string>(rows.at(counter).at("StudioName").value), u"another");
            EXPECT_TRUE(jet::is_null(rows.at(counter).at("VAT1").value));
        }
    });
}

// Unlike that of a record, a failed writing of the defaults keeps nothing.
TEST(InvoiceDefaultsGate, failed_writing_changes_nothing) {
    const OpenGate<IDBgate1> gate;
    InvoiceDef defaults = some_defaults();
    defaults.StudioName = std::string(256, 'n').c_str();
    EXPECT_EQ(gate->SetInvoiceDef(address_of(defaults)), E_FAIL);
    expect_stored_defaults(*gate, first_defaults());
    defaults.StudioName = std::string(255, 'n').c_str();
    EXPECT_EQ(gate->SetInvoiceDef(address_of(defaults)), S_OK);
    expect_stored_defaults(*gate, defaults);
}

TEST(InvoiceDefaultsGate, reading_stops_at_a_column_that_is_missing) {
    OpenGate<IDBgate1> gate;
    gate.while_closed([&] { delete_column(gate.file("sldb.mdb"), "Def_Invoice", "VAT1"); });
    InvoiceDef defaults = some_defaults();
    EXPECT_EQ(gate->GetInvoiceDef(address_of(defaults)), E_FAIL);
    InvoiceDef expected = some_defaults();
    expected.StudioName = first_defaults().StudioName;
    expected.StudioDetails = first_defaults().StudioDetails;
    expected.BaseCounter = 1;
    expected.LastUsedCounter = 0;
    expect_defaults(defaults, expected);
}

TEST(InvoiceDefaultsGate, null_record_and_closed_database_fail) {
    const OpenGate<IDBgate1> gate;
    EXPECT_EQ(gate->GetInvoiceDef(0), E_FAIL);
    EXPECT_EQ(gate->SetInvoiceDef(0), E_FAIL);
    ASSERT_EQ(gate->CloseDB(), S_OK);
    const auto fresh = gate.host().create<IDBgate1>();
    for (IDBgate1* const closed : {&*gate, fresh.get()}) {
        InvoiceDef defaults = some_defaults();
        EXPECT_EQ(closed->GetInvoiceDef(address_of(defaults)), E_FAIL);
        EXPECT_EQ(closed->SetInvoiceDef(address_of(defaults)), E_FAIL);
        expect_defaults(defaults, some_defaults());
    }
    ASSERT_EQ(gate->OpenDB(), S_OK);
    expect_stored_defaults(*gate, first_defaults());
}

}  // namespace
