// One gate's way to one table, beside a model of the table: every step does something at random through the
// gate and compares the answer with what the model says.
//
// 1. The rows of the model are shared by all doors to the table; an enumeration belongs to its door.
// 2. An enumeration holds the rows that fitted when it began. What has been deleted since is passed over,
//    what has been changed since is delivered as it is now, and what has been added since is not delivered.
// 3. Closing the studio ends every enumeration.
#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "tests/frame/gate_host.h"
#include "tests/gates/record_case.h"

namespace testing_support {

// The same sequence on every host.
class Random {
public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}
    // 0 to count - 1.
    int below(std::size_t count) { return static_cast<int>(engine_() % count); }

private:
    std::mt19937 engine_;
};

// How often the test met what it is about.
struct ModelCounts {
    int found = 0;
    int delivered = 0;
    int passed_over = 0;  // rows deleted since the beginning of an enumeration
    int delivered_changed = 0;
    int left_out = 0;  // rows added since
    int run_to_the_end = 0;
    int ended_by_closing = 0;
};

// Rows by key, in the form in which they come back from the table.
template <class Record>
using Rows = std::map<LONG, Record>;

inline constexpr int kParents = 5;

// A condition to begin an enumeration with; `value` is 1 to kParents.
template <class Record>
struct Question {
    std::function<void(Record& filter, LONG value)> ask;
    std::function<bool(const Record& row, LONG value)> wants;
    CTime Record::*order = nullptr;
    bool descending = false;
};

template <class Record>
Question<Record> everything() {
    return {[](Record&, LONG) {}, [](const Record&, LONG) { return true; }};
}
template <class Record>
Question<Record> equal(LONG Record::*member) {
    return {[=](Record& filter, LONG value) { filter.*member = value; },
            [=](const Record& row, LONG value) { return row.*member == value; }};
}

class AnyDoor {
public:
    virtual ~AnyDoor() = default;
    virtual void step(Random& random) = 0;
    // The studio has been closed: no enumeration goes on.
    virtual void closed(ModelCounts& counts) = 0;
    // While the studio is closed every operation fails.
    virtual void expect_nothing_works(Random& random) = 0;
    // Every row of the table and no other, by key and by an enumeration of each condition.
    virtual void expect_all_rows() = 0;
};

template <class Gate, class Record>
class Door final : public AnyDoor {
public:
    // `parent` is set to 1 to kParents in every row. Rows up to the key `kept` are never deleted.
    Door(Gate& gate, RecordCase<Gate, Record> table, std::shared_ptr<Rows<Record>> rows, ModelCounts& counts,
         std::vector<Question<Record>> questions, LONG Record::*parent = nullptr, LONG kept = 0)
        : gate_(gate),
          table_(std::move(table)),
          rows_(std::move(rows)),
          counts_(counts),
          questions_(std::move(questions)),
          parent_(parent),
          kept_(kept) {}

    void step(Random& random) override {
        const int choice = random.below(100);
        const bool is_full = rows_->size() >= kMostRows;
        if (choice < (is_full ? 3 : 15)) return add(random);
        if (choice < 30) return update(random);
        if (choice < 40) return remove(random);
        if (choice < 50) return find(random);
        if (choice < 58) return first(random);
        next(random);
    }

    void closed(ModelCounts& counts) override {
        if (enumeration_) ++counts.ended_by_closing;
        enumeration_.reset();
    }

    void expect_nothing_works(Random& random) override {
        const LONG key = any_key(random);
        Record record = some_record(random, key);
        const Record before = record;
        for (const auto method : {table_.first, table_.next, table_.find, table_.add, table_.update}) {
            EXPECT_EQ(call(method, record), E_FAIL);
        }
        EXPECT_EQ(table_.call_remove(gate_, record), E_FAIL);
        expect_same(table_, record, before);
    }

    void expect_all_rows() override {
        for (const auto& [key, row] : *rows_) {
            Record record;
            record.*table_.key = key;
            EXPECT_EQ(call(table_.find, record), S_OK);
            Record expected;
            overlay(expected, key, row);
            expect_same(table_, record, expected);
        }
        for (std::size_t i = 0; i < questions_.size(); ++i) {
            for (LONG value = 1; value <= kParents; ++value) {
                begin(i, value);
                while (enumeration_) advance(Record());
            }
        }
    }

private:
    static constexpr std::size_t kMostRows = 20;
    // Years from 2004 on, and numbers that a single keeps whole.
    static constexpr int kVariants = 30;

    struct Awaited {
        LONG order = 0;
        bool is_changed = false;
    };
    struct Enumeration {
        std::map<LONG, Awaited> awaited;
        LONG last_key = 0;  // the highest key when it began
        bool is_ordered = false;
        bool descending = false;
        LONG reached = 0;
    };

    HRESULT call(HRESULT (STDMETHODCALLTYPE Gate::*method)(LONG_PTR), Record& record) {
        return (gate_.*method)(address_of(record));
    }

    // A key that is there, or now and then one that is not.
    LONG any_key(Random& random) {
        if (rows_->empty() || random.below(12) == 0) return 900000 + random.below(1000);
        return std::next(rows_->begin(), random.below(rows_->size()))->first;
    }

    Record some_record(Random& random, LONG key) {
        return record_of(key, 1 + random.below(kVariants), 1 + random.below(kParents), Form::kGiven);
    }
    Record record_of(LONG key, int variant, LONG parent, Form form) {
        Record record = filled(table_, key, variant, form);
        if (parent_ != nullptr) record.*parent_ = parent;
        return record;
    }

