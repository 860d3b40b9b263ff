// How far the execution engine may call a variant directly; a larger code is more
// restrictive.
#pragma once

#include <cstdint>

namespace Velloc::builtin::types {

enum class LxeSupportLevel : std::int32_t {
    EQUIVALENT_SUPPORT = 0,
    LXE_ONLY = 1,
    NO_SUPPORT_SCALAR_COMPLEX = 2,
    NO_SUPPORT = 3,
};

} // namespace Velloc::builtin::types
