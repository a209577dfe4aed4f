// Late binding over a method table: names to identifiers, and calls by identifier with the conversions
// that automation callers expect.
#pragma once

#include <kvdb/com.h>

#include <span>

#include "frame/method_table.h"

namespace frame {

// The identifier of the method `names[0]` (its slot, from 1) and of its parameters named by the others
// (from 0). Case does not count. DISP_E_UNKNOWNNAME, with DISPID_UNKNOWN in its place, for a name that
// is not there.
HRESULT ids_of_names(std::span<const Method> methods, REFIID riid, LPOLESTR* names, UINT count, DISPID* ids);

// Calls method `id` of `gate`. The method's failure is DISP_E_EXCEPTION with `exception->scode` its
// result and the words that it left; so is an exception that it lets out, with its own text. An
// argument that does not fit is DISP_E_TYPEMISMATCH or DISP_E_OVERFLOW, `*bad_argument` its place in
// `parameters->rgvarg`. `result`, `exception` and `bad_argument` may be null.
HRESULT invoke_method(std::span<const Method> methods, IDispatch* gate, DISPID id, REFIID riid, WORD flags,
                      DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception, UINT* bad_argument);

}  // namespace frame
