// `orvex lint [--json] [LIBRARY...]`: the mistakes in a library's declarations that the
// compiler cannot see, one line each:
// - variants no interpreted call reaches, with the reason and the fix
//   (builtinreg/Reachability.hpp): boxed copies cleanup removed, flag variants only
//   compiled callers reach, other inputs only compiled callers pass, variants an earlier
//   one shadows ("shadowed: VARIANT by EARLIER");
// - what cleanup removed or demoted besides: variants with a type the framework cannot
//   describe, repeated boxed copies, variants the engine may no longer call because an
//   earlier one it may not call takes their calls.
#pragma once

#include "Libraries.hpp"

#include <iosfwd>
#include <string>
#include <vector>

namespace orvex {

// Lints the builtins of the named libraries (all when none is named); returns 1 when
// anything was found, else 0. With json, one JSON document on out: an array of
// {library, builtin, kind, variant, by, reason, fix}.
int lintBuiltins(const std::vector<LoadedBuiltin>& builtins, const std::vector<std::string>& libraries, bool json,
                 std::ostream& out);

} // namespace orvex
