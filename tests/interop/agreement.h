// Decides whether a value of ours and another reader's output for it are the same; lists the known faults of those
// readers that permit a difference.
#pragma once

#include <string>

#include "jet/base/types.h"
#include "jet/schema/table_def.h"
#include "tests/interop/readers.h"

namespace interop {

enum class Reader { kMdbExport, kMdbReader };

// A value and its origin.
struct Sample {
    const jet::ColumnDef& column;
    const jet::Value& value;
};

// Whether the reader printed exactly this value.
bool agrees(Reader reader, const Sample& sample, const Field& field);

// Name of the reader's known fault that explains its output; null when none does. Only called when agrees() is false.
const char* known_fault(Reader reader, const Sample& sample, const Field& field);

// Whether known faults of both readers affect the value, so that neither prints it: type 0x11, and a time of day before
// 1899-12-30.
bool is_unreadable(const Sample& sample);

// The value for messages.
std::string describe(const jet::Value& value);

// Hex digits, upper case.
std::string hex_of(const std::uint8_t* bytes, std::size_t count);

}  // namespace interop
