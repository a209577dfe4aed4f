// The lists of names from which a program fills its choices: tables of one text column without a key.
//
// Invariants
//  1. A list holds a name once: adding a name that is there and deleting one that is not are successes.
//  2. A name given out takes at most kListNameSize bytes of the caller's buffer and always ends in a zero byte.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>

#include "studio/record_table.h"

namespace studio {

// Bytes of a caller's buffer: the longest name that a column holds, and the zero byte.
inline constexpr int kListNameSize = 255 + 1;

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
    // Both have to live as long as the list; the database pointer may change and may be null.
    NameList(const TableMapping<ListName>& mapping, CDaoDatabase* const& database)
        : mapping_(mapping), database_(database), names_(mapping, database) {}

    // The first name into a buffer of kListNameSize bytes, which a failure leaves as it was. E_FAIL when the
    // list is empty, the buffer null or the database not open, and at an error of the engine.
    HRESULT EnumFirst(LPSTR buffer);
    // The next one; E_FAIL at the end, too.
    HRESULT EnumNext(LPSTR buffer);
    // S_OK too when the name is there already, in whatever case. E_FAIL for an empty name, one that is too
    // long, and one whose double quote breaks the statement; nothing is added then.
    HRESULT Add(LPCSTR name);
    // S_OK too when there is no such name.
    HRESULT Delete(LPCSTR name);

    void ReleaseCursor() { names_.ReleaseCursor(); }

    const char* table() const { return mapping_.table; }
    bool is_in(CDaoDatabase* const& database) const { return names_.is_in(database); }

private:
    // Runs `work` on the rows with this name, open for changes.
    template <class Work>
    HRESULT with_rows_named(LPCSTR name, Work&& work);

    const TableMapping<ListName>& mapping_;
    CDaoDatabase* const& database_;
    RecordTable<ListName> names_;
};

}  // namespace studio
