// Owns the model of a disk that can fail and lose power; the header states its invariants.
#include "tests/support/fault_file_system.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>
#include <utility>

#include "os/system.h"
#include "os/system_error.h"

namespace testing_support {
namespace {

constexpr std::uint64_t kSectorBytes = 512;

[[noreturn]] void fail(const char* operation, const std::string& path, os::FileFault fault, const char* reason) {
    throw os::FileError(fault, os::detail::file_error_text(operation, path, reason));
}

const char* verb_of(Operation operation) {
    switch (operation) {
        case Operation::kOpen: return "open";
        case Operation::kCreate: return "create";
        case Operation::kRead: return "read";
        case Operation::kWrite: return "write";
        case Operation::kTruncate: return "resize";
        case Operation::kSync: return "sync";
        case Operation::kRename: return "rename";
        case Operation::kRemove: return "remove";
        case Operation::kFolderSync: return "sync the folder of";
    }
    return "use";
}

const char* reason_of(os::FileFault fault) {
    switch (fault) {
        case os::FileFault::kNotFound: return "planned fault: no such file";
        case os::FileFault::kBadPath: return "planned fault: no such folder";
        case os::FileFault::kLink: return "planned fault: a link";
        case os::FileFault::kExists: return "planned fault: the file exists";
        case os::FileFault::kAccessDenied: return "planned fault: access denied";
        case os::FileFault::kLocked: return "planned fault: the file is in use";
        case os::FileFault::kDiskFull: return "planned fault: no space left";
        case os::FileFault::kIo: break;
    }
    return "planned fault: input/output error";
}

}  // namespace

bool is_change(Operation operation) { return operation != Operation::kOpen && operation != Operation::kRead; }

class FaultFileSystem::OpenFile : public os::File {
public:
    OpenFile(FaultFileSystem& system, std::shared_ptr<Node> node, std::string path, os::OpenMode mode)
        : system_(system), node_(std::move(node)), path_(std::move(path)), mode_(mode) {}

    ~OpenFile() override {
        if (mode_ == os::OpenMode::kExclusive || mode_ == os::OpenMode::kCreateExclusive) node_->locked = false;
        if (mode_ == os::OpenMode::kReadOnly) --node_->readers;
    }

    std::size_t read(std::uint64_t at, std::span<std::uint8_t> into) override {
        system_.count_and_fail(Operation::kRead, path_);
        const Bytes& content = node_->content;
        if (at >= content.size() || into.empty()) return 0;
        const std::size_t count = std::min<std::size_t>(into.size(), content.size() - static_cast<std::size_t>(at));
        std::memcpy(into.data(), content.data() + at, count);
        return count;
    }

    void write(std::uint64_t at, std::span<const std::uint8_t> bytes) override {
        require_writable(Operation::kWrite);
        if (bytes.empty()) return;
        system_.change_node(Operation::kWrite, *node_, path_, {at, Bytes(bytes.begin(), bytes.end()), {}});
    }

    std::uint64_t size() override { return node_->content.size(); }

    void truncate(std::uint64_t bytes) override {
        require_writable(Operation::kTruncate);
        system_.change_node(Operation::kTruncate, *node_, path_, {0, {}, bytes});
    }

    void sync() override {
        system_.count_and_fail(Operation::kSync, path_);
        for (const Change& change : node_->unsynced) apply(change, node_->durable);
        node_->unsynced.clear();
        system_.notify(Operation::kSync, path_);
    }

private:
    void require_writable(Operation operation) const {
        if (mode_ == os::OpenMode::kReadOnly || mode_ == os::OpenMode::kReadSide) {
            fail(verb_of(operation), path_, os::FileFault::kAccessDenied, "the file is open for reading only");
        }
    }

