#include "tools/declaration.h"

#include <CLI/CLI.hpp>

namespace tools {

void Declaration::word(const char* name, std::string& value, const char* help) {
    app_.add_option(name, value, help)->required();
}

void Declaration::optional_word(const char* name, std::string& value, const char* help) {
    app_.add_option(name, value, help);
}

void Declaration::words(const char* name, std::vector<std::string>& values, const char* help) {
    app_.add_option(name, values, help)->required();
}

void Declaration::optional_words(const char* name, std::vector<std::string>& values, const char* help) {
    app_.add_option(name, values, help);
}

void Declaration::flag(const char* name, bool& value, const char* help) { app_.add_flag(name, value, help); }

void Declaration::option(const char* name, std::optional<std::string>& value, const char* type, const char* help) {
    app_.add_option(name, value, help)->type_name(type);
}

void Declaration::option(const char* name, std::optional<int>& value, const char* type, const char* help) {
    app_.add_option(name, value, help)->type_name(type);
}

void Declaration::required_option(const char* name, std::string& value, const char* type, const char* help) {
    app_.add_option(name, value, help)->type_name(type)->required();
}

void Declaration::repeated_option(const char* name, std::vector<std::string>& values, const char* type,
                                  const char* help) {
    app_.add_option(name, values, help)->type_name(type)->allow_extra_args(false)->take_all();
}

void Declaration::folder(std::string& value) { word("FOLDER", value, "folder of the studio, or one of its two files"); }

void Declaration::file(std::string& value) { word("FILE", value, "a Jet file, or the folder of a studio"); }

void Declaration::table(std::string& value) { word("TABLE", value, "name of the table, in whatever case"); }

void Declaration::format(FormatOption& value) {
    CLI::Option* const json = app_.add_flag("--json", value.json, "print JSON");
    app_.add_flag("--csv", value.csv, "print CSV (RFC 4180)")->excludes(json);
}

void Declaration::password(std::optional<std::string>& value) {
    option("--password", value, "TEXT", "the file's password, where it is none of a studio's own");
}

}  // namespace tools
