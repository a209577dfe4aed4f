// Uses the table descriptions of the gates' own tests.
#include "tests/soak/gate_tables.h"

#include <cstdio>
#include <cstring>
#include <type_traits>
#include <utility>

#include "tests/gates/bookings_cases.h"
#include "tests/gates/contacts_cases.h"
#include "tests/gates/definitions_cases.h"
#include "tests/gates/gear_cases.h"
#include "tests/gates/invoices_cases.h"
#include "tests/gates/media_library_cases.h"
#include "tests/gates/projects_cases.h"
#include "tests/gates/sessions_cases.h"
#include "tests/gates/songs_cases.h"
#include "tests/gates/stock_cases.h"

namespace soak {
namespace {

using namespace testing_support;
using frame::ComPtr;

template <class Gate>
Gate& gate_of(const Gates& gates) {
    if constexpr (std::is_same_v<Gate, IDBgate1>) {
        return *gates.main;
    } else if constexpr (std::is_same_v<Gate, IDBgate2>) {
        return *gates.gear2;
    } else {
        return *gates.gear3;
    }
}

template <class Record>
LONG_PTR address_of(Record& record) {
    return reinterpret_cast<LONG_PTR>(&record);
}

CallHooks call_hooks;

// Runs a call of a gate, which may throw the engine's exception.
template <class Call>
HRESULT hooked(Call&& call) {
    struct Hooks {
        Hooks() {
            if (call_hooks.before != nullptr) call_hooks.before();
        }
        ~Hooks() {
            if (call_hooks.after != nullptr) call_hooks.after();
        }
    };
    const Hooks hooks;
    return call();
}

// Long texts are represented by their length and a checksum of the whole text.
void append(RowText& text, const std::string& value) {
    constexpr std::size_t kShown = 24;
    text += value.substr(0, kShown);
    if (value.size() > kShown) {
        std::uint64_t sum = 14695981039346656037u;
        for (const char c : value) sum = (sum ^ static_cast<unsigned char>(c)) * 1099511628211u;
        text += "#" + std::to_string(value.size()) + "#" + std::to_string(sum);
    }
    text += "|";
}

template <class Gate, class Record>
class RecordGateTable final : public GateTable {
public:
    explicit RecordGateTable(RecordCase<Gate, Record> table, bool names_once = false)
        : table_(std::move(table)), names_once_(names_once) {}

    const char* name() const override { return table_.table; }
    bool is_in_invoice_file() const override { return std::strcmp(table_.file, "kvinvdb.mdb") == 0; }
    bool holds_names_once() const override { return names_once_; }

    HRESULT add(const Gates& gates, int variant, LONG& key) const override {
        constexpr LONG kNoKey = -5;
        Record record = filled(table_, kNoKey, variant);
        const HRESULT result = hooked([&] { return (gate_of<Gate>(gates).*table_.add)(address_of(record)); });
        key = record.*table_.key;
        return result;
    }
    HRESULT update(const Gates& gates, LONG key, int variant) const override {
        Record record = filled(table_, key, variant);
        return hooked([&] { return (gate_of<Gate>(gates).*table_.update)(address_of(record)); });
    }
    HRESULT remove(const Gates& gates, LONG key) const override {
        Record record = filled(table_, key, 1);
        return hooked([&] { return table_.call_remove(gate_of<Gate>(gates), record); });
    }
    HRESULT find(const Gates& gates, LONG key, RowText& found) const override {
        Record record;
        record.*table_.key = key;
        const HRESULT result = hooked([&] { return (gate_of<Gate>(gates).*table_.find)(address_of(record)); });
        if (result == S_OK) found = text_of(record);
        return result;
    }
    TableRows read(const Gates& gates) const override {
        TableRows rows;
        Record record = question(table_);
        const auto next = [&](auto method) {
            return hooked([&] { return (gate_of<Gate>(gates).*method)(address_of(record)); });
        };
        for (HRESULT result = next(table_.first); result == S_OK; result = next(table_.next)) {
            rows[record.*table_.key] = text_of(record);
            record = Record();
        }
        return rows;
    }
    RowText text(int variant) const override { return text_of(filled(table_, 0, variant, Form::kStored)); }

private:
    RowText text_of(const Record& record) const {
        RowText all;
        for (const auto& member : table_.members) {
            if (member.store != Store::kNowhere) append(all, member_text(member, record));
        }
        return all;
    }

