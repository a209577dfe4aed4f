// When a value of ours and what another reader prints of it are the same, and the known faults of those
// readers, for which they may differ.
#pragma once

#include <string>

#include "jet/base/types.h"
#include "jet/schema/table_def.h"
#include "tests/interop/readers.h"

namespace interop {

enum class Reader { kMdbExport, kMdbReader };

// A value and where it comes from.
struct Sample {
    const jet::ColumnDef& column;
    const jet::Value& value;
};

// Whether the reader printed exactly this value.
bool agrees(Reader reader, const Sample& sample, const Field& field);

// Name of the known fault of the reader that explains what it printed; null when none does. Only asked
// where agrees() is false.
const char* known_fault(Reader reader, const Sample& sample, const Field& field);

// Whether known faults of both readers meet in the value, so that neither prints it: type 0x11, and a time of
// day before 1899-12-30.
bool is_unreadable(const Sample& sample);

// The value for messages.
std::string describe(const jet::Value& value);

// Hex digits, capital.
std::string hex_of(const std::uint8_t* bytes, std::size_t count);

}  // namespace interop
