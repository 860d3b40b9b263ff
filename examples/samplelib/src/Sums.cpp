// sum, prod and mean: reductions along a dimension or over every element (Reductions.hpp
// tells where they run and how their options reach them), over every class that holds
// numbers, in the classes the language gives:
//  - sum and prod keep the class of their operand; integers saturate at the class's limits
//    (the exact sum or product, saturated once: sum(int8([100 100 -100])) is int8(100));
//    logical and char add and multiply as double; single is accumulated in double and
//    rounded once;
//  - mean gives double, or single for single operands (complex stays complex);
//  - the sum of nothing is 0, its product 1 and its mean NaN: sum([]) is 0, mean([]) NaN;
//  - sum and mean take 'omitnan', which leaves NaN elements out (a complex element is NaN
//    when either part is); the mean is then over the elements left.
#include "Elements.hpp"
#include "Reductions.hpp"
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <string_view>
#include <type_traits>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinVariant;

// Holds every sum of 64-bit integers a host array can have, exactly.
__extension__ typedef __int128 Wide;

template <class T>
inline constexpr bool isIntegerClass =
    std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char16_t>;

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

// The class sum and prod give: logical and char as double, every other class its own.
template <class T>
using SumType = std::conditional_t<std::is_same_v<T, bool> || std::is_same_v<T, char16_t>, double, T>;

// The class mean gives: single stays single, everything else is double; complex stays complex.
template <class T>
using MeanType = std::conditional_t<isComplexType<T> || std::is_same_v<T, float>, T, double>;

// What floating-point sums and products run in: double, complex for complex operands.
template <class T>
using FloatingAccumulator = std::conditional_t<isComplexType<T>, std::complex<double>, double>;

template <class T>
FloatingAccumulator<T> widened(T value) {
    if constexpr (isComplexType<T>) {
        return {static_cast<double>(value.real()), static_cast<double>(value.imag())};
    } else {
        return static_cast<double>(value);
    }
}

template <class R, class A>
R narrowed(A value) {
    if constexpr (isComplexType<R>) {
        using Part = RealType<R>;
        return {static_cast<Part>(value.real()), static_cast<Part>(value.imag())};
    } else {
        return static_cast<R>(value);
    }
}

template <class T>
T saturatedWide(Wide sum) {
    constexpr Wide lowest = std::numeric_limits<T>::lowest();
    constexpr Wide highest = std::numeric_limits<T>::max();
    return sum <= lowest ? std::numeric_limits<T>::lowest() : sum >= highest ? std::numeric_limits<T>::max() : T(sum);
}

// Calls f(k, element) for each element k of the result, element(e) giving the e-th
// operand element reduced into it.
template <class T, class F>
void forEachSlice(const oxArray* a, const Reduction& plan, F f) {
    const T* data = matrix::getTypedData<T>(a);
    for (std::size_t k = 0; k < plan.count; ++k) {
        const std::size_t first = plan.first(k);
        f(k, [&](std::size_t e) { return data[first + e * plan.stride]; });
    }
}

// The exact sum of a slice of an integer class.
template <class T, class Element>
Wide exactSum(Element element, std::size_t extent) {
    Wide sum = 0;
    for (std::size_t e = 0; e < extent; ++e) {
        sum += element(e);
    }
    return sum;
}

// The sum of a floating-point slice (logical and char read as double), NaN left out
// when omitNaN; count is the number of elements added.
template <class T, class Element>
FloatingAccumulator<T> floatingSum(Element element, std::size_t extent, bool omitNaN, std::size_t& count) {
    FloatingAccumulator<T> sum{};
    count = 0;
    for (std::size_t e = 0; e < extent; ++e) {
        const T value = element(e);
        if (omitNaN && isNaNValue(value)) {
            continue;
        }
        sum += widened(value);
        ++count;
    }
    return sum;
}

template <class T>
oxArray* sumOf(const oxArray* a, const Reduction& plan, bool omitNaN) {
    using R = SumType<T>;
    matrix::ArrayPtr out = createArrayOf<R>(plan.dims);
    R* result = matrix::getTypedData<R>(out.get());
    forEachSlice<T>(a, plan, [&](std::size_t k, auto element) {
        if constexpr (isIntegerClass<T>) {
            result[k] = saturatedWide<T>(exactSum<T>(element, plan.extent));
        } else {
            std::size_t count = 0;
            result[k] = narrowed<R>(floatingSum<T>(element, plan.extent, omitNaN, count));
        }
    });
    return out.release();
}

