// Reads what automation callers pass before any method is called, and turns failures and exceptions into
// what they expect. No exception passes here.
#include "frame/dispatch.h"

#include <kvdb/dao_exception.h>

#include <array>
#include <exception>
#include <string_view>

#include "frame/failure.h"
#include "frame/wide_text.h"

namespace frame {

namespace {

constexpr const char* kErrorSource = "KVDB";

bool is_same_name(const char* name, LPCOLESTR asked) {
    const auto lower = [](unsigned c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
    for (; *name != 0 && *asked != 0; ++name, ++asked) {
        if (lower(static_cast<unsigned char>(*name)) != lower(*asked)) return false;
    }
    return *name == 0 && *asked == 0;
}

// Puts the arguments of `parameters` into the order of the method's parameters. Automation lists them
// backwards, the named ones first.
HRESULT arrange(const Method& method, DISPPARAMS& parameters, std::span<VARIANT*> arguments, UINT& bad_argument) {
    if (parameters.cNamedArgs > parameters.cArgs) return E_INVALIDARG;
    if (parameters.cArgs != 0 && parameters.rgvarg == nullptr) return E_INVALIDARG;
    if (parameters.cNamedArgs != 0 && parameters.rgdispidNamedArgs == nullptr) return E_INVALIDARG;
    if (parameters.cArgs != method.parameter_count) return DISP_E_BADPARAMCOUNT;

    const UINT unnamed = parameters.cArgs - parameters.cNamedArgs;
    for (UINT i = 0; i < unnamed; ++i) arguments[i] = &parameters.rgvarg[parameters.cArgs - 1 - i];
    for (UINT i = 0; i < parameters.cNamedArgs; ++i) {
        const DISPID id = parameters.rgdispidNamedArgs[i];
        const bool is_parameter = id >= 0 && static_cast<std::size_t>(id) < method.parameter_count;
        if (!is_parameter || arguments[static_cast<std::size_t>(id)] != nullptr) {
            bad_argument = i;
            return DISP_E_PARAMNOTFOUND;
        }
        arguments[static_cast<std::size_t>(id)] = &parameters.rgvarg[i];
    }
    for (VARIANT* argument : arguments) {
        if (argument->vt == VT_ERROR && argument->scode == DISP_E_PARAMNOTFOUND) {  // left out by the caller
            bad_argument = static_cast<UINT>(argument - parameters.rgvarg);
            return DISP_E_PARAMNOTOPTIONAL;
        }
    }
    return S_OK;
}

// For a result that is a failure: with the words that the method left, as far as there is memory for them.
HRESULT exception_result(EXCEPINFO* exception, HRESULT failure) {
    if (exception != nullptr) {
        exception->scode = failure;
        exception->bstrSource = failure_source();
        exception->bstrDescription = failure_text();
    }
    return DISP_E_EXCEPTION;
}

HRESULT exception_result(EXCEPINFO* exception, std::string_view description) {
    if (exception != nullptr) {
        exception->scode = E_FAIL;
        exception->bstrSource = to_bstr(kErrorSource);
        exception->bstrDescription = to_bstr(description);
    }
    return DISP_E_EXCEPTION;
}

}  // namespace

HRESULT ids_of_names(std::span<const Method> methods, REFIID riid, LPOLESTR* names, UINT count, DISPID* ids) {
    if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;

    std::size_t slot = 0;
    while (slot < methods.size() && !is_same_name(methods[slot].name, names[0])) ++slot;
    if (slot == methods.size()) return DISP_E_UNKNOWNNAME;
    ids[0] = static_cast<DISPID>(slot + 1);

    HRESULT result = S_OK;
    for (UINT i = 1; i < count; ++i) {
        const Method& method = methods[slot];
        for (std::size_t p = 0; p < method.parameter_count; ++p) {
            if (is_same_name(method.parameters[p], names[i])) ids[i] = static_cast<DISPID>(p);
        }
        if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
    }
    return result;
}

HRESULT invoke_method(std::span<const Method> methods, IDispatch* gate, DISPID id, REFIID riid, WORD flags,
                      DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) {
    if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (parameters == nullptr) return E_INVALIDARG;
    if (id < 1 || static_cast<std::size_t>(id) > methods.size()) return DISP_E_MEMBERNOTFOUND;
    if ((flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;

    if (result != nullptr) VariantInit(result);
    if (exception != nullptr) *exception = EXCEPINFO{};
    UINT unused = 0;
    UINT& bad_position = bad_argument != nullptr ? *bad_argument : unused;

    const Method& method = methods[static_cast<std::size_t>(id) - 1];
    std::array<VARIANT*, kMaxParameters> storage{};
    const std::span<VARIANT*> arguments(storage.data(), method.parameter_count);
    const HRESULT arranged = arrange(method, *parameters, arguments, bad_position);
    if (FAILED(arranged)) return arranged;

    begin_call();
    try {
        BadArgument bad;
        const HRESULT outcome = method.invoke(gate, arguments, bad);
        if (FAILED(bad.result)) {
            bad_position = static_cast<UINT>(arguments[bad.parameter] - parameters->rgvarg);
            return bad.result;
        }
        return FAILED(outcome) ? exception_result(exception, outcome) : S_OK;
    } catch (CDaoException* error) {
        const HRESULT thrown = exception_result(
            exception, error->m_pErrorInfo != nullptr ? error->m_pErrorInfo->m_strDescription.GetString() : "");
        error->Delete();
        return thrown;
    } catch (const std::exception& error) {
        return exception_result(exception, error.what());
    } catch (...) {
        return exception_result(exception, E_FAIL);
    }
}

}  // namespace frame
