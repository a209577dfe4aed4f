// The members of records as values of the peer.
#pragma once

#include <kvdb/kvdb.h>
#include <sqlite3.h>

namespace bench {

// Dates as day numbers, as the other store keeps them.
inline double day_number(CTime time) { return static_cast<double>(time.GetTime()) / 86400 + 25569; }

inline void bind_value(sqlite3_stmt* statement, int at, LONG value) { sqlite3_bind_int(statement, at, value); }
inline void bind_value(sqlite3_stmt* statement, int at, float value) {
    sqlite3_bind_double(statement, at, static_cast<double>(value));
}
inline void bind_value(sqlite3_stmt* statement, int at, CTime value) {
    sqlite3_bind_double(statement, at, day_number(value));
}
inline void bind_value(sqlite3_stmt* statement, int at, const CString& value) {
    sqlite3_bind_text(statement, at, value.GetString(), value.GetLength(), SQLITE_STATIC);
}

inline void read_value(sqlite3_stmt* statement, int at, LONG& value) { value = sqlite3_column_int(statement, at); }
inline void read_value(sqlite3_stmt* statement, int at, float& value) {
    value = static_cast<float>(sqlite3_column_double(statement, at));
}
inline void read_value(sqlite3_stmt* statement, int at, CTime& value) {
    value = CTime(static_cast<LONG>((sqlite3_column_double(statement, at) - 25569) * 86400));
}
inline void read_value(sqlite3_stmt* statement, int at, CString& value) {
    value = reinterpret_cast<const char*>(sqlite3_column_text(statement, at));
}

}  // namespace bench
