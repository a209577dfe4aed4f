// How the tables of a studio lie in its files, for a file whose own definitions are lost: what the component creates,
// and what its upgrades make of the tables of earlier versions.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "db/database_files.h"
#include "db/schema.h"
#include "jet/schema/table_def.h"

namespace tools {

// Which of a studio's files it is, and how rows and texts are stored in it.
struct StudioForm {
    db::DatabaseFile file = db::DatabaseFile::kMain;
    const jet::Format* format = &jet::kJet4;
    std::uint16_t code_page = 0;  // of texts; 0: UTF-16
};

struct KnownLayout {
    const db::TableSchema* table = nullptr;
    // Its page, maps and counts are unset.
    jet::TableDef def;
    std::vector<std::int32_t> versions;  // of the files that have it so, as history_version() gives them
};

// The version of the schema's history that a file of that version stands at; 100000 for the oldest.
std::int32_t history_version(std::int32_t version);
// All ways in which the tables of that file may be laid out, table by table in the order of creation.
const std::vector<KnownLayout>& known_layouts(const StudioForm& form);
// The columns of a table in a file that was created by that version.
jet::TableDef layout_at(const StudioForm& form, const db::TableSchema& table, std::int32_t version);
// In the order of creation, the engineers' list of old among them.
std::vector<const db::TableSchema*> known_tables(db::DatabaseFile file);

}  // namespace tools
