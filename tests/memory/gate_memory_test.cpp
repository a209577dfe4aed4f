// Gates that run out of memory at every single allocation: one is refused, eight in a row, or all from then on.
// Everything reported as success is in the file afterwards, whole, and nothing else; closing works without memory; the
// next opening, with memory again, works.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <filesystem>
#include <map>

#include "db/database_files.h"
#include "db/session.h"
#include "frame/com_ptr.h"
#include "frame/entry_points.h"
#include "jet/check/check.h"
#include "tests/frame/late_binding.h"
#include "tests/gates/closed_file.h"
#include "tests/memory/refused_memory.h"
#include "tests/old_files/old_files.h"
#include "tests/support/temp_folder.h"

using namespace testing_support;
using frame::ComPtr;

namespace {

constexpr int kForEver = 1 << 30;

struct Row {
    std::string name;
    std::string notes;
    std::string client;
    LONG discount = 0;
    bool operator==(const Row&) const = default;
};
using Rows = std::map<LONG, Row>;

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.name << '|' << row.notes.size() << " of notes|" << row.client << '|' << row.discount;
}

std::string text_in(const ClosedRow& row, const char* column) {
    const auto* const text = std::get_if<std::u16string>(&row.at(column).value);
    return text != nullptr ? jet::to_utf8(*text) : std::string();
}

// The result of a call without memory: S_OK, a failure, or the exception of an opening.
template <class Call>
HRESULT outcome_of(Call&& call) {
    try {
        return call();
    } catch (CDaoException* error) {
        error->Delete();
        return E_FAIL;
    }
}

// `count`: how many allocations in a row are refused.
class GateMemoryFault : public testing::TestWithParam<int> {
protected:
    GateMemoryFault() : folder_(test_folder()) { db::set_database_folder(folder_.path()); }
    ~GateMemoryFault() override {
        gate_.reset();
        db::close(0);
        db::set_database_folder("");
    }

    void make_studio() {
        make_gate();
        ASSERT_EQ(gate_->OpenDB(), S_OK);
        for (int i = 0; i < 40; ++i) add(i);
        gate_->CloseDB();
        rows_ = rows_in_file();
    }
    void make_gate() {
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(frame::get_class_object(CLSID_DBgate1, IID_IClassFactory, factory.put()), S_OK);
        ASSERT_EQ(factory->CreateInstance(nullptr, IID_IDBgate1, gate_.put()), S_OK);
    }

    static Row row_of(int i) {
        return {"project " + std::to_string(i), std::string(static_cast<std::size_t>(i * 37 % 3000), 'n'),
                "client " + std::to_string(i % 7), i};
    }
    static ProjInfo record_of(int i) {
        const Row row = row_of(i);
        ProjInfo record;
        record.Name = row.name.c_str();
        record.Notes = row.notes.c_str();
        record.Client = row.client.c_str();
        record.ExData = row.discount;
        return record;
    }
    template <class Record>
    static LONG_PTR address(Record& record) {
        return reinterpret_cast<LONG_PTR>(&record);
    }
    void add(int i) {
        ProjInfo record = record_of(i);
        ASSERT_EQ(gate_->AddProj(address(record)), S_OK);
        rows_[record.ProjID] = row_of(i);
    }

    Rows rows_in_file() const {
        Rows rows;
        for (const auto& [key, row] : rows_of(folder_.file("sldb.mdb"), "Projects", "ProjID")) {
            rows[key] = {text_in(row, "Name"), text_in(row, "Notes"), text_in(row, "Client"),
                         std::get<std::int32_t>(row.at("ExData").value)};
        }
        return rows;
    }
    // One edit with memory for `granted` allocations: it is saved whole, which `saved` checks, or not at all. Returns
    // the number of refused allocations.
    template <class Edit, class Saved>
    int whole_or_not_at_all(int granted, Edit&& edit, Saved&& saved) {
        int refused = 0;
        HRESULT result = S_OK;
        {
            const RefusedMemory refusal(granted, GetParam());
            result = edit();
            refused = refusal.refused();
        }
        if (result == S_OK) saved();
        EXPECT_TRUE(result == S_OK || refused != 0);
        EXPECT_EQ(rows_by_gate(), rows_) << "after " << granted << " requests";
        return refused;
    }

