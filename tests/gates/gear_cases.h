// The five gear tables, as both gear gates serve them: records, methods and how every member is stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

template <class Gate>
RecordCase<Gate, GearInfo> gear_case() {
    return {
        .table = "Gear",
        .key = &GearInfo::RecID,
        .first = &Gate::EnumFirstGear,
        .next = &Gate::EnumNextGear,
        .find = &Gate::FindGear,
        .add = &Gate::AddGear,
        .update = &Gate::UpdateGear,
        .remove = &Gate::DeleteGear,
        .members = {member::text("Manufacturer", &GearInfo::Manufacturer), member::text("Model", &GearInfo::Model),
                    member::text("SerialNo", &GearInfo::SerialNo), member::integer("StatusID", &GearInfo::StatusID),
                    member::integer("RoomID", &GearInfo::RoomID), member::integer("CategoryID", &GearInfo::CategoryID),
                    member::date("WarrantyDate", &GearInfo::WarrantyDate),
                    member::date("PurchaseDate", &GearInfo::PurchaseDate), member::single("Cost", &GearInfo::Cost),
                    member::integer("ExData", &GearInfo::ExData)},
        .read_order = {"Manufacturer", "Model", "SerialNo", "StatusID", "RoomID", "CategoryID", "WarrantyDate",
                       "PurchaseDate", "Cost", "ExData"},
        .write_order = {"Manufacturer", "Model", "SerialNo", "StatusID", "RoomID", "CategoryID", "WarrantyDate",
                        "PurchaseDate", "Cost", "ExData"}};
}

template <class Gate>
RecordCase<Gate, GearServInfo> gear_service_case() {
    return {
        .table = "GearServices",
        .key = &GearServInfo::RecID,
        .first = &Gate::EnumFirstGearService,
        .next = &Gate::EnumNextGearService,
        .find = &Gate::FindGearService,
        .add = &Gate::AddGearService,
        .update = &Gate::UpdateGearService,
        .remove = &Gate::DeleteGearService,
        .members = {member::integer("GearID", &GearServInfo::GearID), member::integer("RoomID", &GearServInfo::RoomID),
                    member::text("Name", &GearServInfo::Name), member::integer("TimeUnitID", &GearServInfo::TimeUnitID),
                    member::integer("ServiceTypeID", &GearServInfo::ServiceTypeID),
                    member::single("Price", &GearServInfo::Price), member::integer("ExData", &GearServInfo::ExData)},
        .read_order = {"GearID", "RoomID", "Name", "TimeUnitID", "ServiceTypeID", "Price", "ExData"},
        .write_order = {"GearID", "RoomID", "Name", "TimeUnitID", "ServiceTypeID", "Price", "ExData"}};
}

template <class Gate>
RecordCase<Gate, GRepairsInfo> gear_repair_case() {
    return {
        .table = "GearRepairs",
        .key = &GRepairsInfo::RecID,
        .first = &Gate::EnumFirstGRepairs,
        .next = &Gate::EnumNextGRepairs,
        .find = &Gate::FindGRepairs,
        .add = &Gate::AddGRepairs,
        .update = &Gate::UpdateGRepairs,
        .remove = &Gate::DeleteGRepairs,
        .members = {member::integer("GearID", &GRepairsInfo::GearID), member::text("GearName", &GRepairsInfo::GearName),
                    member::date("SendDate", &GRepairsInfo::SendDate),
                    member::date("ReturnDate", &GRepairsInfo::ReturnDate),
                    member::date("WarrantyDate", &GRepairsInfo::WarrantyDate),
                    member::text("ClaimNo", &GRepairsInfo::ClaimNo),
                    member::text("Technician", &GRepairsInfo::Technician),
                    member::integer("TechID", &GRepairsInfo::TechID), member::single("Cost", &GRepairsInfo::Cost),
                    member::memo("Description", &GRepairsInfo::Description),
                    member::integer("ExData", &GRepairsInfo::ExData)},
        .read_order = {"GearID", "GearName", "ClaimNo", "SendDate", "ReturnDate", "WarrantyDate", "Technician",
                       "TechID", "Cost", "Description", "ExData"},
        .write_order = {"GearID", "GearName", "ClaimNo", "SendDate", "ReturnDate", "WarrantyDate", "Technician",
                        "TechID", "Cost", "Description", "ExData"}};
}

