// max and min, in the two forms the language gives them:
//  - reductions: max(x) along the first non-singleton dimension, max(x, [], dim) along a
//    given one, max(x, [], 'all') over every element (Reductions.hpp). NaN elements are
//    left out; a slice of NaN alone gives NaN. An empty dimension stays empty: max([]) is [].
//  - element by element, with broadcasting: max(a, b). Operands of one class take
//    element-wise variants; mixed classes give the class the language gives arithmetic
//    (an integer class over double, single over double), the value saturated to it:
//    max(int8(5), 300) is int8(127).
// Complex values are ordered by magnitude, then by angle. Integer classes keep their
// class; logical and char give double.
#include "Broadcasting.hpp"
#include "ElementTypes.hpp"
#include "Elements.hpp"
#include "Reductions.hpp"
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <foundation/core/except/Exception.hpp>

#include <cmath>
#include <complex>
#include <string_view>
#include <type_traits>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinVariant;

namespace errors {
struct dimensionWithTwoArrays {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "dimensionWithTwoArrays";
    static constexpr std::string_view text =
        "{0} with two arrays to compare and a dimension is not supported: the second argument must be [].";
};
struct mixedIntegers {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "mixedIntegers";
    static constexpr std::string_view text = "Integers can only be combined with integers of the same class or with "
                                             "double, single, logical or char: not {0} and {1}.";
};
struct complexIntegers {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "complexIntegers";
    static constexpr std::string_view text = "Complex integers are not supported: {0} of {1} and complex {2}.";
};
} // namespace errors

template <class T>
bool isNaNValue(T value) {
    if constexpr (isComplexType<T>) {
        return std::isnan(value.real()) || std::isnan(value.imag());
    } else if constexpr (std::is_floating_point_v<T>) {
        return std::isnan(value);
    } else {
        return false;
    }
}

// Whether candidate beats current: is larger (Max) or smaller. Complex values compare
// by magnitude, then angle.
template <bool Max, class T>
bool beats(T candidate, T current) {
    if constexpr (isComplexType<T>) {
        const auto a = std::abs(candidate);
        const auto b = std::abs(current);
        if (a != b) {
            return Max ? a > b : a < b;
        }
        const auto p = std::arg(candidate);
        const auto q = std::arg(current);
        return Max ? p > q : p < q;
    } else {
        return Max ? candidate > current : candidate < current;
    }
}

bool isNaNNumber(const Number& x) { return x.isNaN(); }

// Of operands of which either is complex, magnitudes and angles compare.
template <bool Max>
bool beats(const Number& candidate, const Number& current, bool complex) {
    if (!complex) {
        return Max ? candidate.re > current.re : candidate.re < current.re;
    }
    return beats<Max>(std::complex<long double>(candidate.re, candidate.im),
                      std::complex<long double>(current.re, current.im));
}

// The element-wise form: NaN gives way to the other operand; of two equal values the first.
template <bool Max, class T>
T extremumOf(T a, T b) {
    if (isNaNValue(a)) {
        return b;
    }
    if (isNaNValue(b)) {
        return a;
    }
    return beats<Max>(b, a) ? b : a;
}

// The class max and min give: logical and char as double, every other class its own.
template <class T>
using ExtremumType = std::conditional_t<std::is_same_v<T, bool> || std::is_same_v<T, char16_t>, double, T>;

template <bool Max>
constexpr const char* nameOf() {
    return Max ? "max" : "min";
}

template <bool Max>
oxArray* extremumCore(const oxArray* a, const ReductionOptions& options) {
    requireNumbers(nameOf<Max>(), a);
    const Reduction plan = planReduction(a, options, true);
    return visitElements(a, [&]<class T>(std::type_identity<T>) {
        using R = ExtremumType<T>;
        matrix::ArrayPtr out = createArrayOf<R>(plan.dims);
        R* result = matrix::getTypedData<R>(out.get());
        const T* data = matrix::getTypedData<T>(a);
        for (std::size_t k = 0; k < plan.count; ++k) {
            // The first element that is not NaN, then any that beats it.
            std::size_t e = 0;
            const std::size_t first = plan.first(k);
            while (e + 1 < plan.extent && isNaNValue(data[first + e * plan.stride])) ++e;
            T best = data[first + e * plan.stride];
            for (++e; e < plan.extent; ++e) {
                const T value = data[first + e * plan.stride];
                if (!isNaNValue(value) && beats<Max>(value, best)) {
                    best = value;
                }
            }
            result[k] = static_cast<R>(best);
        }
        return out.release();
    });
}

bool isIntegerClass(oxClassID id) { return id >= oxINT8_CLASS && id <= oxUINT64_CLASS; }

// The class of max(a, b) for operands of different classes, as arithmetic gives it.
oxClassID mixedClass(const char* name, const oxArray* a, const oxArray* b) {
    const oxClassID x = matrix::getClassID(a);
    const oxClassID y = matrix::getClassID(b);
    if (isIntegerClass(x) && isIntegerClass(y) && x != y) {
        throw foundation::core::except::Exception<errors::mixedIntegers>({classNameOf(a), classNameOf(b)});
    }
    const oxClassID result = isIntegerClass(x)                          ? x
                           : isIntegerClass(y)                          ? y
                           : x == oxSINGLE_CLASS || y == oxSINGLE_CLASS ? oxSINGLE_CLASS
                                                                        : oxDOUBLE_CLASS;
    if (isIntegerClass(result) && (matrix::isComplex(a) || matrix::isComplex(b))) {
        throw foundation::core::except::Exception<errors::complexIntegers>(
            {std::string(name), classNameOf(a), classNameOf(b)});
    }
    return result;
}

