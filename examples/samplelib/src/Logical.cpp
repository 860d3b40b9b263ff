// and, or and not: the operators & | and ~, element by element with broadcasting, over
// every class that holds numbers; the result is logical. A value is true when it is not
// zero (a complex one when either part is not); NaN has no truth value and is the error
// samplelib:nanToLogical, as in the language.
//
// As for the comparisons, two operands of one class take element-wise variants (those of
// the floating-point classes may throw, for NaN); other pairs, char arrays and empty
// operands take a host-array variant.
#include "Broadcasting.hpp"
#include "ElementTypes.hpp"
#include "LogicalOfPairs.hpp"
#include "Elements.hpp"
#include "NoMatchReport.hpp"
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <foundation/core/except/Exception.hpp>

#include <complex>
#include <vector>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinVariant;

namespace errors {
struct nanToLogical {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "nanToLogical";
    static constexpr std::string_view text = "NaN values cannot be converted to logicals.";
};
} // namespace errors

[[noreturn]] void throwNaN() { throw foundation::core::except::Exception<errors::nanToLogical>({}); }

template <class T>
bool truthOf(T x) {
    if constexpr (isComplexType<T>) {
        if (std::isnan(x.real()) || std::isnan(x.imag())) throwNaN();
    } else if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(x)) throwNaN();
    }
    return x != T{};
}

bool truthOf(Number x) {
    if (x.isNaN()) throwNaN();
    return !x.isZero();
}

// Both operands are read, so that a NaN is an error whatever the other one is.
struct And {
    static constexpr const char* NAME = "and";
    template <class T>
    static bool of(T a, T b) {
        const bool x = truthOf(a);
        const bool y = truthOf(b);
        return x && y;
    }
};
struct Or {
    static constexpr const char* NAME = "or";
    template <class T>
    static bool of(T a, T b) {
        const bool x = truthOf(a);
        const bool y = truthOf(b);
        return x || y;
    }
};

template <class Op, class T>
bool logicalOf(T a, T b) {
    return Op::of(a, b);
}

template <class T>
bool notOf(T x) {
    return !truthOf(x);
}

oxArray* notArray(const oxArray* a) {
    requireNumbers("not", a);
    const matrix::Dims dims = matrix::getDimensions(a);
    matrix::ArrayPtr out = createArrayOf<bool>(dims);
    bool* result = matrix::getTypedData<bool>(out.get());
    const NumberReader x(a);
    for (std::size_t i = 0, n = matrix::getNumberOfElements(a); i < n; ++i) {
        result[i] = !truthOf(x[i]);
    }
    return out.release();
}

constexpr VariantOptions ELEMENT_WISE{.isElementWise = true};
// The floating-point classes have NaN, which is an error.
constexpr VariantOptions ELEMENT_WISE_THROWING{.mayThrowErrors = true, .isElementWise = true};

void append(std::vector<BuiltinVariant>& to, std::vector<BuiltinVariant> variants) {
    to.insert(to.end(), variants.begin(), variants.end());
}

template <class Op>
std::vector<BuiltinVariant> binaryVariants() {
    std::vector<BuiltinVariant> variants = variantsFor(
        Types<bool>{}, [](auto* t) { return makeVariants<&logicalOf<Op, Of<decltype(t)>>>(Op::NAME, ELEMENT_WISE); });
    append(variants, variantsFor(IntegerTypes{}, [](auto* t) {
               return makeVariants<&logicalOf<Op, Of<decltype(t)>>>(Op::NAME, ELEMENT_WISE);
           }));
    append(variants, variantsFor(FloatingTypes{}, [](auto* t) {
               return makeVariants<&logicalOf<Op, Of<decltype(t)>>>(Op::NAME, ELEMENT_WISE_THROWING);
           }));
    append(variants, makeVariants<&logicalOfPairs<Op>>(Op::NAME, {.mayThrowErrors = true}));
    return variants;
}

std::vector<BuiltinVariant> notVariants() {
    std::vector<BuiltinVariant> variants =
        variantsFor(Types<bool>{}, [](auto* t) { return makeVariants<&notOf<Of<decltype(t)>>>("not", ELEMENT_WISE); });
    append(variants, variantsFor(IntegerTypes{},
                                 [](auto* t) { return makeVariants<&notOf<Of<decltype(t)>>>("not", ELEMENT_WISE); }));
    append(variants, variantsFor(FloatingTypes{}, [](auto* t) {
               return makeVariants<&notOf<Of<decltype(t)>>>("not", ELEMENT_WISE_THROWING);
           }));
    append(variants, makeVariants<&notArray>("not", {.mayThrowErrors = true}));
    return variants;
}

const BuiltinVariantLists& andLists() {
    static const BuiltinVariantLists lists(binaryVariants<And>());
    return lists;
}

const BuiltinVariantLists& orLists() {
    static const BuiltinVariantLists lists(binaryVariants<Or>());
    return lists;
}

const BuiltinVariantLists& notLists() {
    static const BuiltinVariantLists lists(notVariants());
    return lists;
}

} // namespace

const BuiltinFcn& andBuiltin() {
    static const RegisteredBuiltin builtin("and", LIBRARY, "a & b: logical and, element by element", andLists(),
                                           defaultImplementation<&reportNoMatch<&andBuiltin>>("and"));
    return builtin;
}

const BuiltinFcn& orBuiltin() {
    static const RegisteredBuiltin builtin("or", LIBRARY, "a | b: logical or, element by element", orLists(),
                                           defaultImplementation<&reportNoMatch<&orBuiltin>>("or"));
    return builtin;
}

const BuiltinFcn& notBuiltin() {
    static const RegisteredBuiltin builtin("not", LIBRARY, "~a: logical not, element by element", notLists(),
                                           defaultImplementation<&reportNoMatch<&notBuiltin>>("not"));
    return builtin;
}

} // namespace samplelib
