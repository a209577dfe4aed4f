#include "afx/recordset_state.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "afx/dao_value.h"
#include "jet/base/error.h"
#include "jet/storage/text_codec.h"
#include "os/system.h"

namespace afx {
namespace {

using jet::RowId;
namespace errors = jet::errors;

std::uint64_t next_opening() {
    static std::uint64_t last = 0;
    return ++last;
}

[[noreturn]] void no_current_row() { jet::fail(errors::kNoCurrentRow, "There is no current row."); }

}  // namespace

RecordsetState::RecordsetState(EngineDatabase& database, std::string_view statement, int type, int options)
    : opening_(next_opening()),
      forward_only_((options & dbForwardOnly) != 0 || type == dbOpenForwardOnly),
      read_only_((options & dbReadOnly) != 0 || type == dbOpenForwardOnly || type == dbOpenSnapshot) {
    jet::sql::Query query = jet::sql::Query::prepare(database.engine(), os::widen(statement));
    table_ = &query.table();
    if (query.is_aggregate()) {
        // One row whatever it was made of, there from the beginning.
        aggregate_ = query.aggregate();
        std::vector<std::u16string> names;
        for (const jet::sql::ResultColumn& column : query.columns()) names.push_back(column.name);
        fields_ = std::make_shared<const TableFields>(FieldNames(std::move(names)), nullptr);
        read_only_ = settled_ = true;
        visited_ = 1;
    } else {
        fields_ = database.fields(*table_);
        fields_->memory().times.begin_reading();
        rows_ = std::make_unique<jet::sql::RowSet>(std::move(query));
    }
    table_->add_watcher(this);
}

RecordsetState::~RecordsetState() { table_->remove_watcher(this); }

// ---- Others' changes -----------------------------------------------------------------------------

void RecordsetState::row_inserted(RowId row) {
    // The place of a deleted row may be given to a new one, which is not the old one's heir.
    if (current_ && *current_ == row) {
        gone_ = true;
        has_view_ = false;
    }
}

void RecordsetState::row_changing(RowId row) {
    if (current_ && *current_ == row) has_view_ = false;
}

// ---- Moving --------------------------------------------------------------------------------------

void RecordsetState::stand_on(RowId row) {
    current_ = row;
    erased_here_ = gone_ = has_view_ = false;
    bof_ = eof_ = false;
}

void RecordsetState::settle() {
    if (settled_) return;
    const std::optional<RowId> first = rows_->first_original();
    settled_ = true;
    if (first) {
        stand_on(*first);
        position_ = 0;
        visited_ = 1;
    } else {
        // An addition to an empty set clears the one flag and leaves the other.
        bof_ = added_ == 0;
        eof_ = true;
    }
}

bool RecordsetState::at_begin() {
    settle();
    return bof_;
}

bool RecordsetState::at_end() {
    settle();
    return eof_;
}

std::int32_t RecordsetState::record_count() {
    settle();
    return visited_ + added_ - erased_;
}

void RecordsetState::move_first() {
    edit_.cancel();
    if (forward_only_) jet::fail(errors::kForwardOnly, "A forward-only set does not go back.");
    settle();
    if (rows_ == nullptr) {
        eof_ = false;
        return;
    }
    const std::optional<RowId> first = rows_->first();
    if (!first) {
        bof_ = eof_ = true;
        current_.reset();
        no_current_row();
    }
    stand_on(*first);
    if (!rows_->is_among_additions()) {
        position_ = 0;
        visited_ = std::max(visited_, 1);
    }
}

void RecordsetState::move_next() {
    edit_.cancel();
    settle();
    if (eof_) no_current_row();
    const std::optional<RowId> next = rows_ != nullptr ? rows_->next() : std::nullopt;
    if (!next) {
        eof_ = true;
        current_.reset();
        return;
    }
    stand_on(*next);
    if (!rows_->is_among_additions()) visited_ = std::max(visited_, ++position_ + 1);
}

// ---- Values --------------------------------------------------------------------------------------

std::size_t RecordsetState::field(const char* name) const {
    const std::optional<std::size_t> position = fields_->names().find(name);
    if (!position) {
        jet::fail(errors::kNotInCollection, "Table '" + jet::to_utf8(table_->def().name) + "' has no field '" +
                                                jet::to_utf8(os::widen(name)) + "'.");
    }
    return *position;
}

std::size_t RecordsetState::field(int index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= fields_->names().size()) {
        jet::fail(errors::kNotInCollection, "There is no field number " + std::to_string(index) + ".");
    }
    return static_cast<std::size_t>(index);
}

void RecordsetState::require_current() {
    settle();
    if (!current_ || erased_here_) no_current_row();
    if (gone_) jet::fail(errors::kRowDeleted, "The row has been deleted.");
}

const jet::RowView& RecordsetState::view() {
    require_current();
    if (!has_view_) {
        const bool is_read = rows_->give_view(*current_, view_) || table_->read(*current_, view_);
        if (!is_read) jet::fail(errors::kRowDeleted, "The row has been deleted.");
        has_view_ = true;
    }
    return view_;
}

