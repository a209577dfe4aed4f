// Rows in the order of their values, with room for few of them at a time: each row once, in the order that the engine
// gives the values, rows of equal values in that of the file.
#include "tools/row_scan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "jet/sql/scalar.h"
#include "jet/tables/database.h"
#include "tests/support/temp_folder.h"
#include "tools/order_key.h"

namespace {

using jet::Value;

int sign(std::weak_ordering order) { return order < 0 ? -1 : (order > 0 ? 1 : 0); }

int compare_keys(const Value& a, const Value& b, bool descending) {
    jet::ByteVector left;
    jet::ByteVector right;
    tools::append_order_key(left, a, descending);
    tools::append_order_key(right, b, descending);
    // What stands after a key does not count where the keys differ.
    EXPECT_FALSE(left != right &&
                 (std::equal(left.begin(), left.end(), right.begin(),
                             right.begin() + static_cast<std::ptrdiff_t>(std::min(left.size(), right.size()))) &&
                  left.size() <= right.size()))
        << "one key is the beginning of the other";
    return sign(left <=> right);
}

jet::Numeric numeric(bool negative, std::uint32_t high, std::uint32_t low) {
    jet::Numeric value;
    value.scale = 2;
    value.bytes[0] = negative ? 0x80 : 0;
    jet::store_u32(value.bytes, 9, high);
    jet::store_u32(value.bytes, 13, low);
    return value;
}

std::u16string random_text(std::mt19937& random) {
    static constexpr std::u16string_view kLetters = u"aAbBzZ éÉßæ-' \u0301\u3042\u30AB\u0001\u0000ÿ9";
    std::u16string text;
    for (auto left = random() % 6; left > 0; --left) text += kLetters[random() % kLetters.size()];
    return text;
}

TEST(OrderKey, compares_as_the_engine_orders_values) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    std::vector<std::vector<Value>> columns{
        {Value(), true, false},
        {Value(), std::uint8_t{0}, std::uint8_t{1}, std::uint8_t{255}},
        {Value(), std::int16_t{-32768}, std::int16_t{-1}, std::int16_t{0}, std::int16_t{32767}},
        {Value(), INT32_MIN, std::int32_t{-1}, std::int32_t{0}, std::int32_t{1}, INT32_MAX},
        {Value(), jet::Currency{INT64_MIN}, jet::Currency{-1}, jet::Currency{0}, jet::Currency{INT64_MAX}},
        {Value(), -3.5F, 0.0F, -0.0F, 1e-40F, 7.0F, std::nanf("")},
        {Value(), -kInfinite, -2.5, -1e-300, -0.0, 0.0, 5e-324, 2.5, kInfinite, std::nan("")},
        {Value(), jet::Date{-1}, jet::Date{-1.25}, jet::Date{-2.5}, jet::Date{0}, jet::Date{0.25}, jet::Date{40000.5}},
        {Value(), std::vector<std::uint8_t>{}, std::vector<std::uint8_t>{0}, std::vector<std::uint8_t>{0, 0},
         std::vector<std::uint8_t>{0, 1}, std::vector<std::uint8_t>{1}, std::vector<std::uint8_t>{255}},
        {Value(), jet::Guid{{1}}, jet::Guid{{1, 2}}, jet::Guid{{0, 255}}},
        {Value(), numeric(false, 0, 0), numeric(true, 0, 1), numeric(false, 0, 1), numeric(false, 0, 0xFFFFFFFF),
         numeric(false, 1, 0), numeric(true, 7, 9), numeric(false, 7, 9)},
        {Value(), std::u16string(), std::u16string(u" "), std::u16string(u"a"), std::u16string(u"a "),
         std::u16string(u"A"), std::u16string(300, u'a'), std::u16string(300, u'a') + u"b"},
    };
    std::mt19937 random(1);
    std::vector<Value>& texts = columns.back();
    for (int i = 0; i < 400; ++i) texts.emplace_back(random_text(random));
    std::size_t differing = 0;
    for (const std::vector<Value>& values : columns) {
        for (const Value& a : values) {
            for (const Value& b : values) {
                const int wanted = sign(jet::sql::compare_for_order(a, b));
                differing += wanted != 0 ? 1 : 0;
                ASSERT_EQ(compare_keys(a, b, false), wanted) << "of type " << a.index();
                ASSERT_EQ(compare_keys(a, b, true), -wanted) << "of type " << a.index();
            }
        }
    }
    EXPECT_GT(differing, 100000u);
}

