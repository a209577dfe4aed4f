// The row that an AddNew or an Edit builds, until Update stores it. Inside afx/ only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "afx/dao_constants.h"
#include "jet/tables/table.h"

namespace afx {

// Values are in their columns' own types, by position in the table's columns, and are not looked at while nothing is
// pending. Texts of nothing but ASCII that the record field exchange sets stay in their narrow form.
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
    // A text of nothing but ASCII without NUL.
    void set_ascii(std::size_t field, std::string_view text);
    // What stands in the row's place: every value of a new row, the assigned ones of an edited one; null for the rest.
    const jet::Value* value(std::size_t field);

    // Stores the row, which stays pending.
    jet::RowId insert_into(jet::Table& table) const;
    void update_in(jet::Table& table, jet::RowId row) const;

private:
    enum class Content : std::uint8_t { kUntouched, kValue, kAscii };
    struct Field {
        Content content = Content::kUntouched;
        std::uint32_t at = 0;  // of the narrow form, in texts_
        std::uint32_t size = 0;
    };

    void clear(const jet::Table& table);
    std::string_view text(const Field& field) const { return std::string_view(texts_).substr(field.at, field.size); }
    std::vector<jet::AsciiText> texts() const;

    std::int16_t mode_ = dbEditNone;
    std::vector<jet::Value> values_;
    std::vector<Field> fields_;
    std::string texts_;
};

}  // namespace afx
