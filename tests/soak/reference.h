// The permitted content of files whose creation or upgrade was interrupted: every state between two steps.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/old_files/file_content.h"
#include "tests/old_files/old_files.h"

namespace soak {

inline constexpr testing_support::StudioSize kSmallStudio = {
    .projects = 3, .songs = 12, .tracks = 6, .sessions = 25, .engineers = 3, .contacts = 5, .invoices = 6};

struct OldStudio {
    std::vector<std::uint8_t> main, invoice;  // the files
    // Content after none, one, ... all of the steps.
    std::vector<testing_support::Content> main_steps, invoice_steps;
};
// Computed at the first call, with the engine and the upgrade linked into this program.
const OldStudio& old_studio(std::int32_t version, const jet::Format& format = jet::kJet4);

// One line: the difference from the nearest step; "" when the content equals one.
std::string difference_to_nearest(const std::vector<testing_support::Content>& steps,
                                  const testing_support::Content& found);

}  // namespace soak
