// What each version of the component added to the files of the previous one, in the order of its upgrade. Used by the
// upgrade and by code that must know the layout of an older or upgraded file.
#pragma once

#include <cstdint>
#include <span>

#include "db/upgrade/added_fields.h"

namespace db {

struct VersionAdditions {
    std::int32_t version;
    std::span<const char* const> studio_tables;  // of db/schema.h, in order of creation
    std::span<const AddedFields> studio_fields;
    std::span<const AddedFields> invoice_fields;
};

// Oldest first; a table or field in none of them is in files of every version.
std::span<const VersionAdditions> schema_history();
// Null where the version added nothing.
const VersionAdditions* additions_of(std::int32_t version);

// A field of the studio's tables that version 200000 converted to `became` and removed.
struct RemovedField {
    const char* table;
    const char* field;  // a text
    const char* became;
};
std::span<const RemovedField> removed_fields();

}  // namespace db
