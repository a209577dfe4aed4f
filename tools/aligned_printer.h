// Rows as a table for people, as wide as the terminal.
//
// The first rows are kept until the widths of the columns can be told; the rest goes by as it comes, so that memory
// does not grow with the table. Columns that find no place are left out, the empty ones first, and the last line names
// them.
#pragma once

#include <cstddef>
#include <vector>

#include "jet/base/types.h"
#include "tools/names.h"

namespace tools {

class AlignedPrinter {
public:
    // `columns`: places in a line; 0: as many as the rows take.
    AlignedPrinter(Names names, std::size_t columns);
    void print(const std::vector<jet::Value>& row);
    // Once, after the last row.
    void finish();

private:
    struct Line {
        Names cells;
        std::vector<bool> is_number;
        std::vector<bool> is_whole;  // not to be cut
    };

    Line line_of(const std::vector<jet::Value>& row) const;
    void lay_out();
    void write_line(const Line& line) const;

    Names names_;
    std::size_t columns_;
    std::vector<Line> waiting_;
    std::vector<std::size_t> widths_;  // 0: left out
    bool is_laid_out_ = false;
};

}  // namespace tools
