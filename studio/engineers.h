// Who and what a session is recorded with: engineers (`Def_Engineers`), sequencer programs (`Def_Sequencer`)
// and rooms (`Def_Rooms`).
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

// Only files of older versions have this table; everything fails where it is absent.
extern const TableMapping<EngineerInfo> kEngineers;
extern const TableMapping<SeqInfo> kSequencers;
extern const TableMapping<RoomInfo> kRooms;

}  // namespace studio
