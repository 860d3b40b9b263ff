// Which classes hold numeric data, and the C++ element type of each.
#pragma once

#include <matrix/oxArray.hpp>

#include <complex>
#include <cstddef>
#include <type_traits>

namespace matrix::detail {

// Numeric, logical and char classes: their data is a contiguous block of elements.
constexpr bool holdsNumericData(oxClassID classId) {
    return classId == oxLOGICAL_CLASS || classId == oxCHAR_CLASS ||
           (classId >= oxDOUBLE_CLASS && classId <= oxUINT64_CLASS);
}

constexpr bool mayBeComplex(oxClassID classId) {
    return classId >= oxDOUBLE_CLASS && classId <= oxUINT64_CLASS;
}

constexpr std::size_t realElementSize(oxClassID classId) {
    switch (classId) {
    case oxLOGICAL_CLASS:
    case oxINT8_CLASS:
    case oxUINT8_CLASS: return 1;
    case oxCHAR_CLASS:
    case oxINT16_CLASS:
    case oxUINT16_CLASS: return 2;
    case oxSINGLE_CLASS:
    case oxINT32_CLASS:
    case oxUINT32_CLASS: return 4;
    case oxDOUBLE_CLASS:
    case oxINT64_CLASS:
    case oxUINT64_CLASS: return 8;
    default: return 0;
    }
}

template <oxClassID Id, oxComplexity Complexity = oxREAL>
struct ClassOf {
    static constexpr oxClassID classId = Id;
    static constexpr oxComplexity complexity = Complexity;
};

template <class T> struct ScalarClass;
template <class T> struct ScalarClass<std::complex<T>> : ClassOf<ScalarClass<T>::classId, oxCOMPLEX> {};
template <> struct ScalarClass<bool> : ClassOf<oxLOGICAL_CLASS> {};
template <> struct ScalarClass<char16_t> : ClassOf<oxCHAR_CLASS> {};
template <> struct ScalarClass<double> : ClassOf<oxDOUBLE_CLASS> {};
template <> struct ScalarClass<float> : ClassOf<oxSINGLE_CLASS> {};

// Integers map by width and signedness, so long and long long both reach int64.
constexpr oxClassID integerClass(std::size_t bytes, bool isSigned) {
    switch (bytes) {
    case 1: return isSigned ? oxINT8_CLASS : oxUINT8_CLASS;
    case 2: return isSigned ? oxINT16_CLASS : oxUINT16_CLASS;
    case 4: return isSigned ? oxINT32_CLASS : oxUINT32_CLASS;
    default: return isSigned ? oxINT64_CLASS : oxUINT64_CLASS;
    }
}
template <class T>
    requires std::is_integral_v<T>
struct ScalarClass<T> : ClassOf<integerClass(sizeof(T), std::is_signed_v<T>)> {};

} // namespace matrix::detail