void RecordsetState::get(std::size_t field, COleVariant& value) {
    if (rows_ == nullptr) {
        if (eof_) no_current_row();
        return to_variant(aggregate_, value);
    }
    if (const jet::Value* pending = edit_.value(field)) return to_variant(*pending, value);
    const jet::RowView& row = view();
    if (const auto stored = row.stored(field)) {
        if (to_variant(*stored, table_->def().columns[field].type, value)) return;
    }
    row.value(field, scratch_);
    to_variant(scratch_, value);
}

std::size_t RecordsetState::read(const FieldExchange& exchange, std::size_t from, void* record) {
    if (from == exchange.size() || rows_ == nullptr || edit_.is_pending()) return from;
    return exchange.read(view(), table_->def(), fields_->memory(), from, record);
}

void RecordsetState::set(std::size_t field, jet::Value value) {
    if (!edit_.is_pending()) jet::fail(errors::kNoEdit, "Neither AddNew nor Edit is pending.");
    edit_.set(field, table_->coerce(field, std::move(value)));
}

std::size_t RecordsetState::write(const FieldExchange& exchange, std::size_t from, const void* record) {
    if (rows_ == nullptr || !edit_.is_pending()) return from;
    return exchange.write(edit_, table_->def(), from, record);
}

// ---- Changing rows -------------------------------------------------------------------------------

void RecordsetState::require_updatable() const {
    if (read_only_) jet::fail(errors::kReadOnly, "The record set is read-only.");
}

void RecordsetState::add_new() {
    edit_.cancel();
    require_updatable();
    edit_.begin_add(*table_);
    rows_->additions().begin();
}

void RecordsetState::edit() {
    edit_.cancel();
    require_updatable();
    view();
    edit_.begin_edit(*table_);
}

void RecordsetState::update() {
    if (!edit_.is_pending()) jet::fail(errors::kNoEdit, "Neither AddNew nor Edit is pending.");
    if (edit_.is_editing()) {
        update_current();
    } else {
        insert_pending();
    }
}

void RecordsetState::update_current() {
    require_current();
    edit_.update_in(*table_, *current_);
    has_view_ = false;
    edit_.cancel();
    last_modified_ = Token{opening_, 0, current_->pack(), position_};
}

void RecordsetState::insert_pending() {
    const RowId row = edit_.insert_into(*table_);
    edit_.cancel();
    rows_->additions().store(row);
    ++added_;
    if (settled_) bof_ = false;
    last_modified_ = Token{opening_, rows_->additions().count(), 0, 0};
}

void RecordsetState::erase() {
    edit_.cancel();
    require_updatable();
    require_current();
    table_->erase(*current_);
    erased_here_ = true;
    ++erased_;
}

// ---- Bookmarks -----------------------------------------------------------------------------------

COleVariant RecordsetState::make_bookmark(const Token& token) const {
    char bytes[sizeof(Token)];
    std::memcpy(bytes, &token, sizeof token);
    COleVariant bookmark;
    bookmark.SetText({bytes, sizeof bytes});
    return bookmark;
}

COleVariant RecordsetState::bookmark() {
    if (forward_only_) jet::fail(errors::kForwardOnly, "A forward-only set has no bookmarks.");
    if (rows_ == nullptr) no_current_row();
    require_current();
    return make_bookmark({opening_, 0, current_->pack(), position_});
}

COleVariant RecordsetState::last_modified_bookmark() {
    if (edit_.is_adding()) return make_bookmark({opening_, rows_->additions().count(), 0, 0});
    if (edit_.is_editing()) return make_bookmark({opening_, 0, current_->pack(), position_});
    if (!last_modified_) jet::fail(errors::kNoCurrentRow, "No row has been modified yet.");
    return make_bookmark(*last_modified_);
}

void RecordsetState::set_bookmark(const VARIANT& bookmark) {
    const auto invalid = [] { jet::fail(errors::kBadBookmark, "The bookmark is not one of this record set."); };
    Token token;
    if (bookmark.vt != VT_BSTR || variant_text(bookmark).size() != sizeof token) invalid();
    std::memcpy(&token, variant_text(bookmark).data(), sizeof token);
    if (token.opening != opening_ || rows_ == nullptr || token.addition > rows_->additions().count()) invalid();

    RowId row = RowId::unpack(token.row);
    if (token.addition != 0) {
        // The pending new row is where the set stands already.
        if (edit_.is_adding() && token.addition == rows_->additions().count()) return;
        row = rows_->additions().row(token.addition);
    } else if (edit_.is_editing() && current_ && *current_ == row) {
        return;
    }
    edit_.cancel();
    settle();
    if (row.is_null() || !rows_->delivered(row)) invalid();
    if (!table_->exists(row)) jet::fail(errors::kRowDeleted, "The row has been deleted.");
    rows_->move_to(row);
    stand_on(row);
    position_ = rows_->is_among_additions() ? visited_ - 1 : token.position;
}

}  // namespace afx