    const RecordCase<Gate, Record> table_;
    const bool names_once_;
};

class ListGateTable final : public GateTable {
public:
    using Method = HRESULT (STDMETHODCALLTYPE IDBgate1::*)(LPSTR);
    ListGateTable(const char* list, Method first, Method next, Method adder, Method remover)
        : name_(list), first_(first), next_(next), add_(adder), remove_(remover) {}

    const char* name() const override { return name_; }
    bool is_list() const override { return true; }
    HRESULT add(const Gates& gates, int variant, LONG& key) const override {
        key = variant;
        return call(gates, add_, variant);
    }
    HRESULT update(const Gates&, LONG, int) const override { return E_FAIL; }
    HRESULT remove(const Gates& gates, LONG key) const override { return call(gates, remove_, key); }
    HRESULT find(const Gates&, LONG, RowText&) const override { return E_FAIL; }
    TableRows read(const Gates& gates) const override {
        TableRows rows;
        LONG others = 0;
        char name[256] = "";
        for (HRESULT result = (gates.main.get()->*first_)(name); result == S_OK;
             result = (gates.main.get()->*next_)(name)) {
            int variant = 0;
            if (std::sscanf(name, "soak name %d", &variant) != 1) variant = -++others;  // of a new studio
            rows[variant] = name;
        }
        return rows;
    }
    RowText text(int variant) const override { return "soak name " + std::to_string(variant); }

private:
    HRESULT call(const Gates& gates, Method method, LONG variant) const {
        std::string name = text(static_cast<int>(variant));
        return hooked([&] { return (gates.main.get()->*method)(name.data()); });
    }

    const char* name_;
    Method first_, next_, add_, remove_;
};

// Head and invoice defaults: one row each, without a key.
template <class Record>
class SingleRowTable final : public GateTable {
public:
    using Method = HRESULT (STDMETHODCALLTYPE IDBgate1::*)(LONG_PTR);
    using Fill = void (*)(Record&, int variant);
    using Text = RowText (*)(const Record&);
    SingleRowTable(const char* row, Method get, Method set, Fill fill, Text in_words)
        : name_(row), get_(get), set_(set), fill_(fill), text_(in_words) {}

