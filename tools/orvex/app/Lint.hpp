// `orvex lint [--json] [LIBRARY...]`: what cleanup did to each builtin's variants:
// variants removed as unsupported or unreachable, and variants shadowed by an earlier
// one, named with the variant that shadows them. Each is a mistake in a declaration.
#pragma once

#include "Libraries.hpp"

#include <iosfwd>
#include <string>
#include <vector>

namespace orvex {

// Lints the builtins of the named libraries (all when none is named); returns 1 when
// anything was found, else 0. With json, one JSON document on out.
int lintBuiltins(const std::vector<LoadedBuiltin>& builtins, const std::vector<std::string>& libraries, bool json,
                 std::ostream& out);

} // namespace orvex
