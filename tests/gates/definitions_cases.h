// Sequencers and rooms as the gates serve them: records, methods and how every member is stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

inline const RecordCase<IDBgate1, SeqInfo> kSequencers{
    .table = "Def_Sequencer",
    .key = &SeqInfo::RecID,
    .first = &IDBgate1::EnumFirstSequencer,
    .next = &IDBgate1::EnumNextSequencer,
    .find = &IDBgate1::FindSequencer,
    .add = &IDBgate1::AddSequencer,
    .update = &IDBgate1::UpdateSequencer,
    .remove = &IDBgate1::DeleteSequencer,
    .members = {member::text("Name", &SeqInfo::Name), member::text("Path", &SeqInfo::Path)},
    .read_order = {"Name", "Path"},
    .write_order = {"Name", "Path"}};

inline const RecordCase<IDBgate1, RoomInfo> kRooms{
    .table = "Def_Rooms",
    .key = &RoomInfo::RecID,
    .first = &IDBgate1::EnumFirstRoom,
    .next = &IDBgate1::EnumNextRoom,
    .find = &IDBgate1::FindRoom,
    .add = &IDBgate1::AddRoom,
    .update = &IDBgate1::UpdateRoom,
    .remove = &IDBgate1::DeleteRoom,
    .members = {member::text("Name", &RoomInfo::Name), member::currency("BasePrice", &RoomInfo::BasePrice),
                member::currency("FullPrice", &RoomInfo::FullPrice), member::integer("ExData", &RoomInfo::ExData)},
    .adds = Adds::kNamesOnce,
    .read_order = {"Name", "BasePrice", "FullPrice", "ExData"},
    .write_order = {"Name", "BasePrice", "FullPrice", "ExData"}};

}  // namespace testing_support
