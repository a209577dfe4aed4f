// Enumerations beyond those of the tables: sessions and supply within dates, and the custom query.
//
// Each has a cursor of its own, so it runs beside the table's own enumeration.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

// For EnumFirst and EnumNext only. A delivered row fills the members that the extended record shares with the
// table's own record; a failure leaves the record as it was.
extern const TableMapping<SessionExInfo> kSessionsWithin;
extern const TableMapping<SupplyExInfo> kSupplyWithin;

// A reserved entry: it has a type number and a cursor, but no type of query is defined, and none runs.
class CustomQuery {
public:
    // The database pointer has to live as long as the query; it may change and may be null.
    explicit CustomQuery(CDaoDatabase* const& database);

    // E_FAIL: the statement of every type is empty, and the engine refuses it. The type is kept where the
    // database is open and there is a record.
    HRESULT EnumFirst(CustomInfo* record, LONG type);
    HRESULT EnumNext(CustomInfo* record) { return rows_.EnumNext(record); }
    void ReleaseCursor() { rows_.ReleaseCursor(); }

    LONG type() const { return type_; }

    const char* table() const { return nullptr; }
    bool is_in(CDaoDatabase* const& database) const { return rows_.is_in(database); }

private:
    CDaoDatabase* const& database_;
    RecordTable<CustomInfo> rows_;
    LONG type_ = 0;
};

}  // namespace studio
