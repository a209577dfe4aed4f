// The five gear tables through both gear gates.
#include "tests/gates/dates.h"
#include "tests/gates/gear_cases.h"
#include "tests/gates/record_round_trip.h"

namespace {

using namespace testing_support;

template <class Gate>
const RecordCase<Gate, GearRentInfo>& rentals() {
    if constexpr (std::is_same_v<Gate, IDBgate2>) {
        return kPartialGearRentals;
    } else {
        return kGearRentals;
    }
}

template <class Gate>
class EachGearGate : public testing::Test {};
using GearGates = testing::Types<IDBgate2, IDBGate3>;
TYPED_TEST_SUITE(EachGearGate, GearGates);

// Runs `check` on each of the five tables.
template <class Gate, class Check>
void on_each_table(Check&& check) {
    check(gear_case<Gate>());
    check(gear_service_case<Gate>());
    check(gear_repair_case<Gate>());
    check(gear_category_case<Gate>());
    check(rentals<Gate>());
}

TYPED_TEST(EachGearGate, members_make_the_round_trip) {
    on_each_table<TypeParam>([](const auto& table) {
        SCOPED_TRACE(table.table);
        expect_round_trip(table);
    });
}
TYPED_TEST(EachGearGate, columns_hold_the_members_of_their_name) {
    on_each_table<TypeParam>([](const auto& table) {
        SCOPED_TRACE(table.table);
        expect_columns(table);
    });
}
TYPED_TEST(EachGearGate, failure_leaves_the_record_alone) {
    on_each_table<TypeParam>([](const auto& table) {
        SCOPED_TRACE(table.table);
        expect_failures(table);
    });
}
TYPED_TEST(EachGearGate, mappings_go_in_their_order) {
    on_each_table<TypeParam>([](const auto& table) {
        SCOPED_TRACE(table.table);
        expect_orders(table);
    });
}
TYPED_TEST(EachGearGate, overlong_text_keeps_what_was_set_before) {
    on_each_table<TypeParam>([](const auto& table) {
        SCOPED_TRACE(table.table);
        expect_half_written(table);
    });
}

// Adds a row in which only these members are set; its key.
template <class Gate, class Record, class... Members>
LONG add_with(const RecordCase<Gate, Record>& table, Gate& gate, Members&&... set) {
    Record record;
    (set(record), ...);
    EXPECT_EQ(call(gate, table.add, record), S_OK);
    return record.*table.key;
}
// The keys that a filter gives, each ended by a blank; "-" when it fails at its beginning.
template <class Gate, class Record>
std::string keys(const RecordCase<Gate, Record>& table, Gate& gate, Record filter) {
    if (call(gate, table.first, filter) != S_OK) return "-";
    std::string all;
    do {
        all += std::to_string(filter.*table.key) + " ";
    } while (call(gate, table.next, filter) == S_OK);
    return all;
}

// ---- Rows by the filter

TYPED_TEST(EachGearGate, find_without_key_gives_the_first_row_that_matches) {
    const auto table = gear_case<TypeParam>();
    const OpenGate<TypeParam> gate;
    for (const char* name : {"Neumann", "Yamaha", "new Yamaha"}) {
        add_with(table, *gate, [&](GearInfo& item) { item.Manufacturer = name; });
    }
    GearInfo record;
    record.Manufacturer = "Yam";
    ASSERT_EQ(gate->FindGear(address_of(record)), S_OK);
    EXPECT_EQ(record.RecID, 2);
    EXPECT_EQ(record.Manufacturer, "Yamaha");
    record = GearInfo();
    record.Manufacturer = "Y?m*h";  // wildcards are wildcards
    ASSERT_EQ(gate->FindGear(address_of(record)), S_OK);
    EXPECT_EQ(record.RecID, 2);
    record = GearInfo();
    record.Manufacturer = "19\" rack";
    EXPECT_EQ(gate->FindGear(address_of(record)), E_FAIL);
    EXPECT_EQ(record.RecID, 0);
}

TYPED_TEST(EachGearGate, each_condition_of_gear_selects) {
    const auto table = gear_case<TypeParam>();
    const OpenGate<TypeParam> gate;
    LONG GearInfo::*const numbers[] = {&GearInfo::CategoryID, &GearInfo::RoomID, &GearInfo::StatusID};
    CString GearInfo::*const texts[] = {&GearInfo::Manufacturer, &GearInfo::Model, &GearInfo::SerialNo};
    GearInfo everything;
    std::string all;
    for (const auto member : numbers) {
        everything.*member = 5;
        all += std::to_string(add_with(table, *gate, [&](GearInfo& item) { item.*member = 5; })) + " ";
    }
    for (const auto member : texts) {
        everything.*member = "Deep";
        all += std::to_string(add_with(table, *gate, [&](GearInfo& item) { item.*member = "a deep one"; })) + " ";
    }
    ASSERT_EQ(gate->AddGear(address_of(everything)), S_OK);
    all += "7 ";
    EXPECT_EQ(keys(table, *gate, GearInfo()), all);
    LONG key = 0;
    for (const auto member : numbers) {
        GearInfo filter;
        filter.*member = 5;
        EXPECT_EQ(keys(table, *gate, filter), std::to_string(++key) + " 7 ");
    }
    for (const auto member : texts) {
        GearInfo filter;
        filter.*member = "eep";
        EXPECT_EQ(keys(table, *gate, filter), std::to_string(++key) + " 7 ");
    }
    everything.RecID = 0;
    EXPECT_EQ(keys(table, *gate, everything), "7 ");
    everything.RecID = 2;  // the key overrides every other condition
    EXPECT_EQ(keys(table, *gate, everything), "2 ");
}

TYPED_TEST(EachGearGate, update_without_key_changes_the_first_row_that_matches) {
    const auto table = gear_service_case<TypeParam>();
    const OpenGate<TypeParam> gate;
    for (const LONG item : {1, 2, 2}) add_with(table, *gate, [&](GearServInfo& service) { service.GearID = item; });
    GearServInfo record;
    record.GearID = 2;
    record.ServiceTypeID = 9;  // no condition
    ASSERT_EQ(gate->UpdateGearService(address_of(record)), S_OK);
    EXPECT_EQ(record.RecID, 0);
    for (const LONG key : {1, 2, 3}) {
        GearServInfo found;
        found.RecID = key;
        ASSERT_EQ(gate->FindGearService(address_of(found)), S_OK);
        EXPECT_EQ(found.ServiceTypeID, key == 2 ? 9 : 0);
    }
}

TYPED_TEST(EachGearGate, delete_with_nothing_set_takes_the_first_row_of_the_table) {
    const auto table = gear_service_case<TypeParam>();
    const OpenGate<TypeParam> gate;
    GearServInfo nothing;
    EXPECT_EQ(gate->DeleteGearService(address_of(nothing)), E_FAIL);  // an empty table
    for (const char* name : {"hour", "day"}) {
        add_with(table, *gate, [&](GearServInfo& service) { service.Name = name; });
    }
    EXPECT_EQ(gate->DeleteGearService(address_of(nothing)), S_OK);
    EXPECT_EQ(keys(table, *gate, GearServInfo()), "2 ");
}

TYPED_TEST(EachGearGate, delete_without_key_takes_the_first_row_that_matches_only) {
    const auto table = gear_repair_case<TypeParam>();
    const OpenGate<TypeParam> gate;
    for (const LONG technician : {1, 2, 2}) {
        add_with(table, *gate, [&](GRepairsInfo& repair) { repair.TechID = technician; });
    }
    GRepairsInfo record;
    record.TechID = 2;
    EXPECT_EQ(gate->DeleteGRepairs(address_of(record)), S_OK);
    EXPECT_EQ(keys(table, *gate, GRepairsInfo()), "1 3 ");
}

TYPED_TEST(EachGearGate, update_with_key_changes_that_row_whatever_else_is_set) {
    const auto table = gear_repair_case<TypeParam>();
    const OpenGate<TypeParam> gate;
    for (int i = 0; i < 8; ++i) add_variant(table, *gate, 1);
    GRepairsInfo record = filled(table, 7, 2);
    ASSERT_EQ(gate->UpdateGRepairs(address_of(record)), S_OK);
    for (LONG key = 1; key <= 8; ++key) expect_found(table, *gate, key, key == 7 ? 2 : 1, 3);
}

TYPED_TEST(EachGearGate, category_without_key_is_not_found_or_deleted) {
    const auto table = gear_category_case<TypeParam>();
    const OpenGate<TypeParam> gate;
    add_with(table, *gate, [](GearCatInfo& category) { category.Name = "Microphones"; });
    GearCatInfo record;
    EXPECT_EQ(gate->DeleteGearCat(address_of(record)), E_FAIL);
    record.Name = "Microphones";
    EXPECT_EQ(gate->FindGearCat(address_of(record)), E_FAIL);
    EXPECT_EQ(gate->UpdateGearCat(address_of(record)), E_FAIL);
    EXPECT_EQ(keys(table, *gate, GearCatInfo()), "1 ");
}

TYPED_TEST(EachGearGate, conditions_of_services_and_repairs_select) {
    const OpenGate<TypeParam> gate;
    const auto services = gear_service_case<TypeParam>();
    add_with(services, *gate, [](GearServInfo& service) { service.RoomID = 4; });
    add_with(services, *gate, [](GearServInfo& service) { service.TimeUnitID = 4; });
    add_with(services, *gate, [](GearServInfo& service) { service.Name = "per hour"; });
    GearServInfo service;
    service.RoomID = 4;
    EXPECT_EQ(keys(services, *gate, service), "1 ");
    service = GearServInfo();
    service.TimeUnitID = 4;
    EXPECT_EQ(keys(services, *gate, service), "2 ");
    service = GearServInfo();
    service.Name = "HOUR";
    EXPECT_EQ(keys(services, *gate, service), "3 ");

    const auto repairs = gear_repair_case<TypeParam>();
    add_with(repairs, *gate, [](GRepairsInfo& repair) { repair.GearID = 4; });
    add_with(repairs, *gate, [](GRepairsInfo& repair) { repair.ClaimNo = "A-17"; });
    add_with(repairs, *gate, [](GRepairsInfo& repair) { repair.GearName = "Desk"; });
    GRepairsInfo repair;
    repair.GearID = 4;
    EXPECT_EQ(keys(repairs, *gate, repair), "1 ");
    repair = GRepairsInfo();
    repair.ClaimNo = "-17";
    EXPECT_EQ(keys(repairs, *gate, repair), "2 ");
    repair = GRepairsInfo();
    repair.GearName = "esk";
    EXPECT_EQ(keys(repairs, *gate, repair), "3 ");
}

// ---- Rentals

TEST(RentalsGate, older_gate_stores_neither_gear_nor_client_nor_room) {
    GateHost host;
    const auto older = host.create<IDBgate2>();
    ASSERT_EQ(older->OpenDB(), S_OK);
    GearRentInfo record;
    record.GearID = 5;
    record.ClientID = 9;
    record.RoomID = 2;
    record.ProjID = 12;
    ASSERT_EQ(older->AddGearRent(address_of(record)), S_OK);
    EXPECT_EQ(record.GearID, 5);
    const auto newer = host.create<IDBGate3>();
    ASSERT_EQ(newer->OpenDB(), S_OK);
    GearRentInfo found;
    found.RecID = record.RecID;
    found.GearID = found.ClientID = found.RoomID = -1;
    ASSERT_EQ(newer->FindGearRent(address_of(found)), S_OK);
    EXPECT_EQ(found.ProjID, 12);
    EXPECT_EQ(found.GearID, 0);
    EXPECT_EQ(found.ClientID, 0);
    EXPECT_EQ(found.RoomID, 0);
}

TEST(RentalsGate, older_gate_leaves_what_it_does_not_serve_in_a_row_and_in_a_record) {
    GateHost host;
    const auto newer = host.create<IDBGate3>();
    ASSERT_EQ(newer->OpenDB(), S_OK);
    GearRentInfo record;
    record.GearID = 5;
    record.ClientID = 9;
    record.RoomID = 2;
    ASSERT_EQ(newer->AddGearRent(address_of(record)), S_OK);
    const auto older = host.create<IDBgate2>();
    ASSERT_EQ(older->OpenDB(), S_OK);
    GearRentInfo changed;
    changed.RecID = record.RecID;
    changed.GearID = changed.ClientID = changed.RoomID = -7;
    changed.DateFlags = 3;
    changed.QuantType = 4;
    ASSERT_EQ(older->UpdateGearRent(address_of(changed)), S_OK);
    ASSERT_EQ(older->FindGearRent(address_of(changed)), S_OK);
    EXPECT_EQ(changed.GearID, -7);
    EXPECT_EQ(changed.ClientID, -7);
    EXPECT_EQ(changed.RoomID, -7);
    EXPECT_EQ(changed.DateFlags, 3u);
    ASSERT_EQ(newer->FindGearRent(address_of(record)), S_OK);
    EXPECT_EQ(record.GearID, 5);
    EXPECT_EQ(record.ClientID, 9);
    EXPECT_EQ(record.RoomID, 2);
    EXPECT_EQ(record.QuantType, 4);
}

TEST(RentalsGate, older_gate_ignores_room_client_and_dates_of_a_filter) {
    const OpenGate<IDBgate2> gate;
    add_with(kPartialGearRentals, *gate, [](GearRentInfo& rental) { rental.Date = march(10); });
    add_with(kPartialGearRentals, *gate, [](GearRentInfo& rental) { rental.Date = march(20); });
    GearRentInfo filter;
    filter.RoomID = 2;
    filter.ClientID = 9;
    filter.GearID = 5;
    filter.DateFrom = march(30);
    filter.DateTo = march(1);
    filter.DateFlags = 3;
    EXPECT_EQ(keys(kPartialGearRentals, *gate, filter), "1 2 ");
}

TEST(RentalsGate, older_gate_selects_by_service_project_and_name) {
    const OpenGate<IDBgate2> gate;
    add_with(kPartialGearRentals, *gate, [](GearRentInfo& rental) { rental.ServiceID = 3; });
    add_with(kPartialGearRentals, *gate, [](GearRentInfo& rental) { rental.ProjID = 3; });
    add_with(kPartialGearRentals, *gate, [](GearRentInfo& rental) { rental.ServiceName = "mic stand"; });
    GearRentInfo filter;
    filter.ServiceID = 3;
    EXPECT_EQ(keys(kPartialGearRentals, *gate, filter), "1 ");
    filter.ProjID = 3;
    EXPECT_EQ(keys(kPartialGearRentals, *gate, filter), "-");
    filter = GearRentInfo();
    filter.ProjID = 3;
    EXPECT_EQ(keys(kPartialGearRentals, *gate, filter), "2 ");
    filter = GearRentInfo();
    filter.ServiceName = "mic";
    EXPECT_EQ(keys(kPartialGearRentals, *gate, filter), "3 ");
}

TEST(RentalsGate, newer_gate_selects_by_room_and_client_too_but_not_by_gear) {
    const OpenGate<IDBGate3> gate;
    add_with(kGearRentals, *gate, [](GearRentInfo& rental) { rental.RoomID = 2; });
    add_with(kGearRentals, *gate, [](GearRentInfo& rental) { rental.ClientID = 2; });
    add_with(kGearRentals, *gate, [](GearRentInfo& rental) { rental.ServiceID = rental.ProjID = 2; });
    GearRentInfo filter;
    filter.RoomID = 2;
    EXPECT_EQ(keys(kGearRentals, *gate, filter), "1 ");
    filter = GearRentInfo();
    filter.ClientID = 2;
    EXPECT_EQ(keys(kGearRentals, *gate, filter), "2 ");
    filter = GearRentInfo();
    filter.ServiceID = filter.ProjID = 2;
    EXPECT_EQ(keys(kGearRentals, *gate, filter), "3 ");
    filter = GearRentInfo();
    filter.GearID = 99;
    EXPECT_EQ(keys(kGearRentals, *gate, filter), "1 2 3 ");
}

TEST(RentalsGate, newer_gate_selects_by_the_dates_whose_flag_is_set) {
    const OpenGate<IDBGate3> gate;
    for (const int day : {9, 10, 11}) {
        add_with(kGearRentals, *gate, [&](GearRentInfo& rental) { rental.Date = march(day, 15); });
    }
    GearRentInfo filter;
    filter.DateFrom = filter.DateTo = march(10, 23);  // the time of day does not count
    const auto with_flags = [&](DWORD flags) {
        filter.DateFlags = flags;
        return keys(kGearRentals, *gate, filter);
    };
    EXPECT_EQ(with_flags(3), "2 ");  // both ends belong to the span
    EXPECT_EQ(with_flags(1), "2 3 ");
    EXPECT_EQ(with_flags(2), "1 2 ");
    EXPECT_EQ(with_flags(0), "1 2 3 ");
    EXPECT_EQ(with_flags(4), "1 2 3 ");
    GearRentInfo record = filter;
    record.DateFlags = 3;
    ASSERT_EQ(gate->FindGearRent(address_of(record)), S_OK);  // find goes by the dates, too
    EXPECT_EQ(record.RecID, 2);
    EXPECT_EQ(record.DateFlags, 3u);
    EXPECT_EQ(record.DateFrom, march(10, 23));
}

// ---- Databases

TYPED_TEST(EachGearGate, closed_for_one_gate_is_closed_for_all_until_one_opens_again) {
    GateHost host;
    const auto gate = host.create<TypeParam>();
    const auto main = host.create<IDBgate1>();
    ASSERT_EQ(main->OpenDB(), S_OK);
    ASSERT_EQ(gate->OpenDB(), S_OK);
    GearCatInfo record;
    record.Name = "Microphones";
    ASSERT_EQ(gate->AddGearCat(address_of(record)), S_OK);
    ASSERT_EQ(gate->CloseDB(), S_OK);
    EXPECT_EQ(gate->FindGearCat(address_of(record)), E_FAIL);
    LONG version = -1;
    EXPECT_EQ(main->GetDBVer(&version), E_FAIL);
    EXPECT_EQ(gate->CloseDB(), S_OK);
    ASSERT_EQ(main->OpenDB(), S_OK);
    EXPECT_EQ(gate->FindGearCat(address_of(record)), S_OK);
    EXPECT_EQ(gate->OpenDB(), S_OK);
    EXPECT_EQ(gate->FindGearCat(address_of(record)), S_OK);
    EXPECT_EQ(main->GetDBVer(&version), S_OK);
}

TYPED_TEST(EachGearGate, end_of_a_gate_closes_both_databases_and_any_gate_opens_them_again) {
    GateHost host;
    const auto main = host.create<IDBgate1>();
    ASSERT_EQ(main->OpenDB(), S_OK);
    ProjInfo project;
    project.Name = "Songs";
    ASSERT_EQ(main->AddProj(address_of(project)), S_OK);
    InvoiceInfo invoice;
    ASSERT_EQ(main->AddInvoice(address_of(invoice)), S_OK);
    for (int round = 0; round < 2; ++round) {  // the engine is ended by the first of them only
        {
            const auto gate = host.create<TypeParam>();
            ASSERT_EQ(gate->OpenDB(), S_OK);
            GearInfo item;
            item.Model = "R8";
            ASSERT_EQ(gate->AddGear(address_of(item)), S_OK);
            on_each_table<TypeParam>([&](const auto& table) {  // cursors that are open at the gate's end
                auto record = question(table);
                call(*gate, table.first, record);
            });
            EXPECT_EQ(main->FindProj(address_of(project)), S_OK);
        }
        EXPECT_EQ(main->FindProj(address_of(project)), E_FAIL);
        EXPECT_EQ(main->FindInvoice(address_of(invoice)), E_FAIL);
        ASSERT_EQ(main->OpenDB(), S_OK);
        EXPECT_EQ(main->FindProj(address_of(project)), S_OK);
        EXPECT_EQ(main->FindInvoice(address_of(invoice)), S_OK);
    }
    const auto gate = host.create<TypeParam>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    EXPECT_EQ(keys(gear_case<TypeParam>(), *gate, GearInfo()), "1 2 ");
}

TYPED_TEST(EachGearGate, open_makes_both_files_of_an_empty_folder) {
    GateHost host;
    const auto gate = host.create<TypeParam>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    EXPECT_TRUE(std::filesystem::exists(host.file("sldb.mdb")));
    EXPECT_TRUE(std::filesystem::exists(host.file("kvinvdb.mdb")));
    EXPECT_EQ(gate->OpenDB(), S_OK);
}

}  // namespace
