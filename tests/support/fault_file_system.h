// A file system in memory that counts what is done to it, fails on demand and can lose power.
//
// Invariants
//  1. What a file holds after a power loss is what it held at its last sync, changed by some, all or none
//     of the writes and resizings since; nothing else.
//  2. A name made, moved or removed is sure to be so after a power loss only once its folder was synced;
//     a rename is whole or did not happen.
//  3. The same seed gives the same loss.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "os/file.h"
#include "tests/support/manual_clock.h"

namespace testing_support {

enum class Operation {
    kOpen,    // an opening that found the file
    kCreate,  // an opening that made the file
    kRead,
    kWrite,
    kTruncate,
    kSync,
    kRename,
    kRemove,
    kFolderSync,
};
inline constexpr std::size_t kOperationCount = 9;

// Whether the operation changes what is on the disk, now or after a power loss.
bool is_change(Operation operation);

enum class CrashMode {
    kKeepUnsynced,  // only the host died: the system writes everything in the end
    kDropUnsynced,  // nothing since the last sync reached the disk
    kTearUnsynced,  // a random part did, in sectors of 512 bytes and in any order
};

// Which operation fails, and how.
struct Fault {
    std::optional<Operation> operation = std::nullopt;  // none: any that is_change()
    std::uint64_t nth = 1;                              // 1: the next one
    os::FileFault fault = os::FileFault::kIo;
    bool lasting = false;       // all later ones fail as well
    bool half_written = false;  // a failing write leaves the first half of its bytes
};

// Folders need not be made: every one exists. Locks are as on the real system: an exclusive opening is refused while
// another one lives that locks, a reading one while an exclusive one does; side files neither take nor heed a lock.
// There are no links. Files opened here must not outlive the file system.
class FaultFileSystem : public os::FileSystem {
public:
    FaultFileSystem() = default;
    FaultFileSystem(const FaultFileSystem&) = delete;
    FaultFileSystem& operator=(const FaultFileSystem&) = delete;

    std::unique_ptr<os::File> open(const std::string& path, os::OpenMode mode) override;
    bool exists(const std::string& path) override;
    void remove(const std::string& path) override;
    void rename(const std::string& from, const std::string& to) override;
    void replace(const std::string& from, const std::string& to) override;
    void sync_folder_of(const std::string& path) override;
    std::vector<std::string> longer_names(const std::string& path) override;
    // Time stands still until a test lets it pass, so that nothing is done behind its back.
    ManualClock& clock() override { return clock_; }

    // Operations done since the beginning or the last reset, failed ones included.
    std::uint64_t count(Operation operation) const { return counts_[static_cast<std::size_t>(operation)]; }
    // Those of them that is_change().
    std::uint64_t change_count() const;
    void reset_counts() { counts_ = {}; }

    // Replaces the fault planned before. Its count begins now.
    void plan(const Fault& fault);
    void clear_faults() { fault_.reset(); }
    // How many operations the planned fault has failed so far.
    std::uint64_t faults_raised() const { return faults_raised_; }
    // Room for all files together; a write or resizing past it fails with kDiskFull.
    void set_capacity(std::uint64_t bytes) { capacity_ = bytes; }

    // Called after each operation that is_change() and did not fail; the place to take a crash() at every step.
    void set_observer(std::function<void(Operation, const std::string& path)> observer) {
        observer_ = std::move(observer);
    }
    // The disk as it is found after a power loss at this moment: everything synced, nothing open, no fault
    // planned. This file system itself goes on undisturbed.
    std::unique_ptr<FaultFileSystem> crash(CrashMode mode, std::uint32_t seed = 0) const;

    // A look at, and a change of, the disk that is neither counted nor failed. `content` of a missing file
    // throws kNotFound; `set_content` makes the file where needed and is durable at once.
    std::vector<std::uint8_t> content(const std::string& path) const;
    void set_content(const std::string& path, std::vector<std::uint8_t> bytes);
    // Names of all files, sorted.
    std::vector<std::string> names() const;
    // The file's name is made, and its bytes are all synced.
    bool is_durable(const std::string& path) const;

private:
    class OpenFile;

    using Bytes = std::vector<std::uint8_t>;

    // A write, or with `resize_to` a change of size.
    struct Change {
        std::uint64_t at = 0;
        Bytes bytes;
        std::optional<std::uint64_t> resize_to;
    };

    struct Node {
        Bytes content;
        Bytes durable;
        std::vector<Change> unsynced;
        bool locked = false;  // by an exclusive opening
        int readers = 0;
    };
    using Names = std::map<std::string, std::shared_ptr<Node>>;

    // Made: `to` alone. Removed: `from` alone. Moved: both.
    struct NameChange {
        std::optional<std::string> from;
        std::optional<std::string> to;
        std::shared_ptr<Node> node;
    };

    static void apply(const Change& change, Bytes& content);
    static void apply(const NameChange& change, Names& names);
    static Bytes torn(const Node& node, std::uint32_t seed);
    std::shared_ptr<Node> find(const std::string& path, const char* operation) const;
    void change_node(Operation operation, Node& node, const std::string& path, Change change);
    void count_and_fail(Operation operation, const std::string& path);
    void notify(Operation operation, const std::string& path) const;
    void change_name(NameChange change);
    std::uint64_t bytes_in_use() const;

    Names names_;
    Names durable_names_;
    std::vector<NameChange> unsynced_names_;
    std::array<std::uint64_t, kOperationCount> counts_{};
    std::optional<Fault> fault_;
    std::uint64_t faults_raised_ = 0;
    std::optional<std::uint64_t> capacity_;
    std::function<void(Operation, const std::string&)> observer_;
    ManualClock clock_;
};

// Puts a file system in place of the one in use for as long as the object lives.
class UseFileSystem {
public:
    explicit UseFileSystem(os::FileSystem& system) : before_(os::set_file_system(&system)) {}
    ~UseFileSystem() { os::set_file_system(before_); }
    UseFileSystem(const UseFileSystem&) = delete;
    UseFileSystem& operator=(const UseFileSystem&) = delete;

private:
    os::FileSystem* before_;
};

}  // namespace testing_support
