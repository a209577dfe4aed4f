#include "tools/export/relations.h"

namespace tools {
namespace {

constexpr KnownTable kTables[] = {
    {"Projects", "list_of_projects"},
    {"Songs", "list_of_songs"},
    {"Tracks", "list_of_tracks"},
    {"MixFiles", "list_of_mixes"},
    {"Sessions", "list_of_sessions"},
    {"Participants", "list_of_participants"},
    {"ProjPayments", "list_of_project_payments"},
    {"ProjActivities", "list_of_project_activities"},
    {"Clients", "list_of_contacts"},
    {"ContactCategories", "list_of_contact_categories"},
    {"Messages", "list_of_messages"},
    {"Services", "list_of_services"},
    {"Stock", "list_of_stock_bought"},
    {"Supply", "list_of_stock_handed_out"},
    {"Def_StockTypes", "list_of_stock_types"},
    {"Equipment", "list_of_equipment_log"},
    {"LibGroups", "list_of_media_groups"},
    {"MediaLibs", "list_of_media_libraries"},
    {"MediaFiles", "list_of_media_files"},
    {"Bookings", "list_of_bookings"},
    {"Invoices", "list_of_invoices"},
    {"InvoiceParams", "list_of_invoice_lines"},
    {"Def_Rooms", "list_of_rooms"},
    {"Def_Sequencer", "list_of_sequencers"},
    {"Gear", "list_of_gear"},
    {"GearServices", "list_of_gear_services"},
    {"GearRepairs", "list_of_gear_repairs"},
    {"GearCategories", "list_of_gear_categories"},
    {"GearRentals", "list_of_gear_rentals"},
};

constexpr Relation kRelations[] = {
    {"Projects", "ClientID", "Clients", "client_name"},
    {"Projects", "ProducerID", "Clients", "producer_name"},
    {"Songs", "ProjID", "Projects", "project_name"},
    {"Songs", "ArtistID", "Clients", "artist_name"},
    {"Tracks", "SongID", "Songs", "song_name"},
    {"Tracks", "PerformerID", "Clients", "performer_name"},
    {"MixFiles", "SongID", "Songs", "song_name"},
    {"Sessions", "ProjID", "Projects", "project_name"},
    {"Sessions", "RoomID", "Def_Rooms", "room_name"},
    {"Participants", "ContactID", "Clients", "contact_name"},
    {"Participants", "CategoryID", "ContactCategories", "category_name"},
    {"Participants", "ServiceID", "Services", "service_name"},
    {"ProjPayments", "ProjID", "Projects", "project_name"},
    {"ProjPayments", "ClientID", "Clients", "client_name"},
    {"ProjActivities", "ProjID", "Projects", "project_name"},
    {"Clients", "CategoryID", "ContactCategories", "category_name"},
    {"Messages", "ContactID", "Clients", "contact_name"},
    {"Services", "ContactID", "Clients", "contact_name"},
    {"Services", "CategoryID", "ContactCategories", "category_name"},
    {"Services", "RoomID", "Def_Rooms", "room_name"},
    {"Stock", "TypeID", "Def_StockTypes", "type_name"},
    {"Supply", "StockID", "Def_StockTypes", "type_name"},
    {"Supply", "ProjID", "Projects", "project_name"},
    {"Supply", "ClientID", "Clients", "client_name"},
    {"MediaLibs", "GroupID", "LibGroups", "group_name"},
    {"MediaFiles", "LibID", "MediaLibs", "library_name"},
    {"Bookings", "ClientID", "Clients", "client_name"},
    {"Bookings", "ProjID", "Projects", "project_name"},
    {"Bookings", "RoomID", "Def_Rooms", "room_name"},
    {"Gear", "CategoryID", "GearCategories", "category_name"},
    {"Gear", "RoomID", "Def_Rooms", "room_name"},
    {"GearServices", "GearID", "Gear", "gear_name"},
    {"GearServices", "RoomID", "Def_Rooms", "room_name"},
    {"GearRepairs", "GearID", "Gear", "gear_model"},
    {"GearRentals", "GearID", "Gear", "gear_name"},
    {"GearRentals", "ProjID", "Projects", "project_name"},
    {"GearRentals", "ClientID", "Clients", "client_name"},
    {"GearRentals", "RoomID", "Def_Rooms", "room_name"},
};

}  // namespace

std::span<const KnownTable> known_tables() { return kTables; }
std::span<const Relation> relations() { return kRelations; }

const char* name_of(const std::string& table) {
    if (table == "Clients") return "trim(coalesce(p.Name, '') || ' ' || coalesce(p.LastName, ''))";
    if (table == "Gear") return "trim(coalesce(p.Manufacturer, '') || ' ' || coalesce(p.Model, ''))";
    if (table == "Def_StockTypes") return "p.TypeName";
    return "p.Name";
}

std::string known_column(const std::string& column) {
    if (column == "Paymetns") return "Payments";
    if (column == "Descript") return "Description";
    return column;
}

}  // namespace tools
