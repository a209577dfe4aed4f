// Memos and OLE objects: a 12-byte reference in the row, the bytes inline, on one row of a shared page, or
// in a chain of pages of their own.
#pragma once

#include <optional>
#include <string_view>

#include "jet/base/bytes.h"
#include "jet/storage/chain_owners.h"
#include "jet/storage/row_shape.h"
#include "jet/storage/usage_map.h"

namespace jet {

class LongValues {
public:
    // `owners`, where given, is kept of the chains read for a value that is named.
    LongValues(Pager& pager, PageAllocator& allocator, ChainOwners* owners = nullptr)
        : pager_(pager), allocator_(allocator), owners_(owners) {}

    // All bytes behind a stored reference. An empty field reads as an empty value. 3049 for a chain that is broken,
    // or whose pages belong to another value than `value`.
    ByteVector read(ByteSpan reference, const ValueId* value = nullptr) const;
    // As above, where they stand: behind the reference, or on one page, which stays pinned in `page`. None for a chain.
    std::optional<ByteSpan> bytes_in_place(ByteSpan reference, Page& page) const;
    // The bytes themselves where they stand behind the reference; none for a value on pages of its own.
    static std::optional<ByteSpan> inline_bytes(ByteSpan reference);
    // Stores `bytes` and returns the reference with what follows it. `inline_allowed` false puts even a
    // short value on a page of its own. Inside a transaction.
    ByteVector write(const ColumnDef& column, ByteSpan bytes, bool inline_allowed = true);
    // Appends what write() would return for the bytes of a memo's text.
    void append_memo(ByteVector& to, const ColumnDef& column, std::u16string_view text);
    // The same of a text of nothing but ASCII, which is given in one byte a character.
    void append_memo(ByteVector& to, const ColumnDef& column, std::string_view ascii);
    // Gives back what the reference leads to. Inside a transaction.
    void release(const ColumnDef& column, ByteSpan reference);

    // The bytes of a memo's text. Short text takes the short form, as the format's own writer does; how long it may be
    // depends on the column's flag. A column of a code page has one form.
    static ByteVector encode_memo(const ColumnDef& column, std::u16string_view text);

private:
    template <class Text>
    void append_memo_of(ByteVector& to, const ColumnDef& column, const Text& text);
    RowId write_single(const ColumnDef& column, ByteSpan bytes);
    ByteVector write_chain(const ColumnDef& column, ByteSpan bytes);

    Pager& pager_;
    PageAllocator& allocator_;
    ChainOwners* owners_;
};

}  // namespace jet
