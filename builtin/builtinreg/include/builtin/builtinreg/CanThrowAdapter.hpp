// The callee that compiled code reaches for a developer function that may warn or throw.
// Compiled callers call such a function as
//     bool f(a..., R* slot, ILxeBuiltinEnvironment* environment, const LxeFunctionDescriptor* callee)
// and learn from the result whether the environment now holds warnings or an error. The
// adapter gives a plain developer function that shape: it runs the function with a
// CallContext on the environment, stores its result in the slot, and turns an exception
// into the environment's pending error.
#pragma once

#include <builtin/builtinreg/Boxing.hpp>
#include <builtin/builtinreg/FunctionTraits.hpp>
#include <builtin/builtinreg/ParameterAccess.hpp>

#include <lxe/LxeFunctionDescriptor.hpp>

#include <tuple>
#include <type_traits>

namespace Velloc::builtin::builtinreg::detail {

template <class T>
inline constexpr bool isInlineCType = isParameterValue<T> || std::is_same_v<T, oxArray*> ||
                                      std::is_same_v<T, Velloc::String::String*> ||
                                      std::is_same_v<T, Velloc::lxe::LxeObject*>;

template <auto Fcn, class Parameters = typename FunctionTraits<decltype(Fcn)>::Parameters>
struct CanThrowAdapter;

template <auto Fcn, class... A>
struct CanThrowAdapter<Fcn, std::tuple<A...>> {
    using Traits = FunctionTraits<decltype(Fcn)>;
    using Result = typename Traits::Result;
    // Compiled callers pass only the types of the wrapper type list.
    static constexpr bool REACHABLE =
        (std::is_void_v<Result> || isInlineCType<Result>) && (isInlineCType<A> && ...);

    static bool call(A... arguments, std::conditional_t<std::is_void_v<Result>, void, Result>* slot,
                     lxe::ILxeBuiltinEnvironment* environment, const lxe::LxeFunctionDescriptor*) {
        CallContext context(environment != nullptr ? *environment : discardingEnvironment());
        try {
            if constexpr (std::is_void_v<Result>) {
                invoke(context, arguments...);
            } else {
                *slot = invoke(context, arguments...);
            }
            return context.raisedWarnings();
        } catch (...) {
            bool raised = false;
            handleBoxingException(raised, environment);
            return raised;
        }
    }

    static void* callee() noexcept {
        if constexpr (REACHABLE) {
            return reinterpret_cast<void*>(&call);
        } else {
            return nullptr;
        }
    }

private:
    static decltype(auto) invoke(CallContext& context, A... arguments) {
        if constexpr (Traits::takesContext) {
            return Fcn(context, arguments...);
        } else {
            return Fcn(arguments...);
        }
    }
};

} // namespace Velloc::builtin::builtinreg::detail
