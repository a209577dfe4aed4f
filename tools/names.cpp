#include "tools/names.h"

#include <algorithm>

#include "jet/base/types.h"

namespace tools {
namespace {

std::string lower(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

// Slips between the words, by the usual table of prefixes.
std::size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::vector<std::size_t>> slips(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                slips[i][j] = i + j;
                continue;
            }
            slips[i][j] = std::min(
                {slips[i - 1][j] + 1, slips[i][j - 1] + 1, slips[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0U : 1U)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                slips[i][j] = std::min(slips[i][j], slips[i - 2][j - 2] + 1);
            }
        }
    }
    return slips[a.size()][b.size()];
}

}  // namespace

bool is_same_name(const std::string& a, const std::string& b) {
    return jet::same_name(jet::from_utf8(a), jet::from_utf8(b));
}

std::string listed(const Names& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

std::string nearest_name(const std::string& word, const Names& names) {
    constexpr std::size_t kLongestWord = 64;  // beyond it nobody has mistyped one of ours
    if (word.empty() || word.size() > kLongestWord) return {};
    std::string nearest;
    std::size_t fewest = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& name : names) {
        const std::size_t slips = distance(lower(word), lower(name));
        if (slips >= fewest) continue;
        fewest = slips;
        nearest = name;
    }
    return nearest;
}

std::string suggestion(const std::string& word, const Names& names) {
    const std::string nearest = nearest_name(word, names);
    return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

}  // namespace tools
