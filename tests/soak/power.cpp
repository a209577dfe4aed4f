// Cuts the power after each change of the disk in a studio's day: with nothing unsynced on the disk, with all
// of it, and with a random part of its sectors. A component without any memory of the day opens the resulting disk.
//
// Required in each of the two files: everything up to its last sync point, everything that succeeded
// more than a quarter of a second ago, and then all operations up to some later one. A sync point is the first
// operation after an opening, one a quarter of a second or more after the previous one, and the closing.
#include <sys/mman.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/soak/isolated.h"
#include "tests/soak/kind.h"
#include "tests/soak/reference.h"
#include "tests/soak/static_studio.h"
#include "tests/soak/sweep.h"

namespace soak {
namespace {

using namespace testing_support;

constexpr int kPowerSessions = 2;
constexpr int kPowerSteps = 16;
constexpr std::chrono::milliseconds kSyncInterval{250};

// One operation of the day, as far as it had got at the cut.
struct Entry {
    Operation operation;
    std::uint32_t has_succeeded = 0;
    std::uint32_t is_sync_point = 0;  // together with all before it in the same file
    os::TimePoint at = {};            // of its success
};

// The state of knowledge at the cut.
struct Log {
    std::vector<Entry> entries;
    std::uint32_t is_opened = 0;
    os::TimePoint now = {};
};

struct Cut {
    CrashMode mode = CrashMode::kKeepUnsynced;
    std::map<std::string, std::vector<std::uint8_t>> files;
};

const char* text_of(CrashMode mode) {
    switch (mode) {
        case CrashMode::kKeepUnsynced: return "all kept";
        case CrashMode::kDropUnsynced: return "nothing unsynced kept";
        case CrashMode::kTearUnsynced: return "a part kept";
    }
    return "";
}

// Memory shared by a process and its fork: one writes and exits, the other reads.
class SharedMemory {
public:
    SharedMemory()
        : memory_(static_cast<std::uint8_t*>(
              ::mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))) {
        if (memory_ == MAP_FAILED) throw std::runtime_error("no shared memory");
    }
    ~SharedMemory() { ::munmap(memory_, kBytes); }
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    template <class Number>
    void put(Number number) {
        put_bytes(&number, sizeof number);
    }
    template <class Number>
    Number get() {
        Number number;
        get_bytes(&number, sizeof number);
        return number;
    }
    void put_bytes(const void* bytes, std::size_t count) {
        if (count > kBytes - at_) throw std::runtime_error("the disk is too large for the shared memory");
        std::memcpy(memory_ + at_, bytes, count);
        at_ += count;
    }
    void get_bytes(void* bytes, std::size_t count) {
        std::memcpy(bytes, memory_ + at_, count);
        at_ += count;
    }

private:
    static constexpr std::size_t kBytes = 256u << 20;
    std::uint8_t* memory_;
    std::size_t at_ = 0;
};

void put(SharedMemory& memory, const Log& log, const std::vector<Cut>& cuts) {
    memory.put(log.is_opened);
    memory.put(log.now);
    memory.put(log.entries.size());
    for (const Entry& entry : log.entries) memory.put(entry);
    memory.put(cuts.size());
    for (const Cut& cut : cuts) {
        memory.put(cut.mode);
        memory.put(cut.files.size());
        for (const auto& [name, bytes] : cut.files) {
            memory.put(name.size());
            memory.put_bytes(name.data(), name.size());
            memory.put(bytes.size());
            memory.put_bytes(bytes.data(), bytes.size());
        }
    }
}

void get(SharedMemory& memory, Log& log, std::vector<Cut>& cuts) {
    log.is_opened = memory.get<std::uint32_t>();
    log.now = memory.get<os::TimePoint>();
    log.entries.resize(memory.get<std::size_t>());
    for (Entry& entry : log.entries) entry = memory.get<Entry>();
    cuts.resize(memory.get<std::size_t>());
    for (Cut& cut : cuts) {
        cut.mode = memory.get<CrashMode>();
        for (auto count = memory.get<std::size_t>(); count > 0; --count) {
            std::string name(memory.get<std::size_t>(), ' ');
            memory.get_bytes(name.data(), name.size());
            std::vector<std::uint8_t> bytes(memory.get<std::size_t>());
            memory.get_bytes(bytes.data(), bytes.size());
            cut.files[name] = std::move(bytes);
        }
    }
}

// Keeps the log during the day.
class Recorder final : public Witness {
public:
    explicit Recorder(ManualClock& clock) : clock_(clock) {}
    void opened() {
        log_.is_opened = 1;
        for (auto& gap : since_last_) gap = kSyncInterval;
    }
    void closed() {
        for (Entry& entry : log_.entries) entry.is_sync_point = entry.has_succeeded;
    }
    void time_passed(std::chrono::milliseconds span) {
        for (auto& gap : since_last_) gap += span;
        clock_.advance(span);
    }

