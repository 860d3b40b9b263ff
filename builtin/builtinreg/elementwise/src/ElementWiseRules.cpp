#include <builtin/builtinreg/ElementWiseRules.hpp>

#include <foundation/core/demangle.hpp>
#include <foundation/core/SourceLocation.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace Velloc::builtin::builtinreg::detail {

namespace {

// The assertion site names its source as the rest of the host's element-wise code does.
constexpr const char* ASSERTION_SOURCE = "elementWise";
constexpr int DIMENSION_ASSERTION_LINE = 33;
constexpr int ARGUMENT_ASSERTION_LINE = 19;

} // namespace

const std::vector<std::size_t>* getScalarDims() {
    static const std::vector<std::size_t> scalarDims{1, 1};
    return &scalarDims;
}

void assertElementwiseDimensions(const std::size_t* first, const std::size_t* last) {
    const std::size_t* extent = std::find_if(first, last, [](std::size_t value) { return value != 1; });
    if (extent == last) {
        return;
    }
    const bool agree = std::all_of(extent + 1, last, [&](std::size_t value) { return value == 1 || value == *extent; });
    if (!agree) {
        foundation::core::diag::terminate("the ith dim of each input array should be equal or 1", ASSERTION_SOURCE,
                                          DIMENSION_ASSERTION_LINE, foundation::core::SourceLocation::current().function_name());
    }
}

void assertOrThrowWrongElementWiseArg(const std::type_info& expected, const std::type_info& actual, bool terminate) {
    const std::string message = "Parameter should contain " + foundation::core::demangle_typeid_name(expected.name()) +
                                " but actually contained " + foundation::core::demangle_typeid_name(actual.name());
    if (terminate && foundation::core::diag::terminationsArmed()) {
        foundation::core::diag::terminate(message, ASSERTION_SOURCE, ARGUMENT_ASSERTION_LINE,
                                          foundation::core::SourceLocation::current().function_name());
    }
    throw std::logic_error(message);
}

} // namespace Velloc::builtin::builtinreg::detail
