#include "tools/csv_reader.h"

#include <algorithm>

#include "tools/errors.h"

namespace tools {

CsvReader::CsvReader(std::istream& in) : in_(in) {
    static constexpr char kMark[] = "\xEF\xBB\xBF";
    for (const char* c = kMark; *c != 0 && in_.peek() == static_cast<unsigned char>(*c); ++c) in_.get();
    auto first = next();
    // A header of one field may hold them all, between semicolons.
    if (first && first->size() == 1 && first->front().find(';') != std::string::npos) {
        separator_ = ';';
        const std::string line = first->front();
        first->clear();
        for (std::size_t begin = 0; begin <= line.size();) {
            const std::size_t end = std::min(line.find(separator_, begin), line.size());
            first->push_back(line.substr(begin, end - begin));
            begin = end + 1;
        }
    }
    if (!first) throw UsageError("the file holds no line of column names");
    names_ = *first;
}

std::optional<std::vector<std::string>> CsvReader::next() {
    while (auto record = read_record()) {
        if (record->size() > 1 || !record->front().empty()) return record;
    }
    return std::nullopt;
}

std::optional<std::vector<std::string>> CsvReader::read_record() {
    record_line_ = line_;
    if (in_.peek() == std::char_traits<char>::eof()) return std::nullopt;
    std::vector<std::string> fields(1);
    bool is_quoted = false;
    for (int c = in_.get(); c != std::char_traits<char>::eof(); c = in_.get()) {
        if (c == '\n') ++line_;
        if (is_quoted) {
            if (c != '"') {
                fields.back() += static_cast<char>(c);
            } else if (in_.peek() == '"') {
                fields.back() += static_cast<char>(in_.get());
            } else {
                is_quoted = false;
            }
        } else if (c == '"' && fields.back().empty()) {
            is_quoted = true;
        } else if (c == separator_) {
            fields.emplace_back();
        } else if (c == '\n') {
            return fields;
        } else if (c != '\r' || in_.peek() != '\n') {
            fields.back() += static_cast<char>(c);
        }
    }
    if (is_quoted)
        throw UsageError("the quote that begins on line " + std::to_string(record_line_) + " is never closed");
    return fields;
}

}  // namespace tools
