#include "tools/row_printer.h"

#include <algorithm>

#include "tools/output.h"
#include "tools/terminal.h"
#include "tools/text_width.h"
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

}  // namespace

RowPrinter::RowPrinter(RowFormat format, Names names) : format_(format), names_(std::move(names)) {
    const std::size_t columns = format_ == RowFormat::kPlain ? terminal_columns() : 0;
    if (columns != 0) aligned_ = std::make_unique<AlignedPrinter>(names_, columns);
}

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
    if (aligned_ != nullptr) return aligned_->print(row);
    begin();
    switch (format_) {
        case RowFormat::kPlain: print_line(row, "\t", "\n", plain_text); break;
        case RowFormat::kCsv: print_line(row, ",", "\r\n", csv_field); break;
        case RowFormat::kJson: output().write((any_ ? ",\n  " : "\n  ") + json_object(names_, row)); break;
    }
    any_ = true;
}

void RowPrinter::finish() {
    if (aligned_ != nullptr) return aligned_->finish();
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
        const bool is_for_people = terminal_columns() != 0;
        for (std::size_t i = 0; i < names.size(); ++i) {
            const std::string text = plain_text(row[i]);
            output().write(names[i] + ": " + (is_for_people ? escaped(text) : text) + "\n");
        }
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
    AlignedPrinter printer(names, 0);
    for (const Row& row : rows) printer.print(row);
    printer.finish();
}

}  // namespace tools
