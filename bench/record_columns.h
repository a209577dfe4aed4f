// The tables as the peer has them: a column for every member that is stored, in the order of the record.
#pragma once

#include <kvdb/kvdb.h>

#include <variant>
#include <vector>

namespace bench {

template <class Record>
struct SqlColumn {
    const char* name;
    std::variant<LONG Record::*, CString Record::*, CTime Record::*, float Record::*> member;
};

template <class Record>
struct SqlTable {
    const char* name;
    const char* key_column;
    LONG Record::*key;
    std::vector<SqlColumn<Record>> columns;
};

template <class Record>
const SqlTable<Record> kSqlTable;

template <>
inline const SqlTable<SongInfo> kSqlTable<SongInfo>{"Songs",
                                                    "SongID",
                                                    &SongInfo::SongID,
                                                    {{"ProjID", &SongInfo::ProjID},
                                                     {"Name", &SongInfo::Name},
                                                     {"Artist", &SongInfo::Artist},
                                                     {"ArtistID", &SongInfo::ArtistID},
                                                     {"Copyrights", &SongInfo::Copyrights},
                                                     {"CopyrightsID", &SongInfo::CopyrightsID},
                                                     {"Notes", &SongInfo::Notes},
                                                     {"MixFile", &SongInfo::MixFile},
                                                     {"Folder", &SongInfo::Folder},
                                                     {"SongFile", &SongInfo::SongFile},
                                                     {"Sequencer", &SongInfo::Sequencer},
                                                     {"Client", &SongInfo::Client},
                                                     {"ClientID", &SongInfo::ClientID},
                                                     {"Producer", &SongInfo::Producer},
                                                     {"ProducerID", &SongInfo::ProducerID},
                                                     {"ComposerID", &SongInfo::ComposerID},
                                                     {"WriterID", &SongInfo::WriterID},
                                                     {"ExData", &SongInfo::ExData}}};

template <>
inline const SqlTable<ClientInfo> kSqlTable<ClientInfo>{"Clients",
                                                        "ClientID",
                                                        &ClientInfo::ClientID,
                                                        {{"Name", &ClientInfo::Name},
                                                         {"LastName", &ClientInfo::LastName},
                                                         {"Company", &ClientInfo::Company},
                                                         {"Title", &ClientInfo::Title},
                                                         {"CategoryID", &ClientInfo::CategoryID},
                                                         {"CatIDs", &ClientInfo::CatIDs},
                                                         {"Address", &ClientInfo::Address},
                                                         {"Country", &ClientInfo::Country},
                                                         {"State", &ClientInfo::State},
                                                         {"City", &ClientInfo::City},
                                                         {"ZipCode", &ClientInfo::ZipCode},
                                                         {"WebSite", &ClientInfo::WebSite},
                                                         {"Email", &ClientInfo::Email},
                                                         {"Fax", &ClientInfo::Fax},
                                                         {"Phone1", &ClientInfo::Phone1},
                                                         {"Phone2", &ClientInfo::Phone2},
                                                         {"Phone3", &ClientInfo::Phone3},
                                                         {"Phone4", &ClientInfo::Phone4},
                                                         {"Phone5", &ClientInfo::Phone5},
                                                         {"Phone1Descript", &ClientInfo::Phone1Descript},
                                                         {"Phone2Descript", &ClientInfo::Phone2Descript},
                                                         {"Phone3Descript", &ClientInfo::Phone3Descript},
                                                         {"Phone4Descript", &ClientInfo::Phone4Descript},
                                                         {"Phone5Descript", &ClientInfo::Phone5Descript},
                                                         {"Notes", &ClientInfo::Notes}}};

template <>
inline const SqlTable<SessionInfo> kSqlTable<SessionInfo>{"Sessions",
                                                          "SessionID",
                                                          &SessionInfo::SessionID,
                                                          {{"ProjID", &SessionInfo::ProjID},
                                                           {"SongName", &SessionInfo::SongName},
                                                           {"SongID", &SessionInfo::SongID},
                                                           {"Engineer", &SessionInfo::Engineer},
                                                           {"ArtistID", &SessionInfo::ArtistID},
                                                           {"RecDate", &SessionInfo::RecDate},
                                                           {"StartTime", &SessionInfo::StartTime},
                                                           {"EndTime", &SessionInfo::EndTime},
                                                           {"Total", &SessionInfo::Total},
                                                           {"Notes", &SessionInfo::Notes},
                                                           {"Client", &SessionInfo::Client},
                                                           {"ClientID", &SessionInfo::ClientID},
                                                           {"RoomID", &SessionInfo::RoomID},
                                                           {"ExData", &SessionInfo::ExData}}};

template <>
inline const SqlTable<BookingInfo> kSqlTable<BookingInfo>{"Bookings",
                                                          "RecID",
                                                          &BookingInfo::RecID,
                                                          {{"DateStart", &BookingInfo::DateStart},
                                                           {"DateEnd", &BookingInfo::DateEnd},
                                                           {"ClientID", &BookingInfo::ClientID},
                                                           {"ClientName", &BookingInfo::ClientName},
                                                           {"ProjID", &BookingInfo::ProjID},
                                                           {"RoomID", &BookingInfo::RoomID},
                                                           {"EngineerID", &BookingInfo::EngineerID},
                                                           {"EngineerName", &BookingInfo::EngineerName},
                                                           {"SessionID", &BookingInfo::SessionID},
                                                           {"StatusID", &BookingInfo::StatusID},
                                                           {"Notes", &BookingInfo::Notes},
                                                           {"ExData", &BookingInfo::ExData}}};

template <>
inline const SqlTable<StockInfo> kSqlTable<StockInfo>{"Stock",
                                                      "StockID",
                                                      &StockInfo::StockID,
                                                      {{"Name", &StockInfo::Name},
                                                       {"Type", &StockInfo::Type},
                                                       {"TypeID", &StockInfo::TypeID},
                                                       {"Quantity", &StockInfo::Quantity},
                                                       {"Supplier", &StockInfo::Supplier},
                                                       {"SupplierID", &StockInfo::SupplierID},
                                                       {"Date", &StockInfo::Date},
                                                       {"Cost", &StockInfo::Cost},
                                                       {"Notes", &StockInfo::Notes},
                                                       {"InStock", &StockInfo::InStock},
                                                       {"ExData", &StockInfo::ExData}}};

template <>
inline const SqlTable<SupplyAct> kSqlTable<SupplyAct>{"Supply",
                                                      "ActionID",
                                                      &SupplyAct::ActionID,
                                                      {{"StockID", &SupplyAct::StockID},
                                                       {"ProjID", &SupplyAct::ProjID},
                                                       {"StockName", &SupplyAct::StockName},
                                                       {"StockType", &SupplyAct::StockType},
                                                       {"Client", &SupplyAct::Client},
                                                       {"ClientID", &SupplyAct::ClientID},
                                                       {"Date", &SupplyAct::Date},
                                                       {"Quantity", &SupplyAct::Quantity},
                                                       {"ExData", &SupplyAct::ExData}}};

template <>
inline const SqlTable<StockTypeInfo> kSqlTable<StockTypeInfo>{"Def_StockTypes",
                                                              "TypeID",
                                                              &StockTypeInfo::TypeID,
                                                              {{"TypeName", &StockTypeInfo::TypeName},
                                                               {"InStock", &StockTypeInfo::InStock},
                                                               {"ItemPrice", &StockTypeInfo::ItemPrice},
                                                               {"ExData", &StockTypeInfo::ExData}}};

template <>
inline const SqlTable<InvParamsInfo> kSqlTable<InvParamsInfo>{"InvoiceParams",
                                                              "RecID",
                                                              &InvParamsInfo::RecID,
                                                              {{"InvoiceID", &InvParamsInfo::InvoiceID},
                                                               {"Type", &InvParamsInfo::Type},
                                                               {"Name", &InvParamsInfo::Name},
                                                               {"TaxIDs", &InvParamsInfo::TaxIDs},
                                                               {"DWQuantity", &InvParamsInfo::DWQuantity},
                                                               {"FQuantity", &InvParamsInfo::FQuantity},
                                                               {"ItemPrice", &InvParamsInfo::ItemPrice},
                                                               {"Total", &InvParamsInfo::Total},
                                                               {"ExData", &InvParamsInfo::ExData},
                                                               {"Date", &InvParamsInfo::Date},
                                                               {"Details", &InvParamsInfo::Details}}};

template <>
inline const SqlTable<GearInfo> kSqlTable<GearInfo>{"Gear",
                                                    "RecID",
                                                    &GearInfo::RecID,
                                                    {{"Manufacturer", &GearInfo::Manufacturer},
                                                     {"Model", &GearInfo::Model},
                                                     {"SerialNo", &GearInfo::SerialNo},
                                                     {"StatusID", &GearInfo::StatusID},
                                                     {"RoomID", &GearInfo::RoomID},
                                                     {"CategoryID", &GearInfo::CategoryID},
                                                     {"WarrantyDate", &GearInfo::WarrantyDate},
                                                     {"PurchaseDate", &GearInfo::PurchaseDate},
                                                     {"Cost", &GearInfo::Cost},
                                                     {"ExData", &GearInfo::ExData}}};

}  // namespace bench
