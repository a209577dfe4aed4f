// Kills a host at random moments, again and again over the same studio: a new one that it is creating, one of an
// earlier version that it is upgrading, or one that it has used for a while.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <thread>

#include "tests/soak/host_process.h"
#include "tests/soak/kind.h"
#include "tests/soak/reference.h"
#include "tests/support/temp_folder.h"

namespace soak {
namespace {

namespace fs = std::filesystem;
using namespace testing_support;

constexpr int kLives = 6;
#ifdef _WIN32
constexpr std::uint32_t kLongestLife = 120000;  // microseconds; an emulator is slow
#else
constexpr std::uint32_t kLongestLife = 30000;
#endif

void write_file(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

// One studio and the lives of its hosts.
class Victim {
public:
    explicit Victim(Seed seed) : random_(static_cast<std::uint32_t>(seed)), seed_(static_cast<std::uint32_t>(seed)) {
        version_ = choose_version();
        if (version_ == 0) return;
        write_file(main_file(), old().main);
        write_file(invoice_file(), old().invoice);
    }

    const std::string& folder() const { return folder_.path(); }
    std::uint64_t kills() const { return kills_; }

    // "": every life left the studio as required; otherwise the failure.
    std::string live_and_die() {
        for (int life = 0; life < kLives; ++life) {
            const std::string where = "kill " + std::to_string(life + 1) + " of a studio " + origin() + ": ";
            if (std::string failure = one_life(); !failure.empty()) return where + failure;
            if (std::string failure = inspect(); !failure.empty()) return where + failure;
            if (checks_failed()) return where;
            if (is_half_upgraded_) break;  // used unchanged: tables are missing, which this kind does not test
        }
        return {};
    }

private:
    // One third of the studios start as old ones, half of these in Jet 3 files, one third as none at all, and the rest
    // are created undisturbed.
    std::int32_t choose_version() {
        const std::uint32_t choice = below(3);
        is_made_before_ = choice == 2;
        if (choice != 0) return 0;
        if (below(2) == 0) format_ = &jet::kJet3;
        return kOldVersions[below(std::size(kOldVersions))];
    }
    const OldStudio& old() const { return old_studio(version_, *format_); }
    std::string origin() const {
        if (version_ != 0) return std::string("of version ") + std::to_string(version_) + ", " + format_->name;
        return is_made_before_ ? "made undisturbed" : "being made";
    }
    std::string main_file() const { return folder_.file("sldb.mdb"); }
    std::string invoice_file() const { return folder_.file("kvinvdb.mdb"); }

    std::string one_life() {
        if (is_made_before_ && !ledger_) {
            if (std::string failure = inspect(); !failure.empty()) return failure;
        }
        under_way_.reset();
        was_opened_ = false;
        HostProcess host({folder(), seed_ * 1000 + static_cast<std::uint32_t>(kills_)});
        // The first report says that the library is loaded. From then on anything may be interrupted; every other time
        // within the first moments, during the opening.
        if (!host.listen()) return "the host did not start";
        const bool early = below(2) == 0;
        const std::uint32_t span = early ? kLongestLife / 4 : kLongestLife;
        std::this_thread::sleep_for(std::chrono::microseconds(below(span)));
        host.kill();
        ++kills_;
        std::string failure;
        while (const auto told = host.listen()) {
            if (std::string wrong = take_in(*told); failure.empty()) failure = wrong;
        }
        std::string how;
        if (!host.was_killed(how)) return "the host ended by itself with " + how + " " + failure;
        return failure;
    }

    std::string take_in(const Told& told) {
        switch (told.what) {
            case Told::kOpened: was_opened_ = true; break;
            case Told::kCannotOpen: return "the studio does not open";
            case Told::kBegun: under_way_ = told.operation; break;
            case Told::kFailed: return "an operation failed: " + describe(told.operation);
            case Told::kSucceeded:
                under_way_.reset();
                if (ledger_) {
                    ledger_->succeeded(told.operation);
                } else {
                    done_first_.push_back(told.operation);
                }
                break;
            case Told::kStarted:
            case Told::kClosed: break;
        }
        return {};
    }

    // As the first opening after a kill: the journal is replayed into the file.
    static Content recovered(const std::string& path) {
        jet::OpenOptions options;
        options.ignore_password = true;
        jet::Database::open(path, options)->close();
        return content_of(path);
    }

    std::string inspect() {
        if (version_ != 0) {
            if (std::string failure = inspect_upgrade(); !failure.empty() || is_half_upgraded_) return failure;
        }
        StudioRows rows;
        {
            const Component component(folder());
            const Gates gates = gates_of(component);
            std::string reason;
            if (gates.open(&reason) != S_OK) return "the studio does not open again: " + reason;
            rows = read_all(gates);
            if (std::string failure = compare_found(gates, rows); !failure.empty()) return failure;
            gates.close();
        }
        if (!ledger_) ledger_.emplace(first_rows(rows));
        for (const Operation& operation : done_first_) ledger_->succeeded(operation);
        done_first_.clear();
        if (under_way_) ledger_->failed(*under_way_);
        if (std::string failure = ledger_->compare(rows); !failure.empty()) return failure;
        ledger_->settle(rows);
        return inspect_files();
    }

    // The content of a studio before the first operation. If the first life has already worked, the content of an
    // undisturbed studio of the same origin.
    StudioRows first_rows(const StudioRows& found) {
        if (is_made_before_) return found;
        const TempFolder undisturbed;
        if (version_ != 0) {
            write_file(undisturbed.file("sldb.mdb"), old().main);
            write_file(undisturbed.file("kvinvdb.mdb"), old().invoice);
        }
        const Component component(undisturbed.path());
        const Gates gates = gates_of(component);
        gates.open();
        StudioRows rows = read_all(gates);
        gates.close();
        return rows;
    }

    // Found by its key, each row equals the enumeration's.
    static std::string compare_found(const Gates& gates, const StudioRows& rows) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const GateTable& table = *gate_tables()[i];
            if (table.is_list()) continue;
            for (const auto& [key, text] : rows[i]) {
                RowText found;
                if (table.find(gates, key, found) != S_OK || found != text) {
                    return std::string(table.name()) + " " + std::to_string(key) + " is found otherwise than listed";
                }
            }
        }
        return {};
    }

