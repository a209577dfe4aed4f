// Upgrades on a disk that fails and loses power: the result is true, the file stays sound, and after a power loss it is
// as it was between two steps.
#include <chrono>
#include <functional>
#include <set>
#include <thread>

#include "db/session.h"
#include "tests/db/upgrade/upgrade_fixture.h"
#include "tests/support/fault_file_system.h"
#include "tests/support/figures.h"

namespace {

using namespace testing_support;

constexpr char kFolder[] = "/studio";
constexpr char kStudio[] = "/studio/sldb.mdb";
constexpr char kInvoices[] = "/studio/kvinvdb.mdb";

constexpr StudioSize kSmall = {
    .projects = 3, .songs = 12, .tracks = 6, .sessions = 25, .engineers = 3, .contacts = 5, .invoices = 6};

// Which of the two files a test works on.
struct Subject {
    OldFile::Kind kind;
    const char* path;
    std::span<const db::UpgradeStep> steps;
    int upgrade(CDaoDatabase& database) const {
        if (kind == OldFile::Kind::kStudio) return db::upgrade_main_file(database);
        try {
            return db::upgrade_invoice_file(database, db::stored_version(database));
        } catch (CDaoException* e) {
            e->Delete();  // as the opening of a studio does
            return -1;
        }
    }
};

std::vector<Subject> subjects() {
    return {{OldFile::Kind::kStudio, kStudio, db::studio_upgrade()},
            {OldFile::Kind::kInvoice, kInvoices, db::invoice_upgrade()}};
}

class UpgradeDisk : public ::testing::Test {
protected:
    UpgradeDisk() {
        os::set_date_format_for_test("/", os::DateOrder::kMonthDayYear);
        db::set_database_folder(kFolder);
    }
    ~UpgradeDisk() override {
        db::set_database_folder("");
        os::set_date_format_for_test("", os::DateOrder::kMonthDayYear);
    }

    // On the disk in use.
    static void make(const Subject& subject, std::int32_t version) {
        OldFile file(subject.path, subject.kind, version);
        if (subject.kind == OldFile::Kind::kStudio) {
            fill_studio(file, kSmall);
        } else {
            fill_invoices(file, kSmall);
        }
        file.close();
    }
    static void open(CDaoDatabase& database, const char* path) {
        database.Open(path, TRUE, FALSE, (";PWD=" + password_in(path)).c_str());
    }
    // As the first opening after a crash: the journal is replayed into the file.
    static Content recovered_content(const char* path) {
        jet::OpenOptions options;
        options.ignore_password = true;
        jet::Database::open(path, options)->close();
        return content_of(path);
    }
    static void close_quietly(CDaoDatabase& database) {
        try {
            database.Close();
        } catch (CDaoException* e) {
            e->Delete();
        }
    }
    static std::vector<std::uint8_t> image(const Subject& subject, std::int32_t version) {
        FaultFileSystem disk;
        const UseFileSystem use(disk);
        make(subject, version);
        return disk.content(subject.path);
    }

    // The content after none, one, ... all of the steps that apply to the file. A pair that belongs together counts as
    // one.
    static std::vector<Content> boundaries(const Subject& subject, std::int32_t version) {
        FaultFileSystem disk;
        const UseFileSystem use(disk);
        make(subject, version);
        std::vector<Content> contents{content_of(subject.path)};
        for (const db::UpgradeStep& step : subject.steps) {
            if (!step.applies_to(version)) continue;
            CDaoDatabase database;
            open(database, subject.path);
            EXPECT_NO_THROW(step.run(database)) << step.effect;
            database.Close();
            if (!step.with_next) contents.push_back(content_of(subject.path));
        }
        return contents;
    }
};

class UpgradeCrash : public UpgradeDisk {
protected:
    static void expect_boundary(FaultFileSystem& disk, const Subject& subject, const std::vector<Content>& allowed,
                                const std::string& where, std::set<std::size_t>* seen = nullptr) {
        const UseFileSystem use(disk);
        count_tried(Figure::kPowerCuts);
        const Content found = recovered_content(subject.path);
        const auto match = std::find(allowed.begin(), allowed.end(), found);
        if (match == allowed.end()) {
            std::string least;
            for (const Content& content : allowed) {
                const std::string text = difference(content, found);
                if (least.empty() || text.size() < least.size()) least = text;
            }
            ADD_FAILURE() << where << ": version " << version_in(found) << ", the nearest differs in\n" << least;
        } else if (seen != nullptr) {
            seen->insert(static_cast<std::size_t>(match - allowed.begin()));
        }
        // It opens as a host opens it; an upgrade that had not started runs now.
        CDaoDatabase database;
        open(database, subject.path);
        const std::string version = version_in(found);
        EXPECT_EQ(subject.upgrade(database), version == "210000" ? 0 : 1) << where;
        database.Close();
        const Content opened = content_of(subject.path);
        EXPECT_EQ(version_in(opened), "210000") << where;
        if (version == "210000") {
            EXPECT_EQ(difference(found, opened), "") << where;
        } else if (subject.kind == OldFile::Kind::kStudio) {
            EXPECT_EQ(difference(allowed.back(), opened), "") << where;
        }
    }

