#include "studio/contacts.h"

namespace studio {
namespace {

// ---- Contacts. `SearchName` has no column: it belongs to the filter only.

constexpr Column<ClientInfo> kClientRead[] = {
    column::integer("ClientID", &ClientInfo::ClientID),
    column::integer("CategoryID", &ClientInfo::CategoryID),
    column::text("CatIDs", &ClientInfo::CatIDs),
    column::text("Name", &ClientInfo::Name),
    column::text("LastName", &ClientInfo::LastName),
    column::text("Company", &ClientInfo::Company),
    column::text("Title", &ClientInfo::Title),
    column::text("Address", &ClientInfo::Address),
    column::text("Country", &ClientInfo::Country),
    column::text("State", &ClientInfo::State),
    column::text("City", &ClientInfo::City),
    column::text("ZipCode", &ClientInfo::ZipCode),
    column::text("WebSite", &ClientInfo::WebSite),
    column::text("Email", &ClientInfo::Email),
    column::text("Fax", &ClientInfo::Fax),
    column::text("Phone1", &ClientInfo::Phone1),
    column::text("Phone2", &ClientInfo::Phone2),
    column::text("Phone3", &ClientInfo::Phone3),
    column::text("Phone4", &ClientInfo::Phone4),
    column::text("Phone5", &ClientInfo::Phone5),
    column::text("Phone1Descript", &ClientInfo::Phone1Descript),
    column::text("Phone2Descript", &ClientInfo::Phone2Descript),
    column::text("Phone3Descript", &ClientInfo::Phone3Descript),
    column::text("Phone4Descript", &ClientInfo::Phone4Descript),
    column::text("Phone5Descript", &ClientInfo::Phone5Descript),
    column::text("Notes", &ClientInfo::Notes),
};

constexpr Column<ClientInfo> kClientWrite[] = {
    column::text("Name", &ClientInfo::Name),
    column::text("LastName", &ClientInfo::LastName),
    column::integer("CategoryID", &ClientInfo::CategoryID),
    column::text("CatIDs", &ClientInfo::CatIDs),
    column::text("Company", &ClientInfo::Company),
    column::text("Title", &ClientInfo::Title),
    column::text("Address", &ClientInfo::Address),
    column::text("Country", &ClientInfo::Country),
    column::text("State", &ClientInfo::State),
    column::text("City", &ClientInfo::City),
    column::text("ZipCode", &ClientInfo::ZipCode),
    column::text("Email", &ClientInfo::Email),
    column::text("WebSite", &ClientInfo::WebSite),
    column::text("Fax", &ClientInfo::Fax),
    column::text("Phone1", &ClientInfo::Phone1),
    column::text("Phone2", &ClientInfo::Phone2),
    column::text("Phone3", &ClientInfo::Phone3),
    column::text("Phone4", &ClientInfo::Phone4),
    column::text("Phone5", &ClientInfo::Phone5),
    column::text("Phone1Descript", &ClientInfo::Phone1Descript),
    column::text("Phone2Descript", &ClientInfo::Phone2Descript),
    column::text("Phone3Descript", &ClientInfo::Phone3Descript),
    column::text("Phone4Descript", &ClientInfo::Phone4Descript),
    column::text("Phone5Descript", &ClientInfo::Phone5Descript),
    column::text("Notes", &ClientInfo::Notes),
};

// The category clauses match substrings of the list, so category 1 also finds 10, 21 and so on; deliberate.
constexpr Clause<ClientInfo> kClientFilter[] = {
    filter::contains("CatIDs", &ClientInfo::CategoryID), filter::contains("Company", &ClientInfo::Company),
    filter::contains("Title", &ClientInfo::Title),       filter::contains("Name", &ClientInfo::SearchName),
    filter::contains_any("CatIDs", &ClientInfo::CatIDs),
};

// ---- Categories

constexpr Column<ConCatInfo> kCategoryRead[] = {
    column::integer("RecID", &ConCatInfo::RecID),
    column::text("Name", &ConCatInfo::Name),
    column::integer("Type", &ConCatInfo::Type),
    column::integer("ExData", &ConCatInfo::ExData),
};

constexpr Clause<ConCatInfo> kCategoryFilter[] = {
    filter::equals("Type", &ConCatInfo::Type),
    filter::contains("Name", &ConCatInfo::Name),
};

// ---- Messages

constexpr Column<MsgInfo> kMessageRead[] = {
    column::integer("RecID", &MsgInfo::RecID),          column::integer("ContactID", &MsgInfo::ContactID),
    column::text("ConnectType", &MsgInfo::ConnectType), column::date("Date", &MsgInfo::Date),
    column::text("Descript", &MsgInfo::Descript),       column::text("Details", &MsgInfo::Details),
    column::integer("ExData", &MsgInfo::ExData),
};

constexpr Column<MsgInfo> kMessageWrite[] = {
    column::integer("ContactID", &MsgInfo::ContactID),  column::date("Date", &MsgInfo::Date),
    column::text("ConnectType", &MsgInfo::ConnectType), column::text("Descript", &MsgInfo::Descript),
    column::text("Details", &MsgInfo::Details),         column::integer("ExData", &MsgInfo::ExData),
};

constexpr Clause<MsgInfo> kMessageFilter[] = {filter::equals("ContactID", &MsgInfo::ContactID)};

// ---- Services

constexpr Column<ServiceInfo> kServiceRead[] = {
    column::integer("RecID", &ServiceInfo::RecID),         column::text("Name", &ServiceInfo::Name),
    column::integer("ContactID", &ServiceInfo::ContactID), column::integer("CategoryID", &ServiceInfo::CategoryID),
    column::integer("TimeUnit", &ServiceInfo::TimeUnit),   column::integer("RoomID", &ServiceInfo::RoomID),
    column::currency("Price", &ServiceInfo::Price),        column::integer("ExData", &ServiceInfo::ExData),
};

constexpr Clause<ServiceInfo> kServiceFilter[] = {
    filter::equals("CategoryID", &ServiceInfo::CategoryID),
    filter::equals("ContactID", &ServiceInfo::ContactID),
    // A service of room 0 applies to every room; one with a Null room to none.
    filter::equals_or_zero("RoomID", &ServiceInfo::RoomID),
    filter::contains("Name", &ServiceInfo::Name),
};

}  // namespace

constinit const TableMapping<ClientInfo> kClients{
    .table = "Clients",
    .key = {"ClientID", &ClientInfo::ClientID},
    .read = kClientRead,
    .write = kClientWrite,
    .filter = kClientFilter,
    .filter_rule = FilterRule::kKeyBeforeClauses,
    .find_by = FindBy::kFilterOrNothing,
};

constinit const TableMapping<ConCatInfo> kContactCategories{
    .table = "ContactCategories",
    .key = {"RecID", &ConCatInfo::RecID},
    .read = kCategoryRead,
    .write = std::span(kCategoryRead).subspan(1),
    .filter = kCategoryFilter,
    .filter_rule = FilterRule::kKeyBeforeClauses,
    .find_by = FindBy::kFilterOrNothing,
};

constinit const TableMapping<MsgInfo> kMessages{
    .table = "Messages",
    .key = {"RecID", &MsgInfo::RecID},
    .read = kMessageRead,
    .write = kMessageWrite,
    .filter = kMessageFilter,
    .filter_rule = FilterRule::kParent,
};

constinit const TableMapping<ServiceInfo> kServices{
    .table = "Services",
    .key = {"RecID", &ServiceInfo::RecID},
    .read = kServiceRead,
    .write = std::span(kServiceRead).subspan(1),
    .filter = kServiceFilter,
    .filter_rule = FilterRule::kKeyBeforeClauses,
    .find_by = FindBy::kFilterOrNothing,
    .add_opens = AddOpens::kParentRows,
    .parent = {"ContactID", &ServiceInfo::ContactID},
};

}  // namespace studio
