// The one thunk body, instantiated per combination of result and argument types. There
// are thousands of them, so each is kept to one function that reads its arguments once
// for whichever shape of call the convention asks for.
#pragma once

#include <builtin/builtinreg/InlineCWrappers.hpp>
#include <builtin/builtinreg/ParameterConversion.hpp>

#include <boost/variant/get.hpp>

#include <array>
#include <cstddef>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace Velloc::builtin::builtinreg::detail {

template <class T>
inline T argumentAt(const Parameter& parameter) {
    if (const T* value = boost::get<T>(&parameter)) {
        return *value;
    }
    types::detail::assertParameterContainsType(typeid(T), parameter);
    return T{};
}

inline constexpr InlineCResult NO_VALUE_RESULT{static_cast<std::int32_t>(NO_VALUE_INDEX), 0};

// Splits a signature's argument types into the ones that carry a value and their
// positions, dropping no-value arguments.
template <std::size_t Next, class Values, class Positions, class... Args>
struct ValueArguments {
    using Types = Values;
    using Indices = Positions;
};

template <std::size_t Next, class... V, std::size_t... P, class A, class... Rest>
struct ValueArguments<Next, TypeList<V...>, std::index_sequence<P...>, A, Rest...>
    : std::conditional_t<std::is_void_v<A>,
                         ValueArguments<Next + 1, TypeList<V...>, std::index_sequence<P...>, Rest...>,
                         ValueArguments<Next + 1, TypeList<V..., A>, std::index_sequence<P..., Next>, Rest...>> {};

template <class Result, class Values, class Positions>
struct ThunkBody;

template <class Result, class... V, std::size_t... P>
struct ThunkBody<Result, TypeList<V...>, std::index_sequence<P...>> {
    // The engine's common case, the plain convention with every argument of its declared
    // type, is tested up front and ends in the one indirect call of the developer function;
    // anything else goes on to callChecked, so that the common path keeps no registers of
    // its own and makes no call but that one.
    [[gnu::flatten]] static InlineCResult call(const lxe::LxeFunctionDescriptor* callee,
                                               lxe::ILxeBuiltinEnvironment* environment, bool* errorFlag,
                                               const Parameter* arguments) {
        *errorFlag = false;
        // The type list is in the order of Parameter's alternatives, so an argument holds
        // its declared type when its index is the type's; reading the index this way costs
        // no test of the argument's address.
        if (callee != nullptr && callee->getCallingConvention() == lxe::Plain && callee->getCallee() != nullptr &&
            ((arguments[P].which() == static_cast<int>(WRAPPER_TYPE_INDEX<V>)) && ...)) [[likely]] {
            const auto fcn = reinterpret_cast<Result (*)(V...)>(callee->getCallee());
            if constexpr (std::is_void_v<Result>) {
                fcn(boost::relaxed_get<V>(arguments[P])...);
                return NO_VALUE_RESULT;
            } else {
                return packInlineCResult<Result>(fcn(boost::relaxed_get<V>(arguments[P])...));
            }
        }
        return callChecked(callee, environment, errorFlag, arguments);
    }

    // Flattened: the argument reads fold to a check and a load each, but in translation
    // units of thousands of thunks the inliner's growth budget runs out before it gets to
    // them, and every argument would be read through an out-of-line call.
    [[gnu::noinline, gnu::flatten]] static InlineCResult callChecked(const lxe::LxeFunctionDescriptor* callee,
                                                                     lxe::ILxeBuiltinEnvironment* environment,
                                                                     bool* errorFlag, const Parameter* arguments) {
        *errorFlag = false;
        if (callee == nullptr || callee->getCallee() == nullptr) {
            return InlineCResult{0, 0};
        }
        void* const address = callee->getCallee();
        const lxe::JIT_CALLING_CONVENTION convention = callee->getCallingConvention();
        if (convention == lxe::Plain) {
            const auto fcn = reinterpret_cast<Result (*)(V...)>(address);
            if constexpr (std::is_void_v<Result>) {
                fcn(argumentAt<V>(arguments[P])...);
                return NO_VALUE_RESULT;
            } else {
                return packInlineCResult<Result>(fcn(argumentAt<V>(arguments[P])...));
            }
        }
        return callOtherConvention(convention, address, callee, environment, errorFlag, arguments);
    }

