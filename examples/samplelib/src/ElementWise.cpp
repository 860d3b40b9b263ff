// minus, times, rdivide, power, uminus, uplus, sqrt and hypot: element-wise builtins over every numeric
// class, written once as templates over the element type. Integer classes saturate at
// their limits and round to the nearest integer, half away from zero; sqrt warns on a
// negative real input and gives NaN.
#include "ElementTypes.hpp"
#include "NoMatchReport.hpp"
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

// An exact or nearly exact result, as the integer class holds it. long double keeps
// every 64-bit integer exactly, so sums and differences saturate correctly.
template <class T>
T saturate(long double x) {
    if (std::isnan(x)) {
        return 0;
    }
    constexpr long double lowest = std::numeric_limits<T>::lowest();
    constexpr long double highest = std::numeric_limits<T>::max();
    x = std::round(x);
    return x <= lowest ? std::numeric_limits<T>::lowest() : x >= highest ? std::numeric_limits<T>::max() : T(x);
}

template <class T>
T minusOf(T a, T b) {
    if constexpr (std::is_integral_v<T>) {
        return saturate<T>(static_cast<long double>(a) - static_cast<long double>(b));
    } else {
        return a - b;
    }
}

template <class T>
T timesOf(T a, T b) {
    if constexpr (std::is_integral_v<T>) {
        return saturate<T>(static_cast<long double>(a) * static_cast<long double>(b));
    } else {
        return a * b;
    }
}

// Integer division by zero saturates with the sign of the dividend; 0/0 gives 0.
template <class T>
T rdivideOf(T a, T b) {
    if constexpr (std::is_integral_v<T>) {
        return saturate<T>(static_cast<long double>(a) / static_cast<long double>(b));
    } else {
        return a / b;
    }
}

template <class T>
T powerOf(T a, T b) {
    if constexpr (std::is_integral_v<T>) {
        return saturate<T>(std::pow(static_cast<long double>(a), static_cast<long double>(b)));
    } else {
        return std::pow(a, b);
    }
}

template <class T>
T uminusOf(T a) {
    if constexpr (std::is_integral_v<T>) {
        return saturate<T>(-static_cast<long double>(a));
    } else {
        return -a;
    }
}

template <class T>
T uplusOf(T a) {
    return a;
}

template <class T>
T sqrtReal(CallContext& context, T x) {
    if (x < 0) {
        context.warning("Square root of a negative number.");
        return std::numeric_limits<T>::quiet_NaN();
    }
    return std::sqrt(x);
}

template <class T>
T sqrtComplex(T z) {
    return std::sqrt(z);
}

template <class T>
T hypotOf(T a, T b) {
    return std::hypot(a, b);
}

constexpr VariantOptions ELEMENT_WISE{.isElementWise = true};

const BuiltinVariantLists& minusLists() {
    static const BuiltinVariantLists lists(variantsFor(
        ArithmeticTypes{}, [](auto* t) { return makeVariants<&minusOf<Of<decltype(t)>>>("minus", ELEMENT_WISE); }));
    return lists;
}

const BuiltinVariantLists& timesLists() {
    static const BuiltinVariantLists lists(variantsFor(
        ArithmeticTypes{}, [](auto* t) { return makeVariants<&timesOf<Of<decltype(t)>>>("times", ELEMENT_WISE); }));
    return lists;
}

const BuiltinVariantLists& rdivideLists() {
    static const BuiltinVariantLists lists(variantsFor(ArithmeticTypes{}, [](auto* t) {
        return makeVariants<&rdivideOf<Of<decltype(t)>>>("rdivide", ELEMENT_WISE);
    }));
    return lists;
}

const BuiltinVariantLists& powerLists() {
    static const BuiltinVariantLists lists(variantsFor(
        ArithmeticTypes{}, [](auto* t) { return makeVariants<&powerOf<Of<decltype(t)>>>("power", ELEMENT_WISE); }));
    return lists;
}

const BuiltinVariantLists& uminusLists() {
    static const BuiltinVariantLists lists(variantsFor(
        ArithmeticTypes{}, [](auto* t) { return makeVariants<&uminusOf<Of<decltype(t)>>>("uminus", ELEMENT_WISE); }));
    return lists;
}

const BuiltinVariantLists& uplusLists() {
    static const BuiltinVariantLists lists(variantsFor(
        ArithmeticTypes{}, [](auto* t) { return makeVariants<&uplusOf<Of<decltype(t)>>>("uplus", ELEMENT_WISE); }));
    return lists;
}

const BuiltinVariantLists& sqrtLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&sqrtReal<double>>("sqrt", ELEMENT_WISE),
        makeVariants<&sqrtReal<float>>("sqrt", ELEMENT_WISE),
        makeVariants<&sqrtComplex<std::complex<double>>>("sqrt", ELEMENT_WISE),
        makeVariants<&sqrtComplex<std::complex<float>>>("sqrt", ELEMENT_WISE),
    };
    return lists;
}

const BuiltinVariantLists& hypotLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&hypotOf<double>>("hypot", ELEMENT_WISE),
        makeVariants<&hypotOf<float>>("hypot", ELEMENT_WISE),
    };
    return lists;
}

// A builtin of this file over its lists; calls that no variant takes are reported to the
// language user.
template <const BuiltinFcn& (*Self)(), const BuiltinVariantLists& (*Lists)()>
RegisteredBuiltin elementWiseBuiltin(const char* name, const char* summary) {
    return RegisteredBuiltin(name, LIBRARY, summary, Lists(), defaultImplementation<&reportNoMatch<Self>>(name));
}

} // namespace

const BuiltinFcn& minusBuiltin() {
    static const RegisteredBuiltin builtin =
        elementWiseBuiltin<&minusBuiltin, &minusLists>("minus", "subtracts two arrays element by element");
    return builtin;
}

const BuiltinFcn& timesBuiltin() {
    static const RegisteredBuiltin builtin =
        elementWiseBuiltin<&timesBuiltin, &timesLists>("times", "multiplies two arrays element by element");
    return builtin;
}

const BuiltinFcn& rdivideBuiltin() {
    static const RegisteredBuiltin builtin =
        elementWiseBuiltin<&rdivideBuiltin, &rdivideLists>("rdivide", "divides two arrays element by element");
    return builtin;
}

const BuiltinFcn& powerBuiltin() {
    static const RegisteredBuiltin builtin =
        elementWiseBuiltin<&powerBuiltin, &powerLists>("power", "raises to a power element by element");
    return builtin;
}

const BuiltinFcn& uminusBuiltin() {
    static const RegisteredBuiltin builtin =
        elementWiseBuiltin<&uminusBuiltin, &uminusLists>("uminus", "negates an array element by element");
    return builtin;
}

const BuiltinFcn& uplusBuiltin() {
    static const RegisteredBuiltin builtin =
        elementWiseBuiltin<&uplusBuiltin, &uplusLists>("uplus", "an array unchanged, as unary plus gives it");
    return builtin;
}

const BuiltinFcn& sqrtBuiltin() {
    static const RegisteredBuiltin builtin =
        elementWiseBuiltin<&sqrtBuiltin, &sqrtLists>("sqrt", "square root, a warning and NaN for negative reals");
    return builtin;
}

const BuiltinFcn& hypotBuiltin() {
    static const RegisteredBuiltin builtin =
        elementWiseBuiltin<&hypotBuiltin, &hypotLists>("hypot", "sqrt(a^2 + b^2) without overflow, element by element");
    return builtin;
}

} // namespace samplelib
