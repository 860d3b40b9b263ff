// nchoosek: a scalar function that is not element-wise. The interpreter reaches it
// through its boxed copy, which unboxes 1-by-1 arrays; compiled callers call it directly.
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <foundation/core/except/Exception.hpp>

#include <cmath>
#include <string>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

namespace errors {
struct notNonNegativeIntegers {
    static constexpr std::string_view component = "samplelib:nchoosek";
    static constexpr std::string_view key = "notNonNegativeIntegers";
    static constexpr std::string_view text = "N and K must be non-negative integers with K <= N; got {0} and {1}.";
};
} // namespace errors

// Doubles hold every integer up to 2^53 exactly.
constexpr double LARGEST_EXACT = 9007199254740992.0;

bool isCount(double x) { return x >= 0 && std::floor(x) == x; }

double nchoosek(CallContext& context, double n, double k) {
    if (!isCount(n) || !isCount(k) || k > n) {
        throw foundation::core::except::Exception<errors::notNonNegativeIntegers>(
            {std::to_string(n), std::to_string(k)});
    }
    k = std::min(k, n - k);
    double result = 1;
    // Each partial product is itself a binomial coefficient, so the division is exact.
    for (double i = 1; i <= k; ++i) {
        result = result * (n - k + i) / i;
    }
    if (result > LARGEST_EXACT) {
        context.warning("Result may not be exact: it is above 2^53.");
    }
    return result;
}

const BuiltinVariantLists& nchoosekLists() {
    static const BuiltinVariantLists lists{makeVariants<&nchoosek>("nchoosek", {.mayThrowErrors = true})};
    return lists;
}

} // namespace

const BuiltinFcn& nchoosekBuiltin() {
    static const RegisteredBuiltin builtin("nchoosek", LIBRARY, "binomial coefficient of two scalars",
                                           nchoosekLists(), noDefaultImplementation("nchoosek"));
    return builtin;
}

} // namespace samplelib
