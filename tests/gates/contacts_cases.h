// Contacts, their categories, messages and services as the gates serve them: records, methods and how every member is
// stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

// The search text is given to the enumeration too, so it has to be part of every name.
inline const RecordCase<IDBgate1, ClientInfo> kClients{
    .table = "Clients",
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
                member::untouched("SearchName", &ClientInfo::SearchName, "Name")},
    .read_order = {"CategoryID",     "CatIDs",
                   "Name",           "LastName",
                   "Company",        "Title",
                   "Address",        "Country",
                   "State",          "City",
                   "ZipCode",        "WebSite",
                   "Email",          "Fax",
                   "Phone1",         "Phone2",
                   "Phone3",         "Phone4",
                   "Phone5",         "Phone1Descript",
                   "Phone2Descript", "Phone3Descript",
                   "Phone4Descript", "Phone5Descript",
                   "Notes"},
    .write_order =
        {"Name",           "LastName",       "CategoryID",     "CatIDs",  "Company", "Title",          "Address",
         "Country",        "State",          "City",           "ZipCode", "Email",   "WebSite",        "Fax",
         "Phone1",         "Phone2",         "Phone3",         "Phone4",  "Phone5",  "Phone1Descript", "Phone2Descript",
         "Phone3Descript", "Phone4Descript", "Phone5Descript", "Notes"},
};

inline const RecordCase<IDBgate1, ConCatInfo> kCategories{
    .table = "ContactCategories",
    .key = &ConCatInfo::RecID,
    .first = &IDBgate1::EnumFirstConCat,
    .next = &IDBgate1::EnumNextConCat,
    .find = &IDBgate1::FindConCat,
    .add = &IDBgate1::AddConCat,
    .update = &IDBgate1::UpdateConCat,
    .remove = &IDBgate1::DeleteConCat,
    .members = {member::text("Name", &ConCatInfo::Name), member::integer("Type", &ConCatInfo::Type),
                member::integer("ExData", &ConCatInfo::ExData)},
    .read_order = {"Name", "Type", "ExData"},
    .write_order = {"Name", "Type", "ExData"},
};

inline const RecordCase<IDBgate1, MsgInfo> kMessages{
    .table = "Messages",
    .key = &MsgInfo::RecID,
    .first = &IDBgate1::EnumFirstMsg,
    .next = &IDBgate1::EnumNextMsg,
    .find = &IDBgate1::FindMsg,
    .add = &IDBgate1::AddMsg,
    .update = &IDBgate1::UpdateMsg,
    .remove = &IDBgate1::DeleteMsg,
    .members = {member::integer("ContactID", &MsgInfo::ContactID), member::text("ConnectType", &MsgInfo::ConnectType),
                member::date("Date", &MsgInfo::Date), member::text("Descript", &MsgInfo::Descript),
                member::memo("Details", &MsgInfo::Details), member::integer("ExData", &MsgInfo::ExData)},
    .parents = {&MsgInfo::ContactID},
    .read_order = {"ContactID", "ConnectType", "Date", "Descript", "Details", "ExData"},
    .write_order = {"ContactID", "Date", "ConnectType", "Descript", "Details", "ExData"},
};

inline const RecordCase<IDBgate1, ServiceInfo> kServices{
    .table = "Services",
    .key = &ServiceInfo::RecID,
    .first = &IDBgate1::EnumFirstService,
    .next = &IDBgate1::EnumNextService,
    .find = &IDBgate1::FindService,
    .add = &IDBgate1::AddService,
    .update = &IDBgate1::UpdateService,
    .remove = &IDBgate1::DeleteService,
    .members = {member::text("Name", &ServiceInfo::Name), member::integer("ContactID", &ServiceInfo::ContactID),
                member::integer("CategoryID", &ServiceInfo::CategoryID),
                member::integer("TimeUnit", &ServiceInfo::TimeUnit), member::integer("RoomID", &ServiceInfo::RoomID),
                member::currency("Price", &ServiceInfo::Price), member::integer("ExData", &ServiceInfo::ExData)},
    .parents = {&ServiceInfo::ContactID},
    .opened_by = "ContactID",
    .read_order = {"Name", "ContactID", "CategoryID", "TimeUnit", "RoomID", "Price", "ExData"},
    .write_order = {"Name", "ContactID", "CategoryID", "TimeUnit", "RoomID", "Price", "ExData"},
};

}  // namespace testing_support
