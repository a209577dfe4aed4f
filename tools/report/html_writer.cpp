// The page of a report: pictures, then the rows of every table as JSON, which the page's script shows.
//
// Rows go to the file as they come, in blocks of some size: the script reads a table's blocks when it shows the table.
#include <algorithm>
#include <filesystem>

#include "tools/damage.h"
#include "tools/export/draft.h"
#include "tools/export/export_writer.h"
#include "tools/paths.h"
#include "tools/report/markup.h"
#include "tools/report/page_manifest.h"
#include "tools/report/page_parts.h"
#include "tools/report/pictures.h"
#include "tools/value_text.h"

namespace tools {
namespace {

constexpr std::size_t kBlockBytes = 256 << 10;

// As a policy of contents names a part of its page.
std::string policy_hash(std::string_view sum) {
    static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text = "sha256-";
    // Three hex digits are two of these. Of the 64 one is left over: two of these, of which the second is a filler.
    const auto digit = [&](std::size_t at) {
        const char c = at < sum.size() ? sum[at] : '0';
        return static_cast<unsigned>(c <= '9' ? c - '0' : c - 'a' + 10);
    };
    for (std::size_t at = 0; at < sum.size(); at += 3) {
        const unsigned bits = digit(at) << 8 | digit(at + 1) << 4 | digit(at + 2);
        text += kDigits[bits >> 6];
        text += kDigits[bits & 63];
    }
    text.back() = '=';
    return text;
}

std::string studio_name(const StudioTables& tables, const std::string& source) {
    std::string name;
    tables.each("Def_Invoice", {"StudioName"}, [&](StudioTables::Values row) {
        if (name.empty()) name = text_of(row[0]);
    });
    if (!name.empty()) return name;
    const std::filesystem::path path = std::filesystem::absolute(system_path(source)).lexically_normal();
    name = path_text((path.has_filename() ? path : path.parent_path()).filename());
    return name.empty() ? "Studio" : name;
}

std::string files_of(std::span<const ExportTable> tables) {
    std::string text;
    std::string last;
    for (const ExportTable& table : tables) {
        if (table.file != last) text += (text.empty() ? "" : " and ") + table.file;
        last = table.file;
    }
    return text;
}

// Nothing for a file that is no studio's. One picture after the other: those of many years are large.
void write_glance(OutFile& out, const StudioTables& tables, std::chrono::sys_days day) {
    constexpr const char* kPictured[] = {"Bookings", "Invoices", "Projects", "Gear", "Def_StockTypes"};
    if (std::none_of(std::begin(kPictured), std::end(kPictured), [&](const char* own) { return tables.has(own); })) {
        return;
    }
    out.write("<section id=\"glance\" aria-labelledby=\"glance-heading\">\n");
    out.write("<h2 id=\"glance-heading\" class=\"unseen\">At a glance</h2>\n");
    out.write(key_figures(tables));
    out.write("<div class=\"cards\">\n");
    out.write(bookings_picture(tables, day));
    out.write(invoices_picture(tables, day));
    out.write(projects_picture(tables, day));
    out.write(gear_picture(tables));
    out.write(stock_picture(tables));
    out.write("</div>\n</section>\n");
}

std::string notice() {
    const std::size_t damaged = damaged_places();
    if (damaged == 0) return "";
    return "<p class=\"notice\" role=\"note\"><strong>What is shown is not all.</strong> The files are damaged: " +
           counted(damaged, "place", "places") + " could not be read. kvdb check tells more.</p>\n";
}

class HtmlWriter final : public ExportWriter {
public:
    explicit HtmlWriter(const std::string& path) : out_(path) {}

    void start(const std::string& source, std::span<const ExportTable> tables) override {
        const StudioTables studio(tables);
        const std::string name = studio_name(studio, source);
        const std::chrono::sys_days day = today();
        const std::string made = "Made by kvdb on " + iso_text(day) + " from " + files_of(tables);
        put("style-hash", policy_hash(page_parts().style_sum));
        put("script-hash", policy_hash(page_parts().script_sum));
        put("title", html_text(name));
        put("style", page_parts().style);
        put("header", "<h1>" + html_text(name) + "</h1>\n<p>" + html_text(made) + "</p>\n");
        put("glance", "");
        write_glance(out_, studio, day);
        put("rows", "");
    }

    void begin(const ExportTable&) override { counts_.push_back(0); }

    void row(const ExportTable&, std::span<const jet::Value> values) override {
        while (!values.empty() && jet::is_null(values.back())) values = values.first(values.size() - 1);
        std::string text = block_.empty() ? "[" : ",\n[";
        for (std::size_t i = 0; i < values.size(); ++i) text += (i == 0 ? "" : ",") + script_value(values[i]);
        block_ += text + "]";
        ++counts_.back();
        if (block_.size() >= kBlockBytes) write_block();
    }

    void end(const ExportTable&) override { write_block(); }

    void finish(std::span<const ExportTable> tables) override {
        put("notice", notice());
        put("table-list", table_list_html(tables, counts_));
        put("footer", "Nothing in this page leaves it: it needs no network and sends nothing.");
        put("manifest", page_manifest(tables, counts_));
        put("script", page_parts().script);
        out_.write(rest_);
        out_.close();
    }

private:
    // The page up to the name in its double brackets, and `text` in the name's place.
    void put(std::string_view name, std::string_view text) {
        const std::string mark = "{{" + std::string(name) + "}}";
        const std::size_t at = rest_.find(mark);
        out_.write(rest_.substr(0, at));
        out_.write(text);
        rest_.remove_prefix(at + mark.size());
    }

    void write_block() {
        if (block_.empty()) return;
        out_.write("<script type=\"application/json\" data-table=\"" + std::to_string(counts_.size() - 1) + "\">[");
        out_.write(block_);
        out_.write("]</script>\n");
        block_.clear();
    }

    OutFile out_;
    std::string_view rest_ = page_parts().html;
    std::vector<std::uint64_t> counts_;  // rows written, by table
    std::string block_;                  // rows that wait
};

}  // namespace

std::unique_ptr<ExportWriter> make_html_writer(const std::string& path, const std::optional<std::string>&) {
    return std::make_unique<HtmlWriter>(path);
}

}  // namespace tools
