// The generic entry of a developer function: the callable through which invoke and the
// engine call it with unboxed parameters. Generated per function at compile time.
#pragma once

#include <builtin/builtinreg/Boxing.hpp>
#include <builtin/builtinreg/ElementWiseCall.hpp>
#include <builtin/builtinreg/FunctionTraits.hpp>
#include <builtin/builtinreg/ParameterAccess.hpp>

#include <lxe/LxeFunctionDescriptor.hpp>

#include <tuple>
#include <type_traits>
#include <utility>

namespace Velloc::builtin::builtinreg::detail {

template <auto Fcn>
struct GenericEntry {
    using Traits = FunctionTraits<decltype(Fcn)>;
    using Result = typename Traits::Result;
    template <std::size_t I>
    using Arg = std::remove_cvref_t<std::tuple_element_t<I, typename Traits::Parameters>>;
    static constexpr std::size_t ARITY = std::tuple_size_v<typename Traits::Parameters>;
    // Element-wise functions map one or two numeric scalars to a numeric scalar.
    static constexpr bool CAN_RUN_ELEMENT_WISE = [] {
        if constexpr (ARITY == 1 || ARITY == 2) {
            return isParameterValue<std::remove_cvref_t<Result>> &&
                   []<std::size_t... I>(std::index_sequence<I...>) {
                       return (isParameterValue<Arg<I>> && ...);
                   }(std::make_index_sequence<ARITY>{});
        } else {
            return false;
        }
    }();

    template <class... A>
    static decltype(auto) callDeveloper(CallContext& context, A&&... args) {
        if constexpr (Traits::takesContext) {
            return Fcn(context, std::forward<A>(args)...);
        } else {
            return Fcn(std::forward<A>(args)...);
        }
    }

    static Parameter callOnce(CallContext& context, const Parameter* parameters) {
        types::Temporaries temporaries;
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            if constexpr (std::is_void_v<Result>) {
                callDeveloper(context, fromParameter<Arg<I>>(parameters[I], temporaries)...);
                return Parameter();
            } else {
                return toResultParameter(callDeveloper(context, fromParameter<Arg<I>>(parameters[I], temporaries)...));
            }
        }(std::make_index_sequence<ARITY>{});
    }

    static Parameter callElementWise(CallContext& context, const Parameter* parameters) {
        static_assert(CAN_RUN_ELEMENT_WISE, "an element-wise function maps one or two numeric scalars to one");
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            // Scalars that travel as their values: one call, no loop to set up.
            if (((boost::get<Arg<I>>(&parameters[I]) != nullptr) && ...)) {
                return toResultParameter(callDeveloper(context, *boost::get<Arg<I>>(&parameters[I])...));
            }
            // Stateless, so that each chunk of a parallel loop calls with its own context.
            const auto element = [](CallContext& chunkContext, Arg<I>... values) {
                return callDeveloper(chunkContext, values...);
            };
            return runElementWise<Result, Arg<I>...>(context, parameters, element);
        }(std::make_index_sequence<ARITY>{});
    }

    // A developer function that may throw or warn records its error in the environment
    // and says so through pending; any other lets its exceptions escape.
    template <bool ElementWise>
    static Parameter entry(const lxe::LxeFunctionDescriptor& descriptor, lxe::ILxeBuiltinEnvironment& environment,
                           bool& pending, const Parameter* parameters) {
        CallContext context(environment);
        const auto call = [&] {
            if constexpr (ElementWise) {
                return callElementWise(context, parameters);
            } else {
                return callOnce(context, parameters);
            }
        };
        if (descriptor.getCallingConvention() != lxe::CanThrow) {
            // Warnings of a function that promised none still reach the caller, which
            // holds the function to its promise.
            Parameter result = call();
            pending = context.raisedWarnings();
            return result;
        }
        try {
            Parameter result = call();
            pending = context.raisedWarnings();
            return result;
        } catch (...) {
            handleBoxingException(pending, &environment);
            return Parameter();
        }
    }
};

} // namespace Velloc::builtin::builtinreg::detail
