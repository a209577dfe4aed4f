// The tables that the model test works on, as the gates serve them: records, methods and how every member
// is stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

// ---- The main gate

inline RecordCase<IDBgate1, ProjInfo> project_table() {
    return {
        .table = "Projects",
        .key_column = "ProjID",
        .key = &ProjInfo::ProjID,
        .first = &IDBgate1::EnumFirstProj,
        .next = &IDBgate1::EnumNextProj,
        .find = &IDBgate1::FindProj,
        .add = &IDBgate1::AddProj,
        .update = &IDBgate1::UpdateProj,
        .remove_key = &IDBgate1::DeleteProj,
        .members = {member::integer("ExData", &ProjInfo::ExData), member::text("Name", &ProjInfo::Name),
                    member::text("Client", &ProjInfo::Client), member::integer("ClientID", &ProjInfo::ClientID),
                    member::integer("ProducerID", &ProjInfo::ProducerID),
                    member::integer("DirectorID", &ProjInfo::DirectorID), member::text("Producer", &ProjInfo::Producer),
                    member::text("Director", &ProjInfo::Director), member::text("Folder", &ProjInfo::Folder),
                    member::text("Type", &ProjInfo::Type), member::integer("ProjTypeID", &ProjInfo::ProjTypeID),
                    member::date("ProjCreateDate", &ProjInfo::ProjCreateDate),
                    member::currency("DiscountVal", &ProjInfo::DiscountVal),
                    member::integer("DiscountType", &ProjInfo::DiscountType), member::memo("Notes", &ProjInfo::Notes)}};
}

inline RecordCase<IDBgate1, SongInfo> song_table() {
    return {
        .table = "Songs",
        .key_column = "SongID",
        .key = &SongInfo::SongID,
        .first = &IDBgate1::EnumFirstSong,
        .next = &IDBgate1::EnumNextSong,
        .find = &IDBgate1::FindSong,
        .add = &IDBgate1::AddSong,
        .update = &IDBgate1::UpdateSong,
        .remove_key = &IDBgate1::DeleteSong,
        .members = {member::integer("ProjID", &SongInfo::ProjID), member::text("Name", &SongInfo::Name),
                    member::text("Artist", &SongInfo::Artist), member::integer("ArtistID", &SongInfo::ArtistID),
                    member::text("Copyrights", &SongInfo::Copyrights),
                    member::integer("CopyrightsID", &SongInfo::CopyrightsID), member::memo("Notes", &SongInfo::Notes),
                    member::memo("MixFile", &SongInfo::MixFile), member::memo("Folder", &SongInfo::Folder),
                    member::memo("SongFile", &SongInfo::SongFile), member::memo("Sequencer", &SongInfo::Sequencer),
                    member::memo("Client", &SongInfo::Client), member::integer("ClientID", &SongInfo::ClientID),
                    member::memo("Producer", &SongInfo::Producer), member::integer("ProducerID", &SongInfo::ProducerID),
                    member::integer("ComposerID", &SongInfo::ComposerID),
                    member::integer("WriterID", &SongInfo::WriterID), member::integer("ExData", &SongInfo::ExData)}};
}

inline RecordCase<IDBgate1, TrackInfo> track_table() {
    return {.table = "Tracks",
            .key_column = "TrackID",
            .key = &TrackInfo::TrackID,
            .first = &IDBgate1::EnumFirstTrack,
            .next = &IDBgate1::EnumNextTrack,
            .find = &IDBgate1::FindTrack,
            .add = &IDBgate1::AddTrack,
            .update = &IDBgate1::UpdateTrack,
            .remove_key = &IDBgate1::DeleteTrack,
            .members = {member::integer("SongID", &TrackInfo::SongID), member::integer("Number", &TrackInfo::Number),
                        member::integer("ExData", &TrackInfo::ExData), member::text("Name", &TrackInfo::Name),
                        member::text("Type", &TrackInfo::Type), member::integer("TypeID", &TrackInfo::TypeID),
                        member::text("Date", &TrackInfo::Date), member::date("TDate", &TrackInfo::TDate),
                        member::text("Performer", &TrackInfo::Performer),
                        member::integer("PerformerID", &TrackInfo::PerformerID),
                        member::text("Destination", &TrackInfo::Destination),
                        member::integer("DestinationID", &TrackInfo::DestinationID),
                        member::integer("EngineerID", &TrackInfo::EngineerID),
                        member::integer("ProducerID", &TrackInfo::ProducerID),
                        member::integer("Status", &TrackInfo::Status), member::integer("Mode", &TrackInfo::Mode),
                        member::memo("Notes", &TrackInfo::Notes)}};
}

