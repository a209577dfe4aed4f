// A host that opens the studio and prints, in one line, how a failure reaches it:
//
//     exception_host FOLDER vtable|invoke|create|gear
//     exception_host FOLDER uncaught   catches nothing
//     exception_host FOLDER plain      loads the library without the search beside it
//
// It is built twice: sharing the unwinder with the component, and with everything linked statically.
#include <kvdb/kvdb.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

namespace {

std::string text_of(BSTR text) {
    std::string narrow;
    for (UINT i = 0; i < SysStringLen(text); ++i) narrow.push_back(static_cast<char>(text[i]));
    SysFreeString(text);
    return narrow;
}

int tell(HRESULT result, const std::string& source, const std::string& description) {
    std::printf("result %08lX [%s] [%s]\n", static_cast<unsigned long>(result), source.c_str(), description.c_str());
    return 0;
}

int tell_with_error_info(HRESULT result, IUnknown* gate, REFIID iid) {
    ISupportErrorInfo* support = nullptr;
    IErrorInfo* info = nullptr;
    BSTR source = nullptr;
    BSTR description = nullptr;
    GUID guid{};
    if (SUCCEEDED(gate->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&support)))) {
        if (support->InterfaceSupportsErrorInfo(iid) == S_OK && GetErrorInfo(0, &info) == S_OK) {
            info->GetSource(&source);
            info->GetDescription(&description);
            info->GetGUID(&guid);
            info->Release();
            if (!IsEqualGUID(guid, iid)) return 5;
        }
        support->Release();
    }
    return tell(result, text_of(source), text_of(description));
}

template <class Gate>
Gate* make(HMODULE library, REFCLSID clsid, REFIID iid) {
    const auto get =
        reinterpret_cast<LPFNGETCLASSOBJECT>(reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
    void* object = nullptr;
    if (FAILED(get(clsid, IID_IClassFactory, &object))) return nullptr;
    auto* const factory = static_cast<IClassFactory*>(object);
    factory->CreateInstance(nullptr, iid, &object);
    factory->Release();
    return static_cast<Gate*>(object);
}

int run(HMODULE library, const std::string& way) {
    IDBgate1* const gate = make<IDBgate1>(library, CLSID_DBgate1, IID_IDBgate1);
    try {
        if (way == "vtable") return tell_with_error_info(gate->OpenDB(), gate, IID_IDBgate1);
        if (way == "create") return tell_with_error_info(gate->CreateDB(nullptr), gate, IID_IDBgate1);
        if (way == "gear") {
            IDBGate3* const gear = make<IDBGate3>(library, CLSID_DBGate3, IID_IDBGate3);
            return tell_with_error_info(gear->OpenDB(), gear, IID_IDBGate3);
        }
        DISPPARAMS none{};
        EXCEPINFO exception{};
        constexpr DISPID kOpenDB = 2;
        const HRESULT result = gate->Invoke(kOpenDB, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, &exception, nullptr);
        if (exception.scode != E_FAIL) return 6;
        return tell(result, text_of(exception.bstrSource), text_of(exception.bstrDescription));
    } catch (CDaoException* exception) {
        std::printf("caught %d [%s]\n", static_cast<int>(exception->m_pErrorInfo->m_lErrorCode),
                    exception->m_pErrorInfo->m_strDescription.GetString());
        exception->Delete();
        return 0;
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    // The host's own exceptions work beside those of the component.
    try {
        throw std::runtime_error("own");
    } catch (const std::exception& error) {
        if (std::strcmp(error.what(), "own") != 0) return 3;
    }
    const std::string path = std::string(argv[1]) + "\\kvdb.dll";
    const bool is_plain = std::strcmp(argv[2], "plain") == 0;
    const HMODULE library = LoadLibraryExA(path.c_str(), nullptr, is_plain ? 0 : LOAD_WITH_ALTERED_SEARCH_PATH);
    if (library == nullptr) {
        std::printf("error %lu\n", GetLastError());
        return 4;
    }
    if (is_plain) return 0;
    if (std::strcmp(argv[2], "uncaught") == 0) {
        IDBgate1* const gate = make<IDBgate1>(library, CLSID_DBgate1, IID_IDBgate1);
        const HRESULT result = gate->OpenDB();
        return tell_with_error_info(result, gate, IID_IDBgate1);
    }
    const int code = run(library, argv[2]);
    std::fflush(stdout);
    return code;
}
