// The judge of the soak detects lost, added and partly changed rows.
#include "tests/soak/ledger.h"

#include <gtest/gtest.h>

namespace soak {
namespace {

using Kind = Operation::Kind;

class SoakLedger : public ::testing::Test {
protected:
    static std::int32_t place_of(const std::string& name) {
        std::int32_t place = 0;
        while (gate_tables()[static_cast<std::size_t>(place)]->name() != name) ++place;
        return place;
    }
    SoakLedger() : projects_(place_of("Projects")), rows_(gate_tables().size()), ledger_(rows_) {
        table()[1] = text(1);
        table()[2] = text(2);
        ledger_.settle(rows_);
    }
    TableRows& table() { return rows_[static_cast<std::size_t>(projects_)]; }
    RowText text(int variant) const { return gate_tables()[static_cast<std::size_t>(projects_)]->text(variant); }
    Operation operation(Kind kind, std::int32_t key, std::int32_t variant) const {
        return {kind, projects_, key, variant};
    }
    bool allows() const { return ledger_.compare(rows_).empty(); }

    const std::int32_t projects_;
    StudioRows rows_;
    Ledger ledger_;
};

TEST_F(SoakLedger, rows_as_they_were_are_allowed) { EXPECT_TRUE(allows()); }

TEST_F(SoakLedger, lost_row_is_a_difference) {
    table().erase(1);
    EXPECT_NE(ledger_.compare(rows_).find("row 1 is missing"), std::string::npos);
}

TEST_F(SoakLedger, row_from_nowhere_is_a_difference) {
    table()[3] = text(3);
    EXPECT_NE(ledger_.compare(rows_).find("row 3 is too many"), std::string::npos);
}

TEST_F(SoakLedger, success_is_a_must) {
    ledger_.succeeded(operation(Kind::kAdd, 3, 3));
    EXPECT_FALSE(allows());
    table()[3] = text(3);
    EXPECT_TRUE(allows());
    ledger_.succeeded(operation(Kind::kUpdate, 1, 4));
    EXPECT_FALSE(allows());
    table()[1] = text(4);
    EXPECT_TRUE(allows());
    ledger_.succeeded(operation(Kind::kDelete, 2, 1));
    EXPECT_FALSE(allows());
    table().erase(2);
    EXPECT_TRUE(allows());
}

TEST_F(SoakLedger, failed_operation_is_there_whole_or_not_at_all) {
    ledger_.failed(operation(Kind::kAdd, 0, 3));
    ledger_.failed(operation(Kind::kUpdate, 1, 4));
    ledger_.failed(operation(Kind::kDelete, 2, 1));
    EXPECT_TRUE(allows());
    table()[7] = text(3);
    table()[1] = text(4);
    table().erase(2);
    EXPECT_TRUE(allows());
    table()[8] = text(3);
    EXPECT_FALSE(allows()) << "added twice";
    table().erase(8);
    table()[7] = text(5);
    EXPECT_FALSE(allows()) << "added otherwise than asked";
    table()[7] = text(3);
    table()[1] = text(1) + "half";
    EXPECT_FALSE(allows()) << "half changed";
}

TEST_F(SoakLedger, tables_of_the_other_file_are_left_out) {
    table().erase(1);
    EXPECT_FALSE(ledger_.compare(rows_, false).empty());
    EXPECT_TRUE(ledger_.compare(rows_, true).empty());
}

TEST(SoakTables, variants_of_a_row_differ_in_every_table) {
    for (const auto& table : gate_tables()) {
        for (int variant = 2; variant <= kVariants; ++variant) {
            EXPECT_NE(table->text(variant), table->text(variant - 1)) << table->name();
        }
    }
}

}  // namespace
}  // namespace soak