    const char* name() const override { return name_; }
    bool is_single_row() const override { return true; }
    HRESULT add(const Gates&, int, LONG&) const override { return E_FAIL; }
    HRESULT update(const Gates& gates, LONG, int variant) const override {
        Record record;
        fill_(record, variant);
        return hooked([&] { return (gates.main.get()->*set_)(address_of(record)); });
    }
    HRESULT remove(const Gates&, LONG) const override { return E_FAIL; }
    HRESULT find(const Gates& gates, LONG, RowText& found) const override {
        Record record;
        const HRESULT result = (gates.main.get()->*get_)(address_of(record));
        if (result == S_OK) found = text_(record);
        return result;
    }
    TableRows read(const Gates& gates) const override {
        TableRows rows;
        RowText found;
        if (find(gates, 1, found) == S_OK) rows[1] = found;
        return rows;
    }
    RowText text(int variant) const override {
        Record record;
        fill_(record, variant);
        return text_(record);
    }

private:
    const char* name_;
    Method get_, set_;
    Fill fill_;
    Text text_;
};

template <class Gate, class Record>
std::unique_ptr<GateTable> table(RecordCase<Gate, Record> described) {
    if constexpr (std::is_same_v<Record, InvoiceInfo>) {
        described.ask = [](InvoiceInfo& record) {
            record.FromDate = CTime(2000, 1, 1, 0, 0, 0);
            record.ToDate = CTime(2037, 1, 1, 0, 0, 0);
        };
    }
    return std::make_unique<RecordGateTable<Gate, Record>>(std::move(described), std::is_same_v<Record, RoomInfo>);
}

std::vector<std::unique_ptr<GateTable>> make_tables() {
    std::vector<std::unique_ptr<GateTable>> tables;
    const auto take = [&](auto... more) { (tables.push_back(std::move(more)), ...); };
    const auto list = [](auto... arguments) { return std::make_unique<ListGateTable>(arguments...); };
    take(table(kProjects), table(kSongs), table(kTracks), table(kMixes));
    take(table(kSessions), table(kPartics), table(kPayments), table(kActivities), table(kBookings));
    take(table(kClients), table(kCategories), table(kMessages), table(kServices));
    take(table(kStock), table(kSupply), table(kStockTypes), table(kEquipment));
    take(table(kSequencers), table(kRooms), table(kGroups), table(kLibraries), table(kFiles));
    take(table(kInvoices), table(kInvoiceLines));
    take(table(gear_case<IDBgate2>()), table(gear_service_case<IDBGate3>()), table(gear_repair_case<IDBgate2>()),
         table(gear_category_case<IDBGate3>()), table(kGearRentals));
    take(list("TrackTypes", &IDBgate1::EnumFirstTrackType, &IDBgate1::EnumNextTrackType, &IDBgate1::AddTrackType,
              &IDBgate1::DeleteTrackType),
         list("ProjTypes", &IDBgate1::EnumFirstProjType, &IDBgate1::EnumNextProjType, &IDBgate1::AddProjType,
              &IDBgate1::DeleteProjType),
         list("TrackDestins", &IDBgate1::EnumFirstTrackDestin, &IDBgate1::EnumNextTrackDestin,
              &IDBgate1::AddTrackDestin, &IDBgate1::DeleteTrackDestin),
         list("EquipActs", &IDBgate1::EnumFirstEquipAct, &IDBgate1::EnumNextEquipAct, &IDBgate1::AddEquipAct,
              &IDBgate1::DeleteEquipAct));
    tables.push_back(std::make_unique<SingleRowTable<HeadInfo>>(
        "head", &IDBgate1::GetHead, &IDBgate1::SetHead,
        [](HeadInfo& head, int variant) {
            head.Color1 = 1000 + variant;
            head.Color2 = 7 * variant;
        },
        [](const HeadInfo& head) { return std::to_string(head.Color1) + "|" + std::to_string(head.Color2); }));
    tables.push_back(std::make_unique<SingleRowTable<InvoiceDef>>(
        "invoice defaults", &IDBgate1::GetInvoiceDef, &IDBgate1::SetInvoiceDef,
        [](InvoiceDef& defaults, int variant) {
            defaults.StudioName = ("studio " + std::to_string(variant)).c_str();
            defaults.LastUsedCounter = variant;
            defaults.VAT1 = 3 * variant;
            defaults.ExData = 5 * variant;
        },
        [](const InvoiceDef& defaults) {
            return std::string(defaults.StudioName.GetString()) + "|" + std::to_string(defaults.LastUsedCounter) + "|" +
                   std::to_string(defaults.VAT1) + "|" + std::to_string(defaults.ExData);
        }));
    return tables;
}

// Runs a call that may throw the engine's exception.
template <class Call>
HRESULT caught(Call&& call, std::string* reason) {
    try {
        return hooked(call);
    } catch (CDaoException* exception) {
        if (reason != nullptr) {
            *reason = "engine error " + std::to_string(exception->m_pErrorInfo->m_lErrorCode) + ": " +
                      exception->m_pErrorInfo->m_strDescription.GetString();
        }
        exception->Delete();
        return E_FAIL;
    }
}

}  // namespace

HRESULT Gates::open(std::string* reason) const {
    const HRESULT result = caught([&] { return main->OpenDB(); }, reason);
    if (result != S_OK) return result;
    const HRESULT second = caught([&] { return gear2->OpenDB(); }, reason);
    return second != S_OK ? second : caught([&] { return gear3->OpenDB(); }, reason);
}

HRESULT Gates::close() const {
    return hooked([&] { return main->CloseDB(); });
}

void set_call_hooks(const CallHooks& hooks) { call_hooks = hooks; }

Gates make_gates(const std::function<HRESULT(REFCLSID, REFIID, void**)>& get_class_object) {
    const auto make = [&](REFCLSID clsid, REFIID iid, void** place) {
        ComPtr<IClassFactory> factory;
        if (get_class_object(clsid, IID_IClassFactory, factory.put()) != S_OK ||
            factory->CreateInstance(nullptr, iid, place) != S_OK) {
            throw std::runtime_error("no gate");
        }
    };
    Gates gates;
    make(CLSID_DBgate1, IID_IDBgate1, gates.main.put());
    make(CLSID_DBgate2, IID_IDBgate2, gates.gear2.put());
    make(CLSID_DBGate3, IID_IDBGate3, gates.gear3.put());
    return gates;
}

const std::vector<std::unique_ptr<GateTable>>& gate_tables() {
    static const std::vector<std::unique_ptr<GateTable>> tables = make_tables();
    return tables;
}

}  // namespace soak