    void begun(const Operation& operation) override { log_.entries.push_back({operation, 0, 0, {}}); }
    void succeeded(const Operation& operation) override {
        auto& gap = since_last_[gate_tables()[static_cast<std::size_t>(operation.table)]->is_in_invoice_file()];
        log_.entries.back() = {operation, 1, gap >= kSyncInterval, clock_.now()};
        gap = {};
    }
    void failed(const Operation& operation) override { throw std::runtime_error("failed: " + describe(operation)); }
    Log log() const {
        Log log = log_;
        log.now = clock_.now();
        return log;
    }

private:
    ManualClock& clock_;
    Log log_;
    std::chrono::milliseconds since_last_[2]{};  // since the file's last operation
};

// Runs the day with the recorder. Calls `cut` after each change of the disk and each time step.
void work_through(std::uint32_t seed, const Start& start, Recorder& recorder, FaultFileSystem& disk,
                  const std::function<void()>& cut) {
    const StudioRows& rows = rows_after_opening(start);
    lay_out(start, disk);
    const UseFileSystem use(disk);
    const Gates gates = static_gates(kStudioFolder);
    disk.set_observer([&](testing_support::Operation, const std::string&) { cut(); });
    Day day(seed, rows);
    for (int session = 0; session < kPowerSessions; ++session) {
        std::string reason;
        if (gates.open(&reason) != S_OK) throw std::runtime_error("the studio does not open: " + reason);
        recorder.opened();
        for (int i = 0; i < kPowerSteps; ++i) {
            recorder.time_passed(std::chrono::milliseconds(day.random(3) == 0 ? 300 : day.random(120)));
            cut();
            day.step(gates, recorder);
        }
        gates.close();
        recorder.closed();
    }
    disk.set_observer({});
}

std::vector<const Entry*> entries_of(const Log& log, bool invoice_file) {
    std::vector<const Entry*> entries;
    for (const Entry& entry : log.entries) {
        const auto place = static_cast<std::size_t>(entry.operation.table);
        if (gate_tables()[place]->is_in_invoice_file() == invoice_file) entries.push_back(&entry);
    }
    return entries;
}

// How many of the file's operations must be there, counted from the first of the day.
std::size_t sure_operations(const Log& log, CrashMode mode, bool invoice_file) {
    const std::vector<const Entry*> entries = entries_of(log, invoice_file);
    std::size_t sure = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Entry& entry = *entries[i];
        if (entry.has_succeeded == 0) continue;
        const bool is_kept = mode == CrashMode::kKeepUnsynced;
        if (is_kept || entry.is_sync_point != 0 || entry.at + kSyncInterval < log.now) sure = i + 1;
    }
    return sure;
}

// "" when the file has the content after some number of operations that includes the sure ones.
std::string compare(const Start& start, const Log& log, CrashMode mode, const StudioRows& found, bool invoice_file) {
    const std::vector<const Entry*> entries = entries_of(log, invoice_file);
    const std::size_t sure = sure_operations(log, mode, invoice_file);
    Ledger ledger(rows_after_opening(start));
    std::string nearest;
    for (std::size_t count = 0;; ++count) {
        if (count >= sure) {
            Ledger state = ledger;
            const std::string text = state.compare(found, invoice_file);
            if (text.empty()) return {};
            nearest = text;
            if (count < entries.size() && entries[count]->has_succeeded == 0) {
                state.failed(entries[count]->operation);  // in progress
                if (state.compare(found, invoice_file).empty()) return {};
            }
        }
        if (count == entries.size()) break;
        if (entries[count]->has_succeeded == 0) break;
        ledger.succeeded(entries[count]->operation);
    }
    return std::string(invoice_file ? "kvinvdb.mdb" : "sldb.mdb") + ": none of the states after " +
           std::to_string(sure) + " operations or more; the last differs in " + nearest;
}

bool is_between_steps(const char* path, const std::vector<Content>& steps, std::string& difference) {
    jet::OpenOptions options;
    options.ignore_password = true;
    jet::Database::open(path, options)->close();
    difference = difference_to_nearest(steps, content_of(path));
    return difference.empty();
}

