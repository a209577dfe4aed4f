#include "afx/engine_database.h"

#include <string>
#include <utility>

#include "afx/dao_error.h"
#include "os/system.h"

namespace afx {
namespace {

std::u16string wide_text(BSTR narrow_text) {
    const auto* characters = reinterpret_cast<const char*>(narrow_text);
    return os::widen({characters, narrow_text != nullptr ? SysStringByteLen(narrow_text) : 0});
}

}  // namespace

EngineDatabase::EngineDatabase(std::unique_ptr<jet::Database> engine, bool exclusive)
    : engine_(std::move(engine)), exclusive_(exclusive) {}

EngineDatabase::~EngineDatabase() = default;

HRESULT EngineDatabase::NewPassword(BSTR old_password, BSTR new_password) {
    try {
        translated([&] {
            if (!exclusive_) {
                jet::fail(jet::errors::kPasswordNeedsExclusive, "Changing the password needs exclusive access.");
            }
            engine_->change_password(wide_text(old_password), wide_text(new_password));
        });
        return S_OK;
    } catch (CDaoException* e) {
        const HRESULT result = e->m_scode;
        e->Delete();
        return result;
    }
}

void EngineDatabase::close() {
    const std::unique_ptr<jet::Database> engine = std::exchange(engine_, nullptr);
    for (; transactions_ > 0; --transactions_) engine->pager().rollback();
    engine->close();
}

void EngineDatabase::begin() {
    engine_->pager().begin();
    ++transactions_;
}

void EngineDatabase::commit() {
    --transactions_;
    fields_.clear();  // should it fail, tables may be gone
    try {
        engine_->pager().commit();
    } catch (...) {
        // An inner transaction that the outer one has no room for is still there.
        if (transactions_ > 0) engine_->pager().rollback();
        throw;
    }
}

void EngineDatabase::rollback() {
    --transactions_;
    fields_.clear();
    engine_->pager().rollback();
}

std::shared_ptr<const TableFields> EngineDatabase::fields(const jet::Table& table) {
    std::shared_ptr<const TableFields>& fields = fields_[&table];
    if (!fields) {
        std::vector<std::u16string> names;
        for (const jet::ColumnDef& column : table.def().columns) names.push_back(column.name);
        fields = std::make_shared<const TableFields>(FieldNames(std::move(names)), &table.def());
    }
    return fields;
}

EngineDatabase& require_open(const CDaoDatabase* database) {
    if (database == nullptr || !database->IsOpen()) {
        jet::fail(jet::errors::kObjectClosed, "The database is not open.");
    }
    return EngineDatabase::of(*database);
}

}  // namespace afx
