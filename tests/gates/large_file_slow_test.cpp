// A studio whose file grows to the format's limit of two gigabytes: what it takes of memory, and that a full file loses
// nothing.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>

#include "jet/check/check.h"
#include "jet/tables/database.h"
#include "tests/frame/gate_host.h"
#include "tests/support/memory_in_use.h"

namespace {

using namespace testing_support;

constexpr std::uint64_t kLimit = std::uint64_t{2} << 30;
// The pages that are kept, and what else it takes: a process of 32 bits has less room, and keeps fewer.
constexpr std::uint64_t kMostMemory = (sizeof(void*) >= 8 ? 320u : 150u) << 20;
constexpr std::size_t kNotes = 60000;  // characters of each project

std::string notes_of(LONG number) {
    std::string notes = std::to_string(number) + ' ';
    notes.resize(kNotes, static_cast<char>('a' + number % 26));
    return notes;
}

class LargeFileSlow : public testing::Test {
protected:
    void SetUp() override { memory_before_ = memory_in_use(); }

    ProjInfo project(LONG number) const {
        ProjInfo record;
        record.Name = ("Project " + std::to_string(number)).c_str();
        record.Notes = notes_of(number).c_str();
        record.ExData = number;
        return record;
    }

    void look_at_memory() { most_ = std::max(most_, memory_in_use()); }
    std::uint64_t memory_taken() const { return most_ - std::min(most_, memory_before_); }

    // The keys of all rows, each with the notes that it was added with.
    std::set<LONG> keys(IDBgate1& gate) {
        std::set<LONG> found;
        ProjInfo record;
        for (HRESULT result = gate.EnumFirstProj(address_of(record)); result == S_OK;
             result = gate.EnumNextProj(address_of(record))) {
            EXPECT_EQ(std::string(record.Notes), notes_of(record.ExData)) << record.ProjID;
            found.insert(record.ProjID);
            if (found.size() % 500 == 0) look_at_memory();
        }
        return found;
    }

    GateHost host_;

private:
    std::uint64_t memory_before_ = 0;
    std::uint64_t most_ = 0;
};

TEST_F(LargeFileSlow, two_gigabytes_take_little_memory_and_a_full_file_loses_nothing) {
    const auto gate = host_.create<IDBgate1>();
    ASSERT_EQ(gate->OpenDB(), S_OK);
    std::set<LONG> added;
    for (LONG number = 1;; ++number) {
        ProjInfo record = project(number);
        if (gate->AddProj(address_of(record)) != S_OK) break;
        added.insert(record.ProjID);
        if (number % 500 == 0) look_at_memory();
        ASSERT_LT(number * kNotes, 2 * kLimit) << "the file never gets full";
    }
    EXPECT_GT(std::filesystem::file_size(host_.file("sldb.mdb")), kLimit - (64u << 20));
    EXPECT_LE(std::filesystem::file_size(host_.file("sldb.mdb")), kLimit);

    // A full file can be read, and has room again for what is deleted.
    const LONG gone = *added.begin();
    EXPECT_EQ(gate->DeleteProj(gone), S_OK);
    ProjInfo again = project(1);
    EXPECT_EQ(gate->AddProj(address_of(again)), S_OK);
    added.erase(gone);
    added.insert(again.ProjID);
    EXPECT_EQ(gate->CloseDB(), S_OK);

    ASSERT_EQ(gate->OpenDB(), S_OK);
    ProjInfo found;
    found.ProjID = *added.rbegin();
    EXPECT_EQ(gate->FindProj(address_of(found)), S_OK);
    look_at_memory();
    EXPECT_EQ(keys(*gate), added);
    EXPECT_EQ(gate->CloseDB(), S_OK);
    look_at_memory();
    EXPECT_LT(memory_taken(), kMostMemory);
    std::printf("%zu projects, %.0f MB of memory\n", added.size(), static_cast<double>(memory_taken()) / (1u << 20));

    jet::OpenOptions options;
    options.read_only = true;
    options.ignore_password = true;
    const auto database = jet::Database::open(host_.file("sldb.mdb"), options);
    for (const jet::Violation& violation : jet::check_structure(*database)) {
        ADD_FAILURE() << "page " << violation.page << ": " << violation.rule << ": " << violation.detail;
    }
}

}  // namespace
