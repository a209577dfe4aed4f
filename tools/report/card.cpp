#include "tools/report/card.h"

#include "tools/report/markup.h"

namespace tools {

std::string NumberTable::html(const std::string& title) const {
    if (rows.empty()) return "";
    std::string text = "<details class=\"numbers\"><summary>" + html_text(title) +
                       "</summary><div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"" +
                       html_text(title) + "\"><table><thead><tr>";
    for (std::size_t i = 0; i < header.size(); ++i) {
        text +=
            std::string("<th scope=\"col\"") + (i < names ? " class=\"name\">" : ">") + html_text(header[i]) + "</th>";
    }
    text += "</tr></thead><tbody>\n";
    for (const auto& row : rows) {
        text += "<tr>";
        for (std::size_t i = 0; i < row.size(); ++i) {
            text += (i < names ? "<th scope=\"row\" class=\"name\">" : "<td>") + html_text(row[i]) +
                    (i < names ? "</th>" : "</td>");
        }
        text += "</tr>\n";
    }
    return text + "</tbody></table></div></details>\n";
}

std::string Card::html() const {
    const std::string name(id);
    std::string text = "<section class=\"card" + std::string(is_wide ? " wide" : "") + "\" id=\"" + name +
                       "\" aria-labelledby=\"" + name + "-heading\">\n<h3 id=\"" + name + "-heading\">" +
                       html_text(title) + "</h3>\n<p class=\"sentence\">" + html_text(sentence) + "</p>\n" + body;
    return text + "<p class=\"more\"><a href=\"#t=" + table + "\">Browse the table " + table + "</a></p>\n</section>\n";
}

std::string legend_html(const std::vector<LegendItem>& items) {
    std::string text = "<p class=\"legend\">";
    for (const LegendItem& item : items) {
        text += std::string("<span><i class=\"") + item.kind + "\"></i>" + html_text(item.name) + "</span>";
    }
    return text + "</p>\n";
}

std::string picture_html(const std::string& id, const std::string& title, const std::string& description, int height,
                         const std::string& content) {
    return "<svg role=\"img\" width=\"100%\" height=\"" + std::to_string(height) + "\" aria-labelledby=\"" + id +
           "-title " + id + "-description\"><title id=\"" + id + "-title\">" + html_text(title) +
           "</title><desc id=\"" + id + "-description\">" + html_text(description) + "</desc>\n" + content + "</svg>\n";
}

}  // namespace tools
