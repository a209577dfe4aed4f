// From the engine's exceptions to the framework's. Nothing but CDaoException* leaves a data-access call.
#pragma once

#include <kvdb/dao_exception.h>

#include <string_view>

#include "jet/base/error.h"

namespace afx {

// `text` is UTF-8.
[[noreturn]] void throw_dao(int number, std::string_view text);

// Inside a catch (...) block: throws the exception at hand as a CDaoException*. What the engine raised keeps
// its number; lack of memory is 3035, anything else 3001.
[[noreturn]] void rethrow_as_dao();

// Runs `work` and returns its result.
template <class Work>
decltype(auto) translated(Work&& work) {
    try {
        return work();
    } catch (...) {
        rethrow_as_dao();
    }
}

// The error that left a data-access call last on this thread; number 0 where there was none. Those above answer with
// a result code that does not tell; a program that contains the component can ask here. The text is UTF-8, cut where
// it is too long, so that keeping it needs no memory.
struct LastError {
    int number = 0;
    char text[512] = "";
};
const LastError& last_error() noexcept;
void clear_last_error() noexcept;

// The number of an engine error inside a result code; 3001 for any other failure.
int number_of(SCODE scode) noexcept;

}  // namespace afx
