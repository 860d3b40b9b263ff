// How strictly a declared host-array type is matched against the value offered.
#pragma once

#include <cstdint>
#include <iosfwd>

namespace Velloc::builtin::types {

enum class SignatureTolerance : std::int32_t { STRICT = 0, RELAXED = 1 };

// "STRICT" or "RELAXED"; any other value prints nothing.
std::ostream& operator<<(std::ostream& os, SignatureTolerance tolerance);

} // namespace Velloc::builtin::types
