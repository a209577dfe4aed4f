// What the operations on rows of the component's own have in common.
#pragma once

#include <string>

#include "afx/dao_recordset.h"

namespace db {

// Whether the work failed for lack of memory, of which no part is to be kept.
inline bool is_lack_of_memory(const CDaoException& error) {
    constexpr LONG kOutOfMemory = 3035;
    return error.m_pErrorInfo->m_lErrorCode == kOutOfMemory;
}

// Runs `work`; 0, or -1 when it throws an engine's error, which is deleted. Lack of memory goes on its way.
template <class Work>
int guarded(Work&& work) {
    try {
        work();
        return 0;
    } catch (CDaoException* e) {
        if (is_lack_of_memory(*e)) throw;
        e->Delete();
        return -1;
    }
}

inline COleVariant long_value(LONG value) { return COleVariant(value, VT_I4); }

inline void open_table(CDaoRecordset& rows, const char* table, int options = 0) {
    rows.Open(dbOpenDynaset, ("SELECT * FROM [" + std::string(table) + "]").c_str(), options);
}

// Calls visit(rows) on every row of the table.
template <class Visit>
void for_each_row(CDaoDatabase& database, const char* table, Visit&& visit) {
    CDaoRecordset rows(&database);
    for (open_table(rows, table, dbForwardOnly | dbReadOnly); !rows.IsEOF(); rows.MoveNext()) visit(rows);
}

// The same between Edit and Update.
template <class Visit>
void edit_each_row(CDaoDatabase& database, const char* table, Visit&& visit) {
    CDaoRecordset rows(&database);
    for (open_table(rows, table); !rows.IsEOF(); rows.MoveNext()) {
        rows.Edit();
        visit(rows);
        rows.Update();
    }
}

}  // namespace db
