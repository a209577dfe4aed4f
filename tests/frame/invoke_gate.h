// A gate reached by late binding only: an object with the virtual table of the gate's interface, each method
// of which calls the real gate's Invoke. So a test written for the virtual table also tests Invoke.
//
//     ComPtr<IDBgate1> late = through_invoke<IDBgate1>(gate);
//
// The gate's results are translated back: DISP_E_EXCEPTION to the failure that it carries, an argument that Invoke
// cannot
// pass (a null text) to E_FAIL.
#pragma once

#include <kvdb/kvdb.h>

#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "frame/com_ptr.h"
#include "os/system.h"
#include "tests/frame/gate_members.h"
#include "tests/frame/late_binding.h"

namespace testing_support {

using frame::ComPtr;

namespace invoke_detail {

// Converts one argument to a variant and back.
struct NumberArgument {
    explicit NumberArgument(LONG number) : variant(Variant::i4(number)) {}
    void give_back(bool) {}
    Variant variant;
};
struct AddressArgument {
    explicit AddressArgument(LONG_PTR address)
        : variant(sizeof address == 4 ? Variant::i4(static_cast<LONG>(address)) : Variant::i8(address)) {}
    void give_back(bool) {}
    Variant variant;
};
struct OutArgument {
    explicit OutArgument(LONG* number) : variant(Variant::ref_to(VT_I4, number)) {}
    void give_back(bool) {}
    Variant variant;
};
struct FileArgument {
    explicit FileArgument(BSTR name) : variant(Variant::text(text_of(name))) {}
    void give_back(bool) {}
    Variant variant;
};
struct TextArgument {
    explicit TextArgument(LPSTR text) : buffer(text) {
        if (text == nullptr) return;
        const std::u16string wide = os::widen(text);
        content = SysAllocStringByteLen(reinterpret_cast<LPCSTR>(wide.data()), static_cast<UINT>(wide.size() * 2));
        variant = Variant::ref(content);
    }
    ~TextArgument() { SysFreeString(content); }
    TextArgument(const TextArgument&) = delete;
    TextArgument& operator=(const TextArgument&) = delete;

    void give_back(bool succeeded) {
        if (!succeeded || buffer == nullptr) return;
        std::strcpy(buffer, os::narrow(text_of(content)).c_str());
    }
    LPSTR buffer;
    BSTR content = nullptr;
    Variant variant;
};

// On Windows an identifier and a record's address have the same type.
template <class Parameter>
struct ArgumentOf {
    using Type = AddressArgument;
};
template <>
struct ArgumentOf<LONG> {
    using Type = NumberArgument;
};
template <>
struct ArgumentOf<LONG*> {
    using Type = OutArgument;
};
template <>
struct ArgumentOf<LPSTR> {
    using Type = TextArgument;
};
template <>
struct ArgumentOf<BSTR> {
    using Type = FileArgument;
};

struct LateGate {
    const void* const* table;
    ComPtr<IDispatch> gate;
    ULONG references = 1;

    HRESULT call(DISPID id, std::vector<Variant> arguments) {
        const Outcome outcome = invoke(*gate, id, std::move(arguments));
        if (outcome.result == DISP_E_EXCEPTION) return outcome.scode;
        return outcome.result == S_OK ? S_OK : E_FAIL;
    }

    static HRESULT STDMETHODCALLTYPE query_interface(LateGate* self, REFIID riid, void** object) {
        return self->gate->QueryInterface(riid, object);
    }
    static ULONG STDMETHODCALLTYPE add_ref(LateGate* self) { return ++self->references; }
    static ULONG STDMETHODCALLTYPE release(LateGate* self) {
        const ULONG left = --self->references;
        if (left == 0) delete self;
        return left;
    }
    static HRESULT STDMETHODCALLTYPE type_info_count(LateGate* self, UINT* count) {
        return self->gate->GetTypeInfoCount(count);
    }
    static HRESULT STDMETHODCALLTYPE type_info(LateGate* self, UINT index, LCID locale, ITypeInfo** info) {
        return self->gate->GetTypeInfo(index, locale, info);
    }
    static HRESULT STDMETHODCALLTYPE ids_of_names(LateGate* self, REFIID riid, LPOLESTR* names, UINT count, LCID locale,
                                                  DISPID* ids) {
        return self->gate->GetIDsOfNames(riid, names, count, locale, ids);
    }
    static HRESULT STDMETHODCALLTYPE pass_on(LateGate* self, DISPID id, REFIID riid, LCID locale, WORD flags,
                                             DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                             UINT* bad_argument) {
        return self->gate->Invoke(id, riid, locale, flags, parameters, result, exception, bad_argument);
    }
};

template <class Argument>
bool can_be_passed(const Argument&) {
    return true;
}
inline bool can_be_passed(const TextArgument& text) { return text.buffer != nullptr; }

template <auto Member, DISPID Id>
struct Slot;
template <class Gate, class... Parameters, HRESULT (STDMETHODCALLTYPE Gate::*Member)(Parameters...), DISPID Id>
struct Slot<Member, Id> {
    static HRESULT STDMETHODCALLTYPE call(LateGate* self, Parameters... parameters) {
        return pass(self, typename ArgumentOf<Parameters>::Type(parameters)...);
    }
    template <class... Arguments>
    static HRESULT pass(LateGate* self, Arguments&&... arguments) {
        if (!(can_be_passed(arguments) && ...)) return E_FAIL;
        const HRESULT result = self->call(Id, {arguments.variant...});
        (arguments.give_back(result == S_OK), ...);
        return result;
    }
};

template <class Function>
const void* address(Function function) {
    return reinterpret_cast<const void*>(function);
}

template <auto... Members, std::size_t... I>
const void* const* table_of(MemberList<Members...>, std::index_sequence<I...>) {
    static const void* const table[] = {
        address(&LateGate::query_interface), address(&LateGate::add_ref),
        address(&LateGate::release),         address(&LateGate::type_info_count),
        address(&LateGate::type_info),       address(&LateGate::ids_of_names),
        address(&LateGate::pass_on),         address(&Slot<Members, static_cast<DISPID>(I + 1)>::call)...};
    return table;
}

template <auto... Members>
const void* const* table_of(MemberList<Members...> list) {
    return table_of(list, std::make_index_sequence<sizeof...(Members)>());
}

}  // namespace invoke_detail

template <class Interface>
ComPtr<Interface> through_invoke(const ComPtr<Interface>& gate) {
    gate->AddRef();
    auto* const late = new invoke_detail::LateGate{invoke_detail::table_of(typename GateMembers<Interface>::List()),
                                                   ComPtr<IDispatch>(gate.get())};
    return ComPtr<Interface>(reinterpret_cast<Interface*>(late));
}

}  // namespace testing_support