    // The files alone, before a gate opens them: between two steps, and at the last step if the opening had succeeded.
    std::string inspect_upgrade() {
        if (ledger_) return {};
        const OldStudio& old = this->old();
        const Content main = recovered(main_file());
        const Content invoice = recovered(invoice_file());
        const bool main_done = main == old.main_steps.back();
        const bool invoice_done = invoice == old.invoice_steps.back();
        const bool has_worked = !done_first_.empty() || under_way_;
        if (was_opened_ && !has_worked && !(main_done && invoice_done))
            return "an upgrade that had succeeded is not there";
        if (has_worked) return {};  // the gates show it
        if (std::string text = difference_to_nearest(old.main_steps, main); !text.empty()) return "sldb.mdb: " + text;
        if (std::string text = difference_to_nearest(old.invoice_steps, invoice); !text.empty()) {
            return "kvinvdb.mdb: " + text;
        }
        const bool main_waits = main == old.main_steps.front();
        const bool invoice_waits = invoice == old.invoice_steps.front();
        is_half_upgraded_ = !(main_done || main_waits) || !(invoice_done || invoice_waits);
        if (!is_half_upgraded_) return {};
        const Component component(folder());
        const Gates gates = gates_of(component);
        std::string reason;
        if (gates.open(&reason) != S_OK) return "a studio between two steps does not open: " + reason;
        gates.close();
        return {};
    }

    // Sound, and no other files beside them.
    std::string inspect_files() const {
        for (const std::string& path : {main_file(), invoice_file()}) content_of(path);  // reports damage
        const std::set<std::string> expected{"sldb.mdb", "kvinvdb.mdb", fs::path(KVDB_LIBRARY).filename().string()};
        for (const auto& entry : fs::directory_iterator(folder())) {
            const std::string name = entry.path().filename().string();
            if (!expected.contains(name)) return "left behind: " + name;
        }
        return {};
    }

    std::uint32_t below(std::size_t count) { return static_cast<std::uint32_t>(random_() % count); }

    std::mt19937 random_;
    std::uint32_t seed_;
    TempFolder folder_;
    std::int32_t version_ = 0;                 // 0: a new studio
    const jet::Format* format_ = &jet::kJet4;  // of an old studio
    bool is_made_before_ = false;
    bool is_half_upgraded_ = false;
    bool was_opened_ = false;
    std::uint64_t kills_ = 0;
    std::optional<Ledger> ledger_;
    std::vector<Operation> done_first_;  // before the ledger existed
    std::optional<Operation> under_way_;
};

class Kills final : public Kind {
public:
    const char* name() const override { return "kills"; }
    Outcome run(Seed seed, const std::string& kept) override {
        Victim victim(seed);
        Outcome outcome;
        outcome.failure = victim.live_and_die();
        outcome.tried = victim.kills();
        if (!outcome.failure.empty() || checks_failed()) keep_files(victim.folder(), kept);
        return outcome;
    }
};

}  // namespace

std::unique_ptr<Kind> make_kills() { return std::make_unique<Kills>(); }

}  // namespace soak