    // Cuts the power after each change of the disk.
    static void cut_everywhere(const Subject& subject, std::int32_t version, bool every_step_synced) {
        const std::vector<Content> allowed = boundaries(subject, version);
        FaultFileSystem disk;
        std::vector<std::pair<std::string, std::unique_ptr<FaultFileSystem>>> cuts;
        {
            const UseFileSystem use(disk);
            make(subject, version);
            CDaoDatabase database;
            open(database, subject.path);
            std::uint32_t change = 0;
            disk.set_observer([&](Operation operation, const std::string& path) {
                ++change;
                const std::string where = std::to_string(version) + ", change " + std::to_string(change) + ", ";
                cuts.emplace_back(where + "kept", disk.crash(CrashMode::kKeepUnsynced));
                cuts.emplace_back(where + "dropped", disk.crash(CrashMode::kDropUnsynced));
                for (std::uint32_t seed = 0; seed < 2; ++seed) {
                    cuts.emplace_back(where + "torn", disk.crash(CrashMode::kTearUnsynced, 2 * change + seed));
                }
                // Makes the next commit late enough to be a sync point.
                if (every_step_synced && operation == Operation::kWrite && path.ends_with("-journal")) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(260));
                }
            });
            EXPECT_EQ(subject.upgrade(database), 1);
            database.Close();
            disk.set_observer({});
        }
        EXPECT_GT(cuts.size(), 4 * allowed.size());
        std::set<std::size_t> seen;
        for (const auto& [where, cut] : cuts) expect_boundary(*cut, subject, allowed, where, &seen);
        // Each boundary occurs, except for steps with nothing to do.
        for (std::size_t i = 0; i < allowed.size(); ++i) {
            const bool is_new = i == 0 || allowed[i] != allowed[i - 1];
            EXPECT_EQ(seen.contains(i), is_new) << version << ", boundary " << i;
        }
    }
};

TEST_F(UpgradeCrash, power_loss_at_any_change_leaves_what_a_step_has_left) {
    for (const Subject& subject : subjects()) {
        for (const std::int32_t version : kOldVersions) {
            cut_everywhere(subject, version, false);
            if (HasFatalFailure() || HasNonfatalFailure()) return;
        }
    }
}

TEST_F(UpgradeCrash, power_loss_with_every_step_on_the_disk_leaves_what_a_step_has_left) {
    for (const Subject& subject : subjects()) cut_everywhere(subject, 100005, true);
}

// Password and version of the oldest file change together: otherwise it could never be upgraded again.
TEST_F(UpgradeCrash, power_loss_never_parts_the_new_password_from_the_new_number) {
    FaultFileSystem disk;
    const Subject subject = subjects()[0];
    const UseFileSystem use(disk);
    make(subject, 100005);
    CDaoDatabase database;
    open(database, subject.path);
    std::set<std::string> seen;
    disk.set_observer([&](Operation, const std::string&) {
        const auto cut = disk.crash(CrashMode::kKeepUnsynced);
        const UseFileSystem use_cut(*cut);
        seen.insert(version_in(recovered_content(kStudio)) + " " + password_in(kStudio));
    });
    EXPECT_EQ(subject.upgrade(database), 1);
    database.Close();
    disk.set_observer({});
    EXPECT_EQ(seen, (std::set<std::string>{std::string("100005 ") + kFormerStudioPassword,
                                           std::string("210000 ") + kStudioPassword}));
}

