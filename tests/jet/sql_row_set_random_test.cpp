// Sets that stay open beside random changes of their table, compared with a model.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "tests/jet/sql_row_set_fixture.h"

namespace row_set_tests {
namespace {

// What a set must deliver, by key numbers: rows move in and out of their addresses, numbers never repeat.
class Model {
public:
    Model(std::unique_ptr<RowSet> set, Ids members) : set_(std::move(set)), members_(std::move(members)) {}

    RowSet& set() { return *set_; }
    void append(std::int32_t id) { members_.push_back(id); }
    void restart() { at_ = 0; }

    std::optional<std::int32_t> next(const std::set<std::int32_t>& alive) {
        while (at_ < members_.size()) {
            const std::int32_t id = members_[at_++];
            if (alive.contains(id)) return id;
        }
        return std::nullopt;
    }

    // Makes a live row delivered before the current one; none when there is none.
    std::optional<std::int32_t> go_back(std::size_t steps, const std::set<std::int32_t>& alive) {
        if (at_ < steps + 1 || !alive.contains(members_[at_ - 1 - steps])) return std::nullopt;
        at_ -= steps;
        return members_[at_ - 1];
    }

private:
    std::unique_ptr<RowSet> set_;
    Ids members_;
    std::size_t at_ = 0;
};

// Random changes of a table beside sets that stay open, each compared with its model.
class RandomSetsTest : public RowSetTest {
protected:
    static constexpr std::u16string_view kStatements[] = {u"",
                                                          u"WHERE [ProjID]=1",
                                                          u"WHERE [ProjID]=2 AND [RecID]>5",
                                                          u"WHERE [ProjID]<2",
                                                          u"WHERE [Date]>=#07/06/2009# AND [Date]<=#07/12/2009#",
                                                          u"WHERE [Date]=#07/08/2009#",
                                                          u"ORDER BY [Date]",
                                                          u"WHERE [ProjID]=1 ORDER BY [Date] DESC",
                                                          u"WHERE [Date]>#07/06/2009# ORDER BY [ProjID] DESC, [Date]"};
    static constexpr std::size_t kModels = 6;

    std::size_t any(std::size_t below) { return static_cast<std::size_t>(random_() % below); }
    std::int32_t any_project() { return static_cast<std::int32_t>(any(4)); }
    Value any_date() { return any(5) == 0 ? Value() : Value(jet::Date{40000.0 + static_cast<double>(any(10))}); }
    std::int32_t any_alive() { return *std::next(alive_.begin(), static_cast<std::ptrdiff_t>(any(alive_.size()))); }

    void begin(std::uint32_t seed) {
        random_.seed(seed);
        models_.clear();
        rows_.clear();
        alive_.clear();
        for (auto row = songs().next_row({}); row; row = songs().next_row({})) songs().erase(*row);
        for (int i = 0; i < 40; ++i) insert();
    }

    std::int32_t insert() {
        const std::int32_t project = any_project();
        const Value date = any_date();
        const RowId row = add(project, date, std::u16string(100 + any(150), u'n'));
        const std::int32_t id = id_of(row);
        rows_[id] = row;
        alive_.insert(id);
        return id;
    }

    void open_set() {
        if (models_.size() == kModels) models_.erase(models_.begin() + static_cast<std::ptrdiff_t>(any(kModels)));
        const std::u16string statement(kStatements[any(std::size(kStatements))]);
        const Ids members = all(*open(statement));
        models_.emplace_back(open(statement), members);
    }

    void insert_row() {
        const std::int32_t id = insert();
        if (any(3) != 0 || models_.empty()) return;
        Model& owner = models_[any(models_.size())];
        owner.append(id);
        append(owner.set(), rows_[id]);
    }

    void erase_row() {
        const std::int32_t id = any_alive();
        songs().erase(rows_[id]);
        alive_.erase(id);
        rows_.erase(id);
    }

    void change_row() {
        const RowId row = rows_[any_alive()];
        switch (any(3)) {
            case 0: change(row, kProject, any_project()); break;
            case 1: change(row, kDate, any_date()); break;
            default: change(row, kName, std::u16string(1 + any(255), u'm')); break;
        }
    }

    void move_in_set() {
        Model& model = models_[any(models_.size())];
        const std::size_t move = any(20);
        if (move == 0) model.restart();
        const auto back = move == 1 ? model.go_back(any(3), alive_) : std::nullopt;
        if (back) {
            ASSERT_TRUE(model.set().delivered(rows_[*back]));
            model.set().move_to(rows_[*back]);
        }
        const auto expected = model.next(alive_);
        const auto delivered = move == 0 ? model.set().first() : model.set().next();
        ASSERT_EQ(expected.has_value(), delivered.has_value());
        if (!expected) return;
        ASSERT_EQ(*expected, id_of(*delivered));
        ASSERT_TRUE(model.set().delivered(*delivered));
    }

    // In a shrinking phase deletions outweigh: they empty whole pages, whose addresses are then taken again.
    void step(bool shrinking) {
        const std::size_t action = any(100);
        if (action < 6) {
            open_set();
        } else if (action < (shrinking ? 14u : 34u)) {
            insert_row();
        } else if (action < 40 && !alive_.empty()) {
            erase_row();
        } else if (action < 60 && !alive_.empty()) {
            change_row();
        } else if (!models_.empty()) {
            move_in_set();
        }
    }

private:
    std::mt19937 random_;
    std::map<std::int32_t, RowId> rows_;
    std::set<std::int32_t> alive_;
    std::vector<Model> models_;
};

TEST_F(RandomSetsTest, random_changes_under_open_sets_keep_their_membership) {
    for (std::uint32_t seed = 1; seed <= 25; ++seed) {
        begin(seed);
        for (int i = 0; i < 4000; ++i) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(i));
            ASSERT_NO_FATAL_FAILURE(step((i / 400) % 2 == 1));
        }
    }
}

}  // namespace
}  // namespace row_set_tests
