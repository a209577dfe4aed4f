#include "studio/media_library.h"

namespace studio {
namespace {

constexpr Column<LibGrpInfo> kGroup[] = {
    column::text("Name", &LibGrpInfo::Name),
    column::integer("GroupID", &LibGrpInfo::GroupID),
};

constexpr Column<MediaLibInfo> kLibrary[] = {
    column::text("Name", &MediaLibInfo::Name),
    column::text("Descript", &MediaLibInfo::Descript),
    column::integer("GroupID", &MediaLibInfo::GroupID),
    column::integer("LibID", &MediaLibInfo::LibID),
};

constexpr Column<MediaFileInfo> kFile[] = {
    column::text("Path", &MediaFileInfo::Path),
    column::text("Descript", &MediaFileInfo::Descript),
    column::integer("LibID", &MediaFileInfo::LibID),
    column::integer("RecID", &MediaFileInfo::RecID),
};

constexpr Clause<MediaLibInfo> kOfGroup[] = {
    filter::equals("GroupID", &MediaLibInfo::GroupID),
};

constexpr Clause<MediaFileInfo> kOfLibrary[] = {
    filter::equals("LibID", &MediaFileInfo::LibID),
};

// The columns to write: all that are read except the key, which is read last.
template <class Record, std::size_t n>
constexpr std::span<const Column<Record>> all_but_the_last(const Column<Record> (&columns)[n]) {
    return std::span(columns).first(n - 1);
}

}  // namespace

// Deliberate: Add opens the groups of the same name, but adds another one even if there are any.
constinit const TableMapping<LibGrpInfo> kLibraryGroups{
    .table = "LibGroups",
    .key = {"GroupID", &LibGrpInfo::GroupID},
    .read = kGroup,
    .write = all_but_the_last(kGroup),
    .null_next = NullNext::kMovesOn,
    .add_opens = AddOpens::kNamedRows,
    .name = {"Name", &LibGrpInfo::Name},
};

constinit const TableMapping<MediaLibInfo> kMediaLibraries{
    .table = "MediaLibs",
    .key = {"LibID", &MediaLibInfo::LibID},
    .read = kLibrary,
    .write = all_but_the_last(kLibrary),
    .filter = kOfGroup,
    .filter_rule = FilterRule::kParent,
    .null_record = NullRecord::kFailsAtOnce,
    .null_next = NullNext::kMovesOn,
    .add_opens = AddOpens::kParentRows,
    .parent = {"GroupID", &MediaLibInfo::GroupID},
};

constinit const TableMapping<MediaFileInfo> kMediaFiles{
    .table = "MediaFiles",
    .key = {"RecID", &MediaFileInfo::RecID},
    .read = kFile,
    .write = all_but_the_last(kFile),
    .filter = kOfLibrary,
    .filter_rule = FilterRule::kParent,
    .null_record = NullRecord::kFailsAtOnce,
    .null_next = NullNext::kMovesOn,
    .add_opens = AddOpens::kParentRows,
    .parent = {"LibID", &MediaFileInfo::LibID},
};

}  // namespace studio
