#include "studio/lookup_lists.h"

#include <cstring>
#include <string_view>

#include "db/values.h"

namespace studio {
namespace {

constexpr char kNameColumn[] = "Name";

constexpr Column<ListName> kNameColumns[] = {
    column::text(kNameColumn, &ListName::Name),
};

constexpr TableMapping<ListName> list(const char* table) {
    return {.table = table, .read = kNameColumns, .write = kNameColumns};
}

void copy_name(const CString& name, LPSTR buffer, std::size_t size) {
    const std::string_view whole(name.GetString(), static_cast<std::size_t>(name.GetLength()));
    const std::string_view text = db::text_within(whole, size - 1);
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = 0;
}

}  // namespace

constinit const TableMapping<ListName> kTrackTypes = list("Def_TrackTypes");
constinit const TableMapping<ListName> kProjectTypes = list("Def_ProjTypes");
constinit const TableMapping<ListName> kTrackDestinations = list("Def_TrackDestination");
constinit const TableMapping<ListName> kEquipmentActions = list("Def_EquipActs");

HRESULT NameList::EnumFirst(LPSTR buffer, std::size_t size) {
    ListName first;
    const HRESULT result = names_.EnumFirst(buffer != nullptr ? &first : nullptr);
    if (result == S_OK) copy_name(first.Name, buffer, size);
    return result;
}

HRESULT NameList::EnumNext(LPSTR buffer, std::size_t size) {
    ListName next;
    const HRESULT result = names_.EnumNext(buffer != nullptr ? &next : nullptr);
    if (result == S_OK) copy_name(next.Name, buffer, size);
    return result;
}

template <class Work>
HRESULT NameList::with_rows_named(LPCSTR name, Work&& work) {
    if (!is_usable(database_) || name == nullptr) return refuse_unusable(database_);
    return guarded(
        [&] {
            CDaoRecordset rows(database_);
            rows.Open(dbOpenDynaset, rows_named(mapping_.table, kNameColumn, name).c_str(), kForWriting);
            work(rows, rows.GetRecordCount() >= 1);
            rows.Close();
            return S_OK;
        },
        [] {});
}

HRESULT NameList::Add(LPCSTR name) {
    return with_rows_named(name, [&](CDaoRecordset& rows, bool is_there) {
        if (is_there) return;
        rows.AddNew();
        rows.SetBookmark(rows.GetLastModifiedBookmark());
        rows.SetFieldValue(kNameColumn, name);
        rows.Update();
    });
}

HRESULT NameList::Delete(LPCSTR name) {
    return with_rows_named(name, [](CDaoRecordset& rows, bool is_there) {
        if (!is_there) return;
        rows.MoveFirst();
        rows.Delete();
    });
}

}  // namespace studio
