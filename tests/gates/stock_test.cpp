// Stock, supply, stock types and equipment through the main gate, and the number on hand.
#include <climits>
#include <filesystem>

#include "tests/frame/late_binding.h"
#include "tests/gates/record_round_trip.h"
#include "tests/gates/stock_cases.h"

namespace {

using namespace testing_support;

TEST(StockGate, members_make_the_round_trip) { expect_round_trip(kStock); }
TEST(StockGate, columns_hold_the_members_of_their_name) { expect_columns(kStock); }
TEST(StockGate, failure_leaves_the_record_alone) { expect_failures(kStock); }
TEST(StockGate, mappings_go_in_their_order) { expect_orders(kStock); }
TEST(StockGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kStock); }

TEST(SupplyGate, members_make_the_round_trip) { expect_round_trip(kSupply); }
TEST(SupplyGate, columns_hold_the_members_of_their_name) { expect_columns(kSupply); }
TEST(SupplyGate, failure_leaves_the_record_alone) { expect_failures(kSupply); }
TEST(SupplyGate, mappings_go_in_their_order) { expect_orders(kSupply); }
TEST(SupplyGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kSupply); }

TEST(StockTypesGate, members_make_the_round_trip) { expect_round_trip(kStockTypes); }
TEST(StockTypesGate, columns_hold_the_members_of_their_name) { expect_columns(kStockTypes); }
TEST(StockTypesGate, failure_leaves_the_record_alone) { expect_failures(kStockTypes); }
TEST(StockTypesGate, mappings_go_in_their_order) { expect_orders(kStockTypes); }
TEST(StockTypesGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kStockTypes); }

TEST(EquipmentGate, members_make_the_round_trip) { expect_round_trip(kEquipment); }
TEST(EquipmentGate, columns_hold_the_members_of_their_name) { expect_columns(kEquipment); }
TEST(EquipmentGate, failure_leaves_the_record_alone) { expect_failures(kEquipment); }
TEST(EquipmentGate, mappings_go_in_their_order) { expect_orders(kEquipment); }
TEST(EquipmentGate, overlong_text_keeps_what_was_set_before) { expect_half_written(kEquipment); }

// Adds a purchase, a hand-out, a type; the new key.
LONG buy(IDBgate1& gate, LONG type, LONG quantity, const char* supplier = "") {
    StockInfo record;
    record.TypeID = type;
    record.Quantity = quantity;
    record.Supplier = supplier;
    EXPECT_EQ(gate.AddStock(address_of(record)), S_OK);
    return record.StockID;
}
LONG hand_out(IDBgate1& gate, LONG stock, LONG quantity, LONG project = 0, LONG client = 0) {
    SupplyAct record;
    record.StockID = stock;
    record.Quantity = quantity;
    record.ProjID = project;
    record.ClientID = client;
    EXPECT_EQ(gate.AddSupplyAct(address_of(record)), S_OK);
    return record.ActionID;
}
LONG add_type(IDBgate1& gate, const char* name, LONG in_stock = 0, float price = 0, LONG extra = 0) {
    StockTypeInfo record;
    record.TypeName = name;
    record.InStock = in_stock;
    record.ItemPrice = price;
    record.ExData = extra;
    EXPECT_EQ(gate.AddStockType(address_of(record)), S_OK);
    return record.TypeID;
}
LONG in_stock_of(IDBgate1& gate, LONG type) {
    StockTypeInfo record;
    record.TypeID = type;
    EXPECT_EQ(gate.FindStockType(address_of(record)), S_OK);
    return record.InStock;
}

// The keys that an enumeration gives, each ended by a blank; "-" when it fails at its beginning.
template <class Record>
std::string keys(const RecordCase<IDBgate1, Record>& table, IDBgate1& gate, Record filter) {
    if (call(gate, table.first, filter) != S_OK) return "-";
    std::string all;
    do {
        all += std::to_string(filter.*table.key) + " ";
    } while (call(gate, table.next, filter) == S_OK);
    return all;
}