    FaultFileSystem& system_;
    std::shared_ptr<Node> node_;
    std::string path_;
    os::OpenMode mode_;
};

void FaultFileSystem::apply(const Change& change, Bytes& content) {
    if (change.resize_to) {
        content.resize(static_cast<std::size_t>(*change.resize_to));
        return;
    }
    const auto end = static_cast<std::size_t>(change.at + change.bytes.size());
    if (content.size() < end) content.resize(end);
    std::copy(change.bytes.begin(), change.bytes.end(), content.begin() + static_cast<std::ptrdiff_t>(change.at));
}

void FaultFileSystem::apply(const NameChange& change, Names& names) {
    if (change.from) {
        const auto found = names.find(*change.from);
        if (found != names.end() && found->second == change.node) names.erase(found);
    }
    if (change.to) names[*change.to] = change.node;
}

// Each sector of each write, and each resize, reaches the disk or does not. The file may have grown for a write whose
// bytes are lost: its sectors then read as zeros.
FaultFileSystem::Bytes FaultFileSystem::torn(const Node& node, std::uint32_t seed) {
    std::mt19937 random(seed);
    const auto kept = [&random] { return (random() & 1u) != 0; };
    Bytes content = node.durable;
    for (const Change& change : node.unsynced) {
        if (change.resize_to) {
            if (kept()) apply(change, content);
            continue;
        }
        const std::uint64_t end = change.at + change.bytes.size();
        if (content.size() < end && kept()) content.resize(static_cast<std::size_t>(end));
        for (std::uint64_t first = change.at; first < end;) {
            const std::uint64_t last = std::min(end, (first / kSectorBytes + 1) * kSectorBytes);
            if (kept()) {
                const auto begin = change.bytes.begin();
                const auto offset = [&](std::uint64_t at) { return static_cast<std::ptrdiff_t>(at - change.at); };
                apply({first, Bytes(begin + offset(first), begin + offset(last)), {}}, content);
            }
            first = last;
        }
    }
    return content;
}

std::shared_ptr<FaultFileSystem::Node> FaultFileSystem::find(const std::string& path, const char* operation) const {
    const auto found = names_.find(path);
    if (found == names_.end()) fail(operation, path, os::FileFault::kNotFound, "no such file");
    return found->second;
}

void FaultFileSystem::count_and_fail(Operation operation, const std::string& path) {
    ++counts_[static_cast<std::size_t>(operation)];
    if (!fault_) return;
    const bool concerned = fault_->operation ? *fault_->operation == operation : is_change(operation);
    if (!concerned) return;
    if (fault_->nth > 1) {
        --fault_->nth;
        return;
    }
    if (fault_->nth == 0) return;
    if (!fault_->lasting) fault_->nth = 0;
    ++faults_raised_;
    fail(verb_of(operation), path, fault_->fault, reason_of(fault_->fault));
}

void FaultFileSystem::notify(Operation operation, const std::string& path) const {
    if (observer_) observer_(operation, path);
}

std::uint64_t FaultFileSystem::bytes_in_use() const {
    return std::accumulate(names_.begin(), names_.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const auto& entry) { return sum + entry.second->content.size(); });
}

void FaultFileSystem::change_node(Operation operation, Node& node, const std::string& path, Change change) {
    try {
        count_and_fail(operation, path);
    } catch (const os::FileError&) {
        if (fault_->half_written && change.bytes.size() > 1) {
            change.bytes.resize(change.bytes.size() / 2);
            apply(change, node.content);
            node.unsynced.push_back(std::move(change));
        }
        throw;
    }
    const std::uint64_t end = change.resize_to ? *change.resize_to : change.at + change.bytes.size();
    const std::uint64_t size = node.content.size();
    if (capacity_ && end > size && bytes_in_use() + (end - size) > *capacity_) {
        fail(verb_of(operation), path, os::FileFault::kDiskFull, "no space left");
    }
    apply(change, node.content);
    node.unsynced.push_back(std::move(change));
    notify(operation, path);
}

void FaultFileSystem::change_name(NameChange change) {
    apply(change, names_);
    unsynced_names_.push_back(std::move(change));
}

std::unique_ptr<os::File> FaultFileSystem::open(const std::string& path, os::OpenMode mode) {
    if (path.empty()) fail("open", path, os::FileFault::kBadPath, "no name");
    const auto found = names_.find(path);
    const bool is_there = found != names_.end();
    const bool may_create = mode == os::OpenMode::kCreateExclusive || mode == os::OpenMode::kCreateSide;
    count_and_fail(!is_there && may_create ? Operation::kCreate : Operation::kOpen, path);
    if (is_there && may_create) {
        fail("create", path, os::FileFault::kExists, "the file exists");
    }
    if (!is_there && !may_create) fail("open", path, os::FileFault::kNotFound, "no such file");

    const std::shared_ptr<Node> node = is_there ? found->second : std::make_shared<Node>();
    const bool reads = mode == os::OpenMode::kReadOnly;
    if ((reads && node->locked) || (mode == os::OpenMode::kExclusive && (node->locked || node->readers > 0))) {
        fail("lock", path, os::FileFault::kLocked, "the file is in use");
    }
    if (reads) ++node->readers;
    if (mode == os::OpenMode::kExclusive || mode == os::OpenMode::kCreateExclusive) node->locked = true;
    auto file = std::make_unique<OpenFile>(*this, node, path, mode);
    if (!is_there) {
        change_name({std::nullopt, path, node});
        notify(Operation::kCreate, path);
    }
    return file;
}

