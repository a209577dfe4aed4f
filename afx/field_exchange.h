// Record field exchange: the columns of a record, bound once to a table's fields, and the way between a row and the
// record's members without variants. Inside afx/ only; what others see of it is CDaoRecordset's.
//
// Invariants
//  1. What comes through the exchange is what comes through values. A pair of column and member that it does not know,
//     and a value that lies on pages of its own, it leaves to them.
//  2. Fields are exchanged in the order of the list; when one fails, the members before it have their new content.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>
#include <kvdb/ctime.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "afx/edit_buffer.h"
#include "afx/exchanged_member.h"
#include "afx/field_names.h"
#include "jet/schema/table_def.h"
#include "jet/storage/row_view.h"

namespace afx {

// What the dates read last have become. Each costs a look at the rules of the time zone, and rows share them.
class KnownTimes {
public:
    // To be called before the first of a set of rows: the host may have changed the time zone. Forgets everything where
    // TZ has another content, and at a new second.
    void begin_reading();
    CTime of(DATE days, CTime (*convert)(DATE));

private:
    struct Entry {
        std::uint64_t bits = 0;  // of the date
        CTime (*convert)(DATE) = nullptr;
        CTime time;
    };
    // In pairs; powers of two.
    static constexpr std::size_t kFewEntries = 64;
    static constexpr std::size_t kEntries = 2048;
    static constexpr int kUnknownAtFirst = 4;  // few rows need no table

    Entry* pair_of(std::uint64_t bits) const;
    void grow(std::size_t entries);

    std::time_t second_ = 0;  // of what is known
    std::string zone_;        // TZ
    int converted_ = 0;
    std::size_t size_ = 0;
    std::unique_ptr<Entry[]> entries_;
};

// What the readings of one table share.
struct ReadingMemory {
    KnownTimes times;
    std::u16string text;  // the one decoded last
};

class FieldExchange {
public:
    // `def` null: the fields of a result that is no table's, all of which go by value.
    FieldExchange(const FieldNames& names, const jet::TableDef* def, std::span<const ExchangedMember> members);
    FieldExchange(FieldExchange&&) = default;
    FieldExchange& operator=(FieldExchange&&) = default;

    std::size_t size() const { return fields_.size(); }
    // The field that member number `i` goes with; 3265 when there is none of its name.
    int field(std::size_t i) const;

    // Fills the members from number `from` on. Gives the number of the first that has to go by value; size() when there
    // is none. `row` is one of the table.
    std::size_t read(const jet::RowView& row, const jet::TableDef& def, ReadingMemory& memory, std::size_t from,
                     void* record) const;
    // The other way, into a pending row of the table.
    std::size_t write(EditBuffer& into, const jet::TableDef& def, std::size_t from, const void* record) const;

private:
    // "Narrow" in a code page, as in Jet 3.
    enum class Way : std::uint8_t { kByValue, kText, kMemo, kNarrowText, kNarrowMemo, kLong, kDate, kCurrency };
    struct Field {
        std::int32_t field = -1;
        std::uint32_t offset = 0;  // of the member
        const ExchangedMember* member = nullptr;
        jet::ColumnPlace place;
        Way way = Way::kByValue;
    };

    static Way way_of(const jet::ColumnDef& column, ExchangedMember::Type member);
    static bool read_field(const jet::RowView& row, const jet::TableDef& def, jet::ByteSpan stored,
                           ReadingMemory& memory, const Field& field, void* member);
    static void read_null(const Field& field, void* member);
    static bool write_field(EditBuffer& into, const jet::ColumnDef& column, const Field& field, const void* member);
    static bool write_text(EditBuffer& into, const jet::ColumnDef& column, const Field& field, std::string_view text);

    std::vector<ExchangedMember> members_;
    std::vector<Field> fields_;
    std::size_t columns_ = 0;  // of the table
};

// The fields of a table: their names, and the lists of members that are exchanged with them.
class TableFields {
public:
    // `def` as in FieldExchange; it is used as long as lists are learnt.
    TableFields(FieldNames names, const jet::TableDef* def) : names_(std::move(names)), def_(def) {}

    const FieldNames& names() const { return names_; }
    ReadingMemory& memory() const { return memory_; }
    // A list's address stands for it: what is found there must stay the same. Null for a list not met before.
    const FieldExchange* known(const void* list, std::size_t size) const;
    const FieldExchange& learn(const void* list, std::span<const ExchangedMember> members) const;

private:
    const FieldNames names_;
    const jet::TableDef* const def_;
    mutable std::unordered_map<const void*, FieldExchange> exchanges_;
    // The one asked for last: of all the rows of a set it is the same.
    mutable const void* last_list_ = nullptr;
    mutable const FieldExchange* last_ = nullptr;
    mutable ReadingMemory memory_;
};

}  // namespace afx
