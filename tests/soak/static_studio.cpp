#include "tests/soak/static_studio.h"

#include <map>
#include <stdexcept>
#include <tuple>

#include "db/database_files.h"
#include "frame/entry_points.h"
#include "tests/soak/reference.h"

namespace soak {
namespace {

using namespace testing_support;

// A studio that has been used for a day.
const FaultFileSystem& worked_on_disk() {
    static FaultFileSystem disk;
    static const bool is_made = [] {
        class Deaf final : public Witness {
            void begun(const Operation&) override {}
            void succeeded(const Operation&) override {}
            void failed(const Operation& operation) override {
                throw std::runtime_error("making the studio: " + describe(operation));
            }
        } deaf;
        const UseFileSystem use(disk);
        const Gates gates = static_gates(kStudioFolder);
        if (gates.open() != S_OK) throw std::runtime_error("the studio cannot be made");
        Day day(4711, read_all(gates));
        for (int i = 0; i < 150; ++i) day.step(gates, deaf);
        gates.close();
        return true;
    }();
    static_cast<void>(is_made);
    return disk;
}

}  // namespace

Gates static_gates(const std::string& folder) {
    db::set_database_folder(folder);
    return make_gates(frame::get_class_object);
}

std::string Start::text() const {
    switch (origin) {
        case Origin::kNew: return "a new studio";
        case Origin::kWorkedOn: return "a studio that has been worked on";
        case Origin::kOld: return std::string("a ") + format->name + " studio of version " + std::to_string(version);
    }
    return {};
}

Start start_of_day(std::uint64_t day) {
    switch (day % 3) {
        case 0: return {Start::Origin::kWorkedOn};
        case 1: return {Start::Origin::kNew};
        default: break;
    }
    // Each version in turn, with Jet 4 files and with Jet 3 files.
    const std::uint64_t turn = day / 3;
    return {Start::Origin::kOld, kOldVersions[turn / 2 % std::size(kOldVersions)],
            turn % 2 == 0 ? &jet::kJet4 : &jet::kJet3};
}

void lay_out(const Start& start, FaultFileSystem& disk) {
    switch (start.origin) {
        case Start::Origin::kNew: return;
        case Start::Origin::kWorkedOn:
            for (const char* const path : {kMainFile, kInvoiceFile}) {
                disk.set_content(path, worked_on_disk().content(path));
            }
            return;
        case Start::Origin::kOld:
            disk.set_content(kMainFile, old_studio(start.version, *start.format).main);
            disk.set_content(kInvoiceFile, old_studio(start.version, *start.format).invoice);
            return;
    }
}

const StudioRows& rows_after_opening(const Start& start) {
    static std::map<std::tuple<Start::Origin, std::int32_t, bool>, StudioRows> known;
    auto& rows = known[{start.origin, start.version, start.format->is_jet3()}];
    if (!rows.empty()) return rows;
    FaultFileSystem disk;
    lay_out(start, disk);
    const UseFileSystem use(disk);
    std::string failure;
    rows = rows_on_disk(failure);
    if (!failure.empty()) throw std::runtime_error(failure);
    return rows;
}

StudioRows rows_on_disk(std::string& failure) {
    const Gates gates = static_gates(kStudioFolder);
    std::string reason;
    if (gates.open(&reason) != S_OK) {
        failure = "the studio does not open again: " + reason;
        return StudioRows(gate_tables().size());
    }
    StudioRows rows = read_all(gates);
    gates.close();
    return rows;
}

void check_structures() {
    for (const char* const path : {kMainFile, kInvoiceFile}) content_of(path);
}

std::string judge(const Ledger& ledger) {
    std::string failure;
    const StudioRows rows = rows_on_disk(failure);
    if (failure.empty()) failure = ledger.compare(rows);
    check_structures();
    return failure;
}

}  // namespace soak