TEST(StockGate, filter_goes_by_type_and_whole_supplier) {
    const OpenGate<IDBgate1> gate;
    buy(*gate, 3, 1, "Acme");
    buy(*gate, 3, 1, "Acme Ltd");
    buy(*gate, 4, 1, "ACME");
    StockInfo filter;
    EXPECT_EQ(keys(kStock, *gate, filter), "1 2 3 ");
    filter.TypeID = 3;
    EXPECT_EQ(keys(kStock, *gate, filter), "1 2 ");
    filter.Supplier = "acme";
    EXPECT_EQ(keys(kStock, *gate, filter), "1 ");
    filter.TypeID = 0;
    EXPECT_EQ(keys(kStock, *gate, filter), "1 3 ");
    filter.Supplier = "Acm*";
    EXPECT_EQ(keys(kStock, *gate, filter), "-");
    filter.Supplier = "7\" Ltd";
    EXPECT_EQ(keys(kStock, *gate, filter), "-");
}

TEST(StockGate, cost_of_a_fraction_comes_back) {
    const OpenGate<IDBgate1> gate;
    StockInfo record;
    record.Cost = 2.5f;
    ASSERT_EQ(gate->AddStock(address_of(record)), S_OK);
    record.Cost = 0;
    ASSERT_EQ(gate->FindStock(address_of(record)), S_OK);
    EXPECT_EQ(record.Cost, 2.5f);
    record.Cost = -1.25f;  // a plain float keeps the sign of its fraction
    ASSERT_EQ(gate->UpdateStock(address_of(record)), S_OK);
    ASSERT_EQ(gate->FindStock(address_of(record)), S_OK);
    EXPECT_EQ(record.Cost, -1.25f);
}

TEST(SupplyGate, client_together_with_another_condition_fails) {
    const OpenGate<IDBgate1> gate;
    hand_out(*gate, 2, 1, 4, 7);
    hand_out(*gate, 2, 1, 5, 7);
    hand_out(*gate, 3, 1, 4, 8);
    SupplyAct filter;
    EXPECT_EQ(keys(kSupply, *gate, filter), "1 2 3 ");
    filter.ClientID = 7;
    EXPECT_EQ(keys(kSupply, *gate, filter), "1 2 ");
    filter.ProjID = 4;
    EXPECT_EQ(keys(kSupply, *gate, filter), "-");
    filter.ProjID = 0;
    filter.StockID = 2;
    EXPECT_EQ(keys(kSupply, *gate, filter), "-");
    filter.ClientID = 0;
    EXPECT_EQ(keys(kSupply, *gate, filter), "1 2 ");
    filter.ProjID = 4;
    EXPECT_EQ(keys(kSupply, *gate, filter), "1 ");
    filter.StockID = 0;
    EXPECT_EQ(keys(kSupply, *gate, filter), "1 3 ");
}

TEST(SupplyGate, added_act_has_its_key_and_is_deleted_by_its_record) {
    const OpenGate<IDBgate1> gate;
    SupplyAct record;
    record.Quantity = 2;
    ASSERT_EQ(gate->AddSupplyAct(address_of(record)), S_OK);
    EXPECT_EQ(record.ActionID, 1);
    EXPECT_EQ(gate->DeleteSupplyAct(address_of(record)), S_OK);
    EXPECT_EQ(gate->FindSupplyAct(address_of(record)), E_FAIL);
}

TEST(StockTypesGate, price_is_read_from_the_amount_and_from_its_text) {
    const OpenGate<IDBgate1> gate;
    const LONG key = add_type(*gate, "Tape", 0, 1.1f);
    StockTypeInfo record;
    record.TypeID = key;
    ASSERT_EQ(gate->FindStockType(address_of(record)), S_OK);
    EXPECT_EQ(record.ItemPrice, 1.1f);
    record = StockTypeInfo();
    ASSERT_EQ(gate->EnumFirstStockType(address_of(record)), S_OK);
    EXPECT_EQ(record.ItemPrice, 1.1f);
    EXPECT_EQ(record.TypeID, key);
    gate->CloseDB();
    const jet::Value price = rows_of(gate.file("sldb.mdb"), "Def_StockTypes", "TypeID").at(key).at("ItemPrice").value;
    EXPECT_EQ(std::get<jet::Currency>(price).ten_thousandths, 11000);
}

