#include "tests/soak/ledger.h"

#include <algorithm>

namespace soak {

std::string describe(const Operation& operation) {
    const char* const verbs[] = {"add", "update", "delete"};
    return std::string(verbs[static_cast<std::size_t>(operation.kind)]) + " " +
           gate_tables()[static_cast<std::size_t>(operation.table)]->name() + " " + std::to_string(operation.key) +
           " (variant " + std::to_string(operation.variant) + ")";
}

StudioRows read_all(const Gates& gates) {
    StudioRows rows;
    for (const auto& table : gate_tables()) rows.push_back(table->read(gates));
    return rows;
}

Ledger::Ledger(const StudioRows& rows) { settle(rows); }

void Ledger::settle(const StudioRows& rows) {
    tables_.assign(gate_tables().size(), {});
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (const auto& [key, text] : rows[i]) tables_[i].rows[key] = {text};
    }
}

void Ledger::succeeded(const Operation& operation) {
    const auto place = static_cast<std::size_t>(operation.table);
    Table& table = tables_.at(place);
    if (operation.kind == Operation::Kind::kDelete) {
        table.rows.erase(operation.key);
    } else {
        table.rows[operation.key] = {gate_tables()[place]->text(operation.variant)};
    }
}

void Ledger::failed(const Operation& operation) {
    const auto place = static_cast<std::size_t>(operation.table);
    Table& table = tables_.at(place);
    const GateTable& described = *gate_tables()[place];
    const RowText text = described.text(operation.variant);
    if (operation.kind == Operation::Kind::kAdd && !described.is_list()) {
        table.maybe_added.push_back(text);
        return;
    }
    auto& allowed = table.rows[operation.key];
    if (allowed.empty()) allowed.insert(kAbsent);
    allowed.insert(operation.kind == Operation::Kind::kDelete ? kAbsent : text);
}

std::string Ledger::compare(const Table& table, const TableRows& rows) {
    std::string text;
    std::vector<RowText> maybe_added = table.maybe_added;
    for (const auto& [key, found] : rows) {
        const auto known = table.rows.find(key);
        if (known != table.rows.end()) {
            if (!known->second.contains(found)) {
                text += " row " + std::to_string(key) + " is " + found + ", not";
                for (const RowText& allowed : known->second) {
                    text += " " + (allowed == kAbsent ? std::string("absent") : allowed);
                }
                text += ";";
            }
            continue;
        }
        const auto added = std::find(maybe_added.begin(), maybe_added.end(), found);
        if (added == maybe_added.end()) {
            text += " row " + std::to_string(key) + " is too many: " + found + ";";
        } else {
            maybe_added.erase(added);
        }
    }
    for (const auto& [key, allowed] : table.rows) {
        if (!rows.contains(key) && !allowed.contains(kAbsent)) {
            text += " row " + std::to_string(key) + " is missing: " + *allowed.begin() + ";";
        }
    }
    return text;
}

std::string Ledger::compare(const StudioRows& rows, std::optional<bool> invoice_file) const {
    std::string text;
    for (std::size_t i = 0; i < tables_.size(); ++i) {
        const GateTable& described = *gate_tables()[i];
        if (invoice_file && *invoice_file != described.is_in_invoice_file()) continue;
        const std::string differences = compare(tables_[i], rows.at(i));
        if (!differences.empty()) text += std::string(described.name()) + ":" + differences + " ";
    }
    return text;
}

}  // namespace soak
