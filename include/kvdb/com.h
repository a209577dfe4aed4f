// The Component Object Model as far as the component and its hosts need it. On Windows this is the
// platform's own; elsewhere it is the small set below, with the platform's layouts and values.
//
// 1. Nothing here has to be linked: everything is a type, a constant or inline.
// 2. BSTRs are taken from the C heap, which every module of a process shares, so one module may free
//    what another has allocated.
// 3. Wide characters are UTF-16 code units (char16_t), 16 bits on every host.
#pragma once

#ifdef _WIN32

// As the host has set them up: WIN32_LEAN_AND_MEAN and NOMINMAX are its own business.
#include <windows.h>

#include <objbase.h>
#include <oleauto.h>

#else

#include <cstdint>
#include <cstdlib>
#include <cstring>

#define STDMETHODCALLTYPE
#define STDAPICALLTYPE

// ---- Numbers ---------------------------------------------------------------------------------

using BYTE = std::uint8_t;
using CHAR = char;
using WORD = std::uint16_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using INT = std::int32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using FLOAT = float;
using DOUBLE = double;
using BOOL = std::int32_t;
using HRESULT = std::int32_t;
using SCODE = std::int32_t;
using LCID = std::uint32_t;
using DISPID = std::int32_t;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;

using WCHAR = char16_t;
using OLECHAR = char16_t;
using LPSTR = char*;
using LPCSTR = const char*;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using BSTR = OLECHAR*;
using PVOID = void*;
using LPVOID = void*;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

inline constexpr LCID LOCALE_USER_DEFAULT = 0x0400;
inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x0800;

// ---- Results ---------------------------------------------------------------------------------

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT NOERROR = 0;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_ABORT = static_cast<HRESULT>(0x80004004u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFu);
inline constexpr HRESULT E_ACCESSDENIED = static_cast<HRESULT>(0x80070005u);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110u);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111u);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154u);
inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = static_cast<HRESULT>(0x80020001u);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = static_cast<HRESULT>(0x80020003u);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = static_cast<HRESULT>(0x80020004u);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005u);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = static_cast<HRESULT>(0x80020006u);
inline constexpr HRESULT DISP_E_NONAMEDARGS = static_cast<HRESULT>(0x80020007u);
inline constexpr HRESULT DISP_E_BADVARTYPE = static_cast<HRESULT>(0x80020008u);
inline constexpr HRESULT DISP_E_EXCEPTION = static_cast<HRESULT>(0x80020009u);
inline constexpr HRESULT DISP_E_OVERFLOW = static_cast<HRESULT>(0x8002000Au);
inline constexpr HRESULT DISP_E_BADINDEX = static_cast<HRESULT>(0x8002000Bu);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = static_cast<HRESULT>(0x8002000Eu);
inline constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = static_cast<HRESULT>(0x8002000Fu);
inline constexpr HRESULT TYPE_E_ELEMENTNOTFOUND = static_cast<HRESULT>(0x8002802Bu);

constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

// ---- Identifiers -----------------------------------------------------------------------------

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool IsEqualGUID(REFGUID a, REFGUID b) { return std::memcmp(&a, &b, sizeof(GUID)) == 0; }
inline bool IsEqualIID(REFIID a, REFIID b) { return IsEqualGUID(a, b); }
inline bool IsEqualCLSID(REFCLSID a, REFCLSID b) { return IsEqualGUID(a, b); }
inline bool operator==(REFGUID a, REFGUID b) { return IsEqualGUID(a, b); }
inline bool operator!=(REFGUID a, REFGUID b) { return !IsEqualGUID(a, b); }

inline constexpr GUID GUID_NULL{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
inline constexpr IID IID_NULL = GUID_NULL;
inline constexpr IID IID_IUnknown{0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IClassFactory{0x00000001, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_ISupportErrorInfo{0xDF0B3D60, 0x548F, 0x101B, {0x8E, 0x65, 0x08, 0, 0x2B, 0x2B, 0xD1, 0x19}};
inline constexpr IID IID_IErrorInfo{0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0, 0x2B, 0x2B, 0xD1, 0x19}};
inline constexpr IID IID_IDispatch{0x00020400, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// ---- BSTR ------------------------------------------------------------------------------------
// A length in bytes (32 bits) directly before the characters, two zero bytes after them. The null
// pointer is the empty text.

// `bytes` bytes copied from `text` (left as they are where `text` is null); null when out of memory.
inline BSTR SysAllocStringByteLen(LPCSTR text, UINT bytes) {
    constexpr std::size_t kFront = 8;  // keeps the platform's alignment of the characters
    if (bytes > 0x7FFFFFF0u) return nullptr;
    char* block = static_cast<char*>(std::malloc(kFront + bytes + 2));
    if (block == nullptr) return nullptr;
    std::memcpy(block + kFront - 4, &bytes, 4);
    char* characters = block + kFront;
    if (text != nullptr && bytes != 0) std::memcpy(characters, text, bytes);
    characters[bytes] = 0;
    characters[bytes + 1] = 0;
    return reinterpret_cast<BSTR>(characters);
}

// `length` characters copied from `text` (left as they are where `text` is null).
inline BSTR SysAllocStringLen(LPCOLESTR text, UINT length) {
    if (length > 0x3FFFFFF8u) return nullptr;
    return SysAllocStringByteLen(reinterpret_cast<LPCSTR>(text), length * 2);
}

inline BSTR SysAllocString(LPCOLESTR text) {
    if (text == nullptr) return nullptr;
    UINT length = 0;
    while (text[length] != 0) ++length;
    return SysAllocStringLen(text, length);
}

inline void SysFreeString(BSTR text) {
    if (text != nullptr) std::free(reinterpret_cast<char*>(text) - 8);
}

inline UINT SysStringByteLen(BSTR text) {
    if (text == nullptr) return 0;
    UINT bytes = 0;
    std::memcpy(&bytes, reinterpret_cast<const char*>(text) - 4, 4);
    return bytes;
}

inline UINT SysStringLen(BSTR text) { return SysStringByteLen(text) / 2; }

// ---- Interfaces ------------------------------------------------------------------------------
// The destructors take no slot; they are protected because objects end by Release only.

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppvObject) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

protected:
    ~IUnknown() = default;
};
using LPUNKNOWN = IUnknown*;

struct IClassFactory : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppvObject) = 0;
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL fLock) = 0;

