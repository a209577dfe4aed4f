// A column to be made, in a line.
#pragma once

#include <string>
#include <utility>

#include "jet/schema/schema_editor.h"

namespace jet {

inline NewColumn new_column(std::u16string name, ColumnType type, bool autonumber = false) {
    NewColumn column;
    column.name = std::move(name);
    column.type = type;
    column.allow_zero_length = true;
    column.autonumber = autonumber;
    return column;
}

}  // namespace jet
