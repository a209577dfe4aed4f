#include "tools/progress.h"

#include <cstdio>

#include "tools/output.h"
#include "tools/terminal.h"

namespace tools {
namespace {

constexpr std::uint64_t kBetweenLooks = 256;  // at the clock; of few steps each may take long

bool is_line_shown = false;  // there is one terminal

std::string with_commas(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3;) digits.insert(at -= 3, ",");
    return digits;
}

std::string duration_text(double seconds) {
    const auto whole = static_cast<std::uint64_t>(seconds + 0.5);
    return whole < 60 ? std::to_string(whole) + " s"
                      : std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
}

}  // namespace

Progress::Progress(std::string what, std::uint64_t total)
    : what_(std::move(what)),
      total_(total),
      is_wanted_(errors_go_to_terminal()),
      begin_(Clock::now()),
      shown_(begin_) {}

Progress::~Progress() { make_room(); }

void Progress::make_room() {
    if (!is_line_shown) return;
    is_line_shown = false;
    std::fprintf(stderr, "\r\033[K");
    std::fflush(stderr);
}

void Progress::step(std::uint64_t count) {
    done_ += count;
    if (!is_wanted_ || done_ < next_look_) return;
    next_look_ = done_ + (total_ != 0 && total_ < 100 * kBetweenLooks ? 1 : kBetweenLooks);
    look();
}

void Progress::look() {
    const Clock::time_point now = Clock::now();
    if (now - shown_ < std::chrono::seconds(1)) return;
    // In the middle of a line of rows it would take that away.
    if (!output().is_at_line_begin()) return;
    shown_ = now;
    is_line_shown = true;
    const double seconds = std::chrono::duration<double>(now - begin_).count();
    std::fprintf(stderr, "\r%s\033[K", text(what_, done_, total_, seconds).c_str());
}

std::string Progress::text(const std::string& what, std::uint64_t done, std::uint64_t total, double seconds) {
    std::string text = with_commas(done) + " " + what;
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    if (total >= done && total > 0) text += ", " + std::to_string(done * 100 / total) + " %";
    text += ", " + with_commas(static_cast<std::uint64_t>(rate)) + " a second";
    if (total >= done && rate > 0) text += ", " + duration_text(static_cast<double>(total - done) / rate) + " left";
    return text;
}

}  // namespace tools
