// What all gates share: COM identity, late binding over the method table of the gate's interface, the
// frame of every method call, and what holds for every gate of the process.
//
// 1. Inside a method the component's lock is held and its module state is current; the lock is free and the caller's
//    state is back on every way out. Names and calls by name need neither before they reach a method: they read
//    constant tables, and take the lock for no longer than it takes to make a buffer for a text known.
// 2. A method gives S_OK or E_FAIL and nothing else.
// 3. No exception leaves a method, except the CDaoException* that `call_with_errors` lets out to a caller that can
//    catch it; any other caller gets E_FAIL.
// 4. Whatever fails leaves its words for the thread that called (frame/failure.h).
#pragma once

#include <kvdb/com.h>
#include <kvdb/dao_exception.h>

#include <new>
#include <span>

#include "db/refusal.h"
#include "db/session.h"
#include "frame/caller.h"
#include "frame/com_object.h"
#include "frame/dispatch.h"
#include "frame/error_info.h"
#include "frame/failure.h"
#include "frame/method_frame.h"
#include "frame/method_table.h"
#include "frame/text_buffer.h"
#include "frame/type_information.h"

namespace frame {

// The caller's record at `address`; what the caller passed as the record of another table, or as no
// record at all, cannot be told.
template <class Record>
Record* record(LONG_PTR address) {
    return reinterpret_cast<Record*>(address);
}

// An address that becomes whichever record it is passed as.
struct RecordAddress {
    LONG_PTR address;
    template <class Record>
    operator Record*() const {
        return record<Record>(address);
    }
};

template <class Interface>
class GateBase : public ComObject<Interface>, public ErrorInfoPart {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (riid == IID_IUnknown || riid == IID_IDispatch || riid == interface_id_) {
            *object = static_cast<Interface*>(this);
        } else if (void* const part = this->error_info_part(riid)) {
            *object = part;
        } else {
            return this->query_marshaler(riid, object);
        }
        AddRef();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = type_information_count();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (info != nullptr) *info = nullptr;
        if (index >= type_information_count()) return DISP_E_BADINDEX;
        if (info == nullptr) return E_POINTER;
        const MethodFrame method;
        try {
            return type_information(interface_id_, info);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        return ids_of_names(methods_, riid, names, count, ids);
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO* exception, UINT* bad_argument) override {
        return invoke_method(methods_, this, id, riid, flags, parameters, result, exception, bad_argument);
    }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override {
        return riid == interface_id_ ? S_OK : S_FALSE;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ComObject<Interface>::AddRef(); }

    ULONG STDMETHODCALLTYPE Release() override {
        const MethodFrame method;
        return ComObject<Interface>::Release();
    }

protected:
    GateBase(REFIID interface_id, std::span<const Method> methods) : interface_id_(interface_id), methods_(methods) {}

    // ---- The frame of a method

    template <class Operation>
    HRESULT call(const Attempt& attempt, Operation&& operation) noexcept {
        const MethodFrame method;
        begin_call();
        const HRESULT result = plain_result_of(operation);
        if (result != S_OK) note_failure(interface_id_, attempt);
        return result;
    }

    // As `call`, but an error of the data-access engine goes out to the caller, the code that the method returns to,
    // as CDaoException*.
    template <class Operation>
    HRESULT call_with_errors(const void* return_address, const Attempt& attempt, Operation&& operation) {
        const MethodFrame method;
        begin_call();
        HRESULT result = E_FAIL;
        try {
            result = plain_result(operation());
        } catch (CDaoException* error) {
            if (catches_exceptions(return_address)) {
                note_failure(interface_id_, attempt);
                throw;
            }
            error->Delete();
        } catch (CException* error) {
            error->Delete();
        } catch (const std::bad_alloc&) {
            db::refuse(db::Refusal::kNoMemory);
        } catch (...) {
            // What it is nobody knows here.
        }
        if (result != S_OK) note_failure(interface_id_, attempt);
        return result;
    }

    // ---- The operations of one record table, or list of names, for methods that are nothing else

    template <class Table>
    HRESULT enum_first(Table& table, auto place) {
        return call(on(table, "No first row was read from"), [&] { return first(table, place); });
    }
    template <class Table>
    HRESULT enum_next(Table& table, auto place) {
        return call(on(table, "No next row was read from"), [&] { return next(table, place); });
    }
    template <class Table>
    HRESULT find(Table& table, LONG_PTR address) {
        return call(on(table, "No row was found in"), [&] { return table.Find(argument(address)); });
    }
    template <class Table>
    HRESULT add(Table& table, auto row) {
        return call(on(table, "Nothing was added to", "A row was added in part to"),
                    [&] { return table.Add(argument(row)); });
    }
    template <class Table>
    HRESULT update(Table& table, LONG_PTR address) {
        return call(on(table, "Nothing was changed in", "A row was changed in part in"),
                    [&] { return table.Update(argument(address)); });
    }
    // By the key or, for a list, by the name.
    template <class Table>
    HRESULT remove(Table& table, auto row) {
        return call(on(table, "Nothing was deleted from"), [&] { return table.Delete(row); });
    }
    // As `remove`, for the row that the record names.
    template <class Table>
    HRESULT remove_record(Table& table, LONG_PTR address) {
        return call(on(table, "Nothing was deleted from"), [&] { return table.Delete(argument(address)); });
    }

    // Closes and frees the cursors of the tables, in the order given, whatever one of them meets.
    template <class... Tables>
    static void release_cursors(Tables&... tables) {
        (quietly([&] { tables.ReleaseCursor(); }), ...);
    }

    // Runs the last work of a gate in the frame of a method; there is nobody left to tell what it meets.
    template <class Work>
    static void quietly(Work&& work) noexcept {
        const MethodFrame method;
        static_cast<void>(plain_result_of([&] {
            work();
            return S_OK;
        }));
    }

    db::GateDatabases databases_;

private:
    static HRESULT plain_result(HRESULT result) { return result == S_OK ? S_OK : E_FAIL; }

    template <class Operation>
    static HRESULT plain_result_of(Operation&& operation) noexcept {
        try {
            return plain_result(operation());
        } catch (CException* error) {
            error->Delete();
            return E_FAIL;
        } catch (const std::bad_alloc&) {
            return db::refuse(db::Refusal::kNoMemory);
        } catch (...) {
            return E_FAIL;
        }
    }

    // An operation takes its record by its address, and a name as it is. What fills a name must know the room.
    static RecordAddress argument(LONG_PTR address) { return {address}; }
    static LPSTR argument(LPSTR text) { return text; }
    static HRESULT first(auto& table, LONG_PTR address) { return table.EnumFirst(argument(address)); }
    static HRESULT first(auto& list, LPSTR text) { return list.EnumFirst(text, room_for_text(text)); }
    static HRESULT next(auto& table, LONG_PTR address) { return table.EnumNext(argument(address)); }
    static HRESULT next(auto& list, LPSTR text) { return list.EnumNext(text, room_for_text(text)); }

    template <class Table>
    Attempt on(const Table& table, const char* failed, const char* in_part = nullptr) const {
        const bool is_invoice = table.is_in(databases_.invoice);
        const char* const name = table.table();
        return {failed, in_part, name != nullptr ? name : "a query",
                is_invoice ? db::DatabaseFile::kInvoice : db::DatabaseFile::kMain};
    }

    const IID interface_id_;
    const std::span<const Method> methods_;
};

}  // namespace frame
