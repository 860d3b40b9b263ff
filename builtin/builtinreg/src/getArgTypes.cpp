#include <builtin/builtinreg/ArgTypes.hpp>

#include <foundation/core/SourceLocation.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <boost/container/small_vector.hpp>

#include <cstddef>
#include <limits>
#include <vector>

namespace Velloc::builtin::builtinreg {

namespace {

using types::ArgType;

// Digits of the counter that walks the Cartesian product; declarations rarely have
// more than eight parameters, so the digits stay off the heap.
using Counter = boost::container::small_vector<unsigned long, 8>;

// Position 0 is the fastest digit. False once the last position has wrapped.
bool advance(Counter& digits, const std::initializer_list<const unsigned long>& counts) {
    auto count = counts.begin();
    for (unsigned long& digit : digits) {
        if (++digit < *count++) {
            return true;
        }
        digit = 0;
    }
    return false;
}

// The number of signatures; an overflowing product saturates, so that reserving it
// fails as any oversized reservation does.
std::size_t productOf(const std::initializer_list<const unsigned long>& counts) noexcept {
    std::size_t product = 1;
    for (const unsigned long count : counts) {
        if (__builtin_mul_overflow(product, count, &product)) {
            return std::numeric_limits<std::size_t>::max();
        }
    }
    return product;
}

} // namespace

ArgTypes getArgTypes(types::SignatureTolerance tolerance,
                     const std::initializer_list<const unsigned long>& numArgTypes,
                     const std::initializer_list<const ArgType& (*)(unsigned long)>& getArgType,
                     const ArgType& (*getOutputArgType)(std::size_t)) {
    if (numArgTypes.size() != getArgType.size()) {
        const auto here = foundation::core::SourceLocation::current();
        foundation::core::diag::terminate("numArgTypes.size() == getArgType.size()", "getArgTypes",
                                          static_cast<int>(here.line()), here.function_name());
    }
    ArgTypes result;
    if (getOutputArgType != nullptr) {
        result.outputs.push_back(getOutputArgType(0));
        types::setSignatureTolerance(result.outputs.back(), tolerance);
    }
    const std::size_t numSignatures = productOf(numArgTypes);
    result.inputs.reserve(numSignatures);
    if (numSignatures == 0) {
        return result;
    }
    Counter digits(numArgTypes.size(), 0);
    do {
        std::vector<ArgType>& signature = result.inputs.emplace_back();
        signature.reserve(digits.size());
        auto get = getArgType.begin();
        for (const unsigned long digit : digits) {
            types::setSignatureTolerance(signature.emplace_back((*get++)(digit)), tolerance);
        }
    } while (advance(digits, numArgTypes));
    return result;
}

} // namespace Velloc::builtin::builtinreg
