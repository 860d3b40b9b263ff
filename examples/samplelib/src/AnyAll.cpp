// any and all: whether any element, or every element, is nonzero, along a dimension or
// over every element ('all'), over every class that holds numbers; the result is logical.
// NaN counts for neither: any(NaN) is false and all(NaN) true, as in the language. Of
// nothing, any is false and all true: any([]) is false, all(zeros(0, 3)) is [true true true].
#include "Elements.hpp"
#include "Reductions.hpp"
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <cmath>
#include <complex>
#include <string_view>
#include <type_traits>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

// Whether value is nonzero, and whether it is NaN.
template <class T>
bool isNonzero(T value) {
    return value != T{};
}

template <class T>
bool isNaNElement(T value) {
    if constexpr (isComplexType<T>) {
        return std::isnan(value.real()) || std::isnan(value.imag());
    } else if constexpr (std::is_floating_point_v<T>) {
        return std::isnan(value);
    } else {
        return false;
    }
}

// Any: true at the first nonzero element that is not NaN. All: false at the first zero.
template <bool Any>
oxArray* anyAllCore(const oxArray* a, const ReductionOptions& options) {
    requireNumbers(Any ? "any" : "all", a);
    const Reduction plan = planReduction(a, options, false);
    matrix::ArrayPtr out = createArrayOf<bool>(plan.dims);
    bool* result = matrix::getTypedData<bool>(out.get());
    visitElements(a, [&]<class T>(std::type_identity<T>) {
        const T* data = matrix::getTypedData<T>(a);
        for (std::size_t k = 0; k < plan.count; ++k) {
            bool found = false;
            for (std::size_t e = 0, i = plan.first(k); e < plan.extent && !found; ++e, i += plan.stride) {
                found = Any ? isNonzero(data[i]) && !isNaNElement(data[i]) : !isNonzero(data[i]);
            }
            result[k] = Any ? found : !found;
        }
    });
    return out.release();
}

constexpr char ANY[] = "any";
constexpr char ALL[] = "all";

template <bool Any, const char* Name>
const BuiltinVariantLists& anyAllLists() {
    constexpr ReductionCore core = &anyAllCore<Any>;
    static const BuiltinVariantLists lists{
        makeVariants<&alongFirst<core>>(Name, {.mayThrowErrors = true}),
        makeVariants<&along<core>>(Name, {.mayThrowErrors = true}),
        makeVariants<&overAll<core>>(Name, {.mayThrowErrors = true, .flags = {{1, "all"}}}),
        makeVariants<&withAllOption<core, Name>>(Name, {.mayThrowErrors = true}),
    };
    return lists;
}

} // namespace

const BuiltinFcn& anyBuiltin() {
    static const RegisteredBuiltin builtin(
        "any", LIBRARY, "whether any element is nonzero: any(x), any(x, dim), any(x, 'all')", anyAllLists<true, ANY>(),
        defaultImplementation<&reportUnmatchedCall<&anyBuiltin>>("any"));
    return builtin;
}

const BuiltinFcn& allBuiltin() {
    static const RegisteredBuiltin builtin(
        "all", LIBRARY, "whether every element is nonzero: all(x), all(x, dim), all(x, 'all')",
        anyAllLists<false, ALL>(), defaultImplementation<&reportUnmatchedCall<&allBuiltin>>("all"));
    return builtin;
}

} // namespace samplelib
