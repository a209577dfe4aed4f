#include "tools/row_printer.h"

#include <algorithm>

#include "tools/output.h"
#include "tools/value_text.h"

namespace tools {
namespace {

std::string json_object(const Names& names, const Row& row) {
    std::string text = "{";
    for (std::size_t i = 0; i < names.size(); ++i) {
        text += (i == 0 ? "" : ", ") + json_string(names[i]) + ": " + json_value(row[i]);
    }
    return text + "}";
}

// The cells between separators, as a line.
template <class Cells, class Text>
void print_line(const Cells& cells, const char* between, const char* end, Text&& text) {
    std::string line;
    const char* before = "";
    for (const auto& cell : cells) {
        line += before;
        line += text(cell);
        before = between;
    }
    output().write(line += end);
}

std::size_t width_of(const std::string& utf8) {
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

}  // namespace

RowPrinter::RowPrinter(RowFormat format, Names names) : format_(format), names_(std::move(names)) {}

void RowPrinter::begin() {
    if (has_begun_) return;
    has_begun_ = true;
    switch (format_) {
        case RowFormat::kPlain: return print_line(names_, "\t", "\n", [](const std::string& name) { return name; });
        case RowFormat::kCsv: return print_line(names_, ",", "\r\n", csv_quoted);
        case RowFormat::kJson: return output().write("[");
    }
}

void RowPrinter::print(const Row& row) {
    begin();
    switch (format_) {
        case RowFormat::kPlain: print_line(row, "\t", "\n", plain_text); break;
        case RowFormat::kCsv: print_line(row, ",", "\r\n", csv_field); break;
        case RowFormat::kJson: output().write((any_ ? ",\n  " : "\n  ") + json_object(names_, row)); break;
    }
    any_ = true;
}

void RowPrinter::finish() {
    begin();
    if (format_ == RowFormat::kJson) output().write("\n]\n");
}

void print_rows(RowPrinter& printer, const std::function<void(const RowVisitor&)>& rows) {
    bool any = false;
    try {
        rows([&](const Row& row) {
            any = true;
            printer.print(row);
            return !output().is_lost();
        });
    } catch (const std::exception&) {
        if (any) printer.finish();
        throw;
    }
    printer.finish();
}

void print_record(RowFormat format, const Names& names, const Row& row) {
    if (format == RowFormat::kCsv) {
        RowPrinter(format, names).print(row);
    } else if (format == RowFormat::kJson) {
        output().write(json_object(names, row) + "\n");
    } else {
        for (std::size_t i = 0; i < names.size(); ++i) output().write(names[i] + ": " + plain_text(row[i]) + "\n");
    }
}

std::vector<Row> chosen(const Names& columns, const std::vector<Row>& rows, const Names& wanted) {
    std::vector<Row> result(rows.size());
    for (const std::string& name : wanted) {
        const auto place = static_cast<std::size_t>(std::find(columns.begin(), columns.end(), name) - columns.begin());
        for (std::size_t i = 0; i < rows.size(); ++i) result[i].push_back(rows[i].at(place));
    }
    return result;
}

void print_aligned(const Names& names, const std::vector<Row>& rows) {
    std::vector<Names> lines{names};
    for (const Row& row : rows) {
        Names& line = lines.emplace_back();
        for (const jet::Value& value : row) line.push_back(plain_text(value));
    }
    std::vector<std::size_t> widths(names.size());
    for (const Names& line : lines) {
        for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], width_of(line[i]));
    }
    for (const Names& line : lines) {
        std::string text;
        for (std::size_t i = 0; i < line.size(); ++i) text += "  " + padded(line[i], widths[i]);
        text.erase(text.find_last_not_of(' ') + 1);
        output().write(text + "\n");
    }
}

}  // namespace tools
