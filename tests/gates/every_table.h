// Every table that a gate serves by the six operations: what holds for all of them is checked on all of them.
//
//     on_every_table([](const auto& table) { expect_something(table); });
#pragma once

#include "tests/gates/bookings_cases.h"
#include "tests/gates/contacts_cases.h"
#include "tests/gates/definitions_cases.h"
#include "tests/gates/engineers_cases.h"
#include "tests/gates/gear_cases.h"
#include "tests/gates/invoices_cases.h"
#include "tests/gates/media_library_cases.h"
#include "tests/gates/projects_cases.h"
#include "tests/gates/record_round_trip.h"
#include "tests/gates/sessions_cases.h"
#include "tests/gates/songs_cases.h"
#include "tests/gates/stock_cases.h"

namespace testing_support {

template <class Check>
void on_every_table(Check&& check) {
    const auto on_each = [&](const auto&... tables) {
        const auto on = [&](const auto& table) {
            SCOPED_TRACE(table.table);
            check(table);
        };
        (on(tables), ...);
    };
    on_each(kProjects, kSongs, kTracks, kMixes, kSessions, kPartics, kPayments, kActivities, kClients, kCategories,
            kMessages, kServices, kEngineers, kSequencers, kRooms, kStock, kSupply, kStockTypes, kEquipment, kGroups,
            kLibraries, kFiles, kBookings, kInvoices, kInvoiceLines);
    on_each(gear_case<IDBgate2>(), gear_service_case<IDBgate2>(), gear_repair_case<IDBgate2>(),
            gear_category_case<IDBgate2>(), kPartialGearRentals);
    on_each(gear_case<IDBGate3>(), gear_service_case<IDBGate3>(), gear_repair_case<IDBGate3>(),
            gear_category_case<IDBGate3>(), kGearRentals);
}

template <class Table>
struct CaseOf;
template <class Gate_, class Record_>
struct CaseOf<RecordCase<Gate_, Record_>> {
    using Gate = Gate_;
    using Record = Record_;
};
// Of the `table` that a check is given.
template <class Table>
using GateOf = typename CaseOf<std::remove_cvref_t<Table>>::Gate;
template <class Table>
using RecordOf = typename CaseOf<std::remove_cvref_t<Table>>::Record;

}  // namespace testing_support
