// Two, four or eight threads of one host, each with its own gates to the same studio: no row is lost, and both files
// are sound.
#include <filesystem>
#include <thread>

#include "tests/old_files/file_content.h"
#include "tests/soak/host_life.h"
#include "tests/soak/isolated.h"
#include "tests/soak/kind.h"

namespace soak {
namespace {

using namespace testing_support;

constexpr int kThreadSteps = 60;

// A thread's part of the studio: every n-th table, so that its ledger alone judges that table.
class Part {
public:
    Part(const Component& component, std::size_t number, std::size_t parts)
        : component_(component), number_(number), parts_(parts) {}

    void work(std::uint32_t seed) {
        gates_ = gates_of(component_);
        const Gates& gates = gates_;
        // The studio is open; this only attaches the gates.
        if (gates.main->CreateDB(nullptr) != S_OK) return fail("CreateDB");
        if (gates.gear2->OpenDB() != S_OK || gates.gear3->OpenDB() != S_OK) return fail("OpenDB");
        std::mt19937 random(seed);
        std::vector<std::map<LONG, int>> rows(gate_tables().size());
        for (int i = 0; i < kThreadSteps; ++i) {
            const std::size_t mine = gate_tables().size() / parts_;
            const std::size_t place = number_ + parts_ * (random() % mine);
            const GateTable& table = *gate_tables()[place];
            if (table.is_single_row() || table.is_list() || table.holds_names_once()) continue;
            const int variant = 1 + static_cast<int>(random() % kVariants);
            if (rows[place].size() < 3) {
                LONG key = 0;
                if (table.add(gates, variant, key) != S_OK) return fail(std::string("adding to ") + table.name());
                if (!rows[place].emplace(key, variant).second) return fail("one key given twice");
                done_.push_back(
                    {Operation::Kind::kAdd, static_cast<std::int32_t>(place), static_cast<std::int32_t>(key), variant});
            } else {
                const auto row = rows[place].begin();
                const bool removes = random() % 3 == 0;
                const HRESULT result =
                    removes ? table.remove(gates, row->first) : table.update(gates, row->first, variant);
                if (result != S_OK) return fail((removes ? "deleting from " : "updating ") + std::string(table.name()));
                done_.push_back({removes ? Operation::Kind::kDelete : Operation::Kind::kUpdate,
                                 static_cast<std::int32_t>(place), static_cast<std::int32_t>(row->first), variant});
                if (removes) rows[place].erase(row);
            }
            table.read(gates);
        }
    }

    const std::string& failure() const { return failure_; }
    const std::vector<Operation>& done() const { return done_; }

private:
    void fail(const std::string& what) {
        failure_ = "thread " + std::to_string(number_) + ": " + what + " failed after " + std::to_string(done_.size()) +
                   " operations";
    }

    const Component& component_;
    Gates gates_;  // until all threads have ended: releasing a gear gate closes the studio for everybody
    std::size_t number_;
    std::size_t parts_;
    std::string failure_;
    std::vector<Operation> done_;
};

class Threads final : public Kind {
public:
    const char* name() const override { return "threads"; }
    Outcome run(Seed seed, const std::string& kept) override {
        const TempFolder folder;
        const std::size_t count = std::size_t{2} << seed % 3;
        Outcome outcome = isolated([&] {
            Outcome result;
            const Component component(folder.path());
            const Gates gates = gates_of(component);
            if (gates.open() != S_OK) throw std::runtime_error("the studio does not open");
            Ledger ledger(read_all(gates));
            std::vector<Part> parts;
            for (std::size_t i = 0; i < count; ++i) parts.emplace_back(component, i, count);
            std::vector<std::thread> threads;
            for (std::size_t i = 0; i < count; ++i) {
                threads.emplace_back([&, i] { parts[i].work(static_cast<std::uint32_t>(seed * 8 + i)); });
            }
            for (std::thread& thread : threads) thread.join();
            result.tried = count;
            for (const Part& part : parts) {
                result.failure += part.failure();
                for (const Operation& operation : part.done()) ledger.succeeded(operation);
            }
            parts.clear();
            gates.close();
            if (gates.open() != S_OK) throw std::runtime_error("the studio does not open again");
            result.failure += ledger.compare(read_all(gates));
            gates.close();
            for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) content_of(folder.file(name));
            return result;
        });
        if (!outcome.failure.empty()) {
            outcome.failure = std::to_string(count) + " threads: " + outcome.failure;
            keep_files(folder.path(), kept);
        }
        return outcome;
    }
};

}  // namespace

std::unique_ptr<Kind> make_threads() { return std::make_unique<Threads>(); }

}  // namespace soak
