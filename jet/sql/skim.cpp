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
        keep();
        return std::move(result_);
    }

private:
    char16_t current() const { return at_ < text_.size() ? text_[at_] : u'\0'; }

    // What has been passed over since the last literal goes into the frame.
    void keep() { result_.frame.append(text_, kept_, at_ - kept_); }

    // A literal ends here.
    void mark(char16_t kind) {
        result_.frame.push_back(kind);
        kept_ = at_;
    }

    bool take_one() {
        const char16_t c = text_[at_];
        if (starts_name(c)) return pass_word();
        if (c == u'[') return pass_brackets();
        if (c == u'"' || c == u'\'') return take_text(c);
        if (is_digit(c)) return take_number();
        ++at_;
        return is_blank(c) || c == u'=' || c == u'*' || c == u'(' || c == u')' || c == u',' || c == u'<' || c == u'>' ||
               c == u';';
    }

    bool pass_brackets() {
        at_ = text_.find(u']', at_);
        if (at_ == std::u16string_view::npos) return false;
        ++at_;
        return true;
    }

    bool pass_word() {
        do {
            ++at_;
        } while (at_ < text_.size() && continues_name(text_[at_]));
        return true;
    }

    bool take_text(char16_t delimiter) {
        const std::size_t end = text_.find(delimiter, at_ + 1);
        if (end == std::u16string_view::npos) return false;
        keep();
        result_.literals.emplace_back(std::u16string(text_.substr(at_ + 1, end - at_ - 1)));
        at_ = end + 1;
        mark(kTextMark);
        return current() != delimiter;  // doubled, it would stand for itself
    }

    bool take_number() {
        keep();
        const std::size_t begin = at_;
        std::int64_t number = 0;
        for (; is_digit(current()) && at_ - begin < kMostDigits; ++at_) number = 10 * number + (text_[at_] - u'0');
        result_.literals.emplace_back(number);
        mark(kNumberMark);
        const bool goes_on = is_digit(current()) || current() == u'.' || current() == u'e' || current() == u'E';
        return !goes_on;
    }

    std::u16string_view text_;
    std::size_t at_ = 0;
    std::size_t kept_ = 0;  // up to here the frame has everything
    Skimmed result_;
};

}  // namespace

std::optional<Skimmed> skim(std::u16string_view statement) { return Skimmer(statement).run(); }

}  // namespace jet::sql
