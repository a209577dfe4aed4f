// The engineers (`Def_Engineers`), sequencer programs (`Def_Sequencer`) and rooms (`Def_Rooms`) of sessions.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

// Only files of older versions have this table; without it every operation fails.
extern const TableMapping<EngineerInfo> kEngineers;
extern const TableMapping<SeqInfo> kSequencers;
extern const TableMapping<RoomInfo> kRooms;

}  // namespace studio
