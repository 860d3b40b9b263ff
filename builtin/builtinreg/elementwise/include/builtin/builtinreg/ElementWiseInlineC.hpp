// The entry through which compiled code calls an element-wise variant on typed
// arguments. The tag indices of the output and of each input select one worker per
// element type; only homogeneous combinations of the thirteen element types are handled.
//
// The result record: for a handled call, the tag of oxArray* and the address of the
// output array, which the caller owns (a temporary input reused as the output is that
// same array); when both inputs travel as values, the element function's own record
// (tag of the element type, value in the slot). All zero when the combination of
// indices is not handled, and when an element call recorded an error, in which case
// raised is true and the error is pending in the environment.
#pragma once

#include <builtin/Parameter.hpp>
#include <builtin/builtinreg/InlineCResult.hpp>
#include <builtin/builtinreg/InlineCTypeList.hpp>

#include <lxe/ILxeBuiltinEnvironment.hpp>
#include <lxe/LxeFunctionDescriptor.hpp>

#include <boost/container/small_vector.hpp>

#include <cstddef>

namespace Velloc::builtin::builtinreg::detail {

using ElementWiseArguments = boost::container::small_vector<Parameter, 8>;

// Outputs with more elements than this may run on oneTBB's workers.
inline constexpr std::size_t ELEMENT_WISE_PARALLEL_THRESHOLD = 1024;

// raised becomes true when an element call reported a warning or an error; the warnings
// and the error are then in environment. parallel false keeps every loop on the calling
// thread.
InlineCResult elementWiseInlineC(const lxe::LxeFunctionDescriptor* descriptor,
                                 lxe::ILxeBuiltinEnvironment* environment, bool& raised,
                                 const ElementWiseArguments& arguments, const InlineCTypeList*, std::size_t k0,
                                 std::size_t k1, bool parallel = true);
InlineCResult elementWiseInlineC(const lxe::LxeFunctionDescriptor* descriptor,
                                 lxe::ILxeBuiltinEnvironment* environment, bool& raised,
                                 const ElementWiseArguments& arguments, const InlineCTypeList*, std::size_t k0,
                                 std::size_t k1, std::size_t k2, bool parallel = true);

} // namespace Velloc::builtin::builtinreg::detail
