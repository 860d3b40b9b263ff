// plus and abs: element-wise scalar functions for the numeric classes, and a host-array
// variant that mixes classes the way the language does.
#include "Broadcasting.hpp"
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>

#include <foundation/core/except/Exception.hpp>
#include <matrix/ResultArrays.hpp>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <span>
#include <stdexcept>
#include <vector>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

namespace errors {
struct plusUnsupported {
    static constexpr std::string_view component = "samplelib:plus";
    static constexpr std::string_view key = "unsupported";
    static constexpr std::string_view text = "plus is not defined for {0} and {1}.";
};
} // namespace errors

using foundation::core::except::Exception;

double plusDouble(double a, double b) { return a + b; }
float plusSingle(float a, float b) { return a + b; }
// Integer arithmetic saturates at the class's limits.
std::int32_t plusInt32(std::int32_t a, std::int32_t b) {
    const std::int64_t sum = std::int64_t{a} + std::int64_t{b};
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(sum, std::numeric_limits<std::int32_t>::min(),
                                                               std::numeric_limits<std::int32_t>::max()));
}

// The other integer classes saturate the same way; long double holds every 64-bit sum.
template <class T>
T plusSaturating(T a, T b) {
    const long double sum = static_cast<long double>(a) + static_cast<long double>(b);
    return sum <= std::numeric_limits<T>::lowest() ? std::numeric_limits<T>::lowest()
           : sum >= std::numeric_limits<T>::max() ? std::numeric_limits<T>::max()
                                                   : static_cast<T>(sum);
}

template <class T>
std::complex<T> plusComplex(std::complex<T> a, std::complex<T> b) {
    return a + b;
}

bool isPlainNumeric(const oxArray* a) {
    const oxClassID id = matrix::getClassID(a);
    return (id == oxDOUBLE_CLASS || id == oxLOGICAL_CLASS || id == oxCHAR_CLASS) && !matrix::isComplex(a) &&
           !matrix::isSparse(a);
}

double elementAsDouble(const oxArray* a, std::size_t i) {
    switch (matrix::getClassID(a)) {
    case oxLOGICAL_CLASS: return matrix::getTypedData<bool>(a)[i] ? 1.0 : 0.0;
    case oxCHAR_CLASS: return matrix::getTypedData<char16_t>(a)[i];
    default: return matrix::getTypedData<double>(a)[i];
    }
}

std::string classNameOf(const oxArray* a) {
    switch (matrix::getClassID(a)) {
    case oxDOUBLE_CLASS: return "double";
    case oxLOGICAL_CLASS: return "logical";
    case oxCHAR_CLASS: return "char";
    case oxCELL_CLASS: return "cell";
    case oxSTRUCT_CLASS: return "struct";
    default: return "class " + std::to_string(matrix::getClassID(a));
    }
}

// The index into an operand of extents `from` of element i of the result of extents
// `to` that the operand broadcasts to: singleton dimensions repeat their one element.
std::size_t broadcastIndex(std::size_t i, std::span<const std::size_t> to, matrix::Dims from) {
    std::size_t index = 0;
    std::size_t stride = 1;
    for (std::size_t d = 0; d < to.size(); ++d) {
        const std::size_t extent = d < from.size() ? from[d] : 1;
        const std::size_t subscript = i % to[d];
        i /= to[d];
        if (extent != 1) {
            index += subscript * stride;
        }
        stride *= extent;
    }
    return index;
}

// Arrays the element-wise variants refuse: sizes that do not broadcast get the size
// error and empty operands an empty result, in every class; double, logical and char
// arrays, also mixed, add as doubles.
oxArray* plusArrays(const oxArray* a, const oxArray* b) {
    rejectSizeMismatch(a, b);
    if (matrix::ArrayPtr empty = emptyResult(plusBuiltin(), a, b)) {
        return empty.release();
    }
    if (!isPlainNumeric(a) || !isPlainNumeric(b)) {
        throw Exception<errors::plusUnsupported>({classNameOf(a), classNameOf(b)});
    }
    const std::vector<std::size_t> dims = *broadcastDims(a, b);
    matrix::ArrayPtr out(matrix::createUninitializedNumericArray(dims, oxDOUBLE_CLASS));
    double* sum = matrix::getTypedData<double>(out.get());
    for (std::size_t i = 0, n = matrix::getNumberOfElements(out.get()); i < n; ++i) {
        sum[i] = elementAsDouble(a, broadcastIndex(i, dims, matrix::getDimensions(a))) +
                 elementAsDouble(b, broadcastIndex(i, dims, matrix::getDimensions(b)));
    }
    return out.release();
}

// Everything no variant takes, such as plus(1) or plus of a cell: say why.
void plusDefault(int nlhs, oxArray**, int nrhs, oxArray** prhs, const Velloc::builtin::BuiltinVariant&) {
    throwNoMatchingVariant(plusBuiltin(), nlhs, nrhs, prhs);
}

double absDouble(double x) { return std::abs(x); }
float absSingle(float x) { return std::abs(x); }
std::int32_t absInt32(std::int32_t x) {
    return x == std::numeric_limits<std::int32_t>::min() ? std::numeric_limits<std::int32_t>::max() : std::abs(x);
}
double absComplex(std::complex<double> z) { return std::abs(z); }

const BuiltinVariantLists& plusLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&plusDouble>("plus", {.isElementWise = true}),
        makeVariants<&plusSingle>("plus", {.isElementWise = true}),
        makeVariants<&plusInt32>("plus", {.isElementWise = true}),
        makeVariants<&plusSaturating<std::int8_t>>("plus", {.isElementWise = true}),
        makeVariants<&plusSaturating<std::uint8_t>>("plus", {.isElementWise = true}),
        makeVariants<&plusSaturating<std::int16_t>>("plus", {.isElementWise = true}),
        makeVariants<&plusSaturating<std::uint16_t>>("plus", {.isElementWise = true}),
        makeVariants<&plusSaturating<std::uint32_t>>("plus", {.isElementWise = true}),
        makeVariants<&plusSaturating<std::int64_t>>("plus", {.isElementWise = true}),
        makeVariants<&plusSaturating<std::uint64_t>>("plus", {.isElementWise = true}),
        makeVariants<&plusComplex<double>>("plus", {.isElementWise = true}),
        makeVariants<&plusComplex<float>>("plus", {.isElementWise = true}),
        makeVariants<&plusArrays>("plus", {.mayThrowErrors = true}),
    };
    return lists;
}

const BuiltinVariantLists& absLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&absDouble>("abs", {.isElementWise = true}),
        makeVariants<&absSingle>("abs", {.isElementWise = true}),
        makeVariants<&absInt32>("abs", {.isElementWise = true}),
        makeVariants<&absComplex>("abs", {.isElementWise = true}),
    };
    return lists;
}

} // namespace

const BuiltinFcn& plusBuiltin() {
    static const RegisteredBuiltin builtin("plus", LIBRARY, "adds two arrays element by element", plusLists(),
                                           defaultImplementation<&plusDefault>("plus"));
    return builtin;
}

const BuiltinFcn& absBuiltin() {
    static const RegisteredBuiltin builtin("abs", LIBRARY, "absolute value, element by element", absLists(),
                                           noDefaultImplementation("abs"));
    return builtin;
}

} // namespace samplelib
