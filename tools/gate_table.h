// A table of the studio as the record commands see it: its columns, and the operations that the gates offer on
// it, with every value as text. What a record is made of, is declared once, beside the component's own tables.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tools/assignments.h"
#include "tools/row_printer.h"
#include "tools/studio.h"

namespace tools {

// What is wrong with the words is a UsageError before the studio is touched; what the gate refuses, and a key
// that is not there, is a CommandError.
class GateTable {
public:
    virtual ~GateTable() = default;

    virtual std::string name() const = 0;
    // The columns of the rows that list and show give.
    virtual Names columns() const = 0;
    // Calls `visit` with every row of the enumeration until it returns false. What the engine cannot deliver is a
    // CommandError behind the rows before it.
    virtual void list(Studio& studio, const Assignments& filter, const RowVisitor& visit) const = 0;
    virtual Row show(Studio& studio, const std::string& key) const = 0;
    // The new row's key.
    virtual std::string add(Studio& studio, const Assignments& members) const = 0;
    virtual void set(Studio& studio, const std::string& key, const Assignments& members) const = 0;
    virtual void remove(Studio& studio, const std::string& key) const = 0;
};

// All tables, in the order of the gates; the table of that name in whatever case, or a UsageError.
const std::vector<std::unique_ptr<GateTable>>& gate_tables();
const GateTable& gate_table(const std::string& name);

// All rows that the enumeration gives.
std::vector<Row> rows_of(const GateTable& table, Studio& studio, const Assignments& filter);

}  // namespace tools
