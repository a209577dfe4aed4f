// A disk that keeps only the pages that were written: files of gigabytes cost nothing. It forgets nothing and
// fails never.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <string>

#include "os/file.h"
#include "tests/support/manual_clock.h"

namespace jet {

class SparseFileSystem : public os::FileSystem {
public:
    std::unique_ptr<os::File> open(const std::string& path, os::OpenMode mode) override {
        const bool creates = mode == os::OpenMode::kCreateExclusive || mode == os::OpenMode::kCreateSide;
        if (creates == exists(path)) {
            throw os::FileError(creates ? os::FileFault::kExists : os::FileFault::kNotFound, path);
        }
        return std::make_unique<OpenFile>(files_[path]);
    }
    bool exists(const std::string& path) override { return files_.contains(path); }
    void remove(const std::string& path) override { files_.erase(path); }
    void rename(const std::string& from, const std::string& to) override {
        files_[to] = std::move(files_.extract(from).mapped());
    }
    void replace(const std::string& from, const std::string& to) override { rename(from, to); }
    void sync_folder_of(const std::string&) override {}
    std::vector<std::string> longer_names(const std::string&) override { return {}; }
    testing_support::ManualClock& clock() override { return clock_; }

private:
    static constexpr std::uint64_t kBlock = 4096;
    using Block = std::array<std::uint8_t, kBlock>;

    struct Content {
        std::uint64_t size = 0;
        std::map<std::uint64_t, Block> blocks;
    };

    class OpenFile : public os::File {
    public:
        explicit OpenFile(Content& content) : content_(content) {}
        std::size_t read(std::uint64_t at, std::span<std::uint8_t> into) override {
            if (at >= content_.size) return 0;
            const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), content_.size - at));
            for_each_piece(at, count,
                           [&](std::uint64_t block, std::size_t within, std::size_t from, std::size_t bytes) {
                               const auto found = content_.blocks.find(block);
                               if (found == content_.blocks.end())
                                   std::memset(into.data() + from, 0, bytes);
                               else
                                   std::memcpy(into.data() + from, found->second.data() + within, bytes);
                           });
            return count;
        }
        void write(std::uint64_t at, std::span<const std::uint8_t> bytes) override {
            for_each_piece(at, bytes.size(),
                           [&](std::uint64_t block, std::size_t within, std::size_t from, std::size_t count) {
                               std::memcpy(content_.blocks[block].data() + within, bytes.data() + from, count);
                           });
            content_.size = std::max<std::uint64_t>(content_.size, at + bytes.size());
        }
        std::uint64_t size() override { return content_.size; }
        void truncate(std::uint64_t bytes) override {
            content_.size = bytes;
            content_.blocks.erase(content_.blocks.lower_bound((bytes + kBlock - 1) / kBlock), content_.blocks.end());
            const auto last = content_.blocks.find(bytes / kBlock);
            if (last != content_.blocks.end())
                std::memset(last->second.data() + bytes % kBlock, 0, kBlock - bytes % kBlock);
        }
        void sync() override {}

    private:
        template <class Use>
        static void for_each_piece(std::uint64_t at, std::size_t count, Use&& use) {
            for (std::size_t from = 0; from < count;) {
                const auto within = static_cast<std::size_t>((at + from) % kBlock);
                const std::size_t bytes = std::min<std::size_t>(count - from, kBlock - within);
                use((at + from) / kBlock, within, from, bytes);
                from += bytes;
            }
        }
        Content& content_;
    };

    std::map<std::string, Content> files_;
    testing_support::ManualClock clock_;
};

}  // namespace jet
