#include "tests/interop/readers.h"

#include <sys/stat.h>

#include <algorithm>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "tests/interop/program.h"

namespace interop {

namespace {

// No text of any compared file contains two control characters in a row.
constexpr std::string_view kFieldEnd = "\x1f\x1f";
constexpr std::string_view kRowEnd = "\x1e\x1e";
constexpr std::string_view kNull = "\x1d\x1d";
constexpr const char* kDateFormat = "%Y-%m-%d %H:%M:%S";

std::vector<std::string> split(std::string_view text, std::string_view end) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t at = text.find(end);
        parts.emplace_back(text.substr(0, at));
        if (at == std::string_view::npos) return parts;
        text.remove_prefix(at + end.size());
    }
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

void append_utf8(std::string& text, std::uint32_t code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | code >> 12);
        text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// One line of the dump: a JSON array of strings and nulls, without blanks, as JSON.stringify writes it.
class DumpLine {
public:
    explicit DumpLine(std::string_view line) : rest_(line) {}

    std::vector<Field> fields() {
        std::vector<Field> fields;
        take('[');
        while (!rest_.empty() && rest_.front() != ']') {
            if (rest_.front() == ',') rest_.remove_prefix(1);
            if (rest_.starts_with("null")) {
                rest_.remove_prefix(4);
                fields.emplace_back();
            } else {
                fields.emplace_back(string());
            }
        }
        return fields;
    }

private:
    void take(char expected) {
        if (rest_.empty() || rest_.front() != expected) throw std::runtime_error("not a line of the dump");
        rest_.remove_prefix(1);
    }

    std::string string() {
        std::string text;
        take('"');
        while (!rest_.empty() && rest_.front() != '"') {
            if (rest_.front() != '\\') {
                text += rest_.front();
                rest_.remove_prefix(1);
                continue;
            }
            const char kind = rest_.size() > 1 ? rest_[1] : '\0';
            rest_.remove_prefix(std::min<std::size_t>(2, rest_.size()));
            switch (kind) {
                case 'b': text += '\b'; break;
                case 'f': text += '\f'; break;
                case 'n': text += '\n'; break;
                case 'r': text += '\r'; break;
                case 't': text += '\t'; break;
                case 'u':
                    append_utf8(text,
                                static_cast<std::uint32_t>(std::stoul(std::string(rest_.substr(0, 4)), nullptr, 16)));
                    rest_.remove_prefix(std::min<std::size_t>(4, rest_.size()));
                    break;
                default: text += kind;
            }
        }
        take('"');
        return text;
    }

    std::string_view rest_;
};

std::string text_at(const std::vector<Field>& fields, std::size_t at) {
    return at < fields.size() ? fields[at].value_or("") : "";
}

std::uint32_t number_at(const std::vector<Field>& fields, std::size_t at) {
    return static_cast<std::uint32_t>(std::stoul("0" + text_at(fields, at)));
}

void add_line(ForeignFile& file, std::vector<Field> fields) {
    const std::string kind = text_at(fields, 0);
    if (kind == "password") {
        file.password = fields.size() > 1 ? fields[1] : Field();
        return;
    }
    if (kind == "table") {
        ForeignTable table;
        table.name = text_at(fields, 1);
        table.system = text_at(fields, 2) == "system";
        table.row_count = number_at(fields, 3);
        file.tables.push_back(std::move(table));
        return;
    }
    ForeignTable& table = file.tables.back();
    if (kind == "column") {
        table.columns.push_back(
            {text_at(fields, 1), text_at(fields, 2), number_at(fields, 3), text_at(fields, 4) == "autonumber"});
    } else if (kind == "row") {
        fields.erase(fields.begin());
        table.rows.push_back(std::move(fields));
    } else {
        table.refusal = text_at(fields, 1);
    }
}

}  // namespace

std::optional<std::size_t> ForeignTable::find_column(const std::string& column) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].name == column) return i;
    }
    return std::nullopt;
}

