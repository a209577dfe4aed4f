// The lists of names that a program offers as choices: tables of one text column without a key.
//
// Invariants
//  1. A list holds a name once: adding an existing name and deleting a missing one succeed.
//  2. A returned name fits in the caller's buffer, always ends with a zero byte, and is truncated between two
//     characters if it is longer.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>

#include <cstddef>

#include "studio/record_table.h"

namespace studio {

// Bytes of a host's buffer: the longest name that a column holds where a character is a byte, plus the zero byte.
inline constexpr std::size_t kListNameSize = 255 + 1;

// A row of a list.
struct ListName {
    CString Name;
};

extern const TableMapping<ListName> kTrackTypes;
extern const TableMapping<ListName> kProjectTypes;
extern const TableMapping<ListName> kTrackDestinations;
extern const TableMapping<ListName> kEquipmentActions;

class NameList {
public:
    // Both must outlive the list; the database pointer may change and may be null.
    NameList(const TableMapping<ListName>& mapping, CDaoDatabase* const& database)
        : mapping_(mapping), database_(database), names_(mapping, database) {}

    // Copies the first name to a buffer of `size` bytes; a failure leaves the buffer unchanged. E_FAIL when the
    // list is empty, the buffer null or the database not open, and on an engine error.
    HRESULT EnumFirst(LPSTR buffer, std::size_t size = kListNameSize);
    // The next name; also E_FAIL at the end.
    HRESULT EnumNext(LPSTR buffer, std::size_t size = kListNameSize);
    // S_OK also when the name exists, in any case. E_FAIL, and nothing is added, for an empty name, one that is too
    // long, and one whose double quote breaks the statement.
    HRESULT Add(LPCSTR name);
    // S_OK also when there is no such name.
    HRESULT Delete(LPCSTR name);

    void ReleaseCursor() { names_.ReleaseCursor(); }

    const char* table() const { return mapping_.table; }
    bool is_in(CDaoDatabase* const& database) const { return names_.is_in(database); }

private:
    // Runs `work` on the rows with this name, opened for changes.
    template <class Work>
    HRESULT with_rows_named(LPCSTR name, Work&& work);

    const TableMapping<ListName>& mapping_;
    CDaoDatabase* const& database_;
    RecordTable<ListName> names_;
};

}  // namespace studio
