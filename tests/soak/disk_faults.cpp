// Refuses each disk operation of a studio's day: once, or from then on. The host continues as hosts do, and retries a
// failed opening. Then the disk works again and the studio is opened once more.
#include <filesystem>
#include <fstream>

#include "tests/old_files/file_content.h"
#include "tests/soak/isolated.h"
#include "tests/soak/kind.h"
#include "tests/soak/reference.h"
#include "tests/soak/static_studio.h"
#include "tests/soak/sweep.h"

namespace soak {
namespace {

using namespace testing_support;

constexpr int kFaultSessions = 2;
constexpr int kFaultSteps = 14;

// How a point's operation is refused.
struct Pattern {
    const char* text;
    std::optional<testing_support::Operation> operation;
    Fault fault;
};
const std::vector<Pattern>& patterns() {
    using Disk = testing_support::Operation;
    using os::FileFault;
    static const std::vector<Pattern> all = {
        {"change refused once", {}, {.fault = FileFault::kIo}},
        {"change refused from then on", {}, {.fault = FileFault::kIo, .lasting = true}},
        {"disk full once, half written", {}, {.fault = FileFault::kDiskFull, .half_written = true}},
        {"disk full from then on", {}, {.fault = FileFault::kDiskFull, .lasting = true, .half_written = true}},
        {"read refused once", Disk::kRead, {.fault = FileFault::kIo}},
        {"read refused from then on", Disk::kRead, {.fault = FileFault::kIo, .lasting = true}},
        {"opening refused once", Disk::kOpen, {.fault = FileFault::kIo}},
        {"opening refused from then on", Disk::kOpen, {.fault = FileFault::kIo, .lasting = true}},
    };
    return all;
}

class Scribe final : public Witness {
public:
    explicit Scribe(Ledger& ledger) : ledger_(ledger) {}
    void begun(const Operation&) override {}
    void succeeded(const Operation& operation) override { ledger_.succeeded(operation); }
    void failed(const Operation& operation) override {
        ledger_.failed(operation);
        ++failures_;
    }
    int failures() const { return failures_; }

private:
    Ledger& ledger_;
    int failures_ = 0;
};

// Runs the day on the file system in use. Also collects what the gates read before the last closing.
void work_through(std::uint32_t seed, const Start& start, FaultFileSystem& disk, Witness& witness,
                  const std::function<void(const Gates&)>& before_closing) {
    const Gates gates = static_gates(kStudioFolder);
    Day day(seed, rows_after_opening(start));
    // A failed step of the upgrade is left out for good, and operations would meet tables that lack columns.
    const int steps = start.origin == Start::Origin::kOld ? 0 : kFaultSteps;
    for (int session = 0; session < kFaultSessions; ++session) {
        const bool is_open = gates.open() == S_OK || gates.open() == S_OK;
        for (int i = 0; i < steps; ++i) {
            disk.clock().advance(std::chrono::milliseconds(day.random(3) == 0 ? 300 : 1));
            day.step(gates, witness);
        }
        if (is_open) before_closing(gates);
        gates.close();
    }
}

std::uint64_t points_of(const FaultFileSystem& disk, const Pattern& pattern) {
    return pattern.operation ? disk.count(*pattern.operation) : disk.change_count();
}

class DiskFaults final : public Kind {
public:
    const char* name() const override { return "faults"; }
    Outcome run(Seed seed, const std::string& kept) override {
        constexpr Seed kPointsLimit = 1000000;
        if (sweep_ == nullptr) sweep_ = std::make_unique<Sweep>(kPointsLimit);
        return sweep_->run(
            seed, [&](Seed day) { return count(day); },
            [&](Seed day, Seed point) { return isolated([&] { return disturb(day, point, kept); }); });
    }

private:
    // The undisturbed day; counts its disk operations for the points.
    Outcome count(Seed day) {
        counts_.clear();
        const Start start = start_of_day(day);
        rows_after_opening(start);
        FaultFileSystem disk;
        lay_out(start, disk);
        Outcome outcome;
        const UseFileSystem use(disk);
        Ledger ledger(rows_after_opening(start));
        Scribe scribe(ledger);
        work_through(static_cast<std::uint32_t>(day), start, disk, scribe, [](const Gates&) {});
        for (const Pattern& pattern : patterns()) {
            counts_.push_back(points_of(disk, pattern));
            outcome.tried += counts_.back();
        }
        if (scribe.failures() != 0) outcome.failure = "operations failed";
        outcome.failure += judge(ledger);
        return outcome;
    }

    Outcome disturb(Seed day, Seed point, const std::string& kept) {
        std::size_t place = 0;
        while (point >= counts_[place]) point -= counts_[place++];
        const Pattern& pattern = patterns()[place];
        Fault fault = pattern.fault;
        fault.operation = pattern.operation;
        fault.nth = point + 1;
        const Start start = start_of_day(day);
        FaultFileSystem disk;
        lay_out(start, disk);
        Outcome outcome;
        outcome.tried = 1;
        {
            const UseFileSystem use(disk);
            Ledger ledger(rows_after_opening(start));
            Scribe scribe(ledger);
            disk.plan(fault);
            std::string seen;
            work_through(static_cast<std::uint32_t>(day), start, disk, scribe, [&](const Gates& gates) {
                if (fault.lasting || disk.faults_raised() == 0 || !seen.empty()) return;
                if (start.origin == Start::Origin::kOld) return;
                seen = ledger.compare(read_all(gates));
                if (!seen.empty()) seen = "before closing: " + seen;
            });
            if (disk.faults_raised() == 0) outcome.failure = "the fault did not come; ";
            disk.clear_faults();
            outcome.failure += seen;
            outcome.failure += start.origin == Start::Origin::kOld ? judge_old(start) : judge(ledger);
        }
        if (outcome.failure.empty() && !checks_failed()) return outcome;
        outcome.failure =
            start.text() + ", " + pattern.text + " at " + std::to_string(fault.nth) + ": " + outcome.failure;
        std::filesystem::create_directories(kept);
        for (const std::string& path : disk.names()) {
            const auto bytes = disk.content(path);
            std::ofstream out(std::filesystem::path(kept) / std::filesystem::path(path).filename(), std::ios::binary);
            out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        }
        return outcome;
    }

    // Whatever step the upgrade reached: both files open, are sound, and no table has lost rows.
    static std::string judge_old(const Start& start) {
        std::string failure;
        rows_on_disk(failure);
        if (!failure.empty()) return failure;
        const OldStudio& old = old_studio(start.version, *start.format);
        for (const auto& [path, before] :
             {std::pair{kMainFile, &old.main_steps.front()}, std::pair{kInvoiceFile, &old.invoice_steps.front()}}) {
            const Content now = content_of(path);
            for (const auto& [name, table] : *before) {
                const auto found = now.find(name);
                if (found == now.end() || found->second.rows.size() < table.rows.size())
                    failure += name + " lost rows; ";
            }
        }
        return failure;
    }

    std::unique_ptr<Sweep> sweep_;
    std::vector<std::uint64_t> counts_;  // points by pattern
};

}  // namespace

std::unique_ptr<Kind> make_disk_faults() { return std::make_unique<DiskFaults>(); }

}  // namespace soak
