// A parser by recursive descent over words.
#include "frame/registration/registration_script.h"

#include <charconv>

namespace frame {

namespace {

class Parser {
public:
    explicit Parser(std::string_view script) : rest_(script) { next(); }

    std::vector<RegistrationKey> script() {
        expect("HKCR");
        if (!is("{")) fail("{");
        RegistrationKey root;
        block(root);
        if (!word_.empty() || is_quoted_) fail("the end");
        if (!root.values.empty()) fail("a key");
        return std::move(root.keys);
    }

private:
    static bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

    [[noreturn]] void fail(const std::string& expected) const {
        throw ScriptError("line " + std::to_string(line_) + ": " + expected + " expected, not '" + word_ + "'");
    }

    void take() {
        if (rest_.front() == '\n') ++line_;
        rest_.remove_prefix(1);
    }

    // The next word; empty and not quoted at the end.
    void next() {
        while (!rest_.empty() && is_blank(rest_.front())) take();
        word_.clear();
        is_quoted_ = !rest_.empty() && rest_.front() == '\'';
        if (!is_quoted_) {
            for (; !rest_.empty() && !is_blank(rest_.front()); take()) word_.push_back(rest_.front());
            return;
        }
        take();
        for (;; take()) {
            if (rest_.empty()) fail("a quote");
            if (rest_.front() == '\'') {
                take();
                if (rest_.empty() || rest_.front() != '\'') return;
            }
            word_.push_back(rest_.front());
        }
    }

    bool is(std::string_view text) const { return !is_quoted_ && word_ == text; }

    bool skip(std::string_view text) {
        if (!is(text)) return false;
        next();
        return true;
    }

    void expect(const char* text) {
        if (!skip(text)) fail(text);
    }

    std::string name() {
        if (word_.empty() || is("{") || is("}") || is("=")) fail("a name");
        std::string taken = std::move(word_);
        next();
        return taken;
    }

    RegistrationValue value() {
        const bool is_number = is("d");
        if (!is_number && !is("s")) fail("s or d");
        next();
        if (word_.empty() && !is_quoted_) fail("a value");
        const std::string text = std::move(word_);
        next();
        if (!is_number) return text;
        std::uint32_t number = 0;
        const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
        if (result.ec != std::errc() || result.ptr != text.data() + text.size()) fail("a number");
        return number;
    }

    // "{", then keys and named values up to "}".
    void block(RegistrationKey& key) {
        expect("{");
        while (!skip("}")) {
            if (skip("val")) {
                std::string value_name = name();
                expect("=");
                key.values.push_back({std::move(value_name), value()});
            } else {
                key.keys.push_back(this->key());
            }
        }
    }

    RegistrationKey key() {
        RegistrationKey key;
        if (skip("NoRemove")) {
            key.is_kept = true;
        } else if (skip("ForceRemove")) {
            key.is_replaced = true;
        }
        key.name = name();
        if (skip("=")) key.value = value();
        if (is("{")) block(key);
        return key;
    }

    std::string_view rest_;
    std::string word_;
    bool is_quoted_ = false;
    int line_ = 1;
};

}  // namespace

std::vector<RegistrationKey> parse_registration_script(std::string_view script) { return Parser(script).script(); }

}  // namespace frame
