// The tool's commands. Each writes to out and returns the process exit code: 0 on
// success, 1 when a builtin raised an error, 2 for a command-line mistake.
#pragma once

#include "Libraries.hpp"

#include <iosfwd>
#include <string>
#include <vector>

namespace orvex {

int listBuiltins(const std::vector<LoadedBuiltin>& builtins, std::ostream& out);
int showBuiltin(const std::vector<LoadedBuiltin>& builtins, const std::string& name, std::ostream& out);
int callBuiltin(const std::vector<LoadedBuiltin>& builtins, const std::string& name,
                const std::vector<std::string>& arguments, std::ostream& out);
int explainCall(const std::vector<LoadedBuiltin>& builtins, const std::string& name,
                const std::vector<std::string>& arguments, std::ostream& out);

} // namespace orvex
