// What all gates share: COM identity, late binding over the method table of the gate's interface, the
// frame of every method call, and what holds for every gate of the process.
//
// 1. Inside a method the component's lock is held and its module state is current; the lock is free and the caller's
//    state is back on every way out. Names and calls by name need neither before they reach a method: they read
//    constant tables, and take the lock for no longer than it takes to make a buffer for a text known.
// 2. A method gives S_OK or E_FAIL and nothing else.
// 3. No exception leaves a method, except the CDaoException* that `call_with_errors` lets out to a caller that can
//    catch it; any other caller gets E_FAIL and the platform's error info.
#pragma once

#include <kvdb/com.h>
#include <kvdb/dao_exception.h>

#include <new>
#include <span>

#include "db/session.h"
#include "frame/caller.h"
#include "frame/com_object.h"
#include "frame/dispatch.h"
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
class GateBase : public ComObject<Interface>, public ISupportErrorInfo {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (riid == IID_IUnknown || riid == IID_IDispatch || riid == interface_id_) {
            *object = static_cast<Interface*>(this);
        } else if (riid == IID_ISupportErrorInfo) {
            *object = static_cast<ISupportErrorInfo*>(this);
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
        return has_error_info() && riid == interface_id_ ? S_OK : S_FALSE;
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
    static HRESULT call(Operation&& operation) noexcept {
        const MethodFrame method;
        try {
            return plain_result(operation());
        } catch (CException* error) {
            error->Delete();
            return E_FAIL;
        } catch (...) {
            return E_FAIL;
        }
    }

    // As `call`, but an error of the data-access engine goes out to the caller, the code that the method returns to,
    // as CDaoException*.
    template <class Operation>
    HRESULT call_with_errors(const void* return_address, Operation&& operation) {
        const MethodFrame method;
        clear_error_info();
        try {
            return plain_result(operation());
        } catch (CDaoException* error) {
            if (catches_exceptions(return_address)) throw;
            set_error_info(interface_id_, *error);
            error->Delete();
            return E_FAIL;
        } catch (CException* error) {
            error->Delete();
            return E_FAIL;
        } catch (...) {
            return E_FAIL;
        }
    }

    // ---- The operations of one record table, for methods that are nothing else

    template <class Table>
    static HRESULT enum_first(Table& table, LONG_PTR address) {
        return call([&] { return table.EnumFirst(RecordAddress{address}); });
    }
    template <class Table>
    static HRESULT enum_next(Table& table, LONG_PTR address) {
        return call([&] { return table.EnumNext(RecordAddress{address}); });
    }
    template <class Table>
    static HRESULT find(Table& table, LONG_PTR address) {
        return call([&] { return table.Find(RecordAddress{address}); });
    }
    template <class Table>
    static HRESULT add(Table& table, LONG_PTR address) {
        return call([&] { return table.Add(RecordAddress{address}); });
    }
    template <class Table>
    static HRESULT update(Table& table, LONG_PTR address) {
        return call([&] { return table.Update(RecordAddress{address}); });
    }
    template <class Table>
    static HRESULT remove(Table& table, LONG key) {
        return call([&] { return table.Delete(key); });
    }
    // As `remove`, for the row that the record names.
    template <class Table>
    static HRESULT remove_record(Table& table, LONG_PTR address) {
        return call([&] { return table.Delete(RecordAddress{address}); });
    }

    // ---- The operations of a list of names, whose rows are texts

    template <class List>
    static HRESULT enum_first(List& list, LPSTR text) {
        return call([&] { return list.EnumFirst(text, room_for_text(text)); });
    }
    template <class List>
    static HRESULT enum_next(List& list, LPSTR text) {
        return call([&] { return list.EnumNext(text, room_for_text(text)); });
    }
    template <class List>
    static HRESULT add(List& list, LPSTR text) {
        return call([&] { return list.Add(text); });
    }
    template <class List>
    static HRESULT remove(List& list, LPSTR text) {
        return call([&] { return list.Delete(text); });
    }

    // Closes and frees the cursors of the tables, in the order given, whatever one of them meets.
    template <class... Tables>
    static void release_cursors(Tables&... tables) {
        (static_cast<void>(call([&] {
             tables.ReleaseCursor();
             return S_OK;
         })),
         ...);
    }

    db::GateDatabases databases_;

private:
    static HRESULT plain_result(HRESULT result) { return result == S_OK ? S_OK : E_FAIL; }

    const IID interface_id_;
    const std::span<const Method> methods_;
};

}  // namespace frame
