// Calls of a gate's methods. E_FAIL is an end, a key that is not there, or an error of the engine; the gate can be
// asked for the words, and the component that is part of the tool for the engine's number.
#pragma once

#include <kvdb/com.h>

#include <string>

#include "afx/dao_error.h"
#include "jet/base/types.h"
#include "tools/errors.h"
#include "tools/open_file.h"

namespace tools {

// Whether the call succeeded; the engine's error, if it failed for one, is there afterwards.
template <class Call>
bool succeeds(Call&& call) {
    afx::clear_last_error();
    return SUCCEEDED(call());
}

// ": " and what the engine said to the last call; "" where it had nothing to say.
inline std::string engine_reason() {
    const afx::LastError& error = afx::last_error();
    if (error.number == 0) return {};
    std::string text = error.text;
    while (!text.empty() && text.back() == '.') text.pop_back();
    return ": " + text;
}

// What the gate left about its last call, which failed.
inline std::string gate_words(IUnknown& gate) {
    IErrorInfo* info = nullptr;
    if (GetErrorInfoOf(&gate, &info) != S_OK) return "the call failed" + engine_reason();
    BSTR text = nullptr;
    info->GetDescription(&text);
    info->Release();
    const std::string words = jet::to_utf8({reinterpret_cast<const char16_t*>(text), SysStringLen(text)});
    SysFreeString(text);
    return words;
}

// To be called after a call that failed where an end or an absent row is no error.
inline void require_no_engine_error(IUnknown& gate) {
    if (afx::last_error().number != 0) throw CommandError(gate_words(gate));
}

}  // namespace tools