    // Out of line, so that the thousands of thunks keep one copy of the argument reads
    // each on their common path.
    [[gnu::noinline, gnu::flatten]] static InlineCResult callOtherConvention(
        lxe::JIT_CALLING_CONVENTION convention, void* address,
        const lxe::LxeFunctionDescriptor* callee, lxe::ILxeBuiltinEnvironment* environment, bool* errorFlag,
        const Parameter* arguments) {
        if (convention == lxe::CanThrowLxeInternal) {
            terminateUnexpectedCallingConvention(convention);
        }
        if (convention == lxe::WithCallee) {
            const auto fcn = reinterpret_cast<Result (*)(V..., const lxe::LxeFunctionDescriptor*)>(address);
            if constexpr (std::is_void_v<Result>) {
                fcn(argumentAt<V>(arguments[P])..., callee);
                return NO_VALUE_RESULT;
            } else {
                return packInlineCResult<Result>(fcn(argumentAt<V>(arguments[P])..., callee));
            }
        }
        if (convention != lxe::CanThrow) {
            return InlineCResult{0, 0};
        }
        if constexpr (std::is_void_v<Result>) {
            const auto fcn = reinterpret_cast<bool (*)(V..., void*, lxe::ILxeBuiltinEnvironment*,
                                                       const lxe::LxeFunctionDescriptor*)>(address);
            *errorFlag = fcn(argumentAt<V>(arguments[P])..., nullptr, environment, callee);
            return NO_VALUE_RESULT;
        } else {
            const auto fcn = reinterpret_cast<bool (*)(V..., Result*, lxe::ILxeBuiltinEnvironment*,
                                                       const lxe::LxeFunctionDescriptor*)>(address);
            Result slot{};
            *errorFlag = fcn(argumentAt<V>(arguments[P])..., &slot, environment, callee);
            return packInlineCResult<Result>(slot);
        }
    }

    static InlineCResult callWithoutArguments(const lxe::LxeFunctionDescriptor* callee,
                                              lxe::ILxeBuiltinEnvironment* environment, bool* errorFlag) {
        return call(callee, environment, errorFlag, nullptr);
    }
};

template <class Result, class... Args>
using InlineCThunk = ThunkBody<Result, typename ValueArguments<0, TypeList<>, std::index_sequence<>, Args...>::Types,
                               typename ValueArguments<0, TypeList<>, std::index_sequence<>, Args...>::Indices>;

using ThreeIndexRow = std::array<InlineCWrapperFcn, WRAPPER_TYPE_COUNT * WRAPPER_TYPE_COUNT>;

// The three-index thunks are spread over a few translation units so that they compile in
// parallel: result type r is row r / THREE_INDEX_GROUPS of group r % THREE_INDEX_GROUPS.
// Interleaving keeps the groups of even cost. A row holds the thunks of one result type by
// argumentIndex1 * WRAPPER_TYPE_COUNT + argumentIndex2; rows past the list are null.
inline constexpr std::size_t THREE_INDEX_GROUPS = 4;
inline constexpr std::size_t ROWS_PER_GROUP = (WRAPPER_TYPE_COUNT + THREE_INDEX_GROUPS - 1) / THREE_INDEX_GROUPS;
using ThreeIndexGroup = std::array<ThreeIndexRow, ROWS_PER_GROUP>;

// Instantiated by InlineCWrappersGroup<Group>.cpp.
template <std::size_t Group>
const ThreeIndexGroup& threeIndexGroup() noexcept;

} // namespace Velloc::builtin::builtinreg::detail
