// One thread's share of the operations: records what it was told of every row, to be compared with the file afterwards.
#pragma once

#include <kvdb/kvdb.h>

#include <map>
#include <random>
#include <string>

#include "tests/frame/gate_host.h"
#include "tests/gates/closed_file.h"

namespace testing_support {

// Name of every project of one worker by its key. Workers share tables, never rows.
using Projects = std::map<LONG, std::string>;

class Worker {
public:
    explicit Worker(unsigned number) : number_(number), random_(number) {}

    // One random operation through the gate. Everything reported as success must be in the file.
    void step(IDBgate1& gate) {
        switch (random_() % 6) {
            case 0:
            case 1: return add(gate);
            case 2: return change(gate);
            case 3: return remove(gate);
            case 4: return find(gate);
            default: return look_through(gate);
        }
    }

    // Number of read results that contradict earlier results.
    int wrong_answers() const { return wrong_answers_; }
    int failures() const { return failures_; }
    const Projects& projects() const { return projects_; }

private:
    std::string new_name() {
        ++names_;
        return "worker " + std::to_string(number_) + " row " + std::to_string(names_) + std::string(names_ % 200, '.');
    }
    bool succeeded(HRESULT result) {
        failures_ += result != S_OK;
        return result == S_OK;
    }
    Projects::iterator any() {
        return std::next(projects_.begin(), random_() % static_cast<unsigned>(projects_.size()));
    }

    void add(IDBgate1& gate) {
        ProjInfo project;
        const std::string name = new_name();
        project.Name = name.c_str();
        if (!succeeded(gate.AddProj(address_of(project)))) return;
        wrong_answers_ += !projects_.emplace(project.ProjID, name).second;
    }
    void change(IDBgate1& gate) {
        if (projects_.empty()) return;
        const auto row = any();
        ProjInfo project;
        project.ProjID = row->first;
        const std::string name = new_name();
        project.Name = name.c_str();
        if (succeeded(gate.UpdateProj(address_of(project)))) row->second = name;
    }
    void remove(IDBgate1& gate) {
        if (projects_.size() < 5) return;
        const auto row = any();
        if (succeeded(gate.DeleteProj(row->first))) projects_.erase(row);
    }
    void find(IDBgate1& gate) {
        if (projects_.empty()) return;
        const auto row = any();
        ProjInfo project;
        project.ProjID = row->first;
        if (succeeded(gate.FindProj(address_of(project)))) wrong_answers_ += project.Name != row->second.c_str();
    }
    // The cursor belongs to the gate, so threads on one gate step through one enumeration together.
    void look_through(IDBgate1& gate) {
        ProjInfo project;
        HRESULT result = gate.EnumFirstProj(address_of(project));
        for (int i = 0; i < 5 && result == S_OK; ++i) {
            result = gate.EnumNextProj(address_of(project));
            LONG in_stock = 0;
            gate.ComputeInStock(1, &in_stock);
        }
        char name[256] = "";
        gate.EnumFirstTrackType(name);
        gate.AddTrackType(name_of_type().data());
    }
    std::string name_of_type() { return "type " + std::to_string(random_() % 10); }

    const unsigned number_;
    std::minstd_rand random_;
    Projects projects_;
    unsigned names_ = 0;
    int wrong_answers_ = 0;
    int failures_ = 0;
};

// The names of all projects in a closed file.
inline Projects projects_in(const std::string& path) {
    Projects projects;
    for (const auto& [key, row] : rows_of(path, "Projects", "ProjID")) {
        projects[key] = jet::to_utf8(std::get<std::u16string>(row.at("Name").value));
    }
    return projects;
}

}  // namespace testing_support
