#include "jet/schema/catalog.h"

#include <algorithm>
#include <numeric>

#include "jet/indexes/collation.h"

namespace jet {

namespace columns = catalog_columns;

namespace {

std::size_t position_of(const TableRows& table, std::u16string_view column) {
    const auto position = table.def().find_column(column);
    if (!position) corrupt(table.def().page, "the catalogue has no column '" + to_utf8(column) + "'");
    return *position;
}

template <class T>
T value_or(const RowView& row, std::size_t position, T absent) {
    const Value value = row.value(position);
    const T* typed = std::get_if<T>(&value);
    return typed ? *typed : absent;
}

// Values by position, set by column name.
class NewRow {
public:
    explicit NewRow(const TableRows& table) : table_(table), values_(table.def().columns.size()) {}
    NewRow& set(std::u16string_view column, Value value) {
        values_[position_of(table_, column)] = std::move(value);
        return *this;
    }
    std::vector<Value> take() { return std::move(values_); }

private:
    const TableRows& table_;
    std::vector<Value> values_;
};

ByteVector masked(ByteSpan sid, const FileHeader& header) {
    ByteVector bytes(sid.begin(), sid.end());
    mask_sid(bytes, header);
    return bytes;
}

void reencrypt_column(TableRows& table, std::u16string_view column, const FileHeader& from, const FileHeader& to) {
    const std::size_t position = position_of(table, column);
    RowView row;
    for (auto id = table.next_row({}); id; id = table.next_row(*id)) {
        if (!table.read(*id, row)) continue;
        ByteVector sid = value_or<ByteVector>(row, position, {});
        mask_sid(sid, from);
        mask_sid(sid, to);
        const ColumnChange change{position, std::move(sid)};
        if (!row.is_null(position)) table.update(*id, {&change, 1});
    }
}

}  // namespace

const std::vector<Catalog::Object>& Catalog::tables() const { return known().objects; }

const Catalog::Known& Catalog::known() const {
    if (known_) return *known_;
    Known found;
    std::vector<Object>& objects = found.objects;
    const std::size_t id_at = position_of(objects_, columns::kId);
    const std::size_t parent_at = position_of(objects_, columns::kParentId);
    const std::size_t name_at = position_of(objects_, columns::kName);
    const std::size_t type_at = position_of(objects_, columns::kType);
    const std::size_t flags_at = position_of(objects_, columns::kFlags);
    RowView row;
    for (auto id = objects_.next_row({}); id; id = objects_.next_row(*id)) {
        if (!objects_.read(*id, row)) continue;
        if (value_or<std::int32_t>(row, parent_at, 0) != jet4::kTablesContainer) continue;
        if (objects.size() == jet4::kMaxObjects) corrupt(id->page, "the catalogue has more objects than it can have");
        Object object;
        object.entry.name = value_or<std::u16string>(row, name_at, {});
        if (object.entry.name.size() > jet4::kMaxTextCharacters) corrupt(id->page, "the name of an object is too long");
        object.entry.id = value_or<std::int32_t>(row, id_at, 0);
        object.entry.type = value_or<std::int16_t>(row, type_at, 0);
        object.entry.flags = static_cast<std::uint32_t>(value_or<std::int32_t>(row, flags_at, 0));
        object.row = *id;
        objects.push_back(std::move(object));
    }
    for (std::uint32_t i = 0; i < objects.size(); ++i) found.by_exact_name.emplace(objects[i].entry.name, i);
    found.by_id.resize(objects.size());
    std::iota(found.by_id.begin(), found.by_id.end(), 0u);
    found.by_name = found.by_id;
    const auto by_id = [&](std::uint32_t a, std::uint32_t b) { return objects[a].entry.id < objects[b].entry.id; };
    const auto by_name = [&](std::uint32_t a, std::uint32_t b) {
        return compare_text(objects[a].entry.name, objects[b].entry.name) < 0;
    };
    std::stable_sort(found.by_id.begin(), found.by_id.end(), by_id);
    std::stable_sort(found.by_name.begin(), found.by_name.end(), by_name);
    const auto twice = std::adjacent_find(
        found.by_id.begin(), found.by_id.end(),
        [&](std::uint32_t a, std::uint32_t b) { return objects[a].entry.id == objects[b].entry.id; });
    if (twice != found.by_id.end()) corrupt(objects[*twice].row.page, "two objects of the catalogue are one");
    known_ = std::move(found);
    return *known_;
}

const Catalog::Object* Catalog::find(std::u16string_view name) const {
    const Known& all = known();
    const auto exact = all.by_exact_name.find(name);
    if (exact != all.by_exact_name.end()) return &all.objects[exact->second];
    const auto name_of = [&](std::uint32_t place) -> const std::u16string& { return all.objects[place].entry.name; };
    const auto first = std::lower_bound(
        all.by_name.begin(), all.by_name.end(), name,
        [&](std::uint32_t place, std::u16string_view wanted) { return compare_text(name_of(place), wanted) < 0; });
    const bool is_there = first != all.by_name.end() && same_name(name_of(*first), name);
    return is_there ? &all.objects[*first] : nullptr;
}

const Catalog::Object* Catalog::find(std::int32_t id) const {
    const Known& all = known();
    const auto found = std::lower_bound(
        all.by_id.begin(), all.by_id.end(), id,
        [&](std::uint32_t place, std::int32_t wanted) { return all.objects[place].entry.id < wanted; });
    return found == all.by_id.end() || all.objects[*found].entry.id != id ? nullptr : &all.objects[*found];
}

LinkTarget Catalog::link_target(const Object& object) const {
    RowView row;
    if (!objects_.read(object.row, row)) return {};
    const auto text = [&](std::u16string_view column) {
        return to_utf8(value_or<std::u16string>(row, position_of(objects_, column), {}));
    };
    return {text(columns::kDatabase), text(columns::kConnect), text(columns::kForeignName)};
}

PropertySet Catalog::no_properties() const {
    PropertySet set;
    set.code_page = objects_.def().code_page;
    return set;
}

bool Catalog::keeps_order_of(const ColumnDef& column) const {
    const ColumnDef& names = objects_.def().columns[position_of(objects_, columns::kName)];
    return names.lcid == column.lcid && names.code_page == column.code_page && !objects_.why_not_writable();
}

PropertySet Catalog::properties(const Object& object) const {
    RowView row;
    if (!objects_.read(object.row, row)) return no_properties();
    return parse_properties(value_or<ByteVector>(row, position_of(objects_, columns::kProperties), {}),
                            objects_.def().code_page);
}

// The container's inheritable entries; "creator" becomes the owner, unless he has an entry of his own, as in Jet 3.
std::vector<std::pair<ByteVector, Value>> Catalog::inherited_rights(const FileHeader& header) const {
    const std::size_t object_at = position_of(aces_, columns::kObjectId);
    const std::size_t sid_at = position_of(aces_, columns::kSid);
    const std::size_t acm_at = position_of(aces_, columns::kAcm);
    const std::size_t inheritable_at = position_of(aces_, columns::kInheritable);
    const ByteVector creator = masked(kCreatorSid, header);
    const ByteVector owner = masked(kAdminSid, header);
    std::vector<std::pair<ByteVector, Value>> inherited;
    RowView row;
    for (auto ace = aces_.next_row({}); ace; ace = aces_.next_row(*ace)) {
        if (!aces_.read(*ace, row) || value_or<std::int32_t>(row, object_at, 0) != jet4::kTablesContainer) continue;
        if (!value_or<bool>(row, inheritable_at, false)) continue;
        inherited.emplace_back(value_or<ByteVector>(row, sid_at, {}), row.value(acm_at));
    }
    const auto is_of = [](const ByteVector& sid) { return [&sid](const auto& entry) { return entry.first == sid; }; };
    if (header.format->is_jet3() && std::any_of(inherited.begin(), inherited.end(), is_of(owner))) {
        std::erase_if(inherited, is_of(creator));
    }
    for (auto& [sid, acm] : inherited) {
        if (sid == creator) sid = owner;
    }
    return inherited;
}

void Catalog::add_table(std::u16string_view name, PageNumber page, double now, const FileHeader& header,
                        const PropertySet& properties) {
    const auto id = static_cast<std::int32_t>(page);
    NewRow object(objects_);
    object.set(columns::kId, id)
        .set(columns::kParentId, jet4::kTablesContainer)
        .set(columns::kName, std::u16string(name))
        .set(columns::kType, kTableObject)
        .set(columns::kDateCreate, Date{now})
        .set(columns::kDateUpdate, Date{now})
        .set(columns::kOwner, masked(kAdminSid, header))
        .set(columns::kFlags, std::int32_t{0});
    if (!properties.blocks.empty()) object.set(columns::kProperties, build_properties(properties));
    objects_.insert(object.take());

    for (auto& [sid, acm] : inherited_rights(header)) {
        aces_.insert(NewRow(aces_)
                         .set(columns::kObjectId, id)
                         .set(columns::kSid, std::move(sid))
                         .set(columns::kAcm, std::move(acm))
                         .set(columns::kInheritable, false)
                         .take());
    }
    forget();
}

void Catalog::change_table(const Object& object, double now, const PropertySet& properties) {
    const ColumnChange changes[] = {
        {position_of(objects_, columns::kDateUpdate), Date{now}},
        {position_of(objects_, columns::kProperties),
         properties.blocks.empty() ? Value{} : Value{build_properties(properties)}},
    };
    objects_.update(object.row, changes);
}

void Catalog::reencrypt(const FileHeader& from, const FileHeader& to) {
    reencrypt_column(objects_, columns::kOwner, from, to);
    reencrypt_column(aces_, columns::kSid, from, to);
}

}  // namespace jet
