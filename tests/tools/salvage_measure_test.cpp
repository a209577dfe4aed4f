// How much of a damaged studio comes back: everything that is undamaged, and nothing that was not there.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "jet/pages/header.h"
#include "jet/tables/database.h"
#include "tests/support/figures.h"
#include "tests/support/temp_folder.h"
#include "tests/tools/salvage_fixture.h"
#include "tools/rescue/salvage.h"

namespace {

using namespace testing_salvage;

struct Totals {
    std::size_t undamaged = 0;
    std::size_t came_back = 0;
    double worst = 1;
    std::string worst_name;
};

// The component opens what is salvaged: its password and its version are right.
void expect_opens(const std::string& path, const jet::Format& format) {
    jet::OpenOptions options;
    options.read_only = true;
    options.password = u"KvStudio2005sl";
    const auto database = jet::Database::open(path, options);
    const jet::Table* const header = database->find_table(u"DBHeader");
    ASSERT_NE(header, nullptr);
    const auto row = header->next_row({});
    ASSERT_TRUE(row);
    jet::RowView view;
    ASSERT_TRUE(header->read(*row, view));
    EXPECT_EQ(view.value(*header->def().find_column(u"DBversion")), jet::Value(std::int32_t{210000}));
    EXPECT_FALSE(header->next_row(*row)) << "one row is enough";
    EXPECT_EQ(&database->pager().format(), &format);
}

Totals measure(const jet::Format& format, std::size_t rows, std::size_t damages, std::uint32_t seed) {
    const testing_support::TempFolder folder;
    const Truth truth = make_truth(folder.file("sound.mdb"), format, rows, seed);
    EXPECT_GT(truth.rows(), rows * 9 / 10);
    Totals totals;
    const bool is_loud = std::getenv("KVDB_SALVAGE_LOUD") != nullptr;
    for_each_damage(truth, damages, 1000 * seed, [&](const DamagedFile& damaged) {
        SCOPED_TRACE(damaged.name);
        const std::string from = folder.file("damaged.mdb");
        const std::string to = folder.file("new.mdb");
        std::ofstream(from, std::ios::binary | std::ios::trunc)
            .write(reinterpret_cast<const char*>(damaged.bytes.data()),
                   static_cast<std::streamsize>(damaged.bytes.size()));
        const auto begin = std::chrono::steady_clock::now();
        const tools::SalvageReport report = tools::salvage(from, to);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
        const Score score = score_of(truth, damaged, to);
        if (is_loud) {
            std::printf(
                "%-40.40s %.1f s undamaged %zu back %zu (%.4f) touched %zu back %zu cut %zu mixed %zu invented %zu "
                "doubtful "
                "%zu\n",
                damaged.name.c_str(), took.count(), score.undamaged, score.came_back, score.share(), score.touched,
                score.touched_back, score.cut, score.mixed, score.invented, report.doubtful());
            if (!score.first_missing.empty()) std::printf("   missing %.300s\n", score.first_missing.c_str());
            if (!score.first_invented.empty()) std::printf("   invented %.300s\n", score.first_invented.c_str());
            std::fflush(stdout);
        }
        EXPECT_GE(score.share(), 0.999) << score.first_missing;
        EXPECT_EQ(score.invented, 0u) << score.first_invented;
        // Of two last pages of one length that have changed places nobody can say which is whose.
        EXPECT_LE(score.mixed, damaged.moved.empty() ? 0 : 1 + score.undamaged / 4000);
        expect_opens(to, format);
        totals.undamaged += score.undamaged;
        totals.came_back += score.came_back;
        if (score.share() < totals.worst) {
            totals.worst = score.share();
            totals.worst_name = damaged.name;
        }
        std::filesystem::remove(to);
        testing_support::count_tried(testing_support::Figure::kDamagedFiles);
    });
    std::printf("salvaged: %zu of %zu undamaged rows came back (%.5f), worst %.5f (%s)\n", totals.came_back,
                totals.undamaged, static_cast<double>(totals.came_back) / static_cast<double>(totals.undamaged),
                totals.worst, totals.worst_name.c_str());
    return totals;
}

// The damage of `heads`: page by page, the owner that the page names now.
void expect_all_back(const Truth& truth, const std::map<jet::PageNumber, jet::PageNumber>& heads) {
    const testing_support::TempFolder folder;
    DamagedFile damaged;
    damaged.bytes = truth.file;
    for (const auto& [page, owner] : heads) {
        const std::size_t head = page * truth.format->page_size + jet::jet4::data::kOwner;
        jet::store_u32(jet::MutableByteSpan(damaged.bytes), head, owner);
    }
    std::ofstream(folder.file("damaged.mdb"), std::ios::binary)
        .write(reinterpret_cast<const char*>(damaged.bytes.data()), static_cast<std::streamsize>(damaged.bytes.size()));
    tools::salvage(folder.file("damaged.mdb"), folder.file("new.mdb"));
    const Score score = score_of(truth, damaged, folder.file("new.mdb"));
    EXPECT_GT(score.undamaged, 1500u);
    EXPECT_EQ(score.came_back, score.undamaged) << score.first_missing;
    EXPECT_EQ(score.invented, 0u) << score.first_invented;
}

TEST(SalvageHeads, pages_of_the_system_that_name_no_table_are_told_by_their_maps) {
    for (const jet::Format* const format : {&jet::kJet3, &jet::kJet4}) {
        const testing_support::TempFolder folder;
        const Truth truth = make_truth(folder.file("sound.mdb"), *format, 2000, 11);
        for (jet::PageNumber owner = jet::jet4::kObjectsPage; owner <= jet::jet4::kRelationshipsPage; ++owner) {
            SCOPED_TRACE(owner);
            std::map<jet::PageNumber, jet::PageNumber> heads;
            for (jet::PageNumber page = 1; page < truth.file.size() / format->page_size; ++page) {
                const auto bytes = jet::ByteSpan(truth.file).subspan(page * format->page_size, format->page_size);
                const bool is_rows = bytes[0] == jet::jet4::kDataPage;
                if (is_rows && jet::load_u32(bytes, jet::jet4::data::kOwner) == owner) heads[page] = 0xABCDEF;
            }
            if (owner <= jet::jet4::kObjectsPage + 1) {
                EXPECT_FALSE(heads.empty());
            }
            expect_all_back(truth, heads);
        }
    }
}

TEST(SalvageHeads, page_that_names_a_table_of_the_same_columns_stays_in_its_own) {
    const testing_support::TempFolder folder;
    const Truth truth = make_truth(folder.file("sound.mdb"), jet::kJet3, 2000, 11);
    jet::OpenOptions options;
    options.read_only = options.ignore_password = true;
    const auto sound = jet::Database::open(folder.file("sound.mdb"), options);
    const auto& rows = truth.tables.at("Def_ProjTypes");
    ASSERT_FALSE(rows.empty());
    std::map<jet::PageNumber, jet::PageNumber> heads;
    heads[rows.front().extents.front().page] = sound->find_table(u"Def_TrackDestination")->def().page;
    expect_all_back(truth, heads);
}

TEST(SalvageCorrupt, what_is_undamaged_comes_back_and_nothing_else) { measure(jet::kJet4, 4000, 30, 7); }

TEST(SalvageCorrupt, what_is_undamaged_comes_back_from_a_jet_3_file) { measure(jet::kJet3, 3000, 20, 8); }

TEST(SalvageMeasureSlow, fifty_thousand_rows_damaged_in_a_hundred_ways) { measure(jet::kJet4, 50000, 100, 1); }

TEST(SalvageMeasureSlow, fifty_thousand_rows_of_jet_3_damaged_in_fifty_ways) { measure(jet::kJet3, 50000, 50, 2); }

}  // namespace
