#include "tools/arguments.h"

#include <algorithm>
#include <charconv>

namespace tools {

Arguments::Arguments(const std::vector<std::string>& words, std::initializer_list<std::string_view> flags,
                     std::initializer_list<std::string_view> options) {
    const auto knows = [](std::initializer_list<std::string_view> names, const std::string& name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    bool only_words = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (only_words || word.rfind("--", 0) != 0) {
            positional_.push_back(word);
        } else if (word == "--") {
            only_words = true;
        } else if (knows(flags, word)) {
            values_[word];
        } else if (const std::size_t equals = word.find('='); knows(options, word.substr(0, equals))) {
            if (equals == std::string::npos && i + 1 == words.size()) throw UsageError(word + " needs a value");
            values_[word.substr(0, equals)].push_back(equals == std::string::npos ? words[++i]
                                                                                  : word.substr(equals + 1));
        } else {
            throw UsageError("unknown option " + word);
        }
    }
}

std::optional<std::string> Arguments::value(std::string_view option) const {
    const auto found = values_.find(std::string(option));
    if (found == values_.end() || found->second.empty()) return std::nullopt;
    return found->second.back();
}

std::vector<std::string> Arguments::values(std::string_view option) const {
    const auto found = values_.find(std::string(option));
    return found == values_.end() ? std::vector<std::string>() : found->second;
}

std::optional<int> Arguments::number(std::string_view option) const {
    const auto text = value(option);
    if (!text) return std::nullopt;
    int number = 0;
    const auto result = std::from_chars(text->data(), text->data() + text->size(), number);
    if (result.ec != std::errc() || result.ptr != text->data() + text->size()) {
        throw UsageError(std::string(option) + " takes a whole number, not '" + *text + "'");
    }
    return number;
}

const std::vector<std::string>& Arguments::expect(std::size_t least, std::size_t most, std::string_view usage) const {
    if (positional_.size() < least || positional_.size() > most) throw UsageError("usage: kvdb " + std::string(usage));
    return positional_;
}

}  // namespace tools
