#include "studio/engineers.h"

namespace studio {
namespace {

constexpr Column<EngineerInfo> kEngineer[] = {
    column::integer("RecID", &EngineerInfo::RecID),
    column::text("Name", &EngineerInfo::Name),
    column::currency("Price", &EngineerInfo::Price),
};

constexpr Column<SeqInfo> kSequencer[] = {
    column::integer("RecID", &SeqInfo::RecID),
    column::text("Name", &SeqInfo::Name),
    column::text("Path", &SeqInfo::Path),
};

constexpr Column<RoomInfo> kRoom[] = {
    column::integer("RecID", &RoomInfo::RecID),          column::text("Name", &RoomInfo::Name),
    column::currency("BasePrice", &RoomInfo::BasePrice), column::currency("FullPrice", &RoomInfo::FullPrice),
    column::integer("ExData", &RoomInfo::ExData),
};

}  // namespace

constinit const TableMapping<EngineerInfo> kEngineers{
    .table = "Def_Engineers",
    .key = {"RecID", &EngineerInfo::RecID},
    .read = kEngineer,
    .write = std::span(kEngineer).subspan(1),
    .find_by = FindBy::kKeyOrName,
    .add_opens = AddOpens::kNamedRowsIfNone,
    .name = {"Name", &EngineerInfo::Name},
};

// Deliberate: sequencers may share a name, engineers and rooms may not.
constinit const TableMapping<SeqInfo> kSequencers{
    .table = "Def_Sequencer",
    .key = {"RecID", &SeqInfo::RecID},
    .read = kSequencer,
    .write = std::span(kSequencer).subspan(1),
    .find_by = FindBy::kKeyOrName,
    .name = {"Name", &SeqInfo::Name},
};

// Deliberate: rooms are added by name but found by key only.
constinit const TableMapping<RoomInfo> kRooms{
    .table = "Def_Rooms",
    .key = {"RecID", &RoomInfo::RecID},
    .read = kRoom,
    .write = std::span(kRoom).subspan(1),
    .add_opens = AddOpens::kNamedRowsIfNone,
    .name = {"Name", &RoomInfo::Name},
};

}  // namespace studio
