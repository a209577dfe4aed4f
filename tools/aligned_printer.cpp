#include "tools/aligned_printer.h"

#include <algorithm>
#include <numeric>

#include "tools/output.h"
#include "tools/text_width.h"
#include "tools/value_text.h"

namespace tools {
namespace {

constexpr std::size_t kRowsToLookAt = 500;
constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowestText = 12;  // to which a column is narrowed before another one is left out

// What says something else when its end is missing.
bool is_whole_or_nothing(const jet::Value& value) { return !std::holds_alternative<std::u16string>(value); }

bool is_number(const jet::Value& value) {
    return std::holds_alternative<std::int32_t>(value) || std::holds_alternative<std::int16_t>(value) ||
           std::holds_alternative<std::uint8_t>(value) || std::holds_alternative<float>(value) ||
           std::holds_alternative<double>(value) || std::holds_alternative<jet::Currency>(value) ||
           std::holds_alternative<jet::Numeric>(value);
}

std::size_t total(const std::vector<std::size_t>& widths) {
    return std::accumulate(widths.begin(), widths.end(), std::size_t{0},
                           [](std::size_t sum, std::size_t width) { return sum + (width == 0 ? 0 : width + kGap); });
}

}  // namespace

AlignedPrinter::AlignedPrinter(Names names, std::size_t columns) : names_(std::move(names)), columns_(columns) {}

AlignedPrinter::Line AlignedPrinter::line_of(const std::vector<jet::Value>& row) const {
    Line line;
    for (const jet::Value& value : row) {
        line.cells.push_back(escaped(plain_text(value)));
        line.is_number.push_back(is_number(value));
        line.is_whole.push_back(is_whole_or_nothing(value));
    }
    return line;
}

void AlignedPrinter::print(const std::vector<jet::Value>& row) {
    Line line = line_of(row);
    if (is_laid_out_) return write_line(line);
    waiting_.push_back(std::move(line));
    if (waiting_.size() == kRowsToLookAt) lay_out();
}

void AlignedPrinter::lay_out() {
    is_laid_out_ = true;
    std::vector<bool> is_empty(names_.size(), true);
    std::vector<std::size_t> least(names_.size(), 0);  // to which each column may be narrowed
    for (const std::string& name : names_) widths_.push_back(display_width(name));
    for (const Line& line : waiting_) {
        for (std::size_t i = 0; i < line.cells.size(); ++i) {
            const std::size_t width = display_width(line.cells[i]);
            widths_[i] = std::max(widths_[i], width);
            least[i] = std::max(least[i], line.is_whole[i] ? width : std::min(width, kNarrowestText));
            if (!line.cells[i].empty() && line.cells[i] != "0") is_empty[i] = false;
        }
    }
    constexpr std::size_t kNarrowestName = 4;
    for (std::size_t i = 0; i < names_.size(); ++i) least[i] = std::max(least[i], std::min(kNarrowestName, widths_[i]));
    const auto leave_out = [&](std::size_t i) { widths_[i] = least[i] = 0; };
    if (columns_ != 0) {
        for (std::size_t i = names_.size(); i-- > 0 && total(widths_) > columns_;) {
            if (is_empty[i]) leave_out(i);
        }
        for (std::size_t i = names_.size(); i-- > 1 && total(least) > columns_;) leave_out(i);
        while (total(widths_) > columns_) {
            std::size_t widest = names_.size();
            for (std::size_t i = 0; i < names_.size(); ++i) {
                if (widths_[i] > least[i] && (widest == names_.size() || widths_[i] > widths_[widest])) widest = i;
            }
            if (widest == names_.size()) break;
            --widths_[widest];
        }
    }
    Line head;
    for (std::size_t i = 0; i < names_.size(); ++i) {
        head.cells.push_back(names_[i]);
        head.is_number.push_back(!waiting_.empty() &&
                                 std::all_of(waiting_.begin(), waiting_.end(), [&](const Line& line) {
                                     return line.is_number[i] || line.cells[i].empty();
                                 }));
    }
    write_line(head);
    for (const Line& line : waiting_) write_line(line);
    waiting_.clear();
}

void AlignedPrinter::write_line(const Line& line) const {
    std::string text;
    for (std::size_t i = 0; i < line.cells.size(); ++i) {
        if (widths_[i] == 0) continue;
        const std::string cell = cut_to_width(line.cells[i], widths_[i]);
        const std::size_t width = display_width(cell);
        text.append(kGap, ' ');
        if (line.is_number[i] && width < widths_[i]) text.append(widths_[i] - width, ' ');
        text += padded(cell, line.is_number[i] ? 0 : widths_[i]);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    output().write(text + "\n");
}

void AlignedPrinter::finish() {
    if (!is_laid_out_) lay_out();
    Names left_out;
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if (widths_[i] == 0) left_out.push_back(names_[i]);
    }
    if (!left_out.empty()) {
        output().write("(no place for " + listed(left_out) + "; --columns chooses, --csv prints all)\n");
    }
}

}  // namespace tools