protected:
    ~IClassFactory() = default;
};
using LPCLASSFACTORY = IClassFactory*;

// Tells for which of its interfaces an object provides error info.
struct ISupportErrorInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) = 0;

protected:
    ~ISupportErrorInfo() = default;
};

// The words of a failure. Each text is a new BSTR, the caller's to free; null where there is none.
struct IErrorInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetGUID(GUID* pGUID) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSource(BSTR* pBstrSource) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDescription(BSTR* pBstrDescription) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* pBstrHelpFile) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* pdwHelpContext) = 0;

protected:
    ~IErrorInfo() = default;
};

struct ITypeInfo;
struct IRecordInfo;
struct IDispatch;
struct SAFEARRAY;
struct VARIANT;

// ---- VARIANT ---------------------------------------------------------------------------------

enum VARENUM {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_DECIMAL = 14,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_VOID = 24,
    VT_HRESULT = 25,
    VT_PTR = 26,
    VT_SAFEARRAY = 27,
    VT_CARRAY = 28,
    VT_USERDEFINED = 29,
    VT_LPSTR = 30,
    VT_LPWSTR = 31,
    VT_RECORD = 36,
    VT_INT_PTR = 37,
    VT_UINT_PTR = 38,
    VT_FILETIME = 64,
    VT_BLOB = 65,
    VT_STREAM = 66,
    VT_STORAGE = 67,
    VT_STREAMED_OBJECT = 68,
    VT_STORED_OBJECT = 69,
    VT_BLOB_OBJECT = 70,
    VT_CF = 71,
    VT_CLSID = 72,
    VT_VECTOR = 0x1000,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
    VT_RESERVED = 0x8000,
    VT_ILLEGAL = 0xFFFF,
    VT_TYPEMASK = 0x0FFF
};

// An amount in ten-thousandths.
union CY {
    __extension__ struct {
        ULONG Lo;
        LONG Hi;
    };
    LONGLONG int64;
};
using CURRENCY = CY;

struct DECIMAL {
    USHORT wReserved;
    BYTE scale;
    BYTE sign;
    ULONG Hi32;
    ULONGLONG Lo64;
};

struct VARIANT {
    __extension__ union {
        __extension__ struct {
            VARTYPE vt;
            WORD wReserved1;
            WORD wReserved2;
            WORD wReserved3;
            __extension__ union {
                LONGLONG llVal;
                LONG lVal;
                BYTE bVal;
                SHORT iVal;
                FLOAT fltVal;
                DOUBLE dblVal;
                VARIANT_BOOL boolVal;
                SCODE scode;
                CY cyVal;
                DATE date;
                BSTR bstrVal;
                IUnknown* punkVal;
                IDispatch* pdispVal;
                SAFEARRAY* parray;
                BYTE* pbVal;
                SHORT* piVal;
                LONG* plVal;
                LONGLONG* pllVal;
                FLOAT* pfltVal;
                DOUBLE* pdblVal;
                VARIANT_BOOL* pboolVal;
                SCODE* pscode;
                CY* pcyVal;
                DATE* pdate;
                BSTR* pbstrVal;
                IUnknown** ppunkVal;
                IDispatch** ppdispVal;
                SAFEARRAY** pparray;
                VARIANT* pvarVal;
                PVOID byref;
                CHAR cVal;
                USHORT uiVal;
                ULONG ulVal;
                ULONGLONG ullVal;
                INT intVal;
                UINT uintVal;
                DECIMAL* pdecVal;
                CHAR* pcVal;
                USHORT* puiVal;
                ULONG* pulVal;
                ULONGLONG* pullVal;
                INT* pintVal;
                UINT* puintVal;
                __extension__ struct {
                    PVOID pvRecord;
                    IRecordInfo* pRecInfo;
                };
            };
        };
        DECIMAL decVal;
    };
};
using VARIANTARG = VARIANT;
static_assert(sizeof(VARIANT) == 8 + 2 * (sizeof(void*) > 4 ? sizeof(void*) : 4), "the platform's VARIANT");

