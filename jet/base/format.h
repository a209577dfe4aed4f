// What differs between the versions of the format, as one table for each: sizes, offsets, widths, limits and the
// encoding of texts. jet4.h holds what they have in common.
//
// How code finds its table: an open file by Pager::format(), a page by its size (format_of), a row by its table's shape
// (RowShape::format), a column's texts by ColumnDef::code_page.
#pragma once

#include <cstddef>
#include <cstdint>

#include "jet/base/bytes.h"
#include "jet/base/jet4.h"

namespace jet {

struct Format {
    // Page 0. What is masked begins at jet4::header::kMasked in both.
    struct Header {
        std::size_t masked_bytes;
        std::size_t build;
        std::size_t build_bytes;
        std::size_t sort_order;
        std::size_t password_bytes;
        bool has_creation_date;  // masks the password, and the identifiers of owners with it
        std::size_t identity;    // what never changes in a file's life, apart from the head of the page
        std::size_t identity_bytes;
        std::size_t commit_words;
    };
    // Pages of rows, and the rows on them.
    struct Data {
        std::size_t slot_count;
        std::size_t slots;
        std::size_t max_row;
        std::size_t row_number_bytes;  // of the count of columns, of offsets, and of their count
    };
    struct Usage {
        std::size_t default_row;
        std::uint32_t pages_per_bitmap;
    };
    // Table definitions. An offset of 0: the version has no such field.
    struct Definition {
        std::size_t free;
        std::size_t magic;
        std::size_t row_count;
        std::size_t last_autonumber;
        std::size_t autonumber_flag;
        std::size_t kind;
        std::size_t max_columns;
        std::size_t variable_columns;
        std::size_t columns;
        std::size_t logical_indexes;
        std::size_t real_indexes;
        std::size_t owned_map;
        std::size_t free_map;
        std::size_t fixed_header;
        std::size_t index_statistics;
        std::size_t name_length_bytes;
    };
    // A column's record within a definition.
    struct Column {
        std::size_t bytes;
        std::size_t magic;
        std::size_t number;
        std::size_t variable_index;
        std::size_t ordinal;
        std::size_t sort_sub_id;
        std::size_t lcid;
        std::size_t sort_version;
        std::size_t code_page;
        std::size_t flags;
        std::size_t ext_flags;
        std::size_t fixed_offset;
        std::size_t length;
    };
    struct RealIndex {
        std::size_t bytes;
        std::size_t keys;
        std::size_t map;
        std::size_t root;
        std::size_t flags;
        std::uint8_t always;  // a flag that every index has
    };
    struct LogicalIndex {
        std::size_t bytes;
        std::size_t number;  // the fields after it follow in the same order in both
    };
    struct IndexPage {
        std::size_t previous;
        std::size_t next;
        std::size_t tail;
        std::size_t prefix;
        std::size_t prefix_bytes;
        std::size_t level;
        std::size_t bitmap;
        std::size_t bitmap_bytes;
        std::size_t entries;
    };
    struct LongValue {
        std::size_t max_inline;
        std::size_t max_single;
        std::size_t chain_data;  // of a piece, after its pointer
        std::size_t stamp;       // of a page; 0: chains have none
    };

    std::uint32_t version;  // as the header says
    const char* name;
    std::size_t page_size;
    const char* largest_file;    // in words
    std::size_t text_unit;       // bytes of a character of a column: 2 UTF-16, 1 a code page
    std::size_t change_counter;  // on the page of the catalogue's definition
    std::size_t file_identity;   // there too, 8 bytes that the engine sets once; 0: the header has enough
    std::uint32_t properties_mark;
    Header header;
    Data data;
    Usage usage;
    Definition definition;
    Column column;
    RealIndex real_index;
    LogicalIndex logical_index;
    IndexPage index;
    LongValue long_value;

