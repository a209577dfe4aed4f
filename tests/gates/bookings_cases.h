// Bookings as the gates serve them: records, methods and how every member is stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

inline const RecordCase<IDBgate1, BookingInfo> kBookings{
    .table = "Bookings",
    .key = &BookingInfo::RecID,
    .first = &IDBgate1::EnumFirstBooking,
    .next = &IDBgate1::EnumNextBooking,
    .find = &IDBgate1::FindBooking,
    .add = &IDBgate1::AddBooking,
    .update = &IDBgate1::UpdateBooking,
    .remove = &IDBgate1::DeleteBooking,
    .members = {member::untouched("Reserved", &BookingInfo::Reserved),
                member::minutes("DateStart", &BookingInfo::DateStart),
                member::minutes("DateEnd", &BookingInfo::DateEnd), member::integer("ClientID", &BookingInfo::ClientID),
                member::text("ClientName", &BookingInfo::ClientName), member::integer("ProjID", &BookingInfo::ProjID),
                member::integer("RoomID", &BookingInfo::RoomID),
                member::integer("EngineerID", &BookingInfo::EngineerID),
                member::text("EngineerName", &BookingInfo::EngineerName),
                member::integer("SessionID", &BookingInfo::SessionID),
                member::integer("StatusID", &BookingInfo::StatusID), member::memo("Notes", &BookingInfo::Notes),
                member::integer("ExData", &BookingInfo::ExData)},
    .read_order = {"DateStart", "DateEnd", "ClientID", "ClientName", "ProjID", "RoomID", "EngineerID", "EngineerName",
                   "SessionID", "StatusID", "Notes", "ExData"},
    .write_order = {"DateStart", "DateEnd", "ClientID", "ClientName", "ProjID", "RoomID", "EngineerID", "EngineerName",
                    "SessionID", "StatusID", "Notes", "ExData"}};

}  // namespace testing_support
