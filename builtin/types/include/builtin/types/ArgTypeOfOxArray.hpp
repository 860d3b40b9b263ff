// The argument type of a run-time host array, as dispatch compares it with declarations.
#pragma once

#include <builtin/types/ArgType.hpp>
#include <matrix/oxArray.hpp>

namespace Velloc::builtin::types {

// A strict OxArrayTypes of the array's class, shape, density and complexity, or
// UnsupportedArgType for a null handle, a class or storage that no variant can take,
// and anything the host rejects. Never throws and never allocates.
ArgType getArgTypeOfOxArray(const oxArray* array) noexcept;

} // namespace Velloc::builtin::types
