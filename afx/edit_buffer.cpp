#include "afx/edit_buffer.h"

#include <utility>

namespace afx {

void EditBuffer::clear(const jet::Table& table) {
    const std::size_t count = table.def().columns.size();
    values_.assign(count, jet::Null{});
    assigned_.assign(count, 0);
}

void EditBuffer::begin_add(jet::Table& table) {
    clear(table);
    const std::vector<jet::ColumnDef>& columns = table.def().columns;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].is_autonumber() && columns[i].type == jet::ColumnType::kLong) {
            values_[i] = table.take_autonumber();
        }
    }
    mode_ = dbEditAdd;
}

void EditBuffer::begin_edit(const jet::Table& table) {
    clear(table);
    mode_ = dbEditInProgress;
}

void EditBuffer::set(std::size_t field, jet::Value value) {
    values_[field] = std::move(value);
    assigned_[field] = 1;
}

const jet::Value* EditBuffer::value(std::size_t field) const {
    return is_adding() || (is_editing() && assigned_[field]) ? &values_[field] : nullptr;
}

std::vector<jet::ColumnChange> EditBuffer::changes() const {
    std::vector<jet::ColumnChange> changes;
    for (std::size_t i = 0; i < values_.size(); ++i) {
        if (assigned_[i]) changes.push_back({i, values_[i]});
    }
    return changes;
}

}  // namespace afx