    // Rows through the open gate.
    Rows rows_by_gate() {
        Rows rows;
        ProjInfo record;
        for (HRESULT at = gate_->EnumFirstProj(address(record)); at == S_OK;
             at = gate_->EnumNextProj(address(record))) {
            rows[record.ProjID] = {record.Name.GetString(), record.Notes.GetString(), record.Client.GetString(),
                                   record.ExData};
        }
        return rows;
    }

    // Closes both files, with memory again: they are sound and hold the expected rows.
    void expect_files(const std::string& when) {
        expect_sound(when);
        EXPECT_EQ(rows_in_file(), rows_) << when;
    }
    void expect_sound(const std::string& when) {
        for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) {
            jet::OpenOptions options;
            options.ignore_password = true;
            const auto database = jet::Database::open(folder_.file(name), options);
            for (const jet::Violation& violation : jet::check_structure(*database)) {
                ADD_FAILURE() << when << ": " << name << " page " << violation.page << ": " << violation.detail;
            }
            database->close();
        }
    }

    // Runs `work(n)` without memory after `granted` allocations, for increasing numbers until none is refused.
    // `growth`: from one number to the next, in percent.
    template <class Work>
    void at_every_request(const Work& work, int growth = 0) {
        int n = 0;
        int refusals = 0;
        for (int granted = 0;; granted += 1 + granted * growth / 100) {
            const int refused = work(n++, granted);
            refusals += refused != 0;
            if (refused == 0 || HasFailure()) break;
        }
        EXPECT_GT(refusals, 10);
    }

    TempFolder folder_;
    ComPtr<IDBgate1> gate_;
    Rows rows_;

private:
    // The tests examine the files, not the disk: hundreds of openings need a quick one.
    static TempFolder test_folder() {
#ifndef _WIN32
        if (std::filesystem::is_directory("/dev/shm")) setenv("TMPDIR", "/dev/shm", 1);
#endif
        return {};
    }
};

INSTANTIATE_TEST_SUITE_P(Refused, GateMemoryFault, testing::Values(1, 8, kForEver));

}  // namespace

TEST_P(GateMemoryFault, add_saves_the_whole_row_or_nothing) {
    make_studio();
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    at_every_request([&](int n, int granted) {
        ProjInfo record = record_of(100 + n);
        return whole_or_not_at_all(
            granted, [&] { return gate_->AddProj(address(record)); }, [&] { rows_[record.ProjID] = row_of(100 + n); });
    });
    gate_->CloseDB();
    expect_files("after adding");
}

TEST_P(GateMemoryFault, update_saves_the_whole_change_or_nothing) {
    make_studio();
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    at_every_request([&](int n, int granted) {
        const LONG key = std::next(rows_.begin(), n % static_cast<int>(rows_.size()))->first;
        ProjInfo record = record_of(200 + n);
        record.ProjID = key;
        return whole_or_not_at_all(
            granted, [&] { return gate_->UpdateProj(address(record)); }, [&] { rows_[key] = row_of(200 + n); });
    });
    gate_->CloseDB();
    expect_files("after changing");
}

TEST_P(GateMemoryFault, delete_takes_the_row_or_nothing) {
    make_studio();
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    at_every_request([&](int n, int granted) {
        if (rows_.size() < 10) add(300 + n);
        const LONG key = rows_.begin()->first;
        return whole_or_not_at_all(
            granted, [&] { return gate_->DeleteProj(key); }, [&] { rows_.erase(key); });
    });
    gate_->CloseDB();
    expect_files("after deleting");
}

TEST_P(GateMemoryFault, enumeration_gives_whole_rows_or_ends) {
    make_studio();
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    at_every_request(
        [&](int, int granted) {
            Rows seen;
            ProjInfo record;
            const RefusedMemory refusal(granted, GetParam());
            HRESULT at = gate_->EnumFirstProj(address(record));
            for (; at == S_OK; at = gate_->EnumNextProj(address(record))) {
                EXPECT_TRUE(record.Name == rows_.at(record.ProjID).name.c_str());
                EXPECT_TRUE(record.Notes == rows_.at(record.ProjID).notes.c_str());
            }
            return refusal.refused();
        },
        3);
    EXPECT_EQ(rows_by_gate(), rows_);
    gate_->CloseDB();
    expect_files("after enumerating");
}