const ForeignTable* ForeignFile::find_table(const std::string& name) const {
    for (const ForeignTable& table : tables) {
        if (table.name == name) return &table;
    }
    return nullptr;
}

std::string why_readers_are_missing() {
    for (const char* program : {"mdb-ver", "mdb-tables", "mdb-schema", "mdb-prop", "mdb-export"}) {
        if (!has_program(program)) return std::string(program) + " is not installed (package mdbtools)";
    }
    if (!has_program("node")) return "node is not installed";
    struct stat found {};
    if (stat(KVDB_INTEROP_READER "/node_modules/mdb-reader", &found) != 0) {
        return "mdb-reader is not installed: run tests/interop/setup_reader " KVDB_INTEROP_READER;
    }
    return "";
}

std::string mdbtools_version_of(const std::string& path) {
    const auto lines = lines_of(run_program({"mdb-ver", path}).output);
    return lines.empty() ? "" : lines[0];
}

std::vector<std::string> mdbtools_table_names(const std::string& path) {
    return lines_of(run_program({"mdb-tables", "-1", path}).output);
}

std::map<std::string, std::vector<ForeignColumn>> mdbtools_schema(const std::string& path) {
    static const std::regex kTable("CREATE TABLE \\[(.*)\\]");
    static const std::regex kColumn("\t\\[(.*)\\]\t+(.*?)( NOT NULL)?(, ?)?");
    std::map<std::string, std::vector<ForeignColumn>> schema;
    std::vector<ForeignColumn>* columns = nullptr;
    const ProgramResult result =
        run_program({"mdb-schema", "--no-default-values", "--no-indexes", "--no-relations", path, "access"});
    for (const std::string& line : lines_of(result.output)) {
        std::smatch found;
        if (std::regex_match(line, found, kTable)) {
            columns = &schema[found[1]];
        } else if (columns && std::regex_match(line, found, kColumn)) {
            columns->push_back({found[1], found[2], 0, false});
        }
    }
    return schema;
}

std::map<std::string, bool> mdbtools_zero_length(const std::string& path, const std::string& table) {
    static constexpr std::string_view kName = "name: ";
    static constexpr std::string_view kProperty = "\tAllowZeroLength: ";
    std::map<std::string, bool> allowed;
    std::string column;
    for (const std::string& line : lines_of(run_program({"mdb-prop", path, table}).output)) {
        if (line.starts_with(kName)) column = line.substr(kName.size());
        if (line.starts_with(kProperty)) allowed[column] = line.substr(kProperty.size()) == "yes";
    }
    return allowed;
}

std::optional<ForeignTable> read_with_mdbtools(const std::string& path, const std::string& table) {
    const ProgramResult result =
        run_program({"mdb-export", "-Q", "-d", std::string(kFieldEnd), "-R", std::string(kRowEnd), "-0",
                     std::string(kNull), "-b", "hex", "-D", kDateFormat, "-T", kDateFormat, path, table});
    if (result.exit_code != 0) return std::nullopt;
    std::vector<std::string> lines = split(result.output, kRowEnd);
    lines.pop_back();  // behind the last row
    if (lines.empty()) return std::nullopt;
    ForeignTable read;
    read.name = table;
    for (const std::string& name : split(lines[0], kFieldEnd)) read.columns.push_back({name, "", 0, false});
    for (std::size_t i = 1; i < lines.size(); ++i) {
        std::vector<Field> row;
        for (std::string& text : split(lines[i], kFieldEnd)) {
            row.push_back(text == kNull ? Field() : Field(std::move(text)));
        }
        read.rows.push_back(std::move(row));
    }
    return read;
}

std::optional<ForeignFile> read_with_mdb_reader(const std::string& path) {
    const ProgramResult result = run_program({"node", KVDB_INTEROP_SCRIPT, KVDB_INTEROP_READER, path});
    if (result.exit_code != 0) return std::nullopt;
    ForeignFile file;
    for (const std::string& line : lines_of(result.output)) add_line(file, DumpLine(line).fields());
    return file;
}

}  // namespace interop
