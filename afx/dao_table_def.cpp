#include "afx/dao_table_def.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "afx/dao_error.h"
#include "afx/engine_database.h"
#include "jet/indexes/collation.h"
#include "os/system.h"

namespace {

constexpr LONG kMaxTextSize = 255;

struct FieldType {
    std::int16_t dao;
    jet::ColumnType engine;
    LONG size;  // bytes; text has its own, long values 0
};

constexpr FieldType kFieldTypes[] = {
    {dbBoolean, jet::ColumnType::kBoolean, 1},   {dbByte, jet::ColumnType::kByte, 1},
    {dbInteger, jet::ColumnType::kInteger, 2},   {dbLong, jet::ColumnType::kLong, 4},
    {dbCurrency, jet::ColumnType::kCurrency, 8}, {dbSingle, jet::ColumnType::kSingle, 4},
    {dbDouble, jet::ColumnType::kDouble, 8},     {dbDate, jet::ColumnType::kDate, 8},
    {dbText, jet::ColumnType::kText, 0},         {dbLongBinary, jet::ColumnType::kOle, 0},
    {dbMemo, jet::ColumnType::kMemo, 0},
};

jet::NewColumn new_column(const CDaoFieldInfo& info) {
    const auto type = std::find_if(std::begin(kFieldTypes), std::end(kFieldTypes),
                                   [&](const FieldType& t) { return t.dao == info.m_nType; });
    const std::string name(info.m_strName);
    if (type == std::end(kFieldTypes)) {
        jet::fail(jet::errors::kBadType, "Field '" + name + "' has a type that does not exist.");
    }
    if (info.m_bRequired || !info.m_strDefaultValue.IsEmpty() || !info.m_strValidationRule.IsEmpty()) {
        jet::fail(jet::errors::kReserved, "Field '" + name + "' asks for a rule that the engine does not make.");
    }
    jet::NewColumn column;
    column.name = os::widen(name);
    column.type = type->engine;
    column.autonumber = (info.m_lAttributes & dbAutoIncrField) != 0;
    if (column.autonumber && info.m_nType != dbLong) {
        jet::fail(jet::errors::kBadType, "Field '" + name + "' cannot count by itself.");
    }
    const bool is_text = info.m_nType == dbText;
    if (is_text) {
        if (info.m_lSize < 0 || info.m_lSize > kMaxTextSize) {
            jet::fail(jet::errors::kSizeTooLong, "Field '" + name + "' is too long.");
        }
        column.text_characters = static_cast<std::uint16_t>(info.m_lSize == 0 ? kMaxTextSize : info.m_lSize);
    }
    column.compressed = is_text || info.m_nType == dbMemo;
    column.allow_zero_length = column.compressed && info.m_bAllowZeroLength;
    return column;
}

void describe(const jet::ColumnDef& column, std::size_t position, CDaoFieldInfo& info) {
    info = CDaoFieldInfo();
    info.m_strName = os::narrow(column.name).c_str();
    info.m_nOrdinalPosition = static_cast<std::int16_t>(position);
    info.m_bRequired = column.required;
    for (const FieldType& type : kFieldTypes) {
        if (type.engine != column.type) continue;
        info.m_nType = type.dao;
        info.m_lSize = type.dao == dbText ? static_cast<int>(column.most_characters()) : type.size;
    }
    info.m_lAttributes = dbUpdatableField | (column.is_fixed() ? dbFixedField : dbVariableField);
    if (column.is_autonumber()) info.m_lAttributes = dbFixedField | dbAutoIncrField;
    info.m_bAllowZeroLength = (info.m_nType == dbText || info.m_nType == dbMemo) && column.allow_zero_length;
}

}  // namespace

struct CDaoTableDef::Definition {
    std::u16string name;
    bool stored = false;
    std::vector<jet::NewColumn> fields;  // until it is stored

    jet::Table& table(CDaoDatabase* database) const {
        jet::Database& engine = afx::require_open(database).engine();
        jet::Table* table = engine.find_table(name);
        if (!stored || table == nullptr) {
            jet::fail(jet::errors::kNotInCollection, engine.why_no_table(name));
        }
        return *table;
    }
    // The table, for a change of its definition.
    jet::Table& unused_table(CDaoDatabase* database) const {
        jet::Table& found = table(database);
        if (found.watched()) {
            jet::fail(jet::errors::kTableLocked, "Table '" + jet::to_utf8(name) + "' is in use by a record set.");
        }
        return found;
    }
};

CDaoTableDef::CDaoTableDef(CDaoDatabase* database) : m_pDatabase(database) { link(database); }

CDaoTableDef::~CDaoTableDef() { CDaoTableDef::Close(); }

void CDaoTableDef::require_open() const {
    if (!open_) jet::fail(jet::errors::kObjectClosed, "The table definition is not open.");
}

