// A host killed at any moment loses no call that had returned S_OK: a child works on projects through the gate
// and tells of every call that succeeded; the parent kills it, opens the studio again and compares.
#pragma once

#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <iterator>
#include <map>
#include <random>
#include <string>

#include "jet/check/check.h"
#include "jet/tables/database.h"
#include "os/system.h"
#include "tests/frame/gate_host.h"

namespace testing_support {

// What the child has done, told after the call has returned. `begun` comes before it: the one call that the
// kill may have cut off is allowed to have happened or not.
struct Told {
    enum Kind : std::int32_t { kBegun, kAdded, kUpdated, kDeleted };
    Kind kind;
    Kind what;  // for kBegun: the call that begins
    std::int32_t key;
    std::int32_t value;
};

inline std::string name_of(std::int32_t value) {
    return "project " + std::to_string(value) + std::string(static_cast<std::size_t>(value % 150), 'x');
}

inline ProjInfo project_of(std::int32_t key, std::int32_t value) {
    ProjInfo project{};
    project.ProjID = key;
    project.ClientID = value;
    project.Name = name_of(value).c_str();
    project.Notes = std::string(static_cast<std::size_t>(value % 17 * 400), 'n').c_str();
    return project;
}

// What the child does until it is killed: `tell` hands a word to the parent. Returns the place of a call that failed.
template <class Tell>
int work(const std::string& folder, unsigned seed, std::map<std::int32_t, std::int32_t> projects, Tell&& tell) {
    Component component(folder);
    const ComPtr<IDBgate1> gate = component.create<IDBgate1>();
    if (gate->OpenDB() != S_OK) return 4;
    std::mt19937 random(seed);
    for (std::int32_t value = static_cast<std::int32_t>(seed) * 100000;; ++value) {
        const unsigned choice = projects.size() < 5 ? 0 : random() % 4;
        if (choice <= 1) {
            ProjInfo project = project_of(0, value);
            tell({Told::kBegun, Told::kAdded, 0, value});
            if (gate->AddProj(address_of(project)) != S_OK) return 5;
            tell({Told::kAdded, Told::kAdded, project.ProjID, value});
            projects[project.ProjID] = value;
            continue;
        }
        auto chosen = projects.begin();
        std::advance(chosen, random() % projects.size());
        const std::int32_t key = chosen->first;
        if (choice == 2) {
            ProjInfo project = project_of(key, value);
            tell({Told::kBegun, Told::kUpdated, key, value});
            if (gate->UpdateProj(address_of(project)) != S_OK) return 6;
            tell({Told::kUpdated, Told::kUpdated, key, value});
            chosen->second = value;
        } else {
            tell({Told::kBegun, Told::kDeleted, key, 0});
            if (gate->DeleteProj(key) != S_OK) return 7;
            tell({Told::kDeleted, Told::kDeleted, key, 0});
            projects.erase(chosen);
        }
    }
}

inline void take_in(std::map<std::int32_t, std::int32_t>& projects, const Told& told) {
    if (told.kind == Told::kDeleted) {
        projects.erase(told.key);
    } else if (told.kind != Told::kBegun) {
        projects[told.key] = told.value;
    }
}

inline std::map<std::int32_t, std::int32_t> read_projects(const std::string& folder) {
    Component component(folder);
    const ComPtr<IDBgate1> gate = component.create<IDBgate1>();
    EXPECT_EQ(gate->OpenDB(), S_OK);
    std::map<std::int32_t, std::int32_t> projects;
    ProjInfo project{};
    for (HRESULT result = gate->EnumFirstProj(address_of(project)); result == S_OK;
         result = gate->EnumNextProj(address_of(project))) {
        EXPECT_STREQ(project.Name.GetString(), name_of(project.ClientID).c_str());
        EXPECT_EQ(project.Notes.GetLength(), project.ClientID % 17 * 400);
        projects[project.ProjID] = project.ClientID;
        project = ProjInfo{};
    }
    gate->CloseDB();
    return projects;
}

inline void expect_sound(const std::string& folder, const char* name) {
    jet::OpenOptions options;
    options.read_only = true;
    options.ignore_password = true;
    const auto database = jet::Database::open(os::join_path(folder, name), options);
    for (const jet::Violation& violation : jet::check_structure(*database)) {
        ADD_FAILURE() << name << ": page " << violation.page << ": " << violation.rule << ": " << violation.detail;
    }
}

// Opens the studio after a kill: `told_projects` are there, and beyond them at most the call that was cut off. A
// finished call makes its "begun" harmless, for doing it once more changes nothing.
inline std::map<std::int32_t, std::int32_t> projects_after_kill(
    const std::string& folder, const std::map<std::int32_t, std::int32_t>& told_projects, const Told& cut_off) {
    std::map<std::int32_t, std::int32_t> projects = read_projects(folder);
    std::map<std::int32_t, std::int32_t> with_cut_off = told_projects;
    if (cut_off.what == Told::kAdded && projects.size() > told_projects.size()) {
        with_cut_off[projects.rbegin()->first] = cut_off.value;
    } else if (cut_off.what == Told::kUpdated) {
        if (with_cut_off.count(cut_off.key) != 0) with_cut_off[cut_off.key] = cut_off.value;
    } else if (cut_off.what == Told::kDeleted) {
        with_cut_off.erase(cut_off.key);
    }
    EXPECT_TRUE(projects == told_projects || projects == with_cut_off);
    expect_sound(folder, "sldb.mdb");
    return projects;
}

}  // namespace testing_support
