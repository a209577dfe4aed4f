// Uses a gate as a scripting host does: names to identifiers, variants, calls by identifier.
#pragma once

#include <kvdb/kvdb.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace testing_support {

// A variant that clears itself. Older headers of the platform pass even variants that are only read as non-const.
class Variant : public VARIANT {
public:
    Variant() { VariantInit(this); }
    Variant(const Variant& other) : Variant() { VariantCopy(this, const_cast<Variant*>(&other)); }
    Variant& operator=(const Variant& other) {
        VariantCopy(this, const_cast<Variant*>(&other));
        return *this;
    }
    ~Variant() { VariantClear(this); }

    static Variant i4(LONG value) {
        Variant result;
        result.vt = VT_I4;
        result.lVal = value;
        return result;
    }
    static Variant i8(LONGLONG value) {
        Variant result;
        result.vt = VT_I8;
        result.llVal = value;
        return result;
    }
    static Variant r8(double value) {
        Variant result;
        result.vt = VT_R8;
        result.dblVal = value;
        return result;
    }
    static Variant text(std::u16string_view value) {
        Variant result;
        result.vt = VT_BSTR;
        const UINT bytes = static_cast<UINT>(value.size() * sizeof(char16_t));
        result.bstrVal = SysAllocStringByteLen(reinterpret_cast<LPCSTR>(value.data()), bytes);
        return result;
    }
    // A reference to `target`, which must outlive the result.
    static Variant ref(VARIANT& target) {
        Variant result;
        result.vt = VT_BYREF | VT_VARIANT;
        result.pvarVal = &target;
        return result;
    }
    static Variant ref(LONG& target) { return ref_to(VT_I4, &target); }
    static Variant ref(BSTR& target) { return ref_to(VT_BSTR, &target); }
    static Variant ref_to(VARTYPE type, void* target) {
        Variant result;
        result.vt = static_cast<VARTYPE>(VT_BYREF | type);
        result.byref = target;
        return result;
    }
    // The address of a record.
    template <class Record>
    static Variant record(Record& record) {
        if constexpr (sizeof(void*) == 4) {
            return i4(static_cast<LONG>(reinterpret_cast<LONG_PTR>(&record)));
        } else {
            return i8(reinterpret_cast<LONG_PTR>(&record));
        }
    }
};

inline std::u16string text_of(BSTR text) {
    if (text == nullptr) return std::u16string();
    return std::u16string(reinterpret_cast<const char16_t*>(text), SysStringLen(text));
}

// The result of a call by identifier.
struct Outcome {
    HRESULT result = S_OK;
    SCODE scode = 0;
    std::u16string source;
    std::u16string description;
    UINT bad_argument = 999;
    VARTYPE result_type = VT_EMPTY;
};

inline DISPID id_of(IDispatch& gate, std::u16string name) {
    LPOLESTR names[] = {reinterpret_cast<LPOLESTR>(name.data())};
    DISPID id = 0;
    return SUCCEEDED(gate.GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id)) ? id : DISPID_UNKNOWN;
}

// Calls `id`; `arguments` in the order of the parameters, with those named by `named` last.
inline Outcome invoke(IDispatch& gate, DISPID id, std::vector<Variant> arguments, std::vector<DISPID> named = {}) {
    std::vector<VARIANT> backwards;
    for (std::size_t i = 0; i < named.size(); ++i) backwards.push_back(arguments[arguments.size() - named.size() + i]);
    for (std::size_t i = arguments.size() - named.size(); i-- > 0;) backwards.push_back(arguments[i]);
    DISPPARAMS parameters{backwards.data(), named.data(), static_cast<UINT>(backwards.size()),
                          static_cast<UINT>(named.size())};
    Outcome outcome;
    Variant result = Variant::i4(77);
    EXCEPINFO exception{};
    outcome.result = gate.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &result, &exception,
                                 &outcome.bad_argument);
    outcome.scode = exception.scode;
    outcome.source = text_of(exception.bstrSource);
    outcome.description = text_of(exception.bstrDescription);
    outcome.result_type = result.vt;
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    return outcome;
}

inline Outcome invoke(IDispatch& gate, const std::u16string& name, std::vector<Variant> arguments = {}) {
    return invoke(gate, id_of(gate, name), std::move(arguments));
}

}  // namespace testing_support
