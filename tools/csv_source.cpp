#include "tools/csv_source.h"

#include <filesystem>
#include <system_error>

#include "tools/errors.h"
#include "tools/paths.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kSmallBytes = 1u << 20;

}  // namespace

CsvSource::Buffer::Buffer(const std::string& path) : in_(system_path(path), std::ios::binary) {
    std::error_code error;
    if (fs::is_directory(system_path(path), error)) {
        throw CommandError(path + " is a folder; wanted is a file of comma-separated values");
    }
    if (!in_) throw CommandError(path + " cannot be read; is it there, and may you read it?");
    fill();
    is_small_ = bytes_.size() < kSmallBytes;
}

bool CsvSource::Buffer::fill() {
    before_ += bytes_.size();
    bytes_.resize(kSmallBytes);
    in_.read(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
    bytes_.resize(static_cast<std::size_t>(in_.gcount()));
    setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
    return !bytes_.empty();
}

CsvSource::Buffer::int_type CsvSource::Buffer::underflow() {
    if (gptr() == egptr() && !fill()) return traits_type::eof();
    return traits_type::to_int_type(*gptr());
}

CsvSource::CsvSource(const std::string& path) : buffer_(path), stream_(&buffer_) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(system_path(path), error);
    if (!error) size_ = size;
}

std::uint64_t CsvSource::guessed_lines(std::uint64_t read) const {
    const std::uint64_t position = buffer_.position();
    if (size_ == 0 || position == 0) return 0;
    return static_cast<std::uint64_t>(static_cast<double>(read) * static_cast<double>(size_) /
                                      static_cast<double>(position));
}

}  // namespace tools