inline RecordCase<IDBgate1, SessionInfo> session_table() {
    return {.table = "Sessions",
            .key_column = "SessionID",
            .key = &SessionInfo::SessionID,
            .first = &IDBgate1::EnumFirstSession,
            .next = &IDBgate1::EnumNextSession,
            .find = &IDBgate1::FindSession,
            .add = &IDBgate1::AddSession,
            .update = &IDBgate1::UpdateSession,
            .remove_key = &IDBgate1::DeleteSession,
            .members = {
                member::integer("ProjID", &SessionInfo::ProjID), member::text("SongName", &SessionInfo::SongName),
                member::integer("SongID", &SessionInfo::SongID), member::text("Engineer", &SessionInfo::Engineer),
                member::integer("ArtistID", &SessionInfo::ArtistID),
                member::untouched("Reserved", &SessionInfo::Reserved), member::date("RecDate", &SessionInfo::RecDate),
                member::text("StartTime", &SessionInfo::StartTime), member::text("EndTime", &SessionInfo::EndTime),
                member::text("Total", &SessionInfo::Total), member::memo("Notes", &SessionInfo::Notes),
                member::memo("Client", &SessionInfo::Client), member::integer("ClientID", &SessionInfo::ClientID),
                member::integer("RoomID", &SessionInfo::RoomID), member::integer("ExData", &SessionInfo::ExData)}};
}

inline RecordCase<IDBgate1, ClientInfo> client_table() {
    return {.table = "Clients",
            .key_column = "ClientID",
            .key = &ClientInfo::ClientID,
            .first = &IDBgate1::EnumFirstClient,
            .next = &IDBgate1::EnumNextClient,
            .find = &IDBgate1::FindClient,
            .add = &IDBgate1::AddClient,
            .update = &IDBgate1::UpdateClient,
            .remove_key = &IDBgate1::DeleteClient,
            .members = {member::text("Name", &ClientInfo::Name),
                        member::text("LastName", &ClientInfo::LastName),
                        member::text("Company", &ClientInfo::Company),
                        member::text("Title", &ClientInfo::Title),
                        member::integer("CategoryID", &ClientInfo::CategoryID),
                        member::text("CatIDs", &ClientInfo::CatIDs),
                        member::text("Address", &ClientInfo::Address),
                        member::text("Country", &ClientInfo::Country),
                        member::text("State", &ClientInfo::State),
                        member::text("City", &ClientInfo::City),
                        member::text("ZipCode", &ClientInfo::ZipCode),
                        member::text("WebSite", &ClientInfo::WebSite),
                        member::text("Email", &ClientInfo::Email),
                        member::text("Fax", &ClientInfo::Fax),
                        member::text("Phone1", &ClientInfo::Phone1),
                        member::text("Phone2", &ClientInfo::Phone2),
                        member::text("Phone3", &ClientInfo::Phone3),
                        member::text("Phone4", &ClientInfo::Phone4),
                        member::text("Phone5", &ClientInfo::Phone5),
                        member::text("Phone1Descript", &ClientInfo::Phone1Descript),
                        member::text("Phone2Descript", &ClientInfo::Phone2Descript),
                        member::text("Phone3Descript", &ClientInfo::Phone3Descript),
                        member::text("Phone4Descript", &ClientInfo::Phone4Descript),
                        member::text("Phone5Descript", &ClientInfo::Phone5Descript),
                        member::memo("Notes", &ClientInfo::Notes),
                        member::untouched("SearchName", &ClientInfo::SearchName, "Name")}};
}

inline RecordCase<IDBgate1, ServiceInfo> service_table() {
    return {.table = "Services",
            .key = &ServiceInfo::RecID,
            .first = &IDBgate1::EnumFirstService,
            .next = &IDBgate1::EnumNextService,
            .find = &IDBgate1::FindService,
            .add = &IDBgate1::AddService,
            .update = &IDBgate1::UpdateService,
            .remove = &IDBgate1::DeleteService,
            .members = {member::text("Name", &ServiceInfo::Name), member::integer("ContactID", &ServiceInfo::ContactID),
                        member::integer("CategoryID", &ServiceInfo::CategoryID),
                        member::integer("TimeUnit", &ServiceInfo::TimeUnit),
                        member::integer("RoomID", &ServiceInfo::RoomID), member::currency("Price", &ServiceInfo::Price),
                        member::integer("ExData", &ServiceInfo::ExData)}};
}

