// What a command prints on standard output, and whether it arrived.
//
// A command that changes a studio is not to stop half way because nobody takes its text: a failure is remembered, the
// rest of the text is dropped, and main tells at the end. A listing asks `is_lost` and stops.
#pragma once

#include <string>
#include <string_view>

#ifdef __MINGW32__
#define KVDB_PRINTF_FORMAT gnu_printf
#else
#define KVDB_PRINTF_FORMAT printf
#endif

namespace tools {

class Output {
public:
    void write(std::string_view utf8);
    [[gnu::format(KVDB_PRINTF_FORMAT, 2, 3)]] void print(const char* format, ...);
    void flush();
    // Writes the rest and closes the stream: only then the system has told everything. Nothing is printed afterwards.
    void finish();

    // Something that was printed has not arrived.
    bool is_lost() const { return error_ != 0; }
    // It was lost because the reader of a pipe has gone, as `head` does when it has enough.
    bool reader_has_gone() const;
    // What has gone out ends with a line's end, or is nothing.
    bool is_at_line_begin() const { return is_at_line_begin_; }
    // The system's reason.
    std::string reason() const;

private:
    void send(std::string_view text);

    std::string waiting_;
    bool has_printed_ = false;
    bool is_at_line_begin_ = true;
    int error_ = 0;
};

Output& output();

// To be called before anything else: opens what is closed of the descriptors 0 to 2, so that no file gets one of them,
// and turns the signals that would end a command in its middle (a pipe without a reader, a file beyond the limit of
// the process) into errors of writing. A standard output that was closed stays one that takes nothing.
void open_standard_streams();

}  // namespace tools
