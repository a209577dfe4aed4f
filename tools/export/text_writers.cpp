// CSV and JSON lines: a file for each table, and schema.json, which tells their columns.

#include "tools/export/draft.h"
#include "tools/export/export_writer.h"
#include "tools/paths.h"
#include "tools/value_text.h"

namespace tools {
namespace {

std::string schema_json(std::span<const ExportTable> tables, const std::string& ending) {
    std::string text = "{\"tables\": [";
    const char* before = "\n";
    for (const ExportTable& table : tables) {
        text += before + std::string("  {\"name\": ") + json_string(table.name) +
                ", \"file\": " + json_string(table.file_name + ending) + ", \"from\": " + json_string(table.file) +
                ", \"key\": " + (table.key ? json_string(table.columns[*table.key].name) : "null") + ", \"columns\": [";
        const char* between = "\n";
        for (const ExportColumn& column : table.columns) {
            text += between + std::string("    {\"name\": ") + json_string(column.name) +
                    ", \"type\": " + json_string(type_text(column)) + "}";
            between = ",\n";
        }
        text += "]}";
        before = ",\n";
    }
    return text + "\n]}\n";
}

// What both forms have in common.
class TextWriter : public ExportWriter {
public:
    TextWriter(std::string folder, std::string ending) : folder_(std::move(folder)), ending_(std::move(ending)) {}

    void begin(const ExportTable& table) override {
        out_ = std::make_unique<OutFile>(path_of(table.file_name + ending_));
    }
    void end(const ExportTable&) override {
        out_->close();
        out_.reset();
    }
    void finish(std::span<const ExportTable> tables) override {
        OutFile schema(path_of("schema.json"));
        schema.write(schema_json(tables, ending_));
        schema.close();
    }

protected:
    OutFile& out() { return *out_; }

private:
    std::string path_of(const std::string& name) const { return path_text(system_path(folder_) / system_path(name)); }

    std::string folder_;
    std::string ending_;
    std::unique_ptr<OutFile> out_;
};

class CsvWriter final : public TextWriter {
public:
    explicit CsvWriter(std::string folder) : TextWriter(std::move(folder), ".csv") {}

    void begin(const ExportTable& table) override {
        TextWriter::begin(table);
        std::string line;
        for (const ExportColumn& column : table.columns) line += (line.empty() ? "" : ",") + csv_quoted(column.name);
        out().write(line + "\r\n");
    }
    void row(const ExportTable&, std::span<const jet::Value> values) override {
        std::string line;
        for (std::size_t i = 0; i < values.size(); ++i) line += (i == 0 ? "" : ",") + csv_field(values[i]);
        out().write(line += "\r\n");
    }
};

class JsonLinesWriter final : public TextWriter {
public:
    explicit JsonLinesWriter(std::string folder) : TextWriter(std::move(folder), ".jsonl") {}

    void row(const ExportTable& table, std::span<const jet::Value> values) override {
        std::string line = "{";
        for (std::size_t i = 0; i < values.size(); ++i) {
            line += (i == 0 ? "" : ", ") + json_string(table.columns[i].name) + ": " + json_value(values[i]);
        }
        out().write(line += "}\n");
    }
};

}  // namespace

std::unique_ptr<ExportWriter> make_csv_writer(const std::string& path, const std::optional<std::string>&) {
    return std::make_unique<CsvWriter>(path);
}

std::unique_ptr<ExportWriter> make_json_lines_writer(const std::string& path, const std::optional<std::string>&) {
    return std::make_unique<JsonLinesWriter>(path);
}

}  // namespace tools