TEST_P(GateMemoryFault, list_of_names_takes_a_name_or_nothing) {
    make_studio();
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    int expected = 0;
    const auto count = [&] {
        int names = 0;
        char name[256];
        for (HRESULT at = gate_->EnumFirstTrackType(name); at == S_OK; at = gate_->EnumNextTrackType(name)) ++names;
        return names;
    };
    expected = count();
    at_every_request([&](int n, int granted) {
        std::string name = "type " + std::to_string(n);
        int refused = 0;
        HRESULT result = S_OK;
        {
            const RefusedMemory refusal(granted, GetParam());
            result = gate_->AddTrackType(name.data());
            refused = refusal.refused();
        }
        expected += result == S_OK;
        EXPECT_EQ(count(), expected) << "after " << granted << " requests";
        return refused;
    });
}

// Also with everything that a burst of edits leaves unsynced.
TEST_P(GateMemoryFault, closing_needs_no_memory) {
    make_studio();
    at_every_request([&](int n, int granted) {
        EXPECT_EQ(gate_->OpenDB(), S_OK);
        ProjInfo record;
        EXPECT_EQ(gate_->EnumFirstProj(address(record)), S_OK);  // a cursor is left open
        add(400 + n);
        int refused = 0;
        {
            const RefusedMemory refusal(granted, GetParam());
            EXPECT_EQ(gate_->CloseDB(), S_OK);
            refused = refusal.refused();
        }
        EXPECT_EQ(gate_->FindProj(address(record)), E_FAIL);  // closed
        expect_files("closed after " + std::to_string(granted) + " requests");
        return n < 12 ? 1 : refused;  // there may be none at all
    });
}

TEST_P(GateMemoryFault, last_release_of_a_gate_needs_no_memory) {
    make_studio();
    at_every_request([&](int n, int granted) {
        make_gate();
        EXPECT_EQ(gate_->OpenDB(), S_OK);
        ProjInfo record;
        EXPECT_EQ(gate_->EnumFirstProj(address(record)), S_OK);
        add(500 + n);
        int refused = 0;
        {
            const RefusedMemory refusal(granted, GetParam());
            gate_.reset();
            db::close(0);
            refused = refusal.refused();
        }
        expect_files("released after " + std::to_string(granted) + " requests");
        make_gate();
        return n < 12 ? 1 : refused;
    });
}

TEST_P(GateMemoryFault, opening_works_or_leaves_the_files_closed_and_whole) {
    make_studio();
    at_every_request(
        [&](int, int granted) {
            int refused = 0;
            HRESULT result = S_OK;
            {
                const RefusedMemory refusal(granted, GetParam());
                result = outcome_of([&] { return gate_->OpenDB(); });
                refused = refusal.refused();
            }
            EXPECT_TRUE(result == S_OK || refused != 0);
            // With memory again, from any state reached by then: rows are saved permanently.
            EXPECT_EQ(gate_->OpenDB(), S_OK) << granted;
            add(600 + granted);
            gate_->CloseDB();
            if (granted % 16 == 0) expect_files("opened after " + std::to_string(granted) + " requests");
            return refused;
        },
        1);
    expect_files("at the end");
}

// Operations after a failed opening do not end in a transaction that nobody commits.
TEST_P(GateMemoryFault, what_is_saved_after_a_failed_opening_stays) {
    make_studio();
    at_every_request(
        [&](int n, int granted) {
            int refused = 0;
            {
                const RefusedMemory refusal(granted, GetParam());
                outcome_of([&] { return gate_->OpenDB(); });
                refused = refusal.refused();
            }
            ProjInfo record = record_of(700 + n);
            if (gate_->AddProj(address(record)) == S_OK) rows_[record.ProjID] = row_of(700 + n);
            gate_->CloseDB();
            if (n % 8 == 0) expect_files("opened after " + std::to_string(granted) + " requests");
            return refused;
        },
        2);
    expect_files("at the end");
}

