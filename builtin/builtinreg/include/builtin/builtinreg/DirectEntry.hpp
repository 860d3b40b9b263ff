// The direct entry of a plain developer function (no CallContext, neither warns nor
// throws) over numeric scalars and host arrays: invoke calls it straight from the host
// arrays of a call whose inputs it takes as they are, with no parameters built and no
// call environment, and gets its result as a host array.
#pragma once

#include <builtin/BuiltinVariant.hpp>
#include <builtin/builtinreg/FunctionTraits.hpp>
#include <builtin/builtinreg/ParameterAccess.hpp>

#include <matrix/oxArrayLayout.hpp>

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace Velloc::builtin::builtinreg::detail {

template <class T>
inline constexpr bool isArrayParameter = std::is_same_v<T, oxArray*> || std::is_same_v<T, const oxArray*>;

// Gives back, however the call ends, the references taken on the host arrays passed to
// the function, as the generic entry's parameters do: one slot per input, empty for one
// not held. Inline, without the library's checks: invoke sends a call with a null handle
// (or an array without a key) to the generic entry, so every array here is one. The thread's serial is read once for
// every hold and release of the call.
template <std::size_t N>
class HeldInputs {
public:
    HeldInputs() noexcept = default;
    HeldInputs(const HeldInputs&) = delete;
    HeldInputs& operator=(const HeldInputs&) = delete;
    // Unrolled and inline, so that the slots stay in registers and those a call never
    // fills cost no test.
    [[gnu::always_inline]] ~HeldInputs() { releaseFrom<0>(); }

    // Held for the call and no longer a temporary, since the callee may keep it. By
    // reference: a slot filled on every path is known not null, and costs no test on release.
    void hold(std::size_t slot, oxArray& array) noexcept {
        matrix::detail::holdForCall(array, thread_);
        matrix::detail::clearTemporaryMark(array);
        arrays_[slot] = &array;
    }

private:
    template <std::size_t I>
    [[gnu::always_inline]] void releaseFrom() {
        if constexpr (I < N) {
            if (arrays_[I] != nullptr) {
                matrix::detail::releaseAfterCall(*arrays_[I], thread_);
            }
            releaseFrom<I + 1>();
        }
    }

    std::uint64_t thread_ = matrix::detail::threadSerial;
    oxArray* arrays_[N > 0 ? N : 1] = {};
};

// BoxedScalars: the variant declares its scalar inputs as host arrays (a boxed copy), so
// the generic path passes those arrays too and clears their temporary marks.
template <auto Fcn, bool BoxedScalars>
struct DirectEntryOf {
    using Traits = FunctionTraits<decltype(Fcn)>;
    using Result = std::remove_cvref_t<typename Traits::Result>;
    template <std::size_t I>
    using Arg = std::remove_cvref_t<std::tuple_element_t<I, typename Traits::Parameters>>;
    static constexpr std::size_t ARITY = std::tuple_size_v<typename Traits::Parameters>;

    static constexpr bool EXISTS = [] {
        if constexpr (Traits::takesContext || ARITY > DirectEntry::MAX_INPUTS ||
                      !(isParameterValue<Result> || std::is_same_v<Result, oxArray*>)) {
            return false;
        } else {
            return []<std::size_t... I>(std::index_sequence<I...>) {
                return ((isParameterValue<Arg<I>> || isArrayParameter<Arg<I>>) && ...);
            }(std::make_index_sequence<ARITY>{});
        }
    }();

    // Bit i set: input i is a numeric scalar parameter.
    static constexpr unsigned SCALAR_INPUTS = [] {
        if constexpr (EXISTS) {
            return []<std::size_t... I>(std::index_sequence<I...>) {
                return ((isParameterValue<Arg<I>> ? 1u << I : 0u) | ... | 0u);
            }(std::make_index_sequence<ARITY>{});
        } else {
            return 0u;
        }
    }();

    template <std::size_t I>
    static constexpr std::uint32_t requiredKey() {
        if constexpr (isParameterValue<Arg<I>>) {
            return types::InputKey::ofScalar(classOfValue<Arg<I>>(), isComplexValue<Arg<I>>()).bits();
        } else {
            return DirectEntry::ANY_ARRAY;
        }
    }

    template <std::size_t I>
    static Arg<I> argument(oxArray* array, HeldInputs<ARITY>& held) {
        if constexpr (isParameterValue<Arg<I>>) {
            if constexpr (BoxedScalars) {
                matrix::detail::clearTemporaryMark(*array);
            }
            return *static_cast<const Arg<I>*>(array->data);
        } else {
            held.hold(I, *array);
            return array;
        }
    }

    static oxArray* call(oxArray* const* prhs) {
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            HeldInputs<ARITY> held;
            // Braces: the inputs are taken in order, as the generic path converts them.
            const std::tuple<Arg<I>...> arguments{argument<I>(prhs[I], held)...};
            if constexpr (std::is_same_v<Result, oxArray*>) {
                return Fcn(std::get<I>(arguments)...);
            } else {
                return matrix::createScalar(Fcn(std::get<I>(arguments)...));
            }
        }(std::make_index_sequence<ARITY>{});
    }

    static constexpr bool RUNS_ELEMENT_WISE =
        EXISTS && !BoxedScalars && (ARITY == 1 || ARITY == 2) && isParameterValue<Result> &&
        SCALAR_INPUTS == (1u << ARITY) - 1;

    // An input that is not 1-by-1 is read element by element, held for the call and no
    // longer a temporary, as the generic entry passes it; a 1-by-1 input is read as its
    // value. Every input that is not 1-by-1 has the output's dimensions.
    static oxArray* callElementWise(oxArray* const* prhs) {
        HeldInputs<ARITY> held;
        const oxArray* shaped = prhs[0];
        for (std::size_t i = 0; i < ARITY; ++i) {
            if (prhs[i]->numberOfElements != 1) {
                held.hold(i, *prhs[i]);
                shaped = prhs[i];
            }
        }
        matrix::ArrayPtr out(matrix::detail::do_create_uninitnumeric(
            matrix::Dims(shaped->dimensions, shaped->numberOfDimensions), classOfValue<Result>(),
            isComplexValue<Result>() ? oxCOMPLEX : oxREAL));
        // A new array: no input aliases it, which lets the loops vectorise without checks.
        Result* __restrict const result = static_cast<Result*>(out->data);
        const std::size_t count = out->numberOfElements;
        const Arg<0>* const a = static_cast<const Arg<0>*>(prhs[0]->data);
        if constexpr (ARITY == 1) {
            for (std::size_t i = 0; i < count; ++i) {
                result[i] = Fcn(a[i]);
            }
        } else {
            // Separate loops, so that each vectorises with its scalar hoisted.
            const Arg<1>* const b = static_cast<const Arg<1>*>(prhs[1]->data);
            if (prhs[0]->numberOfElements == count && prhs[1]->numberOfElements == count) {
                for (std::size_t i = 0; i < count; ++i) {
                    result[i] = Fcn(a[i], b[i]);
                }
            } else if (prhs[1]->numberOfElements == 1) {
                const Arg<1> y = *b;
                for (std::size_t i = 0; i < count; ++i) {
                    result[i] = Fcn(a[i], y);
                }
            } else {
                const Arg<0> x = *a;
                for (std::size_t i = 0; i < count; ++i) {
                    result[i] = Fcn(x, b[i]);
                }
            }
        }
        return out.release();
    }

    static constexpr DirectEntry ENTRY = []<std::size_t... I>(std::index_sequence<I...>) {
        if constexpr (RUNS_ELEMENT_WISE) {
            return DirectEntry{{requiredKey<I>()...}, &call, false, &callElementWise};
        } else {
            return DirectEntry{{requiredKey<I>()...}, &call, std::is_same_v<Result, oxArray*>};
        }
    }(std::make_index_sequence<ARITY>{});
};

// Gives each variant made from the function the direct entry that matches how it
// declares its inputs: scalar inputs all as scalars (plain) or all as host arrays
// (boxed), host-array inputs as host arrays. Others keep the generic entry only.
void attachDirectEntries(std::vector<BuiltinVariant>& variants, std::size_t arity, unsigned scalarInputs,
                         const DirectEntry* plain, const DirectEntry* boxed);

} // namespace Velloc::builtin::builtinreg::detail
