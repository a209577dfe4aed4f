// A gate's methods as late-binding callers see them: one row per method, in slot order, so that the
// position of a row (from 1) is the method's dispatch identifier.
//
//     method<&IDBgate1::ComputeInStock>("ComputeInStock", "dwStockTypeID", "pnInStock")
//
// How the arguments of a row are converted follows from the parameter types of the member it names.
#pragma once

#include <kvdb/com.h>

#include <array>
#include <cstddef>
#include <span>
#include <tuple>
#include <utility>

#include "frame/arguments.h"

namespace frame {

inline constexpr std::size_t kMaxParameters = 2;

// An argument that could not be converted.
struct BadArgument {
    std::size_t parameter = 0;  // position in the method's parameters, from 0
    HRESULT result = S_OK;      // S_OK: all were converted
};

// What becomes of the out integer of a method that fails.
enum class OutInteger {
    kIfChanged,  // the method may have left it alone; then the caller's value stays, of whatever type it is
    kAlways,     // the method stores it whatever it answers
};

struct Method {
    const char* name;
    std::array<const char*, kMaxParameters> parameters;
    std::size_t parameter_count;

    // Calls the method of `gate` with `arguments` in the order of the parameters. Where `bad` names an
    // argument, the method was not called. Lets out what the method lets out.
    HRESULT (*invoke)(IDispatch* gate, std::span<VARIANT* const> arguments, BadArgument& bad);
};

template <auto Member, OutInteger kOutInteger = OutInteger::kIfChanged>
struct MethodCaller;

template <class Gate, class... Parameters, HRESULT (STDMETHODCALLTYPE Gate::*Member)(Parameters...),
          OutInteger kOutInteger>
struct MethodCaller<Member, kOutInteger> {
    static constexpr std::size_t kParameters = sizeof...(Parameters);

    static HRESULT invoke(IDispatch* gate, std::span<VARIANT* const> arguments, BadArgument& bad) {
        return invoke(gate, arguments, bad, std::index_sequence_for<Parameters...>());
    }

private:
    template <std::size_t... I>
    static HRESULT invoke(IDispatch* gate, [[maybe_unused]] std::span<VARIANT* const> arguments,
                          [[maybe_unused]] BadArgument& bad, std::index_sequence<I...>) {
        [[maybe_unused]] std::tuple<Argument<Parameters>...> values;
        [[maybe_unused]] const auto fits = [&bad](std::size_t parameter, HRESULT result) {
            if (FAILED(result)) bad = {parameter, result};
            return SUCCEEDED(result);
        };
        if (!(fits(I, std::get<I>(values).take(*arguments[I])) && ...)) return bad.result;
        const HRESULT result = (static_cast<Gate*>(gate)->*Member)(std::get<I>(values).value()...);
        [[maybe_unused]] const bool is_stored = SUCCEEDED(result) || kOutInteger == OutInteger::kAlways;
        static_cast<void>((fits(I, std::get<I>(values).give_back(is_stored)) && ...));
        return result;
    }
};

template <auto Member, OutInteger kOutInteger = OutInteger::kIfChanged, class... Names>
constexpr Method method(const char* name, Names... parameters) {
    static_assert(sizeof...(Names) == MethodCaller<Member>::kParameters, "a name for every parameter");
    static_assert(sizeof...(Names) <= kMaxParameters);
    return {name, {parameters...}, sizeof...(Names), MethodCaller<Member, kOutInteger>::invoke};
}

}  // namespace frame
