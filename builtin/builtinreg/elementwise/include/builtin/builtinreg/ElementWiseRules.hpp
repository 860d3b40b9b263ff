// What an element-wise call must satisfy: inputs agree in every dimension up to
// singletons, and arguments hold the element type the variant was declared with.
#pragma once

#include <cstddef>
#include <typeinfo>
#include <vector>

namespace Velloc::builtin::builtinreg::detail {

// The dimension vector of a 1x1 array, shared by every scalar operand; never freed.
const std::vector<std::size_t>* getScalarDims();

// Checks one dimension position across all inputs, one value per input: after the first
// value that is not 1, every value is 1 or equal to it. A breach is a defect of the
// caller and ends the process.
void assertElementwiseDimensions(const std::size_t* first, const std::size_t* last);

// An argument holds another type than the variant was declared with. Ends the process
// when terminate is true and diagnostics are armed; otherwise throws std::logic_error.
void assertOrThrowWrongElementWiseArg(const std::type_info& expected, const std::type_info& actual,
                                      bool terminate);

} // namespace Velloc::builtin::builtinreg::detail
