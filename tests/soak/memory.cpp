// Refuses each allocation of a small day: one alone, eight in a row, or all from then on. The host continues; then
// memory is available again, and the studio is opened once more. The files are real ones.
#include <filesystem>
#include <fstream>

#include "db/database_files.h"
#include "tests/old_files/file_content.h"
#include "tests/soak/isolated.h"
#include "tests/soak/kind.h"
#include "tests/soak/refused_memory.h"
#include "tests/soak/static_studio.h"
#include "tests/soak/sweep.h"
#include "tests/support/temp_folder.h"

namespace soak {
namespace {

using namespace testing_support;

struct Pattern {
    const char* text;
    std::uint64_t count;
};
constexpr Pattern kPatterns[] = {
    {"one request refused", 1}, {"eight requests refused", 8}, {"all requests refused from then on", kFromThenOn}};

// Opens, adds, updates, lists, deletes and closes: on three tables of the day, one of the invoice file among them.
class SmallDay {
public:
    SmallDay(std::uint64_t day, Ledger& ledger) : day_(day), ledger_(ledger) {}

    void work_through(const Gates& gates) {
        if (gates.open() != S_OK && gates.open() != S_OK) {
            gates.close();
            return;
        }
        for (int i = 0; i < 3; ++i) {
            const std::size_t place = table_of(i);
            const GateTable& table = *gate_tables()[place];
            Operation operation{Operation::Kind::kAdd, static_cast<std::int32_t>(place), 0, 20 + i};
            LONG key = 0;
            const bool is_added = report(table.add(gates, operation.variant, key), operation, &key);
            table.read(gates);
            if (!is_added) continue;
            operation = {Operation::Kind::kUpdate, operation.table, key, 24 + i};
            report(table.update(gates, key, operation.variant), operation);
            operation.kind = Operation::Kind::kDelete;
            if (i != 1) report(table.remove(gates, key), operation);
        }
        gates.close();
    }

private:
    // Other tables each day.
    std::size_t table_of(int i) const {
        std::vector<std::size_t> places;
        for (std::size_t place = 0; place < gate_tables().size(); ++place) {
            const GateTable& table = *gate_tables()[place];
            if (table.is_single_row() || table.is_list()) continue;
            if (table.is_in_invoice_file() == (i == 2)) places.push_back(place);
        }
        return places[static_cast<std::size_t>(day_ * 2 + static_cast<std::uint64_t>(i)) % places.size()];
    }

    bool report(HRESULT result, Operation& operation, const LONG* key = nullptr) {
        if (result != S_OK) {
            ledger_.failed(operation);
            return false;
        }
        if (key != nullptr) operation.key = static_cast<std::int32_t>(*key);
        ledger_.succeeded(operation);
        return true;
    }

    std::uint64_t day_;
    Ledger& ledger_;
};

class Memory final : public Kind {
public:
    const char* name() const override { return "memory"; }
#ifdef __linux__
    std::string prepare() override {
        // The test examines the files, not the disk: many thousands of studios need a quick one.
        if (std::filesystem::is_directory("/dev/shm")) ::setenv("TMPDIR", "/dev/shm", 1);
        return {};
    }
#endif

    Outcome run(Seed seed, const std::string& kept) override {
        constexpr Seed kPointsLimit = 10000000;
        if (sweep_ == nullptr) sweep_ = std::make_unique<Sweep>(kPointsLimit);
        return sweep_->run(
            seed,
            [&](Seed day) {
                rows_after_opening(kStart);
                Outcome counted = isolated([&] { return work(day, 0, 0, kept); });
                counted.tried *= std::size(kPatterns);
                return counted;
            },
            [&](Seed day, Seed point) {
                const Pattern& pattern = kPatterns[point % std::size(kPatterns)];
                return isolated([&] { return work(day, point / std::size(kPatterns) + 1, pattern.count, kept); });
            });
    }

private:
    static constexpr Start kStart{Start::Origin::kWorkedOn, 0};

    // `first` 0: nothing is refused, and `tried` is the number of allocations.
    static Outcome work(Seed day, std::uint64_t first, std::uint64_t count, const std::string& kept) {
        const TempFolder folder;
        {
            FaultFileSystem disk;
            lay_out(kStart, disk);
            for (const char* const path : {kMainFile, kInvoiceFile}) {
                const auto bytes = disk.content(path);
                std::ofstream out(folder.file(std::filesystem::path(path).filename().string()), std::ios::binary);
                out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
            }
        }
        Outcome outcome;
        Ledger ledger(rows_after_opening(kStart));
        Gates gates = static_gates(folder.path());
        set_call_hooks({component_begins, component_ends});
        refuse_memory(first, count);
        SmallDay(day, ledger).work_through(gates);
        const std::uint64_t requests = memory_requests();
        const std::uint64_t refusals = memory_refusals();
        refuse_no_memory();
        set_call_hooks({});
        // Closing needs no memory: the files are unlocked now.
        gates = Gates();
        outcome.tried = first == 0 ? requests : 1;
        if (first != 0 && refusals == 0) outcome.failure = "nothing was refused; ";
        const Gates again = static_gates(folder.path());
        std::string reason;
        if (again.open(&reason) != S_OK) {
            outcome.failure += "the studio does not open again: " + reason;
        } else {
            outcome.failure += ledger.compare(read_all(again));
            again.close();
            for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) content_of(folder.file(name));
        }
        if (outcome.failure.empty() && !checks_failed()) return outcome;
        outcome.failure = "request " + std::to_string(first) + " and " + std::to_string(count - 1) +
                          " more refused: " + outcome.failure;
        keep_files(folder.path(), kept);
        return outcome;
    }

    std::unique_ptr<Sweep> sweep_;
};

}  // namespace

std::unique_ptr<Kind> make_memory() { return std::make_unique<Memory>(); }

}  // namespace soak