class RowScanOrder : public ::testing::Test {
protected:
    static constexpr int kRows = 5000;

    void SetUp() override {
        database_ = jet::Database::create(scratch_.file("x.mdb"), {});
        const jet::NewColumn columns[] = {
            {.name = u"Key", .type = jet::ColumnType::kLong},
            {.name = u"Name", .type = jet::ColumnType::kText, .allow_zero_length = true},
            {.name = u"Notes", .type = jet::ColumnType::kMemo, .allow_zero_length = true}};
        database_->create_table(u"T", columns);
        table_ = database_->find_table(u"T");
        std::mt19937 random(2);
        jet::Transaction filling(database_->pager());
        for (int i = 0; i < kRows; ++i) {
            table_->insert({static_cast<std::int32_t>(random() % 50), random_text(random),
                            i % 100 == 0 ? Value(std::u16string(random() % 3000, u'm')) : Value()});
        }
        filling.commit();
    }

    using Rows = std::vector<std::vector<Value>>;

    static std::vector<Value> values_of(const jet::RowView& row) { return {row.value(0), row.value(1), row.value(2)}; }

    // What a sort in memory gives.
    Rows sorted(const std::vector<jet::sql::OrderKey>& order) const {
        Rows rows;
        jet::RowView view;
        for (auto id = table_->next_row({}); id; id = table_->next_row(*id)) {
            if (table_->read(*id, view)) rows.push_back(values_of(view));
        }
        std::stable_sort(rows.begin(), rows.end(), [&](const auto& a, const auto& b) {
            for (const jet::sql::OrderKey& key : order) {
                const auto compared = jet::sql::compare_for_order(a[key.position], b[key.position]);
                if (compared != 0) return key.descending ? compared > 0 : compared < 0;
            }
            return false;
        });
        return rows;
    }

    Rows given(const std::vector<jet::sql::OrderKey>& order, std::size_t room, std::optional<std::size_t> limit = {}) {
        tools::RowScan scan{*table_, [this](const jet::RowView&) { return ++read_ > 0; }, order, limit, room};
        Rows rows;
        scan.for_each([&](const jet::RowView& row) {
            rows.push_back(values_of(row));
            return rows.size() != stop_after_;
        });
        return rows;
    }

    testing_support::TempFolder scratch_;
    std::unique_ptr<jet::Database> database_;
    jet::Table* table_ = nullptr;
    std::size_t read_ = 0;
    std::size_t stop_after_ = 0;
};

TEST_F(RowScanOrder, each_row_is_given_once_and_equal_ones_in_the_order_of_the_file) {
    const std::vector<std::vector<jet::sql::OrderKey>> orders{
        {{0, false}}, {{0, true}}, {{1, false}}, {{1, true}, {0, false}}, {{2, false}}, {{2, true}, {1, true}}};
    for (const auto& order : orders) {
        const Rows wanted = sorted(order);
        ASSERT_EQ(wanted.size(), static_cast<std::size_t>(kRows));
        for (const std::size_t room : {std::size_t{8000}, std::size_t{50000}, std::size_t{1} << 20}) {
            ASSERT_TRUE(given(order, room) == wanted) << room << " bytes, by column " << order.front().position;
        }
    }
}

TEST_F(RowScanOrder, limit_gives_the_first_rows_after_one_reading) {
    const std::vector<jet::sql::OrderKey> order{{1, false}};
    Rows wanted = sorted(order);
    for (const std::size_t limit : {0, 1, 7, 100, 4999, 5000, 6000}) {
        const Rows first(wanted.begin(),
                         wanted.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(limit, kRows)));
        EXPECT_TRUE(given(order, 8000, limit) == first) << limit;
    }
    read_ = 0;
    given(order, 1 << 20, 100);
    EXPECT_EQ(read_, static_cast<std::size_t>(kRows));
}

TEST_F(RowScanOrder, visitor_that_has_enough_ends_it) {
    stop_after_ = 3;
    EXPECT_EQ(given({{1, false}}, 8000).size(), 3u);
    EXPECT_LE(read_, static_cast<std::size_t>(kRows));
    EXPECT_EQ(given({}, 8000).size(), 3u);
}

// One key that has no room among the others is not lost.
TEST_F(RowScanOrder, key_longer_than_the_room_is_given_too) {
    const std::vector<jet::sql::OrderKey> order{{2, true}};
    Rows first = sorted(order);
    first.resize(80);  // the texts, and some of the rows that have none
    EXPECT_TRUE(given(order, 100, 80) == first);
}

}  // namespace
