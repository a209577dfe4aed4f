// The studio's store: purchases (`Stock`), handouts (`Supply`), the types of stock with the number on hand
// (`Def_StockTypes`), and the log of the equipment (`Equipment`).
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<StockInfo> kStock;
extern const TableMapping<SupplyAct> kSupply;
extern const TableMapping<StockTypeInfo> kStockTypes;
extern const TableMapping<EquipInfo> kEquipment;

// Computes purchases minus handouts of a stock type, into `in_stock` and into the type's row, whose other columns are
// written back as read. E_FAIL without an open database (`in_stock` is 0), and when there is no such type (`in_stock`
// is the difference). `types` is the stock types' table over the same database.
HRESULT compute_in_stock(CDaoDatabase* database, RecordTable<StockTypeInfo>& types, LONG type_id, LONG* in_stock);

}  // namespace studio
