// A method table with one method for every kind of parameter, and an object that records what arrives.
#pragma once

#include <string>
#include <vector>

#include "frame/dispatch.h"
#include "tests/frame/late_binding.h"

using testing_support::invoke;
using testing_support::Outcome;
using testing_support::text_of;
using testing_support::Variant;

struct IProbe : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE Plain() = 0;
    virtual HRESULT STDMETHODCALLTYPE TakeKey(LONG nKey) = 0;
    virtual HRESULT STDMETHODCALLTYPE TakeRecord(LONG_PTR pRecord) = 0;
    virtual HRESULT STDMETHODCALLTYPE Compute(LONG dwType, LONG* pnResult) = 0;
    virtual HRESULT STDMETHODCALLTYPE Name(LPSTR szName) = 0;
    virtual HRESULT STDMETHODCALLTYPE File(BSTR szFile) = 0;
    virtual HRESULT STDMETHODCALLTYPE Count(LONG* pnResult) = 0;

protected:
    ~IProbe() = default;
};

constexpr frame::Method kMethods[] = {
    frame::method<&IProbe::Plain>("Plain"),
    frame::method<&IProbe::TakeKey>("TakeKey", "nKey"),
    frame::method<&IProbe::TakeRecord>("TakeRecord", "pRecord"),
    frame::method<&IProbe::Compute>("Compute", "dwType", "pnResult"),
    frame::method<&IProbe::Name>("Name", "szName"),
    frame::method<&IProbe::File>("File", "szFile"),
    frame::method<&IProbe::Count, frame::OutInteger::kAlways>("Count", "pnResult"),
};

// Records what arrives and returns the given result.
class Probe final : public IProbe {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        return frame::ids_of_names(kMethods, riid, names, count, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* outcome,
                                     EXCEPINFO* exception, UINT* bad) override {
        return frame::invoke_method(kMethods, this, id, riid, flags, parameters, outcome, exception, bad);
    }

    HRESULT STDMETHODCALLTYPE Plain() override {
        ++calls;
        if (throws == 1) throw new CDaoException(3343, "No database there");
        if (throws == 2) throw std::runtime_error("out of luck");
        if (throws == 3) throw 3;
        return answer;
    }
    HRESULT STDMETHODCALLTYPE TakeKey(LONG nKey) override {
        ++calls;
        key = nKey;
        return answer;
    }
    HRESULT STDMETHODCALLTYPE TakeRecord(LONG_PTR pRecord) override {
        ++calls;
        address = pRecord;
        return answer;
    }
    HRESULT STDMETHODCALLTYPE Compute(LONG dwType, LONG* pnResult) override {
        ++calls;
        key = dwType;
        if (stores) *pnResult = stored;
        return answer;
    }
    HRESULT STDMETHODCALLTYPE Name(LPSTR szName) override {
        ++calls;
        text = szName;
        room = frame::room_for_text(szName);
        if (stores) std::strcpy(szName, new_text.c_str());
        return answer;
    }
    HRESULT STDMETHODCALLTYPE File(BSTR szFile) override {
        ++calls;
        wide = text_of(szFile);
        return answer;
    }

    HRESULT STDMETHODCALLTYPE Count(LONG* pnResult) override {
        ++calls;
        *pnResult = stored;
        return answer;
    }

    HRESULT answer = S_OK;
    int throws = 0;
    int calls = 0;
    LONG key = -99;
    LONG_PTR address = -99;
    bool stores = true;
    LONG stored = 42;
    std::string text;
    std::size_t room = 0;
    std::string new_text = "Bass";
    std::u16string wide;
};

constexpr DISPID kPlain = 1, kTakeKey = 2, kTakeRecord = 3, kCompute = 4, kName = 5, kFile = 6, kCount = 7;

inline Variant with(VARTYPE type, LONGLONG bits) {
    Variant result;
    result.vt = type;
    result.llVal = bits;
    return result;
}

inline HRESULT ids(Probe& probe, std::vector<std::u16string> names, std::vector<DISPID>& found,
                   REFIID riid = IID_NULL) {
    std::vector<LPOLESTR> pointers;
    for (auto& name : names) pointers.push_back(reinterpret_cast<LPOLESTR>(name.data()));
    found.assign(names.size(), 555);
    return probe.GetIDsOfNames(riid, pointers.data(), static_cast<UINT>(names.size()), 0, found.data());
}
