// A file system in memory that counts operations, fails on demand and can lose power.
//
// Invariants
//  1. After a power loss a file holds its content at the last sync, changed by some, all or none
//     of the writes and resizes since; nothing else.
//  2. A creation, rename or removal of a name is durable only once its folder was synced;
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
    kOpen,    // an opening of an existing file
    kCreate,  // an opening that created the file
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
    kKeepUnsynced,  // only the host died: the system writes everything eventually
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

// Every folder exists; none needs to be created. Locks are as on the real system: an exclusive opening is refused while
// another locking one lives, a reading one while an exclusive one does; side files neither take nor respect a lock.
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
    // Time stands still until a test advances it, so that nothing happens in the background.
    ManualClock& clock() override { return clock_; }

    // Operations since construction or the last reset, failed ones included.
    std::uint64_t count(Operation operation) const { return counts_[static_cast<std::size_t>(operation)]; }
    // The number of those that are is_change().
    std::uint64_t change_count() const;
    void reset_counts() { counts_ = {}; }

    // Replaces the planned fault. Counting starts now.
    void plan(const Fault& fault);
    void clear_faults() { fault_.reset(); }
    // How many operations the planned fault has failed so far.
    std::uint64_t faults_raised() const { return faults_raised_; }
    // Capacity for all files together; a write or resize beyond it fails with kDiskFull.
    void set_capacity(std::uint64_t bytes) { capacity_ = bytes; }

    // Called after each successful operation that is_change(); the place to take a crash() at every step.
    void set_observer(std::function<void(Operation, const std::string& path)> observer) {
        observer_ = std::move(observer);
    }
    // The disk as found after a power loss now: everything synced, nothing open, no fault planned. This file system
    // itself is unchanged.
    std::unique_ptr<FaultFileSystem> crash(CrashMode mode, std::uint32_t seed = 0) const;

    // Reads, or changes, the disk without being counted or failed. `content` of a missing file throws kNotFound;
    // `set_content` creates the file if needed and is durable at once.
    std::vector<std::uint8_t> content(const std::string& path) const;
    void set_content(const std::string& path, std::vector<std::uint8_t> bytes);
    // Names of all files, sorted.
    std::vector<std::string> names() const;
    // The file's name is durable, and all its bytes are synced.
    bool is_durable(const std::string& path) const;

private:
    class OpenFile;

    using Bytes = std::vector<std::uint8_t>;

    // A write, or with `resize_to` a resize.
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

    // Created: only `to`. Removed: only `from`. Renamed: both.
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

// Replaces the file system in use while the object lives.
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
