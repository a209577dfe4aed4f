#include "jet/schema/definition_pages.h"

#include <algorithm>

namespace jet {

namespace tdef = jet4::tdef;

DefinitionPages read_definition(Pager& pager, PageNumber first) {
    const Format& format = pager.format();
    DefinitionPages read;
    std::size_t length = format.definition.fixed_header;
    for (PageNumber page_no = first; read.bytes.size() < length;) {
        if (page_no == 0) corrupt(first, "a table definition is cut short");
        if (std::find(read.pages.begin(), read.pages.end(), page_no) != read.pages.end()) {
            corrupt(first, "the pages of a table definition go in a circle");
        }
        const Page page = pager.read(page_no);
        if (page.bytes()[0] != jet4::kTableDefPage) corrupt(page_no, "a page of a table definition was expected");
        append_bytes(read.bytes, page.bytes().subspan(read.pages.empty() ? 0 : tdef::kPageHeader));
        if (read.pages.empty()) {
            length = load_u32(read.bytes, tdef::kLength);
            if (length < format.definition.fixed_header) corrupt(first, "a table definition is shorter than its head");
            if (length > kMaxDefinitionPages * format.page_size) corrupt(first, "a table definition is too long");
        }
        read.pages.push_back(page_no);
        page_no = load_u32(page.bytes(), tdef::kNext);
    }
    read.bytes.resize(length);
    return read;
}

}  // namespace jet
