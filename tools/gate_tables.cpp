// Which methods of which gate serve which table. Gear goes by the newer gate, which knows the whole rental.
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
#include "tools/name_list_table.h"
#include "tools/typed_gate_table.h"

namespace tools {
namespace {

using Tables = std::vector<std::unique_ptr<GateTable>>;
using G = IDBgate1;
using H = IDBGate3;

template <class Record>
void add_table(Tables& tables, const studio::TableMapping<Record>& mapping, const RecordMethods<G>& methods) {
    tables.push_back(std::make_unique<TypedGateTable<G, Record>>(mapping, methods));
}

template <class Record>
void add_gear(Tables& tables, const studio::TableMapping<Record>& mapping, const RecordMethods<H>& methods) {
    tables.push_back(std::make_unique<TypedGateTable<H, Record>>(mapping, methods));
}

void add_list(Tables& tables, const studio::TableMapping<studio::ListName>& mapping, const NameListMethods& methods) {
    tables.push_back(std::make_unique<NameListTable>(mapping, methods));
}

void add_projects(Tables& t) {
    add_table(t, studio::kProjects,
              {.first = &G::EnumFirstProj,
               .next = &G::EnumNextProj,
               .find = &G::FindProj,
               .add = &G::AddProj,
               .update = &G::UpdateProj,
               .remove_key = &G::DeleteProj});
    add_table(t, studio::kSongs,
              {.first = &G::EnumFirstSong,
               .next = &G::EnumNextSong,
               .find = &G::FindSong,
               .add = &G::AddSong,
               .update = &G::UpdateSong,
               .remove_key = &G::DeleteSong});
    add_table(t, studio::kTracks,
              {.first = &G::EnumFirstTrack,
               .next = &G::EnumNextTrack,
               .find = &G::FindTrack,
               .add = &G::AddTrack,
               .update = &G::UpdateTrack,
               .remove_key = &G::DeleteTrack});
    add_table(t, studio::kMixFiles,
              {.first = &G::EnumFirstMix,
               .next = &G::EnumNextMix,
               .find = &G::FindMix,
               .add = &G::AddMix,
               .update = &G::UpdateMix,
               .remove = &G::DeleteMix});
    add_table(t, studio::kSessions,
              {.first = &G::EnumFirstSession,
               .next = &G::EnumNextSession,
               .find = &G::FindSession,
               .add = &G::AddSession,
               .update = &G::UpdateSession,
               .remove_key = &G::DeleteSession});
    add_table(t, studio::kParticipants,
              {.first = &G::EnumFirstPartic,
               .next = &G::EnumNextPartic,
               .find = &G::FindPartic,
               .add = &G::AddPartic,
               .update = &G::UpdatePartic,
               .remove = &G::DeletePartic});
    add_table(t, studio::kProjPayments,
              {.first = &G::EnumFirstProjPay,
               .next = &G::EnumNextProjPay,
               .find = &G::FindProjPay,
               .add = &G::AddProjPay,
               .update = &G::UpdateProjPay,
               .remove = &G::DeleteProjPay});
    add_table(t, studio::kProjActivities,
              {.first = &G::EnumFirstProjAct,
               .next = &G::EnumNextProjAct,
               .find = &G::FindProjAct,
               .add = &G::AddProjAct,
               .update = &G::UpdateProjAct,
               .remove = &G::DeleteProjAct});
}

void add_contacts(Tables& t) {
    add_table(t, studio::kClients,
              {.first = &G::EnumFirstClient,
               .next = &G::EnumNextClient,
               .find = &G::FindClient,
               .add = &G::AddClient,
               .update = &G::UpdateClient,
               .remove_key = &G::DeleteClient});
    add_table(t, studio::kContactCategories,
              {.first = &G::EnumFirstConCat,
               .next = &G::EnumNextConCat,
               .find = &G::FindConCat,
               .add = &G::AddConCat,
               .update = &G::UpdateConCat,
               .remove = &G::DeleteConCat});
    add_table(t, studio::kMessages,
              {.first = &G::EnumFirstMsg,
               .next = &G::EnumNextMsg,
               .find = &G::FindMsg,
               .add = &G::AddMsg,
               .update = &G::UpdateMsg,
               .remove = &G::DeleteMsg});
    add_table(t, studio::kServices,
              {.first = &G::EnumFirstService,
               .next = &G::EnumNextService,
               .find = &G::FindService,
               .add = &G::AddService,
               .update = &G::UpdateService,
               .remove = &G::DeleteService});
}

void add_store(Tables& t) {
    add_table(t, studio::kStock,
              {.first = &G::EnumFirstStock,
               .next = &G::EnumNextStock,
               .find = &G::FindStock,
               .add = &G::AddStock,
               .update = &G::UpdateStock,
               .remove_key = &G::DeleteStock});
    add_table(t, studio::kSupply,
              {.first = &G::EnumFirstSupply,
               .next = &G::EnumNextSupply,
               .find = &G::FindSupplyAct,
               .add = &G::AddSupplyAct,
               .update = &G::UpdateSupplyAct,
               .remove = &G::DeleteSupplyAct});
    add_table(t, studio::kStockTypes,
              {.first = &G::EnumFirstStockType,
               .next = &G::EnumNextStockType,
               .find = &G::FindStockType,
               .add = &G::AddStockType,
               .update = &G::UpdateStockType,
               .remove = &G::DeleteStockType});
    add_table(t, studio::kEquipment,
              {.first = &G::EnumFirstEquip,
               .next = &G::EnumNextEquip,
               .find = &G::FindEquip,
               .add = &G::AddEquip,
               .update = &G::UpdateEquip,
               .remove_key = &G::DeleteEquip});
}

void add_media(Tables& t) {
    add_table(t, studio::kLibraryGroups,
              {.first = &G::EnumFirstLibGrp,
               .next = &G::EnumNextLibGrp,
               .find = &G::FindLibGrp,
               .add = &G::AddLibGrp,
               .update = &G::UpdateLibGrp,
               .remove = &G::DeleteLibGrp});
    add_table(t, studio::kMediaLibraries,
              {.first = &G::EnumFirstMediaLib,
               .next = &G::EnumNextMediaLib,
               .find = &G::FindMediaLib,
               .add = &G::AddMediaLib,
               .update = &G::UpdateMediaLib,
               .remove = &G::DeleteMediaLib});
    add_table(t, studio::kMediaFiles,
              {.first = &G::EnumFirstMediaFile,
               .next = &G::EnumNextMediaFile,
               .find = &G::FindMediaFile,
               .add = &G::AddMediaFile,
               .update = &G::UpdateMediaFile,
               .remove = &G::DeleteMediaFile});
}

void add_business(Tables& t) {
    add_table(t, studio::kBookings,
              {.first = &G::EnumFirstBooking,
               .next = &G::EnumNextBooking,
               .find = &G::FindBooking,
               .add = &G::AddBooking,
               .update = &G::UpdateBooking,
               .remove = &G::DeleteBooking});
    add_table(t, studio::kInvoices,
              {.first = &G::EnumFirstInvoice,
               .next = &G::EnumNextInvoice,
               .find = &G::FindInvoice,
               .add = &G::AddInvoice,
               .update = &G::UpdateInvoice,
               .remove = &G::DeleteInvoice});
    add_table(t, studio::kInvoiceLines,
              {.first = &G::EnumFirstInvParams,
               .next = &G::EnumNextInvParams,
               .find = &G::FindInvParams,
               .add = &G::AddInvParams,
               .update = &G::UpdateInvParams,
               .remove = &G::DeleteInvParams});
}

void add_definitions(Tables& t) {
    add_table(t, studio::kEngineers,
              {.first = &G::EnumFirstEngineer,
               .next = &G::EnumNextEngineer,
               .find = &G::FindEngineer,
               .add = &G::AddEngineer,
               .update = &G::UpdateEngineer,
               .remove = &G::DeleteEngineer});
    add_table(t, studio::kSequencers,
              {.first = &G::EnumFirstSequencer,
               .next = &G::EnumNextSequencer,
               .find = &G::FindSequencer,
               .add = &G::AddSequencer,
               .update = &G::UpdateSequencer,
               .remove = &G::DeleteSequencer});
    add_table(t, studio::kRooms,
              {.first = &G::EnumFirstRoom,
               .next = &G::EnumNextRoom,
               .find = &G::FindRoom,
               .add = &G::AddRoom,
               .update = &G::UpdateRoom,
               .remove = &G::DeleteRoom});
    add_list(t, studio::kTrackTypes,
             {&G::EnumFirstTrackType, &G::EnumNextTrackType, &G::AddTrackType, &G::DeleteTrackType});
    add_list(t, studio::kProjectTypes,
             {&G::EnumFirstProjType, &G::EnumNextProjType, &G::AddProjType, &G::DeleteProjType});
    add_list(t, studio::kTrackDestinations,
             {&G::EnumFirstTrackDestin, &G::EnumNextTrackDestin, &G::AddTrackDestin, &G::DeleteTrackDestin});
    add_list(t, studio::kEquipmentActions,
             {&G::EnumFirstEquipAct, &G::EnumNextEquipAct, &G::AddEquipAct, &G::DeleteEquipAct});
}

void add_all_gear(Tables& t) {
    add_gear(t, gear::kGear,
             {.first = &H::EnumFirstGear,
              .next = &H::EnumNextGear,
              .find = &H::FindGear,
              .add = &H::AddGear,
              .update = &H::UpdateGear,
              .remove = &H::DeleteGear});
    add_gear(t, gear::kServices,
             {.first = &H::EnumFirstGearService,
              .next = &H::EnumNextGearService,
              .find = &H::FindGearService,
              .add = &H::AddGearService,
              .update = &H::UpdateGearService,
              .remove = &H::DeleteGearService});
    add_gear(t, gear::kRepairs,
             {.first = &H::EnumFirstGRepairs,
              .next = &H::EnumNextGRepairs,
              .find = &H::FindGRepairs,
              .add = &H::AddGRepairs,
              .update = &H::UpdateGRepairs,
              .remove = &H::DeleteGRepairs});
    add_gear(t, gear::kCategories,
             {.first = &H::EnumFirstGearCat,
              .next = &H::EnumNextGearCat,
              .find = &H::FindGearCat,
              .add = &H::AddGearCat,
              .update = &H::UpdateGearCat,
              .remove = &H::DeleteGearCat});
    add_gear(t, gear::kRentals,
             {.first = &H::EnumFirstGearRent,
              .next = &H::EnumNextGearRent,
              .find = &H::FindGearRent,
              .add = &H::AddGearRent,
              .update = &H::UpdateGearRent,
              .remove = &H::DeleteGearRent});
}

Tables all_tables() {
    Tables tables;
    add_projects(tables);
    add_contacts(tables);
    add_store(tables);
    add_media(tables);
    add_business(tables);
    add_definitions(tables);
    add_all_gear(tables);
    return tables;
}

}  // namespace

const std::vector<std::unique_ptr<GateTable>>& gate_tables() {
    static const Tables tables = all_tables();
    return tables;
}

const GateTable& gate_table(const std::string& name) {
    Names names;
    for (const std::unique_ptr<GateTable>& table : gate_tables()) {
        if (is_same_name(table->name(), name)) return *table;
        names.push_back(table->name());
    }
    const std::string hint = suggestion(name, names);
    throw UsageError("no records in a table '" + name + "'" + hint + (hint.empty() ? "; there are " : " There are ") +
                     listed(names));
}

std::vector<Row> rows_of(const GateTable& table, Studio& studio, const Assignments& filter) {
    std::vector<Row> rows;
    table.list(studio, filter, [&](const Row& row) {
        rows.push_back(row);
        return true;
    });
    return rows;
}

}  // namespace tools
