#include "tests/soak/static_studio.h"

#include <map>
#include <stdexcept>

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
        case Origin::kOld: return "a studio of version " + std::to_string(version);
    }
    return {};
}

Start start_of_day(std::uint64_t day) {
    switch (day % 3) {
        case 0: return {Start::Origin::kWorkedOn, 0};
        case 1: return {Start::Origin::kNew, 0};
        default: return {Start::Origin::kOld, kOldVersions[day / 3 % std::size(kOldVersions)]};
    }
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
            disk.set_content(kMainFile, old_studio(start.version).main);
            disk.set_content(kInvoiceFile, old_studio(start.version).invoice);
            return;
    }
}

const StudioRows& rows_after_opening(const Start& start) {
    static std::map<std::pair<Start::Origin, std::int32_t>, StudioRows> known;
    auto& rows = known[{start.origin, start.version}];
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
