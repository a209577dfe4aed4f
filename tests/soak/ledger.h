// The permitted content of a studio's tables after the reported operations: the judge of every kind.
//
// 1. An operation that reported success is there.
// 2. One that reported failure, or was interrupted, is there whole or not at all.
// 3. Nothing else has changed.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/soak/gate_tables.h"

namespace soak {

struct Operation {
    enum class Kind : std::int32_t { kAdd, kUpdate, kDelete };
    Kind kind = Kind::kAdd;
    std::int32_t table = 0;  // place in gate_tables()
    std::int32_t key = 0;    // of an added row: its new key
    std::int32_t variant = 0;
};
std::string describe(const Operation& operation);

using StudioRows = std::vector<TableRows>;  // by table

StudioRows read_all(const Gates& gates);

class Ledger {
public:
    explicit Ledger(const StudioRows& rows);

    void succeeded(const Operation& operation);
    // Or was interrupted.
    void failed(const Operation& operation);
    // Takes `rows` as the certain content of the tables.
    void settle(const StudioRows& rows);

    // "" when the ledger permits `rows`; otherwise each difference in a few words. With `invoice_file`, only the tables
    // of that file, or only those of the other, are compared.
    std::string compare(const StudioRows& rows, std::optional<bool> invoice_file = std::nullopt) const;

private:
    static inline const RowText kAbsent = {};
    struct Table {
        std::map<LONG, std::set<RowText>> rows;  // kAbsent: the row may be missing
        std::vector<RowText> maybe_added;
    };
    static std::string compare(const Table& table, const TableRows& rows);

    std::vector<Table> tables_;
};

}  // namespace soak
