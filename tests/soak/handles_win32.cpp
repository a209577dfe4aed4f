// Another program holds the files of a studio for moments, in changing share modes, as scanners, indexers and backups
// do, while a host opens, works and closes. Every operation succeeds, or the opening reports that the file is in use;
// nothing reported is lost.
#include <atomic>
#include <filesystem>
#include <optional>
#include <random>
#include <thread>

#include "tests/old_files/file_content.h"
#include "tests/soak/host_process.h"
#include "tests/soak/kind.h"
#include "tests/support/temp_folder.h"

namespace soak {
namespace {

using namespace testing_support;

constexpr int kHandleSessions = 4;
constexpr int kHandleSteps = 12;

struct Share {
    const char* text;
    DWORD access;
    DWORD share;
};
constexpr DWORD kEverything = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr Share kShares[] = {
    {"reading, sharing everything", GENERIC_READ, kEverything},
    {"reading, sharing reading", GENERIC_READ, FILE_SHARE_READ},
    {"reading, sharing reading and writing", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE},
    {"reading, sharing nothing", GENERIC_READ, 0},
    {"attributes only", FILE_READ_ATTRIBUTES, kEverything},
    {"about to delete nothing", DELETE, kEverything},
};

// A thread that holds handles for less than half a second each. It may be in the same process: the system applies share
// modes between handles.
class PasserBy {
public:
    PasserBy(const std::string& folder, std::uint32_t seed) : folder_(folder), thread_([this, seed] { pass(seed); }) {}
    ~PasserBy() {
        ends_ = true;
        thread_.join();
    }
    std::uint64_t held() const { return held_; }

private:
    void pass(std::uint32_t seed) {
        constexpr const char* kNames[] = {"sldb.mdb", "kvinvdb.mdb", "sldb.mdb-journal", "kvinvdb.mdb-journal"};
        std::mt19937 random(seed);
        while (!ends_) {
            const Share& share = kShares[random() % std::size(kShares)];
            const std::string path = folder_ + "\\" + kNames[random() % std::size(kNames)];
            const HANDLE handle =
                CreateFileA(path.c_str(), share.access, share.share, nullptr, OPEN_EXISTING, 0, nullptr);
            if (handle == INVALID_HANDLE_VALUE) {
                Sleep(1 + random() % 5);
                continue;
            }
            Sleep(random() % 300);
            CloseHandle(handle);
            ++held_;
            Sleep(100 + random() % 50);
        }
    }

    const std::string folder_;
    std::atomic<bool> ends_{false};
    std::atomic<std::uint64_t> held_{0};
    std::thread thread_;
};

class Handles final : public Kind {
public:
    const char* name() const override { return "handles"; }

    Outcome run(Seed seed, const std::string& kept) override {
        const TempFolder folder;
        Outcome outcome;
        outcome.failure = work(folder.path(), static_cast<std::uint32_t>(seed), outcome.tried);
        if (!outcome.failure.empty() || checks_failed()) keep_files(folder.path(), kept);
        return outcome;
    }

private:
    class Judge final : public Witness {
    public:
        explicit Judge(Ledger& ledger) : ledger_(ledger) {}
        void begun(const Operation&) override {}
        void succeeded(const Operation& operation) override { ledger_.succeeded(operation); }
        void failed(const Operation& operation) override { failure += " failed: " + describe(operation) + ";"; }
        std::string failure;

    private:
        Ledger& ledger_;
    };

    static std::string work(const std::string& folder, std::uint32_t seed, std::uint64_t& held) {
        const Component component(folder);
        const Gates gates = gates_of(component);
        std::optional<Ledger> ledger;
        std::string failure;
        {
            const PasserBy passer_by(folder, seed);
            for (std::uint32_t session = 0; session < kHandleSessions && failure.empty(); ++session) {
                std::string reason;
                if (gates.open(&reason) != S_OK) {
                    failure = "session " + std::to_string(session) + " does not open: " + reason;
                    break;
                }
                const StudioRows rows = read_all(gates);
                if (!ledger) ledger.emplace(rows);
                failure = ledger->compare(rows);
                Judge judge(*ledger);
                Day day(seed * 16 + session, rows);
                for (int i = 0; i < kHandleSteps; ++i) day.step(gates, judge);
                failure += judge.failure;
                gates.close();
            }
            held = passer_by.held();
        }
        if (!failure.empty()) return failure;
        // No other handles from here on.
        std::string reason;
        if (gates.open(&reason) != S_OK) return "does not open afterwards: " + reason;
        failure = ledger->compare(read_all(gates));
        gates.close();
        for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) content_of(folder + "\\" + name);
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string left = entry.path().filename().string();
            if (left.find(".mdb-") != std::string::npos) failure += " left behind: " + left;
        }
        return failure;
    }
};

}  // namespace

std::unique_ptr<Kind> make_handles() { return std::make_unique<Handles>(); }

}  // namespace soak
