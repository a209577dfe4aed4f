// The studio's store: purchases (`Stock`), what was handed out (`Supply`), the types of stock with the number
// on hand (`Def_StockTypes`), and the log of the equipment (`Equipment`).
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<StockInfo> kStock;
extern const TableMapping<SupplyAct> kSupply;
extern const TableMapping<StockTypeInfo> kStockTypes;
extern const TableMapping<EquipInfo> kEquipment;

// Bought minus handed out of a stock type, into `in_stock` and into the type's row, whose other columns are
// written back as they were read. E_FAIL without an open database (0 in `in_stock`), and when there is no such
// type (the difference in `in_stock`). `types` is the stock types' table over the same database.
HRESULT compute_in_stock(CDaoDatabase* database, RecordTable<StockTypeInfo>& types, LONG type_id, LONG* in_stock);

}  // namespace studio