// A step of the upgrade that runs out of memory is rolled back, and no transaction stays open.
TEST_P(GateMemoryFault, upgrading_leaves_whole_files_that_keep_what_is_saved) {
    make_gate();
    at_every_request(
        [&](int n, int granted) {
            for (const char* const name : {"sldb.mdb", "kvinvdb.mdb"}) std::filesystem::remove(folder_.file(name));
            make_old_studio(
                folder_.path(), 200000,
                {.projects = 2, .songs = 2, .tracks = 2, .sessions = 2, .engineers = 2, .contacts = 2, .invoices = 1});
            int refused = 0;
            {
                const RefusedMemory refusal(granted, GetParam());
                outcome_of([&] { return gate_->OpenDB(); });
                refused = refusal.refused();
            }
            char name[] = "Guitar";
            const bool saved = gate_->AddTrackType(name) == S_OK;
            gate_->CloseDB();
            EXPECT_EQ(gate_->OpenDB(), S_OK);
            char found[256] = "";
            bool is_there = false;
            for (HRESULT at = gate_->EnumFirstTrackType(found); at == S_OK; at = gate_->EnumNextTrackType(found)) {
                is_there |= std::string_view(found) == name;
            }
            EXPECT_TRUE(is_there || !saved) << granted;
            gate_->CloseDB();
            expect_sound("upgraded after " + std::to_string(granted) + " requests, round " + std::to_string(n));
            return refused;
        },
        25);
}

TEST_P(GateMemoryFault, creating_makes_whole_files_or_none) {
    make_gate();
    at_every_request(
        [&](int, int granted) {
            for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
                std::filesystem::remove(entry.path());
            }
            int refused = 0;
            HRESULT result = S_OK;
            {
                const RefusedMemory refusal(granted, GetParam());
                result = outcome_of([&] { return gate_->OpenDB(); });
                refused = refusal.refused();
            }
            EXPECT_TRUE(result == S_OK || refused != 0);
            EXPECT_EQ(gate_->OpenDB(), S_OK) << granted;
            rows_ = rows_by_gate();
            add(1);
            gate_->CloseDB();
            expect_files("made after " + std::to_string(granted) + " requests");
            return refused;
        },
        20);
}

TEST_P(GateMemoryFault, failure_is_the_same_without_memory_for_its_words) {
    make_studio();
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    at_every_request([&](int, int granted) {
        HRESULT result = S_OK;
        HRESULT given = E_FAIL;
        BSTR words = nullptr;
        int refused = 0;
        {
            const RefusedMemory refusal(granted, GetParam());
            result = gate_->DeleteProj(999);
            IErrorInfo* info = nullptr;
            if (GetErrorInfoOf(gate_.get(), &info) == S_OK) {
                given = info->GetDescription(&words);
                info->Release();
            }
            refused = refusal.refused();
        }
        EXPECT_EQ(result, E_FAIL);
        EXPECT_EQ(given, S_OK);
        if (refused == 0) {
            EXPECT_NE(words, nullptr);
        }
        SysFreeString(words);
        return refused;
    });
}

TEST_P(GateMemoryFault, call_by_name_lets_nothing_out) {
    make_studio();
    ASSERT_EQ(gate_->OpenDB(), S_OK);
    const DISPID id = id_of(*gate_, u"AddTrackType");
    const DISPID first = id_of(*gate_, u"EnumFirstTrackType");
    at_every_request([&](int n, int granted) {
        Variant name = Variant::text(u"type " + std::u16string(static_cast<std::size_t>(n % 50), u'x'));
        Variant found;
        Variant reference = Variant::ref(found);
        DISPPARAMS adding{&name, nullptr, 1, 0};
        DISPPARAMS finding{&reference, nullptr, 1, 0};
        EXCEPINFO one{};
        EXCEPINFO two{};
        int refused = 0;
        {
            const RefusedMemory refusal(granted, GetParam());
            gate_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &adding, nullptr, &one, nullptr);
            gate_->Invoke(first, IID_NULL, 0, DISPATCH_METHOD, &finding, nullptr, &two, nullptr);
            refused = refusal.refused();
        }
        for (const EXCEPINFO& exception : {one, two}) {
            SysFreeString(exception.bstrSource);
            SysFreeString(exception.bstrDescription);
        }
        return refused;
    });
}
