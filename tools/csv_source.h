// The file that an import reads: a file, or a pipe, which cannot be read twice and has no size.
#pragma once

#include <cstdint>
#include <fstream>
#include <istream>
#include <memory>
#include <streambuf>
#include <string>

namespace tools {

class CsvSource {
public:
    // CommandError where it cannot be read.
    explicit CsvSource(const std::string& path);

    std::istream& stream() { return stream_; }
    // Whether it ends within the first MiB.
    bool is_small() const { return buffer_.is_small(); }
    // How many lines it has, guessed by those that were read; 0 where its size is not known.
    std::uint64_t guessed_lines(std::uint64_t read) const;

private:
    // Begins with the bytes by which it is told whether it is small.
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(const std::string& path);
        bool is_small() const { return is_small_; }
        std::uint64_t position() const { return before_ + static_cast<std::uint64_t>(gptr() - eback()); }

    protected:
        int_type underflow() override;

    private:
        bool fill();

        std::ifstream in_;
        std::string bytes_;
        std::uint64_t before_ = 0;  // bytes in front of those that are here
        bool is_small_ = false;
    };

    Buffer buffer_;
    std::istream stream_;
    std::uint64_t size_ = 0;
};

}  // namespace tools