// ---- IDispatch -------------------------------------------------------------------------------

inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;

inline constexpr WORD DISPATCH_METHOD = 1;
inline constexpr WORD DISPATCH_PROPERTYGET = 2;
inline constexpr WORD DISPATCH_PROPERTYPUT = 4;
inline constexpr WORD DISPATCH_PROPERTYPUTREF = 8;

struct DISPPARAMS {
    VARIANTARG* rgvarg;         // last argument first, the named ones before the others
    DISPID* rgdispidNamedArgs;  // which parameters the first cNamedArgs arguments are
    UINT cArgs;
    UINT cNamedArgs;
};

struct EXCEPINFO {
    WORD wCode;
    WORD wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    DWORD dwHelpContext;
    PVOID pvReserved;
    HRESULT(STDAPICALLTYPE* pfnDeferredFillIn)(EXCEPINFO*);
    SCODE scode;
};

struct IDispatch : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* pctinfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT iTInfo, LCID lcid, ITypeInfo** ppTInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* rgszNames, UINT cNames, LCID lcid,
                                                    DISPID* rgDispId) = 0;
    virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID dispIdMember, REFIID riid, LCID lcid, WORD wFlags,
                                             DISPPARAMS* pDispParams, VARIANT* pVarResult, EXCEPINFO* pExcepInfo,
                                             UINT* puArgErr) = 0;

protected:
    ~IDispatch() = default;
};
using LPDISPATCH = IDispatch*;

// ---- VARIANT operations ----------------------------------------------------------------------

inline void VariantInit(VARIANT* variant) { std::memset(variant, 0, sizeof *variant); }

// Frees what the value owns and makes it VT_EMPTY. Arrays are not part of this set: DISP_E_BADVARTYPE.
inline HRESULT VariantClear(VARIANT* variant) {
    if ((variant->vt & VT_BYREF) == 0) {
        if ((variant->vt & VT_ARRAY) != 0 || variant->vt == VT_RECORD) return DISP_E_BADVARTYPE;
        if (variant->vt == VT_BSTR) SysFreeString(variant->bstrVal);
        if ((variant->vt == VT_UNKNOWN || variant->vt == VT_DISPATCH) && variant->punkVal != nullptr) {
            variant->punkVal->Release();
        }
    }
    variant->vt = VT_EMPTY;
    return S_OK;
}

// Clears `to` and makes it a deep copy of `from`; a by-reference value is copied as the reference.
inline HRESULT VariantCopy(VARIANT* to, const VARIANT* from) {
    if (to == from) return S_OK;
    VARIANT copy = *from;
    if ((from->vt & VT_BYREF) == 0) {
        if ((from->vt & VT_ARRAY) != 0 || from->vt == VT_RECORD) return DISP_E_BADVARTYPE;
        if (from->vt == VT_BSTR && from->bstrVal != nullptr) {
            copy.bstrVal =
                SysAllocStringByteLen(reinterpret_cast<LPCSTR>(from->bstrVal), SysStringByteLen(from->bstrVal));
            if (copy.bstrVal == nullptr) return E_OUTOFMEMORY;
        }
    }
    const HRESULT cleared = VariantClear(to);
    if (FAILED(cleared)) {
        if (copy.vt == VT_BSTR) SysFreeString(copy.bstrVal);
        return cleared;
    }
    if ((copy.vt == VT_UNKNOWN || copy.vt == VT_DISPATCH) && copy.punkVal != nullptr) copy.punkVal->AddRef();
    *to = copy;
    return S_OK;
}

// ---- A component's entry points, as a host looks them up -------------------------------------

using LPFNGETCLASSOBJECT = HRESULT(STDAPICALLTYPE*)(REFCLSID rclsid, REFIID riid, LPVOID* ppv);
using LPFNCANUNLOADNOW = HRESULT(STDAPICALLTYPE*)();

#endif

// The words of the failure of this thread's last call of `object`: S_OK and error info, the caller's to release;
// S_FALSE and null where that call succeeded. To be asked before the thread's next call. On Windows it is what the
// platform carries for the thread; elsewhere a component keeps it itself, and its objects have IErrorInfo, which goes
// on to speak of the thread's last call.
inline HRESULT GetErrorInfoOf(IUnknown* object, IErrorInfo** info) {
#ifdef _WIN32
    static_cast<void>(object);
    return ::GetErrorInfo(0, info);
#else
    void* found = nullptr;
    *info = nullptr;
    if (FAILED(object->QueryInterface(IID_IErrorInfo, &found))) return S_FALSE;
    *info = static_cast<IErrorInfo*>(found);
    GUID failed = GUID_NULL;
    if (SUCCEEDED((*info)->GetGUID(&failed)) && failed != GUID_NULL) return S_OK;
    (*info)->Release();
    *info = nullptr;
    return S_FALSE;
#endif
}