    bool is_jet3() const { return version == jet4::header::kVersionJet3; }
    std::size_t slot_at(std::size_t slot) const { return data.slots + 2 * slot; }
    std::size_t entry_bytes() const { return page_size - index.entries; }
    std::size_t max_bitmaps() const { return (jet4::kMaxPages + usage.pages_per_bitmap - 1) / usage.pages_per_bitmap; }
};

inline constexpr Format kJet4 = {
    .version = jet4::header::kVersionJet4,
    .name = "Jet 4",
    .page_size = jet4::kPageSize,
    .largest_file = "2 GiB",
    .text_unit = 2,
    .change_counter = jet4::tdef::kFiller,
    .file_identity = 0,
    .properties_mark = jet4::properties::kMagicValue,
    .header = {.masked_bytes = jet4::header::kMaskedBytes,
               .build = jet4::header::kBuild,
               .build_bytes = 4,
               .sort_order = jet4::header::kSortOrder,
               .password_bytes = jet4::header::kPasswordBytes,
               .has_creation_date = true,
               .identity = jet4::header::kBuild,
               .identity_bytes = jet4::header::kSidKeyEnd - jet4::header::kBuild,
               .commit_words = jet4::header::kCommitWords},
    .data = {.slot_count = jet4::data::kSlotCount,
             .slots = jet4::data::kSlots,
             .max_row = jet4::data::kMaxRow,
             .row_number_bytes = 2},
    .usage = {.default_row = jet4::usage::kDefaultRow, .pages_per_bitmap = jet4::usage::kPagesPerBitmap},
    .definition = {.free = jet4::tdef::kFree,
                   .magic = jet4::tdef::kMagic,
                   .row_count = jet4::tdef::kRowCount,
                   .last_autonumber = jet4::tdef::kLastAutoNumber,
                   .autonumber_flag = jet4::tdef::kAutoNumberFlag,
                   .kind = jet4::tdef::kKind,
                   .max_columns = jet4::tdef::kMaxColumns,
                   .variable_columns = jet4::tdef::kVariableColumns,
                   .columns = jet4::tdef::kColumns,
                   .logical_indexes = jet4::tdef::kLogicalIndexes,
                   .real_indexes = jet4::tdef::kRealIndexes,
                   .owned_map = jet4::tdef::kOwnedMap,
                   .free_map = jet4::tdef::kFreeMap,
                   .fixed_header = jet4::tdef::kFixedHeader,
                   .index_statistics = jet4::tdef::kIndexStatistics,
                   .name_length_bytes = 2},
    .column = {.bytes = jet4::tdef::kColumnRecord,
               .magic = jet4::tdef::column::kMagic,
               .number = jet4::tdef::column::kNumber,
               .variable_index = jet4::tdef::column::kVariableIndex,
               .ordinal = jet4::tdef::column::kOrdinal,
               .sort_sub_id = 0,
               .lcid = jet4::tdef::column::kLcid,
               .sort_version = jet4::tdef::column::kSortVersion,
               .code_page = 0,
               .flags = jet4::tdef::column::kFlags,
               .ext_flags = jet4::tdef::column::kExtFlags,
               .fixed_offset = jet4::tdef::column::kFixedOffset,
               .length = jet4::tdef::column::kLength},
    .real_index = {.bytes = jet4::tdef::kRealIndexRecord,
                   .keys = jet4::tdef::real_index::kKeys,
                   .map = jet4::tdef::real_index::kMap,
                   .root = jet4::tdef::real_index::kRoot,
                   .flags = jet4::tdef::real_index::kFlags,
                   .always = jet4::tdef::kIndexAlways},
    .logical_index = {.bytes = jet4::tdef::kLogicalIndexRecord, .number = jet4::tdef::logical_index::kNumber},
    .index = {.previous = jet4::index::kPrevious,
              .next = jet4::index::kNext,
              .tail = jet4::index::kTail,
              .prefix = jet4::index::kPrefix,
              .prefix_bytes = 2,
              .level = jet4::index::kLevel,
              .bitmap = jet4::index::kBitmap,
              .bitmap_bytes = jet4::index::kBitmapBytes,
              .entries = jet4::index::kEntries},
    .long_value = {.max_inline = jet4::long_value::kMaxInline,
                   .max_single = jet4::long_value::kMaxSingle,
                   .chain_data = jet4::long_value::kChainData,
                   .stamp = jet4::data::kStamp},
};

// Access 95 and 97.
inline constexpr Format kJet3 = {
    .version = jet4::header::kVersionJet3,
    .name = "Jet 3",
    .page_size = 2048,
    .largest_file = "1 GiB",
    .text_unit = 1,
    // Behind the end of the definition, where no program keeps anything.
    .change_counter = 2040,
    .file_identity = 2032,
    .properties_mark = 0x00444B4B,  // "KKD"
    .header = {.masked_bytes = 126,
               .build = 0x56,
               .build_bytes = 2,
               .sort_order = 0x3A,
               .password_bytes = 20,
               .has_creation_date = false,
               .identity = 0x56,
               .identity_bytes = 0x40,
               .commit_words = 0x600},
    .data = {.slot_count = 8, .slots = 10, .max_row = 2012, .row_number_bytes = 1},
    .usage = {.default_row = 133, .pages_per_bitmap = 8 * (2048 - jet4::usage::kPagePrefix)},
    .definition = {.free = 0,
                   .magic = 0,
                   .row_count = 12,
                   .last_autonumber = 16,
                   .autonumber_flag = 0,
                   .kind = 20,
                   .max_columns = 21,
                   .variable_columns = 23,
                   .columns = 25,
                   .logical_indexes = 27,
                   .real_indexes = 31,
                   .owned_map = 35,
                   .free_map = 39,
                   .fixed_header = 43,
                   .index_statistics = 8,
                   .name_length_bytes = 1},
    .column = {.bytes = 18,
               .magic = 0,
               .number = 1,
               .variable_index = 3,
               .ordinal = 5,
               .sort_sub_id = 7,
               .lcid = 9,
               .sort_version = 0,
               .code_page = 11,
               .flags = 13,
               .ext_flags = 0,
               .fixed_offset = 14,
               .length = 16},
    .real_index = {.bytes = 39, .keys = 0, .map = 30, .root = 34, .flags = 38, .always = 0},
    .logical_index = {.bytes = 20, .number = 0},
    .index = {.previous = 8,
              .next = 12,
              .tail = 16,
              .prefix = 20,
              .prefix_bytes = 1,
              .level = 21,
              .bitmap = 22,
              .bitmap_bytes = 226,
              .entries = 248},
    .long_value = {.max_inline = 32, .max_single = 2036, .chain_data = 2032, .stamp = 0},
};

// Of the file that a whole page is from.
inline const Format& format_of(ByteSpan page) { return page.size() == kJet3.page_size ? kJet3 : kJet4; }

}  // namespace jet