// Find does not read the key and so serves a table without key; enumerations do, in an order of their own.
TEST(StockTypesGate, enumeration_reads_in_another_order_than_find) {
    OpenGate<IDBgate1> gate;
    const LONG key = add_variant(kStockTypes, *gate, 1);
    const std::vector<const char*> order = {"TypeName", "TypeID", "InStock", "ItemPrice", "ExData"};
    for (std::size_t missing = order.size() - 1; missing > 0; --missing) {  // the last column of a table stays
        gate.while_closed([&] { delete_column(gate.file("sldb.mdb"), "Def_StockTypes", order[missing]); });
        StockTypeInfo record = filled(kStockTypes, kNoKey, 3);
        EXPECT_EQ(gate->EnumFirstStockType(address_of(record)), E_FAIL);
        const StockTypeInfo stored = filled(kStockTypes, key, 1, Form::kStored);
        StockTypeInfo expected = filled(kStockTypes, kNoKey, 3);
        expected.TypeName = stored.TypeName;
        if (missing > 1) expected.TypeID = key;
        if (missing > 2) expected.InStock = stored.InStock;
        if (missing > 3) expected.ItemPrice = stored.ItemPrice;
        SCOPED_TRACE(order[missing]);
        expect_same(kStockTypes, record, expected);
    }
}

TEST(StockTypesGate, deleted_type_leaves_its_stock) {
    const OpenGate<IDBgate1> gate;
    StockTypeInfo type;
    type.TypeName = "Tape";
    ASSERT_EQ(gate->AddStockType(address_of(type)), S_OK);
    buy(*gate, type.TypeID, 10);
    ASSERT_EQ(gate->DeleteStockType(address_of(type)), S_OK);
    StockInfo filter;
    filter.TypeID = type.TypeID;
    EXPECT_EQ(keys(kStock, *gate, filter), "1 ");
    LONG in_stock = -1;
    EXPECT_EQ(gate->ComputeInStock(type.TypeID, &in_stock), E_FAIL);
    EXPECT_EQ(in_stock, 10);
}

TEST(StockTypesGate, name_of_zero_length_is_not_added) {
    const OpenGate<IDBgate1> gate;
    StockTypeInfo type;
    EXPECT_EQ(gate->AddStockType(address_of(type)), E_FAIL);
    EXPECT_EQ(gate->EnumFirstStockType(address_of(type)), E_FAIL);
}

TEST(EquipmentGate, cost_is_text) {
    const OpenGate<IDBgate1> gate;
    EquipInfo record;
    record.Name = "Desk";
    record.Cost = "2,50 EUR";
    ASSERT_EQ(gate->AddEquip(address_of(record)), S_OK);
    record.Cost.Empty();
    ASSERT_EQ(gate->FindEquip(address_of(record)), S_OK);
    EXPECT_EQ(record.Cost, "2,50 EUR");
}

TEST(EquipmentGate, name_of_zero_length_is_not_added) {
    const OpenGate<IDBgate1> gate;
    EquipInfo record;
    EXPECT_EQ(gate->AddEquip(address_of(record)), E_FAIL);
    EXPECT_EQ(gate->EnumFirstEquip(address_of(record)), E_FAIL);
}

