// The host-style entry of a default implementation: calls the developer function in the
// host's calling form and holds it to its output contract. Outputs it did not set are the
// language user's error; a write past its outputs is a defect that ends the process.
#pragma once

#include <builtin/BuiltinVariant.hpp>

namespace Velloc::builtin::builtinreg::detail {

// Calls variant.developerFcn, a lxe::HostStyleEntry, with room past the outputs so that a
// stray write lands where it is seen. With checks armed the variant also runs as the
// active variant of its language instance.
void checkedHostStyleEntry(int nlhs, oxArray** plhs, int nrhs, oxArray** prhs, const BuiltinVariant& variant);

} // namespace Velloc::builtin::builtinreg::detail