template <class T>
oxArray* prodOf(const oxArray* a, const Reduction& plan) {
    using R = SumType<T>;
    matrix::ArrayPtr out = createArrayOf<R>(plan.dims);
    R* result = matrix::getTypedData<R>(out.get());
    forEachSlice<T>(a, plan, [&](std::size_t k, auto element) {
        if constexpr (isIntegerClass<T>) {
            // Exact while the product fits 64 bits; past the class's limits it saturates, so
            // its size only needs keeping beyond them: integer factors never shrink it but to 0.
            constexpr long double beyond = 0x1p80L;
            long double product = 1;
            for (std::size_t e = 0; e < plan.extent; ++e) {
                product = std::clamp(product * static_cast<long double>(element(e)), -beyond, beyond);
            }
            result[k] = saturateTo<T>(product);
        } else {
            FloatingAccumulator<T> product = widened(T(1));
            for (std::size_t e = 0; e < plan.extent; ++e) {
                product *= widened(element(e));
            }
            result[k] = narrowed<R>(product);
        }
    });
    return out.release();
}

template <class T>
oxArray* meanOf(const oxArray* a, const Reduction& plan, bool omitNaN) {
    using R = MeanType<T>;
    matrix::ArrayPtr out = createArrayOf<R>(plan.dims);
    R* result = matrix::getTypedData<R>(out.get());
    forEachSlice<T>(a, plan, [&](std::size_t k, auto element) {
        if constexpr (isIntegerClass<T>) {
            const long double sum = static_cast<long double>(exactSum<T>(element, plan.extent));
            result[k] = static_cast<double>(sum / static_cast<long double>(plan.extent));
        } else {
            std::size_t count = 0;
            const FloatingAccumulator<T> sum = floatingSum<T>(element, plan.extent, omitNaN, count);
            // Nothing to average is NaN: 0/0.
            result[k] = narrowed<R>(sum / static_cast<double>(count));
        }
    });
    return out.release();
}

// --- the core of each builtin: one operand, its options ---

oxArray* sumCore(const oxArray* a, const ReductionOptions& options) {
    requireNumbers("sum", a);
    const Reduction plan = planReduction(a, options, false);
    return visitElements(a, [&]<class T>(std::type_identity<T>) { return sumOf<T>(a, plan, options.omitNaN); });
}

oxArray* prodCore(const oxArray* a, const ReductionOptions& options) {
    requireNumbers("prod", a);
    const Reduction plan = planReduction(a, options, false);
    return visitElements(a, [&]<class T>(std::type_identity<T>) { return prodOf<T>(a, plan); });
}

oxArray* meanCore(const oxArray* a, const ReductionOptions& options) {
    requireNumbers("mean", a);
    const Reduction plan = planReduction(a, options, false);
    return visitElements(a, [&]<class T>(std::type_identity<T>) { return meanOf<T>(a, plan, options.omitNaN); });
}

// --- the variants: the forms of a call, each ending in the core ---
//
// core names the builtin's core function, Name the builtin in messages. sum and mean
// take 'all', 'omitnan' and 'includenan'; prod takes 'all'.

constexpr std::initializer_list<ReductionOption> ALL_OPTIONS = {ReductionOption::ALL, ReductionOption::OMIT_NAN,
                                                                ReductionOption::INCLUDE_NAN};
constexpr std::initializer_list<ReductionOption> NAN_OPTIONS = {ReductionOption::OMIT_NAN,
                                                                ReductionOption::INCLUDE_NAN};

// Compiled callers: each flag variant stands for its fixed option texts.
template <ReductionCore core>
oxArray* omittingNaN(const oxArray* a) {
    return core(a, {.omitNaN = true});
}

template <ReductionCore core>
oxArray* overAllOmittingNaN(const oxArray* a) {
    return core(a, {.all = true, .omitNaN = true});
}

template <ReductionCore core>
oxArray* alongOmittingNaN(const oxArray* a, double dim) {
    return core(a, {.dim = dimensionIndex(dim), .omitNaN = true});
}

// The interpreter: the option texts arrive as text (a char row or a string), and are read
// here.
template <ReductionCore core, const char* Name>
oxArray* withOption(const oxArray* a, std::u16string_view option) {
    ReductionOptions options;
    applyOption(options, option, Name, ALL_OPTIONS);
    return core(a, options);
}