#ifndef _WIN32  // an open file cannot be taken away there
TEST(EquipmentGate, sample_rows_are_read_like_any_other) {
    const OpenGate<IDBgate1> gate;
    std::filesystem::remove(gate.file("sldb.mdb"));
    ASSERT_EQ(gate->OpenDB(), S_OK);
    EquipInfo record;
    ASSERT_EQ(gate->EnumFirstEquip(address_of(record)), S_OK);
    EXPECT_EQ(record.Name, "S3200 - AKAI");
    EXPECT_EQ(record.Action, "New gear");
    EXPECT_EQ(record.Cost, "$ 800");
    EXPECT_EQ(record.Notes, "second hand. 127MB RAM");
    EXPECT_GT(record.ActDate.GetTime(), 0);
    EXPECT_EQ(record.ActDate.GetHour(), 0);
    ASSERT_EQ(gate->EnumNextEquip(address_of(record)), S_OK);
    EXPECT_EQ(record.Name, "TR-Rack KORG");
    EXPECT_EQ(gate->EnumNextEquip(address_of(record)), E_FAIL);
}
#endif

// ---- The number on hand

TEST(InStockGate, bought_minus_handed_out_is_given_and_stored) {
    const OpenGate<IDBgate1> gate;
    add_type(*gate, "CD");
    add_type(*gate, "DAT");
    const LONG type = add_type(*gate, "Tape", 55, 1.1f, 7);
    ASSERT_EQ(type, 3);
    buy(*gate, type, 10);
    buy(*gate, type, 5);
    buy(*gate, 1, 100);
    hand_out(*gate, type, 4);
    hand_out(*gate, type, 2);
    hand_out(*gate, 2, 100);
    LONG in_stock = -1;
    EXPECT_EQ(gate->ComputeInStock(type, &in_stock), S_OK);
    EXPECT_EQ(in_stock, 9);
    EXPECT_EQ(in_stock_of(*gate, type), 9);
    StockTypeInfo record;
    record.TypeID = type;
    ASSERT_EQ(gate->FindStockType(address_of(record)), S_OK);
    EXPECT_EQ(record.TypeName, "Tape");  // written back as it was
    EXPECT_EQ(record.ItemPrice, 1.1f);
    EXPECT_EQ(record.ExData, 7);
    EXPECT_EQ(in_stock_of(*gate, 1), 0);
    EXPECT_EQ(in_stock_of(*gate, 2), 0);
}

TEST(InStockGate, type_without_stock_and_supply_has_none) {
    const OpenGate<IDBgate1> gate;
    const LONG type = add_type(*gate, "Tape", 55);
    LONG in_stock = -1;
    EXPECT_EQ(gate->ComputeInStock(type, &in_stock), S_OK);
    EXPECT_EQ(in_stock, 0);
    EXPECT_EQ(in_stock_of(*gate, type), 0);
}

TEST(InStockGate, supply_beyond_stock_is_negative) {
    const OpenGate<IDBgate1> gate;
    const LONG type = add_type(*gate, "Tape");
    buy(*gate, type, 2);
    hand_out(*gate, type, 5);
    LONG in_stock = 99;
    EXPECT_EQ(gate->ComputeInStock(type, &in_stock), S_OK);
    EXPECT_EQ(in_stock, -3);
    EXPECT_EQ(in_stock_of(*gate, type), -3);
}

TEST(InStockGate, unknown_type_fails_with_the_difference_given) {
    const OpenGate<IDBgate1> gate;
    buy(*gate, 12, 8);
    hand_out(*gate, 12, 3);
    LONG in_stock = -1;
    EXPECT_EQ(gate->ComputeInStock(12, &in_stock), E_FAIL);
    EXPECT_EQ(in_stock, 5);
}

// Deliberate: what was handed out is counted by its StockID as if that were a type.
TEST(InStockGate, purchase_key_of_a_hand_out_is_taken_as_a_type) {
    const OpenGate<IDBgate1> gate;
    add_type(*gate, "CD");
    const LONG type = add_type(*gate, "Tape");
    const LONG purchase = buy(*gate, type, 10);
    ASSERT_NE(purchase, type);
    hand_out(*gate, purchase, 4);
    LONG in_stock = -1;
    EXPECT_EQ(gate->ComputeInStock(type, &in_stock), S_OK);
    EXPECT_EQ(in_stock, 10);
    EXPECT_EQ(gate->ComputeInStock(purchase, &in_stock), S_OK);
    EXPECT_EQ(in_stock, -4);
}

