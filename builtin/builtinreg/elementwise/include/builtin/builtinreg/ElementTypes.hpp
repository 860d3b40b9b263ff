// The element types that element-wise execution runs on, in the order of their tag
// indices in the engine's argument list (0 to 12): every loop exists once per entry.
#pragma once

#include <builtin/builtinreg/InlineCTypeList.hpp>

#include <complex>
#include <cstdint>

namespace Velloc::builtin::builtinreg::detail {

using ElementTypes = TypeList<unsigned long, double, float, bool, signed char, short, int, long, unsigned char,
                              unsigned short, unsigned int, std::complex<double>, std::complex<float>>;

static_assert(ElementTypes::SIZE == 13);

} // namespace Velloc::builtin::builtinreg::detail
