#include "db/upgrade/schema_history.h"

namespace db {
namespace {

constexpr const char* kTablesOf200000[] = {"LibGroups", "MediaLibs", "MediaFiles",
                                           "Bookings",  "Def_Rooms", "Def_Invoice"};
constexpr const char* kTablesOf200010[] = {"Def_Tax"};
constexpr const char* kTablesOf210000[] = {"ContactCategories", "ProjPayments", "ProjActivities", "MixFiles",
                                           "Messages",          "Services",     "Participants",   "Gear",
                                           "GearServices",      "GearRepairs",  "GearCategories", "GearRentals"};

const AddedFields kStudioFieldsOf200000[] = {
    {"Sessions", {"RoomID", "RecDate"}},
    {"Equipment", {"ActDate"}},
    {"Def_StockTypes", {"ItemPrice"}},
    {"Def_Engineers", {"Price", "RecID"}},
};

const AddedFields kStudioFieldsOf210000[] = {
    {"Bookings", {"StatusID"}},
    {"Clients",
     {"CategoryID", "CatIDs", "Company", "Title", "Country", "State", "City", "ZipCode", "WebSite", "Phone4", "Phone5",
      "Phone1Descript", "Phone2Descript", "Phone3Descript", "Phone4Descript", "Phone5Descript"}},
    {"Projects", {"ProjCreateDate", "ProjTypeID", "ProducerID", "DirectorID", "DiscountType", "DiscountVal"}},
    {"Sessions", {"SongID", "ArtistID"}},
    {"Songs", {"ArtistID", "CopyrightsID", "ProducerID", "ComposerID", "WriterID"}},
    {"Stock", {"Date", "SupplierID", "Cost"}},
    {"Tracks", {"TypeID", "TDate", "PerformerID", "DestinationID", "EngineerID", "ProducerID", "Status", "Mode"}},
};

const AddedFields kInvoiceFieldsOf200010[] = {{"Invoices", {"InvTaxIDs"}}, {"InvoiceParams", {"TaxIDs"}}};
const AddedFields kInvoiceFieldsOf210000[] = {{"Invoices", {"fTax", "fDiscount", "Paymetns", "Balance"}},
                                              {"InvoiceParams", {"Date", "Details"}}};

constexpr RemovedField kRemoved[] = {{"Sessions", "Date", "RecDate"}, {"Equipment", "Date", "ActDate"}};

}  // namespace

std::span<const VersionAdditions> schema_history() {
    static const VersionAdditions kHistory[] = {
        {200000, kTablesOf200000, kStudioFieldsOf200000, {}},
        {200010, kTablesOf200010, {}, kInvoiceFieldsOf200010},
        {210000, kTablesOf210000, kStudioFieldsOf210000, kInvoiceFieldsOf210000},
    };
    return kHistory;
}

const VersionAdditions* additions_of(std::int32_t version) {
    for (const VersionAdditions& additions : schema_history()) {
        if (additions.version == version) return &additions;
    }
    return nullptr;
}

std::span<const RemovedField> removed_fields() { return kRemoved; }

}  // namespace db
