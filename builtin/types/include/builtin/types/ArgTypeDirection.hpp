// Whether an argument type describes an input or an output of a variant.
#pragma once

#include <cstdint>

namespace Velloc::builtin::types {

enum class ArgTypeDirection : std::int32_t { INPUT = 0, OUTPUT = 1 };

} // namespace Velloc::builtin::types
