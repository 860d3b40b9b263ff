// `orvex compiled NAME ARG...`: calls a builtin the way compiled code does. The first
// variant of the engine's list that takes exactly the arguments' scalar types is called
// through the inline-C wrapper for its signature, without invoke and without boxing;
// warnings and the error come back through the environment, as the engine sees them.
// A literal text ('omitnan' or "omitnan") at a flag position of a variant is the literal
// option compiled code passes: it matches the flag of the same text, case included, and
// is not passed on, as a flag never is.
#pragma once

#include "Libraries.hpp"

#include <iosfwd>
#include <string>
#include <vector>

namespace orvex {

// Exit code 0 on success, 1 when the builtin raised an error, 2 when no variant can be
// called this way or an argument is neither a numeric scalar nor a text.
int callCompiled(const std::vector<LoadedBuiltin>& builtins, const std::string& name,
                 const std::vector<std::string>& arguments, std::ostream& out);

} // namespace orvex
