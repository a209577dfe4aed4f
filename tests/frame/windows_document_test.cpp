// The results and the words that docs/windows.md explains are those of the code.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace {

std::string text_of(const std::filesystem::path& path) {
    std::ifstream in(path);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string document() { return text_of(KVDB_DOCS "/windows.md"); }
std::filesystem::path frame_folder() { return std::filesystem::path(KVDB_TESTS).parent_path() / "frame"; }

// All matches of the pattern's first group.
std::set<std::string> all_of(const std::string& text, const char* pattern) {
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) found.insert((*at)[1]);
    return found;
}

// The sources that are built for Windows, without their comments.
std::string sources_for_windows() {
    std::string text;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(frame_folder())) {
        const std::string name = entry.path().filename().string();
        const bool is_source = name.ends_with(".cpp") || name.ends_with(".h");
        if (is_source && name.find("_posix") == std::string::npos) text += text_of(entry.path());
    }
    return std::regex_replace(text, std::regex("//[^\n]*"), "");
}

}  // namespace

TEST(WindowsDocument, explains_every_result_that_the_sources_name) {
    const auto names = all_of(sources_for_windows(), R"(\b((?:[A-Z]+_)?[ES]_[A-Z]+|HRESULT_FROM_WIN32)\b)");
    EXPECT_GT(names.size(), 15u);
    const std::string text = document();
    for (const std::string& name : names) {
        EXPECT_NE(text.find("`" + name + "`"), std::string::npos) << name;
    }
}

TEST(WindowsDocument, gives_each_result_its_number) {
    const std::string constants = text_of(frame_folder().parent_path() / "include/kvdb/com.h");
    const std::string text = document();
    const auto entries = all_of(text, "`((?:[A-Z]+_)?E_[A-Z]+` [0-9A-F]{8})");
    EXPECT_GT(entries.size(), 15u);
    for (const std::string& entry : entries) {
        const std::string name = entry.substr(0, entry.find('`'));
        const std::string number = entry.substr(entry.rfind(' ') + 1);
        const std::size_t at = constants.find(" " + name + " = ");
        if (at == std::string::npos) continue;  // of the platform alone
        const std::string line = constants.substr(at, constants.find('\n', at) - at);
        EXPECT_NE(line.find("0x" + number), std::string::npos) << name << line;
    }
}

TEST(WindowsDocument, has_the_words_of_every_refusal) {
    const auto words = all_of(text_of(frame_folder() / "failure.cpp"), "\\{Refusal::k[A-Za-z]+, \"([^.;\"]+)");
    EXPECT_GE(words.size(), 8u);
    const std::string text = document();
    for (const std::string& sentence : words) {
        EXPECT_NE(text.find("\"" + sentence), std::string::npos) << sentence;
    }
}
