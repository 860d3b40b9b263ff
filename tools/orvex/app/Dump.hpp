// `orvex dump [--json]`: every builtin with its lists and variants: argument types in
// text form, flags, support level and calling convention.
#pragma once

#include "Libraries.hpp"

#include <iosfwd>
#include <vector>

namespace orvex {

int dumpBuiltins(const std::vector<LoadedBuiltin>& builtins, bool json, std::ostream& out);

} // namespace orvex
