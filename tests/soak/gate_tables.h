// Every table that the gates serve behind one interface, for random operations: a row is made from its key and a
// variant, and read back as a text that contains every member. So a row with half of a change has a text that no
// variant has.
#pragma once

#include <kvdb/kvdb.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "frame/com_ptr.h"

namespace soak {

// The three gates of one studio.
struct Gates {
    frame::ComPtr<IDBgate1> main;
    frame::ComPtr<IDBgate2> gear2;
    frame::ComPtr<IDBGate3> gear3;

    // S_OK, or E_FAIL, also for an exception; `reason` (may be null) then tells which.
    HRESULT open(std::string* reason = nullptr) const;
    HRESULT close() const;
};

// From a function that makes one gate: `maker(clsid, iid, place)`.
Gates make_gates(const std::function<HRESULT(REFCLSID, REFIID, void**)>& get_class_object);

using RowText = std::string;
using TableRows = std::map<LONG, RowText>;

inline constexpr int kVariants = 30;

class GateTable {
public:
    virtual ~GateTable() = default;
    virtual const char* name() const = 0;
    virtual bool is_in_invoice_file() const { return false; }
    // A row's key is the variant with which it was added, and rows never change.
    virtual bool is_list() const { return false; }
    // One row, which can be changed but not added or deleted.
    virtual bool is_single_row() const { return false; }
    // Adding an existing name succeeds and adds nothing.
    virtual bool holds_names_once() const { return false; }

    // `key` is the new row's.
    virtual HRESULT add(const Gates& gates, int variant, LONG& key) const = 0;
    virtual HRESULT update(const Gates& gates, LONG key, int variant) const = 0;
    virtual HRESULT remove(const Gates& gates, LONG key) const = 0;
    // The row that find reads; must equal the enumeration's. E_FAIL when there is none.
    virtual HRESULT find(const Gates& gates, LONG key, RowText& text) const = 0;
    // Reads by an enumeration, which also ends silently at an error.
    virtual TableRows read(const Gates& gates) const = 0;
    // The text of a row of that variant.
    virtual RowText text(int variant) const = 0;
};

// Called before and after each call of a gate, excluding the host's own work; null: none.
struct CallHooks {
    void (*before)() = nullptr;
    void (*after)() = nullptr;
};
void set_call_hooks(const CallHooks& hooks);

// Indexed by place; the same in every run.
const std::vector<std::unique_ptr<GateTable>>& gate_tables();

}  // namespace soak
