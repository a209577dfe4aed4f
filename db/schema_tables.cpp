// The tables of both files, in creation order, with their fields in creation order. Creating, upgrading and
// checking all read this one list.
//
// Names are published in the files themselves, slips included ("Paymetns").
#include "db/schema.h"

namespace db {
namespace {

using enum FieldKind;

constexpr FieldSchema kProjects[] = {
    {"ProjID", kKey},          {"Name", kText},
    {"ProjCreateDate", kDate}, {"Type", kText},
    {"ProjTypeID", kLong},     {"Producer", kText},
    {"ProducerID", kLong},     {"Client", kText},
    {"ClientID", kLong},       {"Director", kText},
    {"DirectorID", kLong},     {"Folder", kText},
    {"DiscountType", kLong},   {"DiscountVal", kCurrency},
    {"ExData", kLong},         {"Notes", kMemo},
};

constexpr FieldSchema kSongs[] = {
    {"SongID", kKey},      {"ProjID", kLong},       {"Name", kText},     {"Artist", kText},     {"ArtistID", kLong},
    {"Copyrights", kText}, {"CopyrightsID", kLong}, {"Notes", kMemo},    {"MixFile", kMemo},    {"Folder", kMemo},
    {"SongFile", kMemo},   {"Sequencer", kMemo},    {"Producer", kMemo}, {"ProducerID", kLong}, {"Client", kMemo},
    {"ClientID", kLong},   {"ComposerID", kLong},   {"WriterID", kLong}, {"ExData", kLong},
};

constexpr FieldSchema kTracks[] = {
    {"TrackID", kKey},     {"SongID", kLong},      {"Number", kLong},      {"Name", kText},
    {"Type", kText},       {"TypeID", kLong},      {"Date", kText},        {"TDate", kDate},
    {"Performer", kText},  {"PerformerID", kLong}, {"Destination", kText}, {"DestinationID", kLong},
    {"EngineerID", kLong}, {"ProducerID", kLong},  {"Status", kLong},      {"Mode", kLong},
    {"Notes", kMemo},      {"ExData", kLong},
};

constexpr FieldSchema kSessions[] = {
    {"SessionID", kKey}, {"ProjID", kLong},  {"SongName", kText},  {"SongID", kLong},  {"Engineer", kText},
    {"ArtistID", kLong}, {"RecDate", kDate}, {"StartTime", kText}, {"EndTime", kText}, {"Total", kText},
    {"Notes", kMemo},    {"Client", kMemo},  {"ClientID", kLong},  {"RoomID", kLong},  {"ExData", kLong},
};

constexpr FieldSchema kClients[] = {
    {"ClientID", kKey},        {"CategoryID", kLong},     {"CatIDs", kText},
    {"Name", kText},           {"LastName", kText},       {"Company", kText},
    {"Title", kText},          {"Address", kText},        {"Country", kText},
    {"State", kText},          {"City", kText},           {"ZipCode", kText},
    {"Email", kText},          {"WebSite", kText},        {"Fax", kText},
    {"Phone1", kText},         {"Phone1Descript", kText}, {"Phone2", kText},
    {"Phone2Descript", kText}, {"Phone3", kText},         {"Phone3Descript", kText},
    {"Phone4", kText},         {"Phone4Descript", kText}, {"Phone5", kText},
    {"Phone5Descript", kText}, {"Notes", kMemo},
};

constexpr FieldSchema kStock[] = {
    {"StockID", kKey},   {"Name", kText},     {"Type", kText},    {"TypeID", kLong},
    {"Quantity", kLong}, {"Supplier", kText}, {"Date", kDate},    {"SupplierID", kLong},
    {"Cost", kSingle},   {"Notes", kMemo},    {"InStock", kLong}, {"ExData", kLong},
};

constexpr FieldSchema kSupply[] = {
    {"ActionID", kKey}, {"ProjID", kLong},   {"StockID", kLong}, {"StockName", kText}, {"StockType", kText},
    {"Client", kText},  {"ClientID", kLong}, {"Date", kDate},    {"Quantity", kLong},  {"ExData", kLong},
};

constexpr FieldSchema kEquipment[] = {
    {"RecID", kKey}, {"Name", kTextNotEmpty}, {"Action", kText}, {"ActDate", kDate},
    {"Cost", kText}, {"Notes", kMemo},        {"ExData", kLong},
};

constexpr FieldSchema kDefTrackDestination[] = {
    {"Name", kShortText},
};

constexpr FieldSchema kDefTrackTypes[] = {
    {"Name", kShortText},
};

constexpr FieldSchema kDefProjTypes[] = {
    {"Name", kShortText},
};

constexpr FieldSchema kDefStockTypes[] = {
    {"TypeID", kKey}, {"TypeName", kShortText}, {"InStock", kLong}, {"ItemPrice", kCurrency}, {"ExData", kLong},
};

constexpr FieldSchema kDBHeader[] = {
    {"DBversion", kLong},
    {"Color1", kPlainLong},
    {"Color2", kPlainLong},
};

constexpr FieldSchema kDefEquipActs[] = {
    {"Name", kShortText},
};

constexpr FieldSchema kDefSequencer[] = {
    {"RecID", kKey},
    {"Name", kShortText},
    {"Path", kText},
};

constexpr FieldSchema kLibGroups[] = {
    {"GroupID", kKey},
    {"Name", kShortText},
};

constexpr FieldSchema kMediaLibs[] = {
    {"LibID", kKey},
    {"GroupID", kLong},
    {"Name", kShortText},
    {"Descript", kText},
};

constexpr FieldSchema kMediaFiles[] = {
    {"RecID", kKey},
    {"LibID", kLong},
    {"Descript", kText},
    {"Path", kMemo},
};

constexpr FieldSchema kBookings[] = {
    {"RecID", kKey},     {"DateStart", kDate}, {"DateEnd", kDate},    {"ClientID", kLong},     {"ClientName", kText},
    {"ProjID", kLong},   {"RoomID", kLong},    {"EngineerID", kLong}, {"EngineerName", kText}, {"SessionID", kLong},
    {"StatusID", kLong}, {"Notes", kMemo},     {"ExData", kLong},
};

constexpr FieldSchema kDefInvoice[] = {
    {"StudioName", kText}, {"StudioDetails", kMemo}, {"BaseCounter", kLong}, {"LastUsedCounter", kLong},
    {"VAT1", kLong},       {"VAT2", kLong},          {"Tax", kCurrency},     {"ExData", kLong},
};

constexpr FieldSchema kDefRooms[] = {
    {"RecID", kKey}, {"Name", kShortText}, {"BasePrice", kCurrency}, {"FullPrice", kCurrency}, {"ExData", kLong},
};

constexpr FieldSchema kDefTax[] = {
    {"RecID", kKey},    {"TaxName", kText}, {"TaxSymbol", kText}, {"TaxVal", kCurrency},
    {"TaxType", kLong}, {"Color", kLong},   {"Hidden", kLong},    {"ExData", kLong},
};

constexpr FieldSchema kContactCategories[] = {
    {"RecID", kKey},
    {"Name", kShortText},
    {"Type", kLong},
    {"ExData", kLong},
};

constexpr FieldSchema kProjPayments[] = {
    {"RecID", kKey},     {"ProjID", kLong},  {"Details", kText}, {"Date", kDate},
    {"ClientID", kLong}, {"Pay", kCurrency}, {"ExData", kLong},
};

constexpr FieldSchema kProjActivities[] = {
    {"RecID", kKey},      {"ProjID", kLong},  {"Date", kDate},   {"Category", kText},
    {"CatID", kLong},     {"Item", kText},    {"ItemID", kLong}, {"Quantity", kCurrency},
    {"QuantType", kLong}, {"Fee", kCurrency}, {"ExData", kLong},
};

constexpr FieldSchema kMixFiles[] = {
    {"RecID", kKey}, {"SongID", kLong}, {"Descript", kText}, {"Path", kMemo}, {"ExData", kLong},
};

constexpr FieldSchema kMessages[] = {
    {"RecID", kKey},     {"ContactID", kLong}, {"ConnectType", kText}, {"Date", kDate},
    {"Descript", kText}, {"Details", kMemo},   {"ExData", kLong},
};

constexpr FieldSchema kServices[] = {
    {"RecID", kKey},     {"Name", kText},   {"ContactID", kLong}, {"CategoryID", kLong},
    {"TimeUnit", kLong}, {"RoomID", kLong}, {"Price", kCurrency}, {"ExData", kLong},
};

constexpr FieldSchema kParticipants[] = {
    {"RecID", kKey},         {"SessionID", kLong},   {"ContactID", kLong}, {"CategoryID", kLong}, {"ServiceID", kLong},
    {"Duration", kCurrency}, {"Communicate", kText}, {"Notes", kMemo},     {"ExData", kLong},
};

constexpr FieldSchema kGear[] = {
    {"RecID", kKey},         {"Manufacturer", kText}, {"Model", kText},      {"SerialNo", kText},
    {"StatusID", kLong},     {"RoomID", kLong},       {"CategoryID", kLong}, {"WarrantyDate", kDate},
    {"PurchaseDate", kDate}, {"Cost", kSingle},       {"ExData", kLong},
};

constexpr FieldSchema kGearServices[] = {
    {"RecID", kKey},       {"Name", kText},          {"GearID", kLong},  {"RoomID", kLong},
    {"TimeUnitID", kLong}, {"ServiceTypeID", kLong}, {"Price", kSingle}, {"ExData", kLong},
};

constexpr FieldSchema kGearRepairs[] = {
    {"RecID", kKey},     {"GearID", kLong},     {"GearName", kText},     {"ClaimNo", kText},
    {"SendDate", kDate}, {"ReturnDate", kDate}, {"WarrantyDate", kDate}, {"Technician", kText},
    {"TechID", kLong},   {"Cost", kSingle},     {"Description", kMemo},  {"ExData", kLong},
};

constexpr FieldSchema kGearCategories[] = {
    {"RecID", kKey},
    {"Name", kText},
    {"ExData", kLong},
};

constexpr FieldSchema kGearRentals[] = {
    {"RecID", kKey},        {"GearID", kLong}, {"ServiceID", kLong},  {"ProjID", kLong},
    {"ServiceName", kText}, {"Date", kDate},   {"Quantity", kSingle}, {"QuantType", kLong},
    {"ClientID", kLong},    {"RoomID", kLong}, {"ExData", kLong},
};

constexpr FieldSchema kDefEngineers[] = {
    {"Name", kShortText},
    {"Price", kCurrency},
    {"RecID", kKey},
};

constexpr FieldSchema kInvoiceFileDBHeader[] = {
    {"DBversion", kLong},
    {"CreateDate", kDate},
};

constexpr FieldSchema kInvoiceFileInvoices[] = {
    {"RecID", kKey},
    {"InvoiceID", kLong},
    {"ClientName", kText},
    {"ClientInfo", kText},
    {"InvTaxIDs", kText},
    {"Date", kDate},
    {"SubTotal", kCurrency},
    {"Tax", kLong},
    {"fTax", kCurrency},
    {"Tax_SubTotal", kCurrency},
    {"Discount", kLong},
    {"fDiscount", kCurrency},
    {"Discount_SubTotal", kCurrency},
    {"Total", kCurrency},
    {"Paymetns", kSingle},
    {"Balance", kSingle},
    {"Notes", kMemo},
    {"ExData", kLong},
};

constexpr FieldSchema kInvoiceFileInvoiceParams[] = {
    {"RecID", kKey},      {"InvoiceID", kLong},  {"Type", kLong},          {"Name", kText},
    {"TaxIDs", kText},    {"DWQuantity", kLong}, {"FQuantity", kCurrency}, {"ItemPrice", kCurrency},
    {"Total", kCurrency}, {"ExData", kLong},     {"Date", kDate},          {"Details", kText},
};

// The five gear tables close the list: one operation creates them in one pass.
constexpr TableSchema kStudioFile[] = {
    {"Projects", kProjects},
    {"Songs", kSongs},
    {"Tracks", kTracks},
    {"Sessions", kSessions},
    {"Clients", kClients},
    {"Stock", kStock},
    {"Supply", kSupply},
    {"Equipment", kEquipment},
    {"Def_TrackDestination", kDefTrackDestination},
    {"Def_TrackTypes", kDefTrackTypes},
    {"Def_ProjTypes", kDefProjTypes},
    {"Def_StockTypes", kDefStockTypes},
    {"DBHeader", kDBHeader},
    {"Def_EquipActs", kDefEquipActs},
    {"Def_Sequencer", kDefSequencer},
    {"LibGroups", kLibGroups},
    {"MediaLibs", kMediaLibs},
    {"MediaFiles", kMediaFiles},
    {"Bookings", kBookings},
    {"Def_Invoice", kDefInvoice},
    {"Def_Rooms", kDefRooms},
    {"Def_Tax", kDefTax},
    {"ContactCategories", kContactCategories},
    {"ProjPayments", kProjPayments},
    {"ProjActivities", kProjActivities},
    {"MixFiles", kMixFiles},
    {"Messages", kMessages},
    {"Services", kServices},
    {"Participants", kParticipants},
    {"Gear", kGear},
    {"GearServices", kGearServices},
    {"GearRepairs", kGearRepairs},
    {"GearCategories", kGearCategories},
    {"GearRentals", kGearRentals},
};

constexpr TableSchema kInvoiceFile[] = {
    {"DBHeader", kInvoiceFileDBHeader},
    {"Invoices", kInvoiceFileInvoices},
    {"InvoiceParams", kInvoiceFileInvoiceParams},
};

static_assert(std::size(kStudioFile) == 34);
static_assert(std::size(kInvoiceFile) == 3);

constexpr TableSchema kEngineersTable = {"Def_Engineers", kDefEngineers};

constexpr std::size_t kGearTables = 5;

}  // namespace

std::span<const TableSchema> studio_tables() { return kStudioFile; }

std::span<const TableSchema> gear_tables() { return studio_tables().last(kGearTables); }

std::span<const TableSchema> invoice_tables() { return kInvoiceFile; }

const TableSchema& engineers_table() { return kEngineersTable; }

}  // namespace db
