// How compiled code calls a variant's developer function.
#pragma once

#include <cstdint>

namespace Velloc::lxe {

enum JIT_CALLING_CONVENTION : std::int32_t {
    // f(a1, ..., an): the return value is the result.
    Plain = 0,
    // f(a1, ..., an, callee): the function receives its own callee record.
    WithCallee = 1,
    // f(a1, ..., an, resultSlot, environment, callee) returns true when it raised a
    // warning or an error through the environment.
    CanThrow = 2,
    // Reserved for the engine's own functions; builtins never use it.
    CanThrowLxeInternal = 3,
};

} // namespace Velloc::lxe
