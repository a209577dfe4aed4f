// Rules about the pages of a table, its rows, and the long values they lead to.
#include <algorithm>

#include "jet/check/check_parts.h"

namespace jet::check {

namespace data = jet4::data;

namespace {

// The pages of a long value column, and what the rows have been found to use of them.
class LongColumn {
public:
    LongColumn(Context& context, const TableDef& def, const ColumnDef& column) : context_(context), column_(column) {
        const std::string whose = "column '" + to_utf8(column.name) + "' of table page " + std::to_string(def.page);
        const auto owned = context.read_map(column.owned_map, whose);
        if (!owned) return;
        readable_ = true;
        owned_ = *owned;
        context.check_free_map(column.free_map, owned_, whose);
        for (const PageNumber page_no : owned_) {
            if (!context.claim(page_no, Use::kLongValue)) continue;
            context.guard(page_no, "long-page", [&] {
                const Page page = context.pager.read(page_no);
                if (page.bytes()[0] != jet4::kDataPage) corrupt(page_no, "a page of long values is no data page");
                if (load_u32(page.bytes(), data::kOwner) != data::kLongValueOwner) {
                    corrupt(page_no, "a page of long values is not marked as one");
                }
                if (context.read_slots(page_no, page.bytes())) sound_.push_back(page_no);
            });
        }
    }

    const ColumnDef& column() const { return column_; }

    // Follows the reference that `row` holds.
    void follow(RowId row, ByteSpan reference) {
        if (reference.empty()) return;
        if (reference.size() < jet4::long_value::kReference) {
            context_.report(row.page, row.slot, "long-reference", "The reference to a long value is cut off.");
            return;
        }
        const std::uint32_t head = load_u32(reference, 0);
        const std::size_t length = head & jet4::long_value::kLengthMask;
        const RowId target = RowId::unpack(load_u32(reference, jet4::long_value::kRow));
        switch (head & jet4::long_value::kKindMask) {
            case jet4::long_value::kInline:
                if (reference.size() - jet4::long_value::kReference != length) wrong_length(row);
                return;
            case jet4::long_value::kSingle: {
                const auto piece = take(row, target);
                if (piece && piece->size() != length) wrong_length(row);
                return;
            }
            case 0: follow_chain(row, target, length, load_u32(reference, jet4::long_value::kStamp)); return;
            default: context_.report(row.page, row.slot, "long-reference", "The long value is of an unknown kind.");
        }
    }

    // Once every row has been followed.
    void finish() {
        for (const PageNumber page_no : sound_) {
            const Page page = context_.pager.read(page_no);
            const Format& format = format_of(page.bytes());
            const std::size_t count = load_u16(page.bytes(), format.data.slot_count);
            for (std::size_t i = 0; i < count; ++i) {
                const RowId row{page_no, static_cast<std::uint8_t>(i)};
                const std::uint16_t flags = load_u16(page.bytes(), format.slot_at(i)) & data::kDeletedFlags;
                if (flags == data::kDeletedFlags || used_.contains(row)) continue;
                context_.report(page_no, row.slot, "long-lost", "No row refers to the long value.");
            }
        }
    }

private:
    void wrong_length(RowId row) {
        context_.report(row.page, row.slot, "long-length", "The long value's pieces do not add up to its length.");
    }

    // The bytes of the piece at `target`, which `row` leads to.
    std::optional<ByteVector> take(RowId row, RowId target, std::uint32_t* stamp = nullptr) {
        if (!readable_) return std::nullopt;
        if (!has_page(sound_, target.page)) {
            if (has_page(owned_, target.page)) return std::nullopt;  // the page itself has been reported
            context_.report(row.page, row.slot, "long-reference", "The long value is on no page of its column.");
            return std::nullopt;
        }
        const Page page = context_.pager.read(target.page);
        const ByteSpan bytes = page.bytes();
        const Format& format = format_of(bytes);
        const std::size_t slot_at = format.slot_at(target.slot);
        const bool there = target.slot < load_u16(bytes, format.data.slot_count);
        if (!there || (load_u16(bytes, slot_at) & data::kDeletedFlags) != 0) {
            context_.report(row.page, row.slot, "long-reference", "The long value has been deleted.");
            return std::nullopt;
        }
        if (!used_.insert(target)) {
            context_.report(target.page, target.slot, "long-twice", "The long value is used twice.");
            return std::nullopt;
        }
        if (stamp && format.long_value.stamp != 0) *stamp = load_u32(bytes, format.long_value.stamp);
        const std::size_t begin = load_u16(bytes, slot_at) & data::kOffsetMask;
        const std::size_t end = target.slot == 0 ? bytes.size() : load_u16(bytes, slot_at - 2) & data::kOffsetMask;
        const ByteSpan piece = slice(bytes, begin, end - begin);
        return ByteVector(piece.begin(), piece.end());
    }

