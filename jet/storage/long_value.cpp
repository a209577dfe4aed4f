#include "jet/storage/long_value.h"

#include <algorithm>

#include "jet/base/code_page.h"
#include "jet/base/prefetch.h"
#include "jet/storage/data_page.h"
#include "jet/storage/text_codec.h"

namespace jet {

namespace lv = jet4::long_value;

namespace {

struct Reference {
    std::uint32_t length = 0;
    std::uint32_t kind = 0;
    RowId row;
};

Reference parse_reference(ByteSpan bytes) {
    const std::uint32_t head = load_u32(bytes, 0);
    check_range(bytes, 0, lv::kReference);
    return {head & lv::kLengthMask, head & lv::kKindMask, RowId::unpack(load_u32(bytes, lv::kRow))};
}

ByteVector make_reference(std::size_t length, std::uint32_t kind, RowId row, std::uint32_t stamp = 0) {
    ByteVector bytes;
    append_u32(bytes, static_cast<std::uint32_t>(length) | kind);
    append_u32(bytes, row.pack());
    append_u32(bytes, stamp);
    return bytes;
}

// The live row of a long-value page.
ByteSpan piece_of(const Page& page, RowId row) {
    if (!DataPage::belongs_to(page.bytes(), jet4::data::kLongValueOwner)) {
        corrupt(row.page, "a long value leads to a page that holds none");
    }
    const DataPage data(page.bytes(), row.page);
    const Slot slot = data.slot(row.slot);
    if (!slot.is_live()) corrupt(row.page, "a long value leads to a deleted row");
    return data.row(slot);
}

// Finds a chain that comes back to a piece, without remembering more than one: the one to compare with is set anew
// after 1, 2, 4, 8... steps.
class Circle {
public:
    explicit Circle(RowId start) : mark_(start) {}
    bool closes_at(RowId next) {
        if (next == mark_) return !next.is_null();
        if (++steps_ == limit_) {
            mark_ = next;
            limit_ *= 2;
            steps_ = 0;
        }
        return false;
    }

private:
    RowId mark_;
    std::uint64_t steps_ = 0;
    std::uint64_t limit_ = 1;
};

}  // namespace

namespace {

bool is_short_form(const ColumnDef& column, std::size_t characters) {
    return characters <= (column.is_compressed() ? lv::kMaxShortFlagged : lv::kMaxShort);
}

void append_encoded(ByteVector& to, const ColumnDef& column, std::u16string_view text) {
    if (column.code_page != 0) return append_bytes(to, encode_narrow(text, column.code_page));
    append_text(to, text, is_short_form(column, text.size()));
}

void append_encoded(ByteVector& to, const ColumnDef& column, std::string_view ascii) {
    if (column.code_page != 0) return append_ascii_bytes(to, ascii);
    append_ascii(to, ascii, is_short_form(column, ascii.size()));
}

}  // namespace

ByteVector LongValues::encode_memo(const ColumnDef& column, std::u16string_view text) {
    ByteVector bytes;
    append_encoded(bytes, column, text);
    return bytes;
}

template <class Text>
void LongValues::append_memo_of(ByteVector& to, const ColumnDef& column, const Text& text) {
    const std::size_t most = pager_.format().long_value.max_inline;
    const std::size_t at = to.size();
    // No form has fewer bytes than the text has characters.
    if (text.size() <= most) {
        to.resize(at + lv::kReference);
        append_encoded(to, column, text);
        const std::size_t length = to.size() - at - lv::kReference;
        if (length <= most) return store_u32(to, at, static_cast<std::uint32_t>(length) | lv::kInline);
        to.resize(at);
    }
    ByteVector bytes;
    append_encoded(bytes, column, text);
    append_bytes(to, write(column, bytes));
}

void LongValues::append_memo(ByteVector& to, const ColumnDef& column, std::u16string_view text) {
    append_memo_of(to, column, text);
}

void LongValues::append_memo(ByteVector& to, const ColumnDef& column, std::string_view ascii) {
    append_memo_of(to, column, ascii);
}

std::optional<ByteSpan> LongValues::inline_bytes(ByteSpan reference) {
    if (reference.empty()) return reference;
    const Reference ref = parse_reference(reference);
    if (ref.kind != lv::kInline) return std::nullopt;
    return slice(reference, lv::kReference, ref.length);
}

std::optional<ByteSpan> LongValues::bytes_in_place(ByteSpan reference, Page& page) const {
    if (const auto bytes = inline_bytes(reference)) return bytes;
    const Reference ref = parse_reference(reference);
    if (ref.kind != lv::kSingle) return std::nullopt;
    page = pager_.read(ref.row.page);
    const ByteSpan piece = piece_of(page, ref.row);
    // The next row's value mostly lies before this one and is about as long.
    const auto before = static_cast<std::size_t>(piece.data() - page.bytes().data());
    prefetch_bytes(page.bytes().subspan(before - std::min(before, piece.size()), std::min(before, piece.size())));
    return slice(piece, 0, ref.length);
}

ByteVector LongValues::read(ByteSpan reference, const ValueId* value) const {
    Page single;
    if (const auto bytes = bytes_in_place(reference, single)) return {bytes->begin(), bytes->end()};
    const Reference ref = parse_reference(reference);
    if (ref.kind != 0) corrupt(ref.row.page, "a long value is of an unknown kind");
    // The length is not believed before as many bytes have been seen.
    ByteVector bytes;
    bytes.reserve(
        std::min<std::size_t>(ref.length, std::size_t{pager_.page_count()} * pager_.format().long_value.chain_data));
    RowId next = ref.row;
    Circle circle(next);
    while (bytes.size() < ref.length) {
        if (next.is_null()) corrupt(ref.row.page, "the chain of a long value is broken");
        const Page page = pager_.read(next.page);
        const ByteSpan piece = piece_of(page, next);
        if (owners_ && value && !owners_->claim(next.page, *value)) {
            corrupt(next.page, "two long values share a page of their chains");
        }
        next = RowId::unpack(load_u32(piece, 0));
        if (circle.closes_at(next)) corrupt(next.page, "the chain of a long value is a circle");
        const std::size_t wanted = std::min<std::size_t>(piece.size() - lv::kPiecePointer, ref.length - bytes.size());
        append_bytes(bytes, piece.subspan(lv::kPiecePointer, wanted));
    }
    return bytes;
}

ByteVector LongValues::write(const ColumnDef& column, ByteSpan bytes, bool inline_allowed) {
    if (bytes.size() > lv::kLengthMask) fail(errors::kRowTooLarge, "A long value is longer than 1 GiB.");
    const Format::LongValue& limits = pager_.format().long_value;
    if (bytes.empty() || (inline_allowed && bytes.size() <= limits.max_inline)) {
        ByteVector reference = make_reference(bytes.size(), lv::kInline, {});
        append_bytes(reference, bytes);
        return reference;
    }
    if (column.owned_map.is_null()) {
        corrupt(0, "column '" + to_utf8(column.name) + "' has no map of its long values");
    }
    if (bytes.size() <= limits.max_single)
        return make_reference(bytes.size(), lv::kSingle, write_single(column, bytes));
    return write_chain(column, bytes);
}

RowId LongValues::write_single(const ColumnDef& column, ByteSpan bytes) {
    UsageMap owned(pager_, allocator_, column.owned_map);
    UsageMap free_pages(pager_, allocator_, column.free_map);
    PageNumber target = 0;
    for (auto candidate = free_pages.next(0); candidate; candidate = free_pages.next(*candidate + 1)) {
        // A value on a page of another column would go with that column's.
        if (!owned.contains(*candidate)) corrupt(*candidate, "a page with room for long values is not its column's");
        const Page page = pager_.read(*candidate);
        if (!DataPage::belongs_to(page.bytes(), jet4::data::kLongValueOwner)) {
            corrupt(*candidate, "the page belongs to a column of long values and holds none");
        }
        if (DataPage(page.bytes(), *candidate).has_room(bytes.size())) {
            target = *candidate;
            break;
        }
        // A page that could not take a value is not offered again until something on it is given back.
        free_pages.remove(*candidate);
    }
    if (target == 0) {
        const MutablePage page = allocator_.allocate();
        target = page.number();
        format_data_page(page.bytes(), jet4::data::kLongValueOwner);
        owned.add(target);
        if (!column.free_map.is_null()) free_pages.add(target);
    }
    const MutablePage page = pager_.modify(target);
    return {target, add_row(page.bytes(), target, bytes)};
}

ByteVector LongValues::write_chain(const ColumnDef& column, ByteSpan bytes) {
    UsageMap owned(pager_, allocator_, column.owned_map);
    const std::size_t chain_data = pager_.format().long_value.chain_data;
    const std::size_t stamp_at = pager_.format().long_value.stamp;
    const std::size_t pieces = (bytes.size() + chain_data - 1) / chain_data;
    std::vector<PageNumber> pages;
    for (std::size_t i = 0; i < pieces; ++i) {
        const MutablePage page = allocator_.allocate();
        format_data_page(page.bytes(), jet4::data::kLongValueOwner);
        owned.add(page.number());
        pages.push_back(page.number());
    }
    // The number of the first page is unique among the chains of the file, so it serves as their stamp.
    const std::uint32_t stamp = stamp_at != 0 ? pages.front() : 0;
    for (std::size_t i = 0; i < pieces; ++i) {
        ByteVector piece;
        append_u32(piece, i + 1 < pieces ? RowId{pages[i + 1], 0}.pack() : 0);
        const std::size_t at = i * chain_data;
        append_bytes(piece, bytes.subspan(at, std::min(chain_data, bytes.size() - at)));
        const MutablePage page = pager_.modify(pages[i]);
        add_row(page.bytes(), pages[i], piece);
        if (i == 0 && stamp_at != 0) store_u32(page.bytes(), stamp_at, stamp);
    }
    return make_reference(bytes.size(), 0, {pages.front(), 0}, stamp);
}

void LongValues::release(const ColumnDef& column, ByteSpan reference) {
    if (reference.empty()) return;
    const Reference ref = parse_reference(reference);
    if (ref.kind == lv::kInline) return;
    UsageMap owned(pager_, allocator_, column.owned_map);
    UsageMap free_pages(pager_, allocator_, column.free_map);
    std::uint32_t left = ref.length;
    RowId row = ref.row;
    // A circle ends at a piece that is deleted already.
    while (!row.is_null()) {
        RowId next;
        {
            const Page page = pager_.read(row.page);
            const ByteSpan piece = piece_of(page, row);
            if (ref.kind == 0) {
                next = RowId::unpack(load_u32(piece, 0));
                left -= std::min<std::uint32_t>(left, static_cast<std::uint32_t>(piece.size() - lv::kPiecePointer));
                if (left == 0) next = {};
            }
        }
        if (!owned.contains(row.page)) corrupt(row.page, "a long value is on no page of its column");
        const MutablePage page = pager_.modify(row.page);
        delete_row(page.bytes(), row.page, row.slot);
        if (owners_) owners_->release(row.page);
        if (DataPage(page.bytes(), row.page).all_deleted()) {
            owned.remove(row.page);
            free_pages.remove(row.page);
            allocator_.free(row.page);
        } else if (ref.kind == lv::kSingle && !column.free_map.is_null()) {
            free_pages.add(row.page);
        }
        row = next;
    }
}

}  // namespace jet
