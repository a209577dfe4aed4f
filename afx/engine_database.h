// What stands behind CDaoDatabase::m_pDAODatabase: the open engine database, the password rules and the
// names of its tables' fields. Inside afx/ only.
#pragma once

#include <memory>
#include <string_view>
#include <unordered_map>

#include "afx/dao_database.h"
#include "afx/field_exchange.h"
#include "jet/tables/database.h"

namespace afx {

class EngineDatabase final : public DAODatabase {
public:
    EngineDatabase(std::unique_ptr<jet::Database> engine, bool exclusive);
    ~EngineDatabase() override;

    HRESULT NewPassword(BSTR old_password, BSTR new_password) override;

    jet::Database& engine() { return *engine_; }
    // Takes back open transactions and closes the file; the engine is gone afterwards even when this throws.
    void close();

    void begin();
    bool in_transaction() const { return transactions_ > 0; }
    void commit();
    void rollback();

    // The fields of a table, made when first asked for.
    std::shared_ptr<const TableFields> fields(const jet::Table& table);
    // To be called after every schema change.
    void schema_changed() { fields_.clear(); }

    static EngineDatabase& of(const CDaoDatabase& database) {
        return static_cast<EngineDatabase&>(*database.m_pDAODatabase);
    }

private:
    std::unique_ptr<jet::Database> engine_;
    std::unordered_map<const jet::Table*, std::shared_ptr<const TableFields>> fields_;
    int transactions_ = 0;
    bool exclusive_;
};

// The database behind the pointer; 3420 when there is none or it is closed.
EngineDatabase& require_open(const CDaoDatabase* database);

}  // namespace afx
