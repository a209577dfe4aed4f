// Stock, supply, stock types and equipment as the gates serve them: records, methods and how every member is stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

inline const RecordCase<IDBgate1, StockInfo> kStock{
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
                member::text("Supplier", &StockInfo::Supplier), member::integer("SupplierID", &StockInfo::SupplierID),
                member::date("Date", &StockInfo::Date), member::single("Cost", &StockInfo::Cost),
                member::memo("Notes", &StockInfo::Notes), member::integer("InStock", &StockInfo::InStock),
                member::integer("ExData", &StockInfo::ExData)},
    .read_order = {"Name", "Type", "TypeID", "Quantity", "Supplier", "SupplierID", "Date", "Cost", "Notes", "InStock",
                   "ExData"},
    .write_order = {"Name", "Type", "Quantity", "TypeID", "Supplier", "SupplierID", "Date", "Cost", "Notes", "InStock",
                    "ExData"}};

inline const RecordCase<IDBgate1, SupplyAct> kSupply{
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
                member::integer("ExData", &SupplyAct::ExData)},
    .read_order = {"ProjID", "StockID", "StockName", "StockType", "Client", "ClientID", "Date", "Quantity", "ExData"},
    .write_order = {"StockID", "ProjID", "StockType", "StockName", "Client", "ClientID", "Date", "Quantity", "ExData"}};

inline const RecordCase<IDBgate1, StockTypeInfo> kStockTypes{
    .table = "Def_StockTypes",
    .key_column = "TypeID",
    .key = &StockTypeInfo::TypeID,
    .first = &IDBgate1::EnumFirstStockType,
    .next = &IDBgate1::EnumNextStockType,
    .find = &IDBgate1::FindStockType,
    .add = &IDBgate1::AddStockType,
    .update = &IDBgate1::UpdateStockType,
    .remove = &IDBgate1::DeleteStockType,
    .members = {member::text("TypeName", &StockTypeInfo::TypeName), member::integer("InStock", &StockTypeInfo::InStock),
                member::currency("ItemPrice", &StockTypeInfo::ItemPrice),
                member::integer("ExData", &StockTypeInfo::ExData), member::untouched("Spare", &StockTypeInfo::Spare)},
    .read_order = {"TypeName", "InStock", "ItemPrice", "ExData"},
    .write_order = {"TypeName", "InStock", "ExData", "ItemPrice"}};

inline const RecordCase<IDBgate1, EquipInfo> kEquipment{
    .table = "Equipment",
    .key = &EquipInfo::RecID,
    .first = &IDBgate1::EnumFirstEquip,
    .next = &IDBgate1::EnumNextEquip,
    .find = &IDBgate1::FindEquip,
    .add = &IDBgate1::AddEquip,
    .update = &IDBgate1::UpdateEquip,
    .remove_key = &IDBgate1::DeleteEquip,
    .members = {member::untouched("Reserved1", &EquipInfo::Reserved1), member::text("Name", &EquipInfo::Name),
                member::untouched("Reserved2", &EquipInfo::Reserved2), member::date("ActDate", &EquipInfo::ActDate),
                member::text("Action", &EquipInfo::Action), member::text("Cost", &EquipInfo::Cost),
                member::memo("Notes", &EquipInfo::Notes)},
    .read_order = {"Name", "Action", "ActDate", "Cost", "Notes"},
    .write_order = {"Name", "Action", "ActDate", "Cost", "Notes"}};

}  // namespace testing_support
