// The sources of the page, from tools/report/page; the build makes their C++.
#pragma once

#include <string_view>

namespace tools {

struct PageParts {
    std::string_view html;  // with {{names}} where something is put in
    std::string_view style;
    std::string_view style_sum;  // SHA-256 in hex
    std::string_view script;
    std::string_view script_sum;
};

const PageParts& page_parts();

}  // namespace tools
