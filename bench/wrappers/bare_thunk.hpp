// The least a thunk can be: called through a pointer, it calls the developer function
// through another and packs its result. The distance to it is what the thunk's own tests cost.
#pragma once

#include <builtin/builtinreg/InlineCResult.hpp>

namespace bench_wrappers {

using Velloc::builtin::builtinreg::detail::InlineCResult;

[[gnu::noinline]] InlineCResult bareThunk(const void* callee, const double* arguments);

} // namespace bench_wrappers
