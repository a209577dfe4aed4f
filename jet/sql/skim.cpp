#include "jet/sql/skim.h"

#include "jet/sql/characters.h"

namespace jet::sql {

namespace {

constexpr char16_t kNumberMark = 1;
constexpr char16_t kTextMark = 2;
constexpr std::size_t kMostDigits = 18;  // of a number that certainly has 64 bits

class Skimmer {
public:
    explicit Skimmer(std::u16string_view statement) : text_(statement) { result_.frame.reserve(statement.size()); }

    std::optional<Skimmed> run() {
        while (at_ < text_.size()) {
            if (!take_one()) return std::nullopt;
        }
        return std::move(result_);
    }

private:
    char16_t current() const { return at_ < text_.size() ? text_[at_] : u'\0'; }

    void keep_until(std::size_t end) {
        result_.frame += text_.substr(at_, end - at_);
        at_ = end;
    }

    bool take_one() {
        const char16_t c = text_[at_];
        if (c == u'[') return take_brackets();
        if (c == u'"' || c == u'\'') return take_text(c);
        if (is_digit(c)) return take_number();
        if (starts_name(c)) return take_word();
        const bool is_plain = is_blank(c) || c == u'=' || c == u'*' || c == u'(' || c == u')' || c == u',' ||
                              c == u'<' || c == u'>' || c == u';';
        if (is_plain) keep_until(at_ + 1);
        return is_plain;
    }

    bool take_brackets() {
        const std::size_t end = text_.find(u']', at_);
        if (end == std::u16string_view::npos) return false;
        keep_until(end + 1);
        return true;
    }

    bool take_word() {
        std::size_t end = at_ + 1;
        while (end < text_.size() && continues_name(text_[end])) ++end;
        keep_until(end);
        return true;
    }

    bool take_text(char16_t delimiter) {
        const std::size_t end = text_.find(delimiter, at_ + 1);
        if (end == std::u16string_view::npos) return false;
        result_.literals.emplace_back(std::u16string(text_.substr(at_ + 1, end - at_ - 1)));
        result_.frame.push_back(kTextMark);
        at_ = end + 1;
        return current() != delimiter;  // doubled, it would stand for itself
    }

    bool take_number() {
        const std::size_t begin = at_;
        std::int64_t number = 0;
        for (; is_digit(current()) && at_ - begin < kMostDigits; ++at_) number = 10 * number + (text_[at_] - u'0');
        result_.literals.emplace_back(number);
        result_.frame.push_back(kNumberMark);
        const bool goes_on = is_digit(current()) || current() == u'.' || current() == u'e' || current() == u'E';
        return !goes_on;
    }

    std::u16string_view text_;
    std::size_t at_ = 0;
    Skimmed result_;
};

}  // namespace

std::optional<Skimmed> skim(std::u16string_view statement) { return Skimmer(statement).run(); }

}  // namespace jet::sql