inline RecordCase<IDBgate1, StockInfo> stock_table() {
    return {
        .table = "Stock",
        .key_column = "StockID",
        .key = &StockInfo::StockID,
        .first = &IDBgate1::EnumFirstStock,
        .next = &IDBgate1::EnumNextStock,
        .find = &IDBgate1::FindStock,
        .add = &IDBgate1::AddStock,
        .update = &IDBgate1::UpdateStock,
        .remove_key = &IDBgate1::DeleteStock,
        .members = {member::text("Name", &StockInfo::Name), member::text("Type", &StockInfo::Type),
                    member::integer("TypeID", &StockInfo::TypeID), member::integer("Quantity", &StockInfo::Quantity),
                    member::text("Supplier", &StockInfo::Supplier),
                    member::integer("SupplierID", &StockInfo::SupplierID), member::date("Date", &StockInfo::Date),
                    member::single("Cost", &StockInfo::Cost), member::memo("Notes", &StockInfo::Notes),
                    member::integer("InStock", &StockInfo::InStock), member::integer("ExData", &StockInfo::ExData)}};
}

inline RecordCase<IDBgate1, SupplyAct> supply_table() {
    return {
        .table = "Supply",
        .key_column = "ActionID",
        .key = &SupplyAct::ActionID,
        .first = &IDBgate1::EnumFirstSupply,
        .next = &IDBgate1::EnumNextSupply,
        .find = &IDBgate1::FindSupplyAct,
        .add = &IDBgate1::AddSupplyAct,
        .update = &IDBgate1::UpdateSupplyAct,
        .remove = &IDBgate1::DeleteSupplyAct,
        .members = {member::integer("StockID", &SupplyAct::StockID), member::integer("ProjID", &SupplyAct::ProjID),
                    member::text("StockName", &SupplyAct::StockName), member::text("StockType", &SupplyAct::StockType),
                    member::text("Client", &SupplyAct::Client), member::integer("ClientID", &SupplyAct::ClientID),
                    member::date("Date", &SupplyAct::Date), member::integer("Quantity", &SupplyAct::Quantity),
                    member::integer("ExData", &SupplyAct::ExData)}};
}

inline RecordCase<IDBgate1, StockTypeInfo> stock_type_table() {
    return {.table = "Def_StockTypes",
            .key_column = "TypeID",
            .key = &StockTypeInfo::TypeID,
            .first = &IDBgate1::EnumFirstStockType,
            .next = &IDBgate1::EnumNextStockType,
            .find = &IDBgate1::FindStockType,
            .add = &IDBgate1::AddStockType,
            .update = &IDBgate1::UpdateStockType,
            .remove = &IDBgate1::DeleteStockType,
            .members = {
                member::text("TypeName", &StockTypeInfo::TypeName), member::integer("InStock", &StockTypeInfo::InStock),
                member::currency("ItemPrice", &StockTypeInfo::ItemPrice),
                member::integer("ExData", &StockTypeInfo::ExData), member::untouched("Spare", &StockTypeInfo::Spare)}};
}

inline RecordCase<IDBgate1, BookingInfo> booking_table() {
    return {
        .table = "Bookings",
        .key = &BookingInfo::RecID,
        .first = &IDBgate1::EnumFirstBooking,
        .next = &IDBgate1::EnumNextBooking,
        .find = &IDBgate1::FindBooking,
        .add = &IDBgate1::AddBooking,
        .update = &IDBgate1::UpdateBooking,
        .remove = &IDBgate1::DeleteBooking,
        .members = {
            member::untouched("Reserved", &BookingInfo::Reserved),
            member::minutes("DateStart", &BookingInfo::DateStart), member::minutes("DateEnd", &BookingInfo::DateEnd),
            member::integer("ClientID", &BookingInfo::ClientID), member::text("ClientName", &BookingInfo::ClientName),
            member::integer("ProjID", &BookingInfo::ProjID), member::integer("RoomID", &BookingInfo::RoomID),
            member::integer("EngineerID", &BookingInfo::EngineerID),
            member::text("EngineerName", &BookingInfo::EngineerName),
            member::integer("SessionID", &BookingInfo::SessionID), member::integer("StatusID", &BookingInfo::StatusID),
            member::memo("Notes", &BookingInfo::Notes), member::integer("ExData", &BookingInfo::ExData)}};
}

