// The argument types of a developer function, derived at compile time from its C++
// signature through TypeTraitsImpl: getArgTypesOf<double(double, const oxArray*)>(tol).
#pragma once

#include <builtin/builtinreg/ArgTypes.hpp>
#include <builtin/types/TypeTraitsImpl.hpp>

#include <array>
#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace Velloc::builtin::builtinreg {

namespace detail {

template <class T>
using TraitsOf = types::TypeTraitsImpl<std::remove_cvref_t<T>>;

template <class T>
concept HasArgTypeKinds = requires(std::size_t kind) {
    TraitsOf<T>::getArgType(kind);
    { TraitsOf<T>::numArgTypes } -> std::convertible_to<unsigned long>;
};

template <class T>
constexpr unsigned long numArgTypesOf() {
    if constexpr (HasArgTypeKinds<T>) {
        return TraitsOf<T>::numArgTypes;
    } else {
        return 1;
    }
}

// The k-th argument type of T as a stable reference. Traits that return their types by
// value are asked once per process and their answers kept.
template <class T>
const types::ArgType& argTypeOf(unsigned long kind) {
    if constexpr (HasArgTypeKinds<T>) {
        if constexpr (std::is_reference_v<decltype(TraitsOf<T>::getArgType(kind))>) {
            return TraitsOf<T>::getArgType(kind);
        } else {
            static const auto kinds = []<std::size_t... K>(std::index_sequence<K...>) {
                return std::array<types::ArgType, sizeof...(K)>{
                    types::ArgType(TraitsOf<T>::getArgType(K))...};
            }(std::make_index_sequence<numArgTypesOf<T>()>{});
            return kinds[kind];
        }
    } else if constexpr (std::is_reference_v<decltype(TraitsOf<T>::getArgType())>) {
        return TraitsOf<T>::getArgType();
    } else {
        static const types::ArgType single = TraitsOf<T>::getArgType();
        return single;
    }
}

template <class Signature>
struct SignatureArgTypes;

template <class Result, class... Params>
struct SignatureArgTypes<Result(Params...)> {
    static ArgTypes get(types::SignatureTolerance tolerance) {
        const types::ArgType& (*output)(std::size_t) = nullptr;
        if constexpr (!std::is_void_v<Result>) {
            output = &argTypeOf<Result>;
        }
        return getArgTypes(tolerance, {numArgTypesOf<Params>()...}, {&argTypeOf<Params>...},
                           output);
    }
};

} // namespace detail

template <class Signature>
ArgTypes getArgTypesOf(types::SignatureTolerance tolerance) {
    return detail::SignatureArgTypes<Signature>::get(tolerance);
}

} // namespace Velloc::builtin::builtinreg
