// colon: the range a:b or a:s:b of doubles, a row vector.
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <foundation/core/except/Exception.hpp>
#include <matrix/ResultArrays.hpp>

#include <cmath>
#include <limits>
#include <string>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

namespace errors {
struct rangeTooLong {
    static constexpr std::string_view component = "samplelib";
    static constexpr std::string_view key = "rangeTooLong";
    static constexpr std::string_view text = "The range has {0} elements, more than the {1} it may have.";
};
} // namespace errors

constexpr double MAX_ELEMENTS = 1 << 28;

oxArray* row(std::size_t count) {
    return matrix::createUninitializedNumericArray({1, count}, oxDOUBLE_CLASS);
}

oxArray* colonStep(double start, double step, double stop) {
    if (std::isnan(start) || std::isnan(step) || std::isnan(stop)) {
        return matrix::createScalar(std::numeric_limits<double>::quiet_NaN());
    }
    if (step == 0 || (step > 0 && start > stop) || (step < 0 && start < stop)) {
        return row(0);
    }
    // A step that does not divide the span exactly stops short of stop; rounding error
    // within a few units of the last place does not drop the last element.
    const double span = (stop - start) / step;
    const double count = std::floor(span + 4 * std::numeric_limits<double>::epsilon() * std::abs(span)) + 1;
    if (!(count <= MAX_ELEMENTS)) {
        throw foundation::core::except::Exception<errors::rangeTooLong>(
            {std::to_string(count), std::to_string(static_cast<long>(MAX_ELEMENTS))});
    }
    oxArray* out = row(static_cast<std::size_t>(count));
    double* data = matrix::getTypedData<double>(out);
    for (std::size_t k = 0; k < static_cast<std::size_t>(count); ++k) {
        data[k] = start + static_cast<double>(k) * step;
    }
    return out;
}

oxArray* colonUnit(double start, double stop) { return colonStep(start, 1, stop); }

const BuiltinVariantLists& colonLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&colonUnit>("colon"),
        makeVariants<&colonStep>("colon"),
    };
    return lists;
}

} // namespace

const BuiltinFcn& colonBuiltin() {
    static const RegisteredBuiltin builtin("colon", LIBRARY, "the range a:b or a:s:b of doubles", colonLists(),
                                           noDefaultImplementation("colon"));
    return builtin;
}

} // namespace samplelib
