// The types that a function called through an inline-C wrapper may take or return. A
// type's position in the list is the key compiled code looks wrappers up by: the
// alternatives of Parameter in their order, then void for "no value".
#pragma once

#include <builtin/Parameter.hpp>

#include <cstddef>
#include <type_traits>

namespace Velloc::builtin::builtinreg::detail {

template <class... T>
struct TypeList {
    static constexpr std::size_t SIZE = sizeof...(T);
};

namespace typelist {

template <class Variant>
struct FromVariant;

template <class T0, class... Tn>
struct FromVariant<boost::variant<T0, Tn...>> {
    using type = TypeList<T0, Tn..., void>;
};

template <std::size_t I, class List>
struct At;

template <std::size_t I, class T0, class... Tn>
struct At<I, TypeList<T0, Tn...>> : At<I - 1, TypeList<Tn...>> {};

template <class T0, class... Tn>
struct At<0, TypeList<T0, Tn...>> {
    using type = T0;
};

template <class T, class List>
struct IndexOf;

template <class T, class T0, class... Tn>
struct IndexOf<T, TypeList<T0, Tn...>>
    : std::integral_constant<std::size_t, std::is_same_v<T, T0> ? 0 : 1 + IndexOf<T, TypeList<Tn...>>::value> {};

template <class T>
struct IndexOf<T, TypeList<>> : std::integral_constant<std::size_t, 0> {};

} // namespace typelist

// Derived from Parameter so that the two orders cannot drift apart.
using InlineCTypeList = typename typelist::FromVariant<ParameterBase>::type;

inline constexpr std::size_t WRAPPER_TYPE_COUNT = InlineCTypeList::SIZE;
inline constexpr std::size_t NO_VALUE_INDEX = WRAPPER_TYPE_COUNT - 1;

template <std::size_t I>
using WrapperTypeAt = typename typelist::At<I, InlineCTypeList>::type;

// The index of T, or WRAPPER_TYPE_COUNT when T is not in the list.
template <class T>
inline constexpr std::size_t WRAPPER_TYPE_INDEX = typelist::IndexOf<T, InlineCTypeList>::value;

static_assert(WRAPPER_TYPE_COUNT == NUM_PARAMETER_ALTERNATIVES + 1);
static_assert(WRAPPER_TYPE_INDEX<double> == 1 && WRAPPER_TYPE_INDEX<std::complex<double>> == 11 &&
              WRAPPER_TYPE_INDEX<Velloc::lxe::LxeObject*> == 15 && std::is_void_v<WrapperTypeAt<NO_VALUE_INDEX>>);

} // namespace Velloc::builtin::builtinreg::detail