class UpgradeFault : public UpgradeDisk {
protected:
    // Upgrades a copy of the image with the fault planned, then examines the result.
    struct Outcome {
        int result = 0;
        std::uint64_t faults = 0;
        Content content;
    };
    static Outcome upgrade_with(const Subject& subject, const std::vector<std::uint8_t>& image, const Fault& fault) {
        FaultFileSystem disk;
        disk.set_content(subject.path, image);
        const UseFileSystem use(disk);
        Outcome outcome;
        {
            CDaoDatabase database;
            open(database, subject.path);
            disk.plan(fault);
            outcome.result = subject.upgrade(database);
            EXPECT_TRUE(database.IsOpen());
            outcome.faults = disk.faults_raised();
            if (outcome.faults > 0) count_tried(Figure::kFaults);
            close_quietly(database);
            disk.clear_faults();
        }
        outcome.content = recovered_content(subject.path);  // reports damage
        return outcome;
    }

    static void fail_each(const Subject& subject, std::int32_t version, Fault fault) {
        const std::vector<std::uint8_t> before = image(subject, version);
        const std::size_t projects = 3;
        std::uint64_t failed = 0;
        for (fault.nth = 1;; ++fault.nth) {
            const Outcome outcome = upgrade_with(subject, before, fault);
            if (outcome.faults == 0) break;
            const std::string where = "version " + std::to_string(version) + ", operation " + std::to_string(fault.nth);
            const std::string found = version_in(outcome.content);
            if (outcome.result == 1) {
                EXPECT_EQ(found, "210000") << where;
            } else {
                ++failed;
                EXPECT_EQ(outcome.result, -1) << where;
                EXPECT_TRUE(found == std::to_string(version) || found == "210000") << where << found;
            }
            // Required whenever the upgrade says that it ran through, even if steps were left out.
            if (outcome.result == 1 && subject.kind == OldFile::Kind::kStudio) {
                for (const char* const table : {"Def_Invoice", "Def_Tax", "Participants", "GearRentals"}) {
                    EXPECT_TRUE(outcome.content.contains(table)) << where << ": " << table;
                }
            }
            if (found != "210000") {
                if (subject.kind == OldFile::Kind::kStudio) {
                    EXPECT_EQ(rows_in(outcome.content, "Projects"), projects) << where;
                    EXPECT_FALSE(outcome.content.contains("Participants")) << where;
                }
            }
            // No row is lost.
            if (subject.kind == OldFile::Kind::kStudio) {
                EXPECT_EQ(rows_in(outcome.content, "Sessions"), 25u) << where;
                EXPECT_GE(rows_in(outcome.content, "Clients"), 5u) << where;
            } else {
                EXPECT_EQ(rows_in(outcome.content, "InvoiceParams"), 18u) << where;
            }
        }
        EXPECT_GT(fault.nth, 5u);
        EXPECT_GT(failed, 0u);
    }
};

TEST_F(UpgradeFault, change_that_fails_once_leaves_a_sound_file_and_the_result_that_is_due) {
    for (const Subject& subject : subjects()) {
        for (const std::int32_t version : kOldVersions) fail_each(subject, version, {});
    }
}

TEST_F(UpgradeFault, disk_that_is_full_from_some_point_on_leaves_a_sound_file) {
    Fault fault;
    fault.fault = os::FileFault::kDiskFull;
    fault.lasting = true;
    fault.half_written = true;
    for (const Subject& subject : subjects()) {
        for (const std::int32_t version : {100005, 200010}) fail_each(subject, version, fault);
    }
}

TEST_F(UpgradeFault, read_that_fails_once_leaves_a_sound_file) {
    Fault fault;
    fault.operation = Operation::kRead;
    for (const Subject& subject : subjects()) fail_each(subject, 100005, fault);
}

TEST_F(UpgradeFault, header_that_cannot_be_written_stops_before_any_change) {
    const Subject subject = subjects()[0];
    const std::vector<std::uint8_t> before = image(subject, 100005);
    Fault fault;
    fault.lasting = true;
    const Outcome outcome = upgrade_with(subject, before, fault);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(difference(boundaries(subject, 100005).front(), outcome.content), "");
}

}  // namespace
