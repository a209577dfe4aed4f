#include "studio/stock.h"

#include <cstdint>

namespace studio {
namespace {

constexpr Column<StockInfo> kStockRead[] = {
    column::integer("StockID", &StockInfo::StockID),
    column::text("Name", &StockInfo::Name),
    column::text("Type", &StockInfo::Type),
    column::integer("TypeID", &StockInfo::TypeID),
    column::integer("Quantity", &StockInfo::Quantity),
    column::text("Supplier", &StockInfo::Supplier),
    column::integer("SupplierID", &StockInfo::SupplierID),
    column::date("Date", &StockInfo::Date),
    column::single("Cost", &StockInfo::Cost),
    column::text("Notes", &StockInfo::Notes),
    column::integer("InStock", &StockInfo::InStock),
    column::integer("ExData", &StockInfo::ExData),
};

constexpr Column<StockInfo> kStockWrite[] = {
    column::text("Name", &StockInfo::Name),
    column::text("Type", &StockInfo::Type),
    column::integer("Quantity", &StockInfo::Quantity),
    column::integer("TypeID", &StockInfo::TypeID),
    column::text("Supplier", &StockInfo::Supplier),
    column::integer("SupplierID", &StockInfo::SupplierID),
    column::date("Date", &StockInfo::Date),
    column::single("Cost", &StockInfo::Cost),
    column::text("Notes", &StockInfo::Notes),
    column::integer("InStock", &StockInfo::InStock),
    column::integer("ExData", &StockInfo::ExData),
};

constexpr Clause<StockInfo> kStockFilter[] = {
    filter::equals("TypeID", &StockInfo::TypeID),
    filter::equals("Supplier", &StockInfo::Supplier),
};

constexpr Column<SupplyAct> kSupplyRead[] = {
    column::integer("ActionID", &SupplyAct::ActionID), column::integer("ProjID", &SupplyAct::ProjID),
    column::integer("StockID", &SupplyAct::StockID),   column::text("StockName", &SupplyAct::StockName),
    column::text("StockType", &SupplyAct::StockType),  column::text("Client", &SupplyAct::Client),
    column::integer("ClientID", &SupplyAct::ClientID), column::date("Date", &SupplyAct::Date),
    column::integer("Quantity", &SupplyAct::Quantity), column::integer("ExData", &SupplyAct::ExData),
};

constexpr Column<SupplyAct> kSupplyWrite[] = {
    column::integer("StockID", &SupplyAct::StockID),  column::integer("ProjID", &SupplyAct::ProjID),
    column::text("StockType", &SupplyAct::StockType), column::text("StockName", &SupplyAct::StockName),
    column::text("Client", &SupplyAct::Client),       column::integer("ClientID", &SupplyAct::ClientID),
    column::date("Date", &SupplyAct::Date),           column::integer("Quantity", &SupplyAct::Quantity),
    column::integer("ExData", &SupplyAct::ExData),
};

// Deliberate: no join before the client clause, so the engine refuses a client together with an item or a project.
constexpr Clause<SupplyAct> kSupplyFilter[] = {
    filter::equals("StockID", &SupplyAct::StockID),
    filter::equals("ProjID", &SupplyAct::ProjID),
    filter::equals("ClientID", &SupplyAct::ClientID, Join::kNone),
};

// Deliberate: a type found by its key does not read the key, and reads its price as a currency amount; an enumeration
// reads it from the value's own text.
constexpr Column<StockTypeInfo> kStockTypeRead[] = {
    column::text("TypeName", &StockTypeInfo::TypeName),
    column::integer("InStock", &StockTypeInfo::InStock),
    column::currency("ItemPrice", &StockTypeInfo::ItemPrice),
    column::integer("ExData", &StockTypeInfo::ExData),
};

constexpr Column<StockTypeInfo> kStockTypeEnumRead[] = {
    column::text("TypeName", &StockTypeInfo::TypeName),
    column::integer("TypeID", &StockTypeInfo::TypeID),
    column::integer("InStock", &StockTypeInfo::InStock),
    column::currency_by_text("ItemPrice", &StockTypeInfo::ItemPrice),
    column::integer("ExData", &StockTypeInfo::ExData),
};

constexpr Column<StockTypeInfo> kStockTypeWrite[] = {
    column::text("TypeName", &StockTypeInfo::TypeName),
    column::integer("InStock", &StockTypeInfo::InStock),
    column::integer("ExData", &StockTypeInfo::ExData),
    column::currency("ItemPrice", &StockTypeInfo::ItemPrice),
};

// Deliberate: the cost is text, unlike that of stock. The column ExData has no member.
constexpr Column<EquipInfo> kEquipmentColumns[] = {
    column::integer("RecID", &EquipInfo::RecID), column::text("Name", &EquipInfo::Name),
    column::text("Action", &EquipInfo::Action),  column::date("ActDate", &EquipInfo::ActDate),
    column::text("Cost", &EquipInfo::Cost),      column::text("Notes", &EquipInfo::Notes),
};

// Sum of the column `Quantity` over the rows whose `column` equals `value`, as a whole number; 0 without rows.
LONG quantity_of(CDaoDatabase* database, const char* table, const char* column, LONG value) {
    CDaoRecordset rows(database);
    rows.Open(dbOpenDynaset, sum_where("Quantity", table, column, value).c_str(), kForWriting);
    if (rows.GetRecordCount() < 1) return 0;
    VARIANT total;
    if (!afx::convert_variant(rows.GetFieldValue("total"), VT_R8, total)) return 0;  // Null: no row has the value
    return static_cast<LONG>(static_cast<std::int64_t>(total.dblVal));
}

}  // namespace

constinit const TableMapping<StockInfo> kStock{
    .table = "Stock",
    .key = {"StockID", &StockInfo::StockID},
    .read = kStockRead,
    .write = kStockWrite,
    .filter = kStockFilter,
    .null_record = NullRecord::kWholeTable,
};

constinit const TableMapping<SupplyAct> kSupply{
    .table = "Supply",
    .key = {"ActionID", &SupplyAct::ActionID},
    .read = kSupplyRead,
    .write = kSupplyWrite,
    .filter = kSupplyFilter,
};

constinit const TableMapping<StockTypeInfo> kStockTypes{
    .table = "Def_StockTypes",
    .key = {"TypeID", &StockTypeInfo::TypeID},
    .read = kStockTypeRead,
    .write = kStockTypeWrite,
    .enum_read = kStockTypeEnumRead,
};

constinit const TableMapping<EquipInfo> kEquipment{
    .table = "Equipment",
    .key = {"RecID", &EquipInfo::RecID},
    .read = kEquipmentColumns,
    .write = std::span(kEquipmentColumns).subspan(1),
};

HRESULT compute_in_stock(CDaoDatabase* database, RecordTable<StockTypeInfo>& types, LONG type_id, LONG* in_stock) {
    if (in_stock == nullptr) return db::refuse(db::Refusal::kNoRecord);
    *in_stock = 0;
    return guarded(
        [&] {
            const LONG bought = quantity_of(database, kStock.table, "TypeID", type_id);
            // Deliberate: the StockID of a handout is taken as a type, not as a purchase.
            const LONG handed_out = quantity_of(database, kSupply.table, "StockID", type_id);
            *in_stock = static_cast<LONG>(static_cast<std::uint32_t>(bought) - static_cast<std::uint32_t>(handed_out));
            StockTypeInfo type;
            type.TypeID = type_id;
            if (types.Find(&type) != S_OK) return E_FAIL;
            type.InStock = *in_stock;
            return types.Update(&type);
        },
        [] {});
}

}  // namespace studio
