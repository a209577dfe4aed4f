// The row that an AddNew or an Edit builds, until Update stores it. Inside afx/ only.
#pragma once

#include <cstdint>
#include <vector>

#include "afx/dao_constants.h"
#include "jet/tables/table.h"

namespace afx {

// Values are in their columns' own types, by position in the table's columns, and are not looked at while nothing is
// pending.
class EditBuffer {
public:
    // dbEditNone, dbEditInProgress or dbEditAdd.
    std::int16_t mode() const { return mode_; }
    bool is_pending() const { return mode_ != dbEditNone; }
    bool is_adding() const { return mode_ == dbEditAdd; }
    bool is_editing() const { return mode_ == dbEditInProgress; }

    // Auto-numbers are taken.
    void begin_add(jet::Table& table);
    void begin_edit(const jet::Table& table);
    void cancel() { mode_ = dbEditNone; }

    void set(std::size_t field, jet::Value value);
    // What stands in the row's place: every value of a new row, the assigned ones of an edited one; null for the rest.
    const jet::Value* value(std::size_t field) const;

    const std::vector<jet::Value>& values() const { return values_; }
    std::vector<jet::ColumnChange> changes() const;

private:
    void clear(const jet::Table& table);

    std::int16_t mode_ = dbEditNone;
    std::vector<jet::Value> values_;
    std::vector<std::uint8_t> assigned_;
};

}  // namespace afx
