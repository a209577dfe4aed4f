// The catalogue of media files: groups (`LibGroups`), the libraries of a group (`MediaLibs`), the files of a library
// (`MediaFiles`). Nothing checks that a parent exists, and deleting a parent deletes no children.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<LibGrpInfo> kLibraryGroups;
extern const TableMapping<MediaLibInfo> kMediaLibraries;
extern const TableMapping<MediaFileInfo> kMediaFiles;

}  // namespace studio
