// One stored row and the way to its values.
#pragma once

#include <optional>

#include "jet/base/bytes.h"
#include "jet/base/types.h"
#include "jet/storage/row_codec.h"
#include "jet/storage/row_shape.h"
#include "jet/storage/storage.h"

namespace jet {

// Where damage is passed over, a value that cannot be read is Null.
class RowView {
public:
    RowView() = default;
    RowView(const RowView&) = delete;
    RowView& operator=(const RowView&) = delete;
    RowView(RowView&&) = default;  // the bytes stay where they are
    RowView& operator=(RowView&&) = default;

    // Takes a copy of the row's bytes. `storage` and `shape` are used as long as values are asked for.
    void fill(Storage& storage, const RowShape& shape, RowId row, ByteSpan bytes);

    // Stored bytes of the column at `position` in the shape's columns, as RowReader gives them; they stay
    // while the view is not filled again.
    std::optional<ByteSpan> stored(std::size_t position) const;
    // The bytes that a long value's stored bytes lead to, where it stands in the row or on one page, which stays pinned
    // in `page`; none for a chain of pages. A memo's are in the column's encoding (ColumnDef::code_page).
    std::optional<ByteSpan> long_bytes(ByteSpan stored, Page& page) const;
    // Value of the column at `position` in the shape's columns; long values are fetched.
    Value value(std::size_t position) const;
    // As above, into a value whose memory is used again.
    void value(std::size_t position, Value& into) const;
    bool is_null(std::size_t position) const;

    ByteSpan bytes() const { return bytes_; }
    // Of the row's bytes: raises damage, whoever passes over it elsewhere.
    const RowReader& reader() const { return reader_; }

private:
    std::optional<ByteSpan> find(const ColumnDef& column) const;

    Storage* storage_ = nullptr;
    const RowShape* shape_ = nullptr;
    RowId row_;
    ByteVector bytes_;
    RowReader reader_;  // of bytes_
};

}  // namespace jet
