#include "fuzz/mutated_run.h"

#include <stdexcept>

#include "jet/tables/database.h"
#include "tests/jet/exercise.h"
#include "tests/support/fault_file_system.h"

namespace kvdb_fuzz {

namespace {

constexpr char kPath[] = "mutated.mdb";
constexpr char kJournal[] = "mutated.mdb-journal";

void read_past_damage() {
    jet::OpenOptions options;
    options.read_only = true;
    options.ignore_password = true;
    options.on_damage = [](const jet::DamagedPlace&) {};
    try {
        const auto database = jet::Database::open(kPath, options);
        jet::read_rows(*database);
        database->close();
    } catch (const jet::Error&) {
    }
}

}  // namespace

void use_files(const MutatedFiles& files) {
    testing_support::FaultFileSystem disk;
    const testing_support::UseFileSystem use(disk);
    disk.set_content(kPath, files.database);
    if (!files.journal.empty()) disk.set_content(kJournal, files.journal);
    jet::read_file(kPath);
    read_past_damage();
    if (disk.change_count() != 0) throw std::logic_error("reading has changed the file");
    if (jet::change_file(kPath) != 0) return;
    const int again = jet::read_file(kPath);
    if (again != 0) throw std::logic_error("what was written cannot be opened: " + std::to_string(again));
}

}  // namespace kvdb_fuzz
