// The three levels of the media library as the gates serve them: records, methods and how every member is stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

inline const RecordCase<IDBgate1, LibGrpInfo> kGroups{.table = "LibGroups",
                                                      .key_column = "GroupID",
                                                      .key = &LibGrpInfo::GroupID,
                                                      .first = &IDBgate1::EnumFirstLibGrp,
                                                      .next = &IDBgate1::EnumNextLibGrp,
                                                      .find = &IDBgate1::FindLibGrp,
                                                      .add = &IDBgate1::AddLibGrp,
                                                      .update = &IDBgate1::UpdateLibGrp,
                                                      .remove = &IDBgate1::DeleteLibGrp,
                                                      .members = {member::text("Name", &LibGrpInfo::Name)},
                                                      .opened_by = "Name",
                                                      .read_order = {"Name"},
                                                      .write_order = {"Name"}};

inline const RecordCase<IDBgate1, MediaLibInfo> kLibraries{
    .table = "MediaLibs",
    .key_column = "LibID",
    .key = &MediaLibInfo::LibID,
    .first = &IDBgate1::EnumFirstMediaLib,
    .next = &IDBgate1::EnumNextMediaLib,
    .find = &IDBgate1::FindMediaLib,
    .add = &IDBgate1::AddMediaLib,
    .update = &IDBgate1::UpdateMediaLib,
    .remove = &IDBgate1::DeleteMediaLib,
    .members = {member::integer("GroupID", &MediaLibInfo::GroupID), member::text("Name", &MediaLibInfo::Name),
                member::text("Descript", &MediaLibInfo::Descript)},
    .parents = {&MediaLibInfo::GroupID},
    .opened_by = "GroupID",
    .read_order = {"Name", "Descript", "GroupID"},
    .write_order = {"Name", "Descript", "GroupID"}};

inline const RecordCase<IDBgate1, MediaFileInfo> kFiles{
    .table = "MediaFiles",
    .key = &MediaFileInfo::RecID,
    .first = &IDBgate1::EnumFirstMediaFile,
    .next = &IDBgate1::EnumNextMediaFile,
    .find = &IDBgate1::FindMediaFile,
    .add = &IDBgate1::AddMediaFile,
    .update = &IDBgate1::UpdateMediaFile,
    .remove = &IDBgate1::DeleteMediaFile,
    .members = {member::integer("LibID", &MediaFileInfo::LibID), member::memo("Path", &MediaFileInfo::Path),
                member::text("Descript", &MediaFileInfo::Descript)},
    .parents = {&MediaFileInfo::LibID},
    .opened_by = "LibID",
    .read_order = {"Path", "Descript", "LibID"},
    .write_order = {"Path", "Descript", "LibID"}};

}  // namespace testing_support
