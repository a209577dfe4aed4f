// What each version of the component has added to the files of the one before, in the order of its upgrade. The upgrade
// reads it, and so does who has to know how an older file, or one that was upgraded, is laid out.
#pragma once

#include <cstdint>
#include <span>

#include "db/upgrade/added_fields.h"

namespace db {

struct VersionAdditions {
    std::int32_t version;
    std::span<const char* const> studio_tables;  // of db/schema.h, in the order of their creation
    std::span<const AddedFields> studio_fields;
    std::span<const AddedFields> invoice_fields;
};

// From the oldest; what is in none of them is as old as the files are.
std::span<const VersionAdditions> schema_history();
// Of that list; null where the version has added nothing.
const VersionAdditions* additions_of(std::int32_t version);

// A field of the studio's tables that version 200000 has turned into `became`, and taken away.
struct RemovedField {
    const char* table;
    const char* field;  // a text
    const char* became;
};
std::span<const RemovedField> removed_fields();

}  // namespace db
