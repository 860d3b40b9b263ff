// reciprocal warns and checkedSqrt raises an identified error: how a builtin reports
// trouble to the language.
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <foundation/core/except/Exception.hpp>

#include <cmath>
#include <limits>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

namespace errors {
struct negativeSqrt {
    static constexpr std::string_view component = "samplelib:checkedSqrt";
    static constexpr std::string_view key = "negative";
    static constexpr std::string_view text = "Cannot take the real square root of {0}.";
};
} // namespace errors

double reciprocal(CallContext& context, double x) {
    if (x == 0) {
        context.warning("Divide by zero.");
    }
    return 1.0 / x;
}

double checkedSqrt(double x) {
    if (x < 0) {
        throw foundation::core::except::Exception<errors::negativeSqrt>({std::to_string(x)});
    }
    return std::sqrt(x);
}

const BuiltinVariantLists& reciprocalLists() {
    static const BuiltinVariantLists lists{makeVariants<&reciprocal>("reciprocal", {.isElementWise = true})};
    return lists;
}

const BuiltinVariantLists& checkedSqrtLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&checkedSqrt>("checkedSqrt", {.mayThrowErrors = true, .isElementWise = true})};
    return lists;
}

} // namespace

const BuiltinFcn& reciprocalBuiltin() {
    static const RegisteredBuiltin builtin("reciprocal", LIBRARY, "1/x, warning on division by zero",
                                           reciprocalLists(), noDefaultImplementation("reciprocal"));
    return builtin;
}

const BuiltinFcn& checkedSqrtBuiltin() {
    static const RegisteredBuiltin builtin("checkedSqrt", LIBRARY, "square root, an error for negative input",
                                           checkedSqrtLists(), noDefaultImplementation("checkedSqrt"));
    return builtin;
}

} // namespace samplelib
