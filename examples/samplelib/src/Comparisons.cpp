// eq, ne, lt, le, gt and ge: the comparison operators == ~= < <= > >=, element by element
// with broadcasting, over every class that holds numbers; the result is logical.
//
// Two operands of one class (double, single, an integer class, complex, logical) take
// the element-wise variants, which the framework runs over arrays and broadcasts. Any
// other pair (a char array, an integer array against a double, empty operands) takes the
// host-array variant, which compares the values exactly whatever their classes: 'abc' ==
// 'abd' is [true true false], int8(5) < 5.5 is true. Complex values are equal when both
// parts are; the ordering comparisons look at the real parts only, as the language does.
#include "Broadcasting.hpp"
#include "ElementTypes.hpp"
#include "LogicalOfPairs.hpp"
#include "Elements.hpp"
#include "NoMatchReport.hpp"
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <complex>
#include <vector>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

// The ordering comparisons of complex values compare their real parts.
template <class T>
auto ordered(T x) {
    if constexpr (isComplexType<T>) {
        return x.real();
    } else {
        return x;
    }
}

// Each comparison once, over a type that the element-wise variants instantiate and over
// the Numbers the host-array variant reads.
struct Eq {
    static constexpr const char* NAME = "eq";
    template <class T>
    static bool of(T a, T b) {
        return a == b;
    }
    static bool of(Number a, Number b) { return a.re == b.re && a.im == b.im; }
};
struct Ne {
    static constexpr const char* NAME = "ne";
    template <class T>
    static bool of(T a, T b) {
        return a != b;
    }
    static bool of(Number a, Number b) { return !Eq::of(a, b); }
};
struct Lt {
    static constexpr const char* NAME = "lt";
    template <class T>
    static bool of(T a, T b) {
        return ordered(a) < ordered(b);
    }
    static bool of(Number a, Number b) { return a.re < b.re; }
};
struct Le {
    static constexpr const char* NAME = "le";
    template <class T>
    static bool of(T a, T b) {
        return ordered(a) <= ordered(b);
    }
    static bool of(Number a, Number b) { return a.re <= b.re; }
};
struct Gt {
    static constexpr const char* NAME = "gt";
    template <class T>
    static bool of(T a, T b) {
        return ordered(a) > ordered(b);
    }
    static bool of(Number a, Number b) { return a.re > b.re; }
};
struct Ge {
    static constexpr const char* NAME = "ge";
    template <class T>
    static bool of(T a, T b) {
        return ordered(a) >= ordered(b);
    }
    static bool of(Number a, Number b) { return a.re >= b.re; }
};

// The developer function of the element-wise variants.
template <class Op, class T>
bool compare(T a, T b) {
    return Op::template of<T>(a, b);
}

// The element-wise variants for each class, then the host-array variant for the rest.
template <class Op>
std::vector<Velloc::builtin::BuiltinVariant> comparisonVariants() {
    std::vector<Velloc::builtin::BuiltinVariant> variants = variantsFor(
        Types<double, float, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
              std::int64_t, std::uint64_t, std::complex<double>, std::complex<float>, bool>{},
        [](auto* t) { return makeVariants<&compare<Op, Of<decltype(t)>>>(Op::NAME, {.isElementWise = true}); });
    for (Velloc::builtin::BuiltinVariant& variant :
         makeVariants<&logicalOfPairs<Op>>(Op::NAME, {.mayThrowErrors = true})) {
        variants.push_back(std::move(variant));
    }
    return variants;
}

template <class Op>
const BuiltinVariantLists& comparisonLists() {
    static const BuiltinVariantLists lists(comparisonVariants<Op>());
    return lists;
}

template <class Op, const BuiltinFcn& (*Self)()>
const BuiltinFcn& comparison(const char* summary) {
    static const RegisteredBuiltin builtin(Op::NAME, LIBRARY, summary, comparisonLists<Op>(),
                                           defaultImplementation<&reportNoMatch<Self>>(Op::NAME));
    return builtin;
}

} // namespace

const BuiltinFcn& eqBuiltin() { return comparison<Eq, &eqBuiltin>("a == b: equal, element by element"); }
const BuiltinFcn& neBuiltin() { return comparison<Ne, &neBuiltin>("a ~= b: not equal, element by element"); }
const BuiltinFcn& ltBuiltin() { return comparison<Lt, &ltBuiltin>("a < b: less than, element by element"); }
const BuiltinFcn& leBuiltin() { return comparison<Le, &leBuiltin>("a <= b: less than or equal, element by element"); }
const BuiltinFcn& gtBuiltin() { return comparison<Gt, &gtBuiltin>("a > b: greater than, element by element"); }
const BuiltinFcn& geBuiltin() {
    return comparison<Ge, &geBuiltin>("a >= b: greater than or equal, element by element");
}

} // namespace samplelib