bool FaultFileSystem::exists(const std::string& path) { return names_.contains(path); }

void FaultFileSystem::remove(const std::string& path) {
    count_and_fail(Operation::kRemove, path);
    change_name({path, std::nullopt, find(path, "remove")});
    notify(Operation::kRemove, path);
}

void FaultFileSystem::rename(const std::string& from, const std::string& to) {
    count_and_fail(Operation::kRename, from);
    const std::shared_ptr<Node> node = find(from, "rename");
    if (names_.contains(to)) fail("rename to", to, os::FileFault::kExists, "the file exists");
    if (from != to) change_name({from, to, node});
    notify(Operation::kRename, from);
}

void FaultFileSystem::replace(const std::string& from, const std::string& to) {
    count_and_fail(Operation::kRename, from);
    change_name({from, to, find(from, "replace")});
    notify(Operation::kRename, from);
}

void FaultFileSystem::sync_folder_of(const std::string& path) {
    count_and_fail(Operation::kFolderSync, path);
    const std::string folder = os::folder_of(path);
    const auto is_in_folder = [&folder](const std::optional<std::string>& name) {
        return name && os::folder_of(*name) == folder;
    };
    std::erase_if(unsynced_names_, [&](const NameChange& change) {
        if (!is_in_folder(change.from) && !is_in_folder(change.to)) return false;
        apply(change, durable_names_);
        return true;
    });
    notify(Operation::kFolderSync, path);
}

std::vector<std::string> FaultFileSystem::longer_names(const std::string& path) {
    std::vector<std::string> longer;
    for (const auto& [name, node] : names_) {
        if (name.size() > path.size() && name.starts_with(path)) longer.push_back(name);
    }
    return longer;
}

std::uint64_t FaultFileSystem::change_count() const {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < kOperationCount; ++i) {
        if (is_change(static_cast<Operation>(i))) sum += counts_[i];
    }
    return sum;
}

void FaultFileSystem::plan(const Fault& fault) {
    fault_ = fault;
    faults_raised_ = 0;
}

std::unique_ptr<FaultFileSystem> FaultFileSystem::crash(CrashMode mode, std::uint32_t seed) const {
    std::mt19937 random(seed);
    Names found = mode == CrashMode::kKeepUnsynced ? names_ : durable_names_;
    if (mode == CrashMode::kTearUnsynced) {
        for (const NameChange& change : unsynced_names_) {
            if ((random() & 1u) != 0) apply(change, found);
        }
    }
    auto after = std::make_unique<FaultFileSystem>();
    for (const auto& [name, node] : found) {
        switch (mode) {
            case CrashMode::kKeepUnsynced: after->set_content(name, node->content); break;
            case CrashMode::kDropUnsynced: after->set_content(name, node->durable); break;
            case CrashMode::kTearUnsynced:
                after->set_content(name, torn(*node, static_cast<std::uint32_t>(random())));
                break;
        }
    }
    return after;
}

std::vector<std::uint8_t> FaultFileSystem::content(const std::string& path) const {
    return find(path, "look at")->content;
}

void FaultFileSystem::set_content(const std::string& path, std::vector<std::uint8_t> bytes) {
    std::shared_ptr<Node>& node = names_[path];
    if (!node) node = std::make_shared<Node>();
    node->content = bytes;
    node->durable = std::move(bytes);
    node->unsynced.clear();
    std::erase_if(unsynced_names_, [&](const NameChange& change) { return change.node == node; });
    durable_names_[path] = node;
}

std::vector<std::string> FaultFileSystem::names() const {
    std::vector<std::string> all;
    for (const auto& [name, node] : names_) all.push_back(name);
    return all;
}

bool FaultFileSystem::is_durable(const std::string& path) const {
    const auto now = names_.find(path);
    const auto later = durable_names_.find(path);
    return now != names_.end() && later != durable_names_.end() && now->second == later->second &&
           now->second->unsynced.empty();
}

}  // namespace testing_support