TEST(InStockGate, sums_beyond_32_bits_keep_their_low_ones) {
    const OpenGate<IDBgate1> gate;
    const LONG type = add_type(*gate, "Tape");
    for (int i = 0; i < 3; ++i) buy(*gate, type, INT_MAX);
    hand_out(*gate, type, INT_MIN);
    LONG in_stock = -1;
    EXPECT_EQ(gate->ComputeInStock(type, &in_stock), S_OK);
    EXPECT_EQ(in_stock, static_cast<LONG>(static_cast<std::uint32_t>(3LL * INT_MAX - INT_MIN)));
}

TEST(InStockGate, closed_database_fails_with_0) {
    const OpenGate<IDBgate1> gate;
    const LONG type = add_type(*gate, "Tape");
    buy(*gate, type, 2);
    ASSERT_EQ(gate->CloseDB(), S_OK);
    const auto fresh = gate.host().create<IDBgate1>();
    for (IDBgate1* const closed : {&*gate, fresh.get()}) {
        LONG in_stock = 77;
        EXPECT_EQ(closed->ComputeInStock(type, &in_stock), E_FAIL);
        EXPECT_EQ(in_stock, 0);
    }
}

// The number is stored before anything can fail, so a reference of whatever kind holds it then too.
TEST(InStockGate, failing_call_by_name_stores_its_number_in_every_kind_of_reference) {
    const OpenGate<IDBgate1> gate;
    constexpr LONG kNoType = 4711;
    buy(*gate, kNoType, 5);
    for (const LONG stored : {5, 0}) {
        SCOPED_TRACE(stored);
        const auto fails = [&](Variant place) {
            const Outcome outcome = invoke(*gate, u"ComputeInStock", {Variant::i4(kNoType), std::move(place)});
            EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
            EXPECT_EQ(outcome.scode, E_FAIL);
        };
        for (const LONG before : {stored, LONG{0}, LONG{77}}) {
            LONG whole = before;
            fails(Variant::ref(whole));
            EXPECT_EQ(whole, stored);
        }
        // Values that look like the number only after a conversion, or that have none.
        for (const double before : {stored + 0.4, stored - 0.3, 1e12, -1e300}) {
            double real = before;
            fails(Variant::ref_to(VT_R8, &real));
            EXPECT_EQ(real, stored) << before;
            Variant inner = Variant::r8(before);
            fails(Variant::ref(inner));
            EXPECT_EQ(inner.vt, VT_I4) << before;
            EXPECT_EQ(inner.lVal, stored) << before;
        }
        for (Variant inner : {Variant(), Variant::text(u"5"), Variant::text(u""), Variant::text(u"no number")}) {
            fails(Variant::ref(inner));
            EXPECT_EQ(inner.vt, VT_I4);
            EXPECT_EQ(inner.lVal, stored);
        }
        hand_out(*gate, kNoType, 5);
    }
    // A method that stores nothing when it fails leaves what is there.
    ASSERT_EQ(gate->CloseDB(), S_OK);
    Variant version = Variant::text(u"before");
    EXPECT_EQ(invoke(*gate, u"GetDBVer", {Variant::ref(version)}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(version.vt, VT_BSTR);
    Variant stock;
    EXPECT_EQ(invoke(*gate, u"ComputeInStock", {Variant::i4(1), Variant::ref(stock)}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(stock.vt, VT_I4);
    EXPECT_EQ(stock.lVal, 0);
}

// Outside of the contract, which asks for a place; a host in error is not worth a crash.
TEST(InStockGate, null_place_fails) {
    const OpenGate<IDBgate1> gate;
    EXPECT_EQ(gate->ComputeInStock(add_type(*gate, "Tape", 5), nullptr), E_FAIL);
    EXPECT_EQ(in_stock_of(*gate, 1), 5);
}

}  // namespace
