// A studio of ten years: how many rows each table has by then, and which methods of the gates serve it.
//
// All tables are here that a gate adds rows to and that new files have. The children of a parent were added one after
// the other, and dates rise from row to row, as in a studio that enters what happens.
#pragma once

#include <kvdb/kvdb.h>

#include <cstdint>
#include <string_view>
#include <tuple>

#include "bench/record_store.h"
#include "bench/store.h"
#include "gear/gear.h"
#include "studio/bookings.h"
#include "studio/contacts.h"
#include "studio/engineers.h"
#include "studio/invoices.h"
#include "studio/media_library.h"
#include "studio/projects.h"
#include "studio/sessions.h"
#include "studio/songs.h"
#include "studio/stock.h"

namespace bench {

// What the work needs; null for methods that it does not call.
template <class Gate>
struct StudioMethods {
    using Method = HRESULT (STDMETHODCALLTYPE Gate::*)(LONG_PTR);

    Method add = nullptr;
    Method find = nullptr;
    Method update = nullptr;
    Method first = nullptr;
    Method next = nullptr;
};

template <class Record, class Gate = IDBgate1>
struct StudioTable {
    const studio::TableMapping<Record>& mapping;
    std::int32_t rows = 0;
    StudioMethods<Gate> methods = {};
    // The member that refers to a parent, and how many parents there are.
    LONG Record::*parent = nullptr;
    std::int32_t parents = 0;
    const char* list_by = nullptr;               // the column that lists ask for; the peer has an index on it
    Record (*sample)(std::int32_t n) = nullptr;  // null: made from the declaration of the columns
};

// A list of names is no record.
struct StudioNames {
    const char* table;
    HRESULT (STDMETHODCALLTYPE IDBgate1::*add)(LPSTR);
};
inline constexpr std::int32_t kNamesOfList = 12;
inline constexpr StudioNames kStudioNames[] = {
    {"Def_TrackTypes", &IDBgate1::AddTrackType},
    {"Def_ProjTypes", &IDBgate1::AddProjType},
    {"Def_TrackDestination", &IDBgate1::AddTrackDestin},
    {"Def_EquipActs", &IDBgate1::AddEquipAct},
};

// Parents of other rows.
inline constexpr std::int32_t kStudioProjects = 1500;
inline constexpr std::int32_t kStudioSongs = 9000;
inline constexpr std::int32_t kStudioSessions = 12000;
inline constexpr std::int32_t kStudioContacts = 3000;
inline constexpr std::int32_t kStudioInvoices = 6000;
inline constexpr std::int32_t kLinesOfStudioInvoice = 5;
inline constexpr std::int32_t kStudioGear = 400;
inline constexpr std::int32_t kLibraryGroups = 10;
inline constexpr std::int32_t kLibraries = 60;

using StudioGate = IDBgate1;
using GearGate = IDBGate3;

// Parents before children.
inline const std::tuple kTenYears{
    StudioTable<ProjInfo>{
        .mapping = studio::kProjects,
        .rows = kStudioProjects,
        .methods = {.add = &StudioGate::AddProj, .find = &StudioGate::FindProj, .update = &StudioGate::UpdateProj},
        .sample = sample_project},
    StudioTable<SongInfo>{.mapping = studio::kSongs,
                          .rows = kStudioSongs,
                          .methods = {&StudioGate::AddSong, &StudioGate::FindSong, &StudioGate::UpdateSong,
                                      &StudioGate::EnumFirstSong, &StudioGate::EnumNextSong},
                          .parent = &SongInfo::ProjID,
                          .parents = kStudioProjects,
                          .list_by = "ProjID",
                          .sample = [](std::int32_t n) { return sample_song(0, n); }},
    StudioTable<TrackInfo>{.mapping = studio::kTracks,
                           .rows = 60000,
                           .methods = {.add = &StudioGate::AddTrack,
                                       .first = &StudioGate::EnumFirstTrack,
                                       .next = &StudioGate::EnumNextTrack},
                           .parent = &TrackInfo::SongID,
                           .parents = kStudioSongs,
                           .list_by = "SongID"},
    StudioTable<MixInfo>{.mapping = studio::kMixFiles,
                         .rows = 18000,
                         .methods = {.add = &StudioGate::AddMix},
                         .parent = &MixInfo::SongID,
                         .parents = kStudioSongs},
    StudioTable<SessionInfo>{.mapping = studio::kSessions,
                             .rows = kStudioSessions,
                             .methods = {.add = &StudioGate::AddSession},
                             .parent = &SessionInfo::ProjID,
                             .parents = kStudioProjects,
                             .sample = sample_session},
    StudioTable<ParticInfo>{.mapping = studio::kParticipants,
                            .rows = 30000,
                            .methods = {.add = &StudioGate::AddPartic},
                            .parent = &ParticInfo::SessionID,
                            .parents = kStudioSessions},
    StudioTable<ProjPayInfo>{.mapping = studio::kProjPayments,
                             .rows = 4000,
                             .methods = {.add = &StudioGate::AddProjPay},
                             .parent = &ProjPayInfo::ProjID,
                             .parents = kStudioProjects},
    StudioTable<ProjActInfo>{.mapping = studio::kProjActivities,
                             .rows = 15000,
                             .methods = {.add = &StudioGate::AddProjAct},
                             .parent = &ProjActInfo::ProjID,
                             .parents = kStudioProjects},
    StudioTable<ClientInfo>{.mapping = studio::kClients,
                            .rows = kStudioContacts,
                            .methods = {.add = &StudioGate::AddClient,
                                        .find = &StudioGate::FindClient,
                                        .update = &StudioGate::UpdateClient},
                            .sample = sample_client},
    StudioTable<ConCatInfo>{
        .mapping = studio::kContactCategories, .rows = 50, .methods = {.add = &StudioGate::AddConCat}},
    StudioTable<MsgInfo>{.mapping = studio::kMessages,
                         .rows = 10000,
                         .methods = {.add = &StudioGate::AddMsg},
                         .parent = &MsgInfo::ContactID,
                         .parents = kStudioContacts},
    StudioTable<ServiceInfo>{.mapping = studio::kServices,
                             .rows = 300,
                             .methods = {.add = &StudioGate::AddService},
                             .parent = &ServiceInfo::ContactID,
                             .parents = kStudioContacts},
    StudioTable<StockTypeInfo>{.mapping = studio::kStockTypes,
                               .rows = kStockTypes,
                               .methods = {.add = &StudioGate::AddStockType},
                               .sample = sample_stock_type},
    StudioTable<StockInfo>{
        .mapping = studio::kStock, .rows = 1200, .methods = {.add = &StudioGate::AddStock}, .sample = sample_stock},
    StudioTable<SupplyAct>{.mapping = studio::kSupply,
                           .rows = 6000,
                           .methods = {.add = &StudioGate::AddSupplyAct},
                           .parent = &SupplyAct::ProjID,
                           .parents = kStudioProjects,
                           .sample = sample_supply},
    StudioTable<EquipInfo>{.mapping = studio::kEquipment, .rows = 800, .methods = {.add = &StudioGate::AddEquip}},
    StudioTable<LibGrpInfo>{
        .mapping = studio::kLibraryGroups, .rows = kLibraryGroups, .methods = {.add = &StudioGate::AddLibGrp}},
    StudioTable<MediaLibInfo>{.mapping = studio::kMediaLibraries,
                              .rows = kLibraries,
                              .methods = {.add = &StudioGate::AddMediaLib},
                              .parent = &MediaLibInfo::GroupID,
                              .parents = kLibraryGroups},
    StudioTable<MediaFileInfo>{.mapping = studio::kMediaFiles,
                               .rows = 5000,
                               .methods = {.add = &StudioGate::AddMediaFile},
                               .parent = &MediaFileInfo::LibID,
                               .parents = kLibraries},
    StudioTable<RoomInfo>{.mapping = studio::kRooms, .rows = 5, .methods = {.add = &StudioGate::AddRoom}},
    StudioTable<SeqInfo>{.mapping = studio::kSequencers, .rows = 6, .methods = {.add = &StudioGate::AddSequencer}},
    StudioTable<BookingInfo>{.mapping = studio::kBookings,
                             .rows = 20000,
                             .methods = {&StudioGate::AddBooking, &StudioGate::FindBooking, &StudioGate::UpdateBooking,
                                         &StudioGate::EnumFirstBooking, &StudioGate::EnumNextBooking},
                             .parent = &BookingInfo::ProjID,
                             .parents = kStudioProjects,
                             .list_by = "DateStart",
                             .sample = sample_booking},
    StudioTable<InvoiceInfo>{.mapping = studio::kInvoices,
                             .rows = kStudioInvoices,
                             .methods = {.add = &StudioGate::AddInvoice},
                             .parent = &InvoiceInfo::InvoiceID,  // its own number, which its lines refer to
                             .parents = kStudioInvoices},
    StudioTable<InvParamsInfo>{.mapping = studio::kInvoiceLines,
                               .rows = kLinesOfStudioInvoice * kStudioInvoices,
                               .methods = {.add = &StudioGate::AddInvParams,
                                           .first = &StudioGate::EnumFirstInvParams,
                                           .next = &StudioGate::EnumNextInvParams},
                               .parent = &InvParamsInfo::InvoiceID,
                               .parents = kStudioInvoices,
                               .list_by = "InvoiceID",
                               .sample = sample_line},
    StudioTable<GearCatInfo, GearGate>{
        .mapping = gear::kCategories, .rows = 40, .methods = {.add = &GearGate::AddGearCat}},
    StudioTable<GearInfo, GearGate>{
        .mapping = gear::kGear, .rows = kStudioGear, .methods = {.add = &GearGate::AddGear}, .sample = sample_gear},
    StudioTable<GearServInfo, GearGate>{.mapping = gear::kServices,
                                        .rows = kStudioGear,
                                        .methods = {.add = &GearGate::AddGearService},
                                        .parent = &GearServInfo::GearID,
                                        .parents = kStudioGear},
    StudioTable<GRepairsInfo, GearGate>{.mapping = gear::kRepairs,
                                        .rows = 600,
                                        .methods = {.add = &GearGate::AddGRepairs},
                                        .parent = &GRepairsInfo::GearID,
                                        .parents = kStudioGear},
    StudioTable<GearRentInfo, GearGate>{.mapping = gear::kRentals,
                                        .rows = 5000,
                                        .methods = {.add = &GearGate::AddGearRent},
                                        .parent = &GearRentInfo::GearID,
                                        .parents = kStudioGear},
};

template <class Record>
const StudioTable<Record>& studio_table() {
    return std::get<StudioTable<Record>>(kTenYears);
}

// Row `n`, from 0, of the table; rows from its number of rows on are new ones.
template <class Record, class Gate>
Record studio_row(const StudioTable<Record, Gate>& table, std::int32_t n) {
    Record record = table.sample != nullptr ? table.sample(n) : Record{};
    for (const studio::Column<Record>& column : table.mapping.write) {
        const std::string_view name = column.name;
        if (column.time != nullptr) {
            const std::int64_t day = std::int64_t{n} * kDays / table.rows;
            record.*column.time = sample_day(static_cast<std::int32_t>(day));
        } else if (table.sample != nullptr) {
            continue;
        } else if (column.text != nullptr && (name == "Notes" || name == "Details" || name.starts_with("Descript"))) {
            record.*column.text = "A few words, as they are written in passing.";
        } else if (column.text != nullptr) {
            (record.*column.text).Format("%s %07d", column.name, static_cast<int>(n));
        } else if (column.number != nullptr) {
            record.*column.number = name.ends_with("ID") ? n % 100 + 1 : n % 3;
        } else {
            record.*column.amount = static_cast<float>(n % 200) + 0.5f;
        }
    }
    if (table.parent != nullptr) {
        record.*table.parent = static_cast<LONG>(std::int64_t{n} * table.parents / table.rows + 1);
    }
    return record;
}

}  // namespace bench
