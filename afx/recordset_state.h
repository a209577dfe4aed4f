// What stands behind an open CDaoRecordset: current row, flags, pending edit, bookmarks. Throws jet::Error.
// Inside afx/ only.
//
// Invariants
//  1. The first row is looked for only when somebody asks for it, so a set opened to add a row reads nothing.
//  2. `view_` holds the current row's bytes only as long as nobody has changed the row since.
//  3. A failed Update leaves the pending edit.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "afx/dao_recordset.h"
#include "afx/edit_buffer.h"
#include "afx/engine_database.h"
#include "jet/sql/row_set.h"

namespace afx {

class RecordsetState final : public DAORecordset, private jet::TableWatcher {
public:
    RecordsetState(EngineDatabase& database, std::string_view statement, int type, int options);
    ~RecordsetState() override;

    bool at_begin();
    bool at_end();
    std::int32_t record_count();
    void move_first();
    void move_next();

    const TableFields& fields() const { return *fields_; }
    // Position for those below; 3265.
    std::size_t field(const char* name) const;
    std::size_t field(int index) const;
    void get(std::size_t field, COleVariant& value);
    // As FieldExchange::read of the current row; of a pending row and of an aggregate everything goes by value.
    std::size_t read(const FieldExchange& exchange, std::size_t from, void* record);
    void set(std::size_t field, jet::Value value);
    // As FieldExchange::write into the pending row; where there is none, everything goes by value.
    std::size_t write(const FieldExchange& exchange, std::size_t from, const void* record);

    void add_new();
    void edit();
    void update();
    void erase();
    std::int16_t edit_mode() const { return edit_.mode(); }

    COleVariant bookmark();
    COleVariant last_modified_bookmark();
    void set_bookmark(const VARIANT& bookmark);

private:
    // What a bookmark holds.
    struct Token {
        std::uint64_t opening = 0;   // the set it belongs to
        std::uint32_t addition = 0;  // 1-based number of the AddNew, or 0
        std::uint32_t row = 0;       // packed, where it is not an addition
        std::int32_t position = 0;   // of the row, counted over the set's original rows
        std::int32_t reserved = 0;
    };

    void row_inserted(jet::RowId row) override;
    void row_changing(jet::RowId row) override;

    void settle();
    void stand_on(jet::RowId row);
    void update_current();
    void insert_pending();
    void require_updatable() const;
    // The current row's values; 3021 and 3167.
    const jet::RowView& view();
    void require_current();
    COleVariant make_bookmark(const Token& token) const;

    std::unique_ptr<jet::sql::RowSet> rows_;  // none for an aggregate
    jet::Table* table_ = nullptr;
    std::shared_ptr<const TableFields> fields_;
    jet::Value aggregate_;
    const std::uint64_t opening_;
    bool forward_only_;
    bool read_only_;

    bool settled_ = false;
    bool bof_ = false;
    bool eof_ = false;
    std::optional<jet::RowId> current_;
    bool erased_here_ = false;    // the current row, by this set
    bool gone_ = false;           // the current row's place holds another row
    std::int32_t position_ = -1;  // of the current row among the original ones
    std::int32_t visited_ = 0;    // original rows
    std::int32_t added_ = 0;      // stored
    std::int32_t erased_ = 0;
    bool has_view_ = false;
    jet::RowView view_;
    jet::Value scratch_;  // the value decoded last, for its memory

    EditBuffer edit_;
    std::optional<Token> last_modified_;
};

}  // namespace afx
