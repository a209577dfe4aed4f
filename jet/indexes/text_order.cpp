// Which orders are kept. In Jet 3 every code page and language has one of its own, over the bytes of its texts. Only
// the weights of General in code page 1252 are known; the plain Latin letters, digits and signs, which all code pages
// share, are taken to have the same ones everywhere, where the language sorts them like English. That is no more than
// likely: TableIndexes compares an index with it before the first change.
#include "jet/indexes/text_order.h"

#include <algorithm>
#include <iterator>

#include "jet/base/code_page.h"
#include "jet/storage/row_shape.h"

namespace jet {
namespace {

// Languages that neither contract plain Latin letters (as Czech, Hungarian and traditional Spanish do) nor move them
// (as Turkish, Danish, Estonian and Lithuanian do).
constexpr std::uint16_t kPlainLatinLanguages[] = {
    0x0401,  // Arabic
    0x0404,  // Chinese, traditional
    0x0408,  // Greek
    jet4::kGeneralOrder,
    0x040D,  // Hebrew
    0x0411,  // Japanese
    0x0412,  // Korean
    0x0415,  // Polish
    0x0419,  // Cyrillic
    0x041E,  // Thai
    0x0422,  // Ukrainian
    0x0424,  // Slovenian
    0x0804,  // Chinese, simplified
};

// In the code pages of Japan and Korea these bytes are signs of currency and overlines.
bool is_national(char16_t c, std::uint16_t code_page) {
    return (code_page == 932 || code_page == 949) && (c == u'\\' || c == u'~');
}

}  // namespace

std::optional<TextOrder> text_order(const ColumnDef& column) {
    if (column.code_page != 0) {
        if (column.lcid == jet4::kGeneralOrder && column.code_page == kWesternCodePage) return TextOrder::kGeneral97;
        const bool is_plain = std::find(std::begin(kPlainLatinLanguages), std::end(kPlainLatinLanguages),
                                        column.lcid) != std::end(kPlainLatinLanguages);
        return is_plain ? std::optional(TextOrder::kLatin97) : std::nullopt;
    }
    if (column.lcid != jet4::kGeneralOrder) return std::nullopt;
    if (column.sort_version == 0) return TextOrder::kGeneral;
    return column.sort_version == jet4::kGeneralVersion1 ? std::optional(TextOrder::kGeneral1) : std::nullopt;
}

std::string described_order(const ColumnDef& column) {
    std::string order = "order " + std::to_string(column.lcid);
    if (column.code_page != 0) return order + " in code page " + std::to_string(column.code_page);
    return order + ", version " + std::to_string(column.sort_version);
}

bool is_key_known(std::u16string_view text, const ColumnDef& column) {
    const std::optional<TextOrder> order = text_order(column);
    if (order != TextOrder::kLatin97) return order.has_value();
    return std::all_of(text.begin(), text.end(),
                       [&](char16_t c) { return c >= u' ' && c < 0x7F && !is_national(c, column.code_page); });
}

}  // namespace jet
