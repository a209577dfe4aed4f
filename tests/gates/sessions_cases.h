// Sessions, participants, payments and activities as the gates serve them: records, methods and how every member is
// stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

inline const RecordCase<IDBgate1, SessionInfo> kSessions{
    .table = "Sessions",
    .key_column = "SessionID",
    .key = &SessionInfo::SessionID,
    .first = &IDBgate1::EnumFirstSession,
    .next = &IDBgate1::EnumNextSession,
    .find = &IDBgate1::FindSession,
    .add = &IDBgate1::AddSession,
    .update = &IDBgate1::UpdateSession,
    .remove_key = &IDBgate1::DeleteSession,
    .members = {member::integer("ProjID", &SessionInfo::ProjID), member::text("SongName", &SessionInfo::SongName),
                member::integer("SongID", &SessionInfo::SongID), member::text("Engineer", &SessionInfo::Engineer),
                member::integer("ArtistID", &SessionInfo::ArtistID),
                member::untouched("Reserved", &SessionInfo::Reserved), member::date("RecDate", &SessionInfo::RecDate),
                member::text("StartTime", &SessionInfo::StartTime), member::text("EndTime", &SessionInfo::EndTime),
                member::text("Total", &SessionInfo::Total), member::memo("Notes", &SessionInfo::Notes),
                member::memo("Client", &SessionInfo::Client), member::integer("ClientID", &SessionInfo::ClientID),
                member::integer("RoomID", &SessionInfo::RoomID), member::integer("ExData", &SessionInfo::ExData)},
    .parents = {&SessionInfo::ProjID},
    .opened_by = "ProjID",
    .read_order = {"ProjID", "SongName", "SongID", "ArtistID", "Engineer", "RecDate", "StartTime", "EndTime", "Total",
                   "Notes", "Client", "ClientID", "ExData", "RoomID"},
    .write_order = {"ProjID", "SongName", "Engineer", "ArtistID", "SongID", "RecDate", "StartTime", "EndTime", "Total",
                    "Notes", "Client", "ClientID", "ExData", "RoomID"},
};

inline const RecordCase<IDBgate1, ParticInfo> kPartics{
    .table = "Participants",
    .key = &ParticInfo::RecID,
    .first = &IDBgate1::EnumFirstPartic,
    .next = &IDBgate1::EnumNextPartic,
    .find = &IDBgate1::FindPartic,
    .add = &IDBgate1::AddPartic,
    .update = &IDBgate1::UpdatePartic,
    .remove = &IDBgate1::DeletePartic,
    .members = {member::integer("SessionID", &ParticInfo::SessionID),
                member::integer("ContactID", &ParticInfo::ContactID),
                member::integer("CategoryID", &ParticInfo::CategoryID),
                member::integer("ServiceID", &ParticInfo::ServiceID),
                member::currency("Duration", &ParticInfo::Duration),
                member::text("Communicate", &ParticInfo::Communicate), member::memo("Notes", &ParticInfo::Notes),
                member::integer("ExData", &ParticInfo::ExData)},
    .parents = {&ParticInfo::SessionID},
    .opened_by = "SessionID",
    .read_order = {"SessionID", "ContactID", "CategoryID", "ServiceID", "Duration", "Communicate", "Notes", "ExData"},
    .write_order = {"SessionID", "ContactID", "CategoryID", "ServiceID", "Duration", "Communicate", "Notes", "ExData"},
};

inline const RecordCase<IDBgate1, ProjPayInfo> kPayments{
    .table = "ProjPayments",
    .key = &ProjPayInfo::RecID,
    .first = &IDBgate1::EnumFirstProjPay,
    .next = &IDBgate1::EnumNextProjPay,
    .find = &IDBgate1::FindProjPay,
    .add = &IDBgate1::AddProjPay,
    .update = &IDBgate1::UpdateProjPay,
    .remove = &IDBgate1::DeleteProjPay,
    .members = {member::integer("ProjID", &ProjPayInfo::ProjID), member::date("Date", &ProjPayInfo::Date),
                member::text("Details", &ProjPayInfo::Details), member::integer("ClientID", &ProjPayInfo::ClientID),
                member::currency("Pay", &ProjPayInfo::Pay), member::integer("ExData", &ProjPayInfo::ExData)},
    .parents = {&ProjPayInfo::ProjID},
    .opened_by = "ProjID",
    .read_order = {"ProjID", "Date", "Details", "ClientID", "Pay", "ExData"},
    .write_order = {"ProjID", "Date", "ClientID", "Details", "Pay", "ExData"},
};

inline const RecordCase<IDBgate1, ProjActInfo> kActivities{
    .table = "ProjActivities",
    .key = &ProjActInfo::RecID,
    .first = &IDBgate1::EnumFirstProjAct,
    .next = &IDBgate1::EnumNextProjAct,
    .find = &IDBgate1::FindProjAct,
    .add = &IDBgate1::AddProjAct,
    .update = &IDBgate1::UpdateProjAct,
    .remove = &IDBgate1::DeleteProjAct,
    .members = {member::integer("ProjID", &ProjActInfo::ProjID), member::integer("CatID", &ProjActInfo::CatID),
                member::integer("ItemID", &ProjActInfo::ItemID), member::integer("QuantType", &ProjActInfo::QuantType),
                member::date("Date", &ProjActInfo::Date), member::text("Category", &ProjActInfo::Category),
                member::text("Item", &ProjActInfo::Item), member::currency("Quantity", &ProjActInfo::Quantity),
                member::currency("Fee", &ProjActInfo::Fee), member::integer("ExData", &ProjActInfo::ExData)},
    .parents = {&ProjActInfo::ProjID},
    .opened_by = "ProjID",
    .read_order = {"ProjID", "CatID", "ItemID", "QuantType", "Date", "Category", "Item", "Quantity", "Fee", "ExData"},
    .write_order = {"ProjID", "Date", "Category", "CatID", "Item", "ItemID", "Quantity", "QuantType", "Fee", "ExData"},
};

}  // namespace testing_support
