#include "tests/soak/day.h"

#include <algorithm>
#include <iterator>

namespace soak {

Day::Day(std::uint32_t seed, const StudioRows& rows) : random_(seed), rows_(gate_tables().size()) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const GateTable& table = *gate_tables()[i];
        for (const auto& [key, text] : rows.at(i)) {
            if (table.is_list() && key < 0) continue;  // of a new studio; none of our variants
            int variant = 0;
            for (int v = 1; v <= kVariants && variant == 0; ++v) {
                if (table.text(v) == text) variant = v;
            }
            rows_[i][key] = variant;
        }
    }
}

// A random variant; one that no row has, if the table's names are unique.
int Day::some_variant(std::size_t table) {
    const GateTable& described = *gate_tables()[table];
    int variant = 1 + static_cast<int>(random(kVariants));
    if (!described.holds_names_once() && !described.is_list()) return variant;
    const auto is_used = [&](int v) {
        return std::any_of(rows_[table].begin(), rows_[table].end(), [v](const auto& row) { return row.second == v; });
    };
    while (is_used(variant)) variant = variant % kVariants + 1;
    return variant;
}

void Day::step(const Gates& gates, Witness& witness) {
    const std::size_t place = random(static_cast<std::uint32_t>(gate_tables().size()));
    const GateTable& table = *gate_tables()[place];
    std::map<LONG, int>& rows = rows_[place];
    Operation operation;
    operation.table = static_cast<std::int32_t>(place);
    operation.variant = some_variant(place);
    const std::uint32_t choice = random(8);
    const bool may_add = !table.is_single_row() && rows.size() < kMostRows;
    if (may_add && (rows.empty() || choice < 3)) return perform(gates, witness, operation);
    if (rows.empty()) return;
    auto row = rows.begin();
    std::advance(row, random(static_cast<std::uint32_t>(rows.size())));
    operation.key = row->first;
    if (choice == 7) {
        // Reads the table, as hosts often do.
        table.read(gates);
        return;
    }
    const bool changes = table.is_single_row() || (!table.is_list() && choice < 6);
    operation.kind = changes ? Operation::Kind::kUpdate : Operation::Kind::kDelete;
    if (operation.kind == Operation::Kind::kDelete && rows.size() == 1 && !may_add) return;
    perform(gates, witness, operation);
}

void Day::perform(const Gates& gates, Witness& witness, Operation operation) {
    const auto place = static_cast<std::size_t>(operation.table);
    const GateTable& table = *gate_tables()[place];
    if (table.is_list() && operation.kind == Operation::Kind::kAdd) operation.key = operation.variant;
    witness.begun(operation);
    HRESULT result = E_FAIL;
    LONG key = operation.key;
    switch (operation.kind) {
        case Operation::Kind::kAdd: result = table.add(gates, operation.variant, key); break;
        case Operation::Kind::kUpdate: result = table.update(gates, operation.key, operation.variant); break;
        case Operation::Kind::kDelete: result = table.remove(gates, operation.key); break;
    }
    if (result != S_OK) return witness.failed(operation);
    operation.key = key;
    witness.succeeded(operation);
    if (operation.kind == Operation::Kind::kDelete) {
        rows_[place].erase(operation.key);
    } else {
        rows_[place][operation.key] = operation.variant;
    }
}

}  // namespace soak
