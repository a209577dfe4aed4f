// CSV as RFC 4180 has it, and as spreadsheets write it: line ends of one or two characters, a byte order mark, commas
// or semicolons (whichever the first line has more of).
#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace tools {

class CsvReader {
public:
    // Reads the line of names. UsageError for a file without one.
    explicit CsvReader(std::istream& in);

    const std::vector<std::string>& names() const { return names_; }
    // The next record; none at the end. An empty line is no record. UsageError for a quote that is never closed.
    std::optional<std::vector<std::string>> next();
    // The line of the file on which the record given last begins, from 1.
    std::size_t line() const { return record_line_; }

private:
    std::optional<std::vector<std::string>> read_record();

    std::istream& in_;
    char separator_ = ',';
    std::size_t line_ = 1;
    std::size_t record_line_ = 1;
    std::vector<std::string> names_;
};

}  // namespace tools