void CDaoTableDef::Create(const char* name, LONG attributes, const char* source_table, const char* connect) {
    const auto is_set = [](const char* text) { return text != nullptr && *text != 0; };
    afx::translated([&] {
        CDaoTableDef::Close();
        afx::require_open(m_pDatabase);
        if (attributes != 0 || is_set(source_table) || is_set(connect)) {
            jet::fail(jet::errors::kReserved, "The engine makes no linked or system tables.");
        }
        definition_ = std::make_unique<Definition>();
        definition_->name = os::widen(name != nullptr ? name : "");
        link(m_pDatabase);
        open_ = true;
    });
}

void CDaoTableDef::Append() {
    afx::translated([&] {
        require_open();
        if (definition_->stored) jet::fail(jet::errors::kTableExists, "The table has been appended already.");
        afx::EngineDatabase& database = afx::require_open(m_pDatabase);
        database.engine().create_table(definition_->name, definition_->fields);
        database.schema_changed();
        definition_->stored = true;
        definition_->fields.clear();
    });
}

void CDaoTableDef::Open(const char* name) {
    afx::translated([&] {
        CDaoTableDef::Close();
        auto definition = std::make_unique<Definition>();
        definition->name = os::widen(name != nullptr ? name : "");
        definition->stored = true;
        definition->table(m_pDatabase);
        definition_ = std::move(definition);
        link(m_pDatabase);
        open_ = true;
    });
}

void CDaoTableDef::Close() {
    open_ = false;
    definition_.reset();
}

void CDaoTableDef::CreateField(const char* name, short type, LONG size, LONG attributes) {
    afx::translated([&] {
        CDaoFieldInfo info;
        info.m_strName = name;
        info.m_nType = type;
        info.m_lSize = size;
        info.m_lAttributes = attributes;
        CreateField(info);
    });
}

void CDaoTableDef::CreateField(CDaoFieldInfo& info) {
    afx::translated([&] {
        require_open();
        jet::NewColumn column = new_column(info);
        if (definition_->stored) {
            definition_->unused_table(m_pDatabase);
            afx::EngineDatabase& database = afx::require_open(m_pDatabase);
            database.engine().add_column(definition_->name, column);
            database.schema_changed();
            return;
        }
        for (const jet::NewColumn& other : definition_->fields) {
            if (!jet::same_name(other.name, column.name)) continue;
            jet::fail(jet::errors::kFieldTwice, "Field '" + jet::to_utf8(column.name) + "' is there already.");
        }
        definition_->fields.push_back(std::move(column));
    });
}

void CDaoTableDef::DeleteField(const char* name) {
    afx::translated([&] {
        require_open();
        const std::u16string wide = os::widen(name != nullptr ? name : "");
        if (definition_->stored) {
            definition_->unused_table(m_pDatabase);
            afx::EngineDatabase& database = afx::require_open(m_pDatabase);
            database.engine().delete_column(definition_->name, wide);
            database.schema_changed();
            return;
        }
        if (std::erase_if(definition_->fields, [&](const auto& field) { return jet::same_name(field.name, wide); }) ==
            0) {
            jet::fail(jet::errors::kNotInCollection, "There is no field '" + jet::to_utf8(wide) + "'.");
        }
    });
}

void CDaoTableDef::DeleteField(int index) {
    CDaoFieldInfo info;
    GetFieldInfo(index, info);
    DeleteField(info.m_strName);
}

short CDaoTableDef::GetFieldCount() {
    return afx::translated([&] {
        require_open();
        const std::size_t count =
            definition_->stored ? definition_->table(m_pDatabase).def().columns.size() : definition_->fields.size();
        return static_cast<short>(count);
    });
}

void CDaoTableDef::GetFieldInfo(int index, CDaoFieldInfo& info) {
    afx::translated([&] {
        require_open();
        if (index < 0 || index >= GetFieldCount()) jet::fail(jet::errors::kNotInCollection, "There is no such field.");
        const auto position = static_cast<std::size_t>(index);
        if (definition_->stored)
            return describe(definition_->table(m_pDatabase).def().columns[position], position, info);
        // Not stored yet: what is known already.
        info = CDaoFieldInfo();
        const jet::NewColumn& field = definition_->fields[position];
        info.m_strName = os::narrow(field.name).c_str();
        info.m_nType = static_cast<std::int16_t>(field.type);
        info.m_lSize = field.type == jet::ColumnType::kText ? field.text_characters : 0;
        info.m_lAttributes = field.autonumber ? dbAutoIncrField : dbUpdatableField;
        info.m_bAllowZeroLength = field.allow_zero_length;
    });
}

void CDaoTableDef::GetFieldInfo(const char* name, CDaoFieldInfo& info) {
    afx::translated([&] {
        const std::u16string wide = os::widen(name != nullptr ? name : "");
        CDaoFieldInfo found;
        for (int i = 0; i < GetFieldCount(); ++i) {
            GetFieldInfo(i, found);
            if (!jet::same_name(os::widen(std::string(found.m_strName)), wide)) continue;
            info = found;
            return;
        }
        jet::fail(jet::errors::kNotInCollection, "There is no field '" + jet::to_utf8(wide) + "'.");
    });
}
