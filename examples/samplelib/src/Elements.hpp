// How the sample's comparisons, logical operators, transposes and reductions reach the
// elements of host arrays of every class that holds numbers (numeric, logical and char):
// the C++ type of an array's elements, a reader of any element as a number when two
// operands of different classes meet, the walk over the elements of two operands that
// broadcast, and the conversion of a value to an integer class, which saturates.
#pragma once

#include <matrix/oxArray.hpp>

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace samplelib {

namespace errors {
struct unsupportedClass {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "unsupportedClass";
    static constexpr std::string_view text = "{0} does not take arguments of class {1}.";
};
} // namespace errors

// The class of a, as the language names it: "double", "int8", "logical", "char", "cell".
std::string classNameOf(const oxArray* a);

// Whether a holds numbers the builtins here read: a full (not sparse) numeric, logical or
// char array.
bool holdsNumbers(const oxArray* a);

// Throws samplelib:unsupportedClass, naming builtin and a's class, unless a holds numbers.
void requireNumbers(std::string_view builtin, const oxArray* a);

template <class T>
struct IsComplex : std::false_type {};
template <class T>
struct IsComplex<std::complex<T>> : std::true_type {};
template <class T>
inline constexpr bool isComplexType = IsComplex<T>::value;

// The real type of T: T itself, or the type of a complex T's parts.
template <class T>
struct RealOf {
    using type = T;
};
template <class T>
struct RealOf<std::complex<T>> {
    using type = T;
};
template <class T>
using RealType = typename RealOf<T>::type;

// The class of elements of type T (a complex type has its parts' class).
template <class T>
constexpr oxClassID classOf() {
    using R = RealType<T>;
    if constexpr (std::is_same_v<R, double>)
        return oxDOUBLE_CLASS;
    else if constexpr (std::is_same_v<R, float>)
        return oxSINGLE_CLASS;
    else if constexpr (std::is_same_v<R, bool>)
        return oxLOGICAL_CLASS;
    else if constexpr (std::is_same_v<R, char16_t>)
        return oxCHAR_CLASS;
    else if constexpr (std::is_same_v<R, std::int8_t>)
        return oxINT8_CLASS;
    else if constexpr (std::is_same_v<R, std::uint8_t>)
        return oxUINT8_CLASS;
    else if constexpr (std::is_same_v<R, std::int16_t>)
        return oxINT16_CLASS;
    else if constexpr (std::is_same_v<R, std::uint16_t>)
        return oxUINT16_CLASS;
    else if constexpr (std::is_same_v<R, std::int32_t>)
        return oxINT32_CLASS;
    else if constexpr (std::is_same_v<R, std::uint32_t>)
        return oxUINT32_CLASS;
    else if constexpr (std::is_same_v<R, std::int64_t>)
        return oxINT64_CLASS;
    else
        return oxUINT64_CLASS;
}

// Calls f(std::type_identity<T>{}) with the C++ type T of a's elements: double, float, a
// fixed-width integer, bool (logical), char16_t (char), or std::complex<double> or
// std::complex<float> for complex arrays. a must hold numbers.
template <class F>
decltype(auto) visitElements(const oxArray* a, F&& f) {
    const bool complex = matrix::isComplex(a);
    switch (matrix::getClassID(a)) {
    case oxSINGLE_CLASS: return complex ? f(std::type_identity<std::complex<float>>{}) : f(std::type_identity<float>{});
    case oxLOGICAL_CLASS: return f(std::type_identity<bool>{});
    case oxCHAR_CLASS: return f(std::type_identity<char16_t>{});
    case oxINT8_CLASS: return f(std::type_identity<std::int8_t>{});
    case oxUINT8_CLASS: return f(std::type_identity<std::uint8_t>{});
    case oxINT16_CLASS: return f(std::type_identity<std::int16_t>{});
    case oxUINT16_CLASS: return f(std::type_identity<std::uint16_t>{});
    case oxINT32_CLASS: return f(std::type_identity<std::int32_t>{});
    case oxUINT32_CLASS: return f(std::type_identity<std::uint32_t>{});
    case oxINT64_CLASS: return f(std::type_identity<std::int64_t>{});
    case oxUINT64_CLASS: return f(std::type_identity<std::uint64_t>{});
    default: return complex ? f(std::type_identity<std::complex<double>>{}) : f(std::type_identity<double>{});
    }
}

// A new uninitialised numeric, logical or char array; the caller owns its reference.
matrix::ArrayPtr createArray(std::span<const std::size_t> dims, oxClassID classId, bool complex);

template <class T>
matrix::ArrayPtr createArrayOf(std::span<const std::size_t> dims) {
    return createArray(dims, classOf<T>(), isComplexType<T>);
}

// x as integer class T: rounded to the nearest integer, halves away from zero, and
// saturated at T's limits; NaN gives 0. long double holds every 64-bit integer exactly.
template <class T>
T saturateTo(long double x) {
    static_assert(std::is_integral_v<T>);
    if (std::isnan(x)) {
        return 0;
    }
    x = std::round(x);
    constexpr long double lowest = static_cast<long double>(std::numeric_limits<T>::lowest());
    constexpr long double highest = static_cast<long double>(std::numeric_limits<T>::max());
    return x <= lowest ? std::numeric_limits<T>::lowest() : x >= highest ? std::numeric_limits<T>::max() : T(x);
}

// An element of any class as the language computes with it: its real and imaginary parts
// (0 for real classes; logical true is 1, a char its code). long double holds every value
// of every class exactly, so operands of different classes compare exactly.
struct Number {
    long double re;
    long double im;
    bool isNaN() const { return std::isnan(re) || std::isnan(im); }
    bool isZero() const { return re == 0 && im == 0; }
};

class NumberReader {
public:
    // a must hold numbers and outlive the reader.
    explicit NumberReader(const oxArray* a);
    Number operator[](std::size_t i) const { return read_(data_, i); }

private:
    using Read = Number (*)(const void*, std::size_t);
    const void* data_;
    Read read_;
};

std::size_t numberOfElements(std::span<const std::size_t> dims);

// Calls f(k, i, j) for each element k of an array of extents out, in column-major order,
// with the indices i into an operand of extents a and j into one of extents b that
// broadcast to it: a singleton dimension of an operand repeats its one element.
template <class F>
void forEachBroadcast(std::span<const std::size_t> out, matrix::Dims a, matrix::Dims b, F f) {
    const std::size_t count = numberOfElements(out);
    if (count == 0) {
        return;
    }
    const std::size_t rank = out.size();
    // How far each operand moves when the subscript of a dimension grows by one: 0 where
    // it is a singleton.
    std::vector<std::size_t> stepA(rank), stepB(rank), subscript(rank, 0);
    std::size_t strideA = 1;
    std::size_t strideB = 1;
    for (std::size_t d = 0; d < rank; ++d) {
        const std::size_t extentA = d < a.size() ? a[d] : 1;
        const std::size_t extentB = d < b.size() ? b[d] : 1;
        stepA[d] = extentA == 1 ? 0 : strideA;
        stepB[d] = extentB == 1 ? 0 : strideB;
        strideA *= extentA;
        strideB *= extentB;
    }
    std::size_t i = 0;
    std::size_t j = 0;
    for (std::size_t k = 0; k < count; ++k) {
        f(k, i, j);
        for (std::size_t d = 0; d < rank; ++d) {
            i += stepA[d];
            j += stepB[d];
            if (++subscript[d] < out[d]) {
                break;
            }
            i -= stepA[d] * out[d];
            j -= stepB[d] * out[d];
            subscript[d] = 0;
        }
    }
}

} // namespace samplelib
