// The gates of the layers linked into this program, on the file system in use: lets disk, memory and power fail under
// them.
#pragma once

#include <cstdint>
#include <string>

#include "jet/base/format.h"
#include "tests/soak/day.h"
#include "tests/support/fault_file_system.h"

namespace soak {

inline constexpr char kStudioFolder[] = "/studio";
inline constexpr char kMainFile[] = "/studio/sldb.mdb";
inline constexpr char kInvoiceFile[] = "/studio/kvinvdb.mdb";

// Makes `folder` the studio's folder.
Gates static_gates(const std::string& folder);

// The studio at the start of a day.
struct Start {
    enum class Origin { kNew, kWorkedOn, kOld };
    Origin origin = Origin::kNew;
    std::int32_t version = 0;                 // of an old studio
    const jet::Format* format = &jet::kJet4;  // the same
    std::string text() const;
};
Start start_of_day(std::uint64_t day);

// Writes the initial files to the disk.
void lay_out(const Start& start, testing_support::FaultFileSystem& disk);
// What the gates read after opening such a studio.
const StudioRows& rows_after_opening(const Start& start);

// Opens the studio through the gates, compares it with the ledger, closes it and checks the structure of both files. ""
// when all is well.
std::string judge(const Ledger& ledger);
// What the gates read; `failure` when they do not open.
StudioRows rows_on_disk(std::string& failure);
// Of the closed files; reports damage as a failed check.
void check_structures();

}  // namespace soak
