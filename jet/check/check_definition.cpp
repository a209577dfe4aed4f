// Rules about a table's definition: its chain of pages, its length, its columns.
#include <algorithm>

#include "jet/check/check_parts.h"

namespace jet::check {

namespace tdef = jet4::tdef;

namespace {

// A page says how much of it is free, less the size of a page header.
void check_free_count(Context& context, PageNumber page_no, ByteSpan bytes, std::size_t used) {
    if (format_of(bytes).definition.free == 0) return;
    const std::size_t reserve = used + tdef::kPageHeader;
    const std::size_t expected = reserve < bytes.size() ? bytes.size() - reserve : 0;
    if (load_u16(bytes, tdef::kFree) == expected) return;
    context.report(page_no, -1, "definition-free-count",
                   "The page says " + std::to_string(load_u16(bytes, tdef::kFree)) + " bytes are free, it has " +
                       std::to_string(expected) + ".");
}

}  // namespace

std::optional<TableDef> check_definition(Context& context, PageNumber page) {
    std::optional<TableDef> def;
    context.guard(page, "table-definition", [&] {
        ByteVector joined;
        std::size_t length = 0;
        for (PageNumber page_no = page; page_no != 0;) {
            if (!context.claim(page_no, Use::kTableDef)) return;
            const Page held = context.pager.read(page_no);
            const ByteSpan bytes = held.bytes();
            if (bytes[0] != jet4::kTableDefPage) corrupt(page_no, "a page of a table definition is expected here");
            const std::size_t header = joined.empty() ? 0 : tdef::kPageHeader;
            if (joined.empty()) length = load_u32(bytes, tdef::kLength);
            const std::size_t rest = length - std::min(length, joined.size());
            const std::size_t here = std::min(rest, bytes.size() - header);
            if (here == 0) {
                context.report(page_no, -1, "definition-length", "The definition ends before this page of its chain.");
            } else {
                check_free_count(context, page_no, bytes, header + here);
            }
            append_bytes(joined, bytes.subspan(header));
            page_no = load_u32(bytes, tdef::kNext);
        }
        if (length > joined.size()) {
            context.report(page, -1, "definition-length", "The definition is longer than its pages.");
            return;
        }
        def = parse_table_def(joined, page, context.pager.format(), context.database.code_page());
    });
    return def;
}

}  // namespace jet::check
