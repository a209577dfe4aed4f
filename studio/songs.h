// Songs of a project (`Songs`), tracks of a song (`Tracks`) and mix files of a song (`MixFiles`).
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<SongInfo> kSongs;
extern const TableMapping<TrackInfo> kTracks;
extern const TableMapping<MixInfo> kMixFiles;

}  // namespace studio