    // Ends even in a circle, since no piece is taken twice.
    void follow_chain(RowId row, RowId target, std::size_t length, std::uint32_t stamp) {
        std::size_t total = 0;
        for (bool first = true; !target.is_null(); first = false) {
            std::uint32_t page_stamp = 0;
            const auto piece = take(row, target, &page_stamp);
            if (!piece) return;
            if (piece->size() < jet4::long_value::kPiecePointer) {
                context_.report(target.page, target.slot, "long-reference", "The piece has no room for its pointer.");
                return;
            }
            if (page_stamp != (first ? stamp : 0)) {
                context_.report(target.page, target.slot, "long-stamp",
                                "The page's stamp is not what the chain calls for.");
            }
            total += piece->size() - jet4::long_value::kPiecePointer;
            target = RowId::unpack(load_u32(*piece, 0));
        }
        if (total != length) wrong_length(row);
    }

    Context& context_;
    const ColumnDef& column_;
    bool readable_ = false;  // the column's map could be read
    std::vector<PageNumber> owned_;
    std::vector<PageNumber> sound_;  // of these, the ones whose rows can be found
    RowSet used_;
};

// Where things stand in a row.
struct RowShape {
    std::size_t columns = 0;
    ByteSpan mask;
    std::size_t variable_count = 0;
    std::vector<std::size_t> offsets;  // of the variable values, and their end
    std::size_t fixed_end = 0;

    bool has(std::uint16_t number) const { return number < columns && (mask[number / 8u] >> (number % 8) & 1) != 0; }
};

// A number of the row: one byte or two.
std::size_t row_number(ByteSpan row, std::size_t at, std::size_t bytes) {
    return bytes == 1 ? load_u8(row, at) : load_u16(row, at);
}

// The offset of variable value `i`; its place is counted back from where the jumps begin.
std::size_t offset_at(ByteSpan row, std::size_t i, std::size_t end, std::size_t jumps, std::size_t bytes) {
    std::size_t offset = row_number(row, end - bytes * (i + 1), bytes);
    for (std::size_t k = 0; k < jumps; ++k) {
        if (row[end + k] != 0xFF && row[end + k] <= i) offset += 256;
    }
    return offset;
}

// Takes a row apart; returns what is wrong with it, if anything.
const char* shape_of(ByteSpan row, const TableDef& def, RowShape& shape) {
    const std::size_t number = def.format->data.row_number_bytes;
    if (row.size() < number) return "The row has no column count.";
    shape.columns = row_number(row, 0, number);
    if (shape.columns > def.max_columns) return "The row has more columns than the table ever had.";
    const std::size_t mask_bytes = (shape.columns + 7) / 8;
    if (row.size() < number + mask_bytes) return "The row ends inside its null mask.";
    shape.mask = row.last(mask_bytes);
    shape.fixed_end = row.size() - mask_bytes;
    // A row that is older than the table's first variable column has no offsets.
    const bool has_variable = std::any_of(def.columns.begin(), def.columns.end(), [&](const ColumnDef& column) {
        return !column.is_fixed() && column.number < shape.columns;
    });
    if (!has_variable) return nullptr;

    const std::size_t jumps = number == 1 ? (row.size() - 1) / 256 : 0;
    if (shape.fixed_end < 3 * number + jumps) return "The row ends inside its variable part.";
    const std::size_t count_at = shape.fixed_end - number;
    shape.variable_count = row_number(row, count_at, number);
    if (shape.variable_count > def.variable_columns) return "The row has more variable columns than the table.";
    const std::size_t table_bytes = number * (shape.variable_count + 1) + jumps;
    if (count_at < number + table_bytes) return "The row ends inside its variable offsets.";
    const std::size_t table_at = count_at - table_bytes;
    std::size_t last = number;
    for (std::size_t i = 0; i <= shape.variable_count; ++i) {
        const std::size_t offset = offset_at(row, i, count_at - jumps, jumps, number);
        if (offset < last || offset > table_at) return "A variable value leaves its place in the row.";
        shape.offsets.push_back(offset);
        last = offset;
    }
    shape.fixed_end = shape.offsets.front();
    return nullptr;
}

class RowChecker {
public:
    RowChecker(Context& context, const TableDef& def) : context_(context), def_(def) {
        for (const ColumnDef& column : def.columns) {
            if (column.is_long()) long_columns_.emplace_back(context, def, column);
        }
    }

