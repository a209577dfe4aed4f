// The columns of a mapping as one text.
#pragma once

#include <span>
#include <string>

#include "studio/columns.h"

// Names in order, separated by blanks.
template <class Record>
std::string column_names(std::span<const studio::Column<Record>> columns) {
    std::string names;
    for (const studio::Column<Record>& column : columns) {
        if (!names.empty()) names += ' ';
        names += column.name;
    }
    return names;
}
