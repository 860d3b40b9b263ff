// The shape of a developer function: its result, its parameters, and whether it asks for
// a CallContext first.
#pragma once

#include <builtin/builtinreg/CallContext.hpp>

#include <tuple>
#include <type_traits>

namespace Velloc::builtin::builtinreg::detail {

template <class F>
struct FunctionTraits;

template <class R, class... P>
struct FunctionTraits<R (*)(P...)> {
    using Result = R;
    using Parameters = std::tuple<P...>;
    // The signature from which argument types are derived.
    using Signature = R(P...);
    static constexpr bool takesContext = false;
};

template <class R, class... P>
struct FunctionTraits<R (*)(CallContext&, P...)> {
    using Result = R;
    using Parameters = std::tuple<P...>;
    using Signature = R(P...);
    static constexpr bool takesContext = true;
};

} // namespace Velloc::builtin::builtinreg::detail