    TableRows run() {
        const std::string whose = "table page " + std::to_string(def_.page);
        const auto owned = context_.read_map(def_.owned_map, whose);
        if (!owned) {
            found_.complete = false;
            return std::move(found_);
        }
        owned_ = *owned;
        context_.check_free_map(def_.free_map, owned_, whose);
        for (const PageNumber page_no : owned_) {
            if (!context_.claim(page_no, Use::kRows)) {
                found_.complete = false;
            } else if (!context_.guard(page_no, "row-page", [&] { check_page(page_no); })) {
                found_.complete = false;
            }
        }
        if (!found_.complete) return std::move(found_);

        bodies_.for_each([&](RowId body) {
            if (pointed_at_.contains(body)) return;
            context_.report(body.page, body.slot, "moved-row-lost", "No pointer leads to the moved row.");
        });
        for (LongColumn& column : long_columns_) column.finish();
        if (found_.rows.size() != def_.row_count) {
            context_.report(def_.page, -1, "row-count",
                            "The definition counts " + std::to_string(def_.row_count) + " rows, there are " +
                                std::to_string(found_.rows.size()) + ".");
        }
        return std::move(found_);
    }

private:
    void check_page(PageNumber page_no) {
        const Page page = context_.pager.read(page_no);
        const ByteSpan bytes = page.bytes();
        if (bytes[0] != jet4::kDataPage) corrupt(page_no, "a page of a table is no data page");
        if (load_u32(bytes, data::kOwner) != def_.page) corrupt(page_no, "a page of a table belongs to another one");
        const auto slots = context_.read_slots(page_no, bytes);
        if (!slots) {
            found_.complete = false;
            return;
        }
        for (std::size_t i = 0; i < slots->size(); ++i) {
            const CheckedSlot& slot = (*slots)[i];
            const RowId row{page_no, static_cast<std::uint8_t>(i)};
            const ByteSpan content = bytes.subspan(slot.offset, slot.length);
            if (slot.flags == data::kBodyFlag) {
                bodies_.insert(row);
                check_row(row, content);
            } else if (slot.flags == data::kMovedFlag) {
                found_.rows.insert(row);
                check_pointer(row, content);
            } else if (slot.flags == 0) {
                found_.rows.insert(row);
                check_row(row, content);
            }
        }
    }

    void check_pointer(RowId row, ByteSpan content) {
        const RowId target = content.size() < 4 ? RowId{} : RowId::unpack(load_u32(content, 0));
        bool leads = has_page(owned_, target.page);
        if (leads) {
            const Page page = context_.pager.read(target.page);
            const Format& format = format_of(page.bytes());
            const std::size_t at = format.slot_at(target.slot);
            leads = page.bytes()[0] == jet4::kDataPage &&
                    target.slot < load_u16(page.bytes(), format.data.slot_count) &&
                    (load_u16(page.bytes(), at) & data::kDeletedFlags) == data::kBodyFlag;
        }
        if (!leads) {
            context_.report(row.page, row.slot, "moved-row-pointer", "The pointer does not lead to a moved row.");
            found_.complete = false;
        } else if (!pointed_at_.insert(target)) {
            context_.report(target.page, target.slot, "moved-row-twice", "Two pointers lead to the moved row.");
        }
    }

    void check_row(RowId row, ByteSpan bytes) {
        RowShape shape;
        const char* wrong = shape_of(bytes, def_, shape);
        for (const ColumnDef& column : def_.columns) {
            if (wrong) break;
            if (!column.is_fixed() || column.type == ColumnType::kBoolean || column.number >= shape.columns) continue;
            const std::size_t count_bytes = def_.format->data.row_number_bytes;
            if (count_bytes + column.fixed_offset + column.length_bytes > shape.fixed_end) {
                wrong = "A fixed column leaves its place in the row.";
            }
        }
        if (wrong) {
            context_.report(row.page, row.slot, "row-bounds", wrong);
            found_.complete = false;
            return;
        }
        for (LongColumn& column : long_columns_) {
            const std::size_t place = column.column().variable_index;
            if (!shape.has(column.column().number) || place >= shape.variable_count) continue;
            const std::size_t begin = shape.offsets[place];
            column.follow(row, bytes.subspan(begin, shape.offsets[place + 1] - begin));
        }
    }

    Context& context_;
    const TableDef& def_;
    std::vector<PageNumber> owned_;
    std::vector<LongColumn> long_columns_;
    RowSet bodies_;
    RowSet pointed_at_;
    TableRows found_;
};

}  // namespace

TableRows check_rows(Context& context, const TableDef& def) { return RowChecker(context, def).run(); }

}  // namespace jet::check