Outcome judge_cut(const Start& start, const Log& log, const Cut& cut) {
    Outcome outcome;
    outcome.tried = 1;
    FaultFileSystem disk;
    for (const auto& [name, bytes] : cut.files) disk.set_content(name, bytes);
    const UseFileSystem use(disk);
    // In an older studio during or just after its opening, each file is between two of the steps; checked before a gate
    // opens it, because that completes the upgrade.
    bool is_upgrade_cut[2] = {};
    if (start.origin == Start::Origin::kOld) {
        const OldStudio& old = old_studio(start.version, *start.format);
        std::string difference;
        is_upgrade_cut[0] = is_between_steps(kMainFile, old.main_steps, difference);
        if (!is_upgrade_cut[0] && log.is_opened == 0) outcome.failure += "sldb.mdb: " + difference;
        is_upgrade_cut[1] = is_between_steps(kInvoiceFile, old.invoice_steps, difference);
        if (!is_upgrade_cut[1] && log.is_opened == 0) outcome.failure += "kvinvdb.mdb: " + difference;
    }
    std::string failure;
    const StudioRows found = rows_on_disk(failure);
    outcome.failure += failure;
    for (const bool invoice_file : {false, true}) {
        if (!outcome.failure.empty()) break;
        const bool may_be_older = is_upgrade_cut[invoice_file] && sure_operations(log, cut.mode, invoice_file) == 0;
        if (!may_be_older) outcome.failure += compare(start, log, cut.mode, found, invoice_file);
    }
    check_structures();
    for (const std::string& name : disk.names()) {
        // A journal whose header did not reach the disk is set aside.
        const bool may_stay = cut.mode != CrashMode::kKeepUnsynced && name.ends_with("-journal-set-aside");
        if (name != kMainFile && name != kInvoiceFile && !may_stay) outcome.failure += " left behind: " + name;
    }
    return outcome;
}

class Power final : public Kind {
public:
    const char* name() const override { return "power"; }
    Outcome run(Seed seed, const std::string& kept) override {
        constexpr Seed kPointsLimit = 100000;
        if (sweep_ == nullptr) sweep_ = std::make_unique<Sweep>(kPointsLimit);
        return sweep_->run(
            seed, [](Seed day) { return count(day); },
            [&](Seed day, Seed point) { return cut_at(day, point + 1, kept); });
    }

private:
    static Outcome count(Seed day) {
        const Start start = start_of_day(day);
        rows_after_opening(start);
        return isolated([&] {
            Outcome outcome;
            FaultFileSystem disk;
            Recorder recorder(disk.clock());
            work_through(static_cast<std::uint32_t>(day), start, recorder, disk, [&] { ++outcome.tried; });
            return outcome;
        });
    }

    static Outcome cut_at(Seed day, Seed change, const std::string& kept) {
        const Start start = start_of_day(day);
        SharedMemory memory;
        // The host, up to the cut.
        Outcome outcome = isolated([&]() -> Outcome {
            FaultFileSystem disk;
            Recorder recorder(disk.clock());
            Seed changes = 0;
            work_through(static_cast<std::uint32_t>(day), start, recorder, disk, [&] {
                if (++changes == change) put(memory, recorder.log(), cuts_of(disk, change));
            });
            if (changes < change) throw std::runtime_error("the day is shorter than the last time");
            return {};
        });
        if (!outcome.failure.empty()) return outcome;
        Log log;
        std::vector<Cut> cuts;
        get(memory, log, cuts);
        for (const Cut& cut : cuts) {
            const Outcome judged = isolated([&] { return judge_cut(start, log, cut); });
            ++outcome.tried;
            if (judged.failure.empty()) continue;
            outcome.failure = start.text() + ", power cut after change " + std::to_string(change) + ", " +
                              text_of(cut.mode) + ": " + judged.failure;
            keep(cut, kept);
            break;
        }
        return outcome;
    }

    static std::vector<Cut> cuts_of(const FaultFileSystem& disk, Seed change) {
        std::vector<Cut> cuts;
        const auto take = [&](CrashMode mode, std::uint32_t seed) {
            const auto after = disk.crash(mode, seed);
            Cut cut{mode, {}};
            for (const std::string& name : after->names()) cut.files[name] = after->content(name);
            cuts.push_back(std::move(cut));
        };
        take(CrashMode::kKeepUnsynced, 0);
        take(CrashMode::kDropUnsynced, 0);
        for (std::uint32_t i = 0; i < 3; ++i)
            take(CrashMode::kTearUnsynced, static_cast<std::uint32_t>(change) * 8 + i);
        return cuts;
    }

    static void keep(const Cut& cut, const std::string& kept) {
        std::filesystem::create_directories(kept);
        for (const auto& [path, bytes] : cut.files) {
            std::ofstream out(std::filesystem::path(kept) / std::filesystem::path(path).filename(), std::ios::binary);
            out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        }
    }

    std::unique_ptr<Sweep> sweep_;
};

}  // namespace

std::unique_ptr<Kind> make_power() { return std::make_unique<Power>(); }

}  // namespace soak