// sum(x, 'all', 'omitnan') and sum(x, 2, 'omitnan'): one variant takes both, and reads its
// second argument itself (readDimensionOrOption). Two variants, one with a text second and
// one with a dimension, would not do: cleanup demotes a variant that takes any array where
// an earlier one takes a string; and a double dimension reaches the interpreter through a
// boxed copy, which cleanup drops when another parameter is a string, a type the engine
// does not pass.
template <ReductionCore core, const char* Name>
oxArray* withTwoMore(const oxArray* a, const oxArray* second, std::u16string_view option) {
    ReductionOptions options;
    const bool dimension = readDimensionOrOption(second, options, Name, ALL_OPTIONS);
    // A dimension and 'all' contradict each other.
    applyOption(options, option, Name, dimension ? NAN_OPTIONS : ALL_OPTIONS);
    return core(a, options);
}

constexpr VariantOptions THROWS{.mayThrowErrors = true};

// Every variant throws: a class it does not take, a bad dimension or an unknown option.
VariantOptions throwingWithFlags(detail::FlagSpecification flags) {
    return {.mayThrowErrors = true, .flags = std::move(flags)};
}

void append(std::vector<BuiltinVariant>& to, std::vector<BuiltinVariant> variants) {
    to.insert(to.end(), variants.begin(), variants.end());
}

// sum and mean: a dimension, 'all', and what to do with NaN.
template <ReductionCore core, const char* Name>
std::vector<BuiltinVariant> nanAwareVariants() {
    std::vector<BuiltinVariant> variants = makeVariants<&alongFirst<core>>(Name, THROWS);
    append(variants, makeVariants<&along<core>>(Name, THROWS));
    append(variants, makeVariants<&overAll<core>>(Name, throwingWithFlags({{1, "all"}})));
    append(variants, makeVariants<&omittingNaN<core>>(Name, throwingWithFlags({{1, "omitnan"}})));
    append(variants, makeVariants<&overAllOmittingNaN<core>>(Name, throwingWithFlags({{1, "all"}, {2, "omitnan"}})));
    append(variants, makeVariants<&alongOmittingNaN<core>>(Name, throwingWithFlags({{2, "omitnan"}})));
    append(variants, makeVariants<&withOption<core, Name>>(Name, THROWS));
    append(variants, makeVariants<&withTwoMore<core, Name>>(Name, THROWS));
    return variants;
}

constexpr char SUM[] = "sum";
constexpr char PROD[] = "prod";
constexpr char MEAN[] = "mean";

const BuiltinVariantLists& sumLists() {
    static const BuiltinVariantLists lists(nanAwareVariants<&sumCore, SUM>());
    return lists;
}

const BuiltinVariantLists& meanLists() {
    static const BuiltinVariantLists lists(nanAwareVariants<&meanCore, MEAN>());
    return lists;
}

const BuiltinVariantLists& prodLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&alongFirst<&prodCore>>(PROD, THROWS),
        makeVariants<&along<&prodCore>>(PROD, THROWS),
        makeVariants<&overAll<&prodCore>>(PROD, throwingWithFlags({{1, "all"}})),
        makeVariants<&withAllOption<&prodCore, PROD>>(PROD, THROWS),
    };
    return lists;
}

} // namespace

const BuiltinFcn& sumBuiltin() {
    static const RegisteredBuiltin builtin("sum", LIBRARY,
                                           "sum of elements: sum(x), sum(x, dim), sum(x, 'all'), 'omitnan'", sumLists(),
                                           defaultImplementation<&reportUnmatchedCall<&sumBuiltin>>("sum"));
    return builtin;
}

const BuiltinFcn& prodBuiltin() {
    static const RegisteredBuiltin builtin("prod", LIBRARY,
                                           "product of elements: prod(x), prod(x, dim), prod(x, 'all')", prodLists(),
                                           defaultImplementation<&reportUnmatchedCall<&prodBuiltin>>("prod"));
    return builtin;
}

const BuiltinFcn& meanBuiltin() {
    static const RegisteredBuiltin builtin(
        "mean", LIBRARY, "average of elements: mean(x), mean(x, dim), mean(x, 'all'), 'omitnan'", meanLists(),
        defaultImplementation<&reportUnmatchedCall<&meanBuiltin>>("mean"));
    return builtin;
}

} // namespace samplelib