template <class Gate>
RecordCase<Gate, GearCatInfo> gear_category_case() {
    return {.table = "GearCategories",
            .key = &GearCatInfo::RecID,
            .first = &Gate::EnumFirstGearCat,
            .next = &Gate::EnumNextGearCat,
            .find = &Gate::FindGearCat,
            .add = &Gate::AddGearCat,
            .update = &Gate::UpdateGearCat,
            .remove = &Gate::DeleteGearCat,
            .members = {member::text("Name", &GearCatInfo::Name), member::integer("ExData", &GearCatInfo::ExData)},
            .read_order = {"Name", "ExData"},
            .write_order = {"Name", "ExData"}};
}

// What the gate serves of a rental; `DateFlags` is checked by a test of its own.
template <class Gate>
RecordCase<Gate, GearRentInfo> gear_rental_case(std::vector<Member<GearRentInfo>> members,
                                                const std::vector<const char*>& order) {
    return {.table = "GearRentals",
            .key = &GearRentInfo::RecID,
            .first = &Gate::EnumFirstGearRent,
            .next = &Gate::EnumNextGearRent,
            .find = &Gate::FindGearRent,
            .add = &Gate::AddGearRent,
            .update = &Gate::UpdateGearRent,
            .remove = &Gate::DeleteGearRent,
            .members = std::move(members),
            .read_order = order,
            .write_order = order};
}

// The columns of what is not served are there, and stay Null.
inline const RecordCase<IDBgate2, GearRentInfo> kPartialGearRentals = gear_rental_case<IDBgate2>(
    {member::text("ServiceName", &GearRentInfo::ServiceName),
     member::untouched("GearID not served", &GearRentInfo::GearID),
     member::integer("ServiceID", &GearRentInfo::ServiceID), member::integer("ProjID", &GearRentInfo::ProjID),
     member::date("Date", &GearRentInfo::Date), member::single("Quantity", &GearRentInfo::Quantity),
     member::integer("QuantType", &GearRentInfo::QuantType),
     member::untouched("ClientID not served", &GearRentInfo::ClientID),
     member::untouched("RoomID not served", &GearRentInfo::RoomID), member::integer("ExData", &GearRentInfo::ExData),
     member::untouched("DateFrom", &GearRentInfo::DateFrom), member::untouched("DateTo", &GearRentInfo::DateTo)},
    {"ServiceID", "ProjID", "ServiceName", "Date", "Quantity", "QuantType", "ExData"});

inline const RecordCase<IDBGate3, GearRentInfo> kGearRentals = gear_rental_case<IDBGate3>(
    {member::text("ServiceName", &GearRentInfo::ServiceName), member::integer("GearID", &GearRentInfo::GearID),
     member::integer("ServiceID", &GearRentInfo::ServiceID), member::integer("ProjID", &GearRentInfo::ProjID),
     member::date("Date", &GearRentInfo::Date), member::single("Quantity", &GearRentInfo::Quantity),
     member::integer("QuantType", &GearRentInfo::QuantType), member::integer("ClientID", &GearRentInfo::ClientID),
     member::integer("RoomID", &GearRentInfo::RoomID), member::integer("ExData", &GearRentInfo::ExData),
     member::untouched("DateFrom", &GearRentInfo::DateFrom), member::untouched("DateTo", &GearRentInfo::DateTo)},
    {"GearID", "ServiceID", "ProjID", "ServiceName", "Date", "Quantity", "QuantType", "ClientID", "RoomID", "ExData"});

}  // namespace testing_support
