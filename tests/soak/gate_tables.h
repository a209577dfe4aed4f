// Every table that the gates serve behind one interface, for work at random: a row is made from its key and a variant,
// and read back as a text in which every member stands. So a row that holds half of a change has a text that no
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

    // S_OK, or E_FAIL for an exception too; `reason` (may be null) then says which.
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
    // A row's key is the variant it was added with, and a row is never changed.
    virtual bool is_list() const { return false; }
    // One row, which is changed and neither added nor deleted.
    virtual bool is_single_row() const { return false; }
    // Adding a name that is there already is a success that adds nothing.
    virtual bool holds_names_once() const { return false; }

    // `key` is the new row's.
    virtual HRESULT add(const Gates& gates, int variant, LONG& key) const = 0;
    virtual HRESULT update(const Gates& gates, LONG key, int variant) const = 0;
    virtual HRESULT remove(const Gates& gates, LONG key) const = 0;
    // What find reads; the row is the same as an enumeration's. E_FAIL where there is none.
    virtual HRESULT find(const Gates& gates, LONG key, RowText& text) const = 0;
    // By an enumeration, which ends without a word at an error as well.
    virtual TableRows read(const Gates& gates) const = 0;
    // What a row of that variant is read as.
    virtual RowText text(int variant) const = 0;
};

// Called before and after each call of a gate, without what the host does for it; null: nothing is called.
struct CallHooks {
    void (*before)() = nullptr;
    void (*after)() = nullptr;
};
void set_call_hooks(const CallHooks& hooks);

// Index by place; the same in every run.
const std::vector<std::unique_ptr<GateTable>>& gate_tables();

}  // namespace soak
