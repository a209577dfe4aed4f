// backup, restore and compact on a disk that fails or loses power at any step: the studio is always as it was or as it
// is to be, what was replaced is kept, and a set of copies is whole or none. The disk in memory knows one separator.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>

#include "jet/check/check.h"
#include "jet/tables/database.h"
#include "tests/old_files/old_files.h"
#include "tests/support/fault_file_system.h"
#include "tests/support/figures.h"
#include "tests/support/temp_folder.h"
#include "tools/errors.h"
#include "tools/rescue/backup.h"
#include "tools/rescue/compact.h"
#include "tools/value_text.h"

namespace {

using namespace testing_support;

constexpr char kStudio[] = "studio/sldb.mdb";
constexpr char kInvoices[] = "studio/kvinvdb.mdb";
constexpr char kNow[] = "2026-03-05-142233";

// Everything in a file, as one text; "unsound" where the check finds fault, "none" where there is none.
std::string rows_of(const std::string& path) {
    if (!os::file_system().exists(path)) return "none";
    jet::OpenOptions options;
    options.read_only = options.ignore_password = true;
    const auto database = jet::Database::open(path, options);
    if (!jet::check_structure(*database).empty()) return "unsound";
    std::string text;
    for (const std::u16string& name : database->table_names()) {
        const jet::Table& table = *database->find_table(name);
        text += jet::to_utf8(name) + " " + std::to_string(table.def().last_autonumber) + "\n";
        jet::RowView view;
        for (auto id = table.next_row({}); id; id = table.next_row(*id)) {
            if (!table.read(*id, view)) return "unreadable";
            for (std::size_t i = 0; i < table.def().columns.size(); ++i) text += tools::plain_text(view.value(i)) + "|";
            text += "\n";
        }
    }
    return text;
}

std::vector<std::uint8_t> bytes_of(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

struct Files {
    std::vector<std::uint8_t> studio;
    std::vector<std::uint8_t> journal;
    std::vector<std::uint8_t> invoices;
};

// A studio whose last change is in its journal alone, as a host that was killed has left it.
const Files& live_studio(const jet::Format& format) {
    static std::map<const jet::Format*, Files> made;
    const auto found = made.find(&format);
    if (found != made.end()) return found->second;
    return made[&format] = [&] {
        const UseOldFormat use_format(format);
        const TempFolder folder;
        {
            OldFile studio(folder.file("sldb.mdb"), OldFile::Kind::kStudio, 210000);
            for (int i = 0; i < 40; ++i) studio.add("Projects", {{"Name", "project " + std::to_string(i)}});
            for (int i = 0; i < 30; ++i) studio.add("Songs", {{"Name", "song"}, {"Notes", std::string(3000, 'n')}});
            studio.close();
            OldFile invoices(folder.file("kvinvdb.mdb"), OldFile::Kind::kInvoice, 210000);
            invoices.add("Invoices", {{"ClientName", "somebody"}});
            invoices.close();
        }
        FaultFileSystem disk;
        const UseFileSystem use(disk);
        disk.set_content(kStudio, bytes_of(folder.file("sldb.mdb")));
        jet::OpenOptions options;
        options.ignore_password = true;
        const auto database = jet::Database::open(kStudio, options);
        jet::Table& projects = *database->find_table(u"Projects");
        for (int i = 0; i < 20; ++i) projects.erase(*projects.next_row({}));
        std::vector<jet::Value> row(projects.def().columns.size());
        row[*projects.def().find_column(u"Name")] = std::u16string(u"the last one");
        projects.insert(row);
        const auto left = disk.crash(CrashMode::kKeepUnsynced);
        return Files{left->content(kStudio), left->content(std::string(kStudio) + "-journal"),
                     bytes_of(folder.file("kvinvdb.mdb"))};
    }();
}

std::unique_ptr<FaultFileSystem> live_disk(const Files& files) {
    auto disk = std::make_unique<FaultFileSystem>();
    disk->set_content(kStudio, files.studio);
    disk->set_content(std::string(kStudio) + "-journal", files.journal);
    disk->set_content(kInvoices, files.invoices);
    return disk;
}

struct Contents {
    std::string studio;
    std::string invoices;
};

Contents contents_of(FaultFileSystem& disk) {
    const UseFileSystem use(disk);
    return {rows_of(kStudio), rows_of(kInvoices)};
}

// Does `work` with the power cut after every change of the disk, in each way; `check` looks at each disk that is left.
std::size_t with_cuts(FaultFileSystem& disk, const std::function<void()>& work,
                      const std::function<void(FaultFileSystem& after)>& check) {
    std::size_t cuts = 0;
    disk.set_observer([&](Operation operation, const std::string&) {
        if (!is_change(operation)) return;
        for (const CrashMode mode : {CrashMode::kKeepUnsynced, CrashMode::kDropUnsynced, CrashMode::kTearUnsynced}) {
            const auto after = disk.crash(mode, static_cast<std::uint32_t>(++cuts));
            SCOPED_TRACE("cut " + std::to_string(cuts) + ", mode " + std::to_string(static_cast<int>(mode)));
            const UseFileSystem use(*after);
            check(*after);
        }
    });
    {
        const UseFileSystem use(disk);
        work();
    }
    disk.set_observer({});
    count_tried(Figure::kPowerCuts, cuts);
    return cuts;
}

// Each change of the disk that `work` makes is refused once; `check` looks at what is left.
std::size_t with_faults(const std::function<std::unique_ptr<FaultFileSystem>()>& make,
                        const std::function<void()>& work,
                        const std::function<void(FaultFileSystem& disk, bool succeeded)>& check) {
    std::size_t faults = 0;
    for (std::uint64_t nth = 1;; ++nth) {
        SCOPED_TRACE("fault " + std::to_string(nth));
        const auto disk = make();
        const UseFileSystem use(*disk);
        disk->plan({std::nullopt, nth, os::FileFault::kDiskFull, false, true});
        bool succeeded = false;
        try {
            work();
            succeeded = true;
        } catch (const std::exception&) {
        }
        const bool was_raised = disk->faults_raised() > 0;
        disk->clear_faults();
        check(*disk, succeeded);
        if (!was_raised) break;
        ++faults;
    }
    count_tried(Figure::kFaults, faults);
    return faults;
}

std::unique_ptr<FaultFileSystem> disk_with_a_backup(const Files& files, Contents& before) {
    auto disk = live_disk(files);
    before = contents_of(*disk);
    const UseFileSystem use(*disk);
    tools::make_backup("studio", "copies", "2026-01-01-000000", std::nullopt);
    return disk;
}

void expect_sets_are_whole(const Contents& truth, std::size_t least) {
    const auto sets = tools::backup_sets("copies");
    EXPECT_GE(sets.size(), least);
    for (const tools::BackupSet& set : sets) {
        EXPECT_EQ(rows_of(set.studio), truth.studio) << set.name;
        EXPECT_EQ(rows_of(set.invoices), truth.invoices) << set.name;
    }
}

// Studios of both formats: the tool copies and compares by pages, which have two sizes.
using ByFormat = ::testing::TestWithParam<const jet::Format*>;
class StudioBackupCrash : public ByFormat {};
class StudioBackupFault : public ByFormat {};
class StudioRestoreCrash : public ByFormat {};
class StudioRestoreFault : public ByFormat {};
class StudioCompactCrash : public ByFormat {};
class StudioCompactFault : public ByFormat {};

TEST_P(StudioBackupCrash, set_is_whole_or_none_and_the_studio_is_untouched) {
    Contents truth;
    const auto disk = disk_with_a_backup(live_studio(*GetParam()), truth);
    EXPECT_NE(truth.studio.find("the last one"), std::string::npos) << "the journal holds it";
    const std::size_t cuts = with_cuts(
        *disk, [] { tools::make_backup("studio", "copies", kNow, 1); },
        [&](FaultFileSystem& after) {
            EXPECT_EQ(after.content(kStudio), live_studio(*GetParam()).studio);
            EXPECT_EQ(after.content(std::string(kStudio) + "-journal"), live_studio(*GetParam()).journal);
            EXPECT_EQ(after.content(kInvoices), live_studio(*GetParam()).invoices);
            expect_sets_are_whole(truth, 1);
        });
    EXPECT_GT(cuts, 20u);
    const UseFileSystem use(*disk);
    EXPECT_EQ(tools::backup_sets("copies").size(), 1u);
    EXPECT_EQ(tools::backup_sets("copies").front().name, kNow);
}

TEST_P(StudioBackupFault, refused_disk_leaves_the_sets_of_before_and_no_half_one) {
    Contents truth;
    const std::size_t faults = with_faults([&] { return disk_with_a_backup(live_studio(*GetParam()), truth); },
                                           [] { tools::make_backup("studio", "copies", kNow, std::nullopt); },
                                           [&](FaultFileSystem& disk, bool succeeded) {
                                               expect_sets_are_whole(truth, succeeded ? 2 : 1);
                                               for (const std::string& name : disk.names()) {
                                                   EXPECT_EQ(name.find("-new-"), std::string::npos) << name;
                                               }
                                           });
    EXPECT_GT(faults, 5u);
}

// The set of copies, and a studio that has gone on since, in one journal more.
std::unique_ptr<FaultFileSystem> disk_to_restore(const Files& files, Contents& old, Contents& now) {
    auto disk = disk_with_a_backup(files, old);
    {
        const UseFileSystem use(*disk);
        jet::OpenOptions options;
        options.ignore_password = true;
        for (const char* const path : {kStudio, kInvoices}) {
            const auto database = jet::Database::open(path, options);
            jet::Table& table = *database->find_table(path == kStudio ? u"Projects" : u"Invoices");
            table.erase(*table.next_row({}));
            table.insert({});
            database->close();
        }
    }
    now = contents_of(*disk);
    return disk;
}

// Each file is the restored or the present one; of a present one that is no longer there, a copy is.
void expect_nothing_lost(FaultFileSystem& disk, const Contents& old, const Contents& now) {
    const Contents found{rows_of(kStudio), rows_of(kInvoices)};
    EXPECT_TRUE(found.studio == old.studio || found.studio == now.studio) << found.studio.substr(0, 80);
    EXPECT_TRUE(found.invoices == old.invoices || found.invoices == now.invoices) << found.invoices.substr(0, 80);
    const auto is_kept = [&](const char* stem, const std::string& content) {
        for (const std::string& name : disk.names()) {
            if (name.starts_with(stem) && name.ends_with(".mdb") && rows_of(name) == content) return true;
        }
        return false;
    };
    EXPECT_TRUE(found.studio == now.studio || is_kept("studio/sldb-before-restore-", now.studio));
    EXPECT_TRUE(found.invoices == now.invoices || is_kept("studio/kvinvdb-before-restore-", now.invoices));
    expect_sets_are_whole(old, 1);
}

void restore() { tools::restore_backup(tools::find_backup("copies", std::nullopt), "studio", kNow); }

TEST_P(StudioRestoreCrash, each_file_is_as_it_was_or_restored_and_what_was_there_is_kept) {
    Contents old;
    Contents now;
    const auto disk = disk_to_restore(live_studio(*GetParam()), old, now);
    ASSERT_NE(old.studio, now.studio);
    const std::size_t cuts =
        with_cuts(*disk, restore, [&](FaultFileSystem& after) { expect_nothing_lost(after, old, now); });
    EXPECT_GT(cuts, 30u);
    const Contents restored = contents_of(*disk);
    EXPECT_EQ(restored.studio, old.studio);
    EXPECT_EQ(restored.invoices, old.invoices);
}

TEST_P(StudioRestoreCrash, journal_of_the_studio_is_not_played_into_the_restored_file) {
    Contents truth;
    const auto disk = disk_with_a_backup(live_studio(*GetParam()), truth);
    // The copy is of the very state that the journal belongs to.
    with_cuts(*disk, restore, [&](FaultFileSystem& after) { expect_nothing_lost(after, truth, truth); });
    EXPECT_EQ(contents_of(*disk).studio, truth.studio);
    EXPECT_FALSE(disk->exists(std::string(kStudio) + "-journal"));
}

TEST_P(StudioRestoreFault, refused_disk_loses_nothing_and_the_next_try_succeeds) {
    Contents old;
    Contents now;
    const std::size_t faults = with_faults([&] { return disk_to_restore(live_studio(*GetParam()), old, now); }, restore,
                                           [&](FaultFileSystem& disk, bool) {
                                               expect_nothing_lost(disk, old, now);
                                               restore();
                                               EXPECT_EQ(rows_of(kStudio), old.studio);
                                               EXPECT_EQ(rows_of(kInvoices), old.invoices);
                                           });
    EXPECT_GT(faults, 10u);
}

TEST_P(StudioCompactCrash, file_is_the_old_or_the_new_one_with_the_same_rows) {
    const auto disk = live_disk(live_studio(*GetParam()));
    const Contents truth = contents_of(*disk);
    const std::size_t before = live_studio(*GetParam()).studio.size();
    const std::size_t cuts = with_cuts(
        *disk, [] { tools::compact_file(kStudio); },
        [&](FaultFileSystem&) { EXPECT_EQ(rows_of(kStudio), truth.studio); });
    EXPECT_GT(cuts, 50u);
    EXPECT_EQ(contents_of(*disk).studio, truth.studio);
    EXPECT_LE(disk->content(kStudio).size(), before);
    for (const std::string& name : disk->names()) EXPECT_EQ(name.find("-new-"), std::string::npos) << name;
}

TEST_P(StudioCompactFault, refused_disk_leaves_the_file_as_it_was_or_made_anew) {
    Contents truth;
    const std::size_t faults = with_faults(
        [&] {
            auto disk = live_disk(live_studio(*GetParam()));
            truth = contents_of(*disk);
            return disk;
        },
        [] { tools::compact_file(kStudio); },
        [&](FaultFileSystem&, bool) { EXPECT_EQ(rows_of(kStudio), truth.studio); });
    EXPECT_GT(faults, 20u);
}

constexpr const jet::Format* kFormats[] = {&jet::kJet4, &jet::kJet3};
constexpr auto kNameOfTested = [](const ::testing::TestParamInfo<const jet::Format*>& tested) {
    return std::string(tested.param->is_jet3() ? "Jet3" : "Jet4");
};
INSTANTIATE_TEST_SUITE_P(Formats, StudioBackupCrash, ::testing::ValuesIn(kFormats), kNameOfTested);
INSTANTIATE_TEST_SUITE_P(Formats, StudioBackupFault, ::testing::ValuesIn(kFormats), kNameOfTested);
INSTANTIATE_TEST_SUITE_P(Formats, StudioRestoreCrash, ::testing::ValuesIn(kFormats), kNameOfTested);
INSTANTIATE_TEST_SUITE_P(Formats, StudioRestoreFault, ::testing::ValuesIn(kFormats), kNameOfTested);
INSTANTIATE_TEST_SUITE_P(Formats, StudioCompactCrash, ::testing::ValuesIn(kFormats), kNameOfTested);
INSTANTIATE_TEST_SUITE_P(Formats, StudioCompactFault, ::testing::ValuesIn(kFormats), kNameOfTested);

}  // namespace