inline RecordCase<IDBgate1, InvoiceInfo> invoice_table() {
    return {
        .table = "Invoices",
        .key = &InvoiceInfo::RecID,
        .first = &IDBgate1::EnumFirstInvoice,
        .next = &IDBgate1::EnumNextInvoice,
        .find = &IDBgate1::FindInvoice,
        .add = &IDBgate1::AddInvoice,
        .update = &IDBgate1::UpdateInvoice,
        .remove = &IDBgate1::DeleteInvoice,
        .members = {
            member::integer("InvoiceID", &InvoiceInfo::InvoiceID), member::text("ClientName", &InvoiceInfo::ClientName),
            member::text("ClientInfo", &InvoiceInfo::ClientInfo), member::text("InvTaxIDs", &InvoiceInfo::InvTaxIDs),
            member::date("Date", &InvoiceInfo::Date), member::currency("SubTotal", &InvoiceInfo::SubTotal),
            member::integer("Tax", &InvoiceInfo::Tax), member::currency("Tax_SubTotal", &InvoiceInfo::Tax_SubTotal),
            member::integer("Discount", &InvoiceInfo::Discount),
            member::currency("Discount_SubTotal", &InvoiceInfo::Discount_SubTotal),
            member::currency("Total", &InvoiceInfo::Total), member::memo("Notes", &InvoiceInfo::Notes),
            member::integer("ExData", &InvoiceInfo::ExData), member::currency("fTax", &InvoiceInfo::fTax),
            member::currency("fDiscount", &InvoiceInfo::fDiscount), member::single("Paymetns", &InvoiceInfo::Paymetns),
            member::single("Balance", &InvoiceInfo::Balance)}};
}

inline RecordCase<IDBgate1, InvParamsInfo> invoice_line_table() {
    return {.table = "InvoiceParams",
            .key = &InvParamsInfo::RecID,
            .first = &IDBgate1::EnumFirstInvParams,
            .next = &IDBgate1::EnumNextInvParams,
            .find = &IDBgate1::FindInvParams,
            .add = &IDBgate1::AddInvParams,
            .update = &IDBgate1::UpdateInvParams,
            .remove = &IDBgate1::DeleteInvParams,
            .members = {
                member::integer("InvoiceID", &InvParamsInfo::InvoiceID), member::integer("Type", &InvParamsInfo::Type),
                member::text("Name", &InvParamsInfo::Name), member::text("TaxIDs", &InvParamsInfo::TaxIDs),
                member::integer("DWQuantity", &InvParamsInfo::DWQuantity),
                member::currency("FQuantity", &InvParamsInfo::FQuantity),
                member::currency("ItemPrice", &InvParamsInfo::ItemPrice),
                member::currency("Total", &InvParamsInfo::Total), member::integer("ExData", &InvParamsInfo::ExData),
                member::date("Date", &InvParamsInfo::Date), member::text("Details", &InvParamsInfo::Details)}};
}

// ---- The gear gates

template <class Gate>
RecordCase<Gate, GearInfo> gear_table() {
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
                    member::integer("ExData", &GearInfo::ExData)}};
}

template <class Gate>
RecordCase<Gate, GearServInfo> gear_service_table() {
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
                    member::single("Price", &GearServInfo::Price), member::integer("ExData", &GearServInfo::ExData)}};
}

template <class Gate>
RecordCase<Gate, GearRentInfo> rental_table(std::vector<Member<GearRentInfo>> members) {
    return {.table = "GearRentals",
            .key = &GearRentInfo::RecID,
            .first = &Gate::EnumFirstGearRent,
            .next = &Gate::EnumNextGearRent,
            .find = &Gate::FindGearRent,
            .add = &Gate::AddGearRent,
            .update = &Gate::UpdateGearRent,
            .remove = &Gate::DeleteGearRent,
            .members = std::move(members)};
}

// What the older gate serves of a rental.
inline RecordCase<IDBgate2, GearRentInfo> partial_rental_table() {
    return rental_table<IDBgate2>(
        {member::text("ServiceName", &GearRentInfo::ServiceName), member::untouched("GearID", &GearRentInfo::GearID),
         member::integer("ServiceID", &GearRentInfo::ServiceID), member::integer("ProjID", &GearRentInfo::ProjID),
         member::date("Date", &GearRentInfo::Date), member::single("Quantity", &GearRentInfo::Quantity),
         member::integer("QuantType", &GearRentInfo::QuantType), member::untouched("ClientID", &GearRentInfo::ClientID),
         member::untouched("RoomID", &GearRentInfo::RoomID), member::integer("ExData", &GearRentInfo::ExData)});
}

inline RecordCase<IDBGate3, GearRentInfo> full_rental_table() {
    return rental_table<IDBGate3>(
        {member::text("ServiceName", &GearRentInfo::ServiceName), member::integer("GearID", &GearRentInfo::GearID),
         member::integer("ServiceID", &GearRentInfo::ServiceID), member::integer("ProjID", &GearRentInfo::ProjID),
         member::date("Date", &GearRentInfo::Date), member::single("Quantity", &GearRentInfo::Quantity),
         member::integer("QuantType", &GearRentInfo::QuantType), member::integer("ClientID", &GearRentInfo::ClientID),
         member::integer("RoomID", &GearRentInfo::RoomID), member::integer("ExData", &GearRentInfo::ExData)});
}

}  // namespace testing_support
