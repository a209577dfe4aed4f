#include "studio/sessions.h"

namespace studio {
namespace {

// ---- Sessions. `Reserved` has no column and no mapping touches it, deliberately. Times of day and the length are
// texts that nothing here parses.

constexpr Column<SessionInfo> kSessionRead[] = {
    column::integer("SessionID", &SessionInfo::SessionID),
    column::integer("ProjID", &SessionInfo::ProjID),
    column::text("SongName", &SessionInfo::SongName),
    column::integer("SongID", &SessionInfo::SongID),
    column::integer("ArtistID", &SessionInfo::ArtistID),
    column::text("Engineer", &SessionInfo::Engineer),
    column::date("RecDate", &SessionInfo::RecDate),
    column::text("StartTime", &SessionInfo::StartTime),
    column::text("EndTime", &SessionInfo::EndTime),
    column::text("Total", &SessionInfo::Total),
    column::text("Notes", &SessionInfo::Notes),
    column::text("Client", &SessionInfo::Client),
    column::integer("ClientID", &SessionInfo::ClientID),
    column::integer("ExData", &SessionInfo::ExData),
    column::integer("RoomID", &SessionInfo::RoomID),
};

constexpr Column<SessionInfo> kSessionWrite[] = {
    column::integer("ProjID", &SessionInfo::ProjID),    column::text("SongName", &SessionInfo::SongName),
    column::text("Engineer", &SessionInfo::Engineer),   column::integer("ArtistID", &SessionInfo::ArtistID),
    column::integer("SongID", &SessionInfo::SongID),    column::date("RecDate", &SessionInfo::RecDate),
    column::text("StartTime", &SessionInfo::StartTime), column::text("EndTime", &SessionInfo::EndTime),
    column::text("Total", &SessionInfo::Total),         column::text("Notes", &SessionInfo::Notes),
    column::text("Client", &SessionInfo::Client),       column::integer("ClientID", &SessionInfo::ClientID),
    column::integer("ExData", &SessionInfo::ExData),    column::integer("RoomID", &SessionInfo::RoomID),
};

constexpr auto kSessionFilter = session_clauses<SessionInfo>();

// ---- Participants

constexpr Column<ParticInfo> kParticRead[] = {
    column::integer("RecID", &ParticInfo::RecID),          column::integer("SessionID", &ParticInfo::SessionID),
    column::integer("ContactID", &ParticInfo::ContactID),  column::integer("CategoryID", &ParticInfo::CategoryID),
    column::integer("ServiceID", &ParticInfo::ServiceID),  column::currency("Duration", &ParticInfo::Duration),
    column::text("Communicate", &ParticInfo::Communicate), column::text("Notes", &ParticInfo::Notes),
    column::integer("ExData", &ParticInfo::ExData),
};

constexpr Clause<ParticInfo> kParticFilter[] = {
    filter::equals("SessionID", &ParticInfo::SessionID),
    filter::equals("ContactID", &ParticInfo::ContactID),
    filter::equals("CategoryID", &ParticInfo::CategoryID),
    filter::equals("ServiceID", &ParticInfo::ServiceID),
};

// ---- Payments

constexpr Column<ProjPayInfo> kPayRead[] = {
    column::integer("RecID", &ProjPayInfo::RecID),
    column::integer("ProjID", &ProjPayInfo::ProjID),
    column::date("Date", &ProjPayInfo::Date),
    column::text("Details", &ProjPayInfo::Details),
    column::integer("ClientID", &ProjPayInfo::ClientID),
    column::currency("Pay", &ProjPayInfo::Pay),
    column::integer("ExData", &ProjPayInfo::ExData),
};

constexpr Column<ProjPayInfo> kPayWrite[] = {
    column::integer("ProjID", &ProjPayInfo::ProjID),     column::date("Date", &ProjPayInfo::Date),
    column::integer("ClientID", &ProjPayInfo::ClientID), column::text("Details", &ProjPayInfo::Details),
    column::currency("Pay", &ProjPayInfo::Pay),          column::integer("ExData", &ProjPayInfo::ExData),
};

constexpr Clause<ProjPayInfo> kPayFilter[] = {filter::equals("ProjID", &ProjPayInfo::ProjID)};

// ---- Activities. A quantity is deliberately a currency amount, with its four decimals.

constexpr Column<ProjActInfo> kActRead[] = {
    column::integer("RecID", &ProjActInfo::RecID),         column::integer("ProjID", &ProjActInfo::ProjID),
    column::integer("CatID", &ProjActInfo::CatID),         column::integer("ItemID", &ProjActInfo::ItemID),
    column::integer("QuantType", &ProjActInfo::QuantType), column::date("Date", &ProjActInfo::Date),
    column::text("Category", &ProjActInfo::Category),      column::text("Item", &ProjActInfo::Item),
    column::currency("Quantity", &ProjActInfo::Quantity),  column::currency("Fee", &ProjActInfo::Fee),
    column::integer("ExData", &ProjActInfo::ExData),
};

constexpr Column<ProjActInfo> kActWrite[] = {
    column::integer("ProjID", &ProjActInfo::ProjID),
    column::date("Date", &ProjActInfo::Date),
    column::text("Category", &ProjActInfo::Category),
    column::integer("CatID", &ProjActInfo::CatID),
    column::text("Item", &ProjActInfo::Item),
    column::integer("ItemID", &ProjActInfo::ItemID),
    column::currency("Quantity", &ProjActInfo::Quantity),
    column::integer("QuantType", &ProjActInfo::QuantType),
    column::currency("Fee", &ProjActInfo::Fee),
    column::integer("ExData", &ProjActInfo::ExData),
};

constexpr Clause<ProjActInfo> kActFilter[] = {filter::equals("ProjID", &ProjActInfo::ProjID)};

}  // namespace

// In this record only, the parent is the first member and the key the second; deliberate.
constinit const TableMapping<SessionInfo> kSessions{
    .table = "Sessions",
    .key = {"SessionID", &SessionInfo::SessionID},
    .read = kSessionRead,
    .write = kSessionWrite,
    .filter = kSessionFilter,
    .add_opens = AddOpens::kParentRows,
    .parent = {"ProjID", &SessionInfo::ProjID},
};

constinit const TableMapping<ParticInfo> kParticipants{
    .table = "Participants",
    .key = {"RecID", &ParticInfo::RecID},
    .read = kParticRead,
    .write = std::span(kParticRead).subspan(1),
    .filter = kParticFilter,
    .add_opens = AddOpens::kParentRows,
    .parent = {"SessionID", &ParticInfo::SessionID},
};

constinit const TableMapping<ProjPayInfo> kProjPayments{
    .table = "ProjPayments",
    .key = {"RecID", &ProjPayInfo::RecID},
    .read = kPayRead,
    .write = kPayWrite,
    .filter = kPayFilter,
    .filter_rule = FilterRule::kParent,
    .add_opens = AddOpens::kParentRows,
    .parent = {"ProjID", &ProjPayInfo::ProjID},
};

constinit const TableMapping<ProjActInfo> kProjActivities{
    .table = "ProjActivities",
    .key = {"RecID", &ProjActInfo::RecID},
    .read = kActRead,
    .write = kActWrite,
    .filter = kActFilter,
    .filter_rule = FilterRule::kParent,
    .add_opens = AddOpens::kParentRows,
    .parent = {"ProjID", &ProjActInfo::ProjID},
};

}  // namespace studio
