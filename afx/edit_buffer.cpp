#include "afx/edit_buffer.h"

#include <utility>

namespace afx {

void EditBuffer::clear(const jet::Table& table) {
    const std::size_t count = table.def().columns.size();
    values_.assign(count, jet::Null{});
    fields_.assign(count, {});
    texts_.clear();
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
    fields_[field].content = Content::kValue;
}

void EditBuffer::set_ascii(std::size_t field, std::string_view text) {
    constexpr std::size_t kUsualRow = 512;  // bytes of its texts
    if (texts_.capacity() < kUsualRow) texts_.reserve(kUsualRow);
    fields_[field] = {Content::kAscii, static_cast<std::uint32_t>(texts_.size()),
                      static_cast<std::uint32_t>(text.size())};
    texts_ += text;
}

const jet::Value* EditBuffer::value(std::size_t field) {
    const bool is_assigned = is_pending() && fields_[field].content != Content::kUntouched;
    if (!is_adding() && !is_assigned) return nullptr;
    if (fields_[field].content == Content::kAscii) {
        const std::string_view narrow = text(fields_[field]);
        set(field, std::u16string(narrow.begin(), narrow.end()));
    }
    return &values_[field];
}

std::vector<jet::AsciiText> EditBuffer::texts() const {
    std::vector<jet::AsciiText> texts;
    texts.reserve(fields_.size());
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i].content == Content::kAscii) texts.push_back({i, text(fields_[i])});
    }
    return texts;
}

jet::RowId EditBuffer::insert_into(jet::Table& table) const { return table.insert(values_, texts()); }

void EditBuffer::update_in(jet::Table& table, jet::RowId row) const {
    std::vector<jet::ColumnChange> changes;
    changes.reserve(fields_.size());
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i].content == Content::kValue) changes.push_back({i, values_[i]});
    }
    const std::vector<jet::AsciiText> texts = this->texts();
    if (!changes.empty() || !texts.empty()) table.update(row, changes, texts);
}

}  // namespace afx
