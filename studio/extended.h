// Enumerations beyond those of the tables: sessions and supply within dates, and the custom query.
//
// Each has its own cursor, independent of the table's own enumeration.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

// For EnumFirst and EnumNext only. A row fills the members that the extended record shares with the table's own record;
// a failure leaves the record unchanged.
extern const TableMapping<SessionExInfo> kSessionsWithin;
extern const TableMapping<SupplyExInfo> kSupplyWithin;

// A reserved entry: it has a type number and a cursor, but no query type is defined.
class CustomQuery {
public:
    // The database pointer must outlive the query; it may change and may be null.
    explicit CustomQuery(CDaoDatabase* const& database);

    // E_FAIL: the statement of every type is empty, and the engine refuses it. Stores the type if the database is open
    // and `record` is not null.
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
