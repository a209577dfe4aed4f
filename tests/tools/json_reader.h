// JSON as the tool prints it, read strictly.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace testing_tool {

struct Json {
    enum class Kind { kNull, kLiteral, kText, kArray, kObject };
    Kind kind = Kind::kNull;
    std::string text;         // of a text without its escapes, of a number or a truth value as it stands
    std::vector<Json> items;  // of an array; of an object the values
    std::vector<std::string> names;

    const Json* find(const std::string& name) const {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (names[i] == name) return &items[i];
        }
        return nullptr;
    }
};

class JsonReader {
public:
    explicit JsonReader(const std::string& text) : text_(text) {}

    // std::runtime_error where the text is not one JSON value.
    Json read() {
        Json value = any_value();
        skip_blanks();
        if (at_ != text_.size()) fail("something behind the end");
        return value;
    }

private:
    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error(what + " at " + std::to_string(at_) + ": " + text_.substr(at_, 40));
    }
    void skip_blanks() {
        while (at_ < text_.size() && std::string(" \n\r\t").find(text_[at_]) != std::string::npos) ++at_;
    }
    bool takes(char c) {
        skip_blanks();
        if (at_ == text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }
    void want(char c) {
        if (!takes(c)) fail(std::string("no ") + c);
    }

    Json any_value() {
        skip_blanks();
        if (at_ == text_.size()) fail("the end");
        if (text_[at_] == '"') return {Json::Kind::kText, any_text(), {}, {}};
        if (takes('[')) return rest_of(Json::Kind::kArray, ']');
        if (takes('{')) return rest_of(Json::Kind::kObject, '}');
        return literal();
    }

    Json rest_of(Json::Kind kind, char end) {
        Json value{kind, "", {}, {}};
        if (takes(end)) return value;
        do {
            if (kind == Json::Kind::kObject) {
                skip_blanks();
                value.names.push_back(any_text());
                want(':');
            }
            value.items.push_back(any_value());
        } while (takes(','));
        want(end);
        return value;
    }

    Json literal() {
        const std::size_t begin = at_;
        while (at_ < text_.size() && std::string(",]} \n").find(text_[at_]) == std::string::npos) ++at_;
        const std::string word = text_.substr(begin, at_ - begin);
        if (word == "null") return {};
        if (word == "true" || word == "false") return {Json::Kind::kLiteral, word, {}, {}};
        std::size_t used = 0;
        if (!word.empty() && (word[0] == '-' || std::isdigit(static_cast<unsigned char>(word[0])) != 0)) {
            (void)std::stod(word, &used);
        }
        if (used == 0 || used != word.size()) fail("no value '" + word + "'");
        return {Json::Kind::kLiteral, word, {}, {}};
    }

    std::string any_text() {
        want('"');
        std::string result;
        for (;; ++at_) {
            if (at_ >= text_.size() || static_cast<unsigned char>(text_[at_]) < 0x20) fail("no end of a text");
            if (text_[at_] == '"') break;
            result += text_[at_] == '\\' ? escaped() : text_[at_];
        }
        ++at_;
        return result;
    }

    char escaped() {
        static const std::string kMarks = "\"\\/bfnrt";
        static const std::string kMeant = "\"\\/\b\f\n\r\t";
        const char mark = ++at_ < text_.size() ? text_[at_] : '\0';
        if (const std::size_t known = kMarks.find(mark); known != std::string::npos) return kMeant[known];
        // Of \u the tool prints control characters alone.
        if (mark != 'u' || text_.substr(at_ + 1, 2) != "00") fail("no escape");
        const int code = std::stoi(text_.substr(at_ + 1, 4), nullptr, 16);
        at_ += 4;
        return static_cast<char>(code);
    }

    const std::string& text_;
    std::size_t at_ = 0;
};

// Nothing, with a failure of the test, where it is none.
inline std::optional<Json> json_of(const std::string& text) {
    try {
        return JsonReader(text).read();
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
        return std::nullopt;
    }
}

}  // namespace testing_tool
