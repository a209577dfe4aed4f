// The catalogue: what MSysObjects says of the objects in the container of tables, and the rows that an
// object has there and in MSysACEs.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "jet/pages/header.h"
#include "jet/schema/properties.h"
#include "jet/schema/table_rows.h"

namespace jet {

// Columns of the catalogue tables, by name.
namespace catalog_columns {
inline constexpr char16_t kId[] = u"Id";
inline constexpr char16_t kParentId[] = u"ParentId";
inline constexpr char16_t kName[] = u"Name";
inline constexpr char16_t kType[] = u"Type";
inline constexpr char16_t kDateCreate[] = u"DateCreate";
inline constexpr char16_t kDateUpdate[] = u"DateUpdate";
inline constexpr char16_t kOwner[] = u"Owner";
inline constexpr char16_t kFlags[] = u"Flags";
inline constexpr char16_t kProperties[] = u"LvProp";
inline constexpr char16_t kDatabase[] = u"Database";
inline constexpr char16_t kConnect[] = u"Connect";
inline constexpr char16_t kForeignName[] = u"ForeignName";
inline constexpr char16_t kObjectId[] = u"ObjectId";
inline constexpr char16_t kSid[] = u"SID";
inline constexpr char16_t kAcm[] = u"ACM";
inline constexpr char16_t kInheritable[] = u"FInheritable";
}  // namespace catalog_columns

// Plain owner identifiers (SIDs).
inline constexpr std::uint8_t kAdminSid[] = {0x03, 0x01};
inline constexpr std::uint8_t kUsersSid[] = {0x02, 0x01};
inline constexpr std::uint8_t kEngineSid[] = {0x02, 0x03};
inline constexpr std::uint8_t kCreatorSid[] = {0x02, 0x04};
// Kinds of objects, on disk.
inline constexpr std::int16_t kTableObject = 1;
inline constexpr std::int16_t kLinkedOdbcTable = 4;
inline constexpr std::int16_t kQueryObject = 5;
inline constexpr std::int16_t kLinkedTable = 6;

// Where a linked table's rows are, in UTF-8; what is not known is empty.
struct LinkTarget {
    std::string database;
    std::string connect;
    std::string table;
};

// A name in the catalogue's container of tables.
struct CatalogEntry {
    std::u16string name;
    std::int32_t id = 0;
    std::int16_t type = 0;  // on disk: 1 table, 4 and 6 linked, 5 query
    std::uint32_t flags = 0;
    bool is_system() const { return (flags & jet4::kSystemObjectFlags) != 0; }
};

class Catalog {
public:
    struct Object {
        CatalogEntry entry;
        RowId row;  // in MSysObjects
    };

    // `objects` and `aces` are the open catalogue tables.
    Catalog(TableRows& objects, TableRows& aces) : objects_(objects), aces_(aces) {}

    // The container's objects in scan order, read when first asked for.
    const std::vector<Object>& tables() const;
    // By name in any case; null when there is none.
    const Object* find(std::u16string_view name) const;
    const Object* find(std::int32_t id) const;
    // The next question reads the rows again.
    void forget() { known_.reset(); }

    // Whether the names are sorted by the order of the column, and the engine keeps it.
    bool keeps_order_of(const ColumnDef& column) const;

    PropertySet properties(const Object& object) const;
    LinkTarget link_target(const Object& object) const;
    // An empty set in the file's own form.
    PropertySet no_properties() const;

    // Rows of a new table. `now` is an OLE date. Inside a transaction.
    void add_table(std::u16string_view name, PageNumber page, double now, const FileHeader& header,
                   const PropertySet& properties);
    // Stores the properties and marks the change. Inside a transaction.
    void change_table(const Object& object, double now, const PropertySet& properties);
    // Every owner identifier goes from one header's key to another's. Inside a transaction.
    void reencrypt(const FileHeader& from, const FileHeader& to);

private:
    TableRows& objects_;
    TableRows& aces_;
    // The objects, and their places in the orders they are looked up by.
    struct Known {
        std::vector<Object> objects;
        std::vector<std::uint32_t> by_id;
        std::vector<std::uint32_t> by_name;  // names in any case
        std::unordered_map<std::u16string_view, std::uint32_t> by_exact_name;
    };
    const Known& known() const;
    std::vector<std::pair<ByteVector, Value>> inherited_rights(const FileHeader& header) const;

    mutable std::optional<Known> known_;
};

}  // namespace jet
