// Uses studios in a fixed way with the clock stopped, and keeps their files, which are the same on every system.
//
//     file_maker FOLDER            writes the files of a studio used at random to FOLDER
//     file_maker old FOLDER        makes a studio of an earlier version there; KVDB_OLD_FILES=jet3 in Jet 3 files
//     file_maker upgrade FOLDER    opens that studio, which upgrades it, and adds a row
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/frame/gate_host.h"
#include "tests/old_files/old_files.h"
#include "tests/same_files/fixed_clock.h"

namespace {

using namespace testing_support;

// Its dates are dates: those in texts of earlier versions are read in the system's own order.
constexpr std::int32_t kOldVersion = 200000;

int upgrade(const std::string& folder) {
    const Component component(folder);
    const auto gate = component.create<IDBgate1>();
    ProjInfo project;
    project.Name = "Added after the upgrade";
    const bool is_done = gate->OpenDB() == S_OK && gate->AddProj(address_of(project)) == S_OK;
    return is_done && gate->CloseDB() == S_OK ? 0 : 1;
}

int use_at_random(const std::string& folder) {
#ifdef _WIN32
    _putenv_s("KVDB_KEEP_FILES", folder.c_str());
#else
    setenv("KVDB_KEEP_FILES", folder.c_str(), 1);
#endif
    std::string name = "file_maker";
    char* arguments[] = {name.data(), nullptr};
    int count = 1;
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}

}  // namespace

int main(int argc, char** argv) {
    const std::string work = argc == 3 ? argv[1] : "";
    if (argc != 2 && work != "old" && work != "upgrade") {
        std::fprintf(stderr, "usage: file_maker [old | upgrade] FOLDER\n");
        return 2;
    }
    const std::string folder = argv[argc - 1];
    stop_clock();
    if (work.empty()) return use_at_random(folder);
    if (work == "upgrade") return upgrade(folder);
    make_old_studio(folder, kOldVersion);
    return 0;
}