    // What reading the row makes of a record.
    void overlay(Record& record, LONG key, const Record& row) const {
        record.*table_.key = key;
        for (const auto& member : table_.members) {
            if (member.store == Store::kNowhere) continue;
            std::visit([&](auto place) { record.*place = row.*place; }, member.place);
        }
    }

    void add(Random& random) {
        const int variant = 1 + random.below(kVariants);
        const LONG parent = 1 + random.below(kParents);
        Record record = record_of(-5, variant, parent, Form::kGiven);
        ASSERT_EQ(call(table_.add, record), S_OK);
        const LONG key = record.*table_.key;
        EXPECT_GT(key, rows_->empty() ? 0 : rows_->rbegin()->first);
        expect_same(table_, record, record_of(key, variant, parent, Form::kGiven));
        overlay((*rows_)[key], key, record_of(key, variant, parent, Form::kStored));
    }

    void update(Random& random) {
        const LONG key = any_key(random);
        const int variant = 1 + random.below(kVariants);
        const LONG parent = 1 + random.below(kParents);
        Record record = record_of(key, variant, parent, Form::kGiven);
        const bool is_there = rows_->count(key) != 0;
        EXPECT_EQ(call(table_.update, record), is_there ? S_OK : E_FAIL);
        expect_same(table_, record, record_of(key, variant, parent, Form::kGiven));
        if (!is_there) return;
        overlay(rows_->at(key), key, record_of(key, variant, parent, Form::kStored));
        // Of this door's enumeration only: what another door has changed is not counted.
        if (enumeration_ && enumeration_->awaited.count(key) != 0) enumeration_->awaited[key].is_changed = true;
    }

    void remove(Random& random) {
        const LONG key = any_key(random);
        if (key <= kept_) return;
        Record record = some_record(random, key);
        const Record before = record;
        EXPECT_EQ(table_.call_remove(gate_, record), rows_->erase(key) != 0 ? S_OK : E_FAIL);
        expect_same(table_, record, before);
    }

    void find(Random& random) {
        const LONG key = any_key(random);
        Record record = some_record(random, key);
        Record expected = record;
        const auto row = rows_->find(key);
        if (row != rows_->end()) overlay(expected, key, row->second);
        EXPECT_EQ(call(table_.find, record), row != rows_->end() ? S_OK : E_FAIL);
        expect_same(table_, record, expected);
        counts_.found += row != rows_->end();
    }

    void first(Random& random) {
        begin(static_cast<std::size_t>(random.below(questions_.size())), 1 + random.below(kParents));
    }

    void begin(std::size_t question_no, LONG value) {
        const Question<Record>& wanted = questions_[question_no];
        Record record = question(table_);
        wanted.ask(record, value);
        const Record before = record;
        Enumeration begun;
        begun.is_ordered = wanted.order != nullptr;
        begun.descending = wanted.descending;
        begun.last_key = rows_->empty() ? 0 : rows_->rbegin()->first;
        for (const auto& [key, row] : *rows_) {
            if (!wanted.wants(row, value)) continue;
            begun.awaited[key].order = wanted.order != nullptr ? (row.*wanted.order).GetTime() : 0;
        }
        const HRESULT result = call(table_.first, record);
        enumeration_.reset();
        if (begun.awaited.empty()) {
            EXPECT_EQ(result, E_FAIL);
            expect_same(table_, record, before);
            return;
        }
        begun.reached = begun.descending ? INT32_MAX : 0;
        enumeration_ = std::move(begun);
        ASSERT_EQ(result, S_OK);
        expect_delivered(record, before);
    }

    void next(Random& random) { advance(some_record(random, 800000)); }

    // The next step of the enumeration, into a record that is `before`.
    void advance(const Record& before) {
        Record record = before;
        const HRESULT result = call(table_.next, record);
        if (enumeration_) {
            counts_.passed_over += static_cast<int>(std::erase_if(
                enumeration_->awaited, [&](const auto& awaited) { return rows_->count(awaited.first) == 0; }));
        }
        if (enumeration_ && !enumeration_->awaited.empty()) {
            if (result != S_OK) enumeration_.reset();
            ASSERT_EQ(result, S_OK);
            return expect_delivered(record, before);
        }
        EXPECT_EQ(result, E_FAIL);
        expect_same(table_, record, before);
        if (enumeration_) {
            ++counts_.run_to_the_end;
            counts_.left_out +=
                static_cast<int>(std::distance(rows_->upper_bound(enumeration_->last_key), rows_->end()));
        }
        enumeration_.reset();
    }

    void expect_delivered(const Record& record, const Record& before) {
        const LONG key = record.*table_.key;
        const auto awaited = enumeration_->awaited.find(key);
        if (awaited == enumeration_->awaited.end()) {
            enumeration_.reset();
            FAIL() << table_.table << ": row " << key << " is not one of those awaited";
        }
        if (enumeration_->is_ordered) {
            const LONG order = awaited->second.order;
            EXPECT_TRUE(enumeration_->descending ? order <= enumeration_->reached : order >= enumeration_->reached);
            enumeration_->reached = order;
        }
        counts_.delivered += 1;
        counts_.delivered_changed += awaited->second.is_changed;
        enumeration_->awaited.erase(awaited);
        Record expected = before;
        overlay(expected, key, rows_->at(key));
        expect_same(table_, record, expected);
    }

    Gate& gate_;
    const RecordCase<Gate, Record> table_;
    const std::shared_ptr<Rows<Record>> rows_;
    ModelCounts& counts_;
    const std::vector<Question<Record>> questions_;
    LONG Record::*const parent_;
    const LONG kept_;
    std::optional<Enumeration> enumeration_;
};

}  // namespace testing_support
