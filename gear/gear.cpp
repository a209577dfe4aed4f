#include "gear/gear.h"

namespace gear {
namespace {

namespace column = studio::column;
namespace filter = studio::filter;
using studio::Clause;
using studio::Column;
using studio::TableMapping;

constexpr Column<GearInfo> kGearColumns[] = {
    column::integer("RecID", &GearInfo::RecID),
    column::text("Manufacturer", &GearInfo::Manufacturer),
    column::text("Model", &GearInfo::Model),
    column::text("SerialNo", &GearInfo::SerialNo),
    column::integer("StatusID", &GearInfo::StatusID),
    column::integer("RoomID", &GearInfo::RoomID),
    column::integer("CategoryID", &GearInfo::CategoryID),
    column::date("WarrantyDate", &GearInfo::WarrantyDate),
    column::date("PurchaseDate", &GearInfo::PurchaseDate),
    column::single("Cost", &GearInfo::Cost),
    column::integer("ExData", &GearInfo::ExData),
};

constexpr Clause<GearInfo> kGearFilter[] = {
    filter::equals("CategoryID", &GearInfo::CategoryID), filter::equals("RoomID", &GearInfo::RoomID),
    filter::equals("StatusID", &GearInfo::StatusID),     filter::contains("Manufacturer", &GearInfo::Manufacturer),
    filter::contains("Model", &GearInfo::Model),         filter::contains("SerialNo", &GearInfo::SerialNo),
};

constexpr Column<GearServInfo> kServiceColumns[] = {
    column::integer("RecID", &GearServInfo::RecID),
    column::integer("GearID", &GearServInfo::GearID),
    column::integer("RoomID", &GearServInfo::RoomID),
    column::text("Name", &GearServInfo::Name),
    column::integer("TimeUnitID", &GearServInfo::TimeUnitID),
    column::integer("ServiceTypeID", &GearServInfo::ServiceTypeID),
    column::single("Price", &GearServInfo::Price),
    column::integer("ExData", &GearServInfo::ExData),
};

constexpr Clause<GearServInfo> kServiceFilter[] = {
    filter::equals("GearID", &GearServInfo::GearID),
    filter::equals("RoomID", &GearServInfo::RoomID),
    filter::equals("TimeUnitID", &GearServInfo::TimeUnitID),
    filter::contains("Name", &GearServInfo::Name),
};

constexpr Column<GRepairsInfo> kRepairColumns[] = {
    column::integer("RecID", &GRepairsInfo::RecID),
    column::integer("GearID", &GRepairsInfo::GearID),
    column::text("GearName", &GRepairsInfo::GearName),
    column::text("ClaimNo", &GRepairsInfo::ClaimNo),
    column::date("SendDate", &GRepairsInfo::SendDate),
    column::date("ReturnDate", &GRepairsInfo::ReturnDate),
    column::date("WarrantyDate", &GRepairsInfo::WarrantyDate),
    column::text("Technician", &GRepairsInfo::Technician),
    column::integer("TechID", &GRepairsInfo::TechID),
    column::single("Cost", &GRepairsInfo::Cost),
    column::text("Description", &GRepairsInfo::Description),
    column::integer("ExData", &GRepairsInfo::ExData),
};

constexpr Clause<GRepairsInfo> kRepairFilter[] = {
    filter::equals("GearID", &GRepairsInfo::GearID),
    filter::equals("TechID", &GRepairsInfo::TechID),
    filter::contains("ClaimNo", &GRepairsInfo::ClaimNo),
    filter::contains("GearName", &GRepairsInfo::GearName),
};

constexpr Column<GearCatInfo> kCategoryColumns[] = {
    column::integer("RecID", &GearCatInfo::RecID),
    column::text("Name", &GearCatInfo::Name),
    column::integer("ExData", &GearCatInfo::ExData),
};

constexpr Column<GearRentInfo> kPartialRentalColumns[] = {
    column::integer("RecID", &GearRentInfo::RecID),
    column::integer("ServiceID", &GearRentInfo::ServiceID),
    column::integer("ProjID", &GearRentInfo::ProjID),
    column::text("ServiceName", &GearRentInfo::ServiceName),
    column::date("Date", &GearRentInfo::Date),
    column::single("Quantity", &GearRentInfo::Quantity),
    column::integer("QuantType", &GearRentInfo::QuantType),
    column::integer("ExData", &GearRentInfo::ExData),
};

constexpr Clause<GearRentInfo> kPartialRentalFilter[] = {
    filter::equals("ServiceID", &GearRentInfo::ServiceID),
    filter::equals("ProjID", &GearRentInfo::ProjID),
    filter::contains("ServiceName", &GearRentInfo::ServiceName),
};

constexpr Column<GearRentInfo> kRentalColumns[] = {
    column::integer("RecID", &GearRentInfo::RecID),          column::integer("GearID", &GearRentInfo::GearID),
    column::integer("ServiceID", &GearRentInfo::ServiceID),  column::integer("ProjID", &GearRentInfo::ProjID),
    column::text("ServiceName", &GearRentInfo::ServiceName), column::date("Date", &GearRentInfo::Date),
    column::single("Quantity", &GearRentInfo::Quantity),     column::integer("QuantType", &GearRentInfo::QuantType),
    column::integer("ClientID", &GearRentInfo::ClientID),    column::integer("RoomID", &GearRentInfo::RoomID),
    column::integer("ExData", &GearRentInfo::ExData),
};

// Bits of DateFlags.
constexpr DWORD kFrom = 1;
constexpr DWORD kTo = 2;

// Deliberate: GearID is stored and read but is not a condition.
constexpr Clause<GearRentInfo> kRentalFilter[] = {
    filter::equals("ServiceID", &GearRentInfo::ServiceID),
    filter::equals("ProjID", &GearRentInfo::ProjID),
    filter::equals("RoomID", &GearRentInfo::RoomID),
    filter::equals("ClientID", &GearRentInfo::ClientID),
    filter::contains("ServiceName", &GearRentInfo::ServiceName),
    filter::on_or_after("Date", &GearRentInfo::DateFrom, &GearRentInfo::DateFlags, kFrom),
    filter::on_or_before("Date", &GearRentInfo::DateTo, &GearRentInfo::DateFlags, kTo),
};

// Deliberate: a record without a key finds, changes and deletes the first row that its filter gives, even the first of
// the table.
template <class Record, std::size_t n>
constexpr TableMapping<Record> by_filter(const char* table, const Column<Record> (&columns)[n],
                                         std::span<const Clause<Record>> clauses) {
    return {
        .table = table,
        .key = {"RecID", &Record::RecID},
        .read = columns,
        .write = std::span(columns).subspan(1),
        .filter = clauses,
        .filter_rule = studio::FilterRule::kKeyBeforeClauses,
        .find_by = studio::FindBy::kFilter,
        .change_by = studio::ChangeBy::kFilter,
    };
}

}  // namespace

constinit const TableMapping<GearInfo> kGear = by_filter<GearInfo>("Gear", kGearColumns, kGearFilter);
constinit const TableMapping<GearServInfo> kServices =
    by_filter<GearServInfo>("GearServices", kServiceColumns, kServiceFilter);
constinit const TableMapping<GRepairsInfo> kRepairs =
    by_filter<GRepairsInfo>("GearRepairs", kRepairColumns, kRepairFilter);
constinit const TableMapping<GearRentInfo> kRentalsInPart =
    by_filter<GearRentInfo>("GearRentals", kPartialRentalColumns, kPartialRentalFilter);
constinit const TableMapping<GearRentInfo> kRentals =
    by_filter<GearRentInfo>("GearRentals", kRentalColumns, kRentalFilter);

constinit const TableMapping<GearCatInfo> kCategories{
    .table = "GearCategories",
    .key = {"RecID", &GearCatInfo::RecID},
    .read = kCategoryColumns,
    .write = std::span(kCategoryColumns).subspan(1),
};

}  // namespace gear