// max(a, b) of operands the element-wise variants do not take: classes that differ, char
// or logical operands, empty ones.
template <bool Max>
oxArray* extremumArrays(const oxArray* a, const oxArray* b) {
    requireNumbers(nameOf<Max>(), a);
    requireNumbers(nameOf<Max>(), b);
    rejectSizeMismatch(a, b);
    const std::vector<std::size_t> dims = *broadcastDims(a, b);
    const bool complex = matrix::isComplex(a) || matrix::isComplex(b);
    matrix::ArrayPtr out = createArray(dims, mixedClass(nameOf<Max>(), a, b), complex);
    const NumberReader x(a);
    const NumberReader y(b);
    visitElements(out.get(), [&]<class R>(std::type_identity<R>) {
        R* result = matrix::getTypedData<R>(out.get());
        forEachBroadcast(
            dims, matrix::getDimensions(a), matrix::getDimensions(b), [&](std::size_t k, std::size_t i, std::size_t j) {
                const Number p = x[i];
                const Number q = y[j];
                const Number& chosen = isNaNNumber(p) ? q : isNaNNumber(q) ? p : beats<Max>(q, p, complex) ? q : p;
                if constexpr (isComplexType<R>) {
                    using Part = RealType<R>;
                    result[k] = R(static_cast<Part>(chosen.re), static_cast<Part>(chosen.im));
                } else if constexpr (std::is_integral_v<R>) {
                    result[k] = saturateTo<R>(chosen.re);
                } else {
                    result[k] = static_cast<R>(chosen.re);
                }
            });
    });
    return out.release();
}

// --- the variants ---

template <bool Max>
oxArray* alongFirst(const oxArray* a) {
    return extremumCore<Max>(a, {});
}

template <bool Max>
void requireNoSecondArray(const oxArray* b) {
    if (!matrix::isEmpty(b)) {
        throw foundation::core::except::Exception<errors::dimensionWithTwoArrays>({std::string(nameOf<Max>())});
    }
}

// max(x, [], dim).
template <bool Max>
oxArray* along(const oxArray* a, const oxArray* none, double dim) {
    requireNoSecondArray<Max>(none);
    return extremumCore<Max>(a, {.dim = dimensionIndex(dim)});
}

// max(x, [], 'all') from compiled callers, the text a flag.
template <bool Max>
oxArray* overAll(const oxArray* a, const oxArray* none) {
    requireNoSecondArray<Max>(none);
    return extremumCore<Max>(a, {.all = true});
}

// max(x, [], 'all') from the interpreter, the text read here.
template <bool Max>
oxArray* withOption(const oxArray* a, const oxArray* none, std::u16string_view option) {
    requireNoSecondArray<Max>(none);
    ReductionOptions options;
    applyOption(options, option, nameOf<Max>(), {ReductionOption::ALL});
    return extremumCore<Max>(a, options);
}

void append(std::vector<BuiltinVariant>& to, std::vector<BuiltinVariant> variants) {
    to.insert(to.end(), variants.begin(), variants.end());
}

template <bool Max>
std::vector<BuiltinVariant> extremumVariants() {
    constexpr const char* name = nameOf<Max>();
    const VariantOptions THROWS{.mayThrowErrors = true};
    std::vector<BuiltinVariant> variants = variantsFor(ArithmeticTypes{}, [](auto* t) {
        return makeVariants<&extremumOf<Max, Of<decltype(t)>>>(nameOf<Max>(), {.isElementWise = true});
    });
    append(variants, makeVariants<&extremumArrays<Max>>(name, THROWS));
    append(variants, makeVariants<&alongFirst<Max>>(name, THROWS));
    append(variants, makeVariants<&along<Max>>(name, THROWS));
    append(variants, makeVariants<&overAll<Max>>(name, {.mayThrowErrors = true, .flags = {{2, "all"}}}));
    append(variants, makeVariants<&withOption<Max>>(name, THROWS));
    return variants;
}

const BuiltinVariantLists& maxLists() {
    static const BuiltinVariantLists lists(extremumVariants<true>());
    return lists;
}

const BuiltinVariantLists& minLists() {
    static const BuiltinVariantLists lists(extremumVariants<false>());
    return lists;
}

} // namespace

const BuiltinFcn& maxBuiltin() {
    static const RegisteredBuiltin builtin("max", LIBRARY,
                                           "largest elements: max(x), max(x, [], dim), max(x, [], 'all'), max(a, b)",
                                           maxLists(), defaultImplementation<&reportUnmatchedCall<&maxBuiltin>>("max"));
    return builtin;
}

const BuiltinFcn& minBuiltin() {
    static const RegisteredBuiltin builtin("min", LIBRARY,
                                           "smallest elements: min(x), min(x, [], dim), min(x, [], 'all'), min(a, b)",
                                           minLists(), defaultImplementation<&reportUnmatchedCall<&minBuiltin>>("min"));
    return builtin;
}

} // namespace samplelib
